// NEC 2 of 5: the Matrix 2 of 5 symbol under its NEC name.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "linear/matrix2of5.h"

namespace barcode_orv {

namespace internal {

inline constexpr const char* kNec2of5NumericError = "NEC 2 of 5 barcode requires numeric digits only";
std::vector<int32_t> EncodeNEC2of5(const std::string& text, float ratio);

}  // namespace internal

class NEC2of5 : public TwoOfFiveMatrixBarcode {
 public:
  explicit NEC2of5(std::string output_format);
  explicit NEC2of5(SDL_Renderer* canvas);  // draws onto the caller's renderer

  std::vector<int32_t> EncodeNEC2of5(const std::string& text) const { return EncodeWidths(text); }
};

}  // namespace barcode_orv
