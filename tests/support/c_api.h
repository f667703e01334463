// Small helpers for tests that go through the C interface.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "barcode_ffi.h"
#include "support/zxing_decode.h"

namespace barcode_orv::testing {

struct HandleDeleter {
  void operator()(BarcodeHandle* handle) const { barcode_destroy(handle); }
};
using HandlePtr = std::unique_ptr<BarcodeHandle, HandleDeleter>;

inline HandlePtr MakeHandle(int type) { return HandlePtr(barcode_create(type)); }

// The PNG bytes of the handle's last raster draw (empty when there are none).
inline std::vector<uint8_t> ImageData(BarcodeHandle* handle) {
  uint32_t size = 0;
  const uint8_t* data = barcode_get_image_data(handle, &size);
  return data == nullptr ? std::vector<uint8_t>() : std::vector<uint8_t>(data, data + size);
}

// Reads the handle's last raster draw back with the independent reader.
inline Decoded DecodeHandle(BarcodeHandle* handle, Symbology symbology, bool any_orientation = false) {
  return DecodePngBarcode(ImageData(handle), symbology, kAutoQuietZone, any_orientation);
}

}  // namespace barcode_orv::testing
