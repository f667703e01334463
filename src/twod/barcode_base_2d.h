// Base of the two-dimensional symbologies: the string-encoding setting and the
// conversion of caller text into the bytes a 2D symbol carries.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/barcode_base.h"
#include "core/module_grid.h"

namespace barcode_orv {

enum class StringEncoding : int { Utf8 = 0, ShiftJis = 1 };

class BarcodeBase2D : public BarcodeBase {
 public:
  explicit BarcodeBase2D(std::string output_format);
  explicit BarcodeBase2D(SDL_Renderer* canvas);  // draws onto the caller's renderer

  using BarcodeBase::Draw;
  // Text entry: converts with the stored encoding, then draws the bytes.
  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  // Square symbol: Draw(text, x, y, size, size).
  virtual bool Draw(const std::string& text, int x, int y, int size);
  virtual bool Draw(const std::vector<uint8_t>& data, int x, int y, int size);
  // Bytes as they are (no text conversion): warns about an empty payload, then draws.
  bool DrawBytes(const std::vector<uint8_t>& data, int x, int y, int width, int height);
  // The symbology's real drawing routine (raster or SVG by output format).
  virtual bool Draw(const std::vector<uint8_t>& data, int x, int y, int width, int height) = 0;

  // ECI 0..999999 declared in the symbol, the text converted into its character set
  // (twod/eci.h); -1, the default, declares none (QR's standard form declares UTF-8 or
  // Shift_JIS where its byte segments need it).
  void SetEci(int eci) { eci_ = eci; }
  int GetEci() const { return eci_; }
  // GS1 mode: the text is an element string "(01)...(17)...", validated and carried with
  // FNC1 in first position and as separator.
  void SetGs1(bool on) { gs1_ = on; }
  bool GetGs1() const { return gs1_; }

  void SetStringEncoding(const std::string& encoding) { string_encoding_ = encoding; }
  void SetStringEncoding(StringEncoding encoding);
  std::string GetStringEncoding() const { return string_encoding_; }

  // The bytes a 2D encoder receives for `text` under `encoding`; empty on failure.
  static std::vector<uint8_t> ConvertStringToBytes(const std::string& text, const std::string& encoding);
  // iconv conversion; empty on any failure.
  static std::vector<uint8_t> ConvertEncoding(const std::string& text, const std::string& from, const std::string& to);
  static std::string DetectEncoding(const std::string& text);
  static bool IsValidUtf8(const std::string& text);
  // Offset of the first byte that breaks UTF-8's structure, npos for valid text.
  static size_t FirstInvalidUtf8(const std::string& text);
  // Why `text` gave no bytes under `encoding`, naming the offset of the first bad byte.
  static std::string ConversionProblem(const std::string& text, const std::string& encoding);
  static bool IsShiftJIS(const std::string& text);
  static std::vector<uint8_t> ConvertToUtf8(const std::string& text);
  static std::vector<uint8_t> ConvertToSJis(const std::string& text);
  static std::vector<uint8_t> convertUTF8(const std::string& text);
  static std::vector<uint8_t> convertShiftJIS(const std::string& text);
  // True when the string-encoding setting names Shift_JIS.
  bool CarriesShiftJis() const;

 protected:
  // Shared painting of a module matrix, raster and SVG: by default no quiet zone, the
  // symbol at the box's top-left, whole-pixel modules unless fit_width, px_adjust_black on
  // dark modules, exact fractional edges in SVG; with the quiet-zone option the symbol and
  // its zones centred in the box.

  // Chooses the raster target: the caller's renderer at the box as given, or a fresh
  // canvas of the box's size, whose box then becomes the whole canvas. False after
  // reporting why no target exists.
  bool BeginRaster(int& x, int& y, int& width, int& height, bool& on_caller_canvas);
  // Fills the box with the background and paints the dark modules; false (after the
  // message) when the quiet zones are on and the symbol cannot fit the box.
  bool PaintRasterModules(const ModuleView& modules, int x, int y, int width, int height, ModuleAspect aspect);
  // Warns when px_adjust_black thins modules that are painted one by one.
  void WarnAboutThinning(const ModuleView& modules) const;
  // Warns when the painted symbol (or its modules, in the standard profile) do not fit.
  void WarnUnlessInside(float symbol_width, float symbol_height, float module_size, int width, int height,
                        int total_cols, int total_rows) const;
  // Pixel edges of the modules in the box, as the raster draws them, and the smaller
  // module side. Fills a canvas that is not fresh with the background. False (after the
  // message) when the quiet zones are on and the symbol cannot fit the box.
  struct PixelGrid {
    std::vector<int> col_edges;
    std::vector<int> unit_edges;
    float smaller_module = 0.0F;
  };
  bool LayOutPixels(const ModuleView& modules, int x, int y, int width, int height, ModuleAspect aspect,
                    PixelGrid* grid);
  // The dark runs (or modules) of `row` as pixel spans, after px_adjust_black.
  void RowSpans(const ModuleView& modules, int row, const std::vector<int>& col_edges, std::vector<Span>* spans) const;
  // The standard form of the SVG document: one path a colour on the raster's whole-pixel
  // edges, crisp, so that no seam shows between modules.
  bool PaintSeamlessSvg(const ModuleView& modules, int width, int height, ModuleAspect aspect);
  // Paints modules widened by a positive px_adjust_black larger than a module, on the own
  // canvas, in time proportional to the canvas.
  void PaintWidenedModules(const ModuleView& modules, const std::vector<int>& col_edges,
                           const std::vector<int>& unit_edges, int canvas_height);
  // The natural box of `modules` with its quiet zones when they are on (TakeNaturalBox);
  // an empty symbol has none.
  bool TakeModulesNaturalBox(const ModuleView& modules, int* width, int* height);
  // Presents a caller's renderer; a canvas of our own is kept for the getters.
  void EndRaster(bool on_caller_canvas);
  // One SVG document of width x height with a background and one rectangle a dark module.
  bool PaintSvgModules(const ModuleView& modules, int width, int height, ModuleAspect aspect);
  // The quiet zone of the symbology's standard, in modules, and its message prefix.
  virtual int QuietZoneModules() const { return 0; }
  virtual const char* LogPrefix() const { return ""; }

 private:
  // The canvas renderer after preparing a fresh surface, or null after reporting why.
  SDL_Renderer* PrepareCanvas(int x, int y, int width, int height);

  // Offset of the first character iconv cannot convert from `from` to `to`.
  static size_t FirstUnconvertible(const std::string& text, const char* from, const char* to);

  // The bytes of `text` under the ECI and GS1 settings; "" or why there are none.
  std::string PayloadForSettings(const std::string& text, std::vector<uint8_t>& bytes) const;

  std::string string_encoding_ = "utf-8";
  int eci_ = -1;
  bool gs1_ = false;
};

}  // namespace barcode_orv
