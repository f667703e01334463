#include "twod/qr_encoder.h"

#include <algorithm>
#include <cassert>
#include <cstdlib>

#include "twod/galois_field.h"

namespace barcode_orv::qr_internal {
namespace {

// ---- ISO/IEC 18004 tables, indexed by version (entry 0 unused) ----

constexpr std::array<uint16_t, kMaxVersion + 1> kTotalCodewords = {
    0,    26,   44,   70,   100,  134,  172,  196,  242,  292,  346,  404,  466,  532,
    581,  655,  733,  815,  901,  991,  1085, 1156, 1258, 1364, 1474, 1588, 1706, 1828,
    1921, 2051, 2185, 2323, 2465, 2611, 2761, 2876, 3034, 3196, 3362, 3532, 3706};

constexpr std::array<uint8_t, kMaxVersion + 1> kRemainderBits = {0, 0, 7, 7, 7, 7, 7, 0, 0, 0, 0, 0, 0, 0,
                                                                 3, 3, 3, 3, 3, 3, 3, 4, 4, 4, 4, 4, 4, 4,
                                                                 3, 3, 3, 3, 3, 3, 3, 0, 0, 0, 0, 0, 0};

// Error-correction codewords per block, by level L, M, Q, H.
constexpr uint8_t kEccPerBlock[4][kMaxVersion + 1] = {
    {0,  7,  10, 15, 20, 26, 18, 20, 24, 30, 18, 20, 24, 26, 30, 22, 24, 28, 30, 28, 28,
     28, 28, 30, 30, 26, 28, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30},
    {0,  10, 16, 26, 18, 24, 16, 18, 22, 22, 26, 30, 22, 22, 24, 24, 28, 28, 26, 26, 26,
     26, 28, 28, 28, 28, 28, 28, 28, 28, 28, 28, 28, 28, 28, 28, 28, 28, 28, 28, 28},
    {0,  13, 22, 18, 26, 18, 24, 18, 22, 20, 24, 28, 26, 24, 20, 30, 24, 28, 28, 26, 30,
     28, 30, 30, 30, 30, 28, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30},
    {0,  17, 28, 22, 16, 22, 28, 26, 26, 24, 28, 24, 28, 22, 24, 24, 30, 28, 28, 26, 28,
     30, 24, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30},
};

// Error-correction blocks, by level L, M, Q, H.
constexpr uint8_t kEccBlocks[4][kMaxVersion + 1] = {
    {0, 1, 1, 1,  1,  1,  2,  2,  2,  2,  4,  4,  4,  4,  4,  6,  6,  6,  6,  7, 8,
     8, 9, 9, 10, 12, 12, 12, 13, 14, 15, 16, 17, 18, 19, 19, 20, 21, 22, 24, 25},
    {0,  1,  1,  1,  2,  2,  4,  4,  4,  5,  5,  5,  8,  9,  9,  10, 10, 11, 13, 14, 16,
     17, 17, 18, 20, 21, 23, 25, 26, 28, 29, 31, 33, 35, 37, 38, 40, 43, 45, 47, 49},
    {0,  1,  1,  2,  2,  4,  4,  6,  6,  8,  8,  8,  10, 12, 16, 12, 17, 16, 18, 21, 20,
     23, 23, 25, 27, 29, 34, 34, 35, 38, 40, 43, 45, 48, 51, 53, 56, 59, 62, 65, 68},
    {0,  1,  1,  2,  4,  4,  4,  5,  6,  8,  8,  11, 11, 16, 16, 18, 16, 19, 21, 25, 25,
     25, 34, 30, 32, 35, 37, 40, 42, 45, 48, 51, 54, 57, 60, 63, 66, 70, 74, 77, 81},
};

// Alignment-pattern centre coordinates (rows and columns alike); 0 ends a list.
constexpr uint8_t kAlignmentCentres[kMaxVersion + 1][7] = {
    {},
    {},
    {6, 18},
    {6, 22},
    {6, 26},
    {6, 30},
    {6, 34},
    {6, 22, 38},
    {6, 24, 42},
    {6, 26, 46},
    {6, 28, 50},
    {6, 30, 54},
    {6, 32, 58},
    {6, 34, 62},
    {6, 26, 46, 66},
    {6, 26, 48, 70},
    {6, 26, 50, 74},
    {6, 30, 54, 78},
    {6, 30, 56, 82},
    {6, 30, 58, 86},
    {6, 34, 62, 90},
    {6, 28, 50, 72, 94},
    {6, 26, 50, 74, 98},
    {6, 30, 54, 78, 102},
    {6, 28, 54, 80, 106},
    {6, 32, 58, 84, 110},
    {6, 30, 58, 86, 114},
    {6, 34, 62, 90, 118},
    {6, 26, 50, 74, 98, 122},
    {6, 30, 54, 78, 102, 126},
    {6, 26, 52, 78, 104, 130},
    {6, 30, 56, 82, 108, 134},
    {6, 34, 60, 86, 112, 138},
    {6, 30, 58, 86, 114, 142},
    {6, 34, 62, 90, 118, 146},
    {6, 30, 54, 78, 102, 126, 150},
    {6, 24, 50, 76, 102, 128, 154},
    {6, 28, 54, 80, 106, 132, 158},
    {6, 32, 58, 84, 110, 136, 162},
    {6, 26, 54, 82, 110, 138, 166},
    {6, 30, 58, 86, 114, 142, 170},
};

// Format bits beside the top-left finder, most significant bit first: column, row.
constexpr std::array<uint8_t, 15> kFormatColumns = {0, 1, 2, 3, 4, 5, 7, 8, 8, 8, 8, 8, 8, 8, 8};
constexpr std::array<uint8_t, 15> kFormatRows = {8, 8, 8, 8, 8, 8, 8, 8, 7, 5, 4, 3, 2, 1, 0};

// Mask scoring rule 4: indexed by the dark share of the data area in 5 % steps.
constexpr std::array<int, 21> kBalancePenalty = {90, 80, 70, 60, 50, 40, 30, 20, 10, 0, 0,
                                                 10, 20, 30, 40, 50, 60, 70, 80, 90, 90};

// ---- Reed-Solomon over GF(256) with the field polynomial 0x11D ----

constexpr const auto& kField = internal::kQrField;

constexpr int kMaxEccPerBlock = 30;

// Generator polynomials (x - a^0)(x - a^1)...(x - a^(n-1)) for every degree up to 30, in
// log form, highest power first with its implicit leading 1 dropped.
struct GeneratorTable {
  std::array<std::array<uint8_t, kMaxEccPerBlock>, kMaxEccPerBlock + 1> log_coefficients{};
};

constexpr GeneratorTable MakeGeneratorTable() {
  GeneratorTable table;
  for (int degree = 1; degree <= kMaxEccPerBlock; ++degree) {
    // coefficients[0] is the leading 1; multiply in (x - a^k) one root at a time.
    std::array<uint8_t, kMaxEccPerBlock + 1> coefficients{};
    coefficients[0] = 1;
    for (int root = 0; root < degree; ++root) {
      const uint8_t alpha = kField.exp[root];
      for (int i = root + 1; i >= 1; --i) {
        coefficients[i] = static_cast<uint8_t>(coefficients[i] ^ kField.Multiply(coefficients[i - 1], alpha));
      }
    }
    for (int i = 0; i < degree; ++i) {
      table.log_coefficients[degree][i] = kField.log[coefficients[i + 1]];
    }
  }
  return table;
}

constexpr GeneratorTable kGenerators = MakeGeneratorTable();

// ---- BCH codes of the format and version information ----

constexpr uint32_t BchRemainder(uint32_t value, int data_bits, uint32_t generator, int check_bits) {
  uint32_t remainder = value << check_bits;
  for (int bit = data_bits + check_bits - 1; bit >= check_bits; --bit) {
    if (remainder & (1u << bit)) remainder ^= generator << (bit - check_bits);
  }
  return remainder;
}

// Level indices L, M, Q, H as the two level bits of the format information.
constexpr std::array<uint8_t, 4> kFormatLevelBits = {0b01, 0b00, 0b11, 0b10};

constexpr std::array<uint16_t, 32> MakeFormatTable() {
  std::array<uint16_t, 32> table{};
  for (int level = 0; level < 4; ++level) {
    for (int mask = 0; mask < kMaskCount; ++mask) {
      const uint32_t data = (uint32_t{kFormatLevelBits[level]} << 3) | static_cast<uint32_t>(mask);
      const uint32_t coded = (data << 10) | BchRemainder(data, 5, 0x537, 10);
      table[level * kMaskCount + mask] = static_cast<uint16_t>(coded ^ 0x5412);
    }
  }
  return table;
}

constexpr std::array<uint16_t, 32> kFormatInformation = MakeFormatTable();
static_assert(kFormatInformation[0] == 0b111011111000100, "L, mask 0");
static_assert(kFormatInformation[8] == 0b101010000010010, "M, mask 0");
static_assert(kFormatInformation[16] == 0b011010101011111, "Q, mask 0");
static_assert(kFormatInformation[24] == 0b001011010001001, "H, mask 0");

constexpr std::array<uint32_t, kMaxVersion + 1> MakeVersionTable() {
  std::array<uint32_t, kMaxVersion + 1> table{};
  for (uint32_t version = 7; version <= kMaxVersion; ++version) {
    table[version] = (version << 12) | BchRemainder(version, 6, 0x1F25, 12);
  }
  return table;
}

constexpr std::array<uint32_t, kMaxVersion + 1> kVersionInformation = MakeVersionTable();
static_assert(kVersionInformation[7] == 0x07C94, "version 7");
static_assert(kVersionInformation[40] == 0x28C69, "version 40");

// ---- Per-mask counters ----

// kSpread[b] puts bit m of b into the lowest bit of byte lane m.
constexpr std::array<uint64_t, 256> MakeSpreadTable() {
  std::array<uint64_t, 256> table{};
  for (int value = 0; value < 256; ++value) {
    for (int mask = 0; mask < kMaskCount; ++mask) {
      if (value & (1 << mask)) table[value] |= uint64_t{1} << (8 * mask);
    }
  }
  return table;
}

constexpr std::array<uint64_t, 256> kSpread = MakeSpreadTable();

// Eight per-mask counts gathered in one word: byte lane m of `lanes` counts the bytes
// whose bit m was set. Lanes are 8 bits wide, so they are drained into a MaskCounters
// after at most 255 additions (every line of at most 177 modules is).
inline void AddFlags(uint64_t& lanes, uint8_t flags) { lanes += kSpread[flags]; }

class MaskCounters {
 public:
  void Drain(uint64_t& lanes) {
    for (int mask = 0; mask < kMaskCount; ++mask) totals_[mask] += static_cast<int>((lanes >> (8 * mask)) & 0xFF);
    lanes = 0;
  }
  int total(int mask) const { return totals_[mask]; }

