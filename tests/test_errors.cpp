// Guards every refusal: each encoder's checks (empty data, characters outside its set, check
// digits, lengths, capacities, settings out of range) end the draw with 0 and name the fault in
// one line on standard error, the same in PNG and SVG mode, and barcode_get_last_error
// returns that line.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "barcode_ffi.h"
#include "support/c_api.h"

namespace barcode_orv {
namespace {

using Draw = int (*)(BarcodeHandle*, const char*, int, int);
using Setup = std::function<void(BarcodeHandle*)>;

struct Row {
  int type;
  std::string text;
  const char* message;
  Setup setup = nullptr;
  Draw draw = barcode_draw_1d;
  bool svg = true;  // DataBar Limited has no SVG form
};

Setup XDim(double mm, double text_scale) {
  return [=](BarcodeHandle* h) {
    barcode_set_xdim(h, mm, 300);
    barcode_set_text_font_scale(h, text_scale);
  };
}
Setup CodeMode(const char* mode) {
  return [mode](BarcodeHandle* h) { barcode_set_code_mode(h, mode); };
}
Setup DataMatrix(const char* size, const char* scheme) {
  return [size, scheme](BarcodeHandle* h) {
    barcode_set_code_size(h, size);
    barcode_set_encode_scheme(h, scheme);
  };
}
Setup Pdf417(int level, int columns, int rows, int row_height) {
  return [=](BarcodeHandle* h) {
    barcode_set_error_level(h, level);
    barcode_set_columns(h, columns);
    barcode_set_rows(h, rows);
    barcode_set_y_height(h, row_height);
  };
}

const char* const kLimitedLength = "[GS1 DataBar Limited] Input must be 8-13 digits";
const std::string kConvenience = "9191234512345678901234567890123425013102500";

const Row kRows[] = {
    {BARCODE_CODE39, "", "[Code39] Empty string"},
    {BARCODE_CODE39, "A*B", "[Code39] Invalid character in CODE39: '*' is reserved for start/stop code"},
    {BARCODE_CODE39, "ab!", "[Code39] Invalid character in CODE39: !"},
    {BARCODE_CODE39, "A\xC3\xA9", "[Code39] Invalid character in CODE39: \xC3"},
    {BARCODE_CODE93, "AB*", "[Code93] Invalid character in CODE93: *"},
    {BARCODE_CODE128, "", "[Code128] Empty string"},
    {BARCODE_CODE128, "123", "[Code128] Not 2-digit at pos=2", CodeMode("C")},
    {BARCODE_CODE128, "x1", "[Code128] Not 2-digit at pos=0", CodeMode("C")},
    {BARCODE_CODE128, "AB\x7f", "[Code128] Invalid char for CODE_A", CodeMode("A")},
    {BARCODE_CODE128, "\t", "[Code128] Invalid char for CODE_B", CodeMode("B")},
    {BARCODE_CODE128, "\x7f", "[Code128] Invalid char for CODE_B", CodeMode("B")},
    {BARCODE_CODE128, "1234\x80", "[Code128] No valid start"},
    {BARCODE_NW7, "A123", "[NW7] Invalid start/stop character combination in NW7: A123"},
    {BARCODE_NW7, "123d", "[NW7] Invalid start/stop character combination in NW7: 123D"},
    {BARCODE_NW7, "12e4", "[NW7] Invalid character in NW7: E"},
    {BARCODE_ITF, "1 2", "[ITF] ITF barcode requires numeric digits only"},
    {BARCODE_MATRIX2OF5, "12a", "[Matrix2of5] Matrix 2 of 5 barcode requires numeric digits only"},
    {BARCODE_NEC2OF5, "-1", "[NEC2of5] NEC 2 of 5 barcode requires numeric digits only"},
    {BARCODE_JAN13, "4901234567890", "[Jan13] Invalid check digit: expected 4"},
    {BARCODE_JAN13, "49012345678", "[Jan13] Invalid length 11: 12 or 13 digits required"},
    {BARCODE_JAN13, "4901234567894+123", "[Jan13] Invalid add-on length 3: 2 or 5 digits required"},
    {BARCODE_JAN13, "4901234567894+1x", "[Jan13] Invalid character 'x': digits only"},
    {BARCODE_JAN8, "491234567", "[Jan8] Invalid length 9: 7 or 8 digits required"},
    {BARCODE_JAN8, "49123457", "[Jan8] Invalid check digit: expected 6"},
    {BARCODE_UPCA, "036000291453", "[UpcA] Invalid check digit: expected 2"},
    {BARCODE_UPCE, "21234565", "[UpcE] Invalid number system 2: UPC-E needs 0 or 1"},
    {BARCODE_UPCE, "01234560", "[UpcE] Invalid check digit: expected 5"},
    {BARCODE_UPCE, "12345", "[UpcE] Invalid length 5: 6, 7 or 8 digits (or a UPC-A of 11 or 12) required"},
    {BARCODE_UPCE, "036000291452", "[UpcE] UPC-A 036000291452 has no UPC-E form"},
    {BARCODE_UPCE, "236000291452", "[UpcE] Invalid check digit: expected 6"},
    {BARCODE_GS1_128, "0104912345678904",
     "[GS1-128] Element string must start with an AI in parentheses, such as (01)"},
    {BARCODE_GS1_128, "(01", "[GS1-128] Unclosed parenthesis: (01"},
    {BARCODE_GS1_128, "(0A)2", "[GS1-128] Invalid AI (0A)"},
    {BARCODE_GS1_128, "(23)1", "[GS1-128] Unknown AI (23)"},
    {BARCODE_GS1_128, "(10)", "[GS1-128] AI (10) has no data"},
    {BARCODE_GS1_128, "(10)123456789012345678901", "[GS1-128] AI (10) too long (max 20)"},
    {BARCODE_GS1_128, "(01)049123456789", "[GS1-128] AI (01) too short (min 14)"},
    {BARCODE_GS1_128, "(01)04912345678905", "[GS1-128] Invalid check digit in AI (01): expected 4"},
    {BARCODE_GS1_128, "(10)A~B", "[GS1-128] Invalid character '~' in AI (10)"},
    {BARCODE_GS1_128, "(10)A\\\\B", "[GS1-128] Invalid character '\\' in AI (10)"},
    {BARCODE_GS1_128, "(17)250229", "[GS1-128] Invalid date in AI (17): 250229"},
    {BARCODE_GS1_128, "(7007)250101250132", "[GS1-128] Invalid date in AI (7007): 250132"},
    {BARCODE_GS1_128, "(4324)2512312460", "[GS1-128] Invalid time in AI (4324): 2460"},
    {BARCODE_GS1_128, "(7007)12345678A", "[GS1-128] AI (7007) has the wrong length 9 for its format N6+[N6]"},
    {BARCODE_GS1_128, "(8013)1987654Ad4X4bL5ttr2310c2L", "[GS1-128] Invalid check pair in AI (8013): expected 2K"},
    {BARCODE_GS1_128, kConvenience.substr(1),
     "[GS1-128] Invalid length 42: a convenience-store code has 43 or 44 digits", nullptr, barcode_draw_convenience},
    {BARCODE_GS1_128, "92" + kConvenience.substr(2), "[GS1-128] A convenience-store code starts with AI 91", nullptr,
     barcode_draw_convenience},
    {BARCODE_GS1_128, kConvenience + "7", "[GS1-128] Invalid check digit: expected 1", nullptr,
     barcode_draw_convenience},
    {BARCODE_GS1_128, kConvenience.substr(0, 42) + "x", "[GS1-128] Invalid character 'x': digits only", nullptr,
     barcode_draw_convenience},
    {BARCODE_QR, "A", "[QR] Mask must be 0 to 7 (or -1 to choose one), not 8",
     [](BarcodeHandle* h) { barcode_set_qr_mask(h, 8); }, barcode_draw_2d_rect},
    {BARCODE_QR, "A", "[QR] ECI must be 0 to 999999 (or -1 for none), not 1000000",
     [](BarcodeHandle* h) { barcode_set_eci(h, 1000000); }, barcode_draw_2d_rect},
    {BARCODE_QR, "(01)09501101530004", "[QR] GS1: Invalid check digit in AI (01): expected 3",
     [](BarcodeHandle* h) { barcode_set_gs1(h, 1); }, barcode_draw_2d_rect},
    {BARCODE_DATAMATRIX, "(17)261331", "[DataMatrix] GS1: Invalid date in AI (17): 261331",
     [](BarcodeHandle* h) { barcode_set_gs1(h, 1); }, barcode_draw_2d_rect},
    {BARCODE_DATAMATRIX, "\xE6\x97\xA5", "[DataMatrix] Text has no form in ECI 3 (ISO-8859-1)",
     [](BarcodeHandle* h) { barcode_set_eci(h, 3); }, barcode_draw_2d_rect},
    {BARCODE_DATAMATRIX, "AB", "[DataMatrix] Unknown size '8x50'",
     [](BarcodeHandle* h) {
       barcode_set_standard(h, 1);
       barcode_set_code_size(h, "8x50");
     },
     barcode_draw_2d_rect},
    {BARCODE_PDF417, "A", "[PDF417] ECI must be 0 to 811799 in PDF417, not 811800",
     [](BarcodeHandle* h) { barcode_set_eci(h, 811800); }, barcode_draw_2d_rect},
    {BARCODE_DATAMATRIX, "abcdefghijklmn", "[DataMatrix] Data too long for 12x12: 11 codewords, capacity 5",
     DataMatrix("12x12", "AUTO"), barcode_draw_2d_rect},
    {BARCODE_DATAMATRIX, "AB*c", "[DataMatrix] Character 99 at position 3 cannot be encoded in X12",
     DataMatrix("AUTO", "X12"), barcode_draw_2d_rect},
    {BARCODE_DATAMATRIX, "AB~", "[DataMatrix] Character 126 at position 2 cannot be encoded in EDIFACT",
     DataMatrix("AUTO", "EDIFACT"), barcode_draw_2d_rect},
    {BARCODE_DATAMATRIX, std::string(3117, '1'),
     "[DataMatrix] Data too long for Data Matrix: 1559 codewords, capacity 1558", DataMatrix("AUTO", "AUTO"),
     barcode_draw_2d_rect},
    {BARCODE_PDF417, std::string(2711, '1'), "[PDF417] Data too long for PDF417: 2711 bytes, at most 2710 digits fit",
     Pdf417(-1, 0, 0, 3), barcode_draw_2d_rect},
    {BARCODE_PDF417, std::string(900, 'a'), "[PDF417] Data too long for PDF417: 964 codewords at level 8, capacity 928",
     Pdf417(8, 0, 0, 3), barcode_draw_2d_rect},
    {BARCODE_PDF417, std::string(200, 'a'), "[PDF417] Data too long for 1 column: 118 codewords", Pdf417(-1, 1, 0, 3),
     barcode_draw_2d_rect},
    {BARCODE_PDF417, std::string(20, 'a'), "[PDF417] Data too long for 2 columns x 3 rows: 20 codewords",
     Pdf417(-1, 2, 3, 3), barcode_draw_2d_rect},
    {BARCODE_PDF417, "A", "[PDF417] Columns must be 1 to 30, or 0 for automatic: 31", Pdf417(-1, 31, 0, 3),
     barcode_draw_2d_rect},
    {BARCODE_PDF417, "A", "[PDF417] Rows must be 3 to 90, or 0 for automatic: 91", Pdf417(-1, 0, 91, 3),
     barcode_draw_2d_rect},
    {BARCODE_PDF417, "A", "[PDF417] Row height must be 3 to 50 modules: 2", Pdf417(-1, 0, 0, 2), barcode_draw_2d_rect},
    {BARCODE_GS1_DATABAR_14, "00000000000000", "[GS1 DataBar] Input too long (max 13 digits)"},  // a GTIN-14
    {BARCODE_GS1_DATABAR_14, "12345678901234x", "[GS1 DataBar] GS1 DataBar requires numeric digits only"},
    {BARCODE_GS1_DATABAR_LIMITED, "2123456789012",
     "[GS1 DataBar Limited] GS1 DataBar Limited requires leading digit 0 or 1 after padding", nullptr, barcode_draw_1d,
     false},
    {BARCODE_GS1_DATABAR_LIMITED, "1234567x", "[GS1 DataBar Limited] GS1 DataBar Limited requires numeric digits only",
     nullptr, barcode_draw_1d, false},
    {BARCODE_GS1_DATABAR_LIMITED, "1234567", kLimitedLength, nullptr, barcode_draw_1d, false},
    {BARCODE_GS1_DATABAR_LIMITED, "01234567890123", kLimitedLength, nullptr, barcode_draw_1d, false},
    {BARCODE_GS1_DATABAR_EXPANDED, "(23)1", "[GS1 DataBar Expanded] Unknown AI (23)"},
    {BARCODE_GS1_DATABAR_EXPANDED, "(8010)12#4",
     "[GS1 DataBar Expanded] Invalid character '#': not encodable in GS1 DataBar Expanded"},
    {BARCODE_GS1_DATABAR_EXPANDED, "(90)ABCDEFGHIJKLMNOPQRSTUVWXYZABCD(91)ABCDEFGHIJK",
     "[GS1 DataBar Expanded] Element string too long for GS1 DataBar Expanded: 25 symbol characters (max 22)"},
    // At an X-dimension: a box smaller than the symbol, and a text line that leaves the bars
    // no height however tall the box.
    {BARCODE_QR, "A", "[QR] Box too small for the X-dimension: 735x735 px needed", XDim(3.0, 1.0),
     barcode_draw_2d_rect},
    {BARCODE_CODE39, "ABC",
     "[Code39] The text line leaves the bars no height at any size: lower text_font_scale or "
     "text_gap, or hide the text",
     XDim(0.3, 9.0)},
    {BARCODE_GS1_DATABAR_14, "0950110153000",
     "[GS1 DataBar] The text line leaves the bars no height at any size: "
     "lower text_font_scale or text_gap, or hide the text",
     [](BarcodeHandle* h) {
       XDim(0.3, 9.0)(h);
       barcode_set_symbol_type_14(h, "STACKED_OMNIDIRECTIONAL");
     }},
};

TEST(Refusals, EachNamesItsFaultInOneLine) {
  for (const Row& row : kRows) {
    for (const char* format : {"png", "svg"}) {
      if (!row.svg && format[0] == 's') continue;
      testing::HandlePtr handle = testing::MakeHandle(row.type);
      ASSERT_NE(handle, nullptr) << row.message;
      barcode_set_output_format(handle.get(), format);
      if (row.setup) row.setup(handle.get());
      ::testing::internal::CaptureStderr();
      EXPECT_EQ(row.draw(handle.get(), row.text.c_str(), 600, 240), 0) << row.message;
      const std::string printed = ::testing::internal::GetCapturedStderr();
      EXPECT_EQ(printed, std::string(row.message) + "\n") << format;
      EXPECT_STREQ(barcode_get_last_error(handle.get()), row.message) << format;
    }
  }
}

}  // namespace
}  // namespace barcode_orv

