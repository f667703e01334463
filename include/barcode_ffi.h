/*
 * libbarcode_orv: barcode generation behind a flat C interface.
 *
 * Create a handle for one symbology, set options, draw a text into a box, then collect
 * the PNG bytes, a base64 data URI or an SVG document. Results belong to the handle.
 * Every function accepts a null handle or null text and then returns its neutral value
 * (0, "", or NULL); options that do not apply to the handle's symbology are ignored.
 *
 * Threads: separate handles may be used from separate threads at the same time; one
 * handle must be used by one thread at a time. The library's process-wide state (the
 * font, its size cache, the Code 128 memo) is guarded inside. The one process-wide
 * result is that of barcode_calculate_check_digit_14 (see there).
 */
#ifndef BARCODE_ORV_BARCODE_FFI_H
#define BARCODE_ORV_BARCODE_FFI_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#define BARCODE_API __declspec(dllexport)
#elif defined(__GNUC__)
#define BARCODE_API __attribute__((visibility("default")))
#else
#define BARCODE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Opaque handle owning one symbology object and its results. */
typedef struct BarcodeHandle BarcodeHandle;

/* Symbology types for barcode_create. */
enum {
  BARCODE_CODE39 = 0,
  BARCODE_CODE93 = 1,
  BARCODE_CODE128 = 2,
  BARCODE_GS1_128 = 3,
  BARCODE_NW7 = 4,
  BARCODE_MATRIX2OF5 = 5,
  BARCODE_NEC2OF5 = 6,
  BARCODE_JAN8 = 7,
  BARCODE_JAN13 = 8,
  BARCODE_UPCA = 9,
  BARCODE_UPCE = 10,
  BARCODE_ITF = 11,
  BARCODE_GS1_DATABAR_14 = 12,
  BARCODE_GS1_DATABAR_LIMITED = 13,
  BARCODE_GS1_DATABAR_EXPANDED = 14,
  BARCODE_YUBIN_CUSTOMER = 15,
  BARCODE_QR = 16,
  BARCODE_DATAMATRIX = 17,
  BARCODE_PDF417 = 18
};

/* ---- Symbology registry ---- */

/* The number of symbology types: they are numbered 0 .. barcode_type_count() - 1. */
BARCODE_API int barcode_type_count(void);
/* The short name of `type` that the barcode-orv tool takes ("code39", "gs1-128", "qr"...);
 * "" for a number outside 0 .. barcode_type_count() - 1. */
BARCODE_API const char* barcode_type_name(int type);
/* What `type` is called ("Code 39", "NW-7 (Codabar)", "QR Code"...); "" as above. */
BARCODE_API const char* barcode_type_description(int type);
/* The type whose short name is exactly `name`; -1 for any other text or NULL. */
BARCODE_API int barcode_type_from_name(const char* name);
/* 1 when the C function named `function` ("barcode_draw_2d", "barcode_set_version"...)
 * takes handles of `type`: a draw entry point that draws it, an option passed on to its
 * object (the options for every symbology are passed to all, whether or not the symbology
 * uses them). 0 when that function refuses such a handle (a draw returns 0) or ignores it
 * (an option), and for an unknown type or function name. Whether this build provides
 * `type` is barcode_create's to say. */
BARCODE_API int barcode_type_accepts(int type, const char* function);

/* ---- Handle, factory and results ---- */

/* New handle for symbology `type` (0..18) in "png" output; NULL for an unknown type or
 * a symbology this build does not provide. */
BARCODE_API BarcodeHandle* barcode_create(int type);
/* Frees the handle and everything its getters returned. NULL is ignored. */
BARCODE_API void barcode_destroy(BarcodeHandle* handle);
/* "png" (default), "jpg"/"jpeg" (PNG bytes, JPEG label on the data URI), "svg"/"SVG".
 * Any other text is stored and then draws nothing. Affects later draws only. */
BARCODE_API void barcode_set_output_format(BarcodeHandle* handle, const char* format);
/* 1 when the output format is exactly "svg" or "SVG". */
BARCODE_API int barcode_is_svg_output(BarcodeHandle* handle);
/* The SVG document of the last draw; "" outside SVG mode. Valid until the next
 * barcode_get_svg or barcode_get_base64 on this handle. */
