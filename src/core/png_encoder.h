// PNG encoding of a canvas into memory.
#pragma once

#include <SDL.h>

#include <cstdint>
#include <vector>

namespace barcode_orv {

// The PNG file for `surface` (any 32-bit format), written through a growing memory
// stream. A canvas of at most 256 distinct colours is saved as an 8-bit indexed image
// with the same pixels, which encodes several times faster. Empty on failure.
std::vector<uint8_t> EncodeSurfacePng(SDL_Surface* surface);

}  // namespace barcode_orv
