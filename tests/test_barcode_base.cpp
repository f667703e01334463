// Guards the root class: base64 against the RFC 4648 vectors, the fallback image, PNG
// encoding that keeps every pixel at every palette depth (read back by SDL_image), the
// output-format rules, and painting into a caller's renderer.
#include <gtest/gtest.h>

#include <SDL.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <tuple>

#include "core/barcode_base.h"
#include "core/fixed_format.h"
#include "core/pixel_blend.h"
#include "core/png_encoder.h"
#include "core/sdl_handles.h"
#include "linear/code39.h"
#include "support/png_image.h"
#include "twod/qr.h"

namespace barcode_orv {
namespace {

std::string Base64(const std::string& bytes) {
  return BarcodeBase::Base64Encode(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

TEST(Base64Test, MatchesRfc4648Vectors) {
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},        {"f", "Zg=="},          {"fo", "Zm8="},
      {"foo", "Zm9v"}, {"foobar", "Zm9vYmFy"}, {std::string("\xFB\xFF\x00", 3), "+/8A"},
  };
  for (const auto& [input, expected] : cases) EXPECT_EQ(Base64(input), expected);
}

// A PNG whose header says 1 x 1: signature, IHDR length and type, width 1, height 1.
TEST(FallbackImageTest, IsAOnePixelPngDataUri) {
  const std::string uri = BarcodeBase::GetFallbackImage();
  EXPECT_EQ(uri.size(), 114U);
  EXPECT_EQ(
      uri.rfind("data:image/png;base64," + Base64(std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\1\0\0\0\1", 24)), 0),
      0U);
}

// The SVG number writer against std::to_chars: module edges as the painters compute them,
// ties at the second decimal, negatives that round to zero, and the values it hands to
// std::to_chars itself (zero, tiny, huge, not finite).
TEST(FixedFormatTest, SameBytesAsToChars) {
  std::vector<double> values = {0.0,    -0.0,  0.125,  0.375, -0.125, 2.5,      1.005, 0.005,  -0.005,
                                -0.001, 1e-30, 4.2e15, -9e18, 1e300,  HUGE_VAL, NAN,   1.0 / 3};
  std::mt19937 rng(5);
  for (int i = 0; i < 200000; ++i) {
    const float scale = std::array<float, 4>{1.0F, 100.0F, 1e4F, 1e7F}[static_cast<size_t>(i % 4)];
    values.push_back(static_cast<float>(rng()) / 4294967296.0F * scale - scale / 8);
    const float module = static_cast<float>(1 + rng() % 10000) / static_cast<float>(1 + rng() % 177);
    values.push_back(module * static_cast<float>(rng() % 200));
  }
  for (const double value : values) {
    char expected[400];
    const auto end = std::to_chars(expected, expected + sizeof expected, value, std::chars_format::fixed, 2).ptr;
    std::string actual;
    AppendFixed2(actual, value);
    ASSERT_EQ(actual, std::string(expected, end)) << value;
  }
}

// A surface whose pixels the test chooses.
SurfacePtr MakeSurface(int width, int height) {
  return SurfacePtr(SDL_CreateRGBSurfaceWithFormat(0, width, height, 32, SDL_PIXELFORMAT_ABGR8888));
}

void ExpectSamePixels(SDL_Surface* surface, const std::vector<uint8_t>& png) {
  const testing::RgbaImage image = testing::DecodePng(png);
  ASSERT_EQ(image.width, surface->w);
  ASSERT_EQ(image.height, surface->h);
  for (int y = 0; y < surface->h; ++y) {
    const auto* row = static_cast<const uint8_t*>(surface->pixels) + static_cast<ptrdiff_t>(y) * surface->pitch;
    ASSERT_EQ(0, std::memcmp(row, &image.pixels[static_cast<size_t>(y) * surface->w * 4],
                             static_cast<size_t>(surface->w) * 4))
        << "row " << y;
  }
}

// Up to 256 colours: a palette PNG (colour type 3) at the smallest bit depth; more: RGBA (6).
TEST(PngEncoderTest, PaletteImagesKeepEveryPixelAtEachBitDepth) {
  // repeat_every 1: every row repeats the first, as bars without text give them.
  const std::tuple<int, bool, int, int> cases[] = {
      {1, false, 1, 4},  {2, false, 1, 4},  {2, false, 1, 1}, {2, true, 1, 4},   {3, false, 2, 4},
      {4, true, 2, 4},   {5, false, 4, 4},  {16, true, 4, 4}, {17, false, 8, 4}, {17, false, 8, 1},
      {200, true, 8, 4}, {256, true, 8, 4}, {257, true, 8, 4}};
  PngEncoder encoder;  // one for every case: its zlib stream is reset between pictures
  for (const auto& [colours, translucent, bit_depth, repeat_every] : cases) {
    // An odd width, so packed rows end in a partial byte; runs, scattered pixels and
    // repeated rows, as bars, modules and text give them.
    SurfacePtr surface = MakeSurface(61, 23);
    std::mt19937 rng(static_cast<unsigned>(colours));
    std::vector<uint32_t> palette(static_cast<size_t>(colours));
    for (auto& colour : palette) colour = translucent ? rng() : (rng() | 0xFF000000U);
    auto* pixels = static_cast<uint32_t*>(surface->pixels);
    for (int i = 0; i < 61 * 23; ++i) {
      const int row = i / 61;
      const bool repeats = row > 0 && row % repeat_every == repeat_every - 1;
      pixels[i] = repeats ? pixels[i - 61] : palette[(i / 3 + rng() % 2) % palette.size()];
    }
    for (size_t k = 0; k < palette.size(); ++k) pixels[k] = palette[k];  // every colour appears
    const std::vector<uint8_t> png = encoder.Encode(surface.get());
    ASSERT_GT(png.size(), 26U);
    EXPECT_EQ(png[25], colours > 256 ? 6 : 3) << colours << " colours";  // IHDR colour type
    EXPECT_EQ(png[24], bit_depth) << colours << " colours";              // IHDR bit depth
    ExpectSamePixels(surface.get(), png);
  }
}

// Rows longer than the checksum's 5,552-byte stretch between reductions, and a long
// repeated run between them.
TEST(PngEncoderTest, WideRowsKeepEveryPixel) {
  SurfacePtr surface = MakeSurface(6000, 40);
  std::mt19937 rng(7);
  auto* pixels = static_cast<uint32_t*>(surface->pixels);
  for (int i = 0; i < 6000 * 40; ++i) {
    const int row = i / 6000;
    pixels[i] = row > 0 && row < 39 ? pixels[i - 6000] : 0xFF000000U | (rng() % 200) * 0x010101U;
  }
  ExpectSamePixels(surface.get(), EncodeSurfacePng(surface.get()));
}

// A glyph blended by the library, against SDL_BlitSurface in blend mode: alphas over
// opaque and translucent canvases, placed inside, across each edge and off the canvas,
// whole or clipped to its covered part.
TEST(PixelBlendTest, SamePixelsAsSdlsBlit) {
  std::mt19937 rng(11);
  SurfacePtr glyph(SDL_CreateRGBSurfaceWithFormat(0, 23, 17, 32, SDL_PIXELFORMAT_ARGB8888));
  ASSERT_NE(glyph, nullptr);
  const std::pair<int, int> places[] = {{5, 4}, {-7, 3}, {50, -9}, {55, 30}, {-30, -30}, {70, 10}, {0, 0}};
  // A canvas without a column has no pixels at all: nothing is touched.
  SurfacePtr empty = MakeSurface(0, 40);
  BlendGlyph(glyph.get(), empty.get(), 2, 5);
  for (const bool opaque_canvas : {true, false}) {
    for (const auto& [left, top] : places) {
      auto* source = static_cast<uint32_t*>(glyph->pixels);
      // Clear stretches, as most of a glyph's box is, between random alphas.
      for (int i = 0; i < glyph->w * glyph->h; ++i) {
        source[i] = (i % 7 < 3 ? 0U : rng() % 256) << 24 | (rng() & 0xFFFFFFU);
      }
      // On the translucent canvas only the clip rectangle is covered, as in a cached glyph.
      const SDL_Rect ink = opaque_canvas ? SDL_Rect{0, 0, glyph->w, glyph->h} : SDL_Rect{3, 2, 13, 11};
      SDL_SetClipRect(glyph.get(), &ink);
      for (int i = 0; i < glyph->w * glyph->h; ++i) {
        const SDL_Point point{i % glyph->w, i / glyph->w};
        if (!SDL_PointInRect(&point, &ink)) source[i] &= 0xFFFFFFU;
      }
      SurfacePtr ours = MakeSurface(64, 40);
      auto* canvas = static_cast<uint32_t*>(ours->pixels);
      for (int i = 0; i < 64 * 40; ++i)
        canvas[i] = (opaque_canvas ? 0xFF000000U : rng() & 0xFF000000U) | (rng() & 0xFFFFFFU);
      SurfacePtr sdls(SDL_ConvertSurface(ours.get(), ours->format, 0));
      ASSERT_TRUE(CanBlendGlyph(glyph.get(), ours.get()));
      BlendGlyph(glyph.get(), ours.get(), left, top);
      SDL_SetSurfaceBlendMode(glyph.get(), SDL_BLENDMODE_BLEND);
      SDL_Rect target{left, top, glyph->w, glyph->h};
      ASSERT_EQ(SDL_BlitSurface(glyph.get(), nullptr, sdls.get(), &target), 0);
      EXPECT_EQ(0, std::memcmp(ours->pixels, sdls->pixels, 64 * 40 * 4)) << left << ", " << top;
    }
  }
}

// The painting calls of the root class, opened for the test.
class Painter : public BarcodeBase {
 public:
  Painter() : BarcodeBase("png") {}
  bool Draw(const std::string& text, int x, int y, int width, int height) override {
    return BarcodeBase::Draw(text, x, y, width, height);
  }
  using BarcodeBase::canvas_surface;
  using BarcodeBase::FillBars;
  using BarcodeBase::FillRectF;
};

// Bars of several heights, overlapping, fractional, across the edges and off the canvas:
// filled band by band, the same pixels as one FillRectF each.
TEST(FillBarsTest, SamePixelsAsEachBarFilled) {
  std::mt19937 rng(3);
  const auto coordinate = [&rng](float low, float high) {
    return low + (high - low) * static_cast<float>(rng() % 10000) / 10000.0F;
  };
  for (int round = 0; round < 40; ++round) {
    std::vector<SDL_FRect> bars;
    const int heights = 1 + round % 4;  // one height (most symbols) up to four (guards, add-on)
    for (int i = 0; i < 30; ++i) {
      const float top =
          static_cast<float>(rng() % static_cast<unsigned>(heights)) * 7.5F - (round % 5 == 0 ? 20.0F : 0.0F);
      bars.push_back(SDL_FRect{coordinate(-10.0F, 125.0F), top, coordinate(0.0F, 6.0F), coordinate(0.0F, 90.0F)});
    }
    if (round % 7 == 0) bars.push_back(SDL_FRect{NAN, 3.0F, 4.0F, 40.0F});
    Painter banded;
    Painter each;
    ASSERT_TRUE(banded.Draw("", 0, 0, 120, 70));
    ASSERT_TRUE(each.Draw("", 0, 0, 120, 70));
    banded.FillBars(bars, SDL_Color{10, 20, 30, 255});
    for (const SDL_FRect& bar : bars) each.FillRectF(bar.x, bar.y, bar.w, bar.h, SDL_Color{10, 20, 30, 255});
    EXPECT_EQ(0, std::memcmp(banded.canvas_surface()->pixels, each.canvas_surface()->pixels, 120 * 70 * 4))
        << "round " << round;
  }
}

TEST(PngEncoderTest, EmptyCanvasGivesNoBytes) {
  for (const auto& [width, height] : {std::pair{0, 10}, std::pair{10, 0}, std::pair{0, 0}}) {
    SurfacePtr surface = MakeSurface(width, height);
    ASSERT_NE(surface, nullptr);
    EXPECT_TRUE(EncodeSurfacePng(surface.get()).empty()) << width << "x" << height;
  }
}

// The canvas is the box whatever the offset; jpg and jpeg only relabel the PNG's data URI;
// an unknown spelling draws nothing.
TEST(OutputFormatTest, RasterDrawsAndTheirDataUris) {
  const struct {
    const char* format;
    int x;
    int y;
    const char* uri;  // null: nothing drawn
  } cases[] = {{"png", 25, 7, "data:image/png;base64,iVBORw0KGgo"},
               {"jpg", 0, 0, "data:image/jpeg;base64,iVBORw0KGgo"},
               {"jpeg", -5, 40, "data:image/jpeg;base64,iVBORw0KGgo"},
               {"PNG", 0, 0, nullptr}};
  for (const auto& c : cases) {
    Code39 code(c.format);
    EXPECT_EQ(code.Draw("ABC", c.x, c.y, 300, 100), c.uri != nullptr) << c.format;
    if (c.uri == nullptr) {
      EXPECT_TRUE(code.GetImageMemory().empty());
      continue;
    }
    const testing::RgbaImage image = testing::DecodePng(code.GetImageMemory());
    EXPECT_TRUE(image.width == 300 && image.height == 100) << c.format;
    EXPECT_EQ(code.GetImageBase64().rfind(c.uri, 0), 0U) << c.format;
  }
}

TEST(OutputFormatTest, GetSvgOutsideSvgModeThrowsItsMessage) {
  Code39 code("png");
  try {
    (void)code.GetSvg();
    ADD_FAILURE();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "GetSvg() requires SVG output mode. Use constructor with \"svg\" parameter.");
  }
  Code39 svg("svg");
  EXPECT_THROW((void)svg.GetImageBase64(), std::runtime_error);
}

// A host that owns its renderer gets the symbol painted at the box it names.
TEST(CallerRendererTest, SymbolsPaintIntoTheCallersTarget) {
  SurfacePtr target = MakeSurface(400, 300);
  RendererPtr renderer(SDL_CreateSoftwareRenderer(target.get()));
  ASSERT_NE(renderer, nullptr);
  SDL_SetRenderDrawColor(renderer.get(), 200, 0, 0, 255);
  SDL_RenderClear(renderer.get());
  auto pixel = [&](int x, int y) { return static_cast<const uint32_t*>(target->pixels)[y * 400 + x]; };
  const uint32_t black = SDL_MapRGBA(target->format, 0, 0, 0, 255);
  const uint32_t white = SDL_MapRGBA(target->format, 255, 255, 255, 255);

  Code39 code(renderer.get());
  EXPECT_FALSE(code.IsRasterOutput());
  code.SetShowText(false);
  ASSERT_TRUE(code.Draw("0", 10, 20, 94, 40));  // 47 modules at 2 px, from (10, 20)
  EXPECT_EQ(pixel(10, 20), black);
  EXPECT_EQ(pixel(10, 59), black);
  EXPECT_EQ(pixel(12, 20), white);             // the canvas was cleared to the background first
  EXPECT_TRUE(code.GetImageMemory().empty());  // nothing of the object's own

  QR qr(renderer.get());
  SDL_SetRenderDrawColor(renderer.get(), 200, 0, 0, 255);
  SDL_RenderClear(renderer.get());
  ASSERT_TRUE(qr.Draw(std::string("QR"), 100, 50, 42, 42));  // version 1: 21 modules at 2 px
  const uint32_t red = SDL_MapRGBA(target->format, 200, 0, 0, 255);
  EXPECT_EQ(pixel(99, 50), red);     // left of the box
  EXPECT_EQ(pixel(142, 50), red);    // right of the box
  EXPECT_EQ(pixel(100, 50), black);  // finder pattern: dark ring,
  EXPECT_EQ(pixel(102, 52), white);  // light ring,
  EXPECT_EQ(pixel(104, 54), black);  // dark centre
}

}  // namespace
}  // namespace barcode_orv
