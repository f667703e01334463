// PDF417 symbology: error-correction level, columns, rows, aspect ratio and row height
// settings, and the painting of the symbol's rows into the caller's box, stretched to
// fill it, anchored at the top-left corner and without a quiet zone.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "twod/barcode_base_2d.h"
#include "twod/pdf417_encoder.h"

namespace barcode_orv {

// 0..8 fixed; any other value means the level recommended for the data length.
enum class PDF417ErrorLevel : int32_t {
  Level0 = 0,
  Level1,
  Level2,
  Level3,
  Level4,
  Level5,
  Level6,
  Level7,
  Level8,
  Auto = -1,
};

class PDF417 : public BarcodeBase2D {
 public:
  explicit PDF417(std::string output_format);
  explicit PDF417(SDL_Renderer* canvas);  // draws onto the caller's renderer

  void SetErrorLevel(PDF417ErrorLevel level) { settings_.level = static_cast<int>(level); }
  PDF417ErrorLevel GetErrorLevel() const { return static_cast<PDF417ErrorLevel>(settings_.level); }
  // 1..30 data columns, 0 automatic; other values fail at drawing.
  void SetColumns(int columns) { settings_.columns = columns; }
  int GetColumns() const { return settings_.columns; }
  // 3..90 rows, 0 automatic; other values fail at drawing.
  void SetRows(int rows) { settings_.rows = rows; }
  int GetRows() const { return settings_.rows; }
  // Symbol width over height that the automatic shape aims at; 0 or less: about three
  // rows a column.
  void SetAspectRatio(double ratio) { settings_.aspect_ratio = ratio; }
  double GetAspectRatio() const { return settings_.aspect_ratio; }
  // Row height in modules (default 3; 3..50, other values fail at drawing).
  void SetYHeight(int modules) { settings_.row_height = modules; }
  int GetYHeight() const { return settings_.row_height; }

  using BarcodeBase::DrawSvg;
  using BarcodeBase2D::Draw;
  // Paints the symbol for `data`; SVG output goes to DrawSvg. Data or settings that
  // cannot make a symbol write "[PDF417] " and the reason to standard error and return
  // false. An empty payload paints a blank box.
  bool Draw(const std::vector<uint8_t>& data, int x, int y, int width, int height) override;
  // False for an empty payload and for data that cannot be encoded.
  bool DrawSvg(const std::vector<uint8_t>& data, int x, int y, int width, int height);

  // The symbol for `data` under the current settings (no modules for empty data);
  // throws std::runtime_error with the reason when it cannot be made.
  internal_pdf417::Symbol Encode(const std::vector<uint8_t>& data) const;
  // The text entry of Encode: converted with the string-encoding setting.
  internal_pdf417::Symbol CalPDF417(const std::string& text) const;

 protected:
  int QuietZoneModules() const override { return 2; }  // ISO/IEC 15438
  const char* LogPrefix() const override { return "[PDF417] "; }

 private:
  bool EncodeReporting(const std::vector<uint8_t>& data, internal_pdf417::Symbol& symbol) const;

  internal_pdf417::Settings settings_;
};

}  // namespace barcode_orv
