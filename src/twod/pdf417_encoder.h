// PDF417 encoder (ISO/IEC 15438): a byte payload in, a module matrix out.
//
// Text, numeric and byte compaction with a shortest-path segmentation, Reed-Solomon
// error correction over GF(929), and the rows of start pattern, row indicators, data
// codewords and stop pattern in the three clusters.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "core/module_grid.h"

namespace barcode_orv::internal_pdf417 {

constexpr int kCodewordValues = 929;
constexpr int kMaxCodewords = 928;  // in one symbol, error correction included
constexpr int kMinRows = 3;
constexpr int kMaxRows = 90;
constexpr int kMaxColumns = 30;
constexpr int kMaxLevel = 8;
constexpr int kDefaultRowHeight = 3;
constexpr int kMinRowHeight = 3;  // ISO/IEC 15438: rows at least three modules high
constexpr int kMaxRowHeight = 50;
constexpr int kRowOverheadModules = 69;  // start, two row indicators, stop
constexpr int kCodewordModules = 17;

// The 17 modules of each codeword in clusters 0, 3 and 6 (index 0, 1, 2), first module
// in bit 16, 1 = bar.
extern const std::array<std::array<uint32_t, kCodewordValues>, 3> kCodewordPatterns;
constexpr uint32_t kStartPattern = 0x1FEA8;  // 17 modules: 8 1 1 1 1 1 1 3
constexpr uint32_t kStopPattern = 0x3FA29;   // 18 modules: 7 1 1 3 1 1 1 2 1

// The data codewords of the shortest text/numeric/byte segmentation of `data`, without
// the symbol length descriptor.
std::vector<int> CompactData(const std::vector<uint8_t>& data);

// The error-correction level recommended for `data_codewords` (the length descriptor
// not counted), lowered while the symbol would exceed 928 codewords.
int RecommendedLevel(int data_codewords);

// g(x) = (x - 3)(x - 3^2)...(x - 3^k) mod 929, k = 2^(level + 1): a0 .. a(k-1), the
// leading 1 left out.
std::vector<int> GeneratorCoefficients(int level);

// The 2^(level + 1) error-correction codewords of `data`, highest order first.
std::vector<int> ErrorCorrection(const std::vector<int>& data, int level);

struct Settings {
  int level = -1;                      // 0..8; anything else automatic
  int columns = 0;                     // 1..30; 0 automatic
  int rows = 0;                        // 3..90; 0 automatic
  double aspect_ratio = 0;             // width over height steering the automatic shape; <= 0 default
  int row_height = kDefaultRowHeight;  // modules per row
  int eci = -1;                        // 0..811799: an ECI before the data
};

struct Symbol {
  int columns = 0;
  int rows = 0;
  int level = 0;
  std::vector<int> codewords;  // length descriptor, data, pads, error correction
  ModuleGrid modules;          // one grid row a symbol row (the painter makes it row_height high)
};

// Throws std::runtime_error with a message for the user when the data or the settings
// cannot make a symbol.
Symbol EncodePdf417(const std::vector<uint8_t>& data, const Settings& settings);

}  // namespace barcode_orv::internal_pdf417
