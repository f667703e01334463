// Blending an anti-aliased glyph onto the canvas, pixel for pixel as SDL's blit does.
#pragma once

#include <SDL.h>

namespace barcode_orv {

// True when BlendGlyph can take `image` onto `canvas`: a glyph as SDL_ttf renders it
// (ARGB8888) onto the canvas's ABGR8888, neither needing a lock.
bool CanBlendGlyph(const SDL_Surface* image, const SDL_Surface* canvas);

// Blends `image` with its per-pixel alpha onto `canvas` with its top left corner at
// (left, top), clipped to the canvas: the pixels SDL_BlitSurface writes in blend mode
// (SDL 2's arithmetic for 8888 pixel alpha), without its blit mapping, which writes into
// the source surface, so that one cached glyph can be read by several draws at once.
// Only the image's clip rectangle is blended: the rest must be clear (the glyph cache
// narrows it to a glyph's ink).
void BlendGlyph(const SDL_Surface* image, SDL_Surface* canvas, int left, int top);

}  // namespace barcode_orv
