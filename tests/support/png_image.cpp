#include "support/png_image.h"

#include <SDL.h>
#include <SDL_image.h>

#include <memory>

namespace barcode_orv::testing {

uint32_t RgbaImage::Pixel(int x, int y) const {
  const uint8_t* p = &pixels[(static_cast<size_t>(y) * width + x) * 4];
  return (uint32_t{p[0]} << 24) | (uint32_t{p[1]} << 16) | (uint32_t{p[2]} << 8) | p[3];
}

RgbaImage DecodePng(const uint8_t* data, size_t size) {
  RgbaImage image;
  if (data == nullptr || size == 0) return image;
  SDL_RWops* rw = SDL_RWFromConstMem(data, static_cast<int>(size));
  if (rw == nullptr) return image;
  std::unique_ptr<SDL_Surface, decltype(&SDL_FreeSurface)> loaded(IMG_LoadTyped_RW(rw, 1, "PNG"), SDL_FreeSurface);
  if (!loaded) return image;
  std::unique_ptr<SDL_Surface, decltype(&SDL_FreeSurface)> rgba(
      SDL_ConvertSurfaceFormat(loaded.get(), SDL_PIXELFORMAT_ABGR8888, 0), SDL_FreeSurface);
  if (!rgba) return image;
  image.width = rgba->w;
  image.height = rgba->h;
  image.pixels.resize(static_cast<size_t>(rgba->w) * rgba->h * 4);
  for (int y = 0; y < rgba->h; ++y) {
    const auto* row = static_cast<const uint8_t*>(rgba->pixels) + static_cast<size_t>(y) * rgba->pitch;
    std::copy(row, row + static_cast<size_t>(rgba->w) * 4,
              image.pixels.begin() + static_cast<std::ptrdiff_t>(y) * rgba->w * 4);
  }
  return image;
}

}  // namespace barcode_orv::testing
