// The flat C interface: handles, results, options shared by all symbologies and the
// draw entry points. Nothing but the documented capacity error leaves these functions.
#include "barcode_ffi.h"

#include <cfloat>
#include <cmath>
#include <mutex>
#include <string>

#include "api/ffi_internal.h"
#include "core/errors.h"
#include "databar/databar14.h"
#include "databar/databar_expanded.h"
#include "gs1/gtin_check_digit.h"
#include "linear/barcode_base_1d.h"
#include "linear/ean_upc.h"
#include "linear/gs1_128.h"
#include "linear/yubin_customer.h"

using barcode_orv::BarcodeBase;
using barcode_orv::BarcodeBase1D;
using barcode_orv::ffi::GuardDraw;
using barcode_orv::ffi::GuardSetter;
using barcode_orv::ffi::HandleEntry;
using barcode_orv::ffi::ObjectFor;
using barcode_orv::ffi::ObjectOf;
using barcode_orv::ffi::PartOf;
using barcode_orv::ffi::RefuseDraw;

namespace {

const char kEmpty[] = "";

// double -> float without the undefined behaviour of an out-of-range conversion.
float NarrowToFloat(double value) {
  if (std::isnan(value)) return static_cast<float>(value);
  if (value > FLT_MAX) return INFINITY;
  if (value < -FLT_MAX) return -INFINITY;
  return static_cast<float>(value);
}

const char* StoreTextResult(BarcodeHandle* handle, std::string (*fetch)(BarcodeBase&)) noexcept {
  BarcodeBase* object = ObjectOf(handle);
  const HandleEntry entry(handle);
  if (object == nullptr || !entry.entered()) return kEmpty;
  try {
    std::string result = fetch(*object);
    handle->text_result = std::move(result);
    return handle->text_result.c_str();
  } catch (...) {
    return kEmpty;
  }
}

}  // namespace

