#include "linear/barcode_base_1d.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstdint>
#include <exception>
#include <stdexcept>

#include "core/log.h"
#include "core/saturate.h"
#include "linear/font_library.h"

namespace barcode_orv {
namespace {

constexpr int kSharedFontPoints = 18;
// Glyphs are never rasterised larger than this: a text far taller than any canvas
// would only cost memory (the SVG text keeps the computed size).
constexpr int kMaxRasterFontPoints = 2048;
// The smallest text size the layout gives (TextHeightFor's minimum).
constexpr int kMinRasterFontPoints = 8;
// Above this many pixels a text line is rendered only where it meets the canvas.
constexpr int64_t kMaxTextLinePixels = int64_t{1} << 20;

// Byte offset of the character `chars` characters into UTF-8 `text` (its size beyond).
size_t Utf8Offset(const std::string& text, size_t chars) {
  size_t at = 0;
  for (size_t seen = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if ((byte & 0xC0U) != 0x80U && seen++ == chars) return at;
  }
  return text.size();
}

// The path the shared font was opened from; the per-size fonts come from the same file.
std::string& SharedFontPath() {
  static std::string path;
  return path;
}

}  // namespace

TTF_Font* BarcodeBase1D::m_font = nullptr;

BarcodeBase1D::BarcodeBase1D(std::string output_format) : BarcodeBase(std::move(output_format)) { InitFont(); }

BarcodeBase1D::BarcodeBase1D(SDL_Renderer* canvas) : BarcodeBase(canvas) { InitFont(); }

void BarcodeBase1D::InitLinerBarcode(int /*width*/, int height, int text_lines) {
  bar_height = BarHeightFor(height, show_text, text_font_scale, text_gap, text_lines);
}

std::string BarcodeBase1D::GetFontPath() { return font::FindFontPath(GetModulePath()); }

bool BarcodeBase1D::InitFont() {
  const std::lock_guard<std::mutex> lock(font::Mutex());
  return OpenFontsLocked();
}

bool BarcodeBase1D::OpenFontsLocked() {
  if (font::TtfDroppedUnderUs()) AbandonFontsLocked();
  if (m_font != nullptr) return true;
  // Constructed after the mutex and the caches, so it is destroyed before them: at unload
  // or exit the fonts close while the library's own SDL_ttf reference still keeps
  // FreeType alive.
  font::CreateSizedFontCache();
  (void)SharedFontPath();
  static const FontTeardown teardown;
  if (font::TornDown()) return false;
  if (!font::HoldTtf()) {
    log::Error(std::string("SDL_ttfの初期化に失敗: ") + SDL_GetError());
    return false;
  }
  const std::string path = GetFontPath();
  if (path.empty()) {
    log::Error("適切なフォントが見つかりません。");
    return false;
  }
  m_font = TTF_OpenFont(path.c_str(), kSharedFontPoints);
  if (m_font == nullptr) {
    log::Error(std::string("フォントの読み込みに失敗: ") + SDL_GetError());
    return false;
  }
  SharedFontPath() = path;
  return true;
}

void BarcodeBase1D::DestroyFont() {
  const std::lock_guard<std::mutex> lock(font::Mutex());
  CloseFontsLocked();
}

void BarcodeBase1D::AbandonFontsLocked() {
  // Closing them would free the faces a second time: the few kilobytes of SDL_ttf's
  // own structures are left behind instead.
  log::Error("SDL_ttf was shut down under the library (one TTF_Quit too many); its fonts are reopened");
  font::AbandonSizedFonts();
  m_font = nullptr;
  SharedFontPath().clear();
  font::ForgetTtf();
}

void BarcodeBase1D::CloseFontsLocked() {
  if (font::TtfDroppedUnderUs()) AbandonFontsLocked();
  font::CloseSizedFonts();
  if (m_font != nullptr) TTF_CloseFont(m_font);
  m_font = nullptr;
  SharedFontPath().clear();
  // Only the library's own reference: a host's SDL_ttf stays initialised.
  font::ReleaseTtf();
}

BarcodeBase1D::FontTeardown::~FontTeardown() {
  const std::lock_guard<std::mutex> lock(font::Mutex());
  CloseFontsLocked();
  font::MarkTornDown();
}

// ---- Width-list symbols ----

BarcodeBase1D::Margins BarcodeBase1D::MarginsOf(const LinearSymbol& symbol) const {
  Margins margins{symbol.lead_modules, symbol.trail_modules, 0};
  if (quiet_zone || symbol.bearer_modules > 0) {
    // Digits printed outside the symbol (EAN/UPC) stand inside its quiet zones.
    margins.lead = std::max(margins.lead, symbol.quiet_left + symbol.bearer_modules);
    margins.trail = std::max(margins.trail, symbol.quiet_right + symbol.bearer_modules);
  }
  margins.total = int64_t{margins.lead} + margins.trail;
  for (int32_t w : symbol.widths) margins.total += w;
  return margins;
}

RowGeometry BarcodeBase1D::RowsOf(const LinearSymbol& symbol, float unit, int height) const {
  int font_cap = 0;
  if (symbol.font_cap_modules > 0.0F) {
    const double cap = std::floor(static_cast<double>(symbol.font_cap_modules) * unit);
    font_cap = std::max(TruncateToInt(cap), 8);
  }
  const bool has_guards = std::find(symbol.reach.begin(), symbol.reach.end(), BarReach::kGuard) != symbol.reach.end();
  const bool has_text_above = std::any_of(symbol.text_runs.begin(), symbol.text_runs.end(),
                                          [](const TextRun& run) { return run.row == TextRow::kAbove; });
  return LinearRows(height, show_text, text_font_scale, text_gap, symbol.text_lines, has_guards, has_text_above,
                    font_cap);
}

void BarcodeBase1D::AddBearerBars(float thickness, float left, float width, std::vector<SDL_FRect>* bars) {
  if (bars->empty()) return;
  // The bars give up the frame's thickness at both ends; the frame takes their band.
  const float top = bars->front().y;
  const float height = bars->front().h;
  for (SDL_FRect& bar : *bars) {
    bar.y += thickness;
    bar.h -= 2.0F * thickness;
  }
  bars->push_back({left, top, width, thickness});
  bars->push_back({left, top + height - thickness, width, thickness});
  bars->push_back({left, top, thickness, height});
  bars->push_back({left + width - thickness, top, thickness, height});
}

bool BarcodeBase1D::TakeLinearNaturalBox(const std::string& text, const char* log_prefix, const LinearEncoder& encode,
                                         int* width, int* height) {
  LinearSymbol symbol;
  if (!EncodeReporting(text, log_prefix, encode, &symbol)) return false;
  const int module = NaturalModulePixels();
  const auto unit = static_cast<float>(module);
  // The lowest box whose bars are at least the standard's height; the text line grows
  // with the box, so the search runs upwards from the bars alone.
  const auto bars = static_cast<int>(std::ceil(NaturalBarModules() * static_cast<float>(module)));
  int natural_height = bars;
  while (RowsOf(symbol, unit, natural_height).bar_height < static_cast<float>(bars)) {
    if (++natural_height > kMaxNaturalHeightFactor * bars + kMaxNaturalHeightFactor) {
      log::Error(log_prefix + std::string(kNoRoomForBars));
      return false;
    }
  }
  return TakeNaturalBox(MarginsOf(symbol).total * module, natural_height, width, height, log_prefix);
}

BarcodeBase1D::PlacedSymbol BarcodeBase1D::Place(const LinearSymbol& symbol, int x, int y, int width,
                                                 int height) const {
  PlacedSymbol placed;
  const Margins margins = MarginsOf(symbol);
  const int32_t lead_modules = margins.lead;
  const int32_t trail_modules = margins.trail;
  const int64_t total = margins.total;
  const float unit = ModuleWidthFor(width, total, fit_width);
  // Modules under a pixel wide print as a grey blur: the standard profile never draws them.
  if (standard_profile && unit < 1.0F)
    throw std::runtime_error("Box too small: " + std::to_string(total) + " px needed");
  if (quiet_zone) {
    // The symbol and its zones, in whole pixels unless fit_width, centred in the box.
    const double needed = static_cast<double>(unit) * static_cast<double>(total);
    if (needed > width + 1e-3) throw std::runtime_error("Box too small: " + std::to_string(total) + " px needed");
    const double margin = (width - needed) / 2.0;
    x = TruncateToInt(static_cast<double>(x) + (fit_width ? std::round(margin) : std::floor(margin)));
    width = TruncateToInt(std::round(needed));
  }
  const auto left = static_cast<float>(x);
  const BarLayout layout =
      LayOutBars(symbol.widths, left + static_cast<float>(lead_modules) * unit, unit, px_adjust_black, px_adjust_white);

  const RowGeometry rows = RowsOf(symbol, unit, height);

  const auto top = static_cast<float>(y);
  placed.bars.reserve(layout.bars.size());
  for (size_t k = 0; k < layout.bars.size(); ++k) {
    const BarReach reach = 2 * k < symbol.reach.size() ? symbol.reach[2 * k] : BarReach::kNormal;
    const BarRect& bar = layout.bars[k];
    switch (reach) {
      case BarReach::kNormal: placed.bars.push_back({bar.x, top, bar.width, rows.bar_height}); break;
      case BarReach::kGuard: placed.bars.push_back({bar.x, top, bar.width, rows.guard_height}); break;
      case BarReach::kAddOn:
        placed.bars.push_back({bar.x, top + rows.add_on_top, bar.width, rows.add_on_bottom - rows.add_on_top});
        break;
    }
  }
  if (symbol.bearer_modules > 0)
    AddBearerBars(static_cast<float>(symbol.bearer_modules) * unit, left, static_cast<float>(total) * unit,
                  &placed.bars);
  if (lead_modules == 0 && trail_modules == 0) {
    placed.drawn_width = layout.drawn_width;
  } else {
    const double right = static_cast<double>(layout.edges.back()) + static_cast<double>(trail_modules) * unit;
    placed.drawn_width = TruncateToInt(right - x);
  }

  if (symbol.text_runs.empty()) {
    placed.texts.push_back(ClassicLine(symbol.display_text, x, y, placed.drawn_width, height));
  } else {
    PlaceRuns(symbol, layout, unit, lead_modules, rows, x, y, height, &placed);
  }
  placed.modules = total;
  placed.bar_height = rows.bar_height;
  return placed;
}

void BarcodeBase1D::WarnUnlessInside(const PlacedSymbol& placed, const Box& box, const char* log_prefix) const {
  const double right = static_cast<double>(box.x) + box.width + 0.5;
  const bool bars_inside = std::all_of(placed.bars.begin(), placed.bars.end(), [right](const SDL_FRect& bar) {
    return static_cast<double>(bar.x) + static_cast<double>(bar.w) <= right;
  });
  if (!bars_inside || placed.drawn_width > box.width) {
    Warn(log_prefix + ("Box too small: " + std::to_string(placed.modules) + " px needed"));
  } else if (!placed.bars.empty() && placed.bar_height < 1.0F) {
    Warn(log_prefix + std::string("Box too small: no height is left for the bars above the text"));
  } else {
    for (const TextPlacement& text : placed.texts) {
      if (!TextInside(text, box)) {
        Warn(log_prefix + std::string("Box too small: the text line does not fit"));
        break;
      }
    }
  }
}

void BarcodeBase1D::WarnUnlessClassicLineInside(const std::string& text, int x, int y, int symbol_width, int box_width,
                                                int height, const char* log_prefix) const {
  if (!TextInside(ClassicLine(text, x, y, symbol_width, height), Box{x, y, box_width, height})) {
    Warn(log_prefix + std::string("Box too small: the text line does not fit"));
  }
}

bool BarcodeBase1D::TextInside(const TextPlacement& placement, const Box& box) {
  if (placement.pieces.empty()) return true;
  const int64_t top = placement.bottom_aligned ? placement.top - placement.font_size : placement.top;
  if (top < box.y || top + placement.font_size > int64_t{box.y} + box.height) return false;
  // The pieces run left to right, so the first and the last bound the line.
  const std::array<const TextPiece*, 2> ends = {&placement.pieces.front(), &placement.pieces.back()};
  auto inside = [&box](const TextPiece& piece, int64_t glyphs_width) {
    const int64_t left = piece.left + (piece.width - glyphs_width) / 2;  // NOLINT(bugprone-integer-division)
    return left >= int64_t{box.x} - 1 && left + glyphs_width <= int64_t{box.x} + box.width + 1;
  };
  // No glyph of the font's ASCII is wider than its size (0.9 of it at most): a line that
  // fits at that width needs no measuring.
  const bool surely_inside = std::all_of(ends.begin(), ends.end(), [&](const TextPiece* piece) {
    const bool ascii = std::all_of(piece->text.begin(), piece->text.end(),
                                   [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    return ascii && inside(*piece, int64_t{placement.font_size} * static_cast<int64_t>(piece->text.size()));
  });
  if (surely_inside) return true;
  const std::lock_guard<std::mutex> lock(font::Mutex());
  if (m_font == nullptr) return true;  // no font, no text line to clip
  const int points = std::min(placement.font_size, kMaxRasterFontPoints);
  if (font::SizedFont(SharedFontPath(), points) == nullptr) return true;
  for (const TextPiece* piece : ends) {
    int glyphs_width = 0;
    if (!font::TextWidth(points, piece->text, &glyphs_width)) continue;
    if (!inside(*piece, glyphs_width)) return false;
  }
  return true;
}

void BarcodeBase1D::PlaceRuns(const LinearSymbol& symbol, const BarLayout& layout, float unit, int32_t lead_modules,
                              const RowGeometry& rows, int x, int y, int height, PlacedSymbol* placed) const {
  if (!show_text) return;
  const int font_size = rows.font_size;
  const auto left = static_cast<float>(x);
  // Runs count their modules from the symbol's own lead; a wider quiet zone moves them.
  const auto shift = static_cast<float>(lead_modules - symbol.lead_modules);
  auto pixel = [&](float module) {
    const double at = ModuleToPixel(symbol.widths, layout, left, unit, lead_modules, module + shift);
    return static_cast<int64_t>(std::llround(std::clamp(at, -1e15, 1e15)));
  };
  for (const TextRun& run : symbol.text_runs) {
    if (run.text.empty()) continue;
    TextPlacement placement;
    placement.font_size = font_size;
    switch (run.row) {
      case TextRow::kBelow:
        placement.top = int64_t{y} + height;
        placement.bottom_aligned = true;
        break;
      case TextRow::kAbove: placement.top = y; break;
      case TextRow::kFirstOfTwo: placement.top = int64_t{y} + rows.first_line_top; break;
      case TextRow::kSecondOfTwo: placement.top = int64_t{y} + rows.second_line_top; break;
    }
    const auto n = static_cast<int64_t>(run.text.size());
    if (run.pitch > 0.0F) {
      if (!text_even_spacing) {
        const float middle = run.first_center + static_cast<float>(n - 1) * run.pitch / 2.0F;
        placement.pieces.push_back({run.text, pixel(middle), 0});
      } else {
        placement.log_failures = true;
        for (int64_t i = 0; i < n; ++i) {
          const float module = run.first_center + static_cast<float>(i) * run.pitch;
          placement.pieces.push_back({std::string(1, run.text[static_cast<size_t>(i)]), pixel(module), 0});
        }
      }
    } else {
      const int64_t span_left = pixel(run.span_begin);
      const int64_t span_width = pixel(run.span_end) - span_left;
      if (!text_even_spacing) {
        placement.pieces.push_back({run.text, span_left, span_width});
      } else {
        placement.log_failures = true;
        const size_t pitch_chars = run.pitch_chars > 0 ? run.pitch_chars : run.text.size();
        const int clamped_width = std::max(ClampToInt(span_width), 0);
        const TextSpacing spacing =
            EvenTextSpacing(clamped_width, height, pitch_chars, text_font_scale, text_margin_scale);
        // Centred with its own length at the shared pitch; the halving truncates like the classic line's.
        const int64_t first = (span_width - (n - 1) * spacing.pitch) / 2;  // NOLINT(bugprone-integer-division)
        for (int64_t i = 0; i < n; ++i) {
          placement.pieces.push_back(
              {std::string(1, run.text[static_cast<size_t>(i)]), span_left + first + i * spacing.pitch, 0});
        }
      }
    }
    placed->texts.push_back(std::move(placement));
  }
}

std::string BarcodeBase1D::InputLengthProblem(const std::string& text) {
  if (text.size() <= kMaxInputLength) return {};
  return "Input too long: " + std::to_string(text.size()) + " characters (max " + std::to_string(kMaxInputLength) + ")";
}

bool BarcodeBase1D::AcceptsInputLength(const std::string& text, const char* log_prefix) {
  const std::string problem = InputLengthProblem(text);
  if (problem.empty()) return true;
  log::Error(log_prefix + problem);
  return false;
}

bool BarcodeBase1D::PlaceOrReport(const LinearSymbol& symbol, int x, int y, int width, int height,
                                  const char* log_prefix, PlacedSymbol* placed) const {
  try {
    *placed = Place(symbol, x, y, width, height);
    WarnUnlessInside(*placed, Box{x, y, width, height}, log_prefix);
    return true;
  } catch (const std::exception& error) {
    log::Error(std::string(log_prefix) + error.what());
    return false;
  }
}

bool BarcodeBase1D::DrawLinearRaster(const std::string& text, int x, int y, int width, int height,
                                     const char* log_prefix, const LinearEncoder& encode) {
  if (WantsNaturalBox() && !TakeLinearNaturalBox(text, log_prefix, encode, &width, &height)) return false;
  if (!BarcodeBase::Draw(text, x, y, width, height) || canvas_renderer() == nullptr) return false;
  InitLinerBarcode(width, height, 1);
  // A fresh canvas is already background; a leftover one (unknown format) is not.
  if (!IsRasterOutput()) ClearCanvas(back_color);
  LinearSymbol symbol;
  if (!EncodeReporting(text, log_prefix, encode, &symbol)) return false;
  if (symbol.text_lines != 1) InitLinerBarcode(width, height, symbol.text_lines);
  PlacedSymbol placed;
  if (!PlaceOrReport(symbol, x, y, width, height, log_prefix, &placed)) return false;
  FillBars(placed.bars, fore_color);
  last_drawn_width = placed.drawn_width;
  for (const TextPlacement& text_placement : placed.texts) PaintTextRaster(text_placement);
  SDL_RenderPresent(canvas_renderer());
  return true;
}

bool BarcodeBase1D::DrawLinearSvg(const std::string& text, int x, int y, int width, int height, const char* log_prefix,
                                  const LinearEncoder& encode) {
  if (WantsNaturalBox() && !TakeLinearNaturalBox(text, log_prefix, encode, &width, &height)) return false;
  InitLinerBarcode(width, height, 1);
  LinearSymbol symbol;
  if (!EncodeReporting(text, log_prefix, encode, &symbol)) return false;
  if (symbol.text_lines != 1) InitLinerBarcode(width, height, symbol.text_lines);
  PlacedSymbol placed;
  if (!PlaceOrReport(symbol, x, y, width, height, log_prefix, &placed)) return false;
  SvgBegin(width, height);
  SvgRect(0, 0, static_cast<float>(width), static_cast<float>(height), back_color);
  for (const SDL_FRect& bar : placed.bars) SvgRect(bar.x, bar.y, bar.w, bar.h, fore_color);
  last_drawn_width = placed.drawn_width;
  for (const TextPlacement& text_placement : placed.texts) PaintTextSvg(text_placement);
  SvgEnd();
  return true;
}

// ---- Human-readable text ----

BarcodeBase1D::TextPlacement BarcodeBase1D::ClassicLine(const std::string& text, int x, int y, int width,
                                                        int height) const {
  TextPlacement placement;
  if (!show_text || text.empty()) return placement;
  const TextSpacing spacing = EvenTextSpacing(width, height, text.size(), text_font_scale, text_margin_scale);
  placement.font_size = spacing.font_size;
  placement.top = int64_t{y} + height;
  placement.bottom_aligned = true;
  if (!text_even_spacing) {
    placement.pieces.push_back({text, x, width});
    return placement;
  }
  placement.log_failures = true;
  placement.pieces.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const int64_t center = int64_t{x} + spacing.first_center + static_cast<int64_t>(i) * spacing.pitch;
    placement.pieces.push_back({std::string(1, text[i]), center, 0});
  }
  return placement;
}

void BarcodeBase1D::PaintTextRaster(const TextPlacement& placement) {
  int canvas_w = 0;
  int canvas_h = 0;
  if (placement.pieces.empty() || !CanvasExtent(&canvas_w, &canvas_h)) return;
  // Text taller than the canvas is never wholly shown, so glyphs are rasterised no
  // larger: an absurd font scale costs what a box-filling text costs. (The minimum text
  // size stays, so small boxes keep their text.)
  const int points = std::min({placement.font_size, std::max(canvas_h, kMinRasterFontPoints), kMaxRasterFontPoints});
  const CanvasBounds canvas{canvas_w, canvas_h};
  // Only the rendering needs the shared fonts; the pieces are copied onto this object's
  // canvas after the lock is released, so threads drawing on separate handles overlap.
  std::vector<RenderedPiece> rendered_pieces;
  rendered_pieces.reserve(placement.pieces.size());
  {
    const std::lock_guard<std::mutex> lock(font::Mutex());
    if (font::TtfDroppedUnderUs()) OpenFontsLocked();
    if (m_font == nullptr) return;
    TTF_Font* font = font::SizedFont(SharedFontPath(), points);
    if (font == nullptr) return;
    for (const TextPiece& piece : placement.pieces) {
      if (!MayReachCanvas(piece, placement, points, canvas)) continue;  // neither shaped nor rendered
      rendered_pieces.push_back(RenderPiece(font, piece, points, canvas));
    }
  }
  for (const RenderedPiece& rendered : rendered_pieces) {
    if (!rendered.surface) {
      if (placement.log_failures) log::Error("TTF_RenderUTF8_Blended error: " + rendered.error);
      continue;
    }
    // Bottom-aligned text is lifted when its glyphs are taller than the font size, so
    // nothing hangs below the box.
    int64_t top = placement.top;
    if (placement.bottom_aligned) top -= std::max(rendered.surface->h, points);
    // Positions come in a wide type and are clamped once: absurd scales or boxes put them
    // off the canvas, never into an overflow inside SDL.
    if (!BlendOntoCanvas(rendered.surface.get(), ClampToPixel(rendered.left), ClampToPixel(top)) &&
        placement.log_failures) {
      log::Error(std::string("SDL_CreateTextureFromSurface error: ") + SDL_GetError());
    }
  }
}

bool BarcodeBase1D::MayReachCanvas(const TextPiece& piece, const TextPlacement& placement, int points,
                                   const CanvasBounds& canvas) {
  // Generous bounds on what the glyphs can cover: an em or two a byte across, two ems
  // down (the font's ascent and descent are about 1.2 em).
  const int64_t reach_x = (static_cast<int64_t>(piece.text.size()) * 2 + 1) * points;
  const int64_t reach_y = int64_t{2} * points;
  const int64_t center = piece.left + piece.width / 2;  // NOLINT(bugprone-integer-division)
  if (center + reach_x / 2 < 0 || center - reach_x / 2 > canvas.width) return false;
  if (placement.bottom_aligned) return placement.top > 0 && placement.top - reach_y < canvas.height;
  return placement.top < canvas.height && placement.top + reach_y > 0;
}

BarcodeBase1D::RenderedPiece BarcodeBase1D::RenderPiece(TTF_Font* font, const TextPiece& piece, int points,
                                                        const CanvasBounds& canvas) const {
  RenderedPiece rendered;
  // Lines that may be large are measured first (the glyph metrics only, no rendering).
  const int64_t estimate = (static_cast<int64_t>(piece.text.size()) * 2 + 1) * points * 2 * points;
  int text_w = 0;
  int text_h = 0;
  if (estimate <= kMaxTextLinePixels || TTF_SizeUTF8(font, piece.text.c_str(), &text_w, &text_h) != 0 ||
      int64_t{text_w} * text_h <= kMaxTextLinePixels) {
    // A lone character (the even-spaced line, digits under their modules) comes from the
    // font's glyph cache.
    rendered.surface = piece.text.size() == 1
                           ? font::RenderCharacter(points, piece.text[0], fore_color)
                           : ShareSurface(TTF_RenderUTF8_Blended(font, piece.text.c_str(), fore_color));
    if (!rendered.surface) {
      rendered.error = SDL_GetError();
      return rendered;
    }
    // Centred in the piece's span; the halving truncates toward zero.
    rendered.left = piece.left + (piece.width - rendered.surface->w) / 2;  // NOLINT(bugprone-integer-division)
    return rendered;
  }
  const int64_t left = piece.left + (piece.width - text_w) / 2;  // NOLINT(bugprone-integer-division)
  // A line far wider than the canvas: only the characters that can reach it are
  // rendered, at the offset the characters before them take.
  int skipped_w = 0;
  int skipped = 0;
  TTF_MeasureUTF8(font, piece.text.c_str(), ClampToInt(std::max<int64_t>(-left, 0)), &skipped_w, &skipped);
  const size_t from = Utf8Offset(piece.text, static_cast<size_t>(skipped));
  const std::string rest = piece.text.substr(from);
  int kept_w = 0;
  int kept = 0;
  TTF_MeasureUTF8(font, rest.c_str(), ClampToInt(int64_t{canvas.width} + text_h), &kept_w, &kept);
  const std::string visible = rest.substr(0, Utf8Offset(rest, static_cast<size_t>(kept) + 1));
  rendered.surface = ShareSurface(TTF_RenderUTF8_Blended(font, visible.c_str(), fore_color));
  if (!rendered.surface) rendered.error = SDL_GetError();
  rendered.left = left + skipped_w;
  return rendered;
}

void BarcodeBase1D::PaintTextSvg(const TextPlacement& placement) {
  const int64_t top = placement.bottom_aligned ? placement.top - placement.font_size : placement.top;
  for (const TextPiece& piece : placement.pieces) {
    const int64_t center = piece.left + piece.width / 2;  // NOLINT(bugprone-integer-division)
    SvgText(static_cast<float>(center), static_cast<float>(top), piece.text, placement.font_size, fore_color, "middle");
  }
}

void BarcodeBase1D::RenderText(const std::string& text, int x, int y, int width, int height) {
  PaintTextRaster(ClassicLine(text, x, y, width, height));
}

void BarcodeBase1D::RenderTextSvg(const std::string& text, int x, int y, int width, int height) {
  PaintTextSvg(ClassicLine(text, x, y, width, height));
}

}  // namespace barcode_orv