 private:
  std::array<int, kMaskCount> totals_{};
};

// Bit m set where mask pattern m inverts the module at (row, col).
constexpr uint8_t ComputeMaskPatternBits(int row, int col) {
  const int sum = row + col;
  const int product = row * col;
  const bool patterns[kMaskCount] = {
      sum % 2 == 0,
      row % 2 == 0,
      col % 3 == 0,
      sum % 3 == 0,
      (row / 2 + col / 3) % 2 == 0,
      product % 2 + product % 3 == 0,
      (product % 2 + product % 3) % 2 == 0,
      (sum % 2 + product % 3) % 2 == 0,
  };
  uint8_t bits = 0;
  for (int mask = 0; mask < kMaskCount; ++mask) bits |= static_cast<uint8_t>(patterns[mask] << mask);
  return bits;
}

// Every mask pattern repeats every 12 rows and every 12 columns.
constexpr int kMaskPeriod = 12;

constexpr std::array<std::array<uint8_t, kMaskPeriod>, kMaskPeriod> MakeMaskPatternTable() {
  std::array<std::array<uint8_t, kMaskPeriod>, kMaskPeriod> table{};
  for (int row = 0; row < kMaskPeriod; ++row) {
    for (int col = 0; col < kMaskPeriod; ++col) table[row][col] = ComputeMaskPatternBits(row, col);
  }
  return table;
}

constexpr auto kMaskPatternTable = MakeMaskPatternTable();

constexpr bool MaskPatternsRepeat() {
  const int side = SideForVersion(kMaxVersion);
  for (int row = 0; row < side; ++row) {
    for (int col = 0; col < side; ++col) {
      if (ComputeMaskPatternBits(row, col) != kMaskPatternTable[row % kMaskPeriod][col % kMaskPeriod]) return false;
    }
  }
  return true;
}
static_assert(MaskPatternsRepeat(), "the mask table covers every module of version 40");

uint8_t MaskPatternBits(int row, int col) { return kMaskPatternTable[row % kMaskPeriod][col % kMaskPeriod]; }

// ---- Function patterns ----

// Frame modules of one version: their colour and which modules they occupy.
class Frame {
 public:
  explicit Frame(int side) : side_(side), cells_(static_cast<size_t>(side) * side, 0) {}

