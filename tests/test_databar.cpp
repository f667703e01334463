// GS1 DataBar: modules against Zint's dumps (an independent encoder) at every group
// boundary and at the checksums next to the skipped values, stacked rows worked out by
// hand from the separator rules (their messages are in the refusal table).
#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "barcode_ffi.h"
#include "databar/databar14.h"
#include "databar/databar_expanded.h"
#include "databar/databar_limited.h"
#include "support/c_api.h"
#include "support/png_image.h"

namespace barcode_orv {
namespace {

using internal::DataBar14Form;

// Modules ('1' dark) as `zint --dump` prints them: hexadecimal, light padding at the end.
std::string HexOfBits(std::string bits) {
  bits.append((4 - bits.size() % 4) % 4, '0');
  std::string hex;
  for (size_t i = 0; i < bits.size(); i += 4) hex += "0123456789ABCDEF"[std::stoi(bits.substr(i, 4), nullptr, 2)];
  return hex;
}

// Modules of light-first widths.
std::string Hex(const std::vector<int32_t>& widths) {
  std::string bits;
  for (size_t i = 0; i < widths.size(); ++i) bits.append(static_cast<size_t>(widths[i]), i % 2 == 0 ? '0' : '1');
  return HexOfBits(bits);
}

::testing::AssertionResult SameAsZint(const std::string& ours, const std::string& zint) {
  if (zint.compare(0, ours.size(), ours) == 0 && zint.find_first_not_of('0', ours.size()) == std::string::npos) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << ours << " vs Zint " << zint;
}

TEST(DataBar14, ModulesMatchZintAtGroupAndChecksumBoundaries) {
  const std::pair<const char*, const char*> cases[] = {
      {"2001234567890", "51D04FE14DBEC129601C6D8D"},  // ISO/IEC 24724 worked example
      {"", "548047F97F2AAB017FDDFED5"},               // thirteen zeros
      // Characters (outside, inside, outside, inside) at the last and first values of groups.
      {"1160837053708", "402547F955FCF1D57C1D583D"},  // 160, 335, 2014, 1515
      {"1168087304352", "5481CF817C2AABFD7F1C0E55"},  // 161, 336, 2015, 1516
      {"6960583700789", "40E54F8155F0F7D57F8D481D"},  // 960, 1035, 2714, 1596
      {"6967833949836", "5487C401702AAB017F040255"},  // 961, 1036, 2715, 0
      {"9999999999999", "4BB847F97B4E8FD57F047D5D"},
      // Raw checksums 7, 8, 70, 71, 72 and 78 (finder values skip 8 and 72).
      {"4130762523857", "4E1447F95F6C84C57F044395"},
      {"7083383535731", "5A61C7C14BB8B4E1601D8985"},
      {"6304112132183", "43855F017AF4CFA97F04E8CD"},
      {"549141797942", "480A5F01598489617FC4A7DD"},
      {"5078193593590", "47225C016A18AF417C1CC5E5"},
      {"779511566976", "42905C01599C98D97FC5D1ED"},
  };
  for (const auto& [input, zint] : cases) {
    const internal::DataBar14Symbol symbol = internal::EncodeDataBar14(input, DataBar14Form::kOmnidirectional);
    EXPECT_TRUE(SameAsZint(Hex(std::vector<int32_t>(symbol.widths.begin(), symbol.widths.end())), zint)) << input;
  }
  EXPECT_EQ(internal::EncodeDataBar14("2001234567890", DataBar14Form::kOmnidirectional).digits, "20012345678909");
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
    EXPECT_TRUE(SameAsZint(Hex(std::vector<int32_t>(symbol.widths.begin(), symbol.widths.end())), zint)) << input;
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
  try {
    GS1DataBar14::CalculateCheckDigit("123456789012");
    ADD_FAILURE() << "twelve digits accepted";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "CalculateCheckDigit requires exactly 13 digits");
  }
}

TEST(DataBar, StackedRowsShareTheHeightAboveTheText) {
  // Worked out by hand: a box 100 tall keeps 20 + 3 pixels for the text, 200 tall 40 + 6;
  // Stacked splits the 77 left in parts of 5 pixels (5, 1, 7 parts), the other forms give
  // separators a module (4 pixels) and split the rest between the data rows. Column x is
  // light in the first data row and dark in the last one from `dark_from` to `dark_to`.
  const std::tuple<int, const char*, const char*, int, int, int, int, int> cases[] = {
      {BARCODE_GS1_DATABAR_14, "STACKED", "0", 200, 100, 1, 30, 65},
      {BARCODE_GS1_DATABAR_14, "STACKED_OMNIDIRECTIONAL", "0", 200, 200, 1, 83, 154},
      {BARCODE_GS1_DATABAR_EXPANDED, "STACKED", "(01)98898765432106(10)1234", 408, 200, 1, 83, 154},
  };
  for (const auto& [type, form, text, width, height, x, dark_from, dark_to] : cases) {
    testing::HandlePtr handle = testing::MakeHandle(type);
    barcode_set_show_text(handle.get(), 0);
    barcode_set_symbol_type_14(handle.get(), form);
    barcode_set_symbol_type_exp(handle.get(), form);
    ASSERT_EQ(barcode_draw_1d(handle.get(), text, width, height), 1) << form;
    const testing::RgbaImage image = testing::DecodePng(testing::ImageData(handle.get()));
    auto dark = [&image, column = x](int y) { return image.Pixel(column, y) == 0x000000FFU; };
    EXPECT_TRUE(!dark(0) && !dark(dark_from - 1) && dark(dark_from) && dark(dark_to - 1) && !dark(dark_to))
        << type << " " << form;
  }
}

// The PNG of a stacked Expanded draw after `setup`.
std::string StackedPng(const std::function<void(BarcodeHandle*)>& setup) {
  testing::HandlePtr handle = testing::MakeHandle(BARCODE_GS1_DATABAR_EXPANDED);
  setup(handle.get());
  if (barcode_draw_1d(handle.get(), "(01)98898765432106(10)1234", 300, 200) != 1) return "";
  uint32_t size = 0;
  const uint8_t* png = barcode_get_image_data(handle.get(), &size);
  return std::string(reinterpret_cast<const char*>(png), size);
}

// Columns outside 1..11 draw the default two; "stacked" is not a form name;
// barcode_draw_stacked switches the handle to the stacked form for later draws too.
TEST(DataBar, CHelpersOfDataBarExpanded) {
  const auto stacked = [](int columns) {
    return [columns](BarcodeHandle* h) {
      barcode_set_symbol_type_exp(h, "STACKED");
      if (columns != 2) barcode_set_no_of_columns(h, columns);
    };
  };
  const std::string two_columns = StackedPng(stacked(2));
  const std::string unstacked = StackedPng([](BarcodeHandle*) {});
  ASSERT_FALSE(two_columns.empty());
  EXPECT_NE(two_columns, unstacked);
  EXPECT_NE(StackedPng(stacked(1)), two_columns);
  for (int columns : {0, 12, -1}) EXPECT_EQ(StackedPng(stacked(columns)), two_columns) << columns;
  EXPECT_EQ(StackedPng([](BarcodeHandle* h) { barcode_set_symbol_type_exp(h, "stacked"); }), unstacked);
  EXPECT_EQ(StackedPng([](BarcodeHandle* h) { barcode_draw_stacked(h, "(10)1", 100, 100); }), two_columns);
}

using internal::ExpandedMethod;

TEST(DataBarExpanded, EveryEncodationMethodAsZintChoosesIt) {
  const std::tuple<const char*, ExpandedMethod, const char*> cases[] = {
      {"(10)ABC123(21)xyz-12", ExpandedMethod::kGeneral,  // alphanumeric, ISO/IEC 646, FNC1 between
       "430DAFF0A202D7E7ABE063BE508328FC29E396BEF2FF398BC451C63C0A60E90"},
      {"(01)04912345678904(10)abc(17)251231", ExpandedMethod::kGtin,
       "561F2FF0A437DCE42BE062C371ED78FC2F12171F4AFF3B82E45B06300A618DC634BFE68"},
      {"(01)98898765432106(3103)001750", ExpandedMethod::kWeightKg3103, "53826FF0A270DBEC4BC0EF4C767C48FC2B09F4"},
      {"(01)98898765432106(3103)032768", ExpandedMethod::kWeightAndDate,  // over 0100's 15 bits: no date
       "45E22FF0BB109A062BF0E9C094FB98FC2C69868262FF399E85"},
      {"(01)98898765432106(3203)010156", ExpandedMethod::kWeightLb320x, "5850EFF0A1E29BEC4BC0EF4C7723C8FC2B3BE4"},
      {"(01)98898765432106(3202)012345(15)991231", ExpandedMethod::kWeightAndDate,
       "48636FF0B8651A062BF0E9C094FB98FC2EC1247962FF38DE85"},
      {"(01)98898765432106(3102)001750", ExpandedMethod::kWeightAndDate,  // no date: 38400
       "4C1D2FF0BB109A062BF0E9C094FB98FC2F20A49DF2FF399E85"},
      {"(01)98898765432106(3922)1234", ExpandedMethod::kPrice392x, "4A21EFF0B06C9A062BF0E9C094FB98FC2B0BE460B2FF3A"},
      {"(01)98898765432106(3932)9781234(10)ABC", ExpandedMethod::kPrice393x,
       "43856FF0AC139A062BE069C094FB98FC2F16F4F8BAFF3960F5620E3C0B23D90"},
  };
  for (const auto& [input, method, zint] : cases) {
    EXPECT_EQ(internal::EncodeExpandedBits(internal::ParseGs1ElementString(input), 0).method, method) << input;
    EXPECT_TRUE(SameAsZint(Hex(internal::EncodeDataBarExpanded(input, 0).widths), zint)) << input;
  }
}

TEST(DataBarExpanded, StackedRowsForOneToFourColumns) {
  // Zint's rows: reversed even rows, a last row that starts one module further right, a
  // half pair at the start of a reversed row, and a last row never holding one character.
  const std::string data = "(01)98898765432106(10)1234";
  // Zint's rows, space-separated.
  const std::tuple<std::string, int, const char*> cases[] = {
      {data, 1,
       "4832EFF0B4C310 07CD100A4B3C80 05555555555500 0BF3A8142C7E80 B40C57E1D38128 0BF3A8142C7E80 05555555555500 "
       "0C11940A4E6780 53EE63F0B19850 0C11940A4E6780 05555555555500 03856804342100 BC7A97F9CBDEE8"},
      {data, 2,
       "5831AFF0A713DA062BF0E9C094 07CE500A58EC25F9D40A163F40 05555555555555555555555540 02016A1C2F3392814C418 "
       "B9FE95E3D0CC687E33BE5"},
      {data, 3,
       "4832EFF0B4C31A062BF0E9C094FB98FC2C6614 07CD100A4B3CE5F9D40A163F6B0465029399E0 "
       "05555555555555555555555555555555555540 038568043421 BC7A97F9CBDEE8"},
      {data, 4, "5831AFF0A713DA062BF0E9C094FB98FC2C66178F52FF3A"},
      {"(01)98898765432106", 2,
       "50EC2FF0B4C31A062BC0E9C094 0F13D00A4B3CE5F9D42A163F40 05555555555555555555555540 0608CA052F3EC 29F731F850C128"},
  };
  for (const auto& [input, columns, zint] : cases) {
    const std::vector<std::string> rows = Bits(internal::EncodeDataBarExpanded(input, columns).rows);
    std::istringstream dump(zint);
    size_t r = 0;
    for (std::string row; dump >> row; ++r) {
      EXPECT_TRUE(r < rows.size() && SameAsZint(HexOfBits(rows[r]), row)) << input << " in " << columns << ": " << r;
    }
    EXPECT_EQ(r, rows.size()) << input << " in " << columns;
  }
}

TEST(DataBarExpanded, CapacityIs22SymbolCharacters) {
  // Capacity: 74 digits (AIs included, no FNC1 needed) fill all 22 symbol characters.
  const std::string dates = "(11)251231(13)251231(15)251231(17)251231";
  EXPECT_EQ(internal::EncodeDataBarExpanded("(01)04912345678904" + dates + "(90)" + std::string(24, '7'), 0)
                .symbol_characters,
            22);
  EXPECT_THROW(internal::EncodeDataBarExpanded("(01)04912345678904" + dates + "(90)" + std::string(25, '7'), 0),
               std::runtime_error);
}

}  // namespace
}  // namespace barcode_orv
