// Guards QR Code through the class and the C interface: the settings and their keywords
// reaching the encoder, and the module edges painted in PNG and SVG for whole, fitted and
// adjusted modules.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "api/ffi_internal.h"
#include "barcode_ffi.h"
#include "support/c_api.h"
#include "support/png_image.h"
#include "twod/qr.h"

namespace barcode_orv {
namespace {

using testing::RgbaImage;

using Handle = testing::HandlePtr;

Handle QrHandle() { return testing::MakeHandle(BARCODE_QR); }
QR& QrOf(const Handle& handle) { return dynamic_cast<QR&>(*handle->object); }

std::vector<uint8_t> Png(BarcodeHandle* handle) { return testing::ImageData(handle); }

// ---- Settings ----

// The C keywords reach the encoder: 34 digits fill version 1-M as digits and need version 3
// as bytes, version 4 at H; unknown spellings fall back to M, bytes and automatic version.
TEST(QrSettings, KeywordsReachTheEncoder) {
  Handle handle = QrHandle();
  ASSERT_NE(handle, nullptr);
  QR& qr = QrOf(handle);
  const struct {
    const char* level;
    const char* mode;
    int version;
    int side;
  } cases[] = {{"M", "NUMERIC", 0, 21}, {"M", "n", 0, 21},     {"M", "numeric", 0, 29}, {"H", "BYTE", 0, 33},
               {"h", "AUTO", 0, 29},    {"LL", "NB", 0, 29},   {"L", "BYTE", 0, 29},    {"Q", "BYTE", 0, 33},
               {"M", "BYTE", 5, 37},    {"M", "BYTE", 41, 29}, {"M", "BYTE", -1, 29}};
  for (const auto& c : cases) {
    barcode_set_error_correction_level(handle.get(), c.level);
    barcode_set_encode_mode(handle.get(), c.mode);
    barcode_set_version(handle.get(), c.version);
    EXPECT_EQ(qr.Encode(std::vector<uint8_t>(34, '9')).cols(), c.side) << c.level << " " << c.mode << " " << c.version;
  }
  // Alphanumeric and Kanji are kept as set (and carry bytes); an unknown mode is bytes.
  const std::pair<const char*, const char*> modes[] = {{"ALPHANUMERIC", "A"}, {"KANJI", "K"}, {"Z", "B"}, {"a", "A"}};
  for (const auto& [text, mode] : modes) {
    barcode_set_encode_mode(handle.get(), text);
    EXPECT_EQ(qr.GetEncodeMode(), mode) << text;
  }
  barcode_set_string_encoding(handle.get(), "Shift-JIS");
  EXPECT_EQ(qr.GetStringEncoding(), "Shift-JIS");

  // Null text and the settings of other 2D symbologies change nothing.
  barcode_set_string_encoding(handle.get(), nullptr);
  barcode_set_error_correction_level(handle.get(), nullptr);
  barcode_set_encode_mode(handle.get(), nullptr);
  barcode_set_code_size(handle.get(), "10x10");
  barcode_set_encode_scheme(handle.get(), "C40");
  barcode_set_error_level(handle.get(), 3);
  barcode_set_rows(handle.get(), 4);
  EXPECT_EQ(qr.GetStringEncoding(), "Shift-JIS");
  EXPECT_EQ(qr.GetErrorCorrectionLevel(), QRErrorCorrectionLevel::M);
  EXPECT_EQ(qr.GetEncodeMode(), "A");
  EXPECT_TRUE(qr.Encode({}).empty());
}

// ---- Geometry, from the finder pattern every symbol starts with ----
// Row 0 of any QR Code: modules 0-6 dark (finder), 7 light (separator), ..., and the
// top-right finder's modules side-7 .. side-1 dark. "HELLO" is version 1 (21 modules).

TEST(QrRaster, ModuleEdgesFromTheBox) {
  // Each row: box, fit_width, px_adjust_black, then probes of row 0 (or column 0) as x, y, dark.
  const std::vector<std::tuple<const char*, int, int, bool, int, std::vector<std::array<int, 3>>>> cases = {
      {"whole 4 px modules", 100, 100, false, 0, {{27, 0, 1}, {28, 0, 0}, {84, 0, 0}, {0, 84, 0}}},
      // Edge 14 is at 66.67 px: rounded to 67, so pixel 66 still belongs to light module 13.
      {"fit_width: 100/21 px", 100, 100, true, 0, {{33, 0, 0}, {66, 0, 0}, {67, 0, 1}, {99, 0, 1}, {99, 33, 0}}},
      {"120 x 60", 120, 60, false, 0, {{34, 0, 1}, {35, 0, 0}, {104, 0, 1}, {105, 0, 0}, {0, 13, 1}, {0, 14, 0}}},
      {"box below the side: 1 px modules", 10, 10, false, 0, {{6, 0, 1}, {7, 0, 0}}},
      {"adjust -1 leaves a gap", 100, 100, false, -1, {{2, 0, 1}, {3, 0, 0}, {4, 0, 1}, {27, 0, 0}}},
      {"adjust +1 grows into the next", 100, 100, false, 1, {{28, 0, 1}, {29, 0, 0}}},
      {"adjust -1 on 1 px modules paints nothing", 10, 10, false, -1, {{0, 0, 0}}},
  };
  for (const auto& [name, width, height, fit, adjust, probes] : cases) {
    Handle handle = QrHandle();
    barcode_set_foreground_color(handle.get(), 200, 20, 10, 255);
    barcode_set_background_color(handle.get(), 10, 30, 220, 255);
    barcode_set_fit_width(handle.get(), fit ? 1 : 0);
    barcode_set_px_adjust_black(handle.get(), adjust);
    ASSERT_EQ(barcode_draw_2d_rect(handle.get(), "HELLO", width, height), 1) << name;
    const RgbaImage drawn = testing::DecodePng(Png(handle.get()));
    ASSERT_TRUE(drawn.width == width && drawn.height == height) << name;
    for (const auto& [x, y, dark] : probes) {
      EXPECT_EQ(drawn.Pixel(x, y), dark != 0 ? 0xC8140AFFU : 0x0A1EDCFFU) << name << " at " << x << "," << y;
    }
  }
}

TEST(QrRaster, EmptyPayloadIsABlankBoxOrNoDocument) {
  Handle handle = QrHandle();
  ASSERT_EQ(barcode_draw_2d(handle.get(), "", 40), 1);
  const RgbaImage blank = testing::DecodePng(Png(handle.get()));
  ASSERT_EQ(blank.width, 40);
  for (size_t i = 0; i < blank.pixels.size(); ++i) ASSERT_EQ(blank.pixels[i], 255) << i;
  barcode_set_output_format(handle.get(), "SVG");  // SVG starts no document
  EXPECT_EQ(barcode_draw_2d(handle.get(), "", 100), 0);
  EXPECT_STREQ(barcode_get_svg(handle.get()), "");
}

// Exact fractions, two decimals: module (col, row) spans width * col / side onwards.
TEST(QrSvg, ExactFractionEdges) {
  // The expected rects: the background and the first two dark modules of row 0.
  const std::tuple<int, int, int, bool, const char*> cases[] = {
      {100, 100, 0, false,
       "<rect x=\"0.00\" y=\"0.00\" width=\"100.00\" height=\"100.00\" fill=\"rgb(255,255,255)\"/>\n"
       "  <rect x=\"0.00\" y=\"0.00\" width=\"4.76\" height=\"4.76\" fill=\"rgb(1,2,3)\"/>\n"
       "  <rect x=\"4.76\" y=\"0.00\" width=\"4.76\" height=\"4.76\" fill=\"rgb(1,2,3)\"/>\n"},
      {300, 150, -1, true,  // fit_width changes nothing in SVG
       "<rect x=\"0.00\" y=\"0.00\" width=\"300.00\" height=\"150.00\" fill=\"rgb(255,255,255)\"/>\n"
       "  <rect x=\"0.00\" y=\"0.00\" width=\"13.29\" height=\"6.14\" fill=\"rgb(1,2,3)\"/>\n"
       "  <rect x=\"14.29\" y=\"0.00\" width=\"13.29\" height=\"6.14\" fill=\"rgb(1,2,3)\"/>\n"},
  };
  for (const auto& [width, height, adjust, fit, first_rects] : cases) {
    Handle handle = QrHandle();
    barcode_set_output_format(handle.get(), "svg");
    barcode_set_px_adjust_black(handle.get(), adjust);
    barcode_set_fit_width(handle.get(), fit ? 1 : 0);
    barcode_set_foreground_color(handle.get(), 1, 2, 3, 255);
    ASSERT_EQ(barcode_draw_2d_rect(handle.get(), "HELLO", width, height), 1);
    const std::string svg = barcode_get_svg(handle.get());
    EXPECT_NE(svg.find(first_rects), std::string::npos) << svg.substr(0, 600);
  }
}

}  // namespace
}  // namespace barcode_orv