  int side() const { return side_; }
  bool is_function(int col, int row) const { return cells_[Index(col, row)] & kFunction; }
  bool dark(int col, int row) const { return cells_[Index(col, row)] & kDark; }
  void Set(int col, int row, bool dark) { cells_[Index(col, row)] = kFunction | (dark ? kDark : 0); }

 private:
  static constexpr uint8_t kDark = 1;
  static constexpr uint8_t kFunction = 2;
  size_t Index(int col, int row) const { return static_cast<size_t>(row) * side_ + col; }

  int side_;
  std::vector<uint8_t> cells_;
};

// Finder pattern with its light separator; (left, top) is the finder's corner.
void AddFinder(Frame& frame, int left, int top) {
  for (int dy = -1; dy <= 7; ++dy) {
    for (int dx = -1; dx <= 7; ++dx) {
      const int col = left + dx;
      const int row = top + dy;
      if (col < 0 || row < 0 || col >= frame.side() || row >= frame.side()) continue;
      const int ring = std::max(std::abs(dx - 3), std::abs(dy - 3));
      frame.Set(col, row, ring != 2 && ring != 4);
    }
  }
}

void AddAlignment(Frame& frame, int centre_col, int centre_row) {
  for (int dy = -2; dy <= 2; ++dy) {
    for (int dx = -2; dx <= 2; ++dx) {
      frame.Set(centre_col + dx, centre_row + dy, std::max(std::abs(dx), std::abs(dy)) != 1);
    }
  }
}

void AddAlignments(Frame& frame, int version) {
  const uint8_t* centres = kAlignmentCentres[version];
  const int count = static_cast<int>(std::find(centres, centres + 7, 0) - centres);
  for (int i = 0; i < count; ++i) {
    for (int j = 0; j < count; ++j) {
      // The three corners that would overlap a finder are left out.
      const bool at_finder = (i == 0 && j == 0) || (i == 0 && j == count - 1) || (i == count - 1 && j == 0);
      if (!at_finder) AddAlignment(frame, centres[i], centres[j]);
    }
  }
}

// Writes the 15 format bits into both copies (the frame reserves them with light).
template <typename SetModule>
void PlaceFormatBits(int side, uint16_t bits, SetModule set_module) {
  for (int k = 0; k < 15; ++k) {
    const bool dark = (bits >> (14 - k)) & 1;
    set_module(kFormatColumns[k], kFormatRows[k], dark);
    // Second copy: down the bottom-left finder, then along the top-right one.
    if (k < 7) {
      set_module(8, side - 1 - k, dark);
    } else {
      set_module(side - 15 + k, 8, dark);
    }
  }
}

void AddVersionInformation(Frame& frame, int version) {
  const uint32_t bits = kVersionInformation[version];
  const int side = frame.side();
  for (int i = 0; i < 18; ++i) {
    const bool dark = (bits >> i) & 1;
    const int across = side - 11 + i % 3;
    const int along = i / 3;
    frame.Set(across, along, dark);  // top-right block
    frame.Set(along, across, dark);  // bottom-left block
  }
}

// The function-pattern frame of `version`, with the format areas reserved.
Frame QRCodeGetSymbolData(int version) {
  const int side = SideForVersion(version);
  Frame frame(side);
  for (int i = 0; i < side; ++i) {
    frame.Set(6, i, i % 2 == 0);
    frame.Set(i, 6, i % 2 == 0);
  }
  AddFinder(frame, 0, 0);
  AddFinder(frame, side - 7, 0);
  AddFinder(frame, 0, side - 7);
  AddAlignments(frame, version);
  PlaceFormatBits(side, 0, [&frame](int col, int row, bool dark) { frame.Set(col, row, dark); });
  frame.Set(8, side - 8, true);  // the dark module
  if (version >= 7) AddVersionInformation(frame, version);
  return frame;
}

// ---- Placement ----

// Walks the data modules in the standard zigzag: two-module columns from the right,
// upwards and downwards alternately, skipping the vertical timing column.
template <typename Visit>
void ForEachDataModule(const Frame& frame, Visit visit) {
  const int side = frame.side();
  bool upward = true;
  for (int right = side - 1; right >= 1; right -= 2) {
    if (right == 6) right = 5;
    for (int step = 0; step < side; ++step) {
      const int row = upward ? side - 1 - step : step;
      for (int col = right; col >= right - 1; --col) {
        if (!frame.is_function(col, row)) visit(col, row);
      }
    }
    upward = !upward;
  }
}

MaskCandidates PlaceCodewords(const Frame& frame, const std::vector<uint8_t>& codewords, int version) {
  const int data_modules = static_cast<int>(codewords.size()) * 8 + RemainderBits(version);
  MaskCandidates candidates(frame.side(), data_modules);
  const int codeword_bits = static_cast<int>(codewords.size()) * 8;
  int bit_index = 0;
  ForEachDataModule(frame, [&](int col, int row) {
    // Remainder bits after the last codeword are light before masking.
    const bool dark = bit_index < codeword_bits && ((codewords[bit_index >> 3] >> (7 - (bit_index & 7))) & 1);
    const uint8_t pattern = MaskPatternBits(row, col);
    candidates.set(col, row, dark ? static_cast<uint8_t>(~pattern) : pattern);
    ++bit_index;
  });
  assert(bit_index == data_modules);
  return candidates;
}

ModuleGrid Compose(const Frame& frame, const MaskCandidates& candidates, int mask, int level) {
  const int side = frame.side();
  ModuleGrid matrix(side, side);
  for (int row = 0; row < side; ++row) {
    for (int col = 0; col < side; ++col) {
      const bool dark =
          frame.is_function(col, row) ? frame.dark(col, row) : ((candidates.at(col, row) >> mask) & 1) != 0;
      matrix.set(col, row, dark);
    }
  }
  PlaceFormatBits(side, FormatInformation(level, mask),
                  [&matrix](int col, int row, bool dark) { matrix.set(col, row, dark); });
  return matrix;
}

// ---- Mask scoring ----

struct LineCounters {
  MaskCounters run_modules;  // modules at position five or later of a run
  MaskCounters run_starts;   // runs that have just reached five modules
  MaskCounters finder_windows;
};

// Rule 1 along one row or column: runs of five or more equal modules.
void ScoreRuns(const uint8_t* first, ptrdiff_t stride, int length, LineCounters& counters) {
  // same1..same4: flags of "module equals the one before it" for the last four steps.
  uint8_t same1 = 0, same2 = 0, same3 = 0, same4 = 0;
  uint8_t previous = first[0];
  // Local lanes stay in registers across the byte loads.
  uint64_t run_modules = 0, run_starts = 0;
  for (int i = 1; i < length; ++i) {
    const uint8_t module = first[i * stride];
    const auto same0 = static_cast<uint8_t>(~(module ^ previous));
    const uint8_t five_or_more = same0 & same1 & same2 & same3;
    AddFlags(run_modules, five_or_more);
    AddFlags(run_starts, five_or_more & static_cast<uint8_t>(~same4));
    same4 = same3;
    same3 = same2;
    same2 = same1;
    same1 = same0;
    previous = module;
  }
  counters.run_modules.Drain(run_modules);
  counters.run_starts.Drain(run_starts);
}

// Rule 3 along one row or column. Deliberate: a 1011101 window scores on its own; the
// light margins the standard also asks for are not examined, so more windows count.
void ScoreFinderWindows(const uint8_t* first, ptrdiff_t stride, int length, LineCounters& counters) {
  auto at = [first, stride](int i) { return first[i * stride]; };
  uint64_t windows = 0;
  for (int i = 6; i < length; ++i) {
    const auto window =
        static_cast<uint8_t>(at(i - 6) & ~at(i - 5) & at(i - 4) & at(i - 3) & at(i - 2) & ~at(i - 1) & at(i));
    AddFlags(windows, window);
  }
  counters.finder_windows.Drain(windows);
}

void ScoreLine(const uint8_t* first, ptrdiff_t stride, int length, LineCounters& counters) {
  ScoreRuns(first, stride, length, counters);
  ScoreFinderWindows(first, stride, length, counters);
}

}  // namespace

QRCapacityError::QRCapacityError()
    : SymbolCapacityError(
          "Data too long for QR Code. "
          "Data requires more capacity than Version 40 can provide. "
          "Reduce data length or use a lower error correction level.") {}

int TotalCodewords(int version) { return kTotalCodewords[version]; }
int RemainderBits(int version) { return kRemainderBits[version]; }
int ErrorCorrectionCodewordsPerBlock(int version, int level) { return kEccPerBlock[level][version]; }
int ErrorCorrectionBlockCount(int version, int level) { return kEccBlocks[level][version]; }

int DataCapacityBits(int version, int level) {
  const int data_codewords = TotalCodewords(version) - ErrorCorrectionCodewordsPerBlock(version, level) *
                                                           ErrorCorrectionBlockCount(version, level);
  return data_codewords * 8;
}

uint16_t FormatInformation(int level, int mask) { return kFormatInformation[level * kMaskCount + mask]; }
uint32_t VersionInformation(int version) { return kVersionInformation[version]; }

std::vector<BitField> BuildSegment(const std::vector<uint8_t>& data, bool numeric) {
  const auto count = static_cast<uint32_t>(data.size());
  std::vector<BitField> fields;
  if (!numeric) {
    fields.reserve(data.size() + 2);
    fields.push_back({4, 4});
    fields.push_back({count, 8});
    for (uint8_t byte : data) fields.push_back({byte, 8});
    return fields;
  }
  fields.reserve(data.size() / 3 + 3);
  fields.push_back({1, 4});
  fields.push_back({count, 10});
  // Groups of three digits in 10 bits, a final pair in 7, a final digit in 4. The bytes
  // are not checked: a non-digit contributes (byte - '0') and only the low bits survive.
  constexpr int kGroupBits[4] = {0, 4, 7, 10};
  for (size_t start = 0; start < data.size(); start += 3) {
    const size_t digits = std::min<size_t>(3, data.size() - start);
    int value = 0;
    for (size_t i = 0; i < digits; ++i) value = value * 10 + (data[start + i] - '0');
    fields.push_back({static_cast<uint32_t>(value), kGroupBits[digits]});
  }
  return fields;
}

int CountFieldGrowth(bool numeric, int version) {
  if (version < 10) return 0;
  if (!numeric) return 8;
  return version < 27 ? 2 : 4;
}

int MinimumVersion(int segment_bits, bool numeric, int level) {
  for (int version = kMinVersion; version <= kMaxVersion; ++version) {
    if (DataCapacityBits(version, level) >= segment_bits + CountFieldGrowth(numeric, version)) return version;
  }
  return 0;
}

std::vector<uint8_t> QRCodeGet8BitData(const std::vector<BitField>& fields, int codeword_count) {
  std::vector<uint8_t> codewords;
  codewords.reserve(codeword_count);
  uint32_t accumulator = 0;
  int pending_bits = 0;
  int total_bits = 0;
  auto append = [&](uint32_t value, int bits) {
    for (int bit = bits - 1; bit >= 0; --bit) {
      accumulator = (accumulator << 1) | ((value >> bit) & 1);
      if (++pending_bits == 8) {
        codewords.push_back(static_cast<uint8_t>(accumulator));
        accumulator = 0;
        pending_bits = 0;
      }
    }
    total_bits += bits;
  };
  for (const BitField& field : fields) append(field.value, field.bits);

  const int capacity_bits = codeword_count * 8;
  if (total_bits <= capacity_bits - 4) {
    append(0, 4);
  } else if (total_bits < capacity_bits) {
    append(0, capacity_bits - total_bits);
  }
  if (pending_bits > 0) append(0, 8 - pending_bits);

  for (uint8_t pad = 236; static_cast<int>(codewords.size()) < codeword_count; pad = pad == 236 ? 17 : 236) {
    codewords.push_back(pad);
  }
  return codewords;
}

std::vector<uint8_t> QRCodeGetTotalData(const std::vector<uint8_t>& block, int ecc_count) {
  const auto& generator = kGenerators.log_coefficients[ecc_count];
  std::vector<uint8_t> remainder(ecc_count, 0);
  for (uint8_t codeword : block) {
    const uint8_t factor = codeword ^ remainder.front();
    std::copy(remainder.begin() + 1, remainder.end(), remainder.begin());
    remainder.back() = 0;
    if (factor == 0) continue;
    const int factor_log = kField.log[factor];
    for (int i = 0; i < ecc_count; ++i) remainder[i] ^= kField.exp[generator[i] + factor_log];
  }
  return remainder;
}

std::vector<uint8_t> QRCodeTransRSBlock(const std::vector<uint8_t>& data_codewords, int version, int level) {
  const int block_count = ErrorCorrectionBlockCount(version, level);
  const int ecc_count = ErrorCorrectionCodewordsPerBlock(version, level);
  const int data_count = static_cast<int>(data_codewords.size());
  const int short_length = data_count / block_count;
  const int long_blocks = data_count % block_count;  // the last blocks carry one more

  std::vector<std::vector<uint8_t>> data_blocks;
  std::vector<std::vector<uint8_t>> ecc_blocks;
  data_blocks.reserve(block_count);
  ecc_blocks.reserve(block_count);
  auto next = data_codewords.begin();
  for (int block = 0; block < block_count; ++block) {
    const int length = short_length + (block >= block_count - long_blocks ? 1 : 0);
    data_blocks.emplace_back(next, next + length);
    next += length;
    ecc_blocks.push_back(QRCodeGetTotalData(data_blocks.back(), ecc_count));
  }

  std::vector<uint8_t> interleaved;
  interleaved.reserve(TotalCodewords(version));
  for (int i = 0; i <= short_length; ++i) {
    for (const auto& block : data_blocks) {
      if (i < static_cast<int>(block.size())) interleaved.push_back(block[i]);
    }
  }
  for (int i = 0; i < ecc_count; ++i) {
    for (const auto& block : ecc_blocks) interleaved.push_back(block[i]);
  }
  return interleaved;
}

std::vector<uint8_t> QRCodeGetByteData(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  const std::vector<uint8_t>& longer = a.size() >= b.size() ? a : b;
  const std::vector<uint8_t>& shorter = a.size() >= b.size() ? b : a;
  std::vector<uint8_t> result(longer.size() + 1, 0);
  for (size_t i = 0; i < longer.size(); ++i) {
    result[i] = i < shorter.size() ? static_cast<uint8_t>(longer[i] ^ shorter[i]) : longer[i];
  }
  return result;
}

std::array<int, kMaskCount> MaskPenalties(const MaskCandidates& candidates) {
  const int side = candidates.side();
  LineCounters lines;
  MaskCounters blocks;
  MaskCounters dark;
  for (int row = 0; row < side; ++row) {
    const uint8_t* cells = candidates.row_data(row);
    ScoreLine(cells, 1, side, lines);
    uint64_t dark_lanes = 0;
    for (int col = 0; col < side; ++col) AddFlags(dark_lanes, cells[col]);
    dark.Drain(dark_lanes);
    if (row + 1 < side) {
      const uint8_t* below = candidates.row_data(row + 1);
      uint64_t block_lanes = 0;
      for (int col = 0; col + 1 < side; ++col) {
        const uint8_t corner = cells[col];
        const uint8_t differs = (corner ^ cells[col + 1]) | (corner ^ below[col]) | (corner ^ below[col + 1]);
        AddFlags(block_lanes, static_cast<uint8_t>(~differs));
      }
      blocks.Drain(block_lanes);
    }
  }
  // Columns are scored on a transposed copy: contiguous reads instead of a stride.
  std::vector<uint8_t> columns(static_cast<size_t>(side) * side);
  for (int row = 0; row < side; ++row) {
    const uint8_t* cells = candidates.row_data(row);
    for (int col = 0; col < side; ++col) columns[static_cast<size_t>(col) * side + row] = cells[col];
  }
  for (int col = 0; col < side; ++col) ScoreLine(columns.data() + static_cast<size_t>(col) * side, 1, side, lines);

  std::array<int, kMaskCount> penalties{};
  const int data_modules = std::max(candidates.data_modules(), 1);
  for (int mask = 0; mask < kMaskCount; ++mask) {
    const int runs = lines.run_modules.total(mask) + 2 * lines.run_starts.total(mask);
    // Deliberate: the balance step is the floor of dark * 20 / N over the data area
    // alone, not the standard's distance from 50 % over the whole symbol.
    const int balance_step = std::min(dark.total(mask) * 20 / data_modules, 20);
    penalties[mask] =
        runs + 3 * blocks.total(mask) + 40 * lines.finder_windows.total(mask) + kBalancePenalty[balance_step];
  }
  return penalties;
}

int QRCodeChooseMaskNumber(const MaskCandidates& candidates) {
  const std::array<int, kMaskCount> penalties = MaskPenalties(candidates);
  // min_element keeps the first of equal values: the lower mask number wins a tie.
  return static_cast<int>(std::min_element(penalties.begin(), penalties.end()) - penalties.begin());
}

namespace {

std::array<int, kMaskCount> IsoMaskPenalties(const Frame& frame, const MaskCandidates& candidates, int level) {
  std::array<int, kMaskCount> penalties{};
  for (int mask = 0; mask < kMaskCount; ++mask) penalties[mask] = IsoPenalty(Compose(frame, candidates, mask, level));
  return penalties;
}

}  // namespace

int IsoPenalty(const ModuleGrid& matrix) {
  const int side = matrix.cols();
  auto line_penalty = [side](auto dark) {
    int penalty = 0;
    // N1: runs of five or more equal modules, 3 + (run - 5).
    int run = 1;
    for (int i = 1; i <= side; ++i) {
      if (i < side && dark(i) == dark(i - 1)) {
        ++run;
        continue;
      }
      if (run >= 5) penalty += 3 + run - 5;
      run = 1;
    }
    // N3: 1:1:3:1:1 (dark-light-dark-dark-dark-light-dark) with four light modules on
    // one side; the light area beyond the symbol's edge counts.
    auto at = [&dark, side](int i) { return i >= 0 && i < side && dark(i); };
    for (int i = 0; i + 7 <= side; ++i) {
      if (!(at(i) && !at(i + 1) && at(i + 2) && at(i + 3) && at(i + 4) && !at(i + 5) && at(i + 6))) continue;
      const bool light_before = !at(i - 1) && !at(i - 2) && !at(i - 3) && !at(i - 4);
      const bool light_after = !at(i + 7) && !at(i + 8) && !at(i + 9) && !at(i + 10);
      penalty += 40 * ((light_before ? 1 : 0) + (light_after ? 1 : 0));
    }
    return penalty;
  };
  int penalty = 0;
  int dark_modules = 0;
  for (int k = 0; k < side; ++k) {
    penalty += line_penalty([&matrix, k](int i) { return matrix.dark(i, k); });
    penalty += line_penalty([&matrix, k](int i) { return matrix.dark(k, i); });
    for (int i = 0; i < side; ++i) dark_modules += matrix.dark(i, k) ? 1 : 0;
  }
  // N2: every 2 x 2 block of one colour.
  for (int row = 0; row + 1 < side; ++row) {
    for (int col = 0; col + 1 < side; ++col) {
      const bool dark = matrix.dark(col, row);
      if (matrix.dark(col + 1, row) == dark && matrix.dark(col, row + 1) == dark &&
          matrix.dark(col + 1, row + 1) == dark) {
        penalty += 3;
      }
    }
  }
  // N4: 10 points for every full 5 % the dark share departs from 50 %.
  const int total = side * side;
  penalty += 10 * (std::abs(dark_modules * 20 - total * 10) / total);
  return penalty;
}

ModuleGrid EncodeSymbol(const std::vector<BitField>& fields, int version, int level, int mask, MaskRule rule,
                        int* chosen_mask) {
  const int data_codewords = DataCapacityBits(version, level) / 8;
  const std::vector<uint8_t> codewords = QRCodeTransRSBlock(QRCodeGet8BitData(fields, data_codewords), version, level);
  const Frame frame = QRCodeGetSymbolData(version);
  const MaskCandidates candidates = PlaceCodewords(frame, codewords, version);
  if (mask < 0 || mask >= kMaskCount) {
    if (rule == MaskRule::kLibrary) {
      mask = QRCodeChooseMaskNumber(candidates);
    } else {
      const std::array<int, kMaskCount> penalties = IsoMaskPenalties(frame, candidates, level);
      mask = static_cast<int>(std::min_element(penalties.begin(), penalties.end()) - penalties.begin());
    }
  }
  if (chosen_mask != nullptr) *chosen_mask = mask;
  return Compose(frame, candidates, mask, level);
}

void QRJam::SetModeString(const std::string& mode) {
  mode_string_ = mode;
  mode_indicator_ = mode == "N" ? 1 : mode == "A" ? 2 : 4;
}

void QRJam::SetRequestedVersion(int version) {
  requested_version_ = version >= kMinVersion && version <= kMaxVersion ? version : 0;
}

void QRJam::SetErrorCorrectionIndex(int level) { level_ = level >= kLevelL && level <= kLevelH ? level : kLevelM; }

ModuleGrid QRJam::QRGetData(const std::vector<uint8_t>& data) {
  // Deliberate: only "N" selects numeric mode; "A" and "K" are carried in byte mode like
  // "B", so every payload byte survives unchanged whatever the setting.
  const bool numeric = mode_string_ == "N";
  mode_indicator_ = numeric ? 1 : 4;

  std::vector<BitField> fields = BuildSegment(data, numeric);
  int segment_bits = 0;
  for (const BitField& field : fields) segment_bits += field.bits;

  const int minimum = MinimumVersion(segment_bits, numeric, level_);
  if (minimum == 0) {
    chosen_version_ = 0;
    throw QRCapacityError();
  }
  // A requested version that is too small is raised without a warning.
  chosen_version_ = std::max(minimum, requested_version_);
  fields[1].bits += CountFieldGrowth(numeric, chosen_version_);

  return EncodeSymbol(fields, chosen_version_, level_, forced_mask_, MaskRule::kLibrary, &chosen_mask_);
}

void QRJam::qrcode_write_barcode(const std::vector<uint8_t>& data) {
  matrix_ = ModuleGrid();
  if (data.empty()) return;
  matrix_ = QRGetData(data);
}

}  // namespace barcode_orv::qr_internal
