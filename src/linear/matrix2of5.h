// Matrix 2 of 5 and the 2-of-5 matrix encoder it shares with NEC 2 of 5.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "linear/barcode_base_1d.h"

namespace barcode_orv {

namespace internal {

// Element widths (bar first) of the 2-of-5 matrix symbol: start, the digits with a
// narrow space between them, stop. A non-digit throws `numeric_error`.
std::vector<int32_t> EncodeTwoOfFiveMatrix(const std::string& text, float ratio, const char* numeric_error);
std::vector<int32_t> EncodeMatrix2of5(const std::string& text, float ratio);
// Matrix 2 of 5 as published (the 2-of-5 weights 1, 2, 4, 7, 0 over bars and spaces).
std::vector<int32_t> EncodeStandardMatrix2of5(const std::string& text, float ratio);

inline constexpr const char* kMatrix2of5NumericError = "Matrix 2 of 5 barcode requires numeric digits only";

}  // namespace internal

// Matrix 2 of 5 and NEC 2 of 5 are one symbol under two names: the same encoder and
// drawing, each with its own error message and log prefix.
class TwoOfFiveMatrixBarcode : public BarcodeBase1D {
 public:
  void SetRatio(float ratio) { ratio_ = ratio; }
  float GetRatio() const { return ratio_; }

  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  bool DrawSvg(const std::string& text, int x, int y, int width, int height) override;

 protected:
  TwoOfFiveMatrixBarcode(std::string output_format, const char* numeric_error, const char* log_prefix);
  TwoOfFiveMatrixBarcode(SDL_Renderer* canvas, const char* numeric_error, const char* log_prefix);
  std::vector<int32_t> EncodeWidths(const std::string& text) const;

 private:
  LinearSymbol Encode(const std::string& text) const;

  float ratio_ = 1.0F;
  const char* numeric_error_;
  const char* log_prefix_;
};

class Matrix2of5 : public TwoOfFiveMatrixBarcode {
 public:
  explicit Matrix2of5(std::string output_format);
  explicit Matrix2of5(SDL_Renderer* canvas);  // draws onto the caller's renderer

  std::vector<int32_t> EncodeMatrix2of5(const std::string& text) const { return EncodeWidths(text); }
};

}  // namespace barcode_orv
