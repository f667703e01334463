#include "linear/nec2of5.h"

#include <utility>

#include "linear/matrix2of5.h"

namespace barcode_orv {

namespace internal {

std::vector<int32_t> EncodeNEC2of5(const std::string& text, float ratio) {
  return EncodeTwoOfFiveMatrix(text, ratio, "NEC 2 of 5 barcode requires numeric digits only");
}

}  // namespace internal

NEC2of5::NEC2of5(std::string output_format) : BarcodeBase1D(std::move(output_format)) {}

NEC2of5::NEC2of5(SDL_Renderer* canvas) : BarcodeBase1D(canvas) {}

std::vector<int32_t> NEC2of5::EncodeNEC2of5(const std::string& text) const {
  return internal::EncodeNEC2of5(text, ratio_);
}

BarcodeBase1D::LinearSymbol NEC2of5::Encode(const std::string& text) const {
  return LinearSymbol{EncodeNEC2of5(text), text};
}

bool NEC2of5::Draw(const std::string& text, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(text, x, y, width, height);
  return DrawLinearRaster(text, x, y, width, height, "[NEC2of5] ", [this](const std::string& t) { return Encode(t); });
}

bool NEC2of5::DrawSvg(const std::string& text, int x, int y, int width, int height) {
  return DrawLinearSvg(text, x, y, width, height, "[NEC2of5] ", [this](const std::string& t) { return Encode(t); });
}

}  // namespace barcode_orv
