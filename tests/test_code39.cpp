// Code 39: element widths, error messages, exact SVG bytes, raster output and decoding
// by an independent reader.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "barcode_ffi.h"
#include "linear/code39.h"
#include "support/c_api.h"
#include "support/png_image.h"
#include "support/zxing_decode.h"

namespace barcode_orv {
namespace {

using testing::DecodePngBarcode;
using testing::Symbology;

std::vector<int32_t> Widths(const char* digits) {
  std::vector<int32_t> widths;
  for (const char* p = digits; *p != '\0'; ++p) {
    if (*p != ' ') widths.push_back(*p - '0');
  }
  return widths;
}

TEST(Code39EncoderTest, FramesDataWithStartStopAndNarrowGaps) {
  // "*" = 010010100, "0" = 000110100, "A" = 100001001, "1" = 100100001
  const auto star = "131131311";
  EXPECT_EQ(internal::EncodeCode39("0"), Widths((std::string(star) + "1" + "111331311" + "1" + star).c_str()));
  EXPECT_EQ(internal::EncodeCode39("A1"),
            Widths((std::string(star) + "1" + "311113113" + "1" + "311311113" + "1" + star).c_str()));
}

TEST(Code39EncoderTest, SymbolLengthIsSixteenModulesPerCharacterLessOne) {
  for (const std::string text : {"0", "ABC-1234", "HELLO WORLD", "$/+%. -"}) {
    const std::vector<int32_t> widths = internal::EncodeCode39(text);
    int total = 0;
    for (int32_t w : widths) total += w;
    EXPECT_EQ(widths.size(), (text.size() + 2) * 10 - 1) << text;
    EXPECT_EQ(total, 16 * static_cast<int>(text.size() + 2) - 1) << text;
  }
}

TEST(Code39EncoderTest, LowerCaseEncodesAsCapitals) {
  EXPECT_EQ(internal::EncodeCode39("abc"), internal::EncodeCode39("ABC"));
  EXPECT_EQ(internal::EncodeCode39(" "), internal::EncodeCode39(" "));
}

TEST(Code39EncoderTest, RejectsBadInputWithItsMessage) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "Empty string"},
      {"A*B", "Invalid character in CODE39: '*' is reserved for start/stop code"},
      {"A_B", "Invalid character in CODE39: _"},
      {"ab!", "Invalid character in CODE39: !"},
      {std::string("A\xC3\xA9"), "Invalid character in CODE39: \xC3"},
  };
  for (const auto& [text, message] : cases) {
    try {
      internal::EncodeCode39(text);
      ADD_FAILURE() << "accepted " << text;
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), message);
    }
  }
}

// The document for "0" in a 200 x 80 box: 47 modules at 4 px, bars 60 px tall,
// text 16 px at the top of the last 16 rows, "*0*" spread 85 px apart from x = 9.
TEST(Code39SvgTest, DocumentBytesAreExact) {
  Code39 code("svg");
  ASSERT_TRUE(code.Draw("0", 0, 0, 200, 80));
  std::string expected =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\" width=\"200\" height=\"80\" viewBox=\"0 0 200 80\">\n"
      "  <rect x=\"0.00\" y=\"0.00\" width=\"200.00\" height=\"80.00\" fill=\"rgb(255,255,255)\"/>\n";
  const std::pair<int, int> bars[] = {{0, 4},    {16, 4},  {24, 12}, {40, 12}, {56, 4},   {64, 4},   {72, 4}, {88, 12},
                                      {104, 12}, {120, 4}, {128, 4}, {144, 4}, {152, 12}, {168, 12}, {184, 4}};
  for (const auto& [x, width] : bars) {
    expected += "  <rect x=\"" + std::to_string(x) + ".00\" y=\"0.00\" width=\"" + std::to_string(width) +
                ".00\" height=\"60.00\" fill=\"rgb(0,0,0)\"/>\n";
  }
  const std::pair<int, char> glyphs[] = {{9, '*'}, {94, '0'}, {179, '*'}};
  for (const auto& [x, glyph] : glyphs) {
    expected += "  <text x=\"" + std::to_string(x) +
                ".00\" y=\"64.00\" font-family=\"Arial, sans-serif\" font-size=\"16\" fill=\"rgb(0,0,0)\" "
                "text-anchor=\"middle\" dominant-baseline=\"hanging\">" +
                glyph + "</text>\n";
  }
  expected += "</svg>\n";
  EXPECT_EQ(code.GetSvg(), expected);
}

