// Base of the linear symbologies: bar height, module widths, the shared font and the
// human-readable line under the bars.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <SDL_ttf.h>

#include "core/barcode_base.h"
#include "linear/linear_layout.h"

namespace barcode_orv {

class BarcodeBase1D : public BarcodeBase {
 public:
  explicit BarcodeBase1D(std::string output_format);
  explicit BarcodeBase1D(SDL_Renderer* canvas);  // draws onto the caller's renderer

  void SetShowText(bool show) { show_text = show; }
  bool GetShowText() const { return show_text; }
  void SetTextFontScale(float scale) { text_font_scale = scale; }
  float GetTextFontScale() const { return text_font_scale; }
  void SetTextGap(float gap) { text_gap = gap; }
  float GetTextGap() const { return text_gap; }
  void SetTextEvenSpacing(bool even) { text_even_spacing = even; }
  bool GetTextEvenSpacing() const { return text_even_spacing; }
  void SetShowStartStop(bool show) { show_start_stop = show; }
  bool GetShowStartStop() const { return show_start_stop; }
  float GetBarHeight() const { return bar_height; }

  // Computes bar_height for a box of the given height with `text_lines` lines of text.
  void InitLinerBarcode(int width, int height, int text_lines = 1);

  // First existing font file among the fixed candidates, or "".
  static std::string GetFontPath();
  // Opens the shared font once per process; false (and no text) when none is usable.
  static bool InitFont();
  // Closes every font and drops the library's own SDL_ttf reference; a later InitFont
  // opens them again.
  static void DestroyFont();

 protected:
  // What a width-list symbology hands to the shared layout: element widths in modules
  // (bar first) and the text for the human-readable line.
  struct LinearSymbol {
    std::vector<int32_t> widths;
    std::string display_text;
  };
  using LinearEncoder = std::function<LinearSymbol(const std::string& text)>;

  // The whole raster draw of a width-list symbol: canvas, bar height, background,
  // encoding (errors logged as `log_prefix` + message), bars and text.
  bool DrawLinearRaster(const std::string& text, int x, int y, int width, int height, const char* log_prefix,
                        const LinearEncoder& encode);
  // The same into a fresh SVG document; nothing is written when encoding fails.
  bool DrawLinearSvg(const std::string& text, int x, int y, int width, int height, const char* log_prefix,
                     const LinearEncoder& encode);

  // Runs `encode`; a failure is written to standard error as `log_prefix` + message.
  static bool EncodeOrReport(const std::string& text, const char* log_prefix, const LinearEncoder& encode,
                             LinearSymbol* symbol);

  // Paints bars for `widths` from (x, y), bar_height tall; returns the drawn width.
  int PaintBarsRaster(const std::vector<int32_t>& widths, int x, int y, int box_width);
  int PaintBarsSvg(const std::vector<int32_t>& widths, int x, int y, int box_width);
  BarLayout LayoutFor(const std::vector<int32_t>& widths, int x, int box_width) const;

  // Human-readable line under a symbol drawn `width` pixels wide in a box `height` tall.
  void RenderText(const std::string& text, int x, int y, int width, int height);
  void RenderTextSvg(const std::string& text, int x, int y, int width, int height);

  bool show_text = true;
  float text_font_scale = 1.0F;
  float text_margin_scale = 1.0F;
  float text_gap = 1.0F;
  bool text_even_spacing = true;
  bool show_start_stop = false;
  float bar_height = 0.0F;
  int last_drawn_width = 0;  // drawn width of the last successful width-list draw

  // The process-wide font opened at 18 points by the first linear object.
  static TTF_Font* m_font;

 private:
  // Closes the fonts when the library is unloaded or the process exits; after that no
  // draw touches SDL_ttf again.
  struct FontTeardown {
    FontTeardown() = default;
    FontTeardown(const FontTeardown&) = delete;
    FontTeardown& operator=(const FontTeardown&) = delete;
    ~FontTeardown();
  };
  static void CloseFontsLocked();  // caller holds font::Mutex()
};

}  // namespace barcode_orv
