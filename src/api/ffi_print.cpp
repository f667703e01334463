// C interface: print size (X-dimension at a resolution), measuring, rotation.
#include <cmath>
#include <string>

#include "api/ffi_internal.h"
#include "linear/itf.h"

using barcode_orv::BarcodeBase;
using barcode_orv::ffi::HandleEntry;
using barcode_orv::ffi::ObjectOf;

namespace {

// A setter refused: 0, with the reason kept for barcode_get_last_error.
int Refuse(BarcodeHandle* handle, std::string reason) {
  handle->last_error = std::move(reason);
  return 0;
}

std::string Number(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
  return std::to_string(value);
}

}  // namespace

extern "C" {

int barcode_set_xdim(BarcodeHandle* handle, double mm, int dpi) {
  BarcodeBase* object = ObjectOf(handle);
  const HandleEntry entry(handle);
  if (object == nullptr || !entry.entered()) return 0;
  if (!object->SetXDim(mm, dpi)) {
    return Refuse(handle, "barcode_set_xdim: " + Number(mm) + " mm at " + std::to_string(dpi) +
                              " dpi is outside 0 < mm <= 100, 1 <= dpi <= 10000, modules of at most " +
                              std::to_string(BarcodeBase::kMaxModulePixels) + " px");
  }
  return 1;
}

int barcode_set_rotation(BarcodeHandle* handle, int degrees) {
  BarcodeBase* object = ObjectOf(handle);
  const HandleEntry entry(handle);
  if (object == nullptr || !entry.entered()) return 0;
  if (!object->SetRotation(degrees)) {
    return Refuse(handle, "barcode_set_rotation: " + std::to_string(degrees) + " is not 0, 90, 180 or 270");
  }
  return 1;
}

void barcode_set_bearer_bars(BarcodeHandle* handle, int on) {
  using barcode_orv::ffi::PartOf;
  if (auto* itf = barcode_orv::ffi::ObjectFor<PartOf("barcode_set_bearer_bars")>(handle)) itf->SetBearerBars(on != 0);
}

int barcode_measure(BarcodeHandle* handle, const char* text, int* width, int* height) {
  BarcodeBase* object = ObjectOf(handle);
  const HandleEntry entry(handle);
  if (object == nullptr || !entry.entered()) return 0;
  if (text == nullptr || width == nullptr || height == nullptr) {
    return Refuse(handle, "barcode_measure: the text or a size pointer is null");
  }
  const barcode_orv::log::ReasonCapture capture;
  try {
    const bool measured = object->Measure(text, width, height);
    object->ResetWarning();  // a measure leaves nothing to warn about
    if (measured) {
      handle->last_error.clear();
      return 1;
    }
  } catch (const std::exception& error) {
    return Refuse(handle, error.what());
  }
  return Refuse(handle, capture.last().empty() ? "barcode_measure: the symbol cannot be measured" : capture.last());
}

}  // extern "C"