TEST(Code39SvgTest, TextOptionsShapeTheTextElements) {
  Code39 code("SVG");
  code.SetShowStartStop(false);
  code.SetTextEvenSpacing(false);
  code.SetForegroundColor(10, 20, 30, 128);
  ASSERT_TRUE(code.Draw("abc", 0, 0, 300, 100));
  const std::string svg = code.GetSvg();
  EXPECT_NE(svg.find("fill=\"rgb(10,20,30)\" fill-opacity=\"0.50\"/>"), std::string::npos);
  // One centred element with the text as given (not upper-cased, no asterisks).
  EXPECT_NE(svg.find("<text x=\"118.00\" y=\"80.00\" font-family=\"Arial, sans-serif\" font-size=\"20\" "
                     "fill=\"rgb(10,20,30)\" text-anchor=\"middle\" dominant-baseline=\"hanging\">abc</text>"),
            std::string::npos)
      << svg;
}

TEST(Code39SvgTest, FailedDrawKeepsThePreviousDocument) {
  Code39 code("svg");
  ASSERT_TRUE(code.Draw("OK", 0, 0, 200, 80));
  const std::string before = code.GetSvg();
  EXPECT_FALSE(code.Draw("A*B", 0, 0, 300, 100));
  EXPECT_EQ(code.GetSvg(), before);
  ASSERT_TRUE(code.Draw("NEW", 0, 0, 250, 90));
  EXPECT_EQ(code.GetSvg().find("width=\"200\""), std::string::npos);
}

TEST(Code39SvgTest, ShowTextOffGivesFullHeightBarsAndNoText) {
  Code39 code("svg");
  code.SetShowText(false);
  ASSERT_TRUE(code.Draw("0", 0, 0, 200, 80));
  const std::string svg = code.GetSvg();
  EXPECT_EQ(svg.find("<text"), std::string::npos);
  EXPECT_NE(svg.find("width=\"4.00\" height=\"80.00\""), std::string::npos);
}

// ---- Raster output and decoding ----

std::vector<uint8_t> DrawPng(const std::string& text, int width, int height, bool fit_width, bool show_text) {
  const testing::HandlePtr handle = testing::MakeHandle(BARCODE_CODE39);
  barcode_set_fit_width(handle.get(), fit_width ? 1 : 0);
  barcode_set_show_text(handle.get(), show_text ? 1 : 0);
  if (barcode_draw_1d(handle.get(), text.c_str(), width, height) == 0) return {};
  return testing::ImageData(handle.get());
}

TEST(Code39RasterTest, CanvasIsTheBoxAndBarsStartAtTheLeftEdge) {
  const testing::RgbaImage image = testing::DecodePng(DrawPng("0", 200, 80, false, true));
  ASSERT_EQ(image.width, 200);
  ASSERT_EQ(image.height, 80);
  EXPECT_EQ(image.Pixel(0, 0), 0x000000FFU);
  EXPECT_EQ(image.Pixel(4, 0), 0xFFFFFFFFU);
  EXPECT_EQ(image.Pixel(187, 59), 0x000000FFU);
  EXPECT_EQ(image.Pixel(187, 60), 0xFFFFFFFFU);  // gap under the bars
  EXPECT_EQ(image.Pixel(195, 10), 0xFFFFFFFFU);  // 188 px drawn, the rest is background
}

}  // namespace
}  // namespace barcode_orv
