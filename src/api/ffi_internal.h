// The handle behind the C interface and the helpers its functions share.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "api/symbology_registry.h"
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
  // Set while a call runs on the handle: a second thread entering it meanwhile (which
  // the interface does not allow) is refused instead of corrupting the handle.
  std::atomic<bool> in_use{false};
};

namespace barcode_orv::ffi {

// The handle's object as the class that serves `kPart` (a part of symbology_registry.h,
// usually PartOf the calling function's name), when the handle's symbology takes that
// part; null otherwise. The registry's table is checked at compile time to take no part
// its class does not serve, which makes the downcast safe.
template <uint32_t kPart>
typename PartClass<kPart>::type* ObjectFor(BarcodeHandle* handle) {
  const Symbology* symbology = SymbologyOf(handle);
  if (symbology == nullptr || !symbology->Takes(kPart)) return nullptr;
  return static_cast<typename PartClass<kPart>::type*>(handle->object.get());
}

inline BarcodeBase* ObjectOf(BarcodeHandle* handle) { return handle == nullptr ? nullptr : handle->object.get(); }

constexpr const char kHandleInUse[] = "Handle in use by another thread: calls on one handle must not overlap";

// The handle this thread's last call was refused on because another thread was using
// it, or null. Kept per thread: the handle's own fields belong to the other call.
inline const BarcodeHandle*& HandleRefusedOnThisThread() {
  thread_local const BarcodeHandle* refused = nullptr;
  return refused;
}

// Marks `handle` in use for the lifetime of this object, unless another call holds it.
class HandleEntry {
 public:
  explicit HandleEntry(BarcodeHandle* handle)
      : handle_(handle), entered_(handle != nullptr && !handle->in_use.exchange(true, std::memory_order_acquire)) {
    if (entered_ && HandleRefusedOnThisThread() == handle) HandleRefusedOnThisThread() = nullptr;
    if (handle != nullptr && !entered_) HandleRefusedOnThisThread() = handle;
  }
  ~HandleEntry() {
    if (entered_) handle_->in_use.store(false, std::memory_order_release);
  }
  HandleEntry(const HandleEntry&) = delete;
  HandleEntry& operator=(const HandleEntry&) = delete;

  bool entered() const { return entered_; }

 private:
  BarcodeHandle* handle_;
  bool entered_;
};

// A draw refused before it ran (wrong handle type, null text): 0, with the reason kept
// for barcode_get_last_error when there is a handle to keep it in.
inline int RefuseDraw(BarcodeHandle* handle, const char* text, const char* function) {
  const HandleEntry entry(handle);
  if (!entry.entered()) return 0;
  handle->last_error =
      std::string(function) +
      (text == nullptr ? ": the text is null" : ": not for symbology type " + std::to_string(handle->type));
  return 0;
}

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
  const HandleEntry entry(handle);
  if (!entry.entered()) return 0;
  const log::ReasonCapture capture;
  handle->object->ResetWarning();
  BarcodeBase& object = *handle->object;
  try {
    if (body()) {
      if (RefuseOrAccept(handle) == 0) return 0;
      object.FinishOutput();
      return 1;
    }
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

}  // namespace barcode_orv::ffi
