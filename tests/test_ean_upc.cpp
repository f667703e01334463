// Guards the EAN/UPC family: check digits and UPC-E forms against published numbers,
// modules against Zint's dumps (an independent encoder) with and without add-ons, and the
// extended-guard geometry: long guards, outside digits, add-on bars under their digits.
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <tuple>
#include <vector>

#include "barcode_ffi.h"
#include "linear/ean_upc.h"
#include "support/c_api.h"

namespace barcode_orv {
namespace {

using internal::EanUpcKind;
constexpr EanUpcKind kJan8 = EanUpcKind::kJan8, kJan13 = EanUpcKind::kJan13, kUpcA = EanUpcKind::kUpcA,
                     kUpcE = EanUpcKind::kUpcE;

// The modules as `zint --dump` prints them: hexadecimal in pairs, dark = 1.
std::string Dump(const std::vector<int32_t>& widths) {
  std::string bits;
  for (size_t i = 0; i < widths.size(); ++i) bits.append(static_cast<size_t>(widths[i]), i % 2 == 0 ? '1' : '0');
  bits.append((4 - bits.size() % 4) % 4, '0');
  std::string hex;
  for (size_t i = 0; i < bits.size(); i += 4) {
    if (i > 0 && i % 8 == 0) hex += ' ';
    hex += "0123456789ABCDEF"[std::stoi(bits.substr(i, 4), nullptr, 2)];
  }
  return hex;
}

TEST(EanUpcCodes, CheckDigitsAndUpcEForms) {
  const std::tuple<EanUpcKind, const char*, const char*> cases[] = {
      {kJan13, "490123456789", "4901234567894"}, {kJan8, "4912345", "49123456"},
      {kUpcA, "03600029145", "036000291452"},    {kUpcE, "123456", "01234565"},
      {kUpcE, "012345000065", "01234565"},  // its UPC-A
      {kUpcE, "04252614", "04252614"},           {kUpcE, "11234562", "11234562"},
  };
  for (const auto& [kind, text, digits] : cases) EXPECT_EQ(internal::ParseEanUpc(kind, text).digits, digits) << text;
  // UPC-E numbers and their UPC-A expansions (the first from the GS1 examples).
  const std::pair<const char*, const char*> forms[] = {
      {"04252614", "042100005264"}, {"01234565", "012345000065"}, {"01234531", "012300000451"},
      {"01234543", "012340000053"}, {"11234562", "112345000062"},
  };
  for (const auto& [upce, upca] : forms) {
    EXPECT_EQ(internal::ExpandUpcE(upce), upca);
    EXPECT_EQ(internal::CompressUpcA(upca), upce);
  }
  EXPECT_EQ(internal::CompressUpcA("036000291452"), "");
}

TEST(EanUpcModules, MatchZintDumps) {
  // zint -b 13 (EAN), 34 (UPC-A), 37 (UPC-E) --addongap=9 --dump
  const std::tuple<EanUpcKind, const char*, const char*> cases[] = {
      {kJan13, "4901234567894", "A2 D3 99 26 84 EA A7 50 89 23 A5 CA"},
      {kJan13, "4901234567894+35", "A2 D3 99 26 84 EA A7 50 89 23 A5 CA 00 B4 2B 9"},
      {kJan13, "4901234567894 12345", "A2 D3 99 26 84 EA A7 50 89 23 A5 CA 00 B6 69 35 0A 8D 62"},
      {kJan8, "49123456", "A8 C5 99 26 A8 57 27 50 A"},
      {kUpcA, "036000291452", "A3 5E AF 1A 34 6A B6 74 CD 72 76 CA"},
      {kUpcE, "01234565", "AC C9 BD 3A E5 7A A"},
      {kUpcE, "04252614", "A7 49 B9 36 BC CA A"},
      {kUpcE, "11234562", "A6 49 A1 3A C4 2A A"},
      {kUpcE, "01234565+90210", "AC C9 BD 3A E5 7A A0 0B 2E 8D 49 AC D1 A"},
  };
  for (const auto& [kind, text, dump] : cases) {
    EXPECT_EQ(Dump(internal::EncodeEanUpc(kind, internal::ParseEanUpc(kind, text))), dump) << text;
  }
}

struct Svg {
  std::vector<std::vector<float>> rects;             // x, y, width, height; background first
  std::vector<std::pair<float, std::string>> texts;  // x, text
  std::vector<float> text_tops;
};

Svg ParseSvg(const std::string& svg) {
  Svg out;
  const std::regex rect("<rect x=\"([-0-9.]+)\" y=\"([-0-9.]+)\" width=\"([-0-9.]+)\" height=\"([-0-9.]+)\"");
  for (std::sregex_iterator it(svg.begin(), svg.end(), rect), end; it != end; ++it) {
    out.rects.push_back({std::stof((*it)[1]), std::stof((*it)[2]), std::stof((*it)[3]), std::stof((*it)[4])});
  }
  const std::regex text("<text x=\"([-0-9.]+)\" y=\"([-0-9.]+)\"[^>]*>([^<]*)</text>");
  for (std::sregex_iterator it(svg.begin(), svg.end(), text), end; it != end; ++it) {
    out.texts.emplace_back(std::stof((*it)[1]), (*it)[3]);
    out.text_tops.push_back(std::stof((*it)[2]));
  }
  return out;
}

// Box 300 x 100: text 20 px, gap 5, bars 75 px; extended guards end 10 px into the digits.
TEST(EanUpcLayout, ExtendedGuardsAndOutsideDigits) {
  auto draw = [](int type, const char* text, bool extended) {
    testing::HandlePtr handle = testing::MakeHandle(type);
    barcode_set_output_format(handle.get(), "svg");
    if (!extended) barcode_set_extended_guard(handle.get(), 0);  // on by default
    EXPECT_EQ(barcode_draw_1d(handle.get(), text, 300, 100), 1);
    return ParseSvg(barcode_get_svg(handle.get()));
  };
  // JAN-13: 7 lead modules for the leading digit + 95 = 102 modules at 2 px.
  const Svg jan13 = draw(BARCODE_JAN13, "4901234567894", true);
  ASSERT_EQ(jan13.rects.size(), 1U + 30U);
  EXPECT_EQ(jan13.rects[1], (std::vector<float>{14, 0, 2, 90}));  // start guard
  EXPECT_EQ(jan13.rects[3][3], 75.0F);                            // first data bar
  EXPECT_EQ(jan13.rects[15][3], 90.0F);                           // centre guard
  // The leading digit outside, then 6 + 6 digits 14 px apart, split by the centre guard.
  ASSERT_EQ(jan13.texts.size(), 13U);
  EXPECT_EQ(jan13.texts[0], (std::pair<float, std::string>{7, "4"}));
  EXPECT_EQ(jan13.texts[7], (std::pair<float, std::string>{121, "5"}));
  EXPECT_EQ(jan13.texts[12], (std::pair<float, std::string>{191, "4"}));
  EXPECT_EQ(jan13.text_tops.front(), 80.0F);

  // UPC-A: the first and last characters are long too; the check digit right of the symbol.
  const Svg upca = draw(BARCODE_UPCA, "036000291452", true);
  EXPECT_EQ(upca.rects[3][3], 90.0F);  // number-system character
  EXPECT_EQ(upca.rects[5][3], 75.0F);
  EXPECT_EQ(upca.texts.back(), (std::pair<float, std::string>{211, "2"}));  // (7 + 95 + 3.5) x 2

  // Plain: no outside room, bars of one height, the number spread under the bars.
  const Svg plain = draw(BARCODE_JAN13, "4901234567894", false);
  EXPECT_EQ(plain.rects[1], (std::vector<float>{0, 0, 3, 75}));  // 95 modules at 3 px
  EXPECT_EQ(plain.rects[15][3], 75.0F);
  EXPECT_EQ(plain.texts.size(), 13U);

  // Add-on: digits over it at the top, bars from below them down to the guards' end.
  const Svg addon = draw(BARCODE_UPCE, "01234565+12", true);
  EXPECT_EQ(addon.rects.back()[1], 25.0F);
  EXPECT_EQ(addon.rects.back()[1] + addon.rects.back()[3], 90.0F);
  EXPECT_EQ(addon.text_tops.back(), 0.0F);
  for (const auto& [x, text] : addon.texts) EXPECT_TRUE(x > 0 && x < 300) << text;
}

}  // namespace
}  // namespace barcode_orv
