// Root of every symbology: output format, colours, the raster canvas with its PNG and
// base64 encodings, and the SVG document builder.
#pragma once

#include <SDL.h>

#include <cstdint>
#include <string>
#include <vector>

#include "core/png_encoder.h"
#include "core/sdl_handles.h"

namespace barcode_orv {

// The operations a host reaches through the C interface.
class IBarcodeSymbology {
 public:
  virtual void SetForegroundColor(int r, int g, int b, int a) = 0;
  virtual void SetBackgroundColor(int r, int g, int b, int a) = 0;
  virtual bool Draw(const std::string& text, int x, int y, int width, int height) = 0;
  virtual std::vector<uint8_t> GetImageMemory() = 0;
  virtual std::string GetImageBase64() = 0;
  virtual ~IBarcodeSymbology() = default;

  IBarcodeSymbology() = default;
  IBarcodeSymbology(const IBarcodeSymbology&) = delete;
  IBarcodeSymbology& operator=(const IBarcodeSymbology&) = delete;
};

class BarcodeBase : public IBarcodeSymbology {
 public:
  explicit BarcodeBase(std::string output_format);
  // Draws onto a renderer the caller owns and keeps (output format ""): the symbol is
  // painted at the draw call's box on whatever that renderer targets.
  explicit BarcodeBase(SDL_Renderer* canvas);
  ~BarcodeBase() override;

  void SetForegroundColor(int r, int g, int b, int a) override;
  void SetBackgroundColor(int r, int g, int b, int a) override;

  // Prepares a fresh canvas of width x height in raster formats; x and y only offset
  // what the symbology draws later.
  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  std::vector<uint8_t> GetImageMemory() override;
  // A data URI; consumes the canvas, so it can be fetched once per draw.
  std::string GetImageBase64() override;
  // The base version draws nothing; every symbology overrides it.
  virtual bool DrawSvg(const std::string& text, int x, int y, int width, int height);

  // The SVG document of the last successful SVG draw; throws outside SVG mode.
  std::string GetSvg() const;

  void SetOutputFormat(const std::string& format) { output_format_ = format; }
  const std::string& GetOutputFormat() const { return output_format_; }
  // "svg" or "SVG" exactly.
  bool IsSvgOutput() const;
  // "png", "jpg" or "jpeg" exactly: the formats that get a canvas.
  bool IsRasterOutput() const;

  // Writes the standard's form where the library keeps a compatibility behaviour by
  // default (Code 128 set A values, the Matrix 2 of 5 patterns).
  void SetStandardEncoding(bool on) { standard_encoding = on; }
  bool GetStandardEncoding() const { return standard_encoding; }
  // The standard profile: every draw either reads back as its text or fails. A warning
  // of a successful draw (below) then refuses the draw instead.
  void SetStandardProfile(bool on) { standard_profile = on; }
  bool GetStandardProfile() const { return standard_profile; }
  // Why the picture of the last successful draw will not read back as its text (clipped by
  // the box, a blank payload, a compatibility mapping...), with the symbology's prefix;
  // "" when nothing is known against it. Draws start by calling ResetWarning.
  const std::string& GetLastWarning() const { return warning_; }
  void ResetWarning() { warning_.clear(); }
  // Forgets the last drawing (canvas and SVG document), as if no draw had succeeded.
  void DiscardOutput();
  // Draws the symbol with the quiet zones its standard asks for, centred in the box.
  void SetQuietZone(bool on) { quiet_zone = on; }
  bool GetQuietZone() const { return quiet_zone; }
  void SetFitWidth(bool fit) { fit_width = fit; }
  bool GetFitWidth() const { return fit_width; }
  void SetPxAdjustBlack(int px) { px_adjust_black = px; }
  int GetPxAdjustBlack() const { return px_adjust_black; }
  void SetPxAdjustWhite(int px) { px_adjust_white = px; }
  int GetPxAdjustWhite() const { return px_adjust_white; }
  SDL_Color GetForegroundColor() const { return fore_color; }
  SDL_Color GetBackgroundColor() const { return back_color; }

