#include "core/pixel_blend.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace barcode_orv {
namespace {

// One ARGB8888 pixel over one ABGR8888 pixel. Colour: d + (s - d) * a / 256, red and
// blue together in one word; alpha: a + d_alpha * (255 - a) / 256. Hence a glyph's edge
// over an opaque canvas comes out at alpha 254, as SDL's does.
uint32_t Over(uint32_t argb, uint32_t abgr) {
  const uint32_t alpha = argb >> 24;
  const uint32_t source = (argb & 0xFF00FF00U) | (argb >> 16 & 0xFFU) | (argb & 0xFFU) << 16;  // as ABGR
  if (alpha == 0xFFU) return source;
  const uint32_t red_blue = abgr & 0xFF00FFU;
  const uint32_t green = abgr & 0xFF00U;
  const uint32_t new_red_blue = (red_blue + (((source & 0xFF00FFU) - red_blue) * alpha >> 8)) & 0xFF00FFU;
  const uint32_t new_green = (green + (((source & 0xFF00U) - green) * alpha >> 8)) & 0xFF00U;
  const uint32_t new_alpha = alpha + ((abgr >> 24) * (alpha ^ 0xFFU) >> 8);
  return new_red_blue | new_green | new_alpha << 24;
}

// The alpha bytes of two ARGB8888 pixels read as one 64-bit word (in either byte order).
constexpr uint64_t kAlphaOfTwo = 0xFF000000FF000000U;

#if defined(__GNUC__)
// Four pixels at once, lane by lane the arithmetic of Over(), clear source pixels leaving
// their target as it was: a glyph's edge is a mix of clear and covered pixels, which
// branch by branch costs a misprediction every few pixels.
using FourPixels = uint32_t __attribute__((vector_size(16)));

void OverFour(const uint32_t* argb, uint32_t* abgr) {
  FourPixels s;
  FourPixels t;
  std::memcpy(&s, argb, sizeof s);
  std::memcpy(&t, abgr, sizeof t);
  const FourPixels alpha = s >> 24;
  const FourPixels source = (s & 0xFF00FF00U) | (s >> 16 & 0xFFU) | (s & 0xFFU) << 16;
  const FourPixels red_blue = t & 0xFF00FFU;
  const FourPixels green = t & 0xFF00U;
  const FourPixels new_red_blue = (red_blue + (((source & 0xFF00FFU) - red_blue) * alpha >> 8)) & 0xFF00FFU;
  const FourPixels new_green = (green + (((source & 0xFF00U) - green) * alpha >> 8)) & 0xFF00U;
  const FourPixels new_alpha = alpha + ((t >> 24) * (alpha ^ 0xFFU) >> 8);
  const FourPixels blended = new_red_blue | new_green | new_alpha << 24;
  const auto opaque = reinterpret_cast<FourPixels>(alpha == 0xFFU);  // all ones where true
  const auto clear = reinterpret_cast<FourPixels>(alpha == 0U);
  const FourPixels covered = (opaque & source) | (~opaque & blended);
  const FourPixels result = (clear & t) | (~clear & covered);
  std::memcpy(abgr, &result, sizeof result);
}
#else
void OverFour(const uint32_t* argb, uint32_t* abgr) {
  for (int i = 0; i < 4; ++i) {
    if ((argb[i] >> 24) != 0) abgr[i] = Over(argb[i], abgr[i]);
  }
}
#endif

}  // namespace

bool CanBlendGlyph(const SDL_Surface* image, const SDL_Surface* canvas) {
  return image->format->format == SDL_PIXELFORMAT_ARGB8888 && canvas->format->format == SDL_PIXELFORMAT_ABGR8888 &&
         !SDL_MUSTLOCK(image) && !SDL_MUSTLOCK(canvas);
}

void BlendGlyph(const SDL_Surface* image, SDL_Surface* canvas, int left, int top) {
  const SDL_Rect& part = image->clip_rect;
  const int64_t from_x = std::max<int64_t>(int64_t{left} + part.x, 0);
  const int64_t from_y = std::max<int64_t>(int64_t{top} + part.y, 0);
  const int64_t to_x = std::min<int64_t>(int64_t{left} + part.x + part.w, canvas->w);
  const int64_t to_y = std::min<int64_t>(int64_t{top} + part.y + part.h, canvas->h);
  if (from_x >= to_x) return;  // nothing of it on the canvas (whose pixels may be none at all)
  for (int64_t y = from_y; y < to_y; ++y) {
    const auto* source =
        reinterpret_cast<const uint32_t*>(static_cast<const uint8_t*>(image->pixels) + (y - top) * image->pitch) +
        (from_x - left);
    auto* target = reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(canvas->pixels) + y * canvas->pitch) + from_x;
    int64_t x = from_x;
    // Most of a glyph's box is clear: four clear pixels are passed over at once.
    for (; x + 4 <= to_x; x += 4, source += 4, target += 4) {
      uint64_t first_two;
      uint64_t last_two;
      std::memcpy(&first_two, source, sizeof first_two);
      std::memcpy(&last_two, source + 2, sizeof last_two);
      if (((first_two | last_two) & kAlphaOfTwo) == 0) continue;
      OverFour(source, target);
    }
    for (; x < to_x; ++x, ++source, ++target) {
      if ((*source >> 24) != 0) *target = Over(*source, *target);
    }
  }
}

}  // namespace barcode_orv
