// Guards the layout rules every linear symbology shares, on values worked out by hand from
// the rules: the text-height bands and their edges, bar height under one or two text lines,
// bars widened or thinned by the pixel adjustments, the even spacing
// of the text, the guard and add-on rows, and the font search order.
#include <gtest/gtest.h>

#include <limits>
#include <mutex>
#include <string>
#include <tuple>

#include "linear/font_library.h"
#include "linear/linear_layout.h"

namespace barcode_orv {
namespace {

TEST(LinearLayoutTest, TextHeightFollowsBoxHeightBands) {
  const std::tuple<int, float, int> cases[] = {
      {20, 1.0F, 8}, {49, 1.0F, 12}, {50, 1.0F, 10}, {200, 1.0F, 40}, {201, 1.0F, 30}, {100, 2.0F, 40},
  };
  for (const auto& [height, scale, expected] : cases) {
    EXPECT_EQ(TextHeightFor(height, scale), expected) << "height " << height << " scale " << scale;
  }
}

TEST(LinearLayoutTest, AbsurdScalesSaturateInsteadOfOverflowing) {
  EXPECT_EQ(TextHeightFor(100, std::numeric_limits<float>::infinity()), 2147483647);
  EXPECT_EQ(TextHeightFor(100, std::numeric_limits<float>::quiet_NaN()), 8);
  EXPECT_EQ(TextGapFor(100, -std::numeric_limits<float>::infinity()), 2);
  EXPECT_EQ(BarHeightFor(100, true, std::numeric_limits<float>::infinity(), 1.0F, 1), 1.0F);
}

TEST(LinearLayoutTest, BarHeightLeavesRoomForText) {
  const std::tuple<int, float, int, float> cases[] = {
      {40, 1.0F, 1, 28.0F},    // T 10, G max(1, 2) = 2
      {300, 1.0F, 1, 234.0F},  // T 45, G 21
      {100, 1.0F, 2, 15.0F},   // two lines reserve four text heights
      {10, 1.0F, 1, 1.0F},     // clamped to one pixel
      {100, 3.0F, 1, 65.0F},   // G 15
  };
  for (const auto& [height, gap_scale, lines, expected] : cases) {
    EXPECT_FLOAT_EQ(BarHeightFor(height, true, 1.0F, gap_scale, lines), expected) << "height " << height;
  }
}

// Whole pixels (4 in the SVG test's box), never below one.
TEST(LinearLayoutTest, ModuleWidthIsAtLeastOnePixel) {
  EXPECT_FLOAT_EQ(ModuleWidthFor(30, 47, false), 1.0F);  // narrower than the symbol
  EXPECT_FLOAT_EQ(ModuleWidthFor(100, 0, false), 1.0F);
}

TEST(LinearLayoutTest, BarsAdvanceByAdjustedWidths) {
  const std::vector<int32_t> widths = {1, 3, 1, 1, 3};
  const BarLayout plain = LayOutBars(widths, 10.0F, 2.0F, 0, 0);
  ASSERT_EQ(plain.bars.size(), 3U);
  EXPECT_FLOAT_EQ(plain.bars[0].x, 10.0F);
  EXPECT_FLOAT_EQ(plain.bars[1].x, 18.0F);
  EXPECT_FLOAT_EQ(plain.bars[2].x, 22.0F);
  EXPECT_FLOAT_EQ(plain.bars[2].width, 6.0F);
  EXPECT_EQ(plain.drawn_width, 18);

  // A widened bar pushes everything after it; thinned bars stay one pixel wide.
  const BarLayout black = LayOutBars(widths, 0.0F, 2.0F, 1, 0);
  EXPECT_FLOAT_EQ(black.bars[1].x, 9.0F);
  EXPECT_EQ(black.drawn_width, 21);
  const BarLayout thin = LayOutBars(widths, 0.0F, 2.0F, -10, -10);
  for (const BarRect& bar : thin.bars) EXPECT_FLOAT_EQ(bar.width, 1.0F);
  EXPECT_EQ(thin.drawn_width, 5);

  // Below one pixel a module is still drawn one pixel wide.
  const BarLayout tiny = LayOutBars({1, 1, 1}, 0.0F, 0.25F, 0, 0);
  EXPECT_EQ(tiny.drawn_width, 3);
}

TEST(LinearLayoutTest, EvenSpacingCentresTheRunOnTheBars) {
  const std::tuple<int, int, size_t, int, int> cases[] = {
      {150, 100, 13, 11, 9},    // margin 7, usable 136
      {188, 80, 3, 85, 9},      // margin 9, usable 170
      {300, 100, 1, 270, 150},  // one character: centred
      {50, 100, 40, 10, -170},  // pitch raised to half the font size
  };
  for (const auto& [width, height, chars, pitch, first_center] : cases) {
    const TextSpacing spacing = EvenTextSpacing(width, height, chars, 1.0F, 1.0F);
    EXPECT_EQ(spacing.pitch, pitch) << "width " << width;
    EXPECT_EQ(spacing.first_center, first_center) << "width " << width;
  }
}

TEST(LinearLayoutTest, RowsForGuardsAddOnsAndTwoLines) {
  // Box 100: T 20, G 5, bars 75; a font capped at 10 moves the guards' end (halfway down
  // the digits) and the add-on's top with it.
  const RowGeometry capped = LinearRows(100, true, 1.0F, 1.0F, 1, true, true, 10);
  EXPECT_EQ(capped.font_size, 10);
  EXPECT_FLOAT_EQ(capped.guard_height, 95.0F);
  EXPECT_FLOAT_EQ(capped.add_on_top, 15.0F);
  const RowGeometry plain = LinearRows(100, true, 1.0F, 1.0F, 1, false, true);
  EXPECT_FLOAT_EQ(plain.guard_height, 75.0F);
  EXPECT_FLOAT_EQ(plain.add_on_bottom, 75.0F);
  const RowGeometry no_text = LinearRows(100, false, 1.0F, 1.0F, 1, true, true);
  EXPECT_FLOAT_EQ(no_text.guard_height, 100.0F);
  EXPECT_FLOAT_EQ(no_text.add_on_top, 0.0F);
}

TEST(LinearLayoutTest, ModulePositionsFollowAdjustedBars) {
  // Bars 2 px a module from x = 10 after 3 lead modules; the first bar is 1 px wider.
  const std::vector<int32_t> widths = {1, 2, 1};
  const BarLayout layout = LayOutBars(widths, 16.0F, 2.0F, 1, 0);
  EXPECT_FLOAT_EQ(ModuleToPixel(widths, layout, 10.0F, 2.0F, 3, 1.5F), 13.0F);  // in the lead
  EXPECT_FLOAT_EQ(ModuleToPixel(widths, layout, 10.0F, 2.0F, 3, 3.5F), 17.5F);  // inside the wide bar
  EXPECT_FLOAT_EQ(ModuleToPixel(widths, layout, 10.0F, 2.0F, 3, 5.0F), 21.0F);  // middle of the space
  EXPECT_FLOAT_EQ(ModuleToPixel(widths, layout, 10.0F, 2.0F, 3, 8.0F), 28.0F);  // after the last bar
}

TEST(FontSearchTest, CandidatesComeInTheFixedOrder) {
  const std::vector<std::string> with_module = font::FontCandidates("/opt/host");
  ASSERT_GE(with_module.size(), 3U);
  EXPECT_EQ(with_module[0], "/opt/host/fonts/Roboto-Regular.ttf");
  EXPECT_EQ(with_module[2], "./assets/fonts/Roboto-Regular.ttf");
  EXPECT_EQ(font::FontCandidates(""), std::vector<std::string>(with_module.begin() + 1, with_module.end()));
  // The build puts the font beside its programs.
  EXPECT_EQ(font::FindFontPath(""), font::GetExecutablePath() + "/assets/fonts/Roboto-Regular.ttf");
  EXPECT_EQ(font::FindFontPath("/nonexistent"), font::FindFontPath(""));
}

// A cached glyph's clip rectangle is its ink, tightly: every pixel outside it is clear
// (blending skips them) and each of its four edges touches a covered pixel.
TEST(FontSearchTest, CachedGlyphsAreClippedToTheirInk) {
  ASSERT_TRUE(font::HoldTtf());
  const std::lock_guard<std::mutex> lock(font::Mutex());
  for (const int points : {9, 17, 40}) {
    ASSERT_NE(font::SizedFont(font::FindFontPath(""), points), nullptr);
    for (const char character : std::string("0147AMgjy(|_ .")) {
      const SharedSurface glyph = font::RenderCharacter(points, character, SDL_Color{10, 20, 30, 255});
      ASSERT_NE(glyph, nullptr);
      const SDL_Rect ink = glyph->clip_rect;
      const auto alpha = [&glyph](int x, int y) {
        return static_cast<const uint32_t*>(glyph->pixels)[y * glyph->pitch / 4 + x] & glyph->format->Amask;
      };
      bool left = false;
      bool right = false;
      bool top = false;
      bool bottom = false;
      for (int y = 0; y < glyph->h; ++y) {
        for (int x = 0; x < glyph->w; ++x) {
          const bool inside = x >= ink.x && x < ink.x + ink.w && y >= ink.y && y < ink.y + ink.h;
          if (!inside) {
            EXPECT_EQ(alpha(x, y), 0U) << character << " at " << x << ", " << y;
            continue;
          }
          if (alpha(x, y) == 0) continue;
          left |= x == ink.x;
          right |= x == ink.x + ink.w - 1;
          top |= y == ink.y;
          bottom |= y == ink.y + ink.h - 1;
        }
      }
      const bool blank = character == ' ';
      EXPECT_EQ(blank, ink.w == 0 || ink.h == 0) << character;
      if (!blank) {
        EXPECT_TRUE(left && right && top && bottom) << character << " at " << points;
      }
    }
  }
}

}  // namespace
}  // namespace barcode_orv
