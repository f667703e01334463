// NW-7 (Codabar): start/stop characters A to D, narrow and wide elements in 1 : 3,
// a 2-module gap between characters, no check character.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "linear/barcode_base_1d.h"

namespace barcode_orv {

namespace internal {

// Element widths (bar first). A text that neither begins nor ends with A to D is
// framed with C ... C.
std::vector<int32_t> EncodeNW7(const std::string& text);
// The human-readable line for `text`.
std::string NW7DisplayText(const std::string& text, bool show_start_stop);

}  // namespace internal

class NW7 : public BarcodeBase1D {
 public:
  // Start/stop characters are shown in the text line unless switched off.
  explicit NW7(std::string output_format);
  explicit NW7(SDL_Renderer* canvas);  // draws onto the caller's renderer

  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  bool DrawSvg(const std::string& text, int x, int y, int width, int height) override;
  virtual std::vector<int32_t> EncodeNW7(const std::string& text);

 private:
  LinearSymbol Encode(const std::string& text);
};

}  // namespace barcode_orv
