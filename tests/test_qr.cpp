// QR Code through the class and the C interface: settings, raster and SVG geometry,
// the capacity exception, and round trips of real PNG output through ZXing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "api/ffi_internal.h"
#include "barcode_ffi.h"
#include "support/c_api.h"
#include "support/png_image.h"
#include "support/zxing_decode.h"
#include "twod/qr.h"

namespace barcode_orv {
namespace {

using qr_internal::ModuleMatrix;
using testing::RgbaImage;

using Handle = testing::HandlePtr;

Handle QrHandle() { return testing::MakeHandle(BARCODE_QR); }
QR& QrOf(const Handle& handle) { return dynamic_cast<QR&>(*handle->object); }

std::vector<uint8_t> Png(BarcodeHandle* handle) { return testing::ImageData(handle); }

std::vector<uint8_t> Bytes(const std::string& text) { return {text.begin(), text.end()}; }

// ---- Settings ----

TEST(QrSettings, ReachTheEncoder) {
  QR qr("png");
  const std::vector<uint8_t> hello = Bytes("HELLO");
  EXPECT_EQ(qr.Encode(hello).side(), 21);
  qr.SetVersion(5);
  EXPECT_EQ(qr.Encode(hello).side(), 37);
  qr.SetVersion(0);
  const std::vector<uint8_t> digits(34, '9');  // fills version 1-M as digits; version 3 as bytes
  qr.SetEncodeMode(QREncodeMode::Numeric);
  EXPECT_EQ(qr.Encode(digits).side(), 21);
  qr.SetEncodeMode(QREncodeMode::Byte);
  EXPECT_EQ(qr.Encode(digits).side(), 29);
  // An out-of-range level draws as M: the 34 bytes need version 4 at H.
  qr.SetErrorCorrectionLevel(QRErrorCorrectionLevel::H);
  EXPECT_EQ(qr.Encode(digits).side(), 33);
  qr.SetErrorCorrectionLevel(static_cast<QRErrorCorrectionLevel>(4));
  EXPECT_EQ(qr.Encode(digits).side(), 29);
  EXPECT_TRUE(qr.Encode({}).empty());
}

// The C keywords and the class's own validation, seen through the stored values.
TEST(QrCInterface, SettersTranslateAndValidate) {
  Handle handle = QrHandle();
  ASSERT_NE(handle, nullptr);
  QR& qr = QrOf(handle);
  EXPECT_EQ(qr.GetErrorCorrectionLevel(), QRErrorCorrectionLevel::M);
  EXPECT_EQ(qr.GetEncodeMode(), "B");
  using L = QRErrorCorrectionLevel;
  const std::pair<const char*, L> levels[] = {{"L", L::L},  {"H", L::H}, {"h", L::M}, {"Q", L::Q},
                                              {"LL", L::M}, {"L", L::L}, {"", L::M}};
  for (const auto& [text, level] : levels) {
    barcode_set_error_correction_level(handle.get(), text);
    EXPECT_EQ(qr.GetErrorCorrectionLevel(), level) << text;
  }
  const std::pair<const char*, const char*> modes[] = {{"NUMERIC", "N"}, {"AUTO", "B"},  {"ALPHANUMERIC", "A"},
                                                       {"BYTE", "B"},    {"KANJI", "K"}, {"n", "N"},
                                                       {"numeric", "B"}, {"k", "K"},     {"", "B"},
                                                       {"Z", "B"},       {"NB", "B"},    {"a", "A"}};
  for (const auto& [text, mode] : modes) {
    barcode_set_encode_mode(handle.get(), text);
    EXPECT_EQ(qr.GetEncodeMode(), mode) << text;
  }
  const std::pair<int, int> versions[] = {{7, 7}, {40, 40}, {-1, 0}, {12, 12}, {41, 0}, {INT32_MIN, 0}};
  for (const auto& [given, stored] : versions) {
    barcode_set_version(handle.get(), given);
    EXPECT_EQ(qr.GetVersion(), stored) << given;
  }
  const std::pair<QREncodeMode, const char*> typed[] = {{QREncodeMode::Numeric, "N"},
                                                        {QREncodeMode::Kanji, "K"},
                                                        {static_cast<QREncodeMode>(9), "B"},
                                                        {QREncodeMode::Alphanumeric, "A"}};
  for (const auto& [mode, stored] : typed) {
    qr.SetEncodeMode(mode);
    EXPECT_EQ(qr.GetEncodeMode(), stored);
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
}

TEST(QrCInterface, DrawFunctionsCheckTheHandle) {
  Handle code39(barcode_create(BARCODE_CODE39));
  ASSERT_NE(code39, nullptr);
  EXPECT_EQ(barcode_draw_2d(code39.get(), "ABC", 100), 0);
  EXPECT_EQ(barcode_draw_2d_rect(code39.get(), "ABC", 100, 100), 0);
  barcode_set_version(code39.get(), 3);  // ignored, no crash
  barcode_set_string_encoding(code39.get(), "shift-jis");

  Handle qr = QrHandle();
  EXPECT_EQ(barcode_draw_2d(qr.get(), nullptr, 100), 0);
  EXPECT_EQ(barcode_draw_2d_rect(qr.get(), nullptr, 100, 100), 0);
  EXPECT_EQ(barcode_draw_2d(nullptr, "x", 100), 0);
  barcode_set_output_format(qr.get(), "bmp");  // not a raster format: nothing to draw on
  EXPECT_EQ(barcode_draw_2d(qr.get(), "x", 100), 0);
}

TEST(QrCInterface, CapacityErrorLeavesEveryDrawFunction) {
  const std::string too_long(2954, 'x');
  const std::string fits(2953, 'x');
  for (const char* format : {"png", "svg"}) {
    Handle handle = QrHandle();
    barcode_set_output_format(handle.get(), format);
    barcode_set_error_correction_level(handle.get(), "L");
    EXPECT_EQ(barcode_draw_2d(handle.get(), fits.c_str(), 400), 1) << format;
    try {
      barcode_draw_2d(handle.get(), too_long.c_str(), 400);
      ADD_FAILURE() << "barcode_draw_2d did not throw for " << format;
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(),
                   "Data too long for QR Code. Data requires more capacity than Version 40 can provide. "
                   "Reduce data length or use a lower error correction level.");
    }
    EXPECT_THROW(barcode_draw_2d_rect(handle.get(), too_long.c_str(), 400, 300), std::runtime_error) << format;
    EXPECT_THROW(barcode_draw_1d(handle.get(), too_long.c_str(), 400, 300), std::runtime_error) << format;
  }
}

// ---- Raster geometry ----

// The expected canvas: background, then every dark module as the rectangle between its
// edges, grown by `adjust` on the right and bottom, skipped below one pixel.
RgbaImage Paint(const ModuleMatrix& matrix, int width, int height, const std::vector<int>& cols,
                const std::vector<int>& rows, int adjust, SDL_Color fore, SDL_Color back) {
  RgbaImage image;
  image.width = width;
  image.height = height;
  image.pixels.resize(static_cast<size_t>(width) * height * 4);
  auto fill = [&](int x0, int y0, int x1, int y1, SDL_Color color) {
    for (int y = std::max(y0, 0); y < std::min(y1, height); ++y) {
      for (int x = std::max(x0, 0); x < std::min(x1, width); ++x) {
        std::memcpy(&image.pixels[(static_cast<size_t>(y) * width + x) * 4], &color, 4);
      }
    }
  };
  fill(0, 0, width, height, back);
  for (int r = 0; r < matrix.side(); ++r) {
    for (int c = 0; c < matrix.side(); ++c) {
      const int w = cols[c + 1] - cols[c] + adjust;
      const int h = rows[r + 1] - rows[r] + adjust;
      if (matrix.dark(c, r) && w >= 1 && h >= 1) fill(cols[c], rows[r], cols[c] + w, rows[r] + h, fore);
    }
  }
  return image;
}

std::vector<int> WholeEdges(int module, int count) {
  std::vector<int> edges;
  for (int i = 0; i <= count; ++i) edges.push_back(i * module);
  return edges;
}

std::vector<int> FittedEdges(int extent, int count) {
  std::vector<int> edges;
  for (int i = 0; i <= count; ++i) edges.push_back(static_cast<int>(std::lround(extent * i / double(count))));
  return edges;
}

// Index of the first differing pixel, or -1.
long FirstDifference(const RgbaImage& a, const RgbaImage& b) {
  if (a.width != b.width || a.height != b.height) return 0;
  for (size_t i = 0; i < a.pixels.size(); i += 4) {
    if (std::memcmp(&a.pixels[i], &b.pixels[i], 4) != 0) return static_cast<long>(i / 4);
  }
  return -1;
}

TEST(QrRaster, ModuleGeometry) {
  struct Case {
    const char* name;
    int width;
    int height;
    bool fit;
    int adjust;
    std::vector<int> cols;  // expected edges of the 21 columns and rows of "HELLO"
    std::vector<int> rows;
  };
  const std::vector<Case> cases = {
      {"whole 4 px modules, 84 x 84 at the top-left", 100, 100, false, 0, WholeEdges(4, 21), WholeEdges(4, 21)},
      {"fit_width: 4.76 px modules rounded per edge", 100, 100, true, 0, FittedEdges(100, 21), FittedEdges(100, 21)},
      {"width and height independent", 120, 60, false, 0, WholeEdges(5, 21), WholeEdges(2, 21)},
      {"fit_width, rectangular", 250, 90, true, 0, FittedEdges(250, 21), FittedEdges(90, 21)},
      {"box below the matrix side: 1 px modules run past it", 10, 10, false, 0, WholeEdges(1, 21), WholeEdges(1, 21)},
      {"px_adjust_black -1 shrinks dark modules", 100, 100, false, -1, WholeEdges(4, 21), WholeEdges(4, 21)},
      {"px_adjust_black +1 grows dark modules", 100, 100, false, 1, WholeEdges(4, 21), WholeEdges(4, 21)},
      {"px_adjust_black -1 on 1 px modules paints nothing", 10, 10, false, -1, WholeEdges(1, 21), WholeEdges(1, 21)},
      {"fit_width with px_adjust_black -1", 100, 100, true, -1, FittedEdges(100, 21), FittedEdges(100, 21)},
  };
  const SDL_Color fore{200, 20, 10, 255};
  const SDL_Color back{10, 30, 220, 255};
  for (const Case& c : cases) {
    Handle handle = QrHandle();
    barcode_set_foreground_color(handle.get(), fore.r, fore.g, fore.b, fore.a);
    barcode_set_background_color(handle.get(), back.r, back.g, back.b, back.a);
    barcode_set_fit_width(handle.get(), c.fit ? 1 : 0);
    barcode_set_px_adjust_black(handle.get(), c.adjust);
    ASSERT_EQ(barcode_draw_2d_rect(handle.get(), "HELLO", c.width, c.height), 1) << c.name;
    const RgbaImage drawn = testing::DecodePng(Png(handle.get()));
    const ModuleMatrix matrix = QrOf(handle).Encode(Bytes("HELLO"));
    ASSERT_EQ(matrix.side(), 21);
    const RgbaImage expected = Paint(matrix, c.width, c.height, c.cols, c.rows, c.adjust, fore, back);
    const long diff = FirstDifference(drawn, expected);
    EXPECT_EQ(diff, -1) << c.name << ": pixel (" << diff % c.width << ", " << diff / c.width << ")";
  }
}

TEST(QrRaster, EmptyPayloadIsABlankBoxAndOriginIsIgnored) {
  Handle handle = QrHandle();
  ASSERT_EQ(barcode_draw_2d(handle.get(), "", 40), 1);
  const RgbaImage blank = testing::DecodePng(Png(handle.get()));
  ASSERT_EQ(blank.width, 40);
  for (size_t i = 0; i < blank.pixels.size(); ++i) ASSERT_EQ(blank.pixels[i], 255) << i;

  // The canvas is the box: x and y do not move the symbol.
  QR qr("png");
  ASSERT_TRUE(qr.Draw(Bytes("offset"), 0, 0, 63, 63));
  const std::vector<uint8_t> at_origin = qr.GetImageMemory();
  ASSERT_TRUE(qr.Draw(Bytes("offset"), 7, 9, 63, 63));
  EXPECT_EQ(qr.GetImageMemory(), at_origin);
}

// ---- SVG geometry ----

// The value of attribute `name` in the tag text `tag`.
std::string Attribute(const std::string& tag, const std::string& name) {
  const std::string key = " " + name + "=\"";
  const size_t start = tag.find(key);
  if (start == std::string::npos) return "?";
  const size_t value = start + key.size();
  return tag.substr(value, tag.find('"', value) - value);
}

// Every rectangle of the document as "x y width height fill", in document order.
std::vector<std::string> ParseRects(const std::string& svg) {
  std::vector<std::string> rects;
  for (size_t at = svg.find("<rect "); at != std::string::npos; at = svg.find("<rect ", at + 1)) {
    const std::string tag = svg.substr(at, svg.find('>', at) - at);
    rects.push_back(Attribute(tag, "x") + " " + Attribute(tag, "y") + " " + Attribute(tag, "width") + " " +
                    Attribute(tag, "height") + " " + Attribute(tag, "fill"));
  }
  return rects;
}

std::string Fixed(double value) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.2f", value);
  return buffer;
}

TEST(QrSvg, ExactFractionEdgesRowByRow) {
  struct Case {
    const char* name;
    int width;
    int height;
    int adjust;
    bool fit;
  };
  const Case cases[] = {
      {"square", 100, 100, 0, false},
      {"rectangular with px_adjust_black -1", 300, 150, -1, false},
      {"fit_width has no effect", 100, 100, 0, true},
      {"box smaller than the matrix", 10, 10, 2, false},
  };
  for (const Case& c : cases) {
    Handle handle = QrHandle();
    barcode_set_output_format(handle.get(), "svg");
    barcode_set_px_adjust_black(handle.get(), c.adjust);
    barcode_set_fit_width(handle.get(), c.fit ? 1 : 0);
    barcode_set_foreground_color(handle.get(), 1, 2, 3, 255);
    ASSERT_EQ(barcode_draw_2d_rect(handle.get(), "HELLO", c.width, c.height), 1) << c.name;
    const std::string svg = barcode_get_svg(handle.get());
    EXPECT_NE(svg.find("width=\"" + std::to_string(c.width) + "\" height=\"" + std::to_string(c.height) + "\""),
              std::string::npos)
        << c.name;

    const ModuleMatrix matrix = QrOf(handle).Encode(Bytes("HELLO"));
    const int n = matrix.side();
    std::vector<std::string> expected = {"0.00 0.00 " + Fixed(c.width) + " " + Fixed(c.height) + " rgb(255,255,255)"};
    for (int r = 0; r < n; ++r) {
      for (int col = 0; col < n; ++col) {
        if (!matrix.dark(col, r)) continue;
        const double x0 = double(c.width) * col / n, x1 = double(c.width) * (col + 1) / n;
        const double y0 = double(c.height) * r / n, y1 = double(c.height) * (r + 1) / n;
        expected.push_back(Fixed(x0) + " " + Fixed(y0) + " " + Fixed(x1 - x0 + c.adjust) + " " +
                           Fixed(y1 - y0 + c.adjust) + " rgb(1,2,3)");
      }
    }
    EXPECT_EQ(ParseRects(svg), expected) << c.name;
  }
}

TEST(QrSvg, EmptyPayloadStartsNoDocument) {
  Handle handle = QrHandle();
  barcode_set_output_format(handle.get(), "SVG");
  EXPECT_EQ(barcode_draw_2d(handle.get(), "", 100), 0);
  EXPECT_STREQ(barcode_get_svg(handle.get()), "");
}

// ---- Round trips of real PNG output ----

TEST(QrPngRoundTrip, TextEncodingsLevelsAndSizes) {
  const std::string kana = "\xE3\x81\x93\xE3\x82\x93\xE3\x81\xAB\xE3\x81\xA1\xE3\x81\xAF, QR";  // こんにちは, QR
  const std::string kana_sjis = "\x82\xB1\x82\xF1\x82\xC9\x82\xBF\x82\xCD, QR";
  std::string thousand;
  for (int i = 0; i < 1000; ++i) thousand += static_cast<char>('!' + i % 90);
  struct Case {
    const char* name;
    std::string text;
    const char* encoding;  // null: the default
    const char* level;
    const char* mode;
    int version;
    int size;
    bool fit;
    const char* format;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {"UTF-8 text as UTF-8", kana, nullptr, "M", "BYTE", 0, 200, false, "png", kana},
      {"UTF-8 text carried as Shift_JIS", kana, "shift_jis", "Q", "AUTO", 0, 200, false, "png", kana_sjis},
      {"Shift_JIS text carried as UTF-8", kana_sjis, "UTF-8", "H", "KANJI", 0, 200, false, "png", kana},
      {"numeric, H, version 10 requested", "31415926535897932384626433832795028841971", nullptr, "H", "NUMERIC", 10,
       300, false, "png", "31415926535897932384626433832795028841971"},
      {"1000 bytes at L in 600 x 600", thousand, nullptr, "L", "B", 0, 600, false, "png", thousand},
      {"fit_width into an odd box", "https://example.com/fit", nullptr, "M", "B", 0, 251, true, "jpg",
       "https://example.com/fit"},
  };
  for (const Case& c : cases) {
    Handle handle = QrHandle();
    if (c.encoding != nullptr) barcode_set_string_encoding(handle.get(), c.encoding);
    barcode_set_error_correction_level(handle.get(), c.level);
    barcode_set_encode_mode(handle.get(), c.mode);
    barcode_set_version(handle.get(), c.version);
    barcode_set_fit_width(handle.get(), c.fit ? 1 : 0);
    barcode_set_output_format(handle.get(), c.format);
    ASSERT_EQ(barcode_draw_2d(handle.get(), c.text.c_str(), c.size), 1) << c.name;
    const std::vector<uint8_t> png = Png(handle.get());
    const RgbaImage image = testing::DecodePng(png);
    EXPECT_TRUE(image.width == c.size && image.height == c.size) << c.name;
    const testing::Decoded decoded = testing::DecodePngBarcode(png, testing::Symbology::kQRCode);
    ASSERT_TRUE(decoded.ok) << c.name;
    EXPECT_EQ(decoded.bytes, c.expected) << c.name;
  }
}

TEST(QrPngRoundTrip, DrawOneDOnAQrHandleReachesQr) {
  Handle handle = QrHandle();
  ASSERT_EQ(barcode_draw_1d(handle.get(), "through draw_1d", 150, 120), 1);
  const std::vector<uint8_t> png = Png(handle.get());
  EXPECT_EQ(testing::DecodePng(png).height, 120);
  EXPECT_EQ(testing::DecodePngBarcode(png, testing::Symbology::kQRCode).bytes, "through draw_1d");
}

}  // namespace
}  // namespace barcode_orv
