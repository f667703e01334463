// The C interface contract, over every type the build provides: handles, result slots
// in each output mode, neutral values and the registry's rows against the entry points
// (refusals and the last error of a failed draw are in test_errors).
#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <string>
#include <utility>

#include "barcode_ffi.h"
#include "support/c_api.h"
#include "support/png_image.h"
#include "support/samples.h"

namespace {

using Handle = barcode_orv::testing::HandlePtr;

Handle Code39Handle() { return barcode_orv::testing::MakeHandle(BARCODE_CODE39); }

std::string Png(BarcodeHandle* handle) {
  const std::vector<uint8_t> png = barcode_orv::testing::ImageData(handle);
  return std::string(png.begin(), png.end());
}

barcode_orv::testing::RgbaImage Picture(BarcodeHandle* handle) {
  return barcode_orv::testing::DecodePng(barcode_orv::testing::ImageData(handle));
}

TEST(CApiTest, OutputFormatSwitch) {
  Handle handle = Code39Handle();
  const std::pair<const char*, int> cases[] = {{"SVG", 1}, {"Svg", 0}, {"svg", 1}, {"png", 0}, {"svgz", 0}};
  for (const auto& [format, svg] : cases) {
    barcode_set_output_format(handle.get(), format);
    EXPECT_EQ(barcode_is_svg_output(handle.get()), svg) << format;
  }
  barcode_set_output_format(handle.get(), nullptr);  // ignored
  EXPECT_EQ(barcode_is_svg_output(handle.get()), 0);
}

TEST(CApiTest, NullArgumentsGiveNeutralValues) {
  uint32_t size = 77;
  EXPECT_STREQ(barcode_get_svg(nullptr), "");
  EXPECT_STREQ(barcode_get_base64(nullptr), "");
  EXPECT_EQ(barcode_get_image_data(nullptr, &size), nullptr);
  EXPECT_EQ(size, 0U);  // no bytes, as for every other failure
  EXPECT_EQ(barcode_is_svg_output(nullptr), 0);
  EXPECT_EQ(barcode_draw_1d(nullptr, "A", 100, 50), 0);
  EXPECT_EQ(barcode_draw_2d(nullptr, "A", 100), 0);
  EXPECT_EQ(barcode_draw_2d_rect(nullptr, "A", 100, 100), 0);
  EXPECT_EQ(barcode_draw_yubin(nullptr, "A", 100), 0);
  EXPECT_EQ(barcode_draw_convenience(nullptr, "A", 100, 50), 0);
  EXPECT_EQ(barcode_draw_stacked(nullptr, "A", 100, 50), 0);
  EXPECT_STREQ(barcode_get_symbol_type_14(nullptr), "");
  EXPECT_EQ(barcode_encode_14(nullptr, "1"), 0);
  EXPECT_STREQ(barcode_calculate_check_digit_14(nullptr), "");
  barcode_destroy(nullptr);
  barcode_set_foreground_color(nullptr, 1, 2, 3, 4);
  barcode_set_show_text(nullptr, 0);
  barcode_set_code_mode(nullptr, "A");
  barcode_set_version(nullptr, 3);

  Handle handle = Code39Handle();
  EXPECT_EQ(barcode_draw_1d(handle.get(), nullptr, 100, 50), 0);
  EXPECT_EQ(barcode_get_image_data(handle.get(), nullptr), nullptr);
}

TEST(CApiTest, RasterGettersAndTheSharedTextSlot) {
  Handle handle = Code39Handle();
  ASSERT_EQ(barcode_draw_1d(handle.get(), "ABC-1234", 300, 100), 1);
  EXPECT_STREQ(barcode_get_svg(handle.get()), "");  // raster mode: empty, never null
  const std::string png = Png(handle.get());
  ASSERT_GT(png.size(), 8U);
  EXPECT_EQ(png.substr(0, 8), std::string("\x89PNG\r\n\x1a\n", 8));
  EXPECT_EQ(Png(handle.get()), png);  // bytes can be fetched again

  EXPECT_GT(std::strlen(barcode_get_base64(handle.get())), 114U);  // prefix: test_barcode_base
  // The data URI consumed the canvas: the fallback image, and no more bytes.
  EXPECT_EQ(std::strlen(barcode_get_base64(handle.get())), 114U);
  uint32_t size = 5;
  EXPECT_EQ(barcode_get_image_data(handle.get(), &size), nullptr);
  EXPECT_EQ(size, 0U);
}

TEST(CApiTest, FailedDrawReturnsZeroAndLeavesABlankCanvas) {
  Handle handle = Code39Handle();
  barcode_set_background_color(handle.get(), 0, 128, 0, 255);
  EXPECT_EQ(barcode_draw_1d(handle.get(), "A*B", 120, 40), 0);
  const barcode_orv::testing::RgbaImage image = Picture(handle.get());
  ASSERT_EQ(image.width, 120);
  for (int x = 0; x < 120; x += 7) EXPECT_EQ(image.Pixel(x, 20), 0x008000FFU);
  EXPECT_EQ(barcode_draw_1d(handle.get(), "", 120, 40), 0);
}

// Colour components keep their low byte; options of other types are ignored; the SVG
// document can be fetched again and leaves no image data.
TEST(CApiTest, SvgModeColoursAndForeignOptions) {
  Handle handle = Code39Handle();
  barcode_set_output_format(handle.get(), "svg");
  barcode_set_foreground_color(handle.get(), 256, 257, -1, 255 + 256);
  barcode_set_background_color(handle.get(), 1, 2, 3, 4);
  barcode_set_show_start_stop(handle.get(), 0);
  barcode_set_text_even_spacing(handle.get(), 0);
  barcode_set_code_mode(handle.get(), "C");  // Code 128 only: ignored
  barcode_set_version(handle.get(), 5);      // QR only: ignored
  ASSERT_EQ(barcode_draw_1d(handle.get(), "AB", 300, 100), 1);
  const std::string svg = barcode_get_svg(handle.get());
  EXPECT_NE(svg.find("fill=\"rgb(0,1,255)\" text-anchor=\"middle\" dominant-baseline=\"hanging\">AB</text>"),
            std::string::npos);
  EXPECT_NE(svg.find("fill=\"rgb(1,2,3)\" fill-opacity=\"0.02\"/>"), std::string::npos);
  EXPECT_EQ(barcode_get_svg(handle.get()), svg);
  uint32_t size = 3;
  EXPECT_EQ(barcode_get_image_data(handle.get(), &size), nullptr);
  EXPECT_EQ(size, 0U);
}

TEST(CApiTest, QuietSwitchSilencesProgressLines) {
  Handle handle = Code39Handle();
  barcode_set_quiet(0);
  ::testing::internal::CaptureStdout();
  ASSERT_EQ(barcode_draw_1d(handle.get(), "AB", 200, 60), 1);
  (void)Png(handle.get());
  EXPECT_NE(::testing::internal::GetCapturedStdout(), "");
  barcode_set_quiet(1);
  ::testing::internal::CaptureStdout();
  ASSERT_EQ(barcode_draw_1d(handle.get(), "AB", 200, 60), 1);
  (void)Png(handle.get());
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST(CApiTest, EveryTypeDrawsIntoTheBoxInBothModes) {
  int provided = 0;
  for (const auto& sample : barcode_orv::testing::kTypeSamples) {
    Handle handle = barcode_orv::testing::MakeHandle(sample.type);
    if (!handle) continue;
    ++provided;
    SCOPED_TRACE(sample.text);
    EXPECT_EQ(barcode_draw_1d(handle.get(), nullptr, 300, 120), 0);
    ASSERT_EQ(barcode_draw_1d(handle.get(), sample.text, 301, 123), 1) << barcode_get_last_error(handle.get());
    EXPECT_STREQ(barcode_get_last_error(handle.get()), "");
    EXPECT_STREQ(barcode_get_svg(handle.get()), "");
    const auto image = Picture(handle.get());
    // The Japan Post barcode takes its width from its height, whatever the box says.
    const bool box_width = sample.type != BARCODE_YUBIN_CUSTOMER;
    EXPECT_TRUE(!box_width || image.width == 301) << image.width;
    EXPECT_EQ(image.height, 123);

    barcode_set_output_format(handle.get(), "SVG");
    if (sample.type == BARCODE_GS1_DATABAR_LIMITED) {  // no SVG form
      EXPECT_EQ(barcode_draw_1d(handle.get(), sample.text, 301, 123), 0);
      continue;
    }
    ASSERT_EQ(barcode_draw_1d(handle.get(), sample.text, 301, 123), 1);
    const std::string svg = barcode_get_svg(handle.get());
    EXPECT_EQ(svg.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg", 0), 0U);
    EXPECT_TRUE(!box_width || svg.find("width=\"301\" height=\"123\"") != std::string::npos);
    EXPECT_STREQ(barcode_get_base64(handle.get()), "");
  }
  EXPECT_GE(provided, 8);
  for (int unknown : {19, -1, 1 << 30}) EXPECT_EQ(barcode_create(unknown), nullptr) << unknown;
}

// Each row of the registry against the library: its name comes back as its type, the
// factory makes that symbology (its failures carry the class's prefix), and each entry
// point the row declares beyond barcode_draw_1d takes the handle (to draw, or to fail on
// the text) while every other refuses it as not for its type.
TEST(CApiTest, RegistryRowsAgreeWithTheLibrary) {
  using Entry = int (*)(BarcodeHandle*, const char*);
  const std::pair<const char*, Entry> entries[] = {
      {"barcode_draw_2d", [](BarcodeHandle* h, const char* t) { return barcode_draw_2d(h, t, 300); }},
      {"barcode_draw_2d_rect", [](BarcodeHandle* h, const char* t) { return barcode_draw_2d_rect(h, t, 600, 300); }},
      {"barcode_draw_2d_bytes",
       [](BarcodeHandle* h, const char* t) {
         return barcode_draw_2d_bytes(h, reinterpret_cast<const unsigned char*>(t), std::strlen(t), 600, 300);
       }},
      {"barcode_draw_yubin", [](BarcodeHandle* h, const char* t) { return barcode_draw_yubin(h, t, 30); }},
      {"barcode_draw_yubin_with_width",
       [](BarcodeHandle* h, const char* t) { return barcode_draw_yubin_with_width(h, t, 600, 30); }},
      {"barcode_draw_convenience",
       [](BarcodeHandle* h, const char* t) { return barcode_draw_convenience(h, t, 600, 300); }},
      {"barcode_draw_stacked", [](BarcodeHandle* h, const char* t) { return barcode_draw_stacked(h, t, 600, 300); }},
  };
  ASSERT_EQ(barcode_type_count(), static_cast<int>(std::size(barcode_orv::testing::kTypeSamples)));
  for (const auto& sample : barcode_orv::testing::kTypeSamples) {
    const std::string name = barcode_type_name(sample.type);
    SCOPED_TRACE(name);
    EXPECT_EQ(barcode_type_from_name(name.c_str()), sample.type);
    Handle handle = barcode_orv::testing::MakeHandle(sample.type);
    ASSERT_TRUE(handle);
    barcode_set_error_lines(0);
    barcode_set_standard(handle.get(), 1);
    EXPECT_EQ(barcode_draw_1d(handle.get(), "", 300, 100), 0);
    EXPECT_EQ(std::string(barcode_get_last_error(handle.get())).rfind(sample.prefix, 0), 0U)
        << barcode_get_last_error(handle.get());
    for (const auto& [function, draw] : entries) {
      const int drawn = draw(handle.get(), sample.text);
      const bool refused =
          drawn == 0 && std::string(barcode_get_last_error(handle.get())) ==
                            std::string(function) + ": not for symbology type " + std::to_string(sample.type);
      EXPECT_EQ(barcode_type_accepts(sample.type, function) == 1, !refused)
          << function << ": " << barcode_get_last_error(handle.get());
    }
    barcode_set_error_lines(1);
  }
  EXPECT_STREQ(barcode_type_name(barcode_type_count()), "");
  EXPECT_STREQ(barcode_type_description(-1), "");
  for (const char* name : {"QR", "", static_cast<const char*>(nullptr)}) EXPECT_EQ(barcode_type_from_name(name), -1);
  EXPECT_EQ(barcode_type_accepts(0, "barcode_draw_nothing") + barcode_type_accepts(-1, "barcode_draw_1d"), 0);
}

}  // namespace
