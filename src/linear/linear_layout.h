// Pure layout rules of linear symbols: text size, bar height, module width, bar
// rectangles and the positions of evenly spaced text characters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace barcode_orv {

// Font size (and reserved text height) in pixels for a box `height` pixels tall.
int TextHeightFor(int height, float font_scale);
// Gap between bars and text in pixels.
int TextGapFor(int height, float gap_scale);
// Height of the bars for a box `height` tall with `text_lines` lines of text.
float BarHeightFor(int height, bool show_text, float font_scale, float gap_scale, int text_lines);

// A pixel coordinate computed in a wide type, clamped to +-2^24: beyond that it is off
// every canvas, and within it the renderer's own int and float arithmetic is exact.
int ClampToPixel(int64_t coordinate);

// Pixels per module: the exact fraction with fit_width, else a whole number >= 1.
float ModuleWidthFor(int box_width, int64_t total_modules, bool fit_width);

struct BarRect {
  float x;
  float width;
};

struct BarLayout {
  std::vector<BarRect> bars;  // dark elements only, left to right
  int drawn_width = 0;        // truncated width of all elements after adjustment
};

// Places the elements (bar first, alternating) from x at `unit` pixels a module, each
// at least 1 pixel wide after the black/white adjustment.
BarLayout LayOutBars(const std::vector<int32_t>& widths, float x, float unit, int adjust_black, int adjust_white);

// Horizontal placement of the human-readable characters.
struct TextSpacing {
  int font_size = 0;
  int pitch = 0;         // distance between character centres
  int first_center = 0;  // centre of character 0, relative to the symbol's left edge
};
TextSpacing EvenTextSpacing(int width, int height, size_t char_count, float font_scale, float margin_scale);

}  // namespace barcode_orv