BARCODE_API const char* barcode_get_svg(BarcodeHandle* handle);
/* The raster result as a data URI ("data:image/png;base64,..."). Consumes the canvas:
 * a second call before the next draw yields a 1x1 fallback image. "" in SVG mode.
 * Shares its result slot with barcode_get_svg. */
BARCODE_API const char* barcode_get_base64(BarcodeHandle* handle);
/* PNG file bytes of the last raster draw, their count in *size. NULL (size 0) when
 * there is no canvas. Valid until the next successful call on this handle. */
BARCODE_API const uint8_t* barcode_get_image_data(BarcodeHandle* handle, uint32_t* size);

/* Why the last draw on this handle failed, in the words of its line on standard error
 * (without the line end), or a reason for failures that print nothing (an unknown output
 * format); "" after a successful draw or before any. Valid until the next draw on this
 * handle or barcode_destroy. */
BARCODE_API const char* barcode_get_last_error(BarcodeHandle* handle);
/* 1 (default): a QR payload beyond version 40 throws out of the draw function, as
 * documented there. 0: that draw returns 0 like any other failure and
 * barcode_get_last_error says why, so a C host never sees an exception. */
BARCODE_API void barcode_set_throw_on_capacity_error(BarcodeHandle* handle, int on);

/* 1: the standard profile. The standard encodings (Code 128 set A with its ISO/IEC 15417
 * values, Code 93 full ASCII, the published Matrix 2 of 5 patterns), the quiet zones,
 * whole-pixel modules (fractional only when barcode_set_fit_width was called, and never
 * below one pixel), the QR capacity error as an ordinary failure, and a refusal of every
 * draw whose picture would not read back as its text: such a draw returns 0, keeps no
 * picture, and barcode_get_last_error gives the reason that barcode_get_last_warning
 * would have given (the box too small for the symbol or its text line, characters outside
 * a fixed QR mode, text that is neither valid UTF-8 nor Shift_JIS, an empty payload, a
 * fixed QR version too small, a Japan Post address beyond 20 positions...).
 * 0 (default): the library's compatibility behaviour. Either call sets the switches named
 * above; each can still be changed afterwards with its own setter. */
BARCODE_API void barcode_set_standard(BarcodeHandle* handle, int on);
/* After a successful draw: one line saying why its picture will not read back as the
 * text (the symbol or its text line clipped by the box, a blank payload, a cut address,
 * characters changed by a compatibility mapping, non-digits in QR numeric mode, a QR
 * version grown beyond the fixed one), "" when nothing is known against it or the draw
 * failed. Valid until the next draw on this handle or barcode_destroy. */
BARCODE_API const char* barcode_get_last_warning(BarcodeHandle* handle);

/* Process-wide: 0 keeps the library's failure lines off standard error (each is still
 * given by barcode_get_last_error); 1 (default) writes them. */
BARCODE_API void barcode_set_error_lines(int on);

/* Process-wide: 1 switches off the progress lines the library writes to standard output
 * (sizes, module matrices), 0 switches them on. The initial value is on unless the
 * environment has BARCODE_ORV_QUIET=1. Error lines on standard error are not affected. */
BARCODE_API void barcode_set_quiet(int on);

/* ---- Options for every symbology ---- */

/* 1: draw the symbol with the quiet zones its standard asks for (Code 39, Code 93, Code
 * 128, GS1-128, NW-7, the 2-of-5 codes: 10 modules each side; EAN/UPC: the GS1 zones; QR
 * Code: 4 modules; Data Matrix: 1; PDF417: 2; Japan Post: 2 bar pitches added to its
 * canvas), with the module size chosen so that symbol and zones fit the box (whole pixels
 * unless fit_width) and the whole centred in it. A box too small even at one pixel a
 * module fails the draw ("[Code128] Box too small: 620 px needed"). 0 (default): no
 * quiet zone, the symbol at the box's left (top-left for 2D) edge. Raster and SVG. */
BARCODE_API void barcode_set_quiet_zone(BarcodeHandle* handle, int on);

/* ---- Print size and orientation (off by default) ---- */

