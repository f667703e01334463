// Guards PDF417: compaction worked out by hand and the standard's own numeric example, the
// segmentation's costs, the published Reed-Solomon coefficients, the recommended levels,
// shapes under columns and rows, and the C setters down to the painted start and stop bars.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "api/ffi_internal.h"
#include "barcode_ffi.h"
#include "support/c_api.h"
#include "twod/pdf417.h"
#include "twod/pdf417_encoder.h"

namespace barcode_orv {
namespace {

using internal_pdf417::CompactData;
using internal_pdf417::EncodePdf417;
using internal_pdf417::Settings;

std::vector<uint8_t> Bytes(const std::string& text) { return {text.begin(), text.end()}; }

TEST(Pdf417Compaction, HandDerivedAndPublishedStreams) {
  struct Row {
    const char* what;
    std::string text;
    std::vector<int> expected;
  };
  const Row rows[] = {
      // H E L L O = 7 4 11 11 14, two values a codeword (30 h + l), PS completes.
      {"text, Alpha", "HELLO", {214, 341, 449}},
      {"text, latch to Lower", "abc", {810, 32}},
      // The standard's numeric example: "1" + 15 digits in base 900.
      {"numeric", "000213298174000", {902, 1, 624, 434, 632, 282, 200}},
      // 0x808182FDFEFF as a 48-bit number in base 900.
      {"byte, six at a time", "\x80\x81\x82\xFD\xFE\xFF", {924, 215, 318, 512, 111, 579}},
      {"byte, one left over", "\x80\x81\x82\xFD\xFE\xFF\x41", {901, 215, 318, 512, 111, 579, 65}},
      {"byte shift inside text", "AB\xE9\x43\x44", {1, 913, 233, 63}},  // AB, 0xE9, CD
      {"text, punctuation shift", "A@", {29, 119}},                     // A PS @ PS
  };
  for (const Row& row : rows) EXPECT_EQ(CompactData(Bytes(row.text)), row.expected) << row.what;
}

// The segmentation never costs more than one compaction for the whole data.
TEST(Pdf417Compaction, SwitchesOnlyWhereTheyPay) {
  struct Row {
    std::string text;
    size_t codewords;
  };
  const Row rows[] = {
      {"ABC1234567890123DEF", 2 + 6 + 1 + 2},  // text, 902 + 13 digits in 5, 900, text
      {"ABC123DEF", 6},                        // three digits stay in Mixed: ML 1 2 3 AL
      {std::string(44, '9'), 1 + 15},          // one full numeric group
      {std::string(45, '9'), 1 + 15 + 1},
      {"\x01\x02\x03\x04\x05\x06"
       "ABCDEF",
       1 + 5 + 1 + 3},  // 924 group, 900, text
  };
  for (const Row& row : rows) EXPECT_EQ(CompactData(Bytes(row.text)).size(), row.codewords) << row.text;
}

TEST(Pdf417Encoder, PublishedReedSolomonCoefficients) {
  EXPECT_EQ(internal_pdf417::GeneratorCoefficients(0), (std::vector<int>{27, 917}));
  EXPECT_EQ(internal_pdf417::GeneratorCoefficients(1), (std::vector<int>{522, 568, 723, 809}));
  EXPECT_EQ(internal_pdf417::GeneratorCoefficients(2), (std::vector<int>{237, 308, 436, 284, 646, 653, 428, 379}));
}

// A full symbol's data at every level, values up to 928: catches a register that
// overflows or is reduced at the wrong point. The sums are those of the division that
// reduces every cell at every step.
TEST(Pdf417Encoder, ErrorCorrectionOfFullSymbols) {
  const long expected[] = {1989, 2883, 14549, 55968, 220073, 1115152, 3954955, 14923235, 61114252};
  for (int level = 0; level <= 8; ++level) {
    std::vector<int> data(static_cast<size_t>(928 - (2 << level)));
    for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<int>((i * 857 + 928) % 929);
    const std::vector<int> ecc = internal_pdf417::ErrorCorrection(data, level);
    ASSERT_EQ(ecc.size(), size_t{2} << level);
    long weighted = 0;
    for (size_t i = 0; i < ecc.size(); ++i) weighted += static_cast<long>(i + 1) * ecc[i];
    EXPECT_EQ(weighted, expected[level]) << "level " << level;
  }
}

TEST(Pdf417Encoder, LevelsAndCapacity) {
  const std::vector<uint8_t> hello = Bytes("HELLO");
  for (int level = 0; level <= 8; ++level) {
    Settings settings;
    settings.level = level;
    const internal_pdf417::Symbol symbol = EncodePdf417(hello, settings);
    EXPECT_EQ(symbol.level, level);
    // Length descriptor, 3 data codewords, pads, then 2^(level+1) error correction.
    EXPECT_EQ(symbol.codewords.front(), symbol.columns * symbol.rows - (2 << level));
  }
  // Recommended levels by data length, and the automatic one lowered to fit.
  const std::pair<int, int> recommended[] = {{40, 2}, {41, 3}, {160, 3}, {161, 4}, {321, 5}, {900, 3}};
  for (const auto& [data, level] : recommended) EXPECT_EQ(internal_pdf417::RecommendedLevel(data), level) << data;
  Settings level0;
  level0.level = 0;
  EXPECT_EQ(EncodePdf417(std::vector<uint8_t>(2710, '7'), level0).columns * 58, 928);
}

TEST(Pdf417Encoder, ShapeFollowsTheSettings) {
  const std::vector<uint8_t> text = Bytes(std::string(120, 'x'));  // 62 data codewords, level 3: 78 in all
  // Columns: rows (at least 3) and modules across (17 a column plus 69).
  const std::array<int, 3> shapes[] = {{1, 78, 86}, {4, 20, 137}, {26, 3, 511}, {30, 3, 579}};
  for (const auto& [columns, rows, modules] : shapes) {
    Settings settings;
    settings.columns = columns;
    const internal_pdf417::Symbol symbol = EncodePdf417(text, settings);
    EXPECT_EQ(symbol.rows, rows) << columns;
    EXPECT_EQ(symbol.modules.cols(), modules) << columns;
  }
  Settings fixed_rows;
  fixed_rows.rows = 90;
  EXPECT_EQ(EncodePdf417(text, fixed_rows).columns, 1);
}

TEST(Pdf417, SettersReachTheObjectAndRowsScaleToTheBox) {
  testing::HandlePtr handle = testing::MakeHandle(BARCODE_PDF417);
  ASSERT_NE(handle, nullptr);
  auto& object = dynamic_cast<PDF417&>(*handle->object);
  barcode_set_error_level(handle.get(), 5);
  barcode_set_columns(handle.get(), 4);
  barcode_set_rows(handle.get(), 12);
  barcode_set_aspect_ratio(handle.get(), 2.5);
  barcode_set_y_height(handle.get(), 4);
  EXPECT_EQ(object.GetErrorLevel(), PDF417ErrorLevel::Level5);
  EXPECT_EQ(object.GetAspectRatio(), 2.5);  // columns, rows and row height show in the drawing
  barcode_set_error_level(handle.get(), 2);
  // 4 columns: 137 modules; 12 rows of 4 modules: 48. A 274 x 96 box gives 2 x 2 pixels a
  // module, and each bar is one rectangle: the start pattern's 8-module bar, the stop
  // pattern's final 1-module bar.
  barcode_set_output_format(handle.get(), "svg");
  ASSERT_EQ(barcode_draw_2d_rect(handle.get(), "PDF417", 274, 96), 1);
  const std::string svg = barcode_get_svg(handle.get());
  EXPECT_NE(svg.find("<rect x=\"0.00\" y=\"0.00\" width=\"16.00\" height=\"8.00\""), std::string::npos);
  EXPECT_NE(svg.find("<rect x=\"272.00\" y=\"88.00\" width=\"2.00\" height=\"8.00\""), std::string::npos);
  EXPECT_FALSE(PDF417("svg").Draw(std::string(), 0, 0, 100, 100));
  EXPECT_TRUE(PDF417("png").Draw(std::string(), 0, 0, 100, 100));
}

}  // namespace
}  // namespace barcode_orv
