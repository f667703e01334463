// Draws a QR Code through the installed library and checks the PNG signature.
#include <cstdio>
#include <cstring>

#include "barcode_ffi.h"

int main() {
  BarcodeHandle* handle = barcode_create(BARCODE_QR);
  if (handle == nullptr) return 1;
  uint32_t size = 0;
  const bool drawn = barcode_draw_2d(handle, "installed", 120) != 0;
  const uint8_t* png = drawn ? barcode_get_image_data(handle, &size) : nullptr;
  const bool ok = png != nullptr && size > 8 && std::memcmp(png, "\x89PNG", 4) == 0;
  barcode_destroy(handle);
  std::puts(ok ? "consumer: QR Code drawn through the installed package" : "consumer: failed");
  return ok ? 0 : 1;
}
