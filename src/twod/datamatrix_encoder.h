// Data Matrix ECC 200 encoder (ISO/IEC 16022): a byte payload in, a module matrix out.
//
// The six encodation schemes with a shortest-path choice between them, the 30 square
// and rectangular sizes, Reed-Solomon error correction over GF(256) and the standard
// module placement with its finder and clock borders.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/module_grid.h"

namespace barcode_orv::internal {

struct DataMatrixSize {
  const char* name;
  int rows;
  int cols;
  int region_rows;  // one data region, without its border
  int region_cols;
  int regions_vertical;
  int regions_horizontal;
  int data_codewords;
  int ecc_codewords;
  int blocks;  // interleaved Reed-Solomon blocks
  int ecc_per_block;

  constexpr int mapping_rows() const { return region_rows * regions_vertical; }
  constexpr int mapping_cols() const { return region_cols * regions_horizontal; }
  constexpr bool square() const { return rows == cols; }
};

// The size values of barcode_set_code_size: 0..23 square sizes ascending, 24..29 the
// rectangular ones of ISO/IEC 16022, 30..47 the rectangular extension (DMRE) of ISO/IEC
// 21471. kAutoSize picks the smallest square size that holds the data; kAutoRect the
// smallest area among the squares and the six rectangles, kAutoDmre among all sizes.
inline constexpr int kDataMatrixSizeCount = 48;
inline constexpr int kIso16022SizeCount = 30;
inline constexpr int kSquareSizeCount = 24;
inline constexpr int kAutoSize = -2;
inline constexpr int kAutoRect = -3;
inline constexpr int kAutoDmre = -4;

inline constexpr std::array<DataMatrixSize, kDataMatrixSizeCount> kDataMatrixSizes = {{
    {"10x10", 10, 10, 8, 8, 1, 1, 3, 5, 1, 5},
    {"12x12", 12, 12, 10, 10, 1, 1, 5, 7, 1, 7},
    {"14x14", 14, 14, 12, 12, 1, 1, 8, 10, 1, 10},
    {"16x16", 16, 16, 14, 14, 1, 1, 12, 12, 1, 12},
    {"18x18", 18, 18, 16, 16, 1, 1, 18, 14, 1, 14},
    {"20x20", 20, 20, 18, 18, 1, 1, 22, 18, 1, 18},
    {"22x22", 22, 22, 20, 20, 1, 1, 30, 20, 1, 20},
    {"24x24", 24, 24, 22, 22, 1, 1, 36, 24, 1, 24},
    {"26x26", 26, 26, 24, 24, 1, 1, 44, 28, 1, 28},
    {"32x32", 32, 32, 14, 14, 2, 2, 62, 36, 1, 36},
    {"36x36", 36, 36, 16, 16, 2, 2, 86, 42, 1, 42},
    {"40x40", 40, 40, 18, 18, 2, 2, 114, 48, 1, 48},
    {"44x44", 44, 44, 20, 20, 2, 2, 144, 56, 1, 56},
    {"48x48", 48, 48, 22, 22, 2, 2, 174, 68, 1, 68},
    {"52x52", 52, 52, 24, 24, 2, 2, 204, 84, 2, 42},
    {"64x64", 64, 64, 14, 14, 4, 4, 280, 112, 2, 56},
    {"72x72", 72, 72, 16, 16, 4, 4, 368, 144, 4, 36},
    {"80x80", 80, 80, 18, 18, 4, 4, 456, 192, 4, 48},
    {"88x88", 88, 88, 20, 20, 4, 4, 576, 224, 4, 56},
    {"96x96", 96, 96, 22, 22, 4, 4, 696, 272, 4, 68},
    {"104x104", 104, 104, 24, 24, 4, 4, 816, 336, 6, 56},
    {"120x120", 120, 120, 18, 18, 6, 6, 1050, 408, 6, 68},
    {"132x132", 132, 132, 20, 20, 6, 6, 1304, 496, 8, 62},
    {"144x144", 144, 144, 22, 22, 6, 6, 1558, 620, 10, 62},
    {"8x18", 8, 18, 6, 16, 1, 1, 5, 7, 1, 7},
    {"8x32", 8, 32, 6, 14, 1, 2, 10, 11, 1, 11},
    {"12x26", 12, 26, 10, 24, 1, 1, 16, 14, 1, 14},
    {"12x36", 12, 36, 10, 16, 1, 2, 22, 18, 1, 18},
    {"16x36", 16, 36, 14, 16, 1, 2, 32, 24, 1, 24},
    {"16x48", 16, 48, 14, 22, 1, 2, 49, 28, 1, 28},
    {"8x48", 8, 48, 6, 22, 1, 2, 18, 15, 1, 15},
    {"8x64", 8, 64, 6, 14, 1, 4, 24, 18, 1, 18},
    {"8x80", 8, 80, 6, 18, 1, 4, 32, 22, 1, 22},
    {"8x96", 8, 96, 6, 22, 1, 4, 38, 28, 1, 28},
    {"8x120", 8, 120, 6, 18, 1, 6, 49, 32, 1, 32},
    {"8x144", 8, 144, 6, 22, 1, 6, 63, 36, 1, 36},
    {"12x64", 12, 64, 10, 14, 1, 4, 43, 27, 1, 27},
    {"12x88", 12, 88, 10, 20, 1, 4, 64, 36, 1, 36},
    {"16x64", 16, 64, 14, 14, 1, 4, 62, 36, 1, 36},
    {"20x36", 20, 36, 18, 16, 1, 2, 44, 28, 1, 28},
    {"20x44", 20, 44, 18, 20, 1, 2, 56, 34, 1, 34},
    {"20x64", 20, 64, 18, 14, 1, 4, 84, 42, 1, 42},
    {"22x48", 22, 48, 20, 22, 1, 2, 72, 38, 1, 38},
    {"24x48", 24, 48, 22, 22, 1, 2, 80, 41, 1, 41},
    {"24x64", 24, 64, 22, 14, 1, 4, 108, 46, 1, 46},
    {"26x40", 26, 40, 24, 18, 1, 2, 70, 38, 1, 38},
    {"26x48", 26, 48, 24, 22, 1, 2, 90, 42, 1, 42},
    {"26x64", 26, 64, 24, 14, 1, 4, 118, 50, 1, 50},
}};

constexpr bool SizesAreConsistent() {
  for (const DataMatrixSize& size : kDataMatrixSizes) {
    if (size.rows != size.regions_vertical * (size.region_rows + 2)) return false;
    if (size.cols != size.regions_horizontal * (size.region_cols + 2)) return false;
    if (size.data_codewords + size.ecc_codewords != size.mapping_rows() * size.mapping_cols() / 8) return false;
    if (size.ecc_codewords != size.blocks * size.ecc_per_block) return false;
  }
  for (int i = 1; i < kSquareSizeCount; ++i) {
    if (kDataMatrixSizes[i].data_codewords <= kDataMatrixSizes[i - 1].data_codewords) return false;
  }
  return true;
}
static_assert(SizesAreConsistent(), "Data Matrix size table: dimensions, capacities and blocks must agree");

// The encodation scheme values of barcode_set_encode_scheme.
enum class Encodation : int { kAuto = -1, kAscii = 0, kC40 = 1, kText = 2, kX12 = 3, kEdifact = 4, kBase256 = 5 };

const char* EncodationName(Encodation scheme);

// The shortest codeword streams for one payload under one scheme choice, computed once;
// the symbol's capacity only matters at the end of the data (implicit returns to ASCII,
// C40 padding, EDIFACT remainders), so it is applied when the codewords are written.
struct DataMatrixOptions {
  // GS1 data: FNC1 first, and GS (0x1D) in the data written as FNC1.
  bool gs1 = false;
  int eci = -1;  // 0..999999: an ECI designator first
};

class DataMatrixEncodation {
 public:
  // Throws std::runtime_error when a forced scheme cannot carry the data.
  DataMatrixEncodation(const std::vector<uint8_t>& data, Encodation scheme, const DataMatrixOptions& options = {});
  ~DataMatrixEncodation();
  DataMatrixEncodation(const DataMatrixEncodation&) = delete;
  DataMatrixEncodation& operator=(const DataMatrixEncodation&) = delete;

