#include "linear/yubin_customer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "core/log.h"
#include "core/saturate.h"

namespace barcode_orv {
namespace {

constexpr std::string_view kAsc = "0123456789-ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::array<const char*, 10> kPtnN = {"144", "114", "132", "312", "123", "141", "321", "213", "231", "411"};
constexpr const char* kPtnHi = "414";
constexpr std::array<const char*, 8> kPtnC = {"324", "342", "234", "432", "243", "423", "441", "111"};
constexpr const char* kPtnStart = "13";
constexpr const char* kPtnStop = "31";
constexpr int kPositions = 20;
constexpr int kBarsPerPosition = 3;
constexpr const char* kLogPrefix = "[YubinCustomer] ";

std::string PatternOf(int code) {
  if (code >= 0 && code <= 9) return kPtnN[static_cast<size_t>(code)];
  if (code == 10) return kPtnHi;
  if (code >= 11 && code <= 20) return std::string(kPtnC[0]) + kPtnN[static_cast<size_t>(code - 11)];
  if (code >= 21 && code <= 30) return std::string(kPtnC[1]) + kPtnN[static_cast<size_t>(code - 21)];
  if (code >= 31 && code <= 36) return std::string(kPtnC[2]) + kPtnN[static_cast<size_t>(code - 31)];
  return "";
}

std::string CheckPatternOf(int value) {
  if (value >= 0 && value <= 9) return kPtnN[static_cast<size_t>(value)];
  if (value == 10) return kPtnHi;
  if (value >= 11 && value <= 18) return kPtnC[static_cast<size_t>(value - 11)];
  return "";
}

int CheckValueOf(std::string_view group) {
  for (int value = 0; value <= 18; ++value) {
    if (group == CheckPatternOf(value)) return value;
  }
  return -1;
}

// trunc(67 p + h/6 + 1) with p = h/3, in float, as the published layout computes it.
int64_t BarsWidth(int h) {
  const auto height = static_cast<float>(h);
  return TruncateToInt(static_cast<double>(67.0F * (height / 3.0F) + height / 6.0F + 1.0F));
}

}  // namespace

namespace internal {

YubinBars EncodeYubin(const std::string& data) {
  YubinBars out;
  out.bars = kPtnStart;
  std::string check_string;
  int positions = 0;
  for (size_t offset = 0; offset < data.size(); ++offset) {
    const char raw = data[offset];
    if (positions >= kPositions) {
      out.lost = "Address cut: the characters from offset " + std::to_string(offset) + " on do not fit the " +
                 std::to_string(kPositions) + " positions";
      break;
    }
    const char c = raw >= 'a' && raw <= 'z' ? static_cast<char>(raw - 'a' + 'A') : raw;
    const size_t code = kAsc.find(c);
    if (code == std::string_view::npos) {  // not encodable: skipped, as the symbol has always done
      if (out.lost.empty())
        out.lost = "Character at offset " + std::to_string(offset) + " skipped: not in 0-9, - or A-Z";
      continue;
    }
    const std::string pattern = PatternOf(static_cast<int>(code));
    if (positions == kPositions - 1 && pattern.size() == 2 * kBarsPerPosition) {
      // A letter on the twentieth position: its control code alone, always CC1.
      out.bars += kPtnC[0];
      check_string += kPtnC[0];
      positions = kPositions;
      out.lost = "Address cut: the letter at offset " + std::to_string(offset) +
                 " falls on the twentieth position and is drawn as CC1 alone";
      break;
    }
    out.bars += pattern;
    check_string += pattern;
    positions += static_cast<int>(pattern.size()) / kBarsPerPosition;
  }
  for (; positions < kPositions; ++positions) {
    out.bars += kPtnC[3];  // CC4 fills the rest
    check_string += kPtnC[3];
  }
  int sum = 0;
  for (size_t at = 0; at + kBarsPerPosition <= check_string.size(); at += kBarsPerPosition) {
    sum += std::max(0, CheckValueOf(std::string_view(check_string).substr(at, kBarsPerPosition)));
  }
  out.check = (19 - sum % 19) % 19;
  out.bars += CheckPatternOf(out.check);
  out.bars += kPtnStop;
  return out;
}

}  // namespace internal

YubinCustomer::YubinCustomer(std::string output_format) : BarcodeBase1D(std::move(output_format)) {}

YubinCustomer::YubinCustomer(SDL_Renderer* canvas) : BarcodeBase1D(canvas) {}

std::string YubinCustomer::GetPattern(int code) const { return PatternOf(code); }

std::string YubinCustomer::GetCheckPattern(int value) const { return CheckPatternOf(value); }

int YubinCustomer::PatternToCheckValue(const std::string& pattern) const { return CheckValueOf(pattern); }

void YubinCustomer::WriteBar(const std::string& bar, float x) {
  if (bar.size() != 1) return;
  const float h = bar_full_height_;
  const float width = std::max(h / 6.0F + static_cast<float>(px_adjust_black), 1.0F);
  float top = bar_top_;
  float height = 0.0F;
  switch (bar[0]) {
    case '1': height = h; break;
    case '2': height = 2.0F * h / 3.0F; break;
    case '3':
      top += h / 3.0F;
      height = 2.0F * h / 3.0F;
      break;
    case '4':
      top += h / 3.0F;
      height = h / 3.0F;
      break;
    default: return;
  }
  if (writing_svg_) {
    SvgRect(x, top, width, height, fore_color);
  } else {
    FillRectF(x, top, width, height, fore_color);
  }
}

void YubinCustomer::WriteBars(const std::string& bars, float x) {
  const float pitch = bar_full_height_ / 3.0F;
  const float width = std::max(bar_full_height_ / 6.0F + static_cast<float>(px_adjust_black), 1.0F);
  if (!writing_svg_ && width > pitch && DrawsOnOwnCanvas()) {
    WriteOverlappingBars(bars, x, pitch, width);
    return;
  }
  for (const char bar : bars) {
    WriteBar(std::string(1, bar), x);
    x += pitch;
  }
}

void YubinCustomer::WriteOverlappingBars(const std::string& bars, float x, float pitch, float width) {
  // Bars wider than their pitch overlap; painted one by one, a huge px_adjust_black would
  // cost the canvas area for every bar. The same pixels come from merging, for each of the
  // four bar shapes, the pixel spans FillRectF would snap each bar to (fills replace
  // pixels on the own canvas, so overlaps never showed).
  const float h = bar_full_height_;
  struct Shape {
    char bar;
    float top;
    float height;
  };
  const Shape shapes[] = {{'1', bar_top_, h},
                          {'2', bar_top_, 2.0F * h / 3.0F},
                          {'3', bar_top_ + h / 3.0F, 2.0F * h / 3.0F},
                          {'4', bar_top_ + h / 3.0F, h / 3.0F}};
  for (const Shape& shape : shapes) {
    const double top = std::round(static_cast<double>(shape.top));
    const double bottom = std::max(std::round(static_cast<double>(shape.top) + shape.height), top + 1.0);
    double span_left = 0.0;
    double span_right = -1.0;  // no span yet
    float at = x;
    for (const char bar : bars) {
      if (bar == shape.bar) {
        const double left = std::round(static_cast<double>(at));
        const double right = std::max(std::round(static_cast<double>(at) + width), left + 1.0);
        if (span_right >= 0.0 && left <= span_right) {
          span_right = std::max(span_right, right);
        } else {
          if (span_right >= 0.0) FillPixels(span_left, top, span_right, bottom, fore_color);
          span_left = left;
          span_right = right;
        }
      }
      at += pitch;
    }
    if (span_right >= 0.0) FillPixels(span_left, top, span_right, bottom, fore_color);
  }
}

// With the quiet-zone option: two bar pitches (about 2 mm at the usual size) of light
// space on each side, added to the canvas width.
int YubinCustomer::QuietZoneWidth(int h) const {
  return quiet_zone ? TruncateToInt(static_cast<double>(2.0F * static_cast<float>(h) / 3.0F)) : 0;
}

// The bars and both quiet zones, in a wide type and clamped once: a height near INT_MAX
// gives a width no canvas can have, refused like any other oversized box.
int YubinCustomer::CanvasWidth(int h) const { return ClampToInt(BarsWidth(h) + int64_t{2} * QuietZoneWidth(h)); }

bool YubinCustomer::Draw(const std::string& data, int x, int y, int h) {
  int width = 0;  // the bar height alone bounds this entry point's box
  if (WantsNaturalBox() && !TakeYubinNaturalBox(data, &width, &h)) return false;
  if (!Drawable(data, h)) return false;
  if (IsSvgOutput()) return DrawSvg(data, x, y, 0, h);
  if (!BarcodeBase::Draw(data, x, y, CanvasWidth(h), h) || canvas_renderer() == nullptr) return false;
  x = ClampToInt(int64_t{x} + QuietZoneWidth(h));
  if (!IsRasterOutput()) ClearCanvas(back_color);  // a fresh canvas is already background
  bar_full_height_ = static_cast<float>(h);
  bar_top_ = static_cast<float>(y);
  const internal::YubinBars symbol = internal::EncodeYubin(data);
  if (!symbol.lost.empty()) Warn(kLogPrefix + symbol.lost);
  writing_svg_ = false;
  WriteBars(symbol.bars, static_cast<float>(x));
  SDL_RenderPresent(canvas_renderer());
  if (!log::Quiet()) {
    log::Progress("YubinCustomer: " + data + " (h=" + std::to_string(h) + ", CD=" + std::to_string(symbol.check) + ")");
  }
  return true;
}

bool YubinCustomer::Draw(const std::string& data, int x, int y, int width, int height) {
  if (WantsNaturalBox() && !TakeYubinNaturalBox(data, &width, &height)) return false;
  return Draw(data, x, y, height);  // at the natural size already: taken again unchanged
}

bool YubinCustomer::TakeYubinNaturalBox(const std::string& data, int* width, int* height) {
  // Japan Post: bars 0.6 mm wide on a 1.2 mm pitch, the long ones 3.6 mm.
  constexpr int kBarModules = 6;
  const int bar_height = kBarModules * NaturalModulePixels();
  if (!Drawable(data, bar_height)) return false;
  return TakeNaturalBox(CanvasWidth(bar_height), bar_height, width, height, kLogPrefix);
}

bool YubinCustomer::Drawable(const std::string& data, int height) const {
  // Silent failures by default; a host still learns why nothing was drawn.
  if (data.empty()) log::Reason(kLogPrefix + std::string("Empty string"));
  if (height < 1) log::Reason(kLogPrefix + std::string("Bar height must be at least 1 px"));
  return height >= 1 && !data.empty() && AcceptsInputLength(data, kLogPrefix);
}

bool YubinCustomer::DrawSvg(const std::string& data, int x, int y, int width, int height) {
  if (WantsNaturalBox() && !TakeYubinNaturalBox(data, &width, &height)) return false;
  if (!Drawable(data, height)) return false;
  const int canvas_width = CanvasWidth(height);
  x = ClampToInt(int64_t{x} + QuietZoneWidth(height));
  bar_full_height_ = static_cast<float>(height);
  bar_top_ = static_cast<float>(y);
  SvgBegin(canvas_width, height);
  SvgRect(0, 0, static_cast<float>(canvas_width), static_cast<float>(height), back_color);
  writing_svg_ = true;
  const internal::YubinBars symbol = internal::EncodeYubin(data);
  if (!symbol.lost.empty()) Warn(kLogPrefix + symbol.lost);
  WriteBars(symbol.bars, static_cast<float>(x));
  writing_svg_ = false;
  SvgEnd();
  return true;
}

}  // namespace barcode_orv
