// Guards the Japan Post customer barcode: check characters of published addresses, bar
// sequences worked out by hand (no reader decodes them), the kept quirks (letters, the cut
// at twenty positions) and the geometry that follows from the bar height.
#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "barcode_ffi.h"
#include "linear/yubin_customer.h"
#include "support/c_api.h"
#include "support/png_image.h"

namespace barcode_orv {
namespace {

std::string Repeat(const std::string& piece, int times) {
  std::string out;
  for (int i = 0; i < times; ++i) out += piece;
  return out;
}

TEST(YubinCheck, PublishedAndHandWorkedAddresses) {
  const std::pair<const char*, int> cases[] = {
      {"10000131-3-2-503", 9},   // Japan Post's manual: 100-0013 1-3-2-503, check digit 9
      {"10000141-11-32", 15},    // 100-0014 1-11-32: check CC5
      {"62300116-7LB106", 4},    // letters: L = CC2 1, B = CC1 1
      {"1000013 1-3-2-503", 9},  // the space is skipped
      {"62300116-7lb106", 4},    // lower case reads as upper case
  };
  for (const auto& [data, check] : cases) EXPECT_EQ(internal::EncodeYubin(data).check, check) << data;
}

TEST(YubinBars, SequencesWorkedOutByHand) {
  const std::string cc1 = "324", cc4 = "432";
  const std::pair<std::string, std::string> cases[] = {
      // "1": 1 + 19 x CC4 (14) = 267, 267 mod 19 = 1, check 18 = CC8.
      {"1", std::string("13") + "114" + Repeat(cc4, 19) + "111" + "31"},
      // Letters take two positions: A = CC1 0, K = CC2 0, Z = CC3 5; 14 CC4; check
      // (11 + 0 + 12 + 0 + 13 + 5 + 14 x 14) = 237, 237 mod 19 = 9, check 10 = hyphen.
      {"AKZ", std::string("13") + "324144" + "342144" + "234141" + Repeat(cc4, 14) + "414" + "31"},
      // A letter on the twentieth position is CC1 alone, whatever the letter: 19 x "1",
      // then CC1; check (19 + 11) = 30, 30 mod 19 = 11, check 8 = "231".
      {Repeat("1", 19) + "Z", std::string("13") + Repeat("114", 19) + cc1 + "231" + "31"},
      // Cut after twenty positions, characters outside the set skipped: check (19 + 2) -> 17.
      {Repeat("1", 19) + "#2345", std::string("13") + Repeat("114", 19) + "132" + "441" + "31"},
      // Nothing encodable: twenty CC4, check (19 - 280 mod 19) = 5.
      {"#$%", std::string("13") + Repeat(cc4, 20) + "141" + "31"},
  };
  for (const auto& [data, bars] : cases) {
    const internal::YubinBars symbol = internal::EncodeYubin(data);
    EXPECT_EQ(symbol.bars, bars) << data;
    EXPECT_EQ(symbol.bars.size(), 67U) << data;
  }
}

TEST(YubinDraw, GeometryFollowsTheBarHeight) {
  // Canvas trunc(67 h/3 + h/6 + 1) x h, computed in float (h = 46 gives 1035, not 1036).
  const std::pair<int, int> widths[] = {{30, 676}, {60, 1351}, {46, 1035}, {1, 23}};
  for (const auto& [h, width] : widths) {
    testing::HandlePtr handle = testing::MakeHandle(BARCODE_YUBIN_CUSTOMER);
    ASSERT_EQ(barcode_draw_yubin(handle.get(), "10000131-3-2-503", h), 1);
    const testing::RgbaImage image = testing::DecodePng(testing::ImageData(handle.get()));
    EXPECT_EQ(image.width, width) << h;
    EXPECT_EQ(image.height, h);
  }
  // SVG, height 30: pitch 10, bars 5 wide; the start code is a long bar and a lower bar,
  // and the width argument changes nothing.
  testing::HandlePtr handle = testing::MakeHandle(BARCODE_YUBIN_CUSTOMER);
  barcode_set_output_format(handle.get(), "svg");
  ASSERT_EQ(barcode_draw_yubin_with_width(handle.get(), "1", 9999, 30), 1);
  const std::string svg = barcode_get_svg(handle.get());
  EXPECT_NE(svg.find("width=\"676\" height=\"30\""), std::string::npos);
  EXPECT_NE(svg.find("<rect x=\"0.00\" y=\"0.00\" width=\"5.00\" height=\"30.00\""), std::string::npos);
  EXPECT_NE(svg.find("<rect x=\"10.00\" y=\"10.00\" width=\"5.00\" height=\"20.00\""), std::string::npos);
  const std::regex bar("<rect ");
  EXPECT_EQ(std::distance(std::sregex_iterator(svg.begin(), svg.end(), bar), std::sregex_iterator()), 1 + 67);
  EXPECT_EQ(barcode_draw_yubin_with_width(handle.get(), "1", 100, 30), 1);
  EXPECT_EQ(barcode_get_svg(handle.get()), svg);

  // Empty data or a height below 1 draw nothing (other types refuse the entry points: test_c_api).
  EXPECT_EQ(barcode_draw_yubin(handle.get(), "", 30), 0);
  EXPECT_EQ(barcode_draw_yubin(handle.get(), "1", 0), 0);
  EXPECT_EQ(barcode_draw_1d(handle.get(), "1", 300, 0), 0);
}

}  // namespace
}  // namespace barcode_orv
