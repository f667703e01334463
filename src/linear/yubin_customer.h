// Japan Post customer barcode: a four-state postal barcode of start code, 20
// character positions, a modulo-19 check character and stop code, 67 bars in all, whose
// whole geometry follows from the bar height. No text line.
#pragma once

#include <string>

#include "linear/barcode_base_1d.h"

namespace barcode_orv {

namespace internal {

// The symbol's bars, start to stop, one character each ('1' long, '2' upper, '3' lower,
// '4' timing), and the check value 0..18.
struct YubinBars {
  std::string bars;
  int check = 0;
  // Why the bars do not carry the whole text ("" when they do): a character outside the
  // symbol's set, or an address beyond its 20 positions.
  std::string lost;
};
YubinBars EncodeYubin(const std::string& data);

}  // namespace internal

class YubinCustomer : public BarcodeBase1D {
 public:
  explicit YubinCustomer(std::string output_format);
  explicit YubinCustomer(SDL_Renderer* canvas);  // draws onto the caller's renderer

  // Bars of a character code (0..36 in "0123456789-A..Z"); letters take two positions.
  std::string GetPattern(int code) const;
  // Bars of a check value (0..18).
  std::string GetCheckPattern(int value) const;
  // Check value of one 3-bar group, or -1.
  int PatternToCheckValue(const std::string& pattern) const;
  // One bar at x, its shape by the bar character, in the current draw's geometry.
  void WriteBar(const std::string& bar, float x);

  // The symbol with bars `h` pixels tall on a canvas trunc(67 h/3 + h/6 + 1) x h.
  bool Draw(const std::string& data, int x, int y, int h);
  // The width is ignored: the height is the bar height.
  bool Draw(const std::string& data, int x, int y, int width, int height) override;
  bool DrawSvg(const std::string& data, int x, int y, int width, int height) override;

 private:
  // At an X-dimension (the width of a bar) the bars are six modules tall; the box the
  // symbol then takes, as TakeNaturalBox.
  bool TakeYubinNaturalBox(const std::string& data, int* width, int* height);
  // False (with the reason recorded) for an empty text or a height under one pixel.
  bool Drawable(const std::string& data, int height) const;
  int QuietZoneWidth(int h) const;
  int CanvasWidth(int h) const;
  void WriteBars(const std::string& bars, float x);
  // The raster bars when they are wider than their pitch, merged into spans.
  void WriteOverlappingBars(const std::string& bars, float x, float pitch, float width);

  float bar_full_height_ = 0.0F;  // H
  float bar_top_ = 0.0F;          // y
  bool writing_svg_ = false;
};

}  // namespace barcode_orv
