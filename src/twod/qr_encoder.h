// QR Code Model 2 encoder (ISO/IEC 18004): a byte payload in, a module matrix out.
//
// One segment per symbol, numeric or 8-bit byte mode only, the smallest version that
// fits unless a larger one is requested, and this library's own mask scoring.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/errors.h"
#include "core/module_grid.h"

namespace barcode_orv::qr_internal {

constexpr int kMinVersion = 1;
constexpr int kMaxVersion = 40;
constexpr int kMaskCount = 8;

// Error-correction level indices, in the order of the format-information table.
enum Level : int { kLevelL = 0, kLevelM = 1, kLevelQ = 2, kLevelH = 3 };

constexpr int SideForVersion(int version) { return 4 * version + 17; }

// The payload does not fit version 40 at the chosen level. It is the one encoder error
// that QR's drawing and the C draw functions let through to their caller.
class QRCapacityError : public SymbolCapacityError {
 public:
  QRCapacityError();
};

// The data area under all eight masks at once: bit m of a cell is that module's colour
// under mask m. Frame modules stay 0 (light under every mask).
class MaskCandidates {
 public:
  MaskCandidates(int side, int data_modules)
      : side_(side), data_modules_(data_modules), cells_(static_cast<size_t>(side) * side, 0) {}

  int side() const { return side_; }
  // Modules that carry codeword or remainder bits.
  int data_modules() const { return data_modules_; }
  uint8_t at(int col, int row) const { return cells_[Index(col, row)]; }
  void set(int col, int row, uint8_t per_mask) { cells_[Index(col, row)] = per_mask; }
  const uint8_t* row_data(int row) const { return cells_.data() + Index(0, row); }

 private:
  size_t Index(int col, int row) const { return static_cast<size_t>(row) * side_ + col; }

  int side_;
  int data_modules_;
  std::vector<uint8_t> cells_;
};

// One field of the bit stream: the low `bits` bits of `value`, most significant first.
struct BitField {
  uint32_t value;
  int bits;
};

// ---- Tables (ISO/IEC 18004) ----
int TotalCodewords(int version);
int RemainderBits(int version);
int DataCapacityBits(int version, int level);
int ErrorCorrectionCodewordsPerBlock(int version, int level);
int ErrorCorrectionBlockCount(int version, int level);
// The 15 format bits (BCH-coded and masked) for level index and mask, most significant
// bit first in placement order.
uint16_t FormatInformation(int level, int mask);
// The 18 version bits (BCH-coded) for versions 7 and above.
uint32_t VersionInformation(int version);

// ---- Steps of the encoder, exposed for testing ----

// Mode indicator, count field (at its version 1-9 width) and the payload fields.
std::vector<BitField> BuildSegment(const std::vector<uint8_t>& data, bool numeric);
// Extra count-field bits that `version` needs beyond the version 1-9 width.
int CountFieldGrowth(bool numeric, int version);
// The smallest version whose capacity holds `segment_bits` plus the count growth at that
// version; 0 when even version 40 is too small.
int MinimumVersion(int segment_bits, bool numeric, int level);
// Packs the fields MSB first, appends the terminator and the 236/17 padding.
std::vector<uint8_t> QRCodeGet8BitData(const std::vector<BitField>& fields, int codeword_count);
// The Reed-Solomon codewords of one block.
std::vector<uint8_t> QRCodeGetTotalData(const std::vector<uint8_t>& block, int ecc_count);
// Splits the data codewords into blocks, adds their error correction, interleaves.
std::vector<uint8_t> QRCodeTransRSBlock(const std::vector<uint8_t>& data_codewords, int version, int level);
// Byte-wise XOR; one byte longer than the longer input, which extends past the shorter.
std::vector<uint8_t> QRCodeGetByteData(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b);
// Penalty of each mask over the data area.
std::array<int, kMaskCount> MaskPenalties(const MaskCandidates& candidates);
// The mask with the lowest penalty; the lower number on a tie.
int QRCodeChooseMaskNumber(const MaskCandidates& candidates);

// How the mask is chosen when none is forced: this library's own scoring (the default
// form) or the four penalty rules of ISO/IEC 18004 section 7.8.3 over the whole symbol.
enum class MaskRule { kLibrary, kIso18004 };
// The ISO/IEC 18004 penalty (N1 + N2 + N3 + N4) of a finished symbol.
int IsoPenalty(const ModuleGrid& matrix);
// The symbol for a complete bit stream at `version`: terminator, padding, error
// correction, placement; `mask` 0..7 is used as given, anything else chosen by `rule`.
ModuleGrid EncodeSymbol(const std::vector<BitField>& fields, int version, int level, int mask, MaskRule rule,
                        int* chosen_mask = nullptr);

// One-shot encoder: configure, then run once.
class QRJam {
 public:
  // "N" selects numeric mode; "B", "A", "K" and anything else select byte mode.
  void SetModeString(const std::string& mode);
  const std::string& mode_string() const { return mode_string_; }
  int mode_indicator() const { return mode_indicator_; }
  // 0 = automatic; 1..40 = the smallest version to use. Other values mean automatic.
  void SetRequestedVersion(int version);
  // 0..3 = L, M, Q, H; other values mean M.
  void SetErrorCorrectionIndex(int level);
  // 0..7 forces that mask; anything else lets the library's scoring choose.
  void SetMask(int mask) { forced_mask_ = mask; }

  // Encodes `data`; throws QRCapacityError when version 40 cannot hold it.
  ModuleGrid QRGetData(const std::vector<uint8_t>& data);
  // Encodes into matrix(); an empty payload leaves the matrix empty.
  void qrcode_write_barcode(const std::vector<uint8_t>& data);

  const ModuleGrid& matrix() const { return matrix_; }
  int chosen_version() const { return chosen_version_; }
  int chosen_mask() const { return chosen_mask_; }

 private:
  std::string mode_string_ = "B";
  int mode_indicator_ = 4;
  int requested_version_ = 0;
  int level_ = kLevelM;
  int chosen_version_ = 0;
  int chosen_mask_ = 0;
  int forced_mask_ = -1;
  ModuleGrid matrix_;
};

}  // namespace barcode_orv::qr_internal
