// barcode-orv-read: what an independent reader (ZXing-cpp) finds in a PNG file, for the
// gallery. Prints "FORMAT<TAB>text" (control characters as \xNN) and
// exits 0, or prints "nothing" and exits 1. The file is read as it is: no quiet zone added.
#include <SDL.h>
#include <SDL_image.h>
#define ZX_USE_UTF8 1  // the reader's text as UTF-8
#include <ZXing/ReadBarcode.h>

#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

using SurfacePtr = std::unique_ptr<SDL_Surface, decltype(&SDL_FreeSurface)>;

// Luminance of the picture laid on white.
std::vector<uint8_t> GreyOnWhite(const SDL_Surface& rgba) {
  std::vector<uint8_t> grey(static_cast<size_t>(rgba.w) * static_cast<size_t>(rgba.h));
  for (int y = 0; y < rgba.h; ++y) {
    const auto* row = static_cast<const uint8_t*>(rgba.pixels) + static_cast<size_t>(y) * rgba.pitch;
    for (int x = 0; x < rgba.w; ++x) {
      const uint8_t* p = row + static_cast<size_t>(x) * 4;
      const int luma = (p[0] * 299 + p[1] * 587 + p[2] * 114) / 1000;
      grey[static_cast<size_t>(y) * rgba.w + x] = static_cast<uint8_t>((luma * p[3] + 255 * (255 - p[3])) / 255);
    }
  }
  return grey;
}

// The reader's text (UTF-8) with control characters escaped.
std::string Shown(const std::string& text) {
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7F) {
      out += static_cast<char>(byte);
    } else {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\x%02X", static_cast<unsigned>(byte));
      out += escaped;
    }
  }
  return out;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: barcode-orv-read FILE.png\n";
    return 2;
  }
  const SurfacePtr loaded(IMG_Load(argv[1]), SDL_FreeSurface);
  if (!loaded) {
    std::cerr << "barcode-orv-read: cannot read " << argv[1] << ": " << SDL_GetError() << "\n";
    return 2;
  }
  const SurfacePtr rgba(SDL_ConvertSurfaceFormat(loaded.get(), SDL_PIXELFORMAT_ABGR8888, 0), SDL_FreeSurface);
  if (!rgba) return 2;
  const std::vector<uint8_t> grey = GreyOnWhite(*rgba);
  ZXing::DecodeHints hints;
  hints.setTryHarder(true);
  hints.setEanAddOnSymbol(ZXing::EanAddOnSymbol::Read);
  const ZXing::Result result =
      ZXing::ReadBarcode(ZXing::ImageView(grey.data(), rgba->w, rgba->h, ZXing::ImageFormat::Lum), hints);
  if (!result.isValid()) {
    std::cout << "nothing\n";
    return 1;
  }
  std::cout << ZXing::ToString(result.format()) << "\t" << Shown(result.text()) << "\n";
  return 0;
}
