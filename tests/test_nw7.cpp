// NW-7 (Codabar): start/stop rules, element widths, text line, messages, round trips.
#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "barcode_ffi.h"
#include "linear/nw7.h"
#include "support/c_api.h"
#include "support/zxing_decode.h"

namespace barcode_orv {
namespace {

using Widths = std::vector<int32_t>;

// Characters written as their seven widths, joined by the 2-module gap.
Widths Characters(std::initializer_list<const char*> patterns) {
  Widths out;
  for (const char* pattern : patterns) {
    if (!out.empty()) out.push_back(2);
    for (const char* p = pattern; *p != '\0'; ++p) out.push_back(*p - '0');
  }
  return out;
}

TEST(NW7Widths, CodabarPatternsAndStartStopRules) {
  const char *a = "1133131", *b = "1313113", *c = "1113133", *d = "1113331";
  const struct {
    std::string text;
    Widths widths;
  } cases[] = {
      {"123", Characters({c, "1111331", "1113113", "3311111", c})},  // C supplied at both ends
      {"a123b", Characters({a, "1111331", "1113113", "3311111", b})},
      {"D0D", Characters({d, "1111133", d})},
      {"1A2", Characters({c, "1111331", a, "1113113", c})},  // A to D inside are data
      {"c", Characters({c})},
      {".+:/$-", Characters({c, "3131311", "1131313", "3111313", "3131113", "1133111", "1113311", c})},
      {"456789", Characters({c, "1131131", "3111131", "1311113", "1311311", "1331111", "3113111", c})},
  };
  for (const auto& k : cases) EXPECT_EQ(internal::EncodeNW7(k.text), k.widths) << k.text;
}

TEST(NW7Errors, ThrowTheirMessages) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "Empty string"},
      {"A123", "Invalid start/stop character combination in NW7: A123"},
      {"123d", "Invalid start/stop character combination in NW7: 123D"},
      {"12e4", "Invalid character in NW7: E"},
      {"A1*2B", "Invalid character in NW7: *"},
  };
  for (const auto& [text, message] : cases) {
    try {
      internal::EncodeNW7(text);
      ADD_FAILURE() << "no exception for " << text;
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), message);
    }
  }
}

TEST(NW7Text, StartStopShownOrStripped) {
  const struct {
    std::string text;
    bool show;
    std::string shown;
  } cases[] = {
      {"a123b", true, "a123b"}, {"123", true, "123"}, {"A123B", false, "123"}, {"a123b", false, "123"},
      {"1a2", false, "1A2"},    {"AB", false, ""},    {"A", false, ""},
  };
  for (const auto& c : cases) EXPECT_EQ(internal::NW7DisplayText(c.text, c.show), c.shown) << c.text;
}

std::string SvgTextLine(const std::string& svg) {
  std::string line;
  for (size_t at = svg.find("<text"); at != std::string::npos; at = svg.find("<text", at + 1)) {
    const size_t open = svg.find('>', at) + 1;
    line += svg.substr(open, svg.find("</text>", open) - open);
  }
  return line;
}

TEST(NW7CInterface, ShowStartStop) {
  BarcodeHandle* handle = barcode_create(BARCODE_NW7);
  ASSERT_NE(handle, nullptr);
  barcode_set_output_format(handle, "svg");
  ASSERT_EQ(barcode_draw_1d(handle, "a123b", 300, 60), 1);
  EXPECT_EQ(SvgTextLine(barcode_get_svg(handle)), "a123b");
  barcode_set_show_start_stop(handle, 0);
  ASSERT_EQ(barcode_draw_1d(handle, "a123b", 300, 60), 1);
  EXPECT_EQ(SvgTextLine(barcode_get_svg(handle)), "123");
  barcode_destroy(handle);
}

}  // namespace
}  // namespace barcode_orv
