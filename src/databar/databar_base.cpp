#include "databar/databar_base.h"

#include <algorithm>
#include <cmath>
#include <exception>

#include "core/log.h"
#include "core/saturate.h"
#include "linear/linear_layout.h"

namespace barcode_orv {
namespace {

int RowModules(const std::string& pattern) {
  int modules = 0;
  for (char c : pattern) modules += c - '0';
  return modules;
}

// The gap between stacked rows and their text grows more slowly than the linear one.
int StackedTextOffset(int height, float gap_scale) {
  const double factor = height < 50 ? 0.02 : height <= 200 ? 0.03 : 0.04;
  return std::max(TruncateToInt(height * factor * gap_scale), 1);
}

}  // namespace

std::vector<SDL_FRect> DataBarBase::PlaceRows(const StackedSymbol& symbol, int x, int y, int width, int height,
                                              int* symbol_width) const {
  const std::vector<std::string>& patterns = symbol.rows.patterns;
  int widest = 0;
  for (const std::string& pattern : patterns) widest = std::max(widest, RowModules(pattern));
  const float unit = ModuleWidthFor(width, widest, fit_width);
  *symbol_width = TruncateToInt(static_cast<double>(unit * static_cast<float>(widest)));

  const int64_t text_band = int64_t{TextHeightFor(height, text_font_scale)} + StackedTextOffset(height, text_gap);
  const int available = std::max(ClampToInt(int64_t{height} - text_band), 10);
  const std::vector<int32_t>& modules = symbol.rows.heights;
  std::vector<float> row_height(modules.size());
  if (symbol.rule == RowHeightRule::kShareOfBox) {
    int total = 0;
    for (int32_t h : modules) total += std::max(h, 0);
    const int per_part = total > 0 ? available / total : 0;  // whole pixels a part, as the rows are laid out
    for (size_t r = 0; r < modules.size(); ++r) row_height[r] = static_cast<float>(per_part * modules[r]);
  } else {
    float fixed = 0.0F;
    int flexible = 0;
    for (int32_t h : modules) {
      if (h < 0) {
        ++flexible;
      } else {
        fixed += unit * static_cast<float>(h);
      }
    }
    const float share = flexible > 0 ? (static_cast<float>(available) - fixed) / static_cast<float>(flexible) : 0.0F;
    for (size_t r = 0; r < modules.size(); ++r) {
      row_height[r] = modules[r] < 0 ? share : unit * static_cast<float>(modules[r]);
    }
  }

  std::vector<SDL_FRect> bars;
  auto top = static_cast<float>(y);
  for (size_t r = 0; r < patterns.size() && r < row_height.size(); ++r) {
    auto cursor = static_cast<float>(x);
    for (size_t i = 0; i < patterns[r].size(); ++i) {
      const int digit = patterns[r][i] - '0';
      if (digit == 0) continue;
      const float w = unit * static_cast<float>(digit);
      if (i % 2 == 0) {
        const float bar = std::max(w + static_cast<float>(px_adjust_black), 1.0F);
        bars.push_back({cursor, top, bar, row_height[r]});
        cursor += bar;
      } else {
        cursor += std::max(w + static_cast<float>(px_adjust_white), 1.0F);
      }
    }
    top += row_height[r];
  }
  return bars;
}

bool DataBarBase::DrawStackedRows(const std::string& text, int x, int y, int width, int height, bool svg,
                                  const char* log_prefix, const StackedEncoder& encode) {
  StackedSymbol symbol;
  // At an X-dimension the symbol is encoded first: its size gives the canvas's.
  const bool sized_by_symbol = WantsNaturalBox();
  if (sized_by_symbol && (!EncodeReporting(text, log_prefix, encode, &symbol) ||
                          !TakeStackedNaturalBox(symbol, &width, &height, log_prefix))) {
    return false;
  }
  if (!svg) {
    if (!BarcodeBase::Draw(text, x, y, width, height) || canvas_renderer() == nullptr) return false;
    if (!IsRasterOutput()) ClearCanvas(back_color);
  }
  if (!sized_by_symbol && !EncodeReporting(text, log_prefix, encode, &symbol)) return false;
  int widest = 0;
  for (const std::string& pattern : symbol.rows.patterns) widest = std::max(widest, RowModules(pattern));
  // Modules under a pixel wide print as a grey blur: the standard profile never draws them.
  if (standard_profile && ModuleWidthFor(width, widest, fit_width) < 1.0F) {
    log::Error(std::string(log_prefix) + "Box too small: " + std::to_string(widest) + " px needed");
    return false;
  }
  WarnUnlessInside(symbol, widest, x, y, width, height, log_prefix);
  return svg ? DrawStackedSvg(symbol, x, y, width, height) : DrawStackedRaster(symbol, x, y, width, height);
}

bool DataBarBase::TakeStackedNaturalBox(const StackedSymbol& symbol, int* width, int* height, const char* log_prefix) {
  int widest = 0;
  for (const std::string& pattern : symbol.rows.patterns) widest = std::max(widest, RowModules(pattern));
  int64_t row_modules = 0;
  for (int32_t h : symbol.rows.heights) row_modules += h > 0 ? h : static_cast<int64_t>(NaturalBarModules());
  const int64_t module = NaturalModulePixels();
  const int64_t rows = row_modules * module;
  // The text band grows with the box: the lowest box that leaves the rows their height.
  int64_t natural_height = rows;
  auto left_for_rows = [this](int64_t box) {
    const int h = ClampToInt(box);
    return int64_t{h} - TextHeightFor(h, text_font_scale) - StackedTextOffset(h, text_gap);
  };
  while (left_for_rows(natural_height) < rows) {
    if (++natural_height > kMaxNaturalHeightFactor * rows + kMaxNaturalHeightFactor) {
      log::Error(log_prefix + std::string(kNoRoomForBars));
      return false;
    }
  }
  return TakeNaturalBox(widest * module, natural_height, width, height, log_prefix);
}

void DataBarBase::WarnUnlessInside(const StackedSymbol& symbol, int widest, int x, int y, int width, int height,
                                   const char* log_prefix) const {
  int symbol_width = 0;
  const std::vector<SDL_FRect> bars = PlaceRows(symbol, x, y, width, height, &symbol_width);
  const double right = static_cast<double>(x) + width + 0.5;
  const bool too_wide = std::any_of(bars.begin(), bars.end(), [right](const SDL_FRect& bar) {
    return static_cast<double>(bar.x) + static_cast<double>(bar.w) > right;
  });
  // The rows keep at least 10 pixels, and then reach into the text line below them.
  const int64_t text_band =
      show_text ? int64_t{TextHeightFor(height, text_font_scale)} + StackedTextOffset(height, text_gap) : 0;
  const double floor = static_cast<double>(y) + height - static_cast<double>(text_band) + 0.5;
  const bool flat = std::any_of(bars.begin(), bars.end(), [floor](const SDL_FRect& bar) {
    return bar.h < 1.0F || static_cast<double>(bar.y) + static_cast<double>(bar.h) > floor;
  });
  if (too_wide) {
    Warn(log_prefix + ("Box too small: " + std::to_string(widest) + " px needed"));
  } else if (flat) {
    Warn(log_prefix + std::string("Box too small: no height is left for the rows above the text"));
  } else if (show_text && !symbol.rows.patterns.empty()) {
    WarnUnlessClassicLineInside(symbol.display_text, x, y, symbol_width, width, height, log_prefix);
  }
}

bool DataBarBase::DrawStackedRaster(const StackedSymbol& symbol, int x, int y, int width, int height) {
  int symbol_width = 0;
  for (const SDL_FRect& bar : PlaceRows(symbol, x, y, width, height, &symbol_width)) {
    FillRectF(bar.x, bar.y, bar.w, bar.h, fore_color);
  }
  if (!symbol.rows.patterns.empty()) RenderText(symbol.display_text, x, y, symbol_width, height);
  last_drawn_width = symbol_width;
  SDL_RenderPresent(canvas_renderer());
  return true;
}

bool DataBarBase::DrawStackedSvg(const StackedSymbol& symbol, int x, int y, int width, int height) {
  SvgBegin(width, height);
  SvgRect(0, 0, static_cast<float>(width), static_cast<float>(height), back_color);
  int symbol_width = 0;
  for (const SDL_FRect& bar : PlaceRows(symbol, x, y, width, height, &symbol_width)) {
    SvgRect(bar.x, bar.y, bar.w, bar.h, fore_color);
  }
  if (!symbol.rows.patterns.empty()) RenderTextSvg(symbol.display_text, x, y, symbol_width, height);
  last_drawn_width = symbol_width;
  SvgEnd();
  return true;
}

}  // namespace barcode_orv