  // ---- Print size and orientation, both off by default ----
  // Modules of round(mm x dpi / 25.4) pixels, never below 1 (X-dimension mm at dpi): the
  // picture then takes the symbol's natural size, PNG carries the resolution and SVG its
  // size in millimetres. mm == 0 turns it off. False (nothing changed) for mm outside
  // (0, 100] or not a number, dpi outside 1..10000, or modules above kMaxModulePixels.
  bool SetXDim(double mm, int dpi);
  static constexpr int kMaxModulePixels = 100;
  int GetModulePixels() const { return module_pixels_; }  // 0: no X-dimension
  double GetXDimMm() const { return xdim_mm_; }
  int GetDpi() const { return dpi_; }
  // 0, 90, 180 or 270 degrees clockwise, applied to the finished picture (a quarter turn
  // swaps its width and height); false for any other value, leaving it as it was.
  bool SetRotation(int degrees);
  int GetRotation() const { return quarter_turns_ * 90; }
  // The box the symbol of `text` takes at the X-dimension (a pixel a module without one),
  // quiet zones included when they are on. False when the text cannot be encoded or the
  // symbology has no natural size; the reason then is the draw's.
  bool Measure(const std::string& text, int* width, int* height);
  // Turns the picture of a successful draw and marks its physical size: called once after
  // each successful draw, before its results are collected.
  void FinishOutput();

  // Why a raster canvas of width x height cannot be made, or "" when it can (sizes that
  // are not positive are left to SDL).
  static std::string CanvasSizeProblem(int width, int height);

  static std::string Base64Encode(const uint8_t* bytes, size_t length);
  static std::string GetFallbackImage();

  // Directory under which a fonts/ folder may hold the text font; read once, when the
  // first linear object opens the shared font.
  static void SetModulePath(const std::string& path);
  static std::string GetModulePath();

 protected:
  bool CreateSurface(int width, int height);
  // PNG file bytes of `surface`; empty on failure.
  static std::vector<uint8_t> SaveSurfaceToMemory(SDL_Surface* surface);
  // The same through `encoder`, which keeps its working memory for the next image.
  static std::vector<uint8_t> SaveSurfaceToMemory(SDL_Surface* surface, PngEncoder* encoder);

  // The renderer draws go to: the object's own canvas, else the caller's renderer.
  SDL_Renderer* canvas_renderer() const { return renderer_ ? renderer_.get() : external_canvas_; }
  SDL_Renderer* external_canvas() const { return external_canvas_; }
  SDL_Surface* canvas_surface() const { return surface_.get(); }
  // Fills a rectangle on the canvas (no-op without one). Fractional edges are snapped
  // to the nearest pixel; everything is clipped to the canvas.
  void FillRectF(float x, float y, float width, float height, SDL_Color color);
  void FillRect(int x, int y, int width, int height, SDL_Color color);
  // Fills each span (x, width) on the `height` pixel rows from `top`. Only for rows that
  // hold nothing but background within the spans' extent: on the own canvas the first
  // visible row is filled and then copied down, the same pixels in a fraction of the work.
  struct Span {
    int x;
    int width;
  };
  void FillSpans(const std::vector<Span>& spans, int top, int height, SDL_Color color);
  // Fills every bar as FillRectF does. Only on a canvas that holds background alone: the
  // rows between two bar ends each become one FillSpans.
  void FillBars(const std::vector<SDL_FRect>& bars, SDL_Color color);
  // Fills the whole pixels [left, right) x [top, bottom), clipped to the canvas.
  void FillPixels(double left, double top, double right, double bottom, SDL_Color color) {
    FillClipped(left, top, right, bottom, color);
  }
  // True when draws go to this object's own 32-bit canvas, whose fills replace pixels.
  bool DrawsOnOwnCanvas() const { return OwnsCanvas(); }
  void ClearCanvas(SDL_Color color);
  // Pixel size of the canvas draws go to; false when there is none.
  bool CanvasExtent(int* width, int* height) const;
  // Blends `image` (its alpha over the canvas, as SDL's "blend" mode) with its top-left
  // at (left, top), clipped to the canvas; false with SDL's error when that fails.
  bool BlendOntoCanvas(const SDL_Surface* image, int left, int top);

