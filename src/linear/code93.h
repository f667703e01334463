// Code 93 with its two modulo-47 check characters C and K.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "linear/barcode_base_1d.h"

namespace barcode_orv {

namespace internal {

// Element widths (bar first): start, the text, C, K, stop with termination bar. The
// shift characters of full-ASCII Code 93 are written as "<", ">", "?" and "!".
std::vector<int32_t> EncodeCode93(const std::string& text);
// Weighted modulo-47 sum of `text`; the weights run 1..max_weight from the last
// character backwards and then start again at 1.
int GetModulus47(const std::string& text, int max_weight);
// Code 93 full ASCII: `text` (ASCII only) with every character that needs a shift pair
// written as one, in the stand-ins EncodeCode93 takes.
std::string ExpandFullAscii93(const std::string& text);

}  // namespace internal

class Code93 : public BarcodeBase1D {
 public:
  explicit Code93(std::string output_format);
  explicit Code93(SDL_Renderer* canvas);  // draws onto the caller's renderer

  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  bool DrawSvg(const std::string& text, int x, int y, int width, int height) override;
  virtual std::vector<int32_t> EncodeCode93(const std::string& text);
  int GetModulus47(const std::string& text, int max_weight) const { return internal::GetModulus47(text, max_weight); }

 private:
  LinearSymbol Encode(const std::string& text);
};

}  // namespace barcode_orv
