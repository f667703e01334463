#include "linear/matrix2of5.h"

#include <array>
#include <stdexcept>
#include <utility>

#include "linear/itf.h"

namespace barcode_orv {
namespace {

// Deliberate: the digits take the ten two-of-five combinations in ascending binary
// order (bit 4 is element 0), not the assignment of the published 2-of-5 codes. Kept so
// that every symbol matches the ones this library has always printed.
constexpr std::array<uint8_t, 10> kDigitMasks = {
    0b11000, 0b00011, 0b00101, 0b00110, 0b01001, 0b01010, 0b01100, 0b10001, 0b10010, 0b10100,
};

constexpr int32_t kNarrow = 1;

}  // namespace

namespace internal {

std::vector<int32_t> EncodeTwoOfFiveMatrix(const std::string& text, float ratio, const char* numeric_error) {
  if (text.empty()) throw std::runtime_error("Empty string");
  for (char c : text) {
    if (c < '0' || c > '9') throw std::runtime_error(numeric_error);
  }
  const int32_t wide = TwoOfFiveWideWidth(ratio);

  std::vector<int32_t> widths = {wide, kNarrow, wide, kNarrow};
  widths.reserve(4 + text.size() * 6 + 3);
  for (size_t i = 0; i < text.size(); ++i) {
    if (i > 0) widths.push_back(kNarrow);
    const uint8_t mask = kDigitMasks[static_cast<size_t>(text[i] - '0')];
    for (int e = 0; e < 5; ++e) {
      // Deliberate: only bars (even elements) become wide; the mask bits of the spaces
      // are ignored, so digit 5 is five narrow elements. Kept for the same reason.
      const bool wide_bar = e % 2 == 0 && ((mask >> (4 - e)) & 1U) != 0;
      widths.push_back(wide_bar ? wide : kNarrow);
    }
  }
  // The final wide space paints nothing but counts in the symbol's width.
  widths.insert(widths.end(), {kNarrow, wide, wide});
  return widths;
}

std::vector<int32_t> EncodeMatrix2of5(const std::string& text, float ratio) {
  return EncodeTwoOfFiveMatrix(text, ratio, kMatrix2of5NumericError);
}

std::vector<int32_t> EncodeStandardMatrix2of5(const std::string& text, float ratio) {
  if (text.empty()) throw std::runtime_error("Empty string");
  for (char c : text) {
    if (c < '0' || c > '9') throw std::runtime_error(kMatrix2of5NumericError);
  }
  const int32_t wide = TwoOfFiveWideWidth(ratio);
  // Start: a four-module bar and narrow elements, then the narrow gap.
  std::vector<int32_t> widths = {4, kNarrow, kNarrow, kNarrow, kNarrow, kNarrow};
  widths.reserve(6 + text.size() * 6 + 5);
  for (char c : text) {
    // Bar, space, bar, space, bar weighing 1, 2, 4, 7 and 0: the two wide elements add up
    // to the digit (0 as 11), a single weight pairs with the 0 element.
    const int digit = c == '0' ? 11 : c - '0';
    static constexpr int kWeights[5] = {1, 2, 4, 7, 0};
    int first = 0;
    int second = 0;
    for (int i = 0; i < 5; ++i) {
      for (int j = i + 1; j < 5; ++j) {
        if (kWeights[i] + kWeights[j] == digit) {
          first = i;
          second = j;
        }
      }
    }
    for (int e = 0; e < 5; ++e) widths.push_back(e == first || e == second ? wide : kNarrow);
    widths.push_back(kNarrow);
  }
  widths.insert(widths.end(), {4, kNarrow, kNarrow, kNarrow, kNarrow});  // stop
  return widths;
}

}  // namespace internal

TwoOfFiveMatrixBarcode::TwoOfFiveMatrixBarcode(std::string output_format, const char* numeric_error,
                                               const char* log_prefix)
    : BarcodeBase1D(std::move(output_format)), numeric_error_(numeric_error), log_prefix_(log_prefix) {}

TwoOfFiveMatrixBarcode::TwoOfFiveMatrixBarcode(SDL_Renderer* canvas, const char* numeric_error, const char* log_prefix)
    : BarcodeBase1D(canvas), numeric_error_(numeric_error), log_prefix_(log_prefix) {}

std::vector<int32_t> TwoOfFiveMatrixBarcode::EncodeWidths(const std::string& text) const {
  // Only Matrix 2 of 5 has a published form to switch to.
  if (standard_encoding && numeric_error_ == internal::kMatrix2of5NumericError) {
    return internal::EncodeStandardMatrix2of5(text, ratio_);
  }
  return internal::EncodeTwoOfFiveMatrix(text, ratio_, numeric_error_);
}

BarcodeBase1D::LinearSymbol TwoOfFiveMatrixBarcode::Encode(const std::string& text) const {
  LinearSymbol symbol{EncodeWidths(text), text};
  const bool matrix = numeric_error_ == internal::kMatrix2of5NumericError;
  if (!standard_encoding || !matrix) {
    Warn(std::string(log_prefix_) +
         (matrix ? "Compatibility patterns: readers decode other digits or nothing (the standard encoding writes "
                   "the published ones)"
                 : "The library's own 2-of-5 patterns: they are no published table, so readers decode other digits "
                   "or nothing"));
  }
  return symbol;
}

bool TwoOfFiveMatrixBarcode::Draw(const std::string& text, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(text, x, y, width, height);
  return DrawLinearRaster(text, x, y, width, height, log_prefix_, [this](const std::string& t) { return Encode(t); });
}

bool TwoOfFiveMatrixBarcode::DrawSvg(const std::string& text, int x, int y, int width, int height) {
  return DrawLinearSvg(text, x, y, width, height, log_prefix_, [this](const std::string& t) { return Encode(t); });
}

Matrix2of5::Matrix2of5(std::string output_format)
    : TwoOfFiveMatrixBarcode(std::move(output_format), internal::kMatrix2of5NumericError, "[Matrix2of5] ") {}

Matrix2of5::Matrix2of5(SDL_Renderer* canvas)
    : TwoOfFiveMatrixBarcode(canvas, internal::kMatrix2of5NumericError, "[Matrix2of5] ") {}

}  // namespace barcode_orv
