#include "support/zxing_decode.h"

#define ZX_USE_UTF8 1
#include <ZXing/ReadBarcode.h>

#include <algorithm>

#include "support/png_image.h"

namespace barcode_orv::testing {
namespace {

ZXing::BarcodeFormat ToZXing(Symbology symbology) {
  using F = ZXing::BarcodeFormat;
  switch (symbology) {
    case Symbology::kCode39: return F::Code39;
    case Symbology::kCode93: return F::Code93;
    case Symbology::kCode128: return F::Code128;
    case Symbology::kCodabar: return F::Codabar;
    case Symbology::kITF: return F::ITF;
    case Symbology::kEAN8: return F::EAN8;
    case Symbology::kEAN13: return F::EAN13;
    case Symbology::kUPCA: return F::UPCA;
    case Symbology::kUPCE: return F::UPCE;
    case Symbology::kDataBar: return F::DataBar;
    case Symbology::kDataBarExpanded: return F::DataBarExpanded;
    case Symbology::kQRCode: return F::QRCode;
    case Symbology::kDataMatrix: return F::DataMatrix;
    case Symbology::kPDF417: return F::PDF417;
  }
  return F::None;
}

// Flattens onto white (so transparent pixels read as light) and pads a quiet zone.
std::vector<uint8_t> GreyWithQuietZone(const RgbaImage& image, int quiet, int* out_w, int* out_h) {
  const int w = image.width + 2 * quiet;
  const int h = image.height + 2 * quiet;
  std::vector<uint8_t> grey(static_cast<size_t>(w) * h, 255);
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      const uint8_t* p = &image.pixels[(static_cast<size_t>(y) * image.width + x) * 4];
      const int luma = (p[0] * 299 + p[1] * 587 + p[2] * 114) / 1000;
      const int on_white = (luma * p[3] + 255 * (255 - p[3])) / 255;
      grey[static_cast<size_t>(y + quiet) * w + x + quiet] = static_cast<uint8_t>(on_white);
    }
  }
  *out_w = w;
  *out_h = h;
  return grey;
}

}  // namespace

Decoded DecodeRgba(const RgbaImage& image, Symbology symbology, int quiet, bool any_orientation) {
  Decoded out;
  if (image.width <= 0 || image.height <= 0) return out;
  if (quiet < 0) quiet = std::max(20, image.width / 10);
  int w = 0;
  int h = 0;
  const std::vector<uint8_t> grey = GreyWithQuietZone(image, quiet, &w, &h);
  ZXing::DecodeHints hints;
  hints.setFormats(ToZXing(symbology));
  hints.setTryHarder(true);
  hints.setTryRotate(any_orientation);
  hints.setIsPure(false);
  hints.setEanAddOnSymbol(ZXing::EanAddOnSymbol::Read);
  const ZXing::Result result = ZXing::ReadBarcode(ZXing::ImageView(grey.data(), w, h, ZXing::ImageFormat::Lum), hints);
  if (!result.isValid()) return out;
  out.ok = true;
  out.text = result.text();
  out.symbology_identifier = result.symbologyIdentifier();
  const ZXing::ByteArray& bytes = result.bytes();
  out.bytes.assign(bytes.begin(), bytes.end());
  return out;
}

Decoded DecodePngBarcode(const std::vector<uint8_t>& png, Symbology symbology, int quiet, bool any_orientation) {
  return DecodeRgba(DecodePng(png), symbology, quiet, any_orientation);
}

RgbaImage RenderModules(const std::vector<std::vector<bool>>& matrix_by_column, int scale) {
  RgbaImage image;
  const int cols = static_cast<int>(matrix_by_column.size());
  const int rows = cols == 0 ? 0 : static_cast<int>(matrix_by_column[0].size());
  image.width = cols * scale;
  image.height = rows * scale;
  image.pixels.assign(static_cast<size_t>(image.width) * image.height * 4, 255);
  for (int c = 0; c < cols; ++c) {
    for (int r = 0; r < rows; ++r) {
      if (!matrix_by_column[c][r]) continue;
      for (int dy = 0; dy < scale; ++dy) {
        for (int dx = 0; dx < scale; ++dx) {
          uint8_t* p = &image.pixels[(static_cast<size_t>(r * scale + dy) * image.width + c * scale + dx) * 4];
          p[0] = p[1] = p[2] = 0;
        }
      }
    }
  }
  return image;
}

}  // namespace barcode_orv::testing
