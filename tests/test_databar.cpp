// GS1 DataBar: modules against Zint's dumps (an independent encoder) at every group
// boundary and at the checksums next to the skipped values, stacked rows worked out by
// hand from the separator rules, and every message.
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "barcode_ffi.h"
#include "databar/databar14.h"
#include "databar/databar_limited.h"
#include "support/c_api.h"

namespace barcode_orv {
namespace {

using internal::DataBar14Form;

// Modules of light-first widths as `zint --dump` prints them (hexadecimal, dark = 1),
// without Zint's trailing light padding.
std::string Hex(const std::vector<int32_t>& widths) {
  std::string bits;
  for (size_t i = 0; i < widths.size(); ++i) bits.append(static_cast<size_t>(widths[i]), i % 2 == 0 ? '0' : '1');
  bits.append((4 - bits.size() % 4) % 4, '0');
  std::string hex;
  for (size_t i = 0; i < bits.size(); i += 4) hex += "0123456789ABCDEF"[std::stoi(bits.substr(i, 4), nullptr, 2)];
  return hex;
}

::testing::AssertionResult SameAsZint(const std::string& ours, const std::string& zint) {
  if (zint.compare(0, ours.size(), ours) == 0 && zint.find_first_not_of('0', ours.size()) == std::string::npos) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << ours << " vs Zint " << zint;
}

TEST(DataBar14, ModulesMatchZintAtGroupAndChecksumBoundaries) {
  const struct {
    const char* input;
    const char* zint;
    int checksum;  // after skipping 8 and 72; -1 when not the point of the row
  } cases[] = {
      {"2001234567890", "51D04FE14DBEC129601C6D8D", -1},  // ISO/IEC 24724 worked example
      {"", "548047F97F2AAB017FDDFED5", -1},               // thirteen zeros
      // Characters (outside, inside, outside, inside) at the last and first values of groups.
      {"1160837053708", "402547F955FCF1D57C1D583D", -1},  // 160, 335, 2014, 1515
      {"1168087304352", "5481CF817C2AABFD7F1C0E55", -1},  // 161, 336, 2015, 1516
      {"6960583700789", "40E54F8155F0F7D57F8D481D", -1},  // 960, 1035, 2714, 1596
      {"6967833949836", "5487C401702AAB017F040255", -1},  // 961, 1036, 2715, 0
      {"9999999999999", "4BB847F97B4E8FD57F047D5D", -1},
      // Raw checksums 7, 8, 70, 71, 72 and 78.
      {"4130762523857", "4E1447F95F6C84C57F044395", 7},
      {"7083383535731", "5A61C7C14BB8B4E1601D8985", 9},
      {"6304112132183", "43855F017AF4CFA97F04E8CD", 70},
      {"549141797942", "480A5F01598489617FC4A7DD", 71},
      {"5078193593590", "47225C016A18AF417C1CC5E5", 73},
      {"779511566976", "42905C01599C98D97FC5D1ED", 80},
  };
  for (const auto& c : cases) {
    const internal::DataBar14Symbol symbol = internal::EncodeDataBar14(c.input, DataBar14Form::kOmnidirectional);
    EXPECT_TRUE(SameAsZint(Hex({symbol.widths.begin(), symbol.widths.end()}), c.zint)) << c.input;
    EXPECT_TRUE(c.checksum < 0 || symbol.checksum == c.checksum) << c.input << ": " << symbol.checksum;
  }
  EXPECT_EQ(internal::EncodeDataBar14("2001234567890", DataBar14Form::kOmnidirectional).digits, "20012345678909");
  EXPECT_EQ(internal::EncodeDataBar14("", DataBar14Form::kOmnidirectional).digits, "00000000000000");
}

// Rows as '1'/'0' from the run-length patterns (a leading "0" is an empty dark run).
std::vector<std::string> Bits(const internal::DataBarRows& rows) {
  std::vector<std::string> out;
  for (const std::string& pattern : rows.patterns) {
    std::string bits;
    for (size_t i = 0; i < pattern.size(); ++i) bits.append(static_cast<size_t>(pattern[i] - '0'), i % 2 ? '0' : '1');
    out.push_back(bits);
  }
  return out;
}

TEST(DataBar14, StackedFormsHaveTheirSeparators) {
  // Data rows as Zint draws them; separators by hand: in the stacked form a module is
  // the opposite of equal neighbours above and below and alternates where they differ;
  // in the omnidirectional one it is the complement of its data row with light modules
  // over the finder alternating, and the middle row is a checkerboard.
  const std::string top = "01010100100000000100011111111001011111110010101010";
  const std::string bottom = "10101010110000000101111111110111011111111011010101";
  const internal::DataBar14Symbol stacked = internal::EncodeDataBar14("0", DataBar14Form::kStacked);
  EXPECT_EQ(Bits(stacked.rows),
            (std::vector<std::string>{top, "00001011011111111010100000001010100000001101010000", bottom}));
  EXPECT_EQ(stacked.rows.heights, (std::vector<int32_t>{5, 1, 7}));
  EXPECT_EQ(stacked.rows.patterns[1].substr(0, 3), "041");  // light start: empty dark run first

  const internal::DataBar14Symbol omni = internal::EncodeDataBar14("0", DataBar14Form::kStackedOmnidirectional);
  EXPECT_EQ(Bits(omni.rows), (std::vector<std::string>{top, "00001011011111111010100000000100100000001101010000",
                                                       "00000101010101010101010101010101010101010101010000",
                                                       "00000101001111111010000000001000100000000100100000", bottom}));
  EXPECT_EQ(omni.rows.heights, (std::vector<int32_t>{-1, 1, 1, 1, -1}));
}

TEST(DataBarLimited, ModulesMatchZintAtEveryGroupBoundary) {
  const std::pair<const char*, const char*> cases[] = {
      {"00000000", "55502075D49555020740"},      {"1999999999999", "4F36B7D56B150B8D7940"},
      {"0368610531036", "40E05552B5940E055540"},  // left and right 183063: last of group 0
      {"0368612544608", "5551E0F55275551E0F40"},  // 183064
      {"1651255895036", "41E3D556AA341E3D5540"},  // 820063
      {"1651257908608", "5557E3F6A595557E3F40"},  // 820064
      {"0000003014346", "55503036D2947EFD5540"},  // right 1000775
      {"0000005027918", "55503815A8B555060F40"},  // 1000776
      {"0000007531733", "5558103569941E0D5540"},  // 1491020
      {"0000009545305", "555818169A95553E1F40"},  // 1491021
      {"0000012047699", "555C081569943E7D5540"},  // 1979844
      {"0000014061271", "55681036D49555020140"},  // 1979845
      {"0000016091935", "55681815563402055540"},  // 1996938
      {"0000018105507", "556C08175495557EFF40"},  // 1996939
      {"0000020135709", "557408154B35FEFD5540"},  // 2013570, the highest value
  };
  for (const auto& [input, zint] : cases) {
    const internal::DataBarLimitedSymbol symbol = internal::EncodeDataBarLimited(input);
    int modules = 0;
    for (int32_t w : symbol.widths) modules += w;
    EXPECT_EQ(modules, 74) << input;
    EXPECT_TRUE(SameAsZint(Hex({symbol.widths.begin(), symbol.widths.end()}), zint)) << input;
  }
}

TEST(DataBar, EveryMessage) {
  using Encode = std::function<void(const std::string&)>;
  const Encode omni = [](const std::string& s) { internal::EncodeDataBar14(s, DataBar14Form::kStacked); };
  const Encode limited = [](const std::string& s) { internal::EncodeDataBarLimited(s); };
  const Encode check = [](const std::string& s) { GS1DataBar14::CalculateCheckDigit(s); };
  const struct {
    const Encode* encode;
    const char* input;
    const char* message;
  } cases[] = {
      {&omni, "12345678901234x", "GS1 DataBar requires numeric digits only"},  // digits are checked first
      {&omni, "00000000000000", "Input too long (max 13 digits)"},             // a GTIN-14 with its check digit
      {&limited, "1234567x", "GS1 DataBar Limited requires numeric digits only"},
      {&limited, "1234567", "Input must be 8-13 digits"},
      {&limited, "", "Input must be 8-13 digits"},
      {&limited, "01234567890123", "Input must be 8-13 digits"},
      {&limited, "2000000000000", "GS1 DataBar Limited requires leading digit 0 or 1 after padding"},
      {&check, "123456789012", "CalculateCheckDigit requires exactly 13 digits"},
  };
  for (const auto& c : cases) {
    try {
      (*c.encode)(c.input);
      ADD_FAILURE() << c.input << " was accepted";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), c.message) << c.input;
    }
  }
}

TEST(DataBar, CHelpersOfDataBar14) {
  testing::HandlePtr handle = testing::MakeHandle(BARCODE_GS1_DATABAR_14);
  const std::pair<const char*, const char*> names[] = {
      {"STACKED", "STACKED"},
      {"stacked", "STACKED"},  // case-sensitive: unchanged
      {"STACKED_OMNIDIRECTIONAL", "STACKED_OMNIDIRECTIONAL"},
      {"OMNIDIRECTIONAL", "OMNIDIRECTIONAL"},
  };
  for (const auto& [name, now] : names) {
    barcode_set_symbol_type_14(handle.get(), name);
    EXPECT_STREQ(barcode_get_symbol_type_14(handle.get()), now) << name;
  }
  EXPECT_EQ(barcode_encode_14(handle.get(), "0950110153000"), 1);
  EXPECT_EQ(barcode_encode_14(handle.get(), "12a"), 0);
  EXPECT_STREQ(barcode_calculate_check_digit_14("12345678901234"), "");
}

}  // namespace
}  // namespace barcode_orv
