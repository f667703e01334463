// Print size (X-dimension at a resolution) and orientation: settings of the picture as a
// whole, applied around the symbologies' own drawing.
#include <cmath>
#include <cstring>
#include <utility>

#include "core/barcode_base.h"
#include "core/fixed_format.h"
#include "core/log.h"

namespace barcode_orv {
namespace {

constexpr double kMmPerInch = 25.4;
constexpr double kMaxXDimMm = 100.0;
constexpr int kMaxDpi = 10000;
// The largest picture an X-dimension may ask for: a QR Code of version 40 with 0.33 mm
// modules at 1200 dpi is about a sixth of it; beyond it a "natural" size is a mistake.
constexpr int64_t kMaxNaturalPixels = 50'000'000;

std::string TooLarge(int64_t width, int64_t height) {
  if (width * height <= kMaxNaturalPixels) return {};
  return "Symbol too large at this X-dimension: " + std::to_string(width) + "x" + std::to_string(height) +
         " px, more than " + std::to_string(kMaxNaturalPixels / 1000000) + " megapixels";
}

}  // namespace

bool BarcodeBase::SetXDim(double mm, int dpi) {
  if (mm == 0.0) {
    xdim_mm_ = 0.0;
    dpi_ = 0;
    module_pixels_ = 0;
    return true;
  }
  if (!(mm > 0.0 && mm <= kMaxXDimMm) || dpi < 1 || dpi > kMaxDpi) return false;
  const long pixels = std::lround(mm * dpi / kMmPerInch);
  if (pixels > kMaxModulePixels) return false;
  xdim_mm_ = mm;
  dpi_ = dpi;
  module_pixels_ = pixels < 1 ? 1 : static_cast<int>(pixels);
  return true;
}

bool BarcodeBase::SetRotation(int degrees) {
  if (degrees % 90 != 0 || degrees < 0 || degrees > 270) return false;
  quarter_turns_ = degrees / 90;
  return true;
}

bool BarcodeBase::TakeNaturalBox(int64_t natural_width, int64_t natural_height, int* width, int* height,
                                 const std::string& log_prefix) {
  const std::string too_large = TooLarge(natural_width, natural_height);
  if (measuring_) {
    // A measure draws nothing: a reason is kept for it, not printed.
    if (!too_large.empty()) log::Reason(log_prefix + too_large);
    measured_width_ = too_large.empty() ? natural_width : -1;
    measured_height_ = natural_height;
    return false;
  }
  // A side of 0 takes any size.
  if ((*width != 0 && *width < natural_width) || (*height != 0 && *height < natural_height)) {
    log::Error(log_prefix + "Box too small for the X-dimension: " + std::to_string(natural_width) + "x" +
               std::to_string(natural_height) + " px needed");
    return false;
  }
  if (!too_large.empty()) {
    log::Error(log_prefix + too_large);
    return false;
  }
  *width = static_cast<int>(natural_width);
  *height = static_cast<int>(natural_height);
  return true;
}

bool BarcodeBase::Measure(const std::string& text, int* width, int* height) {
  measured_width_ = -1;
  measured_height_ = -1;
  measuring_ = true;
  struct Reset {
    bool* flag;
    ~Reset() { *flag = false; }
  } reset{&measuring_};
  Draw(text, 0, 0, 0, 0);
  if (measured_width_ < 0) return false;
  const bool turned = quarter_turns_ % 2 == 1;
  *width = static_cast<int>(turned ? measured_height_ : measured_width_);
  *height = static_cast<int>(turned ? measured_width_ : measured_height_);
  return true;
}

void BarcodeBase::FinishOutput() {
  if (IsSvgOutput()) {
    if (!svg_.empty() && (quarter_turns_ != 0 || module_pixels_ > 0)) RewriteSvgHeader();
    return;
  }
  if (quarter_turns_ != 0 && OwnsCanvas()) TurnCanvas();
}

void BarcodeBase::TurnCanvas() {
  SDL_RenderPresent(renderer_.get());
  SDL_Surface* from = surface_.get();
  const bool swap = quarter_turns_ % 2 == 1;
  const int width = swap ? from->h : from->w;
  const int height = swap ? from->w : from->h;
  SurfacePtr turned(SDL_CreateRGBSurfaceWithFormat(0, width, height, 32, from->format->format));
  if (!turned) return;
  RendererPtr renderer(SDL_CreateSoftwareRenderer(turned.get()));
  if (!renderer) return;
  const int source_w = from->w;
  const int source_h = from->h;
  for (int y = 0; y < source_h; ++y) {
    const auto* row = reinterpret_cast<const Uint32*>(static_cast<const uint8_t*>(from->pixels) + y * from->pitch);
    for (int x = 0; x < source_w; ++x) {
      // Clockwise: a quarter turn takes (x, y) to (h - 1 - y, x).
      int to_x = y;
      int to_y = source_w - 1 - x;
      if (quarter_turns_ == 1) {
        to_x = source_h - 1 - y;
        to_y = x;
      } else if (quarter_turns_ == 2) {
        to_x = source_w - 1 - x;
        to_y = source_h - 1 - y;
      }
      auto* target = reinterpret_cast<Uint32*>(static_cast<uint8_t*>(turned->pixels) + to_y * turned->pitch);
      target[to_x] = row[x];
    }
  }
  renderer_ = std::move(renderer);
  surface_ = std::move(turned);
}

void BarcodeBase::RewriteSvgHeader() {
  constexpr const char kEnd[] = "</svg>\n";
  const size_t end_length = std::strlen(kEnd);
  if (svg_body_ == 0 || svg_.size() < svg_body_ + end_length) return;
  const std::string body = svg_.substr(svg_body_, svg_.size() - svg_body_ - end_length);
  const bool swap = quarter_turns_ % 2 == 1;
  const int width = swap ? svg_height : svg_width;
  const int height = swap ? svg_width : svg_height;
  auto size = [this](int pixels) {
    if (module_pixels_ == 0) return std::to_string(pixels);
    std::string millimetres;
    AppendFixed2(millimetres, static_cast<double>(pixels) * kMmPerInch / dpi_);
    return millimetres + "mm";
  };
  std::string out;
  AppendSvgHeader(out, size(width), size(height), width, height);
  if (quarter_turns_ == 0) {
    out += body;
  } else {
    // Clockwise turns about the origin, moved back into the picture.
    static constexpr const char* kTurns[] = {"", "0,1,-1,0,%H,0", "-1,0,0,-1,%W,%H", "0,-1,1,0,0,%W"};
    std::string matrix = kTurns[quarter_turns_];
    for (const auto& [key, value] : {std::pair{"%W", svg_width}, std::pair{"%H", svg_height}}) {
      for (size_t at = matrix.find(key); at != std::string::npos; at = matrix.find(key)) {
        matrix.replace(at, 2, std::to_string(value));
      }
    }
    out += "<g transform=\"matrix(" + matrix + ")\">\n";
    out += body;
    out += "</g>\n";
  }
  out += kEnd;
  svg_ = std::move(out);
}

}  // namespace barcode_orv