  // True when the family's draw, once it has encoded the symbol, must take its natural
  // size from TakeNaturalBox (an X-dimension is set, or Measure is asking).
  bool WantsNaturalBox() const { return module_pixels_ > 0 || measuring_; }
  // Pixels a module at the natural size.
  int NaturalModulePixels() const { return module_pixels_ > 0 ? module_pixels_ : 1; }
  // The natural box of the encoded symbol: on success *width and *height become it and the
  // draw goes on. False when Measure is asking (the size is kept for it) or when the box the
  // host gave (a side of 0: any) is smaller, with "Box too small for the X-dimension" logged.
  bool TakeNaturalBox(int64_t natural_width, int64_t natural_height, int* width, int* height,
                      const std::string& log_prefix);

  // Records why the drawing will not read back as its text; the first reason stays.
  void Warn(const std::string& reason) const {
    if (warning_.empty()) warning_ = reason;
  }

  // SVG document builder.
  void SvgBegin(int width, int height);
  void SvgRect(float x, float y, float width, float height, SDL_Color color);
  // One path (`d` in whole pixels), crisp-edged, so that shapes meeting at an edge leave
  // no seam.
  void SvgPath(const std::string& d, SDL_Color color);
  void SvgText(float x, float y, const std::string& text, int font_size, SDL_Color color, const std::string& anchor);
  void SvgEnd();
  static std::string ColorToRgbString(SDL_Color color);

  SDL_Color fore_color{0, 0, 0, 255};
  SDL_Color back_color{255, 255, 255, 255};
  bool fit_width = false;
  bool quiet_zone = false;
  bool standard_encoding = false;
  bool standard_profile = false;
  int px_adjust_black = 0;
  int px_adjust_white = 0;
  int draw_width = 0;
  int draw_height = 0;
  int svg_width = 0;
  int svg_height = 0;

 private:
  // The canvas is gone for every later call until the next draw, which may reuse its
  // memory when the size is the same.
  void ReleaseCanvas();
  void DropCanvas();
  // True when draws go to this object's own 32-bit canvas, which it may then write directly.
  bool OwnsCanvas() const;
  // `color` as a pixel of the own canvas, once the renderer's queued work is flushed.
  Uint32 OwnCanvasPixel(SDL_Color color);
  // Fills a rectangle that lies inside the own canvas, as the renderer would.
  void FillOwnCanvas(int left, int top, int width, int height, SDL_Color color);
  void FillClipped(double left, double top, double right, double bottom, SDL_Color color);
  void AppendFixed(double value);
  // ` fill="rgb(...)"`, with its opacity when the colour is not opaque.
  void AppendFill(SDL_Color color);
  // The XML declaration and the <svg> start tag: width and height as written (pixels, or
  // millimetres) over a viewBox of the picture's pixels.
  static void AppendSvgHeader(std::string& out, const std::string& width, const std::string& height, int view_width,
                              int view_height);
  // Quarter turns of the own canvas and of the SVG document; the SVG size in millimetres.
  void TurnCanvas();
  void RewriteSvgHeader();

  std::string output_format_;
  SDL_Renderer* external_canvas_ = nullptr;  // the caller's, never freed here
  RendererPtr renderer_;                     // destroyed before the surface it draws into
  SurfacePtr surface_;
  RendererPtr spare_renderer_;  // a released canvas kept for reuse
  SurfacePtr spare_surface_;
  PngEncoder png_encoder_;  // kept between draws like the canvas
  std::string svg_;
  size_t svg_body_ = 0;  // where the SVG document's content starts, after its header
  mutable std::string warning_;
  double xdim_mm_ = 0.0;
  int dpi_ = 0;
  int module_pixels_ = 0;
  int quarter_turns_ = 0;
  bool measuring_ = false;
  int64_t measured_width_ = -1;
  int64_t measured_height_ = -1;  // layout helpers that only read the object may warn
};

}  // namespace barcode_orv
