// GS1 DataBar Limited (ISO/IEC 24724): a GTIN-13 starting with 0 or 1 in two data
// characters around one check pattern, 74 modules in a single row. Raster output only.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "databar/databar_base.h"

namespace barcode_orv {

namespace internal {

struct DataBarLimitedSymbol {
  std::array<int32_t, 46> widths{};  // left guard to right guard, light first (74 modules)
  int32_t checksum = 0;              // 0..88, the check pattern's index
  std::string digits;                // 13 digits and the GTIN check digit
};

// 8 to 13 digits, left-padded to 13, the first of them 0 or 1. Throws std::runtime_error.
DataBarLimitedSymbol EncodeDataBarLimited(const std::string& data);

}  // namespace internal

class GS1DataBarLimited : public DataBarBase {
 public:
  explicit GS1DataBarLimited(std::string output_format);
  explicit GS1DataBarLimited(SDL_Renderer* canvas);  // draws onto the caller's renderer

  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  // DataBar Limited has no SVG form: always false, nothing written.
  bool DrawSvg(const std::string& text, int x, int y, int width, int height) override;

  // Encodes `data` and keeps the result; throws std::runtime_error.
  bool encode(const std::string& data);  // NOLINT(readability-identifier-naming): the documented name
  const internal::DataBarLimitedSymbol& LastSymbol() const { return symbol_; }
  static std::string CalculateCheckDigit(const std::string& digits);

 private:
  // ISO/IEC 24724: the symbol is 10 modules tall.
  float NaturalBarModules() const override { return 10.0F; }
  internal::DataBarLimitedSymbol symbol_;
};

}  // namespace barcode_orv
