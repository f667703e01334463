// The module-matrix painting shared by the two-dimensional symbologies.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "core/log.h"
#include "core/saturate.h"
#include "twod/barcode_base_2d.h"

namespace barcode_orv {
namespace {

// Module size along one axis of the raster box: whole pixels unless fit_width asks for
// the exact fraction that fills the box.
float RasterModuleSize(int extent, int modules, bool fit) {
  if (modules < 1) return 1.0f;
  if (fit) return static_cast<float>(extent) / static_cast<float>(modules);
  return static_cast<float>(std::max(extent / modules, 1));
}

// Pixel edges 0..modules of one axis, each rounded to the nearest pixel independently,
// so fractional modules come out one pixel wider or narrower without drifting.
std::vector<int> RoundedEdges(int origin, float module_size, int modules, int offset_modules = 0) {
  std::vector<int> edges(static_cast<size_t>(modules) + 1);
  for (int i = 0; i <= modules; ++i) {
    edges[i] = origin + static_cast<int>(std::lround(module_size * static_cast<float>(i + offset_modules)));
  }
  return edges;
}

// Width of a module between two edges after the dark-module adjustment, computed wide
// so that any adjustment a caller passes stays well defined.
int AdjustedExtent(int from, int to, int adjust) {
  const int64_t extent = int64_t{to} - from + adjust;
  return static_cast<int>(std::clamp<int64_t>(extent, INT32_MIN, INT32_MAX));
}

// Exact SVG edges: the box divided evenly, or `module_size` steps for square modules.
std::vector<float> FractionEdges(int extent, int modules) {
  std::vector<float> edges(static_cast<size_t>(modules) + 1);
  for (int i = 0; i <= modules; ++i) {
    edges[i] = static_cast<float>(extent) * static_cast<float>(i) / static_cast<float>(modules);
  }
  return edges;
}

std::vector<float> SteppedEdges(float module_size, int modules) {
  std::vector<float> edges(static_cast<size_t>(modules) + 1);
  for (int i = 0; i <= modules; ++i) edges[i] = module_size * static_cast<float>(i);
  return edges;
}

}  // namespace

SDL_Renderer* BarcodeBase2D::PrepareCanvas(int x, int y, int width, int height) {
  if (GetOutputFormat().empty()) {
    log::Reason("エラー: 描画先がありません (キャンバスも出力形式も指定されていません)。");
    return nullptr;
  }
  // The root class prepares the canvas; the 2D text overload must not run here.
  if (!BarcodeBase::Draw("dummy", x, y, width, height)) {  // NOLINT(bugprone-parent-virtual-call)
    log::Progress("エラー: BarcodeBase::Draw が false を返しました (サーフェス準備失敗の可能性)。");
    return nullptr;
  }
  if (canvas_surface() == nullptr) {
    log::Reason("エラー: 描画サーフェスを準備できませんでした。");
    return nullptr;
  }
  if (canvas_renderer() == nullptr) {
    log::Progress(std::string("エラー: サーフェス用ソフトウェアレンダラーの作成に失敗しました: ") + SDL_GetError());
    return nullptr;
  }
  return canvas_renderer();
}

bool BarcodeBase2D::BeginRaster(int& x, int& y, int& width, int& height, bool& on_caller_canvas) {
  // A caller's renderer takes the symbol at the box as given.
  on_caller_canvas = external_canvas() != nullptr && !IsRasterOutput();
  if (on_caller_canvas) {
    log::Progress("描画先: 呼び出し元のレンダラー");
    return true;
  }
  if (PrepareCanvas(x, y, width, height) == nullptr) return false;
  // The canvas is exactly the requested size, so the box becomes the whole canvas.
  const SDL_Surface* surface = canvas_surface();
  x = 0;
  y = 0;
  width = surface->w;
  height = surface->h;
  log::Progress("描画先: BarcodeBase が用意したサーフェス");
  log::Progress("サーフェスサイズ: " + std::to_string(width) + "x" + std::to_string(height));
  return true;
}

bool BarcodeBase2D::PaintRasterModules(const ModuleView& modules, int x, int y, int width, int height,
                                       ModuleAspect aspect) {
  PixelGrid grid;
  if (!LayOutPixels(modules, x, y, width, height, aspect, &grid)) return false;
  const std::vector<int>& col_edges = grid.col_edges;
  const std::vector<int>& unit_edges = grid.unit_edges;
  // Modules widened past their neighbours overlap many times over: painted one by one
  // they would cost the canvas area for every dark module.
  if (px_adjust_black > 0 && static_cast<float>(px_adjust_black) > grid.smaller_module && DrawsOnOwnCanvas()) {
    PaintWidenedModules(modules, col_edges, unit_edges, y + height);  // the own canvas is the whole box
    return true;
  }
  std::vector<Span> spans;
  for (int row = 0; row < modules.rows; ++row) {
    const int top = unit_edges[static_cast<size_t>(row) * modules.row_height];
    const int bottom = unit_edges[static_cast<size_t>(row + 1) * modules.row_height];
    const int painted_height = AdjustedExtent(top, bottom, px_adjust_black);
    if (painted_height < 1) continue;
    RowSpans(modules, row, col_edges, &spans);
    // Widened modules reach into the next row's band, which a copied row would erase.
    if (px_adjust_black <= 0) {
      FillSpans(spans, top, painted_height, fore_color);
    } else {
      for (const Span& span : spans) FillRect(span.x, top, span.width, painted_height, fore_color);
    }
  }
  return true;
}

void BarcodeBase2D::RowSpans(const ModuleView& modules, int row, const std::vector<int>& col_edges,
                             std::vector<Span>* spans) const {
  spans->clear();
  for (int col = 0; col < modules.cols; ++col) {
    if (!modules.dark(col, row)) continue;
    int end = col + 1;
    if (modules.merge_runs) {
      while (end < modules.cols && modules.dark(end, row)) ++end;
    }
    const int painted_width = AdjustedExtent(col_edges[col], col_edges[end], px_adjust_black);
    if (painted_width >= 1) spans->push_back(Span{col_edges[col], painted_width});
    col = end - 1;
  }
}

bool BarcodeBase2D::LayOutPixels(const ModuleView& modules, int x, int y, int width, int height, ModuleAspect aspect,
                                 PixelGrid* grid) {
  // With the quiet-zone option the symbol and its zones fill the box together, centred.
  const int quiet = quiet_zone ? QuietZoneModules() : 0;
  const int total_cols = modules.cols + 2 * quiet;
  const int total_rows = modules.module_rows() + 2 * quiet;
  if (quiet_zone && !fit_width && (width < total_cols || height < total_rows)) {
    log::Error(std::string(LogPrefix()) + "Box too small: " + std::to_string(total_cols) + "x" +
               std::to_string(total_rows) + " px needed");
    return false;
  }
  // A fresh canvas is background already; a leftover one (unknown format) or a caller's
  // renderer is not.
  if (!IsSvgOutput() && (!IsRasterOutput() || canvas_renderer() == external_canvas())) {
    FillRect(x, y, width, height, back_color);
  }
  float module_width = RasterModuleSize(width, total_cols, fit_width);
  float module_height = RasterModuleSize(height, total_rows, fit_width);
  if (aspect == ModuleAspect::kSquare) module_width = module_height = std::min(module_width, module_height);
  WarnAboutThinning(modules);
  WarnUnlessInside(module_width * static_cast<float>(total_cols), module_height * static_cast<float>(total_rows),
                   std::min(module_width, module_height), width, height, total_cols, total_rows);
  if (quiet_zone) {
    x += static_cast<int>(std::floor((static_cast<float>(width) - module_width * static_cast<float>(total_cols)) / 2));
    y +=
        static_cast<int>(std::floor((static_cast<float>(height) - module_height * static_cast<float>(total_rows)) / 2));
  }

  grid->col_edges = RoundedEdges(x, module_width, modules.cols, quiet);
  grid->unit_edges = RoundedEdges(y, module_height, modules.module_rows(), quiet);
  grid->smaller_module = std::min(module_width, module_height);
  return true;
}

void BarcodeBase2D::PaintWidenedModules(const ModuleView& modules, const std::vector<int>& col_edges,
                                        const std::vector<int>& unit_edges, int canvas_height) {
  // The same pixels as one rectangle a dark module, [left, right + adjust) x [top, bottom
  // + adjust), painted pixel row by pixel row: the module rows whose rectangles reach a
  // pixel row form a window that only moves down, and a column is dark in that row when
  // any module of the window is dark in it. Fills replace pixels, so overlaps cost nothing.
  const int64_t adjust = px_adjust_black;
  auto row_top = [&](int row) { return int64_t{unit_edges[static_cast<size_t>(row) * modules.row_height]}; };
  auto row_end = [&](int row) {
    return int64_t{unit_edges[static_cast<size_t>(row + 1) * modules.row_height]} + adjust;
  };
  std::vector<int> dark_in_window(static_cast<size_t>(modules.cols), 0);
  auto count_row = [&](int row, int step) {
    for (int col = 0; col < modules.cols; ++col) {
      if (modules.dark(col, row)) dark_in_window[static_cast<size_t>(col)] += step;
    }
  };
  std::vector<Span> spans;
  int first = 0;  // the window: module rows first .. last - 1
  int last = 0;
  int64_t y = std::max<int64_t>(row_top(0), 0);
  const int64_t end = std::min<int64_t>(row_end(modules.rows - 1), canvas_height);
  while (y < end) {
    while (last < modules.rows && row_top(last) <= y) count_row(last++, 1);
    while (first < last && row_end(first) <= y) count_row(first++, -1);
    // The window stays the same until a row enters or one leaves.
    int64_t next = end;
    if (last < modules.rows) next = std::min(next, row_top(last));
    if (first < last) next = std::min(next, row_end(first));
    spans.clear();
    for (int col = 0; col < modules.cols; ++col) {
      if (dark_in_window[static_cast<size_t>(col)] == 0) continue;
      const int64_t from = col_edges[static_cast<size_t>(col)];
      const int64_t to = int64_t{col_edges[static_cast<size_t>(col) + 1]} + adjust;
      if (!spans.empty() && from <= int64_t{spans.back().x} + spans.back().width) {
        spans.back().width = ClampToInt(std::max(int64_t{spans.back().x} + spans.back().width, to) - spans.back().x);
      } else {
        spans.push_back(Span{static_cast<int>(from), ClampToInt(to - from)});
      }
    }
    FillSpans(spans, static_cast<int>(y), ClampToInt(next - y), fore_color);
    y = next;
  }
}

bool BarcodeBase2D::TakeModulesNaturalBox(const ModuleView& modules, int* width, int* height) {
  if (modules.cols == 0 || modules.rows == 0) {
    log::Error(std::string(LogPrefix()) + "Empty payload: the symbol has no size");
    return false;
  }
  const int64_t quiet = quiet_zone ? QuietZoneModules() : 0;
  const int64_t module = NaturalModulePixels();
  return TakeNaturalBox((modules.cols + 2 * quiet) * module, (modules.module_rows() + 2 * quiet) * module, width,
                        height, LogPrefix());
}

void BarcodeBase2D::EndRaster(bool on_caller_canvas) {
  if (on_caller_canvas) SDL_RenderPresent(canvas_renderer());
}

void BarcodeBase2D::WarnAboutThinning(const ModuleView& modules) const {
  // Thinning each module on its own draws light lines through every run of dark modules.
  if (px_adjust_black < 0 && !modules.merge_runs) {
    Warn(std::string(LogPrefix()) + "A negative px_adjust_black splits runs of dark modules with light lines");
  }
}

void BarcodeBase2D::WarnUnlessInside(float symbol_width, float symbol_height, float module_size, int width, int height,
                                     int total_cols, int total_rows) const {
  constexpr float kSlack = 0.01f;  // float rounding of an exact fit
  const bool clipped =
      symbol_width > static_cast<float>(width) + kSlack || symbol_height > static_cast<float>(height) + kSlack;
  // Modules under a pixel print as a grey blur: the standard profile never draws them.
  if (clipped || (standard_profile && module_size < 1.0f - kSlack)) {
    Warn(std::string(LogPrefix()) + "Box too small: " + std::to_string(total_cols) + "x" + std::to_string(total_rows) +
         " px needed");
  }
}

bool BarcodeBase2D::PaintSeamlessSvg(const ModuleView& modules, int width, int height, ModuleAspect aspect) {
  PixelGrid grid;
  if (!LayOutPixels(modules, 0, 0, width, height, aspect, &grid)) return false;
  SvgBegin(width, height);
  SvgPath("M0 0h" + std::to_string(width) + "v" + std::to_string(height) + "h-" + std::to_string(width) + "z",
          back_color);
  std::string path;
  std::vector<Span> spans;
  for (int row = 0; row < modules.rows; ++row) {
    const int top = grid.unit_edges[static_cast<size_t>(row) * modules.row_height];
    const int bottom = grid.unit_edges[static_cast<size_t>(row + 1) * modules.row_height];
    const int painted_height = AdjustedExtent(top, bottom, px_adjust_black);
    if (painted_height < 1) continue;
    RowSpans(modules, row, grid.col_edges, &spans);
    for (const Span& span : spans) {
      path += 'M' + std::to_string(span.x) + ' ' + std::to_string(top) + 'h' + std::to_string(span.width) + 'v' +
              std::to_string(painted_height) + "h-" + std::to_string(span.width) + 'z';
    }
  }
  if (!path.empty()) SvgPath(path, fore_color);
  SvgEnd();
  return true;
}

bool BarcodeBase2D::PaintSvgModules(const ModuleView& modules, int width, int height, ModuleAspect aspect) {
  // Whole-pixel edges, the raster's, leave no seams between modules in a browser.
  if (standard_profile || GetModulePixels() > 0) return PaintSeamlessSvg(modules, width, height, aspect);
  std::vector<float> col_edges;
  std::vector<float> unit_edges;
  if (quiet_zone) {
    // Square modules of the smaller fit of symbol plus zones, the whole centred.
    const int quiet = QuietZoneModules();
    const float fit_w = static_cast<float>(width) / static_cast<float>(modules.cols + 2 * quiet);
    const float fit_h = static_cast<float>(height) / static_cast<float>(modules.module_rows() + 2 * quiet);
    const float module_w = aspect == ModuleAspect::kSquare ? std::min(fit_w, fit_h) : fit_w;
    const float module_h = aspect == ModuleAspect::kSquare ? module_w : fit_h;
    col_edges = SteppedEdges(module_w, modules.cols);
    unit_edges = SteppedEdges(module_h, modules.module_rows());
    const float left = (static_cast<float>(width) - module_w * static_cast<float>(modules.cols)) / 2.0f;
    const float top = (static_cast<float>(height) - module_h * static_cast<float>(modules.module_rows())) / 2.0f;
    for (float& edge : col_edges) edge += left;
    for (float& edge : unit_edges) edge += top;
  } else if (aspect == ModuleAspect::kSquare) {
    const float module_size = std::min(static_cast<float>(width) / static_cast<float>(modules.cols),
                                       static_cast<float>(height) / static_cast<float>(modules.module_rows()));
    col_edges = SteppedEdges(module_size, modules.cols);
    unit_edges = SteppedEdges(module_size, modules.module_rows());
  } else {
    col_edges = FractionEdges(width, modules.cols);
    unit_edges = FractionEdges(height, modules.module_rows());
  }
  WarnAboutThinning(modules);
  SvgBegin(width, height);
  SvgRect(0.0f, 0.0f, static_cast<float>(width), static_cast<float>(height), back_color);
  const auto adjust = static_cast<float>(px_adjust_black);
  for (int row = 0; row < modules.rows; ++row) {
    const float top = unit_edges[static_cast<size_t>(row) * modules.row_height];
    const float module_height = unit_edges[static_cast<size_t>(row + 1) * modules.row_height] - top;
    if (module_height <= 0.0f) continue;
    for (int col = 0; col < modules.cols; ++col) {
      if (!modules.dark(col, row)) continue;
      int end = col + 1;
      if (modules.merge_runs) {
        while (end < modules.cols && modules.dark(end, row)) ++end;
      }
      const float module_width = col_edges[end] - col_edges[col];
      if (module_width > 0.0f) SvgRect(col_edges[col], top, module_width + adjust, module_height + adjust, fore_color);
      col = end - 1;
    }
  }
  SvgEnd();
  return true;
}

}  // namespace barcode_orv
