#include "core/png_encoder.h"

#include <SDL_image.h>

#include <array>
#include <cstring>
#include <optional>

#include "core/sdl_handles.h"

namespace barcode_orv {
namespace {

// ---- A write-only SDL_RWops that appends to a std::vector ----

struct GrowingBuffer {
  std::vector<uint8_t>* bytes;
  size_t position;
};

GrowingBuffer& BufferOf(SDL_RWops* rw) { return *static_cast<GrowingBuffer*>(rw->hidden.unknown.data1); }

Sint64 SizeOfBuffer(SDL_RWops* rw) { return static_cast<Sint64>(BufferOf(rw).bytes->size()); }

Sint64 SeekInBuffer(SDL_RWops* rw, Sint64 offset, int whence) {
  GrowingBuffer& buffer = BufferOf(rw);
  Sint64 base = 0;
  if (whence == RW_SEEK_CUR) base = static_cast<Sint64>(buffer.position);
  if (whence == RW_SEEK_END) base = static_cast<Sint64>(buffer.bytes->size());
  const Sint64 target = base + offset;
  if (target < 0) return SDL_SetError("seek before start of buffer");
  buffer.position = static_cast<size_t>(target);
  return target;
}

size_t ReadFromBuffer(SDL_RWops* /*rw*/, void* /*ptr*/, size_t /*size*/, size_t /*count*/) { return 0; }

size_t WriteToBuffer(SDL_RWops* rw, const void* ptr, size_t size, size_t count) {
  GrowingBuffer& buffer = BufferOf(rw);
  const size_t length = size * count;
  if (length == 0) return 0;
  if (buffer.position + length > buffer.bytes->size()) buffer.bytes->resize(buffer.position + length);
  std::memcpy(buffer.bytes->data() + buffer.position, ptr, length);
  buffer.position += length;
  return count;
}

int CloseBuffer(SDL_RWops* rw) {
  SDL_FreeRW(rw);
  return 0;
}

RWopsPtr OpenGrowingStream(GrowingBuffer* buffer) {
  SDL_RWops* rw = SDL_AllocRW();
  if (rw == nullptr) return nullptr;
  rw->size = SizeOfBuffer;
  rw->seek = SeekInBuffer;
  rw->read = ReadFromBuffer;
  rw->write = WriteToBuffer;
  rw->close = CloseBuffer;
  rw->type = SDL_RWOPS_UNKNOWN;
  rw->hidden.unknown.data1 = buffer;
  return RWopsPtr(rw);
}

// ---- Palette extraction ----

// Distinct 32-bit pixel values, up to 256, in first-seen order.
class PaletteBuilder {
 public:
  // Index of `pixel`, adding it if new; nullopt once more than 256 colours are seen.
  std::optional<uint8_t> IndexOf(uint32_t pixel) {
    size_t slot = Hash(pixel);
    while (used_[slot]) {
      if (keys_[slot] == pixel) return indices_[slot];
      slot = (slot + 1) & (kSlots - 1);
    }
    if (colors_.size() == 256) return std::nullopt;
    used_[slot] = true;
    keys_[slot] = pixel;
    indices_[slot] = static_cast<uint8_t>(colors_.size());
    colors_.push_back(pixel);
    return indices_[slot];
  }
  const std::vector<uint32_t>& colors() const { return colors_; }

 private:
  static constexpr size_t kSlots = 1024;  // load factor stays at or below 1/4
  static size_t Hash(uint32_t pixel) { return (pixel * 2654435761U) >> 22; }

  std::array<uint32_t, kSlots> keys_{};
  std::array<uint8_t, kSlots> indices_{};
  std::array<bool, kSlots> used_{};
  std::vector<uint32_t> colors_;
};

// An 8-bit indexed copy of a 32-bit surface, or null when it holds more than 256 colours.
SurfacePtr IndexedCopy(SDL_Surface* surface) {
  if (surface->format->BytesPerPixel != 4 || SDL_MUSTLOCK(surface)) return nullptr;
  SurfacePtr indexed(SDL_CreateRGBSurfaceWithFormat(0, surface->w, surface->h, 8, SDL_PIXELFORMAT_INDEX8));
  if (!indexed) return nullptr;
  PaletteBuilder palette;
  const size_t row_bytes = static_cast<size_t>(surface->w) * 4;
  for (int y = 0; y < surface->h; ++y) {
    const auto* src_bytes = static_cast<const uint8_t*>(surface->pixels) + static_cast<ptrdiff_t>(y) * surface->pitch;
    const auto* src = reinterpret_cast<const uint32_t*>(src_bytes);
    uint8_t* dst = static_cast<uint8_t*>(indexed->pixels) + static_cast<ptrdiff_t>(y) * indexed->pitch;
    // Bars and modules repeat rows: an identical source row reuses the indices above.
    if (y > 0 && std::memcmp(src_bytes, src_bytes - surface->pitch, row_bytes) == 0) {
      std::memcpy(dst, dst - indexed->pitch, static_cast<size_t>(surface->w));
      continue;
    }
    uint32_t last_pixel = 0;
    uint8_t last_index = 0;
    bool have_last = false;
    for (int x = 0; x < surface->w; ++x) {
      const uint32_t pixel = src[x];
      if (!have_last || pixel != last_pixel) {  // bars and spaces come in runs
        const std::optional<uint8_t> index = palette.IndexOf(pixel);
        if (!index) return nullptr;
        last_pixel = pixel;
        last_index = *index;
        have_last = true;
      }
      dst[x] = last_index;
    }
  }
  std::vector<SDL_Color> colors;
  colors.reserve(palette.colors().size());
  for (uint32_t pixel : palette.colors()) {
    SDL_Color color;
    SDL_GetRGBA(pixel, surface->format, &color.r, &color.g, &color.b, &color.a);
    colors.push_back(color);
  }
  if (!colors.empty() &&
      SDL_SetPaletteColors(indexed->format->palette, colors.data(), 0, static_cast<int>(colors.size())) != 0) {
    return nullptr;
  }
  return indexed;
}

std::vector<uint8_t> SavePng(SDL_Surface* surface) {
  std::vector<uint8_t> bytes;
  GrowingBuffer buffer{&bytes, 0};
  RWopsPtr stream = OpenGrowingStream(&buffer);
  if (!stream) return {};
  if (IMG_SavePNG_RW(surface, stream.get(), 0) != 0) return {};
  return bytes;
}

}  // namespace

std::vector<uint8_t> EncodeSurfacePng(SDL_Surface* surface) {
  if (surface == nullptr) return {};
  // PNG has no empty images; libpng would reject the header only after SDL_image has
  // allocated its palette, which it then leaks.
  if (surface->w <= 0 || surface->h <= 0) {
    SDL_SetError("a PNG image needs at least one pixel, the canvas is %dx%d", surface->w, surface->h);
    return {};
  }
  if (SurfacePtr indexed = IndexedCopy(surface)) {
    std::vector<uint8_t> png = SavePng(indexed.get());
    if (!png.empty()) return png;
  }
  return SavePng(surface);
}

}  // namespace barcode_orv
