#include "linear/nw7.h"

#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace barcode_orv {
namespace {

constexpr std::string_view kAlphabet = "ABCD.+:/$-0123456789";

// Seven elements per character, bit 6 first (a bar); a set bit is a wide element.
constexpr std::array<uint32_t, 20> kMasks = {
    0b0011010, 0b0101001, 0b0001011, 0b0001110,  // A B C D
    0b1010100, 0b0010101, 0b1000101, 0b1010001,  // . + : /
    0b0011000, 0b0001100,                        // $ -
    0b0000011, 0b0000110, 0b0001001, 0b1100000,  // 0 1 2 3
    0b0010010, 0b1000010, 0b0100001, 0b0100100,  // 4 5 6 7
    0b0110000, 0b1001000,                        // 8 9
};
static_assert(kAlphabet.size() == kMasks.size());

constexpr int32_t kNarrow = 1;
constexpr int32_t kWide = 3;
constexpr int32_t kGap = 2;

bool IsStartStop(char c) { return c >= 'A' && c <= 'D'; }

std::string Upper(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

}  // namespace

namespace internal {

std::vector<int32_t> EncodeNW7(const std::string& text) {
  if (text.empty()) throw std::runtime_error("Empty string");
  std::string symbol = Upper(text);
  const bool starts = IsStartStop(symbol.front());
  const bool stops = IsStartStop(symbol.back());
  if (starts != stops) {
    throw std::runtime_error("Invalid start/stop character combination in NW7: " + symbol);
  }
  if (!starts) symbol = "C" + symbol + "C";

  std::vector<int32_t> widths;
  widths.reserve(symbol.size() * 8);
  for (char c : symbol) {
    const size_t index = kAlphabet.find(c);
    if (index == std::string_view::npos) {
      throw std::runtime_error(std::string("Invalid character in NW7: ") + c);
    }
    if (!widths.empty()) widths.push_back(kGap);
    for (int bit = 6; bit >= 0; --bit) {
      widths.push_back(((kMasks[index] >> bit) & 1U) != 0 ? kWide : kNarrow);
    }
  }
  return widths;
}

std::string NW7DisplayText(const std::string& text, bool show_start_stop) {
  if (show_start_stop) return text;
  std::string shown = Upper(text);
  if (!shown.empty() && IsStartStop(shown.front()) && IsStartStop(shown.back())) {
    shown = shown.size() <= 2 ? std::string() : shown.substr(1, shown.size() - 2);
  }
  return shown;
}

}  // namespace internal

NW7::NW7(std::string output_format) : BarcodeBase1D(std::move(output_format)) { show_start_stop = true; }

NW7::NW7(SDL_Renderer* canvas) : BarcodeBase1D(canvas) { show_start_stop = true; }

std::vector<int32_t> NW7::EncodeNW7(const std::string& text) { return internal::EncodeNW7(text); }

BarcodeBase1D::LinearSymbol NW7::Encode(const std::string& text) {
  std::vector<int32_t> widths = EncodeNW7(text);
  return LinearSymbol{std::move(widths), internal::NW7DisplayText(text, show_start_stop)};
}

bool NW7::Draw(const std::string& text, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(text, x, y, width, height);
  return DrawLinearRaster(text, x, y, width, height, "[NW7] ", [this](const std::string& t) { return Encode(t); });
}

bool NW7::DrawSvg(const std::string& text, int x, int y, int width, int height) {
  return DrawLinearSvg(text, x, y, width, height, "[NW7] ", [this](const std::string& t) { return Encode(t); });
}

}  // namespace barcode_orv
