// What a hostile or careless host can do through the C interface: absurd boxes and
// scales, an unknown output format, oversized payloads. None may crash, overflow or hide
// why it failed.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "api/ffi_internal.h"
#include "barcode_ffi.h"
#include "core/barcode_base.h"
#include "linear/yubin_customer.h"
#include "support/c_api.h"
#include "support/png_image.h"
#include "support/samples.h"
#include "twod/datamatrix.h"
#include "twod/pdf417.h"
#include "twod/qr.h"

namespace {

using barcode_orv::BarcodeBase;
using barcode_orv::testing::DecodePng;
using barcode_orv::testing::ImageData;
using barcode_orv::testing::kTypeSamples;
using barcode_orv::testing::MakeHandle;

bool IsLinear(int type) { return type <= BARCODE_YUBIN_CUSTOMER; }

// Rows of `png` from `first_row` on that hold a pixel other than the top-left one.
int MarkedRowsFrom(const std::vector<uint8_t>& png, int first_row) {
  const auto image = DecodePng(png);
  int marked = 0;
  for (int y = first_row; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      if (image.Pixel(x, y) != image.Pixel(0, 0)) {
        ++marked;
        break;
      }
    }
  }
  return marked;
}

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
      {INT_MIN, INT_MIN, true},  // not positive: left to SDL, which refuses it
      {0, INT_MAX, true},
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

// Boxes at both ends of the int range through every entry point: each size and position
// is computed in a wide type and narrowed once (the sanitized suite turns any overflow or
// out-of-range conversion here into a failure), and each draw ends in 0 or 1.
TEST(HardeningTest, BoxesAtTheEndsOfTheIntRangeStayDefined) {
  const int sides[] = {INT_MIN, -1, 1, INT_MAX};
  for (const auto& sample : kTypeSamples) {
    if (!IsLinear(sample.type)) continue;
    for (const char* format : {"png", "svg"}) {
      auto handle = MakeHandle(sample.type);
      barcode_set_output_format(handle.get(), format);
      for (int width : sides) {
        for (int height : sides) {
          const int drawn = barcode_draw_1d(handle.get(), sample.text, width, height);
          EXPECT_TRUE(drawn == 0 || drawn == 1) << sample.type << " " << width << "x" << height;
        }
        barcode_draw_stacked(handle.get(), sample.text, width, width);
        barcode_draw_yubin(handle.get(), sample.text, width);
      }
    }
  }
  // Japan Post at INT_MAX: a canvas wider than any, refused by name.
  auto yubin = MakeHandle(BARCODE_YUBIN_CUSTOMER);
  EXPECT_EQ(barcode_draw_yubin(yubin.get(), "1060032-3-2-5", INT_MAX), 0);
  EXPECT_NE(std::string(barcode_get_last_error(yubin.get())).find("canvas 2147483647x2147483647"), std::string::npos)
      << barcode_get_last_error(yubin.get());
}

// A text scale far beyond the box used to rasterise glyphs of thousands of points (seconds
// and hundreds of MB for one picture); the glyphs are now no taller than the canvas and
// the characters that miss it are never rendered. Bounded by the suite's timeout.
TEST(HardeningTest, AbsurdTextScalesCostWhatABoxFillingTextCosts) {
  const char* expanded = "(01)04912345678904(10)AB\\(C(17)251231";
  std::vector<uint8_t> at_infinity;
  for (const double scale : {static_cast<double>(INFINITY), 1e300, 100.0}) {
    for (const int type : {BARCODE_GS1_DATABAR_EXPANDED, BARCODE_CODE128}) {
      auto handle = MakeHandle(type);
      barcode_set_text_font_scale(handle.get(), scale);
      ASSERT_EQ(barcode_draw_1d(handle.get(), type == BARCODE_CODE128 ? "ABC123" : expanded, 621, 621), 1) << scale;
      const std::vector<uint8_t> png = ImageData(handle.get());
      ASSERT_FALSE(png.empty());
      // Infinity and 1e300 saturate to the same layout.
      if (type != BARCODE_GS1_DATABAR_EXPANDED) continue;
      if (scale == INFINITY) at_infinity = png;
      if (scale == 1e300) {
        EXPECT_EQ(png, at_infinity);
      }
    }
  }
  // A box-filling text stays visible at its clamped size: its glyphs reach into the
  // lower half of the canvas, where at scale 1 nothing but bars is drawn.
  auto code128 = MakeHandle(BARCODE_CODE128);
  barcode_set_text_font_scale(code128.get(), 1e6);
  barcode_set_text_even_spacing(code128.get(), 0);
  ASSERT_EQ(barcode_draw_1d(code128.get(), "ABC", 300, 200), 1);
  EXPECT_GT(MarkedRowsFrom(ImageData(code128.get()), 100), 50);
}

