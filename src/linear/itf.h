// Interleaved 2 of 5: digit pairs, the first in the bars and the second in the spaces.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "linear/barcode_base_1d.h"

namespace barcode_orv {

namespace internal {

// Wide element width of the 2-of-5 symbologies for a wide-to-narrow `ratio`: 3 modules
// when the integer part of the ratio is odd, 2 when it is even.
int32_t TwoOfFiveWideWidth(float ratio);

// Element widths (bar first): start, digit pairs, stop. An odd count of digits is
// padded with a leading zero; no check digit is added.
std::vector<int32_t> EncodeITF(const std::string& text, float ratio);

}  // namespace internal

class ITF : public BarcodeBase1D {
 public:
  explicit ITF(std::string output_format);
  explicit ITF(SDL_Renderer* canvas);  // draws onto the caller's renderer

  void SetRatio(float ratio) { ratio_ = ratio; }
  float GetRatio() const { return ratio_; }
  // The ITF-14 frame: bearer bars kBearerModules thick around the bars and their quiet
  // zones, which it then always has.
  void SetBearerBars(bool on) { bearer_bars_ = on; }
  bool GetBearerBars() const { return bearer_bars_; }
  static constexpr int32_t kBearerModules = 5;

  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  bool DrawSvg(const std::string& text, int x, int y, int width, int height) override;
  std::vector<int32_t> EncodeITF(const std::string& text) const;

 private:
  LinearSymbol Encode(const std::string& text) const;

  float NaturalBarModules() const override;

  float ratio_ = 1.0F;
  bool bearer_bars_ = false;
};

}  // namespace barcode_orv
