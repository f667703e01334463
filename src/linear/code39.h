// Code 39 (ISO/IEC 16388), without the optional modulo-43 check character.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "linear/barcode_base_1d.h"

namespace barcode_orv {

namespace internal {
// Element widths (bar first) of `text` framed by start/stop '*'; narrow 1, wide 3.
// Lower-case letters are encoded as capitals. Throws std::runtime_error on bad input.
std::vector<int32_t> EncodeCode39(std::string_view text);
}  // namespace internal

class Code39 : public BarcodeBase1D {
 public:
  explicit Code39(std::string output_format);
  explicit Code39(SDL_Renderer* canvas);  // draws onto the caller's renderer

  std::vector<int32_t> EncodeCode39(const std::string& text) const { return internal::EncodeCode39(text); }
  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  bool DrawSvg(const std::string& text, int x, int y, int width, int height) override;

 private:
  LinearSymbol Encode(const std::string& text) const;
};

}  // namespace barcode_orv