// Every linear symbology refuses a text beyond its limit by name, before encoding
// anything, and accepts the longest one (drawn in about a millisecond).
TEST(HardeningTest, OverlongTextsAreRefusedWithTheLimit) {
  const std::string longest(1000, '7');
  for (const auto& sample : kTypeSamples) {
    if (!IsLinear(sample.type)) continue;
    for (const size_t length : {size_t{1001}, size_t{1000000}}) {
      auto handle = MakeHandle(sample.type);
      const std::string text(length, '7');
      const int drawn = sample.type == BARCODE_YUBIN_CUSTOMER ? barcode_draw_yubin(handle.get(), text.c_str(), 60)
                                                              : barcode_draw_1d(handle.get(), text.c_str(), 400, 300);
      EXPECT_EQ(drawn, 0);
      const std::string error = barcode_get_last_error(handle.get());
      EXPECT_EQ(error.substr(error.find("] ") + 2),
                "Input too long: " + std::to_string(length) + " characters (max 1000)")
          << error;
    }
  }
  for (const int type :
       {BARCODE_CODE39, BARCODE_CODE93, BARCODE_CODE128, BARCODE_MATRIX2OF5, BARCODE_NEC2OF5, BARCODE_ITF}) {
    for (const int even : {0, 1}) {
      auto handle = MakeHandle(type);
      barcode_set_text_even_spacing(handle.get(), even);
      EXPECT_EQ(barcode_draw_1d(handle.get(), longest.c_str(), 400, 300), 1) << type << " " << even;
    }
  }
}

// A text line far wider than the canvas (1,000 characters of 300-pixel text) is rendered
// only where it meets the canvas: the part that does is still there.
TEST(HardeningTest, TextLineWiderThanTheCanvasIsRenderedWhereItShows) {
  auto code128 = MakeHandle(BARCODE_CODE128);
  barcode_set_text_even_spacing(code128.get(), 0);
  ASSERT_EQ(barcode_draw_1d(code128.get(), std::string(1000, 'W').c_str(), 400, 2000), 1);
  EXPECT_GT(MarkedRowsFrom(ImageData(code128.get()), 1800), 100);
}

// A null text names why the draw drew nothing (a handle of the wrong type: test_c_api's
// registry rows).
TEST(HardeningTest, RefusedDrawsNameTheReason) {
  auto code39 = MakeHandle(BARCODE_CODE39);
  EXPECT_EQ(barcode_draw_1d(code39.get(), nullptr, 300, 100), 0);
  EXPECT_STREQ(barcode_get_last_error(code39.get()), "barcode_draw_1d: the text is null");
  uint32_t size = 77;
  EXPECT_EQ(barcode_get_image_data(nullptr, &size), nullptr);
  EXPECT_EQ(size, 0U);
}

