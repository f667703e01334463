// The standard-encoding switch: with it, Code 128 set A and the automatic mode write the
// ISO/IEC 15417 values a reader decodes back to the text, and Matrix 2 of 5 draws the
// published patterns (checked against Zint's module dump); without it nothing changes.
#include <gtest/gtest.h>

#include <string>

#include "barcode_ffi.h"
#include "linear/matrix2of5.h"
#include "support/c_api.h"
#include "support/zxing_decode.h"

namespace barcode_orv {
namespace {

TEST(StandardEncodingTest, Code128SetAAndAutomaticDecodeToTheirText) {
  const struct {
    const char* mode;
    const char* text;
  } cases[] = {{"A", "ABC"},
               {"A", "SHIP TO: ACME"},
               {"A", "LOT\t42"},
               {"AUTO", "12345"},
               {"AUTO",
                "ab\x01"
                "CD\t7"}};
  for (const auto& c : cases) {
    testing::HandlePtr standard = testing::MakeHandle(BARCODE_CODE128);
    testing::HandlePtr compatible = testing::MakeHandle(BARCODE_CODE128);
    for (BarcodeHandle* handle : {standard.get(), compatible.get()}) {
      barcode_set_code_mode(handle, c.mode);
      barcode_set_show_text(handle, 0);
    }
    barcode_set_standard_encoding(standard.get(), 1);
    ASSERT_EQ(barcode_draw_1d(standard.get(), c.text, 500, 60), 1) << c.text;
    ASSERT_EQ(barcode_draw_1d(compatible.get(), c.text, 500, 60), 1) << c.text;
    EXPECT_EQ(testing::DecodeHandle(standard.get(), testing::Symbology::kCode128).text, c.text);
    EXPECT_NE(testing::DecodeHandle(compatible.get(), testing::Symbology::kCode128).text, c.text);
  }
}

// Modules (1 dark, 0 light) from `zint -b 2 --dump`, Zint's Matrix 2 of 5.
TEST(StandardEncodingTest, Matrix2of5MatchesThePublishedPatterns) {
  const std::pair<const char*, const char*> cases[] = {
      {"90", "1111010101000100010101110001011110101"},
      {"1234", "111101010111010111010001011101110001010101110111011110101"},
      {"5678", "111101010111011101010001110101010001110111010001011110101"},
  };
  for (const auto& [digits, modules] : cases) {
    std::string drawn;
    bool dark = true;
    for (int32_t width : internal::EncodeStandardMatrix2of5(digits, 3.0F)) {
      drawn.append(static_cast<size_t>(width), dark ? '1' : '0');
      dark = !dark;
    }
    EXPECT_EQ(drawn, modules) << digits;
  }
  // Through the C interface the switch changes the symbol; off keeps the old one.
  testing::HandlePtr handle = testing::MakeHandle(BARCODE_MATRIX2OF5);
  barcode_set_output_format(handle.get(), "svg");
  ASSERT_EQ(barcode_draw_1d(handle.get(), "1234", 300, 80), 1);
  const std::string compatible = barcode_get_svg(handle.get());
  barcode_set_standard_encoding(handle.get(), 1);
  ASSERT_EQ(barcode_draw_1d(handle.get(), "1234", 300, 80), 1);
  EXPECT_NE(barcode_get_svg(handle.get()), compatible);
}

}  // namespace
}  // namespace barcode_orv
