// What a hostile or careless host can do through the C interface: absurd boxes and
// scales, an unknown output format, oversized payloads. None may crash, overflow or hide
// why it failed.
#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>
#include <string>

#include "barcode_ffi.h"
#include "core/barcode_base.h"
#include "support/c_api.h"

namespace {

using barcode_orv::BarcodeBase;
using barcode_orv::testing::MakeHandle;

TEST(HardeningTest, CanvasLimitIsExactAtTheBoundary) {
  struct Case {
    int width;
    int height;
    bool fits;
  };
  const Case cases[] = {
      {23170, 23170, true},                                  // 2,147,395,600 bytes
      {23171, 23170, false},                                 // 2,147,488,280 bytes: above INT_MAX
      {1 << 24, 1, true},        {(1 << 24) + 1, 1, false},  // a side beyond exact float pixel coordinates
      {1, (1 << 24) + 1, false}, {INT_MAX, INT_MAX, false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(BarcodeBase::CanvasSizeProblem(c.width, c.height).empty(), c.fits) << c.width << "x" << c.height;
  }
}

TEST(HardeningTest, HugeBoxesFailCleanlyBeforeAllocating) {
  auto qr = MakeHandle(BARCODE_QR);
  EXPECT_EQ(barcode_draw_2d_rect(qr.get(), "ABC", 24000, 24000), 0);
  EXPECT_STREQ(barcode_get_last_error(qr.get()),
               "サーフェス作成に失敗: canvas 24000x24000 is larger than 2147483647 bytes or 16777216 pixels a side");
  auto code128 = MakeHandle(BARCODE_CODE128);
  EXPECT_EQ(barcode_draw_1d(code128.get(), "ABC", 30000, 30000), 0);
  uint32_t size = 0;
  EXPECT_EQ(barcode_get_image_data(code128.get(), &size), nullptr);
  // The handle stays usable.
  EXPECT_EQ(barcode_draw_1d(code128.get(), "ABC", 300, 100), 1);
  EXPECT_STREQ(barcode_get_last_error(code128.get()), "");
}

// Found by the fuzzer: a leftover canvas drawn with a negative box and a font scale so
// large that the text size saturates.
TEST(HardeningTest, SaturatedTextSizeOnLeftoverCanvas) {
  auto code39 = MakeHandle(BARCODE_CODE39);
  ASSERT_EQ(barcode_draw_1d(code39.get(), "ABC", 300, 100), 1);
  barcode_set_output_format(code39.get(), "bogus");
  barcode_set_text_font_scale(code39.get(), -1e30);
  barcode_draw_1d(code39.get(), "ABC", 300, -3);
  barcode_set_text_font_scale(code39.get(), 1e30);
  barcode_set_text_even_spacing(code39.get(), 0);
  barcode_draw_1d(code39.get(), "ABC", INT_MAX, INT_MIN);
}

TEST(HardeningTest, LastErrorNamesEachFailure) {
  auto code39 = MakeHandle(BARCODE_CODE39);
  EXPECT_STREQ(barcode_get_last_error(code39.get()), "");
  EXPECT_EQ(barcode_draw_1d(code39.get(), "A*B", 300, 100), 0);
  EXPECT_STREQ(barcode_get_last_error(code39.get()),
               "[Code39] Invalid character in CODE39: '*' is reserved for start/stop code");
  EXPECT_EQ(barcode_draw_1d(code39.get(), "AB", 300, 100), 1);
  EXPECT_STREQ(barcode_get_last_error(code39.get()), "");

  auto fresh = MakeHandle(BARCODE_CODE39);
  barcode_set_output_format(fresh.get(), "bogus");
  EXPECT_EQ(barcode_draw_1d(fresh.get(), "AB", 300, 100), 0);
  EXPECT_STREQ(barcode_get_last_error(fresh.get()), "Unknown output format \"bogus\"");
  EXPECT_STREQ(barcode_get_last_error(nullptr), "");
}

// Every draw function lets the capacity exception out, in both modes, until asked not to.
TEST(HardeningTest, CapacityErrorThrowsOnlyWhileAsked) {
  const std::string too_long(8000, 'x');
  for (const char* format : {"png", "svg"}) {
    auto qr = MakeHandle(BARCODE_QR);
    barcode_set_output_format(qr.get(), format);
    EXPECT_THROW(barcode_draw_2d(qr.get(), too_long.c_str(), 300), std::runtime_error) << format;
    EXPECT_THROW(barcode_draw_2d_rect(qr.get(), too_long.c_str(), 300, 200), std::runtime_error) << format;
    EXPECT_THROW(barcode_draw_1d(qr.get(), too_long.c_str(), 300, 200), std::runtime_error) << format;
    barcode_set_throw_on_capacity_error(qr.get(), 0);
    EXPECT_EQ(barcode_draw_2d(qr.get(), too_long.c_str(), 300), 0);
    EXPECT_NE(std::string(barcode_get_last_error(qr.get())).find("40"), std::string::npos)
        << barcode_get_last_error(qr.get());
    EXPECT_EQ(barcode_draw_1d(qr.get(), too_long.c_str(), 300, 300), 0);
  }
}

}  // namespace
