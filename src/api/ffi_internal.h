// The handle behind the C interface and the helpers its functions share.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "barcode_ffi.h"
#include "core/barcode_base.h"
#include "core/errors.h"
#include "core/log.h"

struct BarcodeHandle {
  std::unique_ptr<barcode_orv::BarcodeBase> object;
  int type = 0;
  std::string text_result;          // shared by barcode_get_svg and barcode_get_base64
  std::vector<uint8_t> image_data;  // last barcode_get_image_data result
  std::string last_error;           // why the last draw failed, "" after a success
  bool throw_on_capacity_error = true;
  bool fit_width_set = false;  // the host chose fit_width itself; the standard profile keeps it
};

namespace barcode_orv::ffi {

// The symbology object for `type`, or null for a type this build does not provide.
std::unique_ptr<BarcodeBase> MakeSymbology(int type);

// The handle's object when the handle is usable and its type is one of `types`.
inline BarcodeBase* ObjectFor(BarcodeHandle* handle, std::initializer_list<int> types) {
  if (handle == nullptr || !handle->object) return nullptr;
  for (int type : types) {
    if (handle->type == type) return handle->object.get();
  }
  return nullptr;
}

inline BarcodeBase* ObjectOf(BarcodeHandle* handle) { return handle == nullptr ? nullptr : handle->object.get(); }

// Runs a setter body; options have no error channel, so nothing may escape.
template <typename Body>
void GuardSetter(Body&& body) noexcept {
  try {
    body();
  } catch (...) {  // NOLINT(bugprone-empty-catch): a setter has no error channel
  }
}

// Runs a draw on `handle` and keeps its outcome for barcode_get_last_error. Nothing but
// the documented capacity error leaves, and that one only while the handle asks for it.
// A successful draw with a warning is refused in the standard profile: the picture would
// not read back as its text, so nothing of it is kept.
inline int RefuseOrAccept(BarcodeHandle* handle) {
  BarcodeBase& object = *handle->object;
  if (object.GetStandardProfile() && !object.GetLastWarning().empty()) {
    handle->last_error = object.GetLastWarning();
    object.ResetWarning();
    object.DiscardOutput();
    log::Error(handle->last_error);
    return 0;
  }
  handle->last_error.clear();
  return 1;
}

// A failed draw: its reason kept for barcode_get_last_error. In the standard profile every
// failure has its line on standard error, even those silent by default, and nothing of a
// half-made picture stays behind.
inline int Fail(BarcodeHandle* handle, std::string reason, bool printed) {
  handle->last_error = std::move(reason);
  handle->object->ResetWarning();
  if (handle->object->GetStandardProfile()) {
    if (!printed) log::PrintError(handle->last_error);
    handle->object->DiscardOutput();
  }
  return 0;
}

template <typename Body>
int GuardDraw(BarcodeHandle* handle, Body&& body) {
  const log::ReasonCapture capture;
  handle->object->ResetWarning();
  try {
    if (body()) return RefuseOrAccept(handle);
    if (capture.last().empty()) return Fail(handle, "Draw failed", false);
    return Fail(handle, capture.last(), capture.last_printed());
  } catch (const SymbolCapacityError& error) {
    Fail(handle, error.what(), false);
    if (handle->throw_on_capacity_error) throw;
    return 0;
  } catch (const std::exception& error) {
    return Fail(handle, error.what(), false);
  } catch (...) {
    return Fail(handle, "Draw failed", false);
  }
}

constexpr bool IsLinearType(int type) { return type >= 0 && type <= 15; }
constexpr bool Is2DType(int type) { return type >= 16 && type <= 18; }

}  // namespace barcode_orv::ffi
