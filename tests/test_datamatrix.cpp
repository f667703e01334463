// Guards Data Matrix: codeword streams derived by hand from ISO/IEC 16022 (every scheme's
// packing, latches, unlatches and padding at the symbol's end), the standard's Reed-Solomon
// example, the automatic choice against every forced scheme, each size's capacity edge, the
// C keywords, and square modules in a rectangular box.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "api/ffi_internal.h"
#include "barcode_ffi.h"
#include "support/c_api.h"
#include "support/png_image.h"
#include "twod/datamatrix.h"
#include "twod/datamatrix_encoder.h"

namespace barcode_orv {
namespace {

using internal::DataMatrixEncodation;
using internal::Encodation;
using internal::kDataMatrixSizes;

std::vector<uint8_t> Bytes(const std::string& text) { return {text.begin(), text.end()}; }

// Each row worked out by hand from the encodation rules; the capacity is the symbol's,
// which decides how each stream may end.
TEST(DataMatrixEncodation, HandDerivedStreams) {
  struct Row {
    const char* what;
    std::string text;
    Encodation scheme;
    int capacity;
    std::vector<uint8_t> expected;
  };
  const Row rows[] = {
      {"digit pairs", "123456", Encodation::kAuto, 3, {142, 164, 186}},
      {"pairs, then 129 and 253-state pads", "1234A", Encodation::kAuto, 5, {142, 164, 66, 129, 115}},
      {"upper shift", "\xE9", Encodation::kAscii, 3, {235, 106, 129}},
      // 'A' 'I' 'M' = 14, 22, 26: 1600 * 14 + 40 * 22 + 26 + 1 = 23307 = 91 * 256 + 11.
      {"C40 fills the symbol: no unlatch", "AIMAIM", Encodation::kC40, 5, {230, 91, 11, 91, 11}},
      {"C40, one left: pad, no unlatch", "AIMAIMAIM", Encodation::kAuto, 8, {230, 91, 11, 91, 11, 91, 11, 129}},
      {"C40 with room: unlatch, then pads", "AIMAIM", Encodation::kC40, 8, {230, 91, 11, 91, 11, 254, 129, 56}},
      // "AI" pending: padded with Shift 1 (value 0): 1600 * 14 + 40 * 22 + 0 + 1 = 23281.
      {"C40 two pending values padded", "AIMAI", Encodation::kC40, 5, {230, 91, 11, 90, 241}},
      {"Text: lower case in the basic set", "aim", Encodation::kText, 3, {239, 91, 11}},
      // '*' '>' CR = 1, 2, 0: 1600 + 80 + 0 + 1 = 1681 = 6 * 256 + 145.
      {"X12", "*>\r*>\r", Encodation::kX12, 5, {238, 6, 145, 6, 145}},
      // "ABC." = 1, 2, 3, 46: 000001 000010 000011 101110.
      {"EDIFACT fills the symbol", "ABC.", Encodation::kEdifact, 4, {240, 4, 32, 238}},
      {"EDIFACT then unlatch 011111", "ABC.", Encodation::kEdifact, 8, {240, 4, 32, 238, 124, 129, 161, 56}},
      {"EDIFACT with two left: implicit ASCII", "ABC.D", Encodation::kEdifact, 5, {240, 4, 32, 238, 69}},
      // Randomised: length 1 at position 2 -> 45; 0xAB at position 3 -> 108.
      {"Base 256", "\xAB", Encodation::kBase256, 3, {231, 45, 108}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(DataMatrixEncodation(Bytes(row.text), row.scheme).Codewords(row.capacity), row.expected) << row.what;
  }
}

TEST(DataMatrixEncodation, Base256LengthFieldGrowsAt250Bytes) {
  for (const auto& [length, header] : {std::pair{249, 2}, std::pair{250, 3}}) {
    const std::string bytes(static_cast<size_t>(length), '\xFF');
    EXPECT_EQ(DataMatrixEncodation(Bytes(bytes), Encodation::kBase256).MinimumCodewords(), length + header);
  }
}

// The shortest-path choice is never longer than any single scheme forced on the data.
TEST(DataMatrixEncodation, AutomaticNeverLongerThanAForcedScheme) {
  const char* payloads[] = {"ABCDEFGHIJKL0123",        "abcdefghijkl0123",    "0123456789012345678901",
                            "A*B>C\rD*E>F\rG",         "EDI.FACT/DATA-1234?", "Mixed Case 123 and more TEXT",
                            "\x80\x81\xFE\xFF binary!"};
  for (const char* text : payloads) {
    const int automatic = DataMatrixEncodation(Bytes(text), Encodation::kAuto).MinimumCodewords();
    for (int scheme = 0; scheme <= 5; ++scheme) {
      try {
        const int forced = DataMatrixEncodation(Bytes(text), static_cast<Encodation>(scheme)).MinimumCodewords();
        EXPECT_LE(automatic, forced) << text << " scheme " << scheme;
      } catch (const std::runtime_error&) {
        // X12 and EDIFACT refuse characters they cannot carry; checked below.
      }
    }
  }
}

TEST(DataMatrixEncoder, ReedSolomonOfTheStandardsExample) {
  // "123456" in a 10 x 10 symbol: data 142 164 186, error correction 114 25 5 88 102.
  EXPECT_EQ(internal::AddErrorCorrection({142, 164, 186}, kDataMatrixSizes[0]),
            (std::vector<uint8_t>{142, 164, 186, 114, 25, 5, 88, 102}));
  EXPECT_EQ(internal::GeneratorPolynomial(7), (std::vector<uint8_t>{1, 254, 92, 240, 134, 144, 68, 23}));
}

// One digit more than the largest digit string of each size (two digits a codeword) fails.
TEST(DataMatrixEncoder, EverySizeRefusesOneDigitMore) {
  for (int index = 0; index < internal::kDataMatrixSizeCount; ++index) {
    const std::string digits(static_cast<size_t>(2 * kDataMatrixSizes[index].data_codewords + 1), '7');
    EXPECT_THROW(internal::EncodeDataMatrix(Bytes(digits), index, Encodation::kAuto), std::runtime_error) << index;
  }
}

TEST(DataMatrix, KeywordsReachTheObject) {
  testing::HandlePtr handle = testing::MakeHandle(BARCODE_DATAMATRIX);
  ASSERT_NE(handle, nullptr);
  auto& object = dynamic_cast<DataMatrix&>(*handle->object);
  const std::pair<const char*, int> sizes[] = {{"144x144", 23}, {"16x48", 29}, {"24X24", -2}, {"10x10", 0}, {"", -2}};
  for (const auto& [text, value] : sizes) {
    barcode_set_code_size(handle.get(), text);
    EXPECT_EQ(object.GetCodeSize(), value) << text;
  }
  const std::pair<const char*, int> schemes[] = {{"C40", 1},  {"BASE256", 5}, {"base256", -1}, {"EDIFACT", 4},
                                                 {"TEXT", 2}, {"X12", 3},     {"ASCII", 0},    {"AUTO", -1}};
  for (const auto& [text, value] : schemes) {
    barcode_set_encode_scheme(handle.get(), text);
    EXPECT_EQ(object.GetEncodeScheme(), value) << text;
  }
}

// A rectangular symbol keeps square modules: the smaller fit of width and height.
TEST(DataMatrix, ModulesStaySquareInRasterAndSvg) {
  DataMatrix raster("png");
  raster.SetCodeSize(24);  // 8 x 18
  ASSERT_TRUE(raster.Draw(std::string("12"), 0, 0, 180, 100));
  DataMatrix svg("svg");
  svg.SetCodeSize(24);
  ASSERT_TRUE(svg.Draw(std::string("12"), 0, 0, 180, 100));
  // 10-pixel modules: the bottom finder row ends at y = 80 and the first light module of
  // the top clock track starts at x = 10.
  EXPECT_NE(svg.GetSvg().find("<rect x=\"0.00\" y=\"70.00\" width=\"10.00\" height=\"10.00\""), std::string::npos);
  EXPECT_EQ(svg.GetSvg().find("y=\"80.00\""), std::string::npos);
  const testing::RgbaImage image = testing::DecodePng(raster.GetImageMemory());
  EXPECT_EQ(image.Pixel(175, 79), 0x000000FFU);  // bottom-right finder module
  EXPECT_EQ(image.Pixel(175, 80), 0xFFFFFFFFU);
  EXPECT_EQ(image.Pixel(15, 0), 0xFFFFFFFFU);                           // light clock module
  EXPECT_FALSE(DataMatrix("svg").Draw(std::string(), 0, 0, 100, 100));  // no payload, no document
  EXPECT_TRUE(DataMatrix("png").Draw(std::string(), 0, 0, 100, 100));
}

}  // namespace
}  // namespace barcode_orv