  // Data codewords of the shortest stream, before padding.
  int MinimumCodewords() const;
  bool FitsIn(int capacity) const;
  // The data codewords padded to `capacity`; requires FitsIn(capacity).
  std::vector<uint8_t> Codewords(int capacity) const;

 private:
  struct Search;
  std::unique_ptr<Search> search_;
  std::vector<uint8_t> prefix_;  // FNC1 or the ECI designator, before the data
};

// Pads data codewords to `capacity`: 129, then the 253-state randomised pads.
std::vector<uint8_t> PadCodewords(std::vector<uint8_t> codewords, int capacity);
// g(x) = (x - 2)(x - 2^2)...(x - 2^k) over GF(256)/0x12D, highest order first.
std::vector<uint8_t> GeneratorPolynomial(int ecc_count);
// The data codewords followed by the interleaved error-correction codewords.
std::vector<uint8_t> AddErrorCorrection(const std::vector<uint8_t>& data, const DataMatrixSize& size);
// The symbol: codewords placed by the ISO/IEC 16022 Annex F algorithm into the data
// regions, each framed by its finder L and clock track.
ModuleGrid PlaceModules(const std::vector<uint8_t>& codewords, const DataMatrixSize& size);

struct DataMatrixSymbol {
  int size_index = -1;
  ModuleGrid modules;
};

// Encodes `data` at size value `size_value` (0..29 or kAutoSize) under `scheme`;
// throws std::runtime_error with a message for the user when that is impossible.
DataMatrixSymbol EncodeDataMatrix(const std::vector<uint8_t>& data, int size_value, Encodation scheme,
                                  const DataMatrixOptions& options = {});

}  // namespace barcode_orv::internal