namespace barcode_orv {
namespace {

// Draws whose picture would not read back as the text. By default the draw succeeds and
// barcode_get_last_warning names the reason; in the standard profile the same draw is
// refused with that reason (or its own, where quiet zones change the figure), or, where
// the standard encoding is the cure, drawn without a warning.
struct WarningRow {
  int type;
  std::string text;
  std::string warning;  // the default profile's warning ("" for none)
  std::string refusal;  // the standard profile's reason ("" for a clean draw)
  int width = 600;
  int height = 240;
  Setup setup = nullptr;
  Draw draw = barcode_draw_2d_rect;
  bool svg = true;  // SVG scales: a matrix symbol in a small box is no fault there
};

const std::string kSetA =
    "[Code128] Code set A written with the compatibility values: readers decode other text (the standard encoding "
    "writes ISO/IEC 15417's)";
const std::string kGs1Element = "(01)09501101530003(17)261231(10)LOT42";
const std::string kGs1TextLine = "[GS1-128] Box too small: the text line does not fit";

const WarningRow kWarningRows[] = {
    {BARCODE_CODE128, "ABC123", kSetA, "", 600, 240, nullptr, barcode_draw_1d},
    {BARCODE_CODE128, "12345", kSetA, "", 600, 240, nullptr, barcode_draw_1d},
    {BARCODE_CODE128, "AB", kSetA, "", 600, 240, CodeMode("A"), barcode_draw_1d},
    {BARCODE_CODE93, "A<B",
     "[Code93] '<' is written as a shift character: readers decode other text (the standard encoding writes full "
     "ASCII)",
     "", 600, 240, nullptr, barcode_draw_1d},
    {BARCODE_MATRIX2OF5, "123",
     "[Matrix2of5] Compatibility patterns: readers decode other digits or nothing (the standard encoding writes the "
     "published ones)",
     "", 600, 240, nullptr, barcode_draw_1d},
    {BARCODE_NEC2OF5, "123",
     "[NEC2of5] The library's own 2-of-5 patterns: they are no published table, so readers decode other digits or "
     "nothing",
     "same", 600, 240, nullptr, barcode_draw_1d},
    {BARCODE_CODE39, "ABC", "[Code39] Box too small: 79 px needed", "[Code39] Box too small: 99 px needed", 20, 100,
     nullptr, barcode_draw_1d},
    {BARCODE_CODE128, "abcdefghij", "[Code128] Box too small: 145 px needed", "[Code128] Box too small: 165 px needed",
     100, 100, [](BarcodeHandle* h) { barcode_set_fit_width(h, 1); }, barcode_draw_1d},
    {BARCODE_GS1_128, kGs1Element, kGs1TextLine, kGs1TextLine, 300, 100, nullptr, barcode_draw_1d},
    {BARCODE_QR, "A", "[QR] Box too small: 21x21 px needed", "[QR] Box too small: 29x29 px needed", 10, 10, nullptr,
     barcode_draw_2d_rect, false},
    {BARCODE_QR, "12AB", "[QR] Character 'A' at offset 2 is outside numeric mode", "same", 600, 240,
     [](BarcodeHandle* h) { barcode_set_encode_mode(h, "NUMERIC"); }},
    {BARCODE_QR, "ab", "", "[QR] Character 'a' at offset 0 is outside alphanumeric mode", 600, 240,
     [](BarcodeHandle* h) { barcode_set_encode_mode(h, "ALPHANUMERIC"); }},
    {BARCODE_QR, std::string(60, 'x'), "[QR] Data too long for version 1: it needs version 4", "same", 600, 240,
     [](BarcodeHandle* h) { barcode_set_version(h, 1); }},
    {BARCODE_QR, "caf\xE9", "[QR] Text is neither valid UTF-8 nor Shift_JIS: byte 0xE9 at offset 3 is not UTF-8",
     "same"},
    {BARCODE_QR, "\xF0\x9F\x98\x80", "[QR] Character at offset 0 has no Shift_JIS form", "same", 600, 240,
     [](BarcodeHandle* h) { barcode_set_string_encoding(h, "shift-jis"); }},
    {BARCODE_QR, "", "[QR] Empty data: the symbol would carry nothing", "same"},
    {BARCODE_DATAMATRIX, "", "[DataMatrix] Empty data: the symbol would carry nothing", "same"},
    {BARCODE_PDF417, "", "[PDF417] Empty data: the symbol would carry nothing", "same"},
    {BARCODE_GS1_DATABAR_14, "", "[GS1 DataBar] Empty data: the symbol carries GTIN 00000000000000", "same", 600, 240,
     nullptr, barcode_draw_1d},
    {BARCODE_GS1_DATABAR_14, "0950110153000", "[GS1 DataBar] Box too small: the text line does not fit", "same", 100,
     100, [](BarcodeHandle* h) { barcode_set_symbol_type_14(h, "STACKED"); }, barcode_draw_1d},
    {BARCODE_GS1_DATABAR_14, "0950110153000", "[GS1 DataBar] Box too small: 50 px needed", "same", 40, 100,
     [](BarcodeHandle* h) { barcode_set_symbol_type_14(h, "STACKED"); }, barcode_draw_1d},
    {BARCODE_GS1_DATABAR_EXPANDED, "(01)98898765432106(3202)012345(15)991231",
     "[GS1 DataBar Expanded] Box too small: no height is left for the rows above the text", "same", 300, 12, nullptr,
     barcode_draw_stacked},
    {BARCODE_YUBIN_CUSTOMER, "1060032-3-2-5-ABCDEFGHIJ",
     "[YubinCustomer] Address cut: the characters from offset 17 on do not fit the 20 positions", "same", 600, 30,
     nullptr, barcode_draw_yubin_with_width},
    {BARCODE_YUBIN_CUSTOMER, "1060032-3-2-5ABCDEFG",
     "[YubinCustomer] Address cut: the letter at offset 16 falls on the twentieth position and is drawn as CC1 alone",
     "same", 600, 30, nullptr, barcode_draw_yubin_with_width},
    {BARCODE_YUBIN_CUSTOMER, "1060032 3", "[YubinCustomer] Character at offset 7 skipped: not in 0-9, - or A-Z", "same",
     600, 30, nullptr, barcode_draw_yubin_with_width},
};

TEST(Warnings, DefaultDrawsNameThemAndTheStandardProfileRefuses) {
  for (const WarningRow& row : kWarningRows) {
    for (const char* format : {"png", "svg"}) {
      if (!row.svg && format[0] == 's') continue;
      SCOPED_TRACE(std::string(format) + " " + row.text);
      testing::HandlePtr handle = testing::MakeHandle(row.type);
      barcode_set_output_format(handle.get(), format);
      if (row.setup) row.setup(handle.get());
      // A matrix symbol with no data has no SVG form: that draw fails for the same reason.
      if (row.draw(handle.get(), row.text.c_str(), row.width, row.height) == 1) {
        EXPECT_EQ(barcode_get_last_warning(handle.get()), row.warning);
      } else {
        EXPECT_EQ(barcode_get_last_error(handle.get()), row.warning);
      }

      testing::HandlePtr standard = testing::MakeHandle(row.type);
      barcode_set_output_format(standard.get(), format);
      barcode_set_standard(standard.get(), 1);
      if (row.setup) row.setup(standard.get());
      ::testing::internal::CaptureStderr();
      const int drawn = row.draw(standard.get(), row.text.c_str(), row.width, row.height);
      const std::string printed = ::testing::internal::GetCapturedStderr();
      const std::string refusal = row.refusal == "same" ? row.warning : row.refusal;
      EXPECT_EQ(drawn, refusal.empty() ? 1 : 0);
      EXPECT_EQ(barcode_get_last_error(standard.get()), refusal);
      EXPECT_EQ(printed, refusal.empty() ? "" : refusal + "\n");
      EXPECT_STREQ(barcode_get_last_warning(standard.get()), "");
      // A refused draw keeps nothing a getter could hand out.
      if (!refusal.empty()) {
        EXPECT_TRUE(testing::ImageData(standard.get()).empty());
        EXPECT_STREQ(barcode_get_svg(standard.get()), "");
      }
    }
  }
}

TEST(Warnings, BytesEntryCarriesNulAndNamesAnEmptyPayload) {
  testing::HandlePtr handle = testing::MakeHandle(BARCODE_QR);
  const unsigned char bytes[] = {'a', 0, 'b'};
  ASSERT_EQ(barcode_draw_2d_bytes(handle.get(), bytes, sizeof bytes, 200, 200), 1);
  EXPECT_EQ(testing::DecodeHandle(handle.get(), testing::Symbology::kQRCode).bytes, std::string("a\0b", 3));
  EXPECT_EQ(barcode_draw_2d_bytes(handle.get(), nullptr, 0, 200, 200), 1);
  EXPECT_STREQ(barcode_get_last_warning(handle.get()), "[QR] Empty data: the symbol would carry nothing");
  EXPECT_EQ(barcode_draw_2d_bytes(handle.get(), nullptr, 3, 200, 200), 0);
}

TEST(Warnings, ErrorLinesCanBeKeptOffStandardError) {
  testing::HandlePtr handle = testing::MakeHandle(BARCODE_CODE39);
  barcode_set_error_lines(0);
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(barcode_draw_1d(handle.get(), "a*", 300, 100), 0);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  barcode_set_error_lines(1);
  EXPECT_STRNE(barcode_get_last_error(handle.get()), "");
}

}  // namespace
}  // namespace barcode_orv

