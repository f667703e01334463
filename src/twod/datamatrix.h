// Data Matrix ECC 200 symbology: symbol size and encodation scheme settings, and the
// painting of the symbol into the caller's box with square modules, anchored at the
// box's top-left corner and without a quiet zone.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "twod/barcode_base_2d.h"
#include "twod/datamatrix_encoder.h"

namespace barcode_orv {

class DataMatrix : public BarcodeBase2D {
 public:
  explicit DataMatrix(std::string output_format);
  explicit DataMatrix(SDL_Renderer* canvas);  // draws onto the caller's renderer

  // 0..47 a fixed size (see internal::kDataMatrixSizes), kAutoRect or kAutoDmre the
  // smallest area among more sizes; anything else the smallest square size that holds
  // the data.
  void SetCodeSize(int size) {
    code_size_ = size;
    unknown_size_.clear();
  }
  // A size name the setter does not know: the automatic size, as always, except in the
  // standard profile, which refuses to draw and names it.
  void SetUnknownCodeSize(const std::string& name) {
    code_size_ = internal::kAutoSize;
    unknown_size_ = name;
  }
  int GetCodeSize() const { return code_size_; }
  // 0..5 ASCII, C40, Text, X12, EDIFACT, Base 256; anything else automatic.
  void SetEncodeScheme(int scheme) { encode_scheme_ = scheme; }
  int GetEncodeScheme() const { return encode_scheme_; }

  using BarcodeBase::DrawSvg;
  using BarcodeBase2D::Draw;
  // Paints the symbol for `data`; SVG output goes to DrawSvg. Data that cannot be
  // encoded under the settings writes "[DataMatrix] " and the reason to standard error
  // and returns false. An empty payload paints a blank box.
  bool Draw(const std::vector<uint8_t>& data, int x, int y, int width, int height) override;
  // False for an empty payload and for data that cannot be encoded.
  bool DrawSvg(const std::vector<uint8_t>& data, int x, int y, int width, int height);

  // The symbol for `data` under the current settings (empty grid for empty data);
  // throws std::runtime_error with the reason when it cannot be made.
  internal::DataMatrixSymbol Encode(const std::vector<uint8_t>& data) const;

 protected:
  int QuietZoneModules() const override { return 1; }  // ISO/IEC 16022
  const char* LogPrefix() const override { return "[DataMatrix] "; }

 private:
  // Encode, reporting a failure on standard error; false when there is no symbol.
  bool EncodeReporting(const std::vector<uint8_t>& data, internal::DataMatrixSymbol& symbol) const;

  int code_size_ = internal::kAutoSize;
  std::string unknown_size_;
  int encode_scheme_ = static_cast<int>(internal::Encodation::kAuto);
};

}  // namespace barcode_orv
