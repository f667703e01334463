// Guards the bar patterns of Code 39, Code 93, NW-7 and the 2-of-5 family against element
// widths worked out by hand from their symbology standards (start/stop, gaps and check
// characters included), the text line each symbology shows, and the exact document and
// pixels the shared linear painter produces.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "barcode_ffi.h"
#include "linear/code39.h"
#include "linear/code93.h"
#include "linear/itf.h"
#include "linear/matrix2of5.h"
#include "linear/nec2of5.h"
#include "linear/nw7.h"
#include "support/c_api.h"
#include "support/png_image.h"

namespace barcode_orv {
namespace {

using Widths = std::vector<int32_t>;

// Element widths written as digits; spaces only separate characters for the reader.
Widths Parse(const std::string& digits) {
  Widths widths;
  for (char c : digits) {
    if (c != ' ') widths.push_back(c - '0');
  }
  return widths;
}

TEST(LinearWidths, WorkedOutByHand) {
  using Encoder = std::function<Widths(const std::string&)>;
  const Encoder code39 = internal::EncodeCode39, code93 = internal::EncodeCode93, nw7 = internal::EncodeNW7;
  const auto itf = [](float ratio) { return [ratio](const std::string& t) { return internal::EncodeITF(t, ratio); }; };
  const Encoder matrix = [](const std::string& t) { return internal::EncodeMatrix2of5(t, 1.0F); };
  const Encoder nec = [](const std::string& t) { return internal::EncodeNEC2of5(t, 1.0F); };
  const Encoder nec2 = [](const std::string& t) { return internal::EncodeNEC2of5(t, 2.0F); };
  const std::string zeros(20, '0');
  std::string zero_patterns;
  for (int i = 0; i < 20; ++i) zero_patterns += "131112 ";
  // Matrix 2 of 5 shows only each digit's wide bars; digits joined by one narrow space.
  const std::string ten_digits =
      "3131 31111 1 11113 1 11313 1 11311 1 11113 1 11111 1 11311 1 31113 1 31111 1 31311 133";
  const std::tuple<const char*, Encoder, std::string, std::string> cases[] = {
      // Code 39: * = 010010100, 0 = 000110100, A = 100001001, 1 = 100100001; narrow gaps.
      {"Code 39", code39, "0", "131131311 1 111331311 1 131131311"},
      {"Code 39 lower case", code39, "a1", "131131311 1 311113113 1 311311113 1 131131311"},
      // T E S T 9 3, C = "+" (41), K = "6".
      {"Code 93", code93, "TEST93", "111141 211221 221211 211122 211221 141111 111411 113121 121311 1111411"},
      // C = 1 (weights wrap after 20); K over the text and "1" = 7 + 1 = "8".
      {"Code 93 weights wrap", code93, "1" + zeros, "111141 111213 " + zero_patterns + "111213 131211 1111411"},
      // "<" is value 43; C = 43 ("<"), K = (43 x 2 + 43) mod 47 = 35 ("Z").
      {"Code 93 shift substitute", code93, "<", "111141 121221 121221 123111 1111411"},
      {"NW-7 default C", nw7, "123", "1113133 2 1111331 2 1113113 2 3311111 2 1113133"},
      {"NW-7 supplied", nw7, "a123b", "1133131 2 1111331 2 1113113 2 3311111 2 1313113"},
      {"NW-7 A inside is data", nw7, "1A2", "1113133 2 1111331 2 1133131 2 1113113 2 1113133"},
      {"NW-7 symbols", nw7, ".+:/$-", "1113133 2 3131311 2 1131313 2 3111313 2 3131113 2 1133111 2 1113311 2 1113133"},
      {"NW-7 digits", nw7, "456789", "1113133 2 1131131 2 3111131 2 1311113 2 1311311 2 1331111 2 3113111 2 1113133"},
      // 1 = WNNNW in the bars, 2 = NWNNW in the spaces; 9 = NWNWN bars, 0 = NNWWN spaces.
      {"ITF", itf(1.0F), "12", "1111 3113111133 311"},
      {"ITF", itf(1.0F), "90", "1111 1131133311 311"},
      {"ITF ratio 2", itf(2.0F), "12", "1111 2112111122 211"},
      {"Matrix 2 of 5", matrix, "0123456789", ten_digits},
      {"NEC 2 of 5", nec, "0123456789", ten_digits},
      {"NEC 2 of 5 ratio 2", nec2, "7", "2121 21112 122"},
  };
  for (const auto& [what, encode, text, widths] : cases) EXPECT_EQ(encode(text), Parse(widths)) << what << " " << text;
  // The wide element is three modules unless the ratio rounds to an even width.
  const std::pair<float, int32_t> ratios[] = {{1.0F, 3}, {1.9F, 3}, {2.0F, 2}, {3.0F, 3}, {0.5F, 2}, {4.0e9F, 2}};
  for (const auto& [ratio, wide] : ratios) EXPECT_EQ(internal::TwoOfFiveWideWidth(ratio), wide) << ratio;
}

std::string SvgTextLine(const std::string& svg) {
  std::string line;
  for (size_t at = svg.find("<text"); at != std::string::npos; at = svg.find("<text", at + 1)) {
    const size_t open = svg.find('>', at) + 1;
    line += svg.substr(open, svg.find("</text>", open) - open);
  }
  return line;
}

size_t Count(const std::string& haystack, const std::string& needle) {
  size_t n = 0;
  for (size_t at = haystack.find(needle); at != std::string::npos; at = haystack.find(needle, at + 1)) ++n;
  return n;
}

// The text line without check characters or padding; start/stop shown as set.
TEST(LinearText, WhatEachSymbologyShows) {
  // show_start_stop -1: the default; bars 0: not counted.
  const std::tuple<int, const char*, int, const char*, size_t> cases[] = {
      {BARCODE_CODE39, "0", -1, "*0*", 15},
      {BARCODE_CODE93, "TEST93", -1, "TEST93", 0},
      {BARCODE_NW7, "a123b", -1, "a123b", 0},
      {BARCODE_NW7, "a123b", 0, "123", 0},
      {BARCODE_NW7, "1a2", 0, "1A2", 0},
      {BARCODE_NW7, "AB", 0, "", 0},
      {BARCODE_ITF, "123", -1, "123", 2 + 2 * 5 + 2},
      {BARCODE_MATRIX2OF5, "123", -1, "123", 2 + 3 * 3 + 1},
      {BARCODE_NEC2OF5, "123", -1, "123", 2 + 3 * 3 + 1},
  };
  for (const auto& [type, text, show_start_stop, shown, bars] : cases) {
    testing::HandlePtr handle = testing::MakeHandle(type);
    barcode_set_output_format(handle.get(), "svg");
    if (show_start_stop >= 0) barcode_set_show_start_stop(handle.get(), show_start_stop);
    ASSERT_EQ(barcode_draw_1d(handle.get(), text, 300, 60), 1) << text;
    const std::string svg = barcode_get_svg(handle.get());
    EXPECT_EQ(SvgTextLine(svg), shown) << type << " " << text;
    EXPECT_TRUE(bars == 0 || Count(svg, "<rect") == 1 + bars) << type << " " << text;
  }
}

// The document for Code 39 "0" in a 200 x 80 box: 47 modules at 4 px, bars 60 px tall,
// text 16 px at the top of the last 16 rows, "*0*" spread 85 px apart from x = 9.
TEST(LinearSvg, DocumentBytesAndTextOptions) {
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

  // A failed draw keeps the previous document; text off gives full-height bars.
  EXPECT_FALSE(code.Draw("A*B", 0, 0, 300, 100));
  EXPECT_EQ(code.GetSvg(), expected);
  code.SetShowText(false);
  ASSERT_TRUE(code.Draw("0", 0, 0, 200, 80));
  EXPECT_EQ(code.GetSvg().find("<text"), std::string::npos);
  EXPECT_NE(code.GetSvg().find("width=\"4.00\" height=\"80.00\""), std::string::npos);

  // Translucent colour; one centred element with the text as given (not upper-cased, no
  // asterisks).
  code.SetShowText(true);
  code.SetShowStartStop(false);
  code.SetTextEvenSpacing(false);
  code.SetForegroundColor(10, 20, 30, 128);
  ASSERT_TRUE(code.Draw("abc", 0, 0, 300, 100));
  const std::string svg = code.GetSvg();
  EXPECT_NE(svg.find("fill=\"rgb(10,20,30)\" fill-opacity=\"0.50\"/>"), std::string::npos);
  EXPECT_NE(svg.find("<text x=\"118.00\" y=\"80.00\" font-family=\"Arial, sans-serif\" font-size=\"20\" "
                     "fill=\"rgb(10,20,30)\" text-anchor=\"middle\" dominant-baseline=\"hanging\">abc</text>"),
            std::string::npos)
      << svg;
}

TEST(LinearRaster, CanvasIsTheBoxAndBarsStartAtTheLeftEdge) {
  const testing::HandlePtr handle = testing::MakeHandle(BARCODE_CODE39);
  ASSERT_EQ(barcode_draw_1d(handle.get(), "0", 200, 80), 1);
  const testing::RgbaImage image = testing::DecodePng(testing::ImageData(handle.get()));
  ASSERT_EQ(image.width, 200);
  ASSERT_EQ(image.height, 80);
  EXPECT_EQ(image.Pixel(0, 0), 0x000000FFU);
  EXPECT_EQ(image.Pixel(4, 0), 0xFFFFFFFFU);
  EXPECT_EQ(image.Pixel(187, 59), 0x000000FFU);
  EXPECT_EQ(image.Pixel(187, 60), 0xFFFFFFFFU);  // gap under the bars
  EXPECT_EQ(image.Pixel(195, 10), 0xFFFFFFFFU);  // 188 px drawn, the rest is background
}

// Characters of the text line are rendered once per size and colour and then reused: a
// picture must not depend on what was drawn before it, and a colour never leaks into the
// text of another.
TEST(LinearRaster, TextLineDoesNotDependOnEarlierDraws) {
  struct Case {
    int type;
    const char* text;
    int height;
    double font_scale;
    std::array<int, 4> color;
  };
  const std::vector<Case> cases = {
      {BARCODE_JAN13, "490123456789", 100, 1.0, {0, 0, 0, 255}},
      {BARCODE_JAN13, "490123456789", 100, 1.0, {255, 0, 0, 255}},
      {BARCODE_JAN13, "490123456789", 60, 1.0, {255, 0, 0, 255}},
      {BARCODE_CODE128, "ABC123", 100, 2.0, {255, 0, 0, 128}},
      {BARCODE_CODE128, "ABC123", 100, 1.0, {0, 0, 0, 255}},
  };
  const auto draw = [](const Case& c) {
    const testing::HandlePtr handle = testing::MakeHandle(c.type);
    barcode_set_foreground_color(handle.get(), c.color[0], c.color[1], c.color[2], c.color[3]);
    barcode_set_text_font_scale(handle.get(), c.font_scale);
    EXPECT_EQ(barcode_draw_1d(handle.get(), c.text, 300, c.height), 1);
    return testing::DecodePng(testing::ImageData(handle.get()));
  };
  std::vector<testing::RgbaImage> forward;
  for (const Case& c : cases) forward.push_back(draw(c));
  for (size_t i = cases.size(); i-- > 0;) {
    SCOPED_TRACE(i);
    const testing::RgbaImage again = draw(cases[i]);
    EXPECT_EQ(again.pixels, forward[i].pixels);
    if (cases[i].color[0] != 255) continue;
    // Red on white blends to (255, v, v): no pixel of another colour's glyphs.
    for (int y = 0; y < again.height; ++y) {
      for (int x = 0; x < again.width; ++x) ASSERT_EQ(again.Pixel(x, y) >> 24, 0xFFU) << x << "," << y;
    }
  }
}

}  // namespace
}  // namespace barcode_orv
