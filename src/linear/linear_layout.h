// Pure layout rules of linear symbols: text size, bar height, module width, bar
// rectangles and the positions of evenly spaced text characters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
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
  std::vector<float> edges;   // left edge of every element, then the right edge of the last
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

// ---- Symbols beyond one plain row (EAN/UPC guards and add-ons, two text lines) ----

// How far a bar reaches down; every symbology but the EAN/UPC family uses kNormal only.
enum class BarReach : uint8_t {
  kNormal,  // from the top, bar_height tall
  kGuard,   // on down into the text band, between the digit groups (extended guard bars)
  kAddOn,   // from below the add-on's digits down to where the guard bars end
};

// Where a run of text sits: under the bars (bottom of the box), over them (top of the box,
// above add-on bars), or on one of two lines under the bars.
enum class TextRow : uint8_t { kBelow, kAbove, kFirstOfTwo, kSecondOfTwo };

// A run of human-readable text placed at given modules. Module positions count from the
// symbol's left edge, empty lead modules included.
struct TextRun {
  std::string text;
  TextRow row = TextRow::kBelow;
  // Pitched (pitch > 0): character i is centred on module first_center + i * pitch.
  float first_center = 0.0F;
  float pitch = 0.0F;
  // Spread (pitch == 0): over the modules [span_begin, span_end) by the rules of the
  // classic line, with the pitch a text of pitch_chars characters would get
  // (0: the run's own length), so that two lines can share one pitch.
  float span_begin = 0.0F;
  float span_end = 0.0F;
  size_t pitch_chars = 0;
};

// Vertical geometry of a linear symbol in a box `height` tall, relative to its top. The
// text is drawn at `font_cap` pixels when that is smaller than the reserved height.
struct RowGeometry {
  int text_height = 0;        // reserved text height T
  int font_size = 0;          // the size the text is drawn at: T, or the cap when smaller
  int gap = 0;                // gap G between bars and text
  float bar_height = 0.0F;    // BarReach::kNormal, the same as InitLinerBarcode's
  float guard_height = 0.0F;  // BarReach::kGuard: halfway down the digits under the bars
  float add_on_top = 0.0F;    // BarReach::kAddOn, from under the digits above them
  float add_on_bottom = 0.0F;
  int first_line_top = 0;  // TextRow::kFirstOfTwo and kSecondOfTwo
  int second_line_top = 0;
};
RowGeometry LinearRows(int height, bool show_text, float font_scale, float gap_scale, int text_lines, bool has_guards,
                       bool has_text_above, int font_cap = 0);

// Pixel x of a module position for bars laid out by LayOutBars from x + lead * unit:
// inside an element it is interpolated over the element's adjusted width; before the
// first bar and after the last element it advances by `unit` a module.
float ModuleToPixel(const std::vector<int32_t>& widths, const BarLayout& layout, float x, float unit,
                    int32_t lead_modules, float module);

}  // namespace barcode_orv