namespace barcode_orv {
namespace {

// No draw fails without saying why, whatever the type, entry point, text, box, format or
// profile: the reason is never empty and never the bare "Draw failed".
TEST(Refusals, NoFailureWithoutAReason) {
  const Draw draws[] = {barcode_draw_1d, barcode_draw_2d_rect, barcode_draw_yubin_with_width, barcode_draw_stacked,
                        barcode_draw_convenience};
  const std::string texts[] = {"", "A", "1234567", "(01)04912345678904", "\xFF", std::string(1001, '1')};
  const std::pair<int, int> boxes[] = {{0, 0}, {1, 1}, {-5, 10}, {300, 100}};
  for (int type = 0; type <= 18; ++type) {
    for (const int standard : {0, 1}) {
      for (const char* format : {"png", "svg", "gif"}) {
        testing::HandlePtr handle = testing::MakeHandle(type);
        barcode_set_error_lines(0);
        barcode_set_standard(handle.get(), standard);
        barcode_set_output_format(handle.get(), format);
        for (const Draw draw : draws) {
          for (const std::string& text : texts) {
            for (const auto& [width, height] : boxes) {
              if (draw(handle.get(), text.c_str(), width, height) != 0) continue;
              const std::string reason = barcode_get_last_error(handle.get());
              EXPECT_TRUE(!reason.empty() && reason != "Draw failed")
                  << "type " << type << " " << format << " standard " << standard << " '" << text.substr(0, 20) << "' "
                  << width << "x" << height << ": '" << reason << "'";
            }
          }
        }
        barcode_set_error_lines(1);
      }
    }
  }
}

}  // namespace
}  // namespace barcode_orv
