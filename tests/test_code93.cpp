// Code 93: check characters C and K, element widths, messages and round trips.
#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "barcode_ffi.h"
#include "linear/code93.h"
#include "support/c_api.h"
#include "support/zxing_decode.h"

namespace barcode_orv {
namespace {

TEST(Code93Check, WeightedModulo47) {
  const struct {
    std::string text;
    int max_weight;
    int expected;
  } cases[] = {
      {"TEST93", 20, 41},  // C of the usual example: "+"
      {"TEST93+", 15, 6},  // its K: "6"
      {"Z1", 20, (35 * 2 + 1) % 47},
      {"1" + std::string(19, '0'), 20, 20},  // weight 20 on the 20th character from the end
      {"1" + std::string(20, '0'), 20, 1},   // the 21st starts again at 1
      {"1" + std::string(14, '0'), 15, 15},
      {"1" + std::string(15, '0'), 15, 1},
      {"<>", 20, (43 * 2 + 44) % 47},  // shift substitutes are values 43 and 44
  };
  for (const auto& c : cases) EXPECT_EQ(internal::GetModulus47(c.text, c.max_weight), c.expected) << c.text;
}

TEST(Code93Widths, StandardPatternsWithBothCheckCharacters) {
  std::string zeros;
  for (int i = 0; i < 20; ++i) zeros += "131112";
  const struct {
    std::string text;
    std::string patterns;
  } cases[] = {
      // T E S T 9 3, C = "+", K = "6": 91 modules.
      {"TEST93",
       "111141"
       "211221"
       "221211"
       "211122"
       "211221"
       "141111"
       "111411"
       "113121"
       "121311"
       "1111411"},
      // C = 1 (weights wrap after 20); K over the text and "1" = 7 + 1 = "8".
      {"1" + std::string(20, '0'),
       "111141"
       "111213" +
           zeros +
           "111213"
           "131211"
           "1111411"},
      // "<" is value 43; C = 43 ("<"), K = (43 x 2 + 43) mod 47 = 35 ("Z").
      {"<",
       "111141"
       "121221"
       "121221"
       "123111"
       "1111411"},
  };
  for (const auto& c : cases) {
    std::vector<int32_t> expected;
    for (char d : c.patterns) expected.push_back(d - '0');
    EXPECT_EQ(internal::EncodeCode93(c.text), expected) << c.text;
  }
}

TEST(Code93Errors, MessagesAndErrorLines) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "Empty string"}, {"a", "Invalid character in CODE93: a"}, {"AB*", "Invalid character in CODE93: *"}};
  for (const auto& [text, message] : cases) {
    try {
      internal::EncodeCode93(text);
      ADD_FAILURE() << "no exception for " << text;
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), message);
    }
  }
  BarcodeHandle* handle = barcode_create(BARCODE_CODE93);
  barcode_set_output_format(handle, "svg");
  EXPECT_EQ(barcode_draw_1d(handle, "TEST93", 300, 60), 1);
  const std::string svg = barcode_get_svg(handle);
  EXPECT_EQ(svg.find(">+</text>"), std::string::npos);  // check characters are not shown
  barcode_destroy(handle);
}

}  // namespace
}  // namespace barcode_orv
