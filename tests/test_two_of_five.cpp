// The 2-of-5 family: Interleaved 2 of 5, Matrix 2 of 5 and NEC 2 of 5.
#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "barcode_ffi.h"
#include "linear/itf.h"
#include "linear/matrix2of5.h"
#include "linear/nec2of5.h"
#include "support/c_api.h"
#include "support/zxing_decode.h"

namespace barcode_orv {
namespace {

using Widths = std::vector<int32_t>;

Widths Join(std::initializer_list<Widths> parts) {
  Widths out;
  for (const Widths& part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}

TEST(TwoOfFive, WideWidthFollowsTheParityOfTheRatio) {
  const std::pair<float, int32_t> cases[] = {{1.0F, 3}, {1.9F, 3},  {2.0F, 2},  {3.0F, 3},
                                             {0.5F, 2}, {-1.0F, 3}, {4.0e9F, 2}};
  for (const auto& [ratio, wide] : cases) EXPECT_EQ(internal::TwoOfFiveWideWidth(ratio), wide) << ratio;
}

TEST(Matrix2of5, EveryDigitShowsOnlyItsWideBars) {
  const Widths start = {3, 1, 3, 1}, stop = {1, 3, 3};
  const Widths digits[10] = {
      {3, 1, 1, 1, 1}, {1, 1, 1, 1, 3}, {1, 1, 3, 1, 3}, {1, 1, 3, 1, 1}, {1, 1, 1, 1, 3},
      {1, 1, 1, 1, 1}, {1, 1, 3, 1, 1}, {3, 1, 1, 1, 3}, {3, 1, 1, 1, 1}, {3, 1, 3, 1, 1},
  };
  for (int d = 0; d < 10; ++d) {
    const std::string text(1, static_cast<char>('0' + d));
    EXPECT_EQ(internal::EncodeMatrix2of5(text, 1.0F), Join({start, digits[d], stop})) << d;
    EXPECT_EQ(internal::EncodeNEC2of5(text, 1.0F), Join({start, digits[d], stop})) << d;
  }
  const Widths one = internal::EncodeMatrix2of5("1", 1.0F);
  EXPECT_EQ(std::accumulate(one.begin(), one.end(), 0), 22);
  EXPECT_EQ(internal::EncodeMatrix2of5("120", 1.0F),
            Join({start, digits[1], {1}, digits[2], {1}, digits[0], stop}));  // narrow separators
  EXPECT_EQ(internal::EncodeNEC2of5("7", 2.0F), (Widths{2, 1, 2, 1, 2, 1, 1, 1, 2, 1, 2, 2}));
  NEC2of5 nec("png");
  nec.SetRatio(2.0F);
  EXPECT_EQ(nec.EncodeNEC2of5("7"), internal::EncodeNEC2of5("7", 2.0F));
}

TEST(ITF, PairsInterleaveBarsAndSpaces) {
  // 1 = WNNNW in the bars, 2 = NWNNW in the spaces; 9 = NWNWN bars, 0 = NNWWN spaces.
  EXPECT_EQ(internal::EncodeITF("12", 1.0F), (Widths{1, 1, 1, 1, 3, 1, 1, 3, 1, 1, 1, 1, 3, 3, 3, 1, 1}));
  EXPECT_EQ(internal::EncodeITF("90", 1.0F), (Widths{1, 1, 1, 1, 1, 1, 3, 1, 1, 3, 3, 3, 1, 1, 3, 1, 1}));
  EXPECT_EQ(internal::EncodeITF("12", 2.0F), (Widths{1, 1, 1, 1, 2, 1, 1, 2, 1, 1, 1, 1, 2, 2, 2, 1, 1}));
  EXPECT_EQ(internal::EncodeITF("123", 1.0F), internal::EncodeITF("0123", 1.0F));  // padded
  EXPECT_EQ(internal::EncodeITF("7", 1.0F), internal::EncodeITF("07", 1.0F));
}

TEST(TwoOfFiveErrors, ThrowTheirMessages) {
  using Encoder = std::vector<int32_t> (*)(const std::string&, float);
  const struct {
    Encoder encode;
    std::string text;
    const char* message;
  } cases[] = {
      {internal::EncodeITF, "", "Empty string"},
      {internal::EncodeITF, "1 2", "ITF barcode requires numeric digits only"},
      {internal::EncodeMatrix2of5, "", "Empty string"},
      {internal::EncodeMatrix2of5, "12a", "Matrix 2 of 5 barcode requires numeric digits only"},
      {internal::EncodeNEC2of5, "", "Empty string"},
      {internal::EncodeNEC2of5, "-1", "NEC 2 of 5 barcode requires numeric digits only"},
  };
  for (const auto& c : cases) {
    try {
      c.encode(c.text, 1.0F);
      ADD_FAILURE() << "no exception for " << c.text;
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), c.message);
    }
  }
}

size_t Count(const std::string& haystack, const std::string& needle) {
  size_t n = 0;
  for (size_t at = haystack.find(needle); at != std::string::npos; at = haystack.find(needle, at + 1)) ++n;
  return n;
}

TEST(TwoOfFiveCInterface, TextLineAndBars) {
  const struct {
    int type;
    const char* error_line;
    size_t bars_for_123;
  } cases[] = {
      {BARCODE_ITF, "[ITF] ITF barcode requires", 2 + 2 * 5 + 2},
      {BARCODE_MATRIX2OF5, "[Matrix2of5] Matrix 2 of 5 barcode requires", 2 + 3 * 3 + 1},
      {BARCODE_NEC2OF5, "[NEC2of5] NEC 2 of 5 barcode requires", 2 + 3 * 3 + 1},
  };
  for (const auto& c : cases) {
    BarcodeHandle* handle = barcode_create(c.type);
    ASSERT_NE(handle, nullptr) << c.error_line;
    barcode_set_output_format(handle, "svg");
    barcode_set_text_even_spacing(handle, 0);
    ASSERT_EQ(barcode_draw_1d(handle, "123", 300, 60), 1) << c.error_line;
    const std::string svg = barcode_get_svg(handle);
    EXPECT_EQ(Count(svg, ">123</text>"), 1U) << c.error_line;  // ITF: without the padding zero
    EXPECT_EQ(Count(svg, "<rect"), 1 + c.bars_for_123) << c.error_line;
    barcode_destroy(handle);
  }
}

}  // namespace
}  // namespace barcode_orv
