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
template <typename Body>
int GuardDraw(BarcodeHandle* handle, Body&& body) {
  const log::ReasonCapture capture;
  try {
    if (body()) {
      handle->last_error.clear();
      return 1;
    }
    handle->last_error = capture.last().empty() ? std::string("Draw failed") : capture.last();
    return 0;
  } catch (const SymbolCapacityError& error) {
    handle->last_error = error.what();
    if (handle->throw_on_capacity_error) throw;
    return 0;
  } catch (const std::exception& error) {
    handle->last_error = error.what();
    return 0;
  } catch (...) {
    handle->last_error = "Draw failed";
    return 0;
  }
}

constexpr bool IsLinearType(int type) { return type >= 0 && type <= 15; }
constexpr bool Is2DType(int type) { return type >= 16 && type <= 18; }

}  // namespace barcode_orv::ffi
