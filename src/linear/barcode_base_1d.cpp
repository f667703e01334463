#include "linear/barcode_base_1d.h"

#include <algorithm>
#include <exception>

#include "core/log.h"
#include "linear/font_library.h"

namespace barcode_orv {
namespace {

constexpr int kSharedFontPoints = 18;
// Glyphs are never rasterised larger than this: a text far taller than any canvas
// would only cost memory (the SVG text keeps the computed size).
constexpr int kMaxRasterFontPoints = 2048;

// The path the shared font was opened from; the per-size fonts come from the same file.
// Never destroyed by itself, so the font teardown can still clear it at exit.
std::string& SharedFontPath() {
  static auto* path = new std::string();
  return *path;
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
  if (m_font != nullptr) return true;
  // Constructed after the mutex, so it is destroyed before it: at unload or exit the
  // fonts close while the library's own SDL_ttf reference still keeps FreeType alive.
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

void BarcodeBase1D::CloseFontsLocked() {
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

BarLayout BarcodeBase1D::LayoutFor(const std::vector<int32_t>& widths, int x, int box_width) const {
  int64_t total = 0;
  for (int32_t width : widths) total += width;
  const float unit = ModuleWidthFor(box_width, total, fit_width);
  return LayOutBars(widths, static_cast<float>(x), unit, px_adjust_black, px_adjust_white);
}

int BarcodeBase1D::PaintBarsRaster(const std::vector<int32_t>& widths, int x, int y, int box_width) {
  const BarLayout layout = LayoutFor(widths, x, box_width);
  for (const BarRect& bar : layout.bars) {
    FillRectF(bar.x, static_cast<float>(y), bar.width, bar_height, fore_color);
  }
  return layout.drawn_width;
}

int BarcodeBase1D::PaintBarsSvg(const std::vector<int32_t>& widths, int x, int y, int box_width) {
  const BarLayout layout = LayoutFor(widths, x, box_width);
  for (const BarRect& bar : layout.bars) {
    SvgRect(bar.x, static_cast<float>(y), bar.width, bar_height, fore_color);
  }
  return layout.drawn_width;
}

bool BarcodeBase1D::EncodeOrReport(const std::string& text, const char* log_prefix, const LinearEncoder& encode,
                                   LinearSymbol* symbol) {
  try {
    *symbol = encode(text);
    return true;
  } catch (const std::exception& error) {
    log::Error(std::string(log_prefix) + error.what());
    return false;
  }
}

bool BarcodeBase1D::DrawLinearRaster(const std::string& text, int x, int y, int width, int height,
                                     const char* log_prefix, const LinearEncoder& encode) {
  if (!BarcodeBase::Draw(text, x, y, width, height) || canvas_renderer() == nullptr) return false;
  InitLinerBarcode(width, height, 1);
  // A fresh canvas is already background; a leftover one (unknown format) is not.
  if (!IsRasterOutput()) ClearCanvas(back_color);
  LinearSymbol symbol;
  if (!EncodeOrReport(text, log_prefix, encode, &symbol)) return false;
  const int drawn_width = PaintBarsRaster(symbol.widths, x, y, width);
  last_drawn_width = drawn_width;
  RenderText(symbol.display_text, x, y, drawn_width, height);
  SDL_RenderPresent(canvas_renderer());
  return true;
}

bool BarcodeBase1D::DrawLinearSvg(const std::string& text, int x, int y, int width, int height, const char* log_prefix,
                                  const LinearEncoder& encode) {
  InitLinerBarcode(width, height, 1);
  LinearSymbol symbol;
  if (!EncodeOrReport(text, log_prefix, encode, &symbol)) return false;
  SvgBegin(width, height);
  SvgRect(0, 0, static_cast<float>(width), static_cast<float>(height), back_color);
  const int drawn_width = PaintBarsSvg(symbol.widths, x, y, width);
  last_drawn_width = drawn_width;
  RenderTextSvg(symbol.display_text, x, y, drawn_width, height);
  SvgEnd();
  return true;
}

// ---- Human-readable line ----

namespace {

// Draws one rendered piece with its top at `bottom` - font size, or higher when the
// glyphs are taller than the font size, so nothing hangs below the box. Positions come in
// a wide type and are clamped once: absurd scales or boxes put them off the canvas, never
// into an overflow.
bool BlitText(SDL_Renderer* renderer, SDL_Surface* rendered, int64_t left, int64_t bottom, int font_size) {
  TexturePtr texture(SDL_CreateTextureFromSurface(renderer, rendered));
  if (!texture) return false;
  SDL_SetTextureBlendMode(texture.get(), SDL_BLENDMODE_BLEND);
  const int64_t top = bottom - std::max<int64_t>(rendered->h, font_size);
  const SDL_Rect target{ClampToPixel(left), ClampToPixel(top), rendered->w, rendered->h};
  SDL_RenderCopy(renderer, texture.get(), nullptr, &target);
  return true;
}

}  // namespace

void BarcodeBase1D::RenderText(const std::string& text, int x, int y, int width, int height) {
  if (!show_text || text.empty() || canvas_renderer() == nullptr) return;
  const std::lock_guard<std::mutex> lock(font::Mutex());
  if (m_font == nullptr) return;
  const TextSpacing spacing = EvenTextSpacing(width, height, text.size(), text_font_scale, text_margin_scale);
  TTF_Font* font = font::SizedFont(SharedFontPath(), std::min(spacing.font_size, kMaxRasterFontPoints));
  if (font == nullptr) return;
  const int64_t bottom = int64_t{y} + height;
  if (!text_even_spacing) {
    SurfacePtr rendered(TTF_RenderUTF8_Blended(font, text.c_str(), fore_color));
    if (rendered) {
      const int64_t left = int64_t{x} + (int64_t{width} - rendered->w) / 2;  // NOLINT(bugprone-integer-division)
      BlitText(canvas_renderer(), rendered.get(), left, bottom, spacing.font_size);
    }
    return;
  }
  for (size_t i = 0; i < text.size(); ++i) {
    const char glyph[2] = {text[i], '\0'};
    SurfacePtr rendered(TTF_RenderUTF8_Blended(font, glyph, fore_color));
    if (!rendered) {
      log::Error(std::string("TTF_RenderUTF8_Blended error: ") + SDL_GetError());
      continue;
    }
    const int64_t center = int64_t{x} + spacing.first_center + static_cast<int64_t>(i) * spacing.pitch;
    const int64_t left = center - rendered->w / 2;  // NOLINT(bugprone-integer-division)
    if (!BlitText(canvas_renderer(), rendered.get(), left, bottom, spacing.font_size)) {
      log::Error(std::string("SDL_CreateTextureFromSurface error: ") + SDL_GetError());
    }
  }
}

void BarcodeBase1D::RenderTextSvg(const std::string& text, int x, int y, int width, int height) {
  if (!show_text || text.empty()) return;
  const TextSpacing spacing = EvenTextSpacing(width, height, text.size(), text_font_scale, text_margin_scale);
  const auto top = static_cast<float>(int64_t{y} + height - spacing.font_size);
  if (!text_even_spacing) {
    // Whole-pixel centre, like the raster text.
    SvgText(static_cast<float>(x + width / 2), top,  // NOLINT(bugprone-integer-division)
            text, spacing.font_size, fore_color, "middle");
    return;
  }
  for (size_t i = 0; i < text.size(); ++i) {
    const int64_t center = int64_t{x} + spacing.first_center + static_cast<int64_t>(i) * spacing.pitch;
    SvgText(static_cast<float>(center), top, std::string(1, text[i]), spacing.font_size, fore_color, "middle");
  }
}

}  // namespace barcode_orv
