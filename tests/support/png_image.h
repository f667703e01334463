// PNG decoding for tests, through SDL2_image.
#pragma once

#include <cstdint>
#include <vector>

#include "support/zxing_decode.h"

namespace barcode_orv::testing {

// Decodes PNG bytes into RGBA; ok() is false (width 0) when the bytes are no PNG.
RgbaImage DecodePng(const uint8_t* data, size_t size);
inline RgbaImage DecodePng(const std::vector<uint8_t>& png) { return DecodePng(png.data(), png.size()); }

}  // namespace barcode_orv::testing
