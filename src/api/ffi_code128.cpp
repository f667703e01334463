// barcode_set_code_mode: the Code 128 code-set choice.
#include <cstring>

#include "api/ffi_internal.h"
#include "linear/code128.h"

using barcode_orv::CodeSet128;

extern "C" BARCODE_API void barcode_set_code_mode(BarcodeHandle* handle, const char* mode) {
  try {
    auto* object = barcode_orv::ffi::ObjectFor<barcode_orv::ffi::PartOf("barcode_set_code_mode")>(handle);
    if (object == nullptr || mode == nullptr) return;
    if (std::strcmp(mode, "A") == 0) {
      object->SetCodeMode(CodeSet128::kA);
    } else if (std::strcmp(mode, "B") == 0) {
      object->SetCodeMode(CodeSet128::kB);
    } else if (std::strcmp(mode, "C") == 0) {
      object->SetCodeMode(CodeSet128::kC);
    } else if (std::strcmp(mode, "AUTO") == 0) {
      object->SetCodeMode(CodeSet128::kAuto);
    }
  } catch (...) {
    // Nothing may leave the C interface.
  }
}
