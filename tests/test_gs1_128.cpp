// Guards GS1-128: element strings completed and normalised, check pairs against the published
// vectors, FNC1 placement after variable-length fields, the fewest-characters code-set choice
// worked out by hand, the 48-character limit, the convenience-store code's check digit and
// two text lines, and the fit-width default.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include "barcode_ffi.h"
#include "gs1/gs1_element_string.h"
#include "linear/code128_iso.h"
#include "linear/gs1_128.h"
#include "support/c_api.h"

namespace barcode_orv {
namespace {

using Values = std::vector<int32_t>;

TEST(Gs1ElementString, ValidData) {
  const std::pair<const char*, const char*> cases[] = {
      {"(01)04912345678904(10)ABC-12(17)251231", "(01)04912345678904(10)ABC-12(17)251231"},
      {"[01]04912345678904[10]ABC-12[17]251231", "(01)04912345678904(10)ABC-12(17)251231"},  // Zint's brackets
      {"(10)A\\(B\\)", "(10)A(B)"},  // escaped parentheses are data
      {"[10]A(B)", "(10)A(B)"},      // with brackets they need no escape
      {"(11)250200", "(11)250200"},  // YYMMD0: day 00 is allowed
      {"(253)1234567890128", "(253)1234567890128"},
      {"(253)1234567890128ABC", "(253)1234567890128ABC"},
      {"(8003)01234567890128", "(8003)01234567890128"},
      {"(8013)1987654Ad4X4bL5ttr2310c2K", "(8013)1987654Ad4X4bL5ttr2310c2K"},
      {"(8030)QUJD=", "(8030)QUJD="},  // base64url with padding
      {"(4324)2512312359", "(4324)2512312359"},
  };
  for (const auto& [text, readable] : cases) {
    EXPECT_EQ(internal::Gs1HumanReadable(internal::ParseGs1ElementString(text)), readable) << text;
  }
}

TEST(Gs1ElementString, CheckPairsOfThePublishedVectors) {
  const std::pair<const char*, const char*> vectors[] = {{"!", "22"},
                                                         {"!!", "22"},
                                                         {"1987654Ad4X4bL5ttr2310c", "2K"},
                                                         {"12345678901234567890123", "NT"},
                                                         {"12345_ABCDEFGHIJKLM", "CP"},
                                                         {"12345_NOPQRSTUVWXYZ", "DN"},
                                                         {"12345_0123456789:;<=>?", "62"},
                                                         {"7907665Bm8v2", "AB"}};
  for (const auto& [data, pair] : vectors) EXPECT_EQ(internal::Gs1CheckPair(data), pair) << data;
}

TEST(Gs1ElementString, SeparatorAfterVariableLengthFieldsThatAreNotLast) {
  // '|' stands for the separator (FNC1, read as GS); (4321) is fixed length but not predefined.
  const std::pair<const char*, std::string> cases[] = {{"(01)04912345678904(10)AB", "010491234567890410AB"},
                                                       {"(10)AB(01)04912345678904", "10AB|0104912345678904"},
                                                       {"(10)AB(21)X(17)251231", "10AB|21X|17251231"},
                                                       {"(4321)1(10)A", "43211|10A"}};
  for (auto [text, data] : cases) {
    std::replace(data.begin(), data.end(), '|', '\x1D');
    EXPECT_EQ(internal::Gs1Concatenated(internal::ParseGs1ElementString(text)), data) << text;
  }
}

TEST(Gs1128Values, FnC1FirstAndTheFewestCharacters) {
  // Symbol values worked out by hand (ISO/IEC 15417 values; check = start + sum of i x value).
  const std::pair<const char*, Values> cases[] = {
      {"(01)04912345678904", {105, 102, 1, 4, 91, 23, 45, 67, 89, 4, 24, 106}},
      {"(10)ABC", {105, 102, 10, 100, 33, 34, 35, 9, 106}},  // C for the AI, then B
      {"(10)123", {105, 102, 10, 12, 100, 19, 37, 106}},     // odd digit in B
      {"(10)AB(21)12", {105, 102, 10, 100, 33, 34, 102, 99, 21, 12, 41, 106}},
      {"(10)a1234b", {105, 102, 10, 100, 65, 17, 18, 19, 20, 66, 13, 106}},  // C for 4 digits ties: stay
      {"(10)a123456b", {105, 102, 10, 100, 65, 99, 12, 34, 56, 100, 66, 98, 106}},
  };
  for (const auto& [text, values] : cases) {
    EXPECT_EQ(internal::Gs1128Values(internal::ParseGs1ElementString(text)), values) << text;
  }
  // Set A values and SHIFT, which GS1 data never needs: a control character in lower case.
  EXPECT_EQ(internal::Iso15417Values({'a', '\t', 'b'}), (Values{104, 65, 98, 73, 66, 24, 106}));
  EXPECT_EQ(internal::Iso15417Values({'A', '\t', '\n'}), (Values{103, 33, 73, 74, 92, 106}));
  // 48 data characters fit: start C, FNC1, 24 pairs, check, stop; 49 do not.
  EXPECT_EQ(internal::Gs1128Values(internal::ParseGs1ElementString("(91)" + std::string(46, '1'))).size(), 28U);
  EXPECT_THROW(internal::Gs1128Values(internal::ParseGs1ElementString("(91)" + std::string(47, '1'))),
               std::runtime_error);
}

TEST(Gs1128Convenience, CheckDigitFieldsAndTwoLines) {
  const std::string body = "9191234512345678901234567890123425013102500";
  const std::string code = internal::ConvenienceCode(body);
  EXPECT_EQ(code, body + "1");
  EXPECT_EQ(internal::ConvenienceCode(code), code);
  const auto [first, second] = internal::ConvenienceTextLines(code);
  EXPECT_EQ(first, "91-912345-123456789012345678901");
  EXPECT_EQ(second, "2-342501-3-102500-1");
  // Start C, FNC1, 22 digit pairs, check, stop; two text lines under short bars.
  testing::HandlePtr handle = testing::MakeHandle(BARCODE_GS1_128);
  barcode_set_output_format(handle.get(), "svg");
  ASSERT_EQ(barcode_draw_convenience(handle.get(), body.c_str(), 600, 240), 1);
  const std::string svg = barcode_get_svg(handle.get());
  std::string lines;  // "|top:text" for each line of glyphs
  std::string top;
  const std::regex glyph("<text x=\"[-0-9.]+\" y=\"([-0-9.]+)\"[^>]*>([^<]*)</text>");
  for (std::sregex_iterator it(svg.begin(), svg.end(), glyph), end; it != end; ++it) {
    if ((*it)[1] != top) lines += "|" + (top = (*it)[1]) + ":";
    lines += (*it)[2];
  }
  // Height 240: T 36, G 16, bars 240 - 16 - 4 x 36 = 80; lines at 80 + 16 + 24 and + 36 + 24.
  EXPECT_EQ(lines, "|120.00:" + first + "|180.00:" + second);
  EXPECT_NE(svg.find("height=\"80.00\""), std::string::npos);
}

TEST(Gs1128CInterface, FitWidthByDefault) {
  testing::HandlePtr handle = testing::MakeHandle(BARCODE_GS1_128);
  barcode_set_output_format(handle.get(), "svg");
  ASSERT_EQ(barcode_draw_1d(handle.get(), "(01)04912345678904", 500, 100), 1);
  const std::string svg = barcode_get_svg(handle.get());
  const std::regex rect("<rect x=\"([0-9.]+)\" y=\"[0-9.]+\" width=\"([0-9.]+)\"");
  float right = 0;
  for (std::sregex_iterator it(svg.begin(), svg.end(), rect), end; it != end; ++it) {
    right = std::stof((*it)[1]) + std::stof((*it)[2]);
  }
  EXPECT_NEAR(right, 500.0F, 0.5F);  // the last bar ends at the box's edge
  EXPECT_NE(svg.find(">(</text>"), std::string::npos);
}

}  // namespace
}  // namespace barcode_orv