// A call entering a handle that another call holds is refused with the reason, and the
// handle is left as that call has it (here the holder is simulated by the flag).
TEST(HardeningTest, HandleInUseIsRefusedNotShared) {
  auto handle = MakeHandle(BARCODE_CODE128);
  ASSERT_EQ(barcode_draw_1d(handle.get(), "FIRST", 300, 100), 1);
  const std::vector<uint8_t> before = ImageData(handle.get());
  handle->in_use = true;
  EXPECT_EQ(barcode_draw_1d(handle.get(), "SECOND", 300, 100), 0);
  EXPECT_STREQ(barcode_get_last_error(handle.get()), barcode_orv::ffi::kHandleInUse);
  uint32_t size = 77;
  EXPECT_EQ(barcode_get_image_data(handle.get(), &size), nullptr);
  EXPECT_EQ(size, 0U);
  EXPECT_STREQ(barcode_get_svg(handle.get()), "");
  barcode_destroy(handle.get());  // left alone while in use
  handle->in_use = false;
  // This thread's refusal stays readable until its next call on the handle enters it.
  EXPECT_STREQ(barcode_get_last_error(handle.get()), barcode_orv::ffi::kHandleInUse);
  EXPECT_EQ(ImageData(handle.get()), before);
  EXPECT_STREQ(barcode_get_last_error(handle.get()), "");
}

// Two threads on one handle (outside the interface's promise): every call either runs
// alone or is refused by name; nothing is corrupted (the sanitized suites watch).
TEST(HardeningTest, TwoThreadsOnOneHandleNeverCorruptIt) {
  auto handle = MakeHandle(BARCODE_CODE128);
  barcode_set_output_format(handle.get(), "svg");
  barcode_set_text_even_spacing(handle.get(), 0);  // the text in one piece
  auto hammer = [&handle](int* unexplained) {
    for (int i = 0; i < 300; ++i) {
      if (barcode_draw_1d(handle.get(), "RACE-128", 300, 100) == 1) continue;
      if (std::string(barcode_get_last_error(handle.get())) != barcode_orv::ffi::kHandleInUse) ++*unexplained;
    }
  };
  int unexplained[2] = {0, 0};
  std::thread other(hammer, &unexplained[1]);
  hammer(&unexplained[0]);
  other.join();
  EXPECT_EQ(unexplained[0] + unexplained[1], 0);
  EXPECT_EQ(barcode_draw_1d(handle.get(), "AFTER", 300, 100), 1);
  EXPECT_NE(std::string(barcode_get_svg(handle.get())).find("AFTER"), std::string::npos);
}

}  // namespace

namespace {

// Matrix modules widened far past their neighbours are painted row band by row band on the
// own canvas; a caller's renderer still gets one rectangle a module. Both give the same
// pixels, and a widening of 100,000 px costs what the canvas costs.
// A caller's renderer on a 32-bit surface, which the painters fill one rectangle a module
// or bar, and the count of its pixels that differ from a PNG the library wrote.
class CallerCanvas {
 public:
  CallerCanvas(int width, int height)
      : surface_(SDL_CreateRGBSurfaceWithFormat(0, width, height, 32, SDL_PIXELFORMAT_ABGR8888), SDL_FreeSurface),
        renderer_(SDL_CreateSoftwareRenderer(surface_.get()), SDL_DestroyRenderer) {}

  SDL_Renderer* renderer() const { return renderer_.get(); }

  int Differing(const barcode_orv::testing::RgbaImage& image) const {
    int differing = 0;
    for (int y = 0; y < image.height; ++y) {
      const auto* row = static_cast<const uint8_t*>(surface_->pixels) + static_cast<ptrdiff_t>(y) * surface_->pitch;
      for (int x = 0; x < image.width; ++x) {
        const uint8_t* p = row + static_cast<ptrdiff_t>(x) * 4;
        const uint32_t rgba = (uint32_t{p[0]} << 24) | (uint32_t{p[1]} << 16) | (uint32_t{p[2]} << 8) | p[3];
        differing += rgba != image.Pixel(x, y) ? 1 : 0;
      }
    }
    return differing;
  }

