// NEC 2 of 5: the 2-of-5 matrix symbol of Matrix 2 of 5 under its own name.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "linear/barcode_base_1d.h"

namespace barcode_orv {

namespace internal {

std::vector<int32_t> EncodeNEC2of5(const std::string& text, float ratio);

}  // namespace internal

class NEC2of5 : public BarcodeBase1D {
 public:
  explicit NEC2of5(std::string output_format);
  explicit NEC2of5(SDL_Renderer* canvas);  // draws onto the caller's renderer

  void SetRatio(float ratio) { ratio_ = ratio; }
  float GetRatio() const { return ratio_; }

  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  bool DrawSvg(const std::string& text, int x, int y, int width, int height) override;
  std::vector<int32_t> EncodeNEC2of5(const std::string& text) const;

 private:
  LinearSymbol Encode(const std::string& text) const;

  float ratio_ = 1.0F;
};

}  // namespace barcode_orv
