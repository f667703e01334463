#include "linear/linear_layout.h"

#include <algorithm>
#include <cmath>

#include "core/saturate.h"

namespace barcode_orv {
namespace {

// Text height factor by box height: small boxes give the text a larger share.
double TextHeightFactor(int height) {
  if (height < 50) return 0.25;
  if (height <= 200) return 0.2;
  return 0.15;
}

double TextGapFactor(int height) {
  if (height < 50) return 0.03;
  if (height <= 200) return 0.05;
  return 0.07;
}

double TextMarginFactor(int width) {
  if (width < 100) return 0.03;
  if (width <= 400) return 0.05;
  return 0.07;
}

constexpr int kMinTextHeight = 8;
constexpr int kMinTextGap = 2;

}  // namespace

int ClampToPixel(int64_t coordinate) {
  constexpr int64_t kLimit = int64_t{1} << 24;
  return static_cast<int>(std::clamp(coordinate, -kLimit, kLimit));
}

int TextHeightFor(int height, float font_scale) {
  const int size = TruncateToInt(TextHeightFactor(height) * height * font_scale);
  return size < kMinTextHeight ? kMinTextHeight : size;
}

int TextGapFor(int height, float gap_scale) {
  const int gap = TruncateToInt(TextGapFactor(height) * height * gap_scale);
  return gap < kMinTextGap ? kMinTextGap : gap;
}

float BarHeightFor(int height, bool show_text, float font_scale, float gap_scale, int text_lines) {
  int64_t bars = height;
  if (show_text) {
    const int text_height = TextHeightFor(height, font_scale);
    const int gap = TextGapFor(height, gap_scale);
    // Two or more lines reserve (2 + lines) text heights: the layout of the two-line
    // convenience-store form relies on that extra room.
    const int text_factor = text_lines == 1 ? -1 : -2 - text_lines;
    bars = int64_t{height} - gap + int64_t{text_factor} * text_height;
  }
  const float bar_height = static_cast<float>(bars);
  return bar_height < 1.0F ? 1.0F : bar_height;
}

float ModuleWidthFor(int box_width, int64_t total_modules, bool fit_width) {
  if (total_modules <= 0) return 1.0F;
  float unit = static_cast<float>(box_width) / static_cast<float>(total_modules);
  if (!fit_width) {
    unit = std::floor(unit);
    if (unit < 1.0F) unit = 1.0F;
  }
  return unit;
}

BarLayout LayOutBars(const std::vector<int32_t>& widths, float x, float unit, int adjust_black, int adjust_white) {
  BarLayout layout;
  layout.bars.reserve(widths.size() / 2 + 1);
  layout.edges.reserve(widths.size() + 1);
  float cursor = x;
  for (size_t i = 0; i < widths.size(); ++i) {
    layout.edges.push_back(cursor);
    float width = unit * static_cast<float>(widths[i]);
    if (width < 1.0F) width = 1.0F;
    const bool is_bar = i % 2 == 0;
    width += static_cast<float>(is_bar ? adjust_black : adjust_white);
    if (width < 1.0F) width = 1.0F;
    if (is_bar) layout.bars.push_back(BarRect{cursor, width});
    cursor += width;
  }
  layout.edges.push_back(cursor);
  layout.drawn_width = TruncateToInt(static_cast<double>(cursor) - x);
  return layout;
}

TextSpacing EvenTextSpacing(int width, int height, size_t char_count, float font_scale, float margin_scale) {
  TextSpacing spacing;
  spacing.font_size = TextHeightFor(height, font_scale);
  const int64_t margin = TruncateToInt(TextMarginFactor(width) * width * margin_scale);
  const int64_t usable = int64_t{width} - 2 * margin;
  const auto n = static_cast<int64_t>(char_count);
  int64_t pitch = n >= 2 ? usable / (n - 1) : usable;
  if (pitch < spacing.font_size / 2) pitch = spacing.font_size / 2;
  spacing.pitch = ClampToInt(pitch);
  // The run is centred in whole pixels: the halving truncates toward zero on purpose.
  spacing.first_center = ClampToInt((int64_t{width} - (n - 1) * pitch) / 2);  // NOLINT(bugprone-integer-division)
  return spacing;
}

RowGeometry LinearRows(int height, bool show_text, float font_scale, float gap_scale, int text_lines, bool has_guards,
                       bool has_text_above, int font_cap) {
  RowGeometry rows;
  rows.bar_height = BarHeightFor(height, show_text, font_scale, gap_scale, text_lines);
  rows.guard_height = rows.bar_height;
  rows.add_on_bottom = rows.bar_height;
  if (!show_text) return rows;
  rows.text_height = TextHeightFor(height, font_scale);
  rows.font_size = font_cap > 0 ? std::min(rows.text_height, font_cap) : rows.text_height;
  rows.gap = TextGapFor(height, gap_scale);
  const auto box = static_cast<float>(height);
  if (has_guards) {
    // Guards end halfway down the digits, as on retail packs.
    const auto guard = static_cast<float>(int64_t{height} - rows.font_size + rows.font_size / 2);
    rows.guard_height = std::max(rows.bar_height, std::min(guard, box));
    rows.add_on_bottom = rows.guard_height;
  }
  if (has_text_above) {
    rows.add_on_top = std::min(static_cast<float>(int64_t{rows.font_size} + rows.gap), rows.add_on_bottom - 1.0F);
    rows.add_on_top = std::max(rows.add_on_top, 0.0F);
  }
  // Two lines share the room of four text heights: two thirds of a line's height above,
  // between and below them.
  const int64_t band_top = static_cast<int64_t>(rows.bar_height) + rows.gap;
  const int64_t third = int64_t{rows.text_height} * 2 / 3;
  rows.first_line_top = ClampToInt(band_top + third);
  rows.second_line_top = ClampToInt(band_top + third + rows.text_height + third);
  return rows;
}

float ModuleToPixel(const std::vector<int32_t>& widths, const BarLayout& layout, float x, float unit,
                    int32_t lead_modules, float module) {
  float start = static_cast<float>(lead_modules);
  if (module < start || layout.edges.size() != widths.size() + 1) return x + module * unit;
  for (size_t i = 0; i < widths.size(); ++i) {
    const auto span = static_cast<float>(widths[i]);
    if (module < start + span) {
      return layout.edges[i] + (module - start) / span * (layout.edges[i + 1] - layout.edges[i]);
    }
    start += span;
  }
  return layout.edges.back() + (module - start) * unit;
}

}  // namespace barcode_orv