/* Physical size: modules of round(mm x dpi / 25.4) pixels, never below 1 (0.33 mm at 300
 * dpi: 4 px). Every later draw takes the symbol's natural size: its modules at that width,
 * its quiet zones when they are on, bars as tall as the symbology's standard asks (EAN-13
 * 22.85 mm at 0.33 mm, EAN-8 18.23 mm, DataBar 33, Limited 10 and Expanded 34 modules a
 * row, 50 modules where no standard says; 2D symbols square modules; Japan Post bars 6
 * modules). The box given to a draw is then a bound: a
 * smaller box fails with the size it needs ("[QR] Box too small for the X-dimension:
 * 116x116 px needed"), a larger one gets the natural size, and a side of 0 asks for it. PNG
 * files carry the resolution (pHYs), SVG documents their width and height in mm. mm 0
 * turns it off. Returns 1, or 0 with the reason in barcode_get_last_error for mm outside
 * (0, 100], dpi outside 1..10000 or modules above 100 px. */
BARCODE_API int barcode_set_xdim(BarcodeHandle* handle, double mm, int dpi);
/* The box (width x height in pixels, as the picture comes out, rotation included) that
 * the symbol of `text` takes at the X-dimension (1 px a module when none is set). Returns
 * 1, or 0 with the reason in barcode_get_last_error (text the symbology refuses). Draws nothing; the last picture
 * stays. */
BARCODE_API int barcode_measure(BarcodeHandle* handle, const char* text, int* width, int* height);
/* Turns the finished picture 0, 90, 180 or 270 degrees clockwise, raster and SVG, the
 * text line with it. The box of a draw is the symbol's before the turn: a quarter turn of
 * a 300 x 100 draw gives a 100 x 300 picture. Returns 1, or 0 (nothing changed) for any
 * other angle. */
BARCODE_API int barcode_set_rotation(BarcodeHandle* handle, int degrees);
/* ITF only: 1 frames bars and quiet zones with bearer bars 5 modules thick (the ITF-14
 * frame, which keeps a misaligned scan line from reading part of the symbol as a shorter
 * one); the quiet zones are then always drawn, inside the frame. 0 (default): none. */
BARCODE_API void barcode_set_bearer_bars(BarcodeHandle* handle, int on);
/* 1: write the standard form where the library keeps a compatibility behaviour by
 * default: Code 128 code set A with its ISO/IEC 15417 values (fixed set A, and the
 * automatic mode, which then also uses shifts), Matrix 2 of 5 with its published
 * patterns, and Code 93 full ASCII: every ASCII character, through the standard shift
 * pairs where it needs one, so '<', '>', '?' and '!' mean themselves. 0 (default): the
 * compatibility forms (see the README). */
BARCODE_API void barcode_set_standard_encoding(BarcodeHandle* handle, int on);
/* Bar and text colour, each component cut to its low 8 bits; default 0,0,0,255. */
BARCODE_API void barcode_set_foreground_color(BarcodeHandle* handle, int r, int g, int b, int a);
/* Canvas colour, each component cut to its low 8 bits; default 255,255,255,255. */
BARCODE_API void barcode_set_background_color(BarcodeHandle* handle, int r, int g, int b, int a);
/* Pixels added to every bar (negative thins; bars stay at least 1 pixel). */
BARCODE_API void barcode_set_px_adjust_black(BarcodeHandle* handle, int px);
/* Pixels added to every space. */
BARCODE_API void barcode_set_px_adjust_white(BarcodeHandle* handle, int px);
/* Nonzero: fractional module width that fills the box; 0 (default): whole pixels. */
BARCODE_API void barcode_set_fit_width(BarcodeHandle* handle, int fit);

/* ---- Options for linear symbologies (types 0..15) ---- */

/* Human-readable line under the bars (default on). */
BARCODE_API void barcode_set_show_text(BarcodeHandle* handle, int show);
/* Text height factor (default 1.0). */
BARCODE_API void barcode_set_text_font_scale(BarcodeHandle* handle, double scale);
/* Factor of the gap between bars and text (default 1.0). */
BARCODE_API void barcode_set_text_gap(BarcodeHandle* handle, double scale);
/* Spread the text characters evenly over the bars (default on). */
BARCODE_API void barcode_set_text_even_spacing(BarcodeHandle* handle, int even);
/* Show start/stop characters in the text line: Code 39 (default on) and NW-7 (default on). */
BARCODE_API void barcode_set_show_start_stop(BarcodeHandle* handle, int show);
/* JAN-8, JAN-13, UPC-A, UPC-E: nonzero (default) draws the guard bars down into the
 * digits and the outside digits beside the symbol, as on retail packs; 0 draws bars of one
 * height with the number centred under them. */
