// Decoding with an independent reader (ZXing-cpp), for round-trip tests.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace barcode_orv::testing {

enum class Symbology {
  kCode39,
  kCode93,
  kCode128,
  kCodabar,
  kITF,
  kEAN8,
  kEAN13,
  kUPCA,
  kUPCE,
  kDataBar,
  kDataBarExpanded,
  kQRCode,
  kDataMatrix,
  kPDF417,
};

struct Decoded {
  bool ok = false;
  std::string text;                  // the reader's text, UTF-8
  std::string bytes;                 // the payload bytes as the reader recovered them
  std::string symbology_identifier;  // "]C1" for GS1-128, "]E0" for EAN-13, ...
};

// An RGBA picture, 4 bytes a pixel in R, G, B, A order, rows packed.
struct RgbaImage {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> pixels;
  uint32_t Pixel(int x, int y) const;  // 0xRRGGBBAA
};

// Quiet zone chosen from the picture: a tenth of its width, at least 20 pixels (the
// linear readers want about ten modules).
constexpr int kAutoQuietZone = -1;

// Pads `quiet` white pixels on every side, then asks the reader for one symbol. EAN/UPC
// add-ons are read when present (the reader then appends a space and their digits).
// any_orientation: the symbol may be turned a quarter or half turn.
Decoded DecodeRgba(const RgbaImage& image, Symbology symbology, int quiet = kAutoQuietZone,
                   bool any_orientation = false);

// Decodes a PNG file held in memory (via DecodePng) and then the symbol in it.
Decoded DecodePngBarcode(const std::vector<uint8_t>& png, Symbology symbology, int quiet = kAutoQuietZone,
                         bool any_orientation = false);

// Paints a module matrix (matrix[col][row], true = dark) at `scale` pixels a module.
RgbaImage RenderModules(const std::vector<std::vector<bool>>& matrix_by_column, int scale);

}  // namespace barcode_orv::testing
