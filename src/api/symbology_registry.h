// The symbology registry: one row per type of the C interface with the tool's name for it,
// its family, the entry points and options it takes and its factory. barcode_create, the
// type check of every C function, the registry functions of barcode_ffi.h (and through
// them the tool, the fuzz target and the gallery) read it; a new symbology is one row.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct BarcodeHandle;

namespace barcode_orv {

class BarcodeBase;
class BarcodeBase1D;
class BarcodeBase2D;
class Code128;
class EanUpcBarcode;
class GS1_128;
class GS1DataBar14;
class GS1DataBarExpanded;
class YubinCustomer;
class QR;
class DataMatrix;
class PDF417;
class ITF;

namespace ffi {

enum class Family : uint8_t { kLinear, kEanUpc, kGs1_128, kDataBar, kPostal, kTwoD };

// The parts of the C interface that only some symbologies take, one bit each, every one
// served by one class. barcode_draw_1d, the results and the options of every symbology
// (colours, quiet zone, profile...) are part kEvery.
constexpr uint32_t kEvery = 0;
// Draw entry points.
constexpr uint32_t kDraw2D = 1U << 0;           // BarcodeBase2D: square, rectangle, bytes
constexpr uint32_t kDrawYubin = 1U << 1;        // YubinCustomer: by bar height
constexpr uint32_t kDrawConvenience = 1U << 2;  // GS1_128: the convenience-store payment layout
constexpr uint32_t kDrawStacked = 1U << 3;      // GS1DataBarExpanded: the stacked form
// Options.
constexpr uint32_t kTextLine = 1U << 4;             // BarcodeBase1D: the human-readable line
constexpr uint32_t kStartStop = 1U << 5;            // BarcodeBase1D: start/stop characters in that line
constexpr uint32_t kExtendedGuard = 1U << 6;        // EanUpcBarcode
constexpr uint32_t kCodeSet = 1U << 7;              // Code128
constexpr uint32_t kDataBar14Form = 1U << 8;        // GS1DataBar14: form, encoding, check digit
constexpr uint32_t kExpandedForm = 1U << 9;         // GS1DataBarExpanded: form, segment columns
constexpr uint32_t kStringEncoding = 1U << 10;      // BarcodeBase2D
constexpr uint32_t kQrSettings = 1U << 11;          // QR
constexpr uint32_t kDataMatrixSettings = 1U << 12;  // DataMatrix
constexpr uint32_t kPdf417Settings = 1U << 13;      // PDF417
constexpr uint32_t kBearerBars = 1U << 14;          // ITF
constexpr uint32_t kGs1Mode = 1U << 15;             // BarcodeBase2D: QR Code and Data Matrix
constexpr int kPartCount = 16;

// The class a part is served by: a handle whose row takes the part holds an object of it.
template <uint32_t kPart>
struct PartClass;  // no class: not a part
template <>
struct PartClass<kEvery> {
  using type = BarcodeBase;
};
template <>
struct PartClass<kDraw2D> {
  using type = BarcodeBase2D;
};
template <>
struct PartClass<kDrawYubin> {
  using type = YubinCustomer;
};
template <>
struct PartClass<kDrawConvenience> {
  using type = GS1_128;
};
template <>
struct PartClass<kDrawStacked> {
  using type = GS1DataBarExpanded;
};
template <>
struct PartClass<kTextLine> {
  using type = BarcodeBase1D;
};
template <>
struct PartClass<kStartStop> {
  using type = BarcodeBase1D;
};
template <>
struct PartClass<kExtendedGuard> {
  using type = EanUpcBarcode;
};
template <>
struct PartClass<kCodeSet> {
  using type = Code128;
};
template <>
struct PartClass<kDataBar14Form> {
  using type = GS1DataBar14;
};
template <>
struct PartClass<kExpandedForm> {
  using type = GS1DataBarExpanded;
};
template <>
struct PartClass<kStringEncoding> {
  using type = BarcodeBase2D;
};
template <>
struct PartClass<kQrSettings> {
  using type = QR;
};
template <>
struct PartClass<kDataMatrixSettings> {
  using type = DataMatrix;
};
template <>
struct PartClass<kPdf417Settings> {
  using type = PDF417;
};
template <>
struct PartClass<kGs1Mode> {
  using type = BarcodeBase2D;
};
template <>
struct PartClass<kBearerBars> {
  using type = ITF;
};

// Every C function that takes a handle, with the part it belongs to. A new function is
// one entry here; the symbologies that take it follow from their rows.
struct Function {
  std::string_view name;
  uint32_t part;
};

inline constexpr Function kFunctions[] = {
    {"barcode_draw_1d", kEvery},
    {"barcode_set_output_format", kEvery},
    {"barcode_is_svg_output", kEvery},
    {"barcode_get_svg", kEvery},
    {"barcode_get_base64", kEvery},
    {"barcode_get_image_data", kEvery},
    {"barcode_get_last_error", kEvery},
    {"barcode_get_last_warning", kEvery},
    {"barcode_set_throw_on_capacity_error", kEvery},
    {"barcode_set_standard", kEvery},
    {"barcode_set_quiet_zone", kEvery},
    {"barcode_set_standard_encoding", kEvery},
    {"barcode_set_foreground_color", kEvery},
    {"barcode_set_background_color", kEvery},
    {"barcode_set_px_adjust_black", kEvery},
    {"barcode_set_px_adjust_white", kEvery},
    {"barcode_set_fit_width", kEvery},
    {"barcode_draw_2d", kDraw2D},
    {"barcode_draw_2d_rect", kDraw2D},
    {"barcode_draw_2d_bytes", kDraw2D},
    {"barcode_draw_yubin", kDrawYubin},
    {"barcode_draw_yubin_with_width", kDrawYubin},
    {"barcode_draw_convenience", kDrawConvenience},
    {"barcode_draw_stacked", kDrawStacked},
    {"barcode_set_show_text", kTextLine},
    {"barcode_set_text_font_scale", kTextLine},
    {"barcode_set_text_gap", kTextLine},
    {"barcode_set_text_even_spacing", kTextLine},
    {"barcode_set_show_start_stop", kStartStop},
    {"barcode_set_extended_guard", kExtendedGuard},
    {"barcode_set_code_mode", kCodeSet},
    {"barcode_set_symbol_type_14", kDataBar14Form},
    {"barcode_get_symbol_type_14", kDataBar14Form},
    {"barcode_encode_14", kDataBar14Form},
    {"barcode_set_symbol_type_exp", kExpandedForm},
    {"barcode_set_no_of_columns", kExpandedForm},
    {"barcode_set_string_encoding", kStringEncoding},
    {"barcode_set_eci", kStringEncoding},
    {"barcode_set_gs1", kGs1Mode},
    {"barcode_set_qr_mask", kQrSettings},
    {"barcode_set_version", kQrSettings},
    {"barcode_set_error_correction_level", kQrSettings},
    {"barcode_set_encode_mode", kQrSettings},
    {"barcode_set_code_size", kDataMatrixSettings},
    {"barcode_set_encode_scheme", kDataMatrixSettings},
    {"barcode_set_error_level", kPdf417Settings},
    {"barcode_set_columns", kPdf417Settings},
    {"barcode_set_rows", kPdf417Settings},
    {"barcode_set_aspect_ratio", kPdf417Settings},
    {"barcode_set_y_height", kPdf417Settings},
    {"barcode_set_xdim", kEvery},
    {"barcode_set_rotation", kEvery},
    {"barcode_measure", kEvery},
    {"barcode_set_bearer_bars", kBearerBars},
};

constexpr uint32_t kNoPart = 1U << 31;  // has no PartClass: a name missing above does not compile

// The part of the C function `name`; kNoPart for a name not in kFunctions.
constexpr uint32_t PartOf(std::string_view name) {
  for (const Function& function : kFunctions) {
    if (function.name == name) return function.part;
  }
  return kNoPart;
}

// One symbology type.
struct Symbology {
  int type;                 // its number in barcode_ffi.h
  const char* name;         // the tool's name for it
  const char* description;  // what the tool's list calls it
  Family family;
  uint32_t draws;                                                   // entry points beyond barcode_draw_1d
  uint32_t options;                                                 // options beyond those of every symbology
  std::unique_ptr<BarcodeBase> (*make)(std::string output_format);  // null: left out of this build
  uint32_t class_parts;  // the parts its class derives from the class of (filled in by the table)

  constexpr bool Takes(uint32_t part) const { return ((draws | options) & part) == part; }
};

// Types are numbered 0 .. SymbologyCount() - 1.
int SymbologyCount();
// The row of `type`, or null for a number outside the table.
const Symbology* FindSymbology(int type);
// The row named `name`, or null.
const Symbology* FindSymbology(std::string_view name);

// The handle's row, or null for a null handle or one without an object.
const Symbology* SymbologyOf(const BarcodeHandle* handle);

// The symbology object for `type` in "png" output, or null for a type this build does not
// provide.
std::unique_ptr<BarcodeBase> MakeSymbology(int type);

}  // namespace ffi
}  // namespace barcode_orv
