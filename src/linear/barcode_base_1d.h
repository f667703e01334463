// Base of the linear symbologies: bar height, module widths, the shared font and the
// human-readable line under the bars.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <SDL_ttf.h>

#include "core/barcode_base.h"
#include "core/log.h"
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
  // (bar first) and the text for the human-readable line. The other fields describe
  // symbols beyond one plain row; left at their defaults they draw the classic layout
  // (bars of one height from x, display_text under them).
  struct LinearSymbol {
    LinearSymbol() = default;
    LinearSymbol(std::vector<int32_t> element_widths, std::string text)
        : widths(std::move(element_widths)), display_text(std::move(text)) {}

    std::vector<int32_t> widths;
    std::string display_text;
    std::vector<BarReach> reach;     // per element (bars only count); empty: every bar kNormal
    int32_t lead_modules = 0;        // empty modules before the first bar, counted in the width
    int32_t trail_modules = 0;       // empty modules after the last element, likewise
    std::vector<TextRun> text_runs;  // when not empty, drawn instead of display_text
    float font_cap_modules = 0.0F;   // the runs' font is no taller than this many modules (0: no cap)
    int text_lines = 1;              // text lines reserved under the bars (InitLinerBarcode)
    // The light margins the symbology's standard asks for, used with the quiet-zone option.
    int32_t quiet_left = 10;
    int32_t quiet_right = 10;
    // Bearer bars this many modules thick framing bars and quiet zones (0: none); the
    // quiet zones are then always there, inside the frame.
    int32_t bearer_modules = 0;
  };
  using LinearEncoder = std::function<LinearSymbol(const std::string& text)>;

  // The whole raster draw of a width-list symbol: canvas, bar height, background,
  // encoding (errors logged as `log_prefix` + message), bars and text.
  bool DrawLinearRaster(const std::string& text, int x, int y, int width, int height, const char* log_prefix,
                        const LinearEncoder& encode);
  // The same into a fresh SVG document; nothing is written when encoding fails.
  bool DrawLinearSvg(const std::string& text, int x, int y, int width, int height, const char* log_prefix,
                     const LinearEncoder& encode);

  // The natural box is searched no higher than this many times the bars' height: a text
  // line scaled to take every pixel it is given leaves the bars no room at any height.
  static constexpr int kMaxNaturalHeightFactor = 16;
  static constexpr const char* kNoRoomForBars =
      "The text line leaves the bars no height at any size: lower text_font_scale or text_gap, or hide the text";
  // Bar height at the natural size, in modules: where the symbology's standard sets none,
  // 50, as most generators draw.
  virtual float NaturalBarModules() const { return 50.0F; }

  // The longest text every linear symbology accepts, in bytes: far beyond what a reader
  // scans, short enough that the longest text encodes and draws in milliseconds.
  static constexpr size_t kMaxInputLength = 1000;
  // Why `text` is refused before any encoding ("" when it is not too long).
  static std::string InputLengthProblem(const std::string& text);
  // The same, written to standard error as `log_prefix` + message; true when accepted.
  static bool AcceptsInputLength(const std::string& text, const char* log_prefix);

  // Runs `encode` on a text of an accepted length; a failure is written to standard error
  // as `log_prefix` + message.
  template <typename Symbol, typename Encoder>
  static bool EncodeReporting(const std::string& text, const char* log_prefix, const Encoder& encode, Symbol* symbol) {
    if (!AcceptsInputLength(text, log_prefix)) return false;
    try {
      *symbol = encode(text);
      return true;
    } catch (const std::exception& error) {
      log::Error(std::string(log_prefix) + error.what());
      return false;
    }
  }

  // Warns (`log_prefix` first) when the classic text line of a symbol drawn `symbol_width`
  // pixels wide from x leaves the box (x, y, box_width, height).
  void WarnUnlessClassicLineInside(const std::string& text, int x, int y, int symbol_width, int box_width, int height,
                                   const char* log_prefix) const;
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
  // These three: caller holds font::Mutex().
  static void CloseFontsLocked();
  // Opens the shared font unless it is open and alive; false when no font is usable.
  static bool OpenFontsLocked();
  // Drops fonts whose faces a host's extra TTF_Quit freed, and the reference it took.
  static void AbandonFontsLocked();

  // One piece of text, centred in [left, left + width) (width 0: centred on left).
  struct TextPiece {
    std::string text;
    int64_t left = 0;
    int64_t width = 0;
  };
  // Pieces of one font size sharing one vertical position.
  struct TextPlacement {
    std::vector<TextPiece> pieces;
    int font_size = 0;
    int64_t top = 0;
    bool bottom_aligned = false;  // glyphs end at `top` (the box's bottom) instead of starting there
    bool log_failures = false;
  };
  // Bars and text of a symbol placed in the box (x, y, width, height).
  struct PlacedSymbol {
    std::vector<SDL_FRect> bars;
    std::vector<TextPlacement> texts;
    int drawn_width = 0;
    int64_t modules = 0;      // the symbol's width in modules, quiet zones included
    float bar_height = 0.0F;  // of the bars that reach no further than the text
  };
  struct Box {
    int x;
    int y;
    int width;
    int height;
  };
  // Warns when bars or text of `placed` leave `box`.
  void WarnUnlessInside(const PlacedSymbol& placed, const Box& box, const char* log_prefix) const;
  // Whether the glyphs of a text placement stay inside `box`.
  static bool TextInside(const TextPlacement& placement, const Box& box);
  // Modules before and after the elements (quiet zones when they are on) and in all.
  struct Margins {
    int32_t lead;
    int32_t trail;
    int64_t total;
  };
  Margins MarginsOf(const LinearSymbol& symbol) const;
  // The ITF-14 frame of `thickness` pixels around [left, left + width) and the band of
  // `bars` (all of one height, which give that thickness up at both ends).
  static void AddBearerBars(float thickness, float left, float width, std::vector<SDL_FRect>* bars);
  // Heights of bars and text in a box `height` tall at `unit` pixels a module.
  RowGeometry RowsOf(const LinearSymbol& symbol, float unit, int height) const;
  // Encodes `text` and takes the symbol's natural box (TakeNaturalBox).
  bool TakeLinearNaturalBox(const std::string& text, const char* log_prefix, const LinearEncoder& encode, int* width,
                            int* height);
  // Throws when the quiet zones are on and the symbol cannot fit the box.
  PlacedSymbol Place(const LinearSymbol& symbol, int x, int y, int width, int height) const;
  bool PlaceOrReport(const LinearSymbol& symbol, int x, int y, int width, int height, const char* log_prefix,
                     PlacedSymbol* placed) const;
  // Places the symbol's text runs; `lead_modules` is the lead actually used (quiet zone).
  void PlaceRuns(const LinearSymbol& symbol, const BarLayout& layout, float unit, int32_t lead_modules,
                 const RowGeometry& rows, int x, int y, int height, PlacedSymbol* placed) const;
  struct CanvasBounds {
    int width;
    int height;
  };
  // A piece rendered at `points`, with its left edge on the canvas.
  struct RenderedPiece {
    SharedSurface surface;  // read only: a lone character's is the font cache's own
    int64_t left = 0;
    std::string error;  // SDL's, when rendering failed
  };
  // False when the piece's glyphs, placed at `points`, cannot touch the canvas.
  static bool MayReachCanvas(const TextPiece& piece, const TextPlacement& placement, int points,
                             const CanvasBounds& canvas);
  // Caller holds font::Mutex().
  RenderedPiece RenderPiece(TTF_Font* font, const TextPiece& piece, int points, const CanvasBounds& canvas) const;
  void PaintTextRaster(const TextPlacement& placement);
  void PaintTextSvg(const TextPlacement& placement);
  // Classic line under the bars as pieces.
  TextPlacement ClassicLine(const std::string& text, int x, int y, int width, int height) const;
};

}  // namespace barcode_orv
