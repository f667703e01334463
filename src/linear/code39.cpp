#include "linear/code39.h"

#include <array>
#include <cctype>
#include <stdexcept>

#include "core/log.h"

namespace barcode_orv {
namespace internal {
namespace {

constexpr std::string_view kCharset = "1234567890ABCDEFGHIJKLMNOPQRSTUVWXYZ-. *$/+%";

// Nine elements per character, bit 8 first (bar, space, ... bar); a set bit is wide.
constexpr std::array<uint16_t, 44> kPatterns = {
    0b100100001, 0b001100001, 0b101100000, 0b000110001, 0b100110000,  // 1-5
    0b001110000, 0b000100101, 0b100100100, 0b001100100, 0b000110100,  // 6-9, 0
    0b100001001, 0b001001001, 0b101001000, 0b000011001, 0b100011000,  // A-E
    0b001011000, 0b000001101, 0b100001100, 0b001001100, 0b000011100,  // F-J
    0b100000011, 0b001000011, 0b101000010, 0b000010011, 0b100010010,  // K-O
    0b001010010, 0b000000111, 0b100000110, 0b001000110, 0b000010110,  // P-T
    0b110000001, 0b011000001, 0b111000000, 0b010010001, 0b110010000,  // U-Y
    0b011010000, 0b010000101, 0b110000100, 0b011000100, 0b010010100,  // Z - . space *
    0b010101000, 0b010100010, 0b010001010, 0b000101010,               // $ / + %
};
static_assert(kCharset.size() == kPatterns.size());

constexpr int kNarrow = 1;
constexpr int kWide = 3;
constexpr int kGap = 1;  // narrow space between characters
constexpr size_t kStartStopIndex = 39;

void AppendCharacter(std::vector<int32_t>& widths, size_t index) {
  if (!widths.empty()) widths.push_back(kGap);
  for (int bit = 8; bit >= 0; --bit) widths.push_back((kPatterns[index] >> bit) & 1U ? kWide : kNarrow);
}

}  // namespace

std::vector<int32_t> EncodeCode39(std::string_view text) {
  if (text.empty()) throw std::runtime_error("Empty string");
  std::vector<size_t> indices;
  indices.reserve(text.size());
  for (const char raw : text) {
    const auto upper = static_cast<char>(std::toupper(static_cast<unsigned char>(raw)));
    if (upper == '*') throw std::runtime_error("Invalid character in CODE39: '*' is reserved for start/stop code");
    const size_t index = kCharset.find(upper);
    if (index == std::string_view::npos) throw std::runtime_error(std::string("Invalid character in CODE39: ") + raw);
    indices.push_back(index);
  }
  std::vector<int32_t> widths;
  widths.reserve((indices.size() + 2) * 10);
  AppendCharacter(widths, kStartStopIndex);
  for (size_t index : indices) AppendCharacter(widths, index);
  AppendCharacter(widths, kStartStopIndex);
  return widths;
}

}  // namespace internal

Code39::Code39(std::string output_format) : BarcodeBase1D(std::move(output_format)) { show_start_stop = true; }

Code39::Code39(SDL_Renderer* canvas) : BarcodeBase1D(canvas) { show_start_stop = true; }

BarcodeBase1D::LinearSymbol Code39::Encode(const std::string& text) const {
  LinearSymbol symbol{EncodeCode39(text), text};
  if (show_start_stop) symbol.display_text = "*" + text + "*";
  return symbol;
}

bool Code39::Draw(const std::string& text, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(text, x, y, width, height);
  const bool drawn = DrawLinearRaster(text, x, y, width, height, "[Code39] ",
                                      [this](const std::string& input) { return Encode(input); });
  if (!drawn) return false;
  if (!log::Quiet()) {
    log::Progress("指定サイズ: width=" + std::to_string(width) + ", height=" + std::to_string(height));
    log::Progress("実際の描画サイズ: width=" + std::to_string(last_drawn_width));
    if (SDL_Surface* surface = canvas_surface()) {
      log::Progress("サーフェスサイズ: width=" + std::to_string(surface->w) + ", height=" + std::to_string(surface->h));
    }
  }
  return true;
}

bool Code39::DrawSvg(const std::string& text, int x, int y, int width, int height) {
  return DrawLinearSvg(text, x, y, width, height, "[Code39] ",
                       [this](const std::string& input) { return Encode(input); });
}

}  // namespace barcode_orv
