#include "core/png_encoder.h"

#include <SDL_image.h>
#include <png.h>
#include <zlib.h>

#include <array>
#include <csetjmp>
#include <cstring>
#include <optional>

#include "core/sdl_handles.h"

namespace barcode_orv {
namespace {

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

// A canvas of at most 256 colours as palette indices packed at the smallest PNG bit
// depth. Rows equal to the row above share its storage.
struct PaletteImage {
  int width = 0;
  int height = 0;
  int bit_depth = 8;
  std::vector<png_color> palette;
  std::vector<png_byte> alpha;  // tRNS: translucent entries come first, so it stays short
  std::vector<png_byte> packed;
  std::vector<png_bytep> rows;
  size_t distinct_rows = 0;
};

int BitDepthFor(size_t colour_count) {
  if (colour_count <= 2) return 1;
  if (colour_count <= 4) return 2;
  if (colour_count <= 16) return 4;
  return 8;
}

// Indices of one source row, one byte each; false past 256 colours.
bool IndexRow(const uint32_t* src, int width, PaletteBuilder* palette, uint8_t* dst) {
  uint32_t last_pixel = 0;
  uint8_t last_index = 0;
  bool have_last = false;
  for (int x = 0; x < width; ++x) {
    const uint32_t pixel = src[x];
    if (!have_last || pixel != last_pixel) {  // bars, spaces and modules come in runs
      const std::optional<uint8_t> index = palette->IndexOf(pixel);
      if (!index) return false;
      last_pixel = pixel;
      last_index = *index;
      have_last = true;
    }
    dst[x] = last_index;
  }
  return true;
}

// Packs a row of byte indices in place at `bit_depth`, most significant bits first,
// mapping each index through `order` on the way.
void PackRow(uint8_t* row, int width, int bit_depth, const std::array<uint8_t, 256>& order) {
  if (bit_depth == 8) {
    for (int x = 0; x < width; ++x) row[x] = order[row[x]];
    return;
  }
  const int per_byte = 8 / bit_depth;
  for (int x = 0; x < width; x += per_byte) {
    unsigned byte = 0;
    for (int i = 0; i < per_byte; ++i) {
      const unsigned value = x + i < width ? order[row[x + i]] : 0U;
      byte = (byte << bit_depth) | value;
    }
    row[x / per_byte] = static_cast<uint8_t>(byte);
  }
}

std::optional<PaletteImage> ToPaletteImage(const SDL_Surface* surface) {
  if (surface->format->BytesPerPixel != 4 || SDL_MUSTLOCK(surface)) return std::nullopt;
  PaletteImage image;
  image.width = surface->w;
  image.height = surface->h;
  const auto width = static_cast<size_t>(surface->w);
  const size_t row_bytes = width * 4;
  PaletteBuilder builder;
  // Pass 1: byte indices of every distinct row; repeated rows point at the one above.
  std::vector<size_t> row_offset(static_cast<size_t>(surface->h));
  size_t unique_rows = 0;
  image.packed.resize(width);
  for (int y = 0; y < surface->h; ++y) {
    const auto* src = static_cast<const uint8_t*>(surface->pixels) + static_cast<ptrdiff_t>(y) * surface->pitch;
    if (y > 0 && std::memcmp(src, src - surface->pitch, row_bytes) == 0) {
      row_offset[y] = row_offset[y - 1];
      continue;
    }
    if (image.packed.size() < (unique_rows + 1) * width) image.packed.resize(image.packed.size() * 2);
    row_offset[y] = unique_rows * width;
    if (!IndexRow(reinterpret_cast<const uint32_t*>(src), surface->w, &builder, image.packed.data() + row_offset[y])) {
      return std::nullopt;
    }
    ++unique_rows;
  }
  // Translucent colours first, so the tRNS chunk ends at the last of them.
  const std::vector<uint32_t>& colors = builder.colors();
  std::array<uint8_t, 256> order{};
  std::vector<SDL_Color> sorted;
  sorted.reserve(colors.size());
  for (int pass = 0; pass < 2; ++pass) {
    for (size_t i = 0; i < colors.size(); ++i) {
      SDL_Color color;
      SDL_GetRGBA(colors[i], surface->format, &color.r, &color.g, &color.b, &color.a);
      if ((color.a < 255) != (pass == 0)) continue;
      order[i] = static_cast<uint8_t>(sorted.size());
      sorted.push_back(color);
    }
  }
  for (const SDL_Color& color : sorted) {
    image.palette.push_back(png_color{color.r, color.g, color.b});
    if (color.a < 255) image.alpha.push_back(color.a);
  }
  // Pass 2: pack each distinct row where it lies (packing never moves data rightwards).
  image.bit_depth = BitDepthFor(colors.size());
  for (size_t row = 0; row < unique_rows; ++row) {
    PackRow(image.packed.data() + row * width, surface->w, image.bit_depth, order);
  }
  image.distinct_rows = unique_rows;
  image.rows.resize(static_cast<size_t>(surface->h));
  for (size_t y = 0; y < image.rows.size(); ++y) image.rows[y] = image.packed.data() + row_offset[y];
  return image;
}

// ---- Writing with libpng ----

struct PngSink {
  std::vector<uint8_t>* bytes;
};

void WriteToSink(png_structp png, png_bytep data, size_t length) {
  auto* sink = static_cast<PngSink*>(png_get_io_ptr(png));
  bool stored = true;
  try {
    sink->bytes->insert(sink->bytes->end(), data, data + length);
  } catch (...) {
    stored = false;
  }
  if (!stored) png_error(png, "out of memory for the PNG file");
}

void FlushSink(png_structp /*png*/) {}

[[noreturn]] void OnPngError(png_structp png, png_const_charp message) {
  SDL_SetError("libpng: %s", message);
  png_longjmp(png, 1);
}

void IgnorePngWarning(png_structp /*png*/, png_const_charp /*message*/) {}

// Owns libpng's write and info structures.
class PngWriteStruct {
 public:
  PngWriteStruct() : png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, OnPngError, IgnorePngWarning)) {
    if (png_ != nullptr) info_ = png_create_info_struct(png_);
  }
  ~PngWriteStruct() {
    png_destroy_write_struct(png_ != nullptr ? &png_ : nullptr, info_ != nullptr ? &info_ : nullptr);
  }
  PngWriteStruct(const PngWriteStruct&) = delete;
  PngWriteStruct& operator=(const PngWriteStruct&) = delete;