 private:
  std::unique_ptr<SDL_Surface, decltype(&SDL_FreeSurface)> surface_;
  std::unique_ptr<SDL_Renderer, decltype(&SDL_DestroyRenderer)> renderer_;
};

TEST(HardeningTest, WidenedMatrixModulesMatchOneRectangleAModule) {
  struct Case {
    int type;
    const char* text;
    int adjust;
    int width;
    int height;
  };
  const Case cases[] = {
      {BARCODE_QR, "widened", 3, 120, 90},
      {BARCODE_QR, "widened", 7, 200, 200},
      {BARCODE_QR, "widened", 250, 150, 150},
      {BARCODE_DATAMATRIX, "widened", 4, 100, 60},
      {BARCODE_DATAMATRIX, "widened", 33, 90, 90},
      {BARCODE_PDF417, "widened modules", 5, 300, 120},
      {BARCODE_PDF417, "widened modules", 60, 250, 100},
  };
  for (const Case& c : cases) {
    for (const int quiet_zone : {0, 1}) {
      SCOPED_TRACE(std::to_string(c.type) + " adjust " + std::to_string(c.adjust) + " zone " +
                   std::to_string(quiet_zone));
      const auto own = MakeHandle(c.type);
      barcode_set_px_adjust_black(own.get(), c.adjust);
      barcode_set_quiet_zone(own.get(), quiet_zone);
      barcode_set_foreground_color(own.get(), 20, 40, 120, 200);
      ASSERT_EQ(barcode_draw_2d_rect(own.get(), c.text, c.width, c.height), 1);
      const auto image = DecodePng(ImageData(own.get()));
      const CallerCanvas canvas(c.width, c.height);
      std::unique_ptr<barcode_orv::BarcodeBase2D> on_renderer;
      if (c.type == BARCODE_QR) on_renderer = std::make_unique<barcode_orv::QR>(canvas.renderer());
      if (c.type == BARCODE_DATAMATRIX) on_renderer = std::make_unique<barcode_orv::DataMatrix>(canvas.renderer());
      if (c.type == BARCODE_PDF417) on_renderer = std::make_unique<barcode_orv::PDF417>(canvas.renderer());
      on_renderer->SetPxAdjustBlack(c.adjust);
      on_renderer->SetQuietZone(quiet_zone != 0);
      on_renderer->SetForegroundColor(20, 40, 120, 200);
      const std::string text = c.text;
      ASSERT_TRUE(on_renderer->Draw(std::vector<uint8_t>(text.begin(), text.end()), 0, 0, c.width, c.height));
      EXPECT_EQ(canvas.Differing(image), 0);
    }
  }
  // The fuzzer's slow input: a 100,000 px widening on a large PDF417 canvas.
  const auto huge = MakeHandle(BARCODE_PDF417);
  barcode_set_px_adjust_black(huge.get(), 100000);
  EXPECT_EQ(barcode_draw_2d_rect(huge.get(), std::string(300, 'x').c_str(), 3000, 3000), 1);
}

}  // namespace

namespace {

// Japan Post bars wider than their pitch are merged into spans on the own canvas: the same
// pixels as one rectangle a bar on a caller's renderer, at any widening.
TEST(HardeningTest, OverlappingJapanPostBarsMatchOneRectangleABar) {
  for (const int adjust : {4, 9, 57, 100000}) {
    for (const int height : {18, 31}) {
      SCOPED_TRACE("adjust " + std::to_string(adjust) + " height " + std::to_string(height));
      const auto own = MakeHandle(BARCODE_YUBIN_CUSTOMER);
      barcode_set_px_adjust_black(own.get(), adjust);
      ASSERT_EQ(barcode_draw_yubin(own.get(), "1060032-3-2-5", height), 1);
      const auto image = DecodePng(ImageData(own.get()));
      const CallerCanvas canvas(image.width, image.height);
      SDL_SetRenderDrawColor(canvas.renderer(), 255, 255, 255, 255);
      SDL_RenderClear(canvas.renderer());
      barcode_orv::YubinCustomer on_renderer(canvas.renderer());
      on_renderer.SetPxAdjustBlack(adjust);
      ASSERT_TRUE(on_renderer.Draw("1060032-3-2-5", 0, 0, height));
      EXPECT_EQ(canvas.Differing(image), 0);
    }
  }
}

}  // namespace