extern "C" {

// ---- Handle, factory and results ----

BarcodeHandle* barcode_create(int type) {
  try {
    std::unique_ptr<BarcodeBase> object = barcode_orv::ffi::MakeSymbology(type);
    if (!object) return nullptr;
    auto* handle = new BarcodeHandle();
    handle->object = std::move(object);
    handle->type = type;
    return handle;
  } catch (...) {
    return nullptr;
  }
}

void barcode_destroy(BarcodeHandle* handle) {
  // Freeing a handle another thread is drawing on would pull its memory away mid-call:
  // such a handle is left alone (lost) instead.
  if (handle == nullptr || HandleEntry(handle).entered()) delete handle;
}

void barcode_set_output_format(BarcodeHandle* handle, const char* format) {
  BarcodeBase* object = ObjectOf(handle);
  if (object == nullptr || format == nullptr) return;
  GuardSetter([&] { object->SetOutputFormat(format); });
}

int barcode_is_svg_output(BarcodeHandle* handle) {
  const BarcodeBase* object = ObjectOf(handle);
  return object != nullptr && object->IsSvgOutput() ? 1 : 0;
}

const char* barcode_get_svg(BarcodeHandle* handle) {
  return StoreTextResult(handle, [](BarcodeBase& object) { return object.GetSvg(); });
}

const char* barcode_get_base64(BarcodeHandle* handle) {
  return StoreTextResult(handle, [](BarcodeBase& object) { return object.GetImageBase64(); });
}

const uint8_t* barcode_get_image_data(BarcodeHandle* handle, uint32_t* size) {
  if (size != nullptr) *size = 0;
  BarcodeBase* object = ObjectOf(handle);
  const HandleEntry entry(handle);
  if (object == nullptr || size == nullptr || !entry.entered()) return nullptr;
  try {
    const barcode_orv::log::ReasonCapture capture;
    std::vector<uint8_t> png = object->GetImageMemory();
    if (png.empty() && !capture.last().empty()) handle->last_error = capture.last();
    handle->image_data = std::move(png);
    *size = static_cast<uint32_t>(handle->image_data.size());
    return handle->image_data.empty() ? nullptr : handle->image_data.data();
  } catch (...) {
    *size = 0;
    return nullptr;
  }
}

const char* barcode_get_last_error(BarcodeHandle* handle) {
  if (handle == nullptr) return kEmpty;
  // This thread's last call on the handle was refused, or this one would be.
  if (barcode_orv::ffi::HandleRefusedOnThisThread() == handle) return barcode_orv::ffi::kHandleInUse;
  const HandleEntry entry(handle);
  return entry.entered() ? handle->last_error.c_str() : barcode_orv::ffi::kHandleInUse;
}

void barcode_set_throw_on_capacity_error(BarcodeHandle* handle, int on) {
  if (handle != nullptr) handle->throw_on_capacity_error = on != 0;
}

void barcode_set_quiet(int on) { barcode_orv::log::SetQuiet(on != 0); }

void barcode_set_error_lines(int on) { barcode_orv::log::SetErrorLines(on != 0); }

const char* barcode_get_last_warning(BarcodeHandle* handle) {
  const BarcodeBase* object = ObjectOf(handle);
  const HandleEntry entry(handle);
  if (object == nullptr || !entry.entered() || !handle->last_error.empty()) return kEmpty;
  return object->GetLastWarning().c_str();
}

void barcode_set_standard(BarcodeHandle* handle, int on) {
  BarcodeBase* object = ObjectOf(handle);
  if (object == nullptr) return;
  const bool standard = on != 0;
  object->SetStandardProfile(standard);
  object->SetStandardEncoding(standard);
  object->SetQuietZone(standard);
  handle->throw_on_capacity_error = !standard;
  // Whole-pixel modules unless the host asked for fit_width itself; GS1-128's default
  // fractional fit comes back with the compatibility profile.
  const bool gs1_128 = barcode_orv::ffi::SymbologyOf(handle)->family == barcode_orv::ffi::Family::kGs1_128;
  if (!handle->fit_width_set) object->SetFitWidth(!standard && gs1_128);
}

// ---- Options for every symbology ----

void barcode_set_foreground_color(BarcodeHandle* handle, int r, int g, int b, int a) {
  if (BarcodeBase* object = ObjectOf(handle)) GuardSetter([&] { object->SetForegroundColor(r, g, b, a); });
}

void barcode_set_background_color(BarcodeHandle* handle, int r, int g, int b, int a) {
  if (BarcodeBase* object = ObjectOf(handle)) GuardSetter([&] { object->SetBackgroundColor(r, g, b, a); });
}

void barcode_set_px_adjust_black(BarcodeHandle* handle, int px) {
  if (BarcodeBase* object = ObjectOf(handle)) object->SetPxAdjustBlack(px);
}

void barcode_set_px_adjust_white(BarcodeHandle* handle, int px) {
  if (BarcodeBase* object = ObjectOf(handle)) object->SetPxAdjustWhite(px);
}

void barcode_set_standard_encoding(BarcodeHandle* handle, int on) {
  if (BarcodeBase* object = ObjectOf(handle)) object->SetStandardEncoding(on != 0);
}

void barcode_set_quiet_zone(BarcodeHandle* handle, int on) {
  if (BarcodeBase* object = ObjectOf(handle)) object->SetQuietZone(on != 0);
}

void barcode_set_fit_width(BarcodeHandle* handle, int fit) {
  if (BarcodeBase* object = ObjectOf(handle)) {
    object->SetFitWidth(fit != 0);
    handle->fit_width_set = true;
  }
}

// ---- Options for linear symbologies ----

void barcode_set_show_text(BarcodeHandle* handle, int show) {
  if (BarcodeBase1D* object = ObjectFor<PartOf("barcode_set_show_text")>(handle)) object->SetShowText(show != 0);
}

void barcode_set_text_font_scale(BarcodeHandle* handle, double scale) {
  if (BarcodeBase1D* object = ObjectFor<PartOf("barcode_set_text_font_scale")>(handle))
    object->SetTextFontScale(NarrowToFloat(scale));
}

void barcode_set_text_gap(BarcodeHandle* handle, double scale) {
  if (BarcodeBase1D* object = ObjectFor<PartOf("barcode_set_text_gap")>(handle))
    object->SetTextGap(NarrowToFloat(scale));
}

void barcode_set_text_even_spacing(BarcodeHandle* handle, int even) {
  if (BarcodeBase1D* object = ObjectFor<PartOf("barcode_set_text_even_spacing")>(handle))
    object->SetTextEvenSpacing(even != 0);
}

void barcode_set_show_start_stop(BarcodeHandle* handle, int show) {
  if (BarcodeBase1D* object = ObjectFor<PartOf("barcode_set_show_start_stop")>(handle)) {
    object->SetShowStartStop(show != 0);
  }
}

void barcode_set_extended_guard(BarcodeHandle* handle, int extended) {
  auto* object = ObjectFor<PartOf("barcode_set_extended_guard")>(handle);
  if (object != nullptr) object->SetExtendedGuard(extended != 0);
}

// ---- Drawing ----

int barcode_draw_1d(BarcodeHandle* handle, const char* text, int width, int height) {
  BarcodeBase* object = ObjectOf(handle);
  if (object == nullptr || text == nullptr) return RefuseDraw(handle, text, "barcode_draw_1d");
  return GuardDraw(handle, [&] { return object->Draw(std::string(text), 0, 0, width, height); });
}

int barcode_draw_yubin(BarcodeHandle* handle, const char* text, int size) {
  auto* object = ObjectFor<PartOf("barcode_draw_yubin")>(handle);
  if (object == nullptr || text == nullptr) return RefuseDraw(handle, text, "barcode_draw_yubin");
  return GuardDraw(handle, [&] { return object->Draw(std::string(text), 0, 0, size); });
}

int barcode_draw_yubin_with_width(BarcodeHandle* handle, const char* text, int width, int height) {
  BarcodeBase* object = ObjectFor<PartOf("barcode_draw_yubin_with_width")>(handle);
  if (object == nullptr || text == nullptr) return RefuseDraw(handle, text, "barcode_draw_yubin_with_width");
  return GuardDraw(handle, [&] { return object->Draw(std::string(text), 0, 0, width, height); });
}

int barcode_draw_convenience(BarcodeHandle* handle, const char* text, int width, int height) {
  auto* object = ObjectFor<PartOf("barcode_draw_convenience")>(handle);
  if (object == nullptr || text == nullptr) return RefuseDraw(handle, text, "barcode_draw_convenience");
  return GuardDraw(handle, [&] { return object->DrawConvenience(std::string(text), 0, 0, width, height); });
}

int barcode_draw_stacked(BarcodeHandle* handle, const char* text, int width, int height) {
  auto* object = ObjectFor<PartOf("barcode_draw_stacked")>(handle);
  if (object == nullptr || text == nullptr) return RefuseDraw(handle, text, "barcode_draw_stacked");
  return GuardDraw(handle, [&] { return object->DrawStacked(std::string(text), 0, 0, width, height); });
}

// ---- GS1 DataBar helpers ----

void barcode_set_symbol_type_14(BarcodeHandle* handle, const char* name) {
  auto* object = ObjectFor<PartOf("barcode_set_symbol_type_14")>(handle);
  if (object == nullptr || name == nullptr) return;
  const std::string form(name);
  if (form == "OMNIDIRECTIONAL") object->SetSymbolType(0);
  if (form == "STACKED") object->SetSymbolType(1);
  if (form == "STACKED_OMNIDIRECTIONAL") object->SetSymbolType(2);
}

const char* barcode_get_symbol_type_14(BarcodeHandle* handle) {
  auto* object = ObjectFor<PartOf("barcode_get_symbol_type_14")>(handle);
  if (object == nullptr) return kEmpty;
  switch (object->GetSymbolType()) {
    case 1: return "STACKED";
    case 2: return "STACKED_OMNIDIRECTIONAL";
    default: return "OMNIDIRECTIONAL";
  }
}

int barcode_encode_14(BarcodeHandle* handle, const char* text) {
  auto* object = ObjectFor<PartOf("barcode_encode_14")>(handle);
  if (object == nullptr || text == nullptr) return 0;
  try {
    return object->encode(text) ? 1 : 0;
  } catch (...) {  // a rejected text is a 0, never an exception across the C interface
    return 0;
  }
}

const char* barcode_calculate_check_digit_14(const char* text) {
  // One process-wide result, as documented: a fixed buffer whose address never changes,
  // written under a lock so that concurrent calls cannot tear it.
  static std::mutex mutex;
  static char result[2] = "";
  if (text == nullptr) return kEmpty;
  try {
    const std::string digit = barcode_orv::internal::GtinCheckDigit13(text);
    if (digit.size() != 1) return kEmpty;
    const std::lock_guard<std::mutex> lock(mutex);
    result[0] = digit[0];
    return result;
  } catch (...) {
    return kEmpty;
  }
}

void barcode_set_symbol_type_exp(BarcodeHandle* handle, const char* name) {
  auto* object = ObjectFor<PartOf("barcode_set_symbol_type_exp")>(handle);
  if (object == nullptr || name == nullptr) return;
  const std::string form(name);
  if (form == "UNSTACKED") object->SetSymbolType(0);
  if (form == "STACKED") object->SetSymbolType(1);
}

void barcode_set_no_of_columns(BarcodeHandle* handle, int columns) {
  auto* object = ObjectFor<PartOf("barcode_set_no_of_columns")>(handle);
  if (object != nullptr) object->SetNoOfColumns(columns);  // stored as given; draws use 1..11, else 2
}

}  // extern "C"
