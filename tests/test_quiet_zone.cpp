// The quiet-zone option: every symbol, drawn with the zones its standard asks for, scans
// straight from the picture (no margin added by the reader's caller), is centred in the
// box, and a box too small for symbol and zones fails with the size it needs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>

#include "barcode_ffi.h"
#include "support/c_api.h"
#include "support/png_image.h"
#include "support/samples.h"
#include "support/zxing_decode.h"

namespace barcode_orv {
namespace {

using testing::Symbology;

// Matrix and NEC 2 of 5, DataBar and the Japan Post barcode are not read here.
const std::map<int, Symbology> kReaders = {
    {BARCODE_CODE39, Symbology::kCode39},   {BARCODE_CODE93, Symbology::kCode93},
    {BARCODE_CODE128, Symbology::kCode128}, {BARCODE_GS1_128, Symbology::kCode128},
    {BARCODE_NW7, Symbology::kCodabar},     {BARCODE_ITF, Symbology::kITF},
    {BARCODE_JAN8, Symbology::kEAN8},       {BARCODE_JAN13, Symbology::kEAN13},
    {BARCODE_UPCA, Symbology::kUPCA},       {BARCODE_UPCE, Symbology::kUPCE},
    {BARCODE_QR, Symbology::kQRCode},       {BARCODE_DATAMATRIX, Symbology::kDataMatrix},
    {BARCODE_PDF417, Symbology::kPDF417}};

// Columns of the first and last dark pixel anywhere in the picture.
std::pair<int, int> DarkSpan(const testing::RgbaImage& image) {
  int first = image.width;
  int last = -1;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      if ((image.Pixel(x, y) >> 8) != 0) continue;
      first = std::min(first, x);
      last = std::max(last, x);
    }
  }
  return {first, last};
}

TEST(QuietZoneTest, EverySymbolScansFromThePictureAsDrawn) {
  const std::pair<int, int> boxes[] = {{420, 240}, {643, 301}};
  for (const auto& sample : testing::kTypeSamples) {
    for (const auto& [width, height] : boxes) {
      testing::HandlePtr handle = testing::MakeHandle(sample.type);
      if (!handle) continue;
      barcode_set_quiet_zone(handle.get(), 1);
      barcode_set_show_text(handle.get(), 0);
      ASSERT_EQ(barcode_draw_1d(handle.get(), sample.text, width, height), 1)
          << sample.text << ": " << barcode_get_last_error(handle.get());
      const std::vector<uint8_t> png = testing::ImageData(handle.get());
      const testing::RgbaImage image = testing::DecodePng(png);
      // Symmetric zones leave equal margins (EAN/UPC zones differ left and right, and
      // Matrix and NEC 2 of 5 show only their wide bars).
      const bool symmetric = sample.type <= BARCODE_NW7 || sample.type == BARCODE_ITF || sample.type >= BARCODE_QR;
      const auto [first, last] = DarkSpan(image);
      ASSERT_GT(first, 0) << sample.text;
      EXPECT_TRUE(!symmetric || std::abs(first - (image.width - 1 - last)) <= 2)
          << sample.text << " in " << width << ": margins " << first << " and " << image.width - 1 - last;
      if (const auto reader = kReaders.find(sample.type); reader != kReaders.end()) {
        EXPECT_TRUE(testing::DecodePngBarcode(png, reader->second, 0).ok)
            << sample.text << " in " << width << "x" << height;
      }
    }
  }
}

TEST(QuietZoneTest, TooSmallBoxesSayWhatTheyNeed) {
  const struct {
    int type;
    const char* text;
    const char* line;
  } cases[] = {
      // 10 + 11 x (start, six values, check) + 13 + 10 modules
      {BARCODE_CODE128, "ABC123", "[Code128] Box too small: 121 px needed"},
      {BARCODE_JAN13, "490123456789", "[Jan13] Box too small: 113 px needed"},  // 11 + 95 + 7
      {BARCODE_QR, "HELLO", "[QR] Box too small: 29x29 px needed"},             // 21 + 2 x 4
  };
  for (const auto& c : cases) {
    testing::HandlePtr handle = testing::MakeHandle(c.type);
    barcode_set_quiet_zone(handle.get(), 1);
    for (const char* format : {"png", "svg"}) {
      barcode_set_output_format(handle.get(), format);
      if (c.type == BARCODE_QR && std::string(format) == "svg") continue;  // SVG scales any box
      EXPECT_EQ(barcode_draw_1d(handle.get(), c.text, 28, 28), 0) << c.line;
      EXPECT_STREQ(barcode_get_last_error(handle.get()), c.line);
    }
  }
}

}  // namespace
}  // namespace barcode_orv
