// The image data deflater against zlib's inflate: every kind of row it is told about, the
// block types it chooses between (stored for noise, fixed for a few symbols, dynamic),
// several blocks, and one deflater reused from picture to picture as a handle reuses it.
#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "core/image_deflater.h"

namespace barcode_orv {
namespace {

std::vector<uint8_t> Inflate(const std::vector<uint8_t>& deflated, size_t expected_size) {
  std::vector<uint8_t> out(expected_size + 1);
  z_stream stream{};
  if (inflateInit2(&stream, -15) != Z_OK) return {};
  stream.next_in = const_cast<Bytef*>(deflated.data());
  stream.avail_in = static_cast<uInt>(deflated.size());
  stream.next_out = out.data();
  stream.avail_out = static_cast<uInt>(out.size());
  const int status = inflate(&stream, Z_FINISH);
  const bool whole = status == Z_STREAM_END && stream.avail_in == 0;
  out.resize(stream.total_out);
  inflateEnd(&stream);
  return whole ? out : std::vector<uint8_t>{};
}

// Image data as the PNG writer hands it over: each row a filter byte and `stride - 1`
// bytes, with the relation of each row to the one above.
struct Picture {
  size_t stride = 0;
  std::vector<uint8_t> data;
  std::vector<FilteredRow> rows;

  void Add(FilteredRow kind, const std::vector<uint8_t>& bytes) {
    rows.push_back(kind);
    data.insert(data.end(), bytes.begin(), bytes.end());
  }
  // A row equal to the one above, as an "Up" row of zeros.
  void AddRepeat() {
    std::vector<uint8_t> zeros(stride, 0);
    zeros[0] = 2;
    Add(rows.back() == FilteredRow::kDistinct ? FilteredRow::kZeroUp : FilteredRow::kSameAsAbove, zeros);
  }
  // The filtered row above once more (an unfiltered repeat).
  void AddCopy() { Add(FilteredRow::kSameAsAbove, std::vector<uint8_t>(data.end() - stride, data.end())); }
};

// `levels` byte values with runs of about `run` bytes: noise at 256 and 1, bars and
// anti-aliased text in between.
std::vector<uint8_t> Row(size_t stride, int levels, int run, std::mt19937* rng) {
  std::vector<uint8_t> row(stride, 0);
  uint8_t value = 0;
  for (size_t i = 1; i < stride; ++i) {
    if ((*rng)() % static_cast<unsigned>(run) == 0)
      value = static_cast<uint8_t>((*rng)() % static_cast<unsigned>(levels));
    row[i] = value;
  }
  return row;
}

enum class Shape { kNoise, kBarsAndText, kModules, kWideRepeats, kUnfilteredRepeats, kOneValue, kEmpty };

Picture Make(Shape shape, size_t stride, size_t height, unsigned seed) {
  std::mt19937 rng(seed);
  Picture picture;
  picture.stride = stride;
  for (size_t y = 0; y < height; ++y) {
    const bool first = y == 0;
    switch (shape) {
      case Shape::kNoise: picture.Add(FilteredRow::kDistinct, Row(stride, 256, 1, &rng)); break;
      case Shape::kBarsAndText:  // bars repeated, then a band of distinct text rows
      case Shape::kWideRepeats:
        if (!first && y < height * 3 / 4) {
          picture.AddRepeat();
        } else {
          picture.Add(FilteredRow::kDistinct, Row(stride, first ? 2 : 170, first ? 5 : 3, &rng));
        }
        break;
      case Shape::kModules:  // module rows of 1 to 9 pixels
        if (!first && rng() % 9 != 0) {
          picture.AddRepeat();
        } else {
          picture.Add(FilteredRow::kDistinct, Row(stride, 256, 2, &rng));
        }
        break;
      case Shape::kUnfilteredRepeats:
        if (!first && y % 5 != 0) {
          picture.AddCopy();
        } else {
          picture.Add(FilteredRow::kDistinct, Row(stride, 4, 7, &rng));
        }
        break;
      case Shape::kOneValue: picture.Add(FilteredRow::kDistinct, std::vector<uint8_t>(stride, 7)); break;
      case Shape::kEmpty: break;
    }
  }
  return picture;
}

TEST(ImageDeflaterTest, InflatesToTheImageData) {
  const struct {
    const char* name;
    Shape shape;
    size_t stride;
    size_t height;
    int chain_depth;
  } cases[] = {
      {"noise (stored blocks)", Shape::kNoise, 70001, 2, 4},
      {"noise, narrow rows", Shape::kNoise, 2, 300, 4},
      {"bars and text", Shape::kBarsAndText, 301, 100, 4},
      {"bars and text, no hash chain", Shape::kBarsAndText, 301, 100, 0},
      {"bars and text, deep chain", Shape::kBarsAndText, 451, 120, 64},
      {"modules", Shape::kModules, 39, 300, 4},
      {"repeats wider than copied rows", Shape::kWideRepeats, 4481, 60, 4},
      {"unfiltered repeats, narrow", Shape::kUnfilteredRepeats, 40, 90, 4},
      {"unfiltered repeats, wide", Shape::kUnfilteredRepeats, 5000, 12, 4},
      {"many blocks", Shape::kBarsAndText, 1201, 400, 4},
      // Copies one byte past a whole number of 258-byte matches: a zero run of 259 bytes
      // and a repeated row of 1291.
      {"zero run of 259 bytes", Shape::kBarsAndText, 261, 100, 4},
      {"repeated row of 1291 bytes", Shape::kWideRepeats, 1291, 4, 4},
      {"one value", Shape::kOneValue, 9, 3, 4},
      {"one byte", Shape::kOneValue, 1, 1, 4},
      {"no rows", Shape::kEmpty, 10, 0, 4},
  };
  ImageDeflater deflater;  // one for all: positions of earlier pictures must not leak in
  for (const auto& c : cases) {
    for (unsigned seed = 1; seed <= 3; ++seed) {
      const Picture picture = Make(c.shape, c.stride, c.height, seed);
      std::vector<uint8_t> deflated = {0xAB};  // appended after what is there
      deflater.Deflate(picture.data.data(), picture.stride, picture.rows, c.chain_depth, &deflated);
      ASSERT_GT(deflated.size(), 1U) << c.name;
      EXPECT_EQ(deflated[0], 0xAB) << c.name;
      deflated.erase(deflated.begin());
      EXPECT_EQ(Inflate(deflated, picture.data.size()), picture.data) << c.name << ", seed " << seed;
      // Nothing comes out much larger than stored.
      EXPECT_LE(deflated.size(), picture.data.size() + picture.data.size() / 1000 + 16) << c.name;
    }
  }
}

// What the deflater is for: repeated rows cost next to nothing, and a line of text with
// few levels costs far less than its bytes.
TEST(ImageDeflaterTest, RepeatedRowsAndTextCompress) {
  ImageDeflater deflater;
  const struct {
    Shape shape;
    size_t stride;
    size_t height;
    size_t at_most;
  } cases[] = {
      {Shape::kBarsAndText, 301, 100, 30100 / 4},
      {Shape::kWideRepeats, 4481, 100, 448100 / 4},
      {Shape::kOneValue, 5000, 40, 400},
  };
  for (const auto& c : cases) {
    const Picture picture = Make(c.shape, c.stride, c.height, 1);
    std::vector<uint8_t> deflated;
    deflater.Deflate(picture.data.data(), picture.stride, picture.rows, 4, &deflated);
    EXPECT_LE(deflated.size(), c.at_most) << c.stride << " x " << c.height;
  }
}

}  // namespace
}  // namespace barcode_orv