BARCODE_API void barcode_set_extended_guard(BarcodeHandle* handle, int extended);
/* Code 128 code set: "A", "B", "C" or "AUTO" (default); other text is ignored. */
BARCODE_API void barcode_set_code_mode(BarcodeHandle* handle, const char* mode);

/* ---- Options for two-dimensional symbologies (types 16..18) ---- */

/* Encoding the symbol carries: "utf-8"/"UTF-8" (default) or
 * "shift-jis"/"Shift-JIS"/"shift_jis"; text in the other encoding is converted. */
BARCODE_API void barcode_set_string_encoding(BarcodeHandle* handle, const char* encoding);
/* QR version 1..40, or 0 for the smallest that fits; other values mean 0. */
BARCODE_API void barcode_set_version(BarcodeHandle* handle, int version);
/* QR error correction "L", "M" (default), "Q" or "H"; anything else means M. */
BARCODE_API void barcode_set_error_correction_level(BarcodeHandle* handle, const char* level);
/* QR mode "NUMERIC"/"N" or "BYTE"/"AUTO"/"B" (default); "ALPHANUMERIC"/"A" and
 * "KANJI"/"K" are carried in byte mode. The standard profile chooses numeric,
 * alphanumeric, byte and Kanji segments itself (ISO/IEC 18004 section 7.4). */
BARCODE_API void barcode_set_encode_mode(BarcodeHandle* handle, const char* mode);
/* QR mask pattern 0..7 forced, or -1 (default) to choose one: this library's scoring by
 * default, the penalty rules of ISO/IEC 18004 in the standard profile. Other values make
 * draws fail. */
BARCODE_API void barcode_set_qr_mask(BarcodeHandle* handle, int mask);
/* QR Code, Data Matrix and PDF417: declare ECI 0..999999 (3 ISO-8859-1, 20 Shift_JIS,
 * 26 UTF-8, ...) and carry the text in its character set; -1 (default) declares none
 * (QR's standard profile declares UTF-8 or Shift_JIS where byte segments need it). Other
 * values, and text without a form in the character set, make draws fail. */
BARCODE_API void barcode_set_eci(BarcodeHandle* handle, int eci);
/* QR Code and Data Matrix: 1 takes the text as a GS1 element string "(01)...(17)...",
 * validated against the GS1 AI table and carried with FNC1 in first position and as
 * separator (read as ]Q3 / ]d2); 0 (default) plain text. */
BARCODE_API void barcode_set_gs1(BarcodeHandle* handle, int on);
/* Data Matrix size "10x10" .. "144x144", "8x18" .. "16x48", the DMRE sizes of ISO/IEC
 * 21471 "8x48" .. "26x64", or the automatic choice: "AUTO" (default: the smallest square
 * size that holds the data), "AUTO_RECT" (squares and the six rectangles) or "AUTO_DMRE"
 * (the DMRE sizes too), the smallest area winning. A fixed size too small makes draws
 * fail; an unknown name means AUTO, and in the standard profile makes draws fail. */
BARCODE_API void barcode_set_code_size(BarcodeHandle* handle, const char* size);
/* Data Matrix scheme "ASCII", "C40", "TEXT", "X12", "EDIFACT", "BASE256", or "AUTO"
 * (default: the shortest codeword stream over all schemes). */
BARCODE_API void barcode_set_encode_scheme(BarcodeHandle* handle, const char* scheme);
/* PDF417 error-correction level 0..8; any other value (default) the level recommended
 * for the data length. */
