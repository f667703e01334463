#include "linear/nec2of5.h"

#include <utility>

namespace barcode_orv {

namespace internal {

std::vector<int32_t> EncodeNEC2of5(const std::string& text, float ratio) {
  return EncodeTwoOfFiveMatrix(text, ratio, kNec2of5NumericError);
}

}  // namespace internal

NEC2of5::NEC2of5(std::string output_format)
    : TwoOfFiveMatrixBarcode(std::move(output_format), internal::kNec2of5NumericError, "[NEC2of5] ") {}

NEC2of5::NEC2of5(SDL_Renderer* canvas) : TwoOfFiveMatrixBarcode(canvas, internal::kNec2of5NumericError, "[NEC2of5] ") {}

}  // namespace barcode_orv
