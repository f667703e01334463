// Print size and orientation through the C interface: modules of whole pixels at an
// X-dimension, the natural box and its measure, the resolution in PNG and SVG, the
// seamless SVG of matrix symbols, and quarter turns. Readability of these pictures is
// the round-trip table's work.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "barcode_ffi.h"
#include "support/c_api.h"
#include "support/png_image.h"

namespace barcode_orv {
namespace {

using testing::DecodePng;
using testing::HandlePtr;
using testing::MakeHandle;
using testing::RgbaImage;

// The narrowest run of dark pixels across the picture's middle row: one module.
int NarrowestBar(const RgbaImage& image) {
  int narrowest = image.width;
  int run = 0;
  for (int x = 0; x <= image.width; ++x) {
    const bool dark = x < image.width && (image.Pixel(x, image.height / 3) >> 24) < 128;
    if (dark) {
      ++run;
    } else if (run > 0) {
      narrowest = std::min(narrowest, run);
      run = 0;
    }
  }
  return narrowest;
}

// The pHYs chunk's pixels per metre, or 0.
uint32_t PixelsPerMetre(const std::vector<uint8_t>& png) {
  const auto at = std::search(png.begin(), png.end(), "pHYs", "pHYs" + 4);
  if (at == png.end() || png.end() - at < 12) return 0;
  const uint8_t* p = &*at + 4;
  return (uint32_t{p[0]} << 24) | (uint32_t{p[1]} << 16) | (uint32_t{p[2]} << 8) | p[3];
}

struct PrintCase {
  int type;
  int (*draw)(BarcodeHandle*, const char*, int, int);
  const char* text;
  double mm;
  int dpi;
  int module;  // pixels
  int width;   // of the natural box, quiet zones included
  int height;  // 0: not fixed here
};

// The standard profile (quiet zones on) at the X-dimensions labels ask for.
const PrintCase kCases[] = {
    {BARCODE_JAN13, barcode_draw_1d, "490123456789", 0.33, 300, 4, 113 * 4, 0},       // 11 + 95 + 7 modules
    {BARCODE_QR, barcode_draw_2d_rect, "hello", 0.5, 300, 6, 29 * 6, 29 * 6},         // version 1, 4 + 4 modules
    {BARCODE_DATAMATRIX, barcode_draw_2d_rect, "ABC", 0.25, 600, 6, 12 * 6, 12 * 6},  // 10 x 10, 1 + 1
    {BARCODE_QR, barcode_draw_2d_rect, "hello", 0.05, 300, 1, 29, 29},                // at least a pixel
    {BARCODE_CODE128, barcode_draw_1d, "Hello World 123", 0.25, 300, 3, 0, 150},      // 50 modules tall
    {BARCODE_YUBIN_CUSTOMER, barcode_draw_yubin_with_width, "10000131-3-2-503", 0.6, 300, 7, 0, 42},
};

TEST(PrintSize, ModulesBoxMeasureAndResolution) {
  for (const PrintCase& c : kCases) {
    SCOPED_TRACE(c.text);
    HandlePtr handle = MakeHandle(c.type);
    barcode_set_standard(handle.get(), 1);
    ASSERT_EQ(barcode_set_xdim(handle.get(), c.mm, c.dpi), 1);
    int width = 0;
    int height = 0;
    ASSERT_EQ(barcode_measure(handle.get(), c.text, &width, &height), 1) << barcode_get_last_error(handle.get());
    if (c.width > 0) {
      EXPECT_EQ(width, c.width);
    }
    if (c.height > 0) {
      EXPECT_GE(height, c.height);
    }
    ASSERT_EQ(c.draw(handle.get(), c.text, 0, 0), 1) << barcode_get_last_error(handle.get());
    const std::vector<uint8_t> png = testing::ImageData(handle.get());
    const RgbaImage image = DecodePng(png);
    EXPECT_EQ(image.width, width);
    EXPECT_EQ(image.height, height);
    EXPECT_EQ(NarrowestBar(image), c.module);
    EXPECT_EQ(PixelsPerMetre(png), static_cast<uint32_t>(c.dpi / 0.0254 + 0.5));
    // A box the size of the measure is enough; a pixel less on either side is not.
    EXPECT_EQ(c.draw(handle.get(), c.text, width, height), 1);
    EXPECT_EQ(c.draw(handle.get(), c.text, width - 1, height), 0);
    EXPECT_EQ(c.draw(handle.get(), c.text, width, height - 1), 0);
  }
}

TEST(PrintSize, SettersRefuseWhatCannotBePrinted) {
  struct Setting {
    double mm;
    int dpi;
    int accepted;
  };
  const Setting settings[] = {{0.33, 300, 1},   {0.0, 0, 1},     {-0.1, 300, 0}, {0.33, 0, 0},
                              {0.33, 10001, 0}, {100.1, 300, 0}, {50.0, 600, 0}, {0.01, 72, 1}};
  HandlePtr handle = MakeHandle(BARCODE_CODE128);
  for (const Setting& s : settings) {
    EXPECT_EQ(barcode_set_xdim(handle.get(), s.mm, s.dpi), s.accepted) << s.mm << " mm at " << s.dpi;
    if (s.accepted == 0) {
      EXPECT_STRNE(barcode_get_last_error(handle.get()), "");
    }
  }
  for (int degrees : {-90, 45, 360}) EXPECT_EQ(barcode_set_rotation(handle.get(), degrees), 0);
}

TEST(PrintSize, SvgCarriesMillimetresAndMatrixSymbolsArePaths) {
  HandlePtr handle = MakeHandle(BARCODE_QR);
  barcode_set_output_format(handle.get(), "svg");
  barcode_set_standard(handle.get(), 1);
  ASSERT_EQ(barcode_draw_2d_rect(handle.get(), "seamless svg", 300, 300), 1);
  std::string svg = barcode_get_svg(handle.get());
  // One path a colour on whole pixels, nothing per module.
  EXPECT_EQ(svg.find("<rect"), std::string::npos);
  EXPECT_NE(svg.find("<path d=\"M0 0h300v300h-300z\" fill=\"rgb(255,255,255)\" shape-rendering=\"crispEdges\"/>"),
            std::string::npos);
  size_t paths = 0;
  for (size_t at = svg.find("<path"); at != std::string::npos; at = svg.find("<path", at + 1)) ++paths;
  EXPECT_EQ(paths, 2U);
  ASSERT_EQ(barcode_set_xdim(handle.get(), 0.5, 300), 1);
  ASSERT_EQ(barcode_draw_2d_rect(handle.get(), "hello", 0, 0), 1);
  svg = barcode_get_svg(handle.get());
  EXPECT_NE(svg.find("width=\"14.73mm\" height=\"14.73mm\" viewBox=\"0 0 174 174\""), std::string::npos);
}

// A quarter turn takes the pixel at (x, y) to (height - 1 - y, x); SVG turns by a matrix.
TEST(PrintSize, TurnsMovePixelsAndSwapTheBox) {
  HandlePtr upright = MakeHandle(BARCODE_CODE128);
  ASSERT_EQ(barcode_draw_1d(upright.get(), "Turn 1", 240, 80), 1);
  const RgbaImage before = DecodePng(testing::ImageData(upright.get()));
  for (int degrees : {90, 180, 270}) {
    HandlePtr turned = MakeHandle(BARCODE_CODE128);
    ASSERT_EQ(barcode_set_rotation(turned.get(), degrees), 1);
    ASSERT_EQ(barcode_draw_1d(turned.get(), "Turn 1", 240, 80), 1);
    const RgbaImage after = DecodePng(testing::ImageData(turned.get()));
    ASSERT_EQ(after.width, degrees == 180 ? 240 : 80);
    int mismatches = 0;
    for (int y = 0; y < before.height; ++y) {
      for (int x = 0; x < before.width; ++x) {
        const int tx = degrees == 90 ? before.height - 1 - y : degrees == 180 ? before.width - 1 - x : y;
        const int ty = degrees == 90 ? x : degrees == 180 ? before.height - 1 - y : before.width - 1 - x;
        mismatches += before.Pixel(x, y) != after.Pixel(tx, ty) ? 1 : 0;
      }
    }
    EXPECT_EQ(mismatches, 0) << degrees;
  }
  barcode_set_output_format(upright.get(), "svg");
  ASSERT_EQ(barcode_set_rotation(upright.get(), 90), 1);
  ASSERT_EQ(barcode_draw_1d(upright.get(), "Turn 1", 240, 80), 1);
  const std::string svg = barcode_get_svg(upright.get());
  EXPECT_NE(svg.find("width=\"80\" height=\"240\" viewBox=\"0 0 80 240\">\n<g transform=\"matrix(0,1,-1,0,80,0)\">"),
            std::string::npos);
}

}  // namespace
}  // namespace barcode_orv