  bool ok() const { return png_ != nullptr && info_ != nullptr; }
  png_structp png() const { return png_; }
  png_infop info() const { return info_; }

 private:
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
};

// How the rows go through zlib, chosen by measurement against the best row filter at
// zlib level 9 (the bench's compact encoding):
// - Two-colour pictures of many distinct rows (2D symbols): level 4, the "filtered"
//   strategy, no row filter; as small as the reference at a third of its time.
// - Two-colour pictures of a few distinct rows (bars without the text line): level 3 with
//   a small hash table. Each row is one literal run and then long copies, which zlib's
//   fast matcher finds without hashing every byte; level 4 took twice the time and 64 KB
//   of table clearing per image for a dozen bytes less.
// - More colours (anti-aliased text): a row that repeats the one above filtered "Up" (all
//   zeros), every other row unfiltered. Without the Up rows a wide picture came out 12 x
//   the reference. Level 2 costs what level 1 does and stays within 1.21 x the reference
//   on a line of text; beyond 32 K pixels of distinct rows (two lines, long lines) level 3's
//   longer search pays: 1.23 x instead of 1.28 x on the convenience-store code.
struct Compression {
  int level;
  int strategy;
  int memory_level;
  bool up_filter_on_repeats;
};
constexpr size_t kFewDistinctRows = 8;
constexpr size_t kLargeDistinctPixels = 32 * 1024;
Compression CompressionFor(const PaletteImage& image) {
  if (image.bit_depth > 1) {
    const bool large = image.distinct_rows * static_cast<size_t>(image.width) > kLargeDistinctPixels;
    return Compression{large ? 3 : 2, Z_DEFAULT_STRATEGY, 4, true};
  }
  if (image.distinct_rows <= kFewDistinctRows) return Compression{3, Z_DEFAULT_STRATEGY, 4, false};
  return Compression{4, Z_FILTERED, 8, false};
}

// Holds only trivially destructible locals: libpng's errors longjmp back into it.
bool WritePaletteImage(png_structp png, png_infop info, const PaletteImage& image, PngSink* sink) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_set_write_fn(png, sink, WriteToSink, FlushSink);
  png_set_IHDR(png, info, static_cast<png_uint_32>(image.width), static_cast<png_uint_32>(image.height),
               image.bit_depth, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  png_set_PLTE(png, info, image.palette.data(), static_cast<int>(image.palette.size()));
  png_set_check_for_invalid_index(png, 0);  // indices come from the palette itself; the check cost a tenth
  if (!image.alpha.empty()) {
    png_set_tRNS(png, info, image.alpha.data(), static_cast<int>(image.alpha.size()), nullptr);
  }
  const Compression compression = CompressionFor(image);
  png_set_compression_level(png, compression.level);
  png_set_compression_strategy(png, compression.strategy);
  png_set_compression_mem_level(png, compression.memory_level);
  // Up must be among the filters when the first row starts, or libpng keeps no previous row.
  png_set_filter(png, PNG_FILTER_TYPE_BASE, compression.up_filter_on_repeats ? PNG_FILTER_UP : PNG_FILTER_NONE);
  png_write_info(png, info);
  for (size_t y = 0; y < image.rows.size(); ++y) {
    if (compression.up_filter_on_repeats && y > 0) {
      const bool repeats = image.rows[y] == image.rows[y - 1];  // shared storage: see ToPaletteImage
      png_set_filter(png, PNG_FILTER_TYPE_BASE, repeats ? PNG_FILTER_UP : PNG_FILTER_NONE);
    }
    png_write_row(png, image.rows[y]);
  }
  png_write_end(png, nullptr);
  return true;
}

std::vector<uint8_t> SavePalettePng(const PaletteImage& image) {
  PngWriteStruct writer;
  if (!writer.ok()) return {};
  std::vector<uint8_t> bytes;
  bytes.reserve(1024);
  PngSink sink{&bytes};
  if (!WritePaletteImage(writer.png(), writer.info(), image, &sink)) return {};
  return bytes;
}

// ---- Canvases of more colours: SDL_image through a growing memory stream ----

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

std::vector<uint8_t> SaveTrueColourPng(SDL_Surface* surface) {
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
  // PNG has no empty images.
  if (surface->w <= 0 || surface->h <= 0) {
    SDL_SetError("a PNG image needs at least one pixel, the canvas is %dx%d", surface->w, surface->h);
    return {};
  }
  if (const std::optional<PaletteImage> image = ToPaletteImage(surface)) {
    std::vector<uint8_t> png = SavePalettePng(*image);
    if (!png.empty()) return png;
  }
  return SaveTrueColourPng(surface);
}

}  // namespace barcode_orv
