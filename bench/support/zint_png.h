// Zint 2.11 as the comparison in the benchmarks, behind names of our own: zint.h defines
// macros (BARCODE_CODE128, BARCODE_QRCODE, ...) that clash with this library's header, so
// only zint_png.cpp includes it.
#pragma once

#include <string>

namespace barcode_orv::bench {

// kEan13 takes an add-on after '+' ("4901234567894+12345"); kEan8 its 7 digits (Zint's
// EAN symbology tells the two apart by length). GS1-128 and DataBar Expanded take their
// element strings with the AIs in parentheses, as this library does.
enum class ZintSymbol {
  kCode128,
  kCode39,
  kGs1_128,
  kEan13,
  kEan8,
  kUpcA,
  kUpcE,
  kQrCode,
  kDataBarOmni,
  kDataBarExpanded,
  kDataMatrix,
  kPdf417
};

struct ZintSettings {
  float scale = 1.0F;
  float height = 0.0F;  // 0: Zint's default
  bool show_text = false;
  int option_1 = -1;  // Zint's option_1 (QR level, PDF417 level), -1: default
  int option_2 = 0;   // Zint's option_2 (columns, sizes, QR version), 0: default
  int option_3 = 0;   // Zint's option_3 (PDF417 rows), 0: default
};

struct ZintResult {
  bool ok = false;
  int width = 0;
  int height = 0;
  std::string error;
};

// True when the benchmarks were built with Zint.
bool ZintAvailable();

// Encodes `text` and writes Zint's PNG file to `path`.
ZintResult ZintPng(ZintSymbol symbol, const std::string& text, const ZintSettings& settings, const std::string& path);

// A file name on tmpfs for this process's Zint output.
std::string ZintScratchPath();

}  // namespace barcode_orv::bench
