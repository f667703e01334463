// Owning holders for SDL, SDL_ttf and SDL_RWops resources.
#pragma once

#include <SDL.h>
#include <SDL_ttf.h>

#include <memory>

namespace barcode_orv {

struct SurfaceDeleter {
  void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};
struct RendererDeleter {
  void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
};
struct TextureDeleter {
  void operator()(SDL_Texture* texture) const { SDL_DestroyTexture(texture); }
};
struct FontDeleter {
  void operator()(TTF_Font* font) const { TTF_CloseFont(font); }
};
struct RWopsDeleter {
  void operator()(SDL_RWops* rw) const { SDL_RWclose(rw); }
};

using SurfacePtr = std::unique_ptr<SDL_Surface, SurfaceDeleter>;
using RendererPtr = std::unique_ptr<SDL_Renderer, RendererDeleter>;
using TexturePtr = std::unique_ptr<SDL_Texture, TextureDeleter>;
using FontPtr = std::unique_ptr<TTF_Font, FontDeleter>;
using RWopsPtr = std::unique_ptr<SDL_RWops, RWopsDeleter>;

// A surface several owners read (a cached glyph and the pieces drawn from it).
using SharedSurface = std::shared_ptr<SDL_Surface>;
inline SharedSurface ShareSurface(SDL_Surface* surface) {
  return surface == nullptr ? SharedSurface() : SharedSurface(surface, SurfaceDeleter());
}

}  // namespace barcode_orv
