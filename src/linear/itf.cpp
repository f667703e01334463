#include "linear/itf.h"

#include <array>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace barcode_orv {
namespace {

// Five elements per digit, bit 4 first; a set bit is wide (0 = NNWWN ... 9 = NWNWN).
constexpr std::array<uint8_t, 10> kDigitMasks = {
    0b00110, 0b10001, 0b01001, 0b11000, 0b00101, 0b10100, 0b01100, 0b00011, 0b10010, 0b01010,
};

constexpr int32_t kNarrow = 1;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

namespace internal {

int32_t TwoOfFiveWideWidth(float ratio) {
  // Parity of the integer part without converting out-of-range values to int.
  const double whole = std::trunc(static_cast<double>(ratio));
  return std::fmod(whole, 2.0) == 0.0 ? 2 : 3;
}

std::vector<int32_t> EncodeITF(const std::string& text, float ratio) {
  if (text.empty()) throw std::runtime_error("Empty string");
  for (char c : text) {
    if (!IsDigit(c)) throw std::runtime_error("ITF barcode requires numeric digits only");
  }
  const std::string digits = text.size() % 2 == 0 ? text : "0" + text;
  const int32_t wide = TwoOfFiveWideWidth(ratio);

  std::vector<int32_t> widths = {kNarrow, kNarrow, kNarrow, kNarrow};
  widths.reserve(4 + digits.size() * 5 + 3);
  for (size_t i = 0; i < digits.size(); i += 2) {
    const uint8_t bars = kDigitMasks[static_cast<size_t>(digits[i] - '0')];
    const uint8_t spaces = kDigitMasks[static_cast<size_t>(digits[i + 1] - '0')];
    for (int bit = 4; bit >= 0; --bit) {
      widths.push_back(((bars >> bit) & 1U) != 0 ? wide : kNarrow);
      widths.push_back(((spaces >> bit) & 1U) != 0 ? wide : kNarrow);
    }
  }
  widths.insert(widths.end(), {wide, kNarrow, kNarrow});
  return widths;
}

}  // namespace internal

ITF::ITF(std::string output_format) : BarcodeBase1D(std::move(output_format)) {}

ITF::ITF(SDL_Renderer* canvas) : BarcodeBase1D(canvas) {}

std::vector<int32_t> ITF::EncodeITF(const std::string& text) const { return internal::EncodeITF(text, ratio_); }

BarcodeBase1D::LinearSymbol ITF::Encode(const std::string& text) const {
  LinearSymbol symbol{EncodeITF(text), text};  // the padding zero is not shown
  if (bearer_bars_) symbol.bearer_modules = kBearerModules;
  return symbol;
}

float ITF::NaturalBarModules() const {
  // The frame's bars take their thickness from the bars' height, top and bottom.
  return BarcodeBase1D::NaturalBarModules() + (bearer_bars_ ? 2.0F * kBearerModules : 0.0F);
}

bool ITF::Draw(const std::string& text, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(text, x, y, width, height);
  return DrawLinearRaster(text, x, y, width, height, "[ITF] ", [this](const std::string& t) { return Encode(t); });
}

bool ITF::DrawSvg(const std::string& text, int x, int y, int width, int height) {
  return DrawLinearSvg(text, x, y, width, height, "[ITF] ", [this](const std::string& t) { return Encode(t); });
}

}  // namespace barcode_orv