BARCODE_API void barcode_set_error_level(BarcodeHandle* handle, int level);
/* PDF417 data columns 1..30, 0 (default) automatic; other values make draws fail. */
BARCODE_API void barcode_set_columns(BarcodeHandle* handle, int columns);
/* PDF417 rows 3..90, 0 (default) automatic; other values make draws fail. */
BARCODE_API void barcode_set_rows(BarcodeHandle* handle, int rows);
/* PDF417 symbol width over height the automatic shape aims at; 0 (default) or less:
 * about three rows a column. */
BARCODE_API void barcode_set_aspect_ratio(BarcodeHandle* handle, double ratio);
/* PDF417 row height in modules, 3 (default) to 50; other values make draws fail. */
BARCODE_API void barcode_set_y_height(BarcodeHandle* handle, int y_height);

/* ---- Drawing: each returns 1 on success, 0 on failure or an unsuitable handle ---- */

/* Any symbology into a width x height box. For a QR handle, a payload beyond version 40
 * at the chosen level throws std::runtime_error out of this function (C++ callers can
 * catch it; it is the only exception that leaves the library). */
BARCODE_API int barcode_draw_1d(BarcodeHandle* handle, const char* text, int width, int height);
/* Square 2D symbol (types 16..18). A QR payload beyond version 40 throws
 * std::runtime_error out of this function, as for barcode_draw_1d. */
BARCODE_API int barcode_draw_2d(BarcodeHandle* handle, const char* text, int size);
/* 2D symbol into a width x height box (types 16..18); the same QR capacity exception. */
BARCODE_API int barcode_draw_2d_rect(BarcodeHandle* handle, const char* text, int width, int height);
/* `length` bytes of `data` as they are, NUL included and without any text conversion,
 * into a width x height box (types 16..18). A NULL `data` with a nonzero length is
 * refused. The QR capacity exception as for barcode_draw_1d. */
BARCODE_API int barcode_draw_2d_bytes(BarcodeHandle* handle, const unsigned char* data, size_t length, int width,
                                      int height);
/* Japan Post customer barcode (type 15) with bars `size` pixels tall, on a canvas
 * trunc(67 size/3 + size/6 + 1) x size. */
BARCODE_API int barcode_draw_yubin(BarcodeHandle* handle, const char* text, int size);
/* Japan Post customer barcode (type 15): as barcode_draw_yubin with size = height; the
 * width is ignored. */
BARCODE_API int barcode_draw_yubin_with_width(BarcodeHandle* handle, const char* text, int width, int height);
/* GS1-128 convenience-store payment layout of a 43- or 44-digit code starting with AI 91
 * (type 3): the check digit is appended to 43 digits or verified in 44; the text goes on
 * two lines under the bars. */
BARCODE_API int barcode_draw_convenience(BarcodeHandle* handle, const char* text, int width, int height);
/* GS1 DataBar Expanded in its stacked form (type 14). */
BARCODE_API int barcode_draw_stacked(BarcodeHandle* handle, const char* text, int width, int height);

/* ---- GS1 DataBar helpers ---- */

/* DataBar-14 form: "OMNIDIRECTIONAL", "STACKED" or "STACKED_OMNIDIRECTIONAL" (type 12). */
BARCODE_API void barcode_set_symbol_type_14(BarcodeHandle* handle, const char* name);
/* The DataBar-14 form's name; "" for other handles. */
BARCODE_API const char* barcode_get_symbol_type_14(BarcodeHandle* handle);
/* DataBar-14 encoding of `text` (type 12); 0 when rejected. */
BARCODE_API int barcode_encode_14(BarcodeHandle* handle, const char* text);
/* GTIN check digit text for `text` (13 digits). The result is process-wide, not held by
 * a handle: every call returns the same pointer, whose text is the latest result from
 * any thread. Concurrent calls never tear it (the writes are locked), but a caller that
 * needs its own result must copy it before another thread calls. */
BARCODE_API const char* barcode_calculate_check_digit_14(const char* text);
/* DataBar Expanded form: "UNSTACKED" or "STACKED" (type 14). */
BARCODE_API void barcode_set_symbol_type_exp(BarcodeHandle* handle, const char* name);
/* Segment columns of stacked DataBar Expanded (type 14). */
BARCODE_API void barcode_set_no_of_columns(BarcodeHandle* handle, int columns);

#ifdef __cplusplus
}
#endif

#endif /* BARCODE_ORV_BARCODE_FFI_H */
