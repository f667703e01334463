#include "core/png_encoder.h"

#include <SDL_image.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <iterator>

#include "core/image_deflater.h"
#include "core/sdl_handles.h"

namespace barcode_orv {
namespace {

// ---- Palette extraction ----

// Distinct 32-bit pixel values, up to 256, in first-seen order.
class PaletteBuilder {
 public:
  // Index of `pixel`, adding it if new; -1 once more than 256 colours are seen.
  int IndexOf(uint32_t pixel) {
    size_t slot = Hash(pixel);
    while (used_[slot]) {
      if (keys_[slot] == pixel) return indices_[slot];
      slot = (slot + 1) & (kSlots - 1);
    }
    if (colors_.size() == 256) return -1;
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
  std::vector<uint8_t> palette;  // PLTE: red, green, blue of each entry
  std::vector<uint8_t> alpha;    // tRNS: up to the last translucent entry
  std::vector<uint8_t> packed;
  std::vector<const uint8_t*> rows;
  std::vector<size_t> row_offset;  // of each row in `packed`
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
  // Bars, spaces and modules come in runs: a pixel like the last one keeps its index.
  // The first pixel never matches the made-up pixel before it.
  uint32_t last_pixel = width > 0 ? ~src[0] : 0;
  uint8_t last_index = 0;
  for (int x = 0; x < width; ++x) {
    const uint32_t pixel = src[x];
    if (pixel != last_pixel) {
      const int index = palette->IndexOf(pixel);
      if (index < 0) return false;
      last_pixel = pixel;
      last_index = static_cast<uint8_t>(index);
    }
    dst[x] = last_index;
  }
  return true;
}

// Packs a row of byte indices in place at `bit_depth` (below 8), most significant bits
// first.
void PackRow(uint8_t* row, int width, int bit_depth) {
  const int per_byte = 8 / bit_depth;
  for (int x = 0; x < width; x += per_byte) {
    unsigned byte = 0;
    for (int i = 0; i < per_byte; ++i) {
      const unsigned value = x + i < width ? row[x + i] : 0U;
      byte = (byte << bit_depth) | value;
    }
    row[x / per_byte] = static_cast<uint8_t>(byte);
  }
}

// The colour of a 32-bit pixel: what SDL_GetRGBA returns, without a call per colour
// where every channel has 8 bits (no loss to scale back).
SDL_Color ColorOf(uint32_t pixel, const SDL_PixelFormat& format) {
  SDL_Color color;
  if (format.Rloss != 0 || format.Gloss != 0 || format.Bloss != 0 || (format.Amask != 0 && format.Aloss != 0)) {
    SDL_GetRGBA(pixel, &format, &color.r, &color.g, &color.b, &color.a);
    return color;
  }
  color.r = static_cast<Uint8>((pixel & format.Rmask) >> format.Rshift);
  color.g = static_cast<Uint8>((pixel & format.Gmask) >> format.Gshift);
  color.b = static_cast<Uint8>((pixel & format.Bmask) >> format.Bshift);
  color.a = format.Amask == 0 ? 255 : static_cast<Uint8>((pixel & format.Amask) >> format.Ashift);
  return color;
}

// Fills `image` (whose buffers are kept from the last picture: a fresh one costs page
// faults that took a fifth of a wide picture's time) with the palette form of `surface`;
// false past 256 colours.
bool ToPaletteImage(const SDL_Surface* surface, PaletteImage* out) {
  if (surface->format->BytesPerPixel != 4 || SDL_MUSTLOCK(surface)) return false;
  PaletteImage& image = *out;
  image.width = surface->w;
  image.height = surface->h;
  image.palette.clear();
  image.alpha.clear();
  const auto width = static_cast<size_t>(surface->w);
  const size_t row_bytes = width * 4;
  PaletteBuilder builder;
  // Pass 1: byte indices of every distinct row; repeated rows point at the one above.
  std::vector<size_t>& row_offset = image.row_offset;
  row_offset.resize(static_cast<size_t>(surface->h));
  size_t unique_rows = 0;
  if (image.packed.size() < width) image.packed.resize(width);
  for (int y = 0; y < surface->h; ++y) {
    const auto* src = static_cast<const uint8_t*>(surface->pixels) + static_cast<ptrdiff_t>(y) * surface->pitch;
    if (y > 0 && std::memcmp(src, src - surface->pitch, row_bytes) == 0) {
      row_offset[y] = row_offset[y - 1];
      continue;
    }
    if (image.packed.size() < (unique_rows + 1) * width) image.packed.resize(image.packed.size() * 2);
    row_offset[y] = unique_rows * width;
    if (!IndexRow(reinterpret_cast<const uint32_t*>(src), surface->w, &builder, image.packed.data() + row_offset[y])) {
      return false;
    }
    ++unique_rows;
  }
  // The palette in the order the colours were first seen, so the indices need no second
  // mapping; tRNS ends at the last translucent entry (sorting those first would save a
  // few of its bytes and cost a pass over every distinct pixel).
  const std::vector<uint32_t>& colors = builder.colors();
  image.palette.resize(3 * colors.size());
  image.alpha.resize(colors.size());
  size_t translucent_end = 0;
  for (size_t i = 0; i < colors.size(); ++i) {
    const SDL_Color color = ColorOf(colors[i], *surface->format);
    image.palette[3 * i] = color.r;
    image.palette[3 * i + 1] = color.g;
    image.palette[3 * i + 2] = color.b;
    image.alpha[i] = color.a;
    if (color.a < 255) translucent_end = i + 1;
  }
  image.alpha.resize(translucent_end);
  // Pass 2: pack each distinct row where it lies (packing never moves data rightwards).
  image.bit_depth = BitDepthFor(colors.size());
  if (image.bit_depth < 8) {
    for (size_t row = 0; row < unique_rows; ++row)
      PackRow(image.packed.data() + row * width, surface->w, image.bit_depth);
  }
  image.distinct_rows = unique_rows;
  image.rows.resize(static_cast<size_t>(surface->h));
  for (size_t y = 0; y < image.rows.size(); ++y) image.rows[y] = image.packed.data() + row_offset[y];
  return true;
}

// How far the deflater looks back through earlier strings at each position of a distinct
// row, chosen by measurement against the best row filter at zlib level 9 (the bench's
// compact encoding). A few steps find what there is in a short line of text or in a 2D
// symbol, whatever its size (a QR Code version 40 gained nothing from more, at twice the
// time); a long line of anti-aliased text (8 bits a pixel) repeats its glyphs often
// enough to pay for more: a 200-character Code 128 came to 1.04 x the reference instead
// of 1.21 x.
int ChainDepthFor(const PaletteImage& image) {
  constexpr size_t kManyDistinctPixels = 64 * 1024;
  const bool long_text =
      image.bit_depth == 8 && image.distinct_rows * static_cast<size_t>(image.width) > kManyDistinctPixels;
  return long_text ? 64 : 4;
}

// ---- Writing the file ----
//
// The container is written here and only the deflating is left to zlib: libpng's row
// writer, with its per-row calls and its Adler-32 over every byte, took 20 of the 68 us
// of a Code 128 picture with its text line. Here a repeated row's checksum is one step.

constexpr uint32_t kAdlerModulus = 65521;

constexpr uint8_t kFilterNone = 0;
constexpr uint8_t kFilterUp = 2;

// The sum of 8 bytes and their sum weighted 8 down to 1.
struct EightBytesSums {
  uint32_t sum;
  uint32_t weighted;
};

EightBytesSums SumsOfEight(const uint8_t* bytes) {
#if defined(__GNUC__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  // In one 64-bit word: the bytes at even places and the sums of neighbouring pairs as
  // four 16-bit lanes; a product with lanes of weights leaves the weighted lane sum in its
  // top lane (no lane exceeds 16 bits, so none carries into the next).
  uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  constexpr uint64_t kLowBytes = 0x00FF00FF00FF00FFU;
  constexpr uint64_t kOnes = 0x0001000100010001U;
  constexpr uint64_t kPairWeights = 0x0007000500030001U;  // 7, 5, 3, 1 from the first pair on
  const uint64_t even = word & kLowBytes;
  const uint64_t pairs = even + (word >> 8 & kLowBytes);
  return EightBytesSums{static_cast<uint32_t>(pairs * kOnes >> 48),
                        static_cast<uint32_t>((pairs * kPairWeights >> 48) + (even * kOnes >> 48))};
#else
  EightBytesSums sums{0, 0};
  for (uint32_t k = 0; k < 8; ++k) {
    sums.sum += bytes[k];
    sums.weighted += (8 - k) * bytes[k];
  }
  return sums;
#endif
}

// Adler-32 (RFC 1950; s2 << 16 | s1) continued over `count` bytes, a block of 16 at a
// time: the block's sum adds to s1, and s2 gains 16 times s1 plus the bytes weighted 16
// down to 1. Independent sums instead of zlib's byte-by-byte chain took a row's checksum
// from about 8 instructions a byte to 5; the sums of eight bytes in one word, to 3.5.
uint32_t AdlerAfter(uint32_t adler, const uint8_t* bytes, size_t count) {
  // The most bytes after which s2 still fits 32 bits (zlib's NMAX), a multiple of 16.
  constexpr size_t kBytesBeforeModulo = 5552;
  uint32_t s1 = adler & 0xFFFFU;
  uint32_t s2 = adler >> 16;
  while (count > 0) {
    size_t chunk = std::min(count, kBytesBeforeModulo);
    count -= chunk;
    for (; chunk >= 16; chunk -= 16, bytes += 16) {
      const EightBytesSums low = SumsOfEight(bytes);
      const EightBytesSums high = SumsOfEight(bytes + 8);
      s2 += 16 * s1 + low.weighted + 8 * low.sum + high.weighted;
      s1 += low.sum + high.sum;
    }
    for (; chunk > 0; --chunk, ++bytes) {
      s1 += *bytes;
      s2 += s1;
    }
    s1 %= kAdlerModulus;
    s2 %= kAdlerModulus;
  }
  return s2 << 16 | s1;
}

// Adler-32 after an Up row of a repeated row: its filter
// byte, then `zeros` zeros, each of which adds s1 to s2 and nothing to s1.
uint32_t AdlerAfterZeroUpRow(uint32_t adler, size_t zeros) {
  uint64_t s1 = adler & 0xFFFFU;
  uint64_t s2 = adler >> 16;
  s1 = (s1 + kFilterUp) % kAdlerModulus;
  s2 = (s2 + s1 + zeros * s1) % kAdlerModulus;
  return static_cast<uint32_t>((s2 << 16) | s1);
}

// Writes every row behind its filter-type byte into `stream`, as the image data holds
// them: a row equal to the one above as an "Up" row of zeros, whose checksum is one
// step, every other row unfiltered. Notes how each filtered row relates to the one above
// and returns the stream's Adler-32.
uint32_t FilterRows(const PaletteImage& image, std::vector<uint8_t>* stream, std::vector<FilteredRow>* kinds) {
  const int per_byte = 8 / image.bit_depth;
  const size_t row_bytes = (static_cast<size_t>(image.width) + per_byte - 1) / per_byte;
  const size_t stride = row_bytes + 1;
  stream->resize(stride * image.rows.size());
  kinds->assign(image.rows.size(), FilteredRow::kDistinct);
  uint32_t adler = 1;
  for (size_t y = 0; y < image.rows.size(); ++y) {
    uint8_t* out = stream->data() + y * stride;
    // Rows equal to the one above share its storage (see ToPaletteImage).
    if (y > 0 && image.rows[y] == image.rows[y - 1]) {
      out[0] = kFilterUp;  // the difference from the row above: all zeros
      std::memset(out + 1, 0, row_bytes);
      adler = AdlerAfterZeroUpRow(adler, row_bytes);
      (*kinds)[y] = (*kinds)[y - 1] == FilteredRow::kDistinct ? FilteredRow::kZeroUp : FilteredRow::kSameAsAbove;
      continue;
    }
    out[0] = kFilterNone;
    std::memcpy(out + 1, image.rows[y], row_bytes);
    adler = AdlerAfter(adler, out, stride);
  }
  return adler;
}

void AppendBigEndian(std::vector<uint8_t>* out, uint32_t value) {
  out->insert(out->end(), {static_cast<uint8_t>(value >> 24), static_cast<uint8_t>(value >> 16),
                           static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)});
}

void AppendChunk(std::vector<uint8_t>* out, const char (&type)[5], const uint8_t* data, size_t length) {
  AppendBigEndian(out, static_cast<uint32_t>(length));
  const size_t start = out->size();
  out->insert(out->end(), type, type + 4);
  if (length > 0) out->insert(out->end(), data, data + length);
  AppendBigEndian(out, static_cast<uint32_t>(crc32(0, out->data() + start, static_cast<uInt>(length + 4))));
}

constexpr int kWindowBits = 15;

// The two bytes that open the image data's zlib stream: deflate with a 32 KB window,
// compression level hint "default", a multiple of 31.
constexpr std::array<uint8_t, 2> ZlibHeader() {
  constexpr unsigned kCmf = (kWindowBits - 8) << 4 | 8;
  constexpr unsigned kLevelHint = 2;
  unsigned flg = kLevelHint << 6;
  flg |= (31 - (kCmf << 8 | flg) % 31) % 31;
  return {static_cast<uint8_t>(kCmf), static_cast<uint8_t>(flg)};
}

}  // namespace

// What one encoder keeps from image to image.
struct PngWorkspace {
  PaletteImage image;
  ImageDeflater deflater;
  std::vector<FilteredRow> row_kinds;
  std::vector<uint8_t> filtered;    // the rows behind their filter bytes
  std::vector<uint8_t> image_data;  // the zlib stream
};

namespace {

std::vector<uint8_t> SavePalettePng(const PaletteImage& image, PngWorkspace* workspace) {
  const uint32_t adler = FilterRows(image, &workspace->filtered, &workspace->row_kinds);
  const std::array<uint8_t, 2> zlib_header = ZlibHeader();
  workspace->image_data.assign(zlib_header.begin(), zlib_header.end());
  const size_t stride = workspace->filtered.size() / image.rows.size();
  workspace->deflater.Deflate(workspace->filtered.data(), stride, workspace->row_kinds, ChainDepthFor(image),
                              &workspace->image_data);
  AppendBigEndian(&workspace->image_data, adler);

  std::vector<uint8_t> header;
  AppendBigEndian(&header, static_cast<uint32_t>(image.width));
  AppendBigEndian(&header, static_cast<uint32_t>(image.height));
  // Bit depth, colour type 3 (palette), deflate, adaptive filtering, no interlace.
  header.insert(header.end(), {static_cast<uint8_t>(image.bit_depth), 3, 0, 0, 0});

  static constexpr uint8_t kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  const std::vector<uint8_t>& data = workspace->image_data;
  std::vector<uint8_t> png;
  png.reserve(64 + image.palette.size() + image.alpha.size() + data.size());
  png.assign(std::begin(kSignature), std::end(kSignature));
  AppendChunk(&png, "IHDR", header.data(), header.size());
  AppendChunk(&png, "PLTE", image.palette.data(), image.palette.size());
  if (!image.alpha.empty()) AppendChunk(&png, "tRNS", image.alpha.data(), image.alpha.size());
  AppendChunk(&png, "IDAT", data.data(), data.size());
  AppendChunk(&png, "IEND", nullptr, 0);
  // A huge picture's buffers are not kept for the next one.
  constexpr size_t kKeptBytes = size_t{16} << 20;
  if (workspace->filtered.capacity() > kKeptBytes) workspace->filtered = {};
  if (workspace->image_data.capacity() > kKeptBytes) workspace->image_data = {};
  if (workspace->image.packed.capacity() > kKeptBytes) workspace->image.packed = {};
  return png;
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

PngEncoder::PngEncoder() = default;
PngEncoder::~PngEncoder() = default;
PngEncoder::PngEncoder(PngEncoder&&) noexcept = default;
PngEncoder& PngEncoder::operator=(PngEncoder&&) noexcept = default;

std::vector<uint8_t> PngEncoder::Encode(SDL_Surface* surface) {
  if (surface == nullptr) return {};
  // PNG has no empty images.
  if (surface->w <= 0 || surface->h <= 0) {
    SDL_SetError("a PNG image needs at least one pixel, the canvas is %dx%d", surface->w, surface->h);
    return {};
  }
  if (!workspace_) workspace_ = std::make_unique<PngWorkspace>();
  if (ToPaletteImage(surface, &workspace_->image)) {
    std::vector<uint8_t> png = SavePalettePng(workspace_->image, workspace_.get());
    if (!png.empty()) return png;
  }
  return SaveTrueColourPng(surface);
}

void InsertPngResolution(std::vector<uint8_t>* png, int dpi) {
  // Signature (8 bytes), then IHDR: length, type, 13 data bytes, CRC.
  constexpr size_t kAfterHeader = 8 + 4 + 4 + 13 + 4;
  if (dpi < 1 || png->size() < kAfterHeader) return;
  const auto per_metre = static_cast<uint32_t>(std::lround(dpi / 0.0254));
  std::vector<uint8_t> data;
  AppendBigEndian(&data, per_metre);
  AppendBigEndian(&data, per_metre);
  data.push_back(1);  // the unit is the metre
  std::vector<uint8_t> chunk;
  AppendChunk(&chunk, "pHYs", data.data(), data.size());
  png->insert(png->begin() + kAfterHeader, chunk.begin(), chunk.end());
}

std::vector<uint8_t> EncodeSurfacePng(SDL_Surface* surface) {
  PngEncoder encoder;
  return encoder.Encode(surface);
}

}  // namespace barcode_orv
