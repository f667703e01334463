#include "core/image_deflater.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace barcode_orv {
namespace {

constexpr size_t kMinMatch = 3;
constexpr size_t kMaxMatch = 258;
constexpr size_t kWindow = 32768;
// Entries of the table of 4-byte strings: 32 KB, small enough to stay in the first-level
// cache.
constexpr int kHashBits = 13;
// Symbols per block: each block gets codes fitted to its own part of the picture.
constexpr size_t kBlockSymbols = 16384;
// A 3-byte match farther back than this costs more bits than its three literals.
constexpr size_t kFarDistance = 4096;
// Rows of a repeated run are one copy at the row's distance up to this width; a wider
// repeated "Up" row is written as its run of zeros, whose distance of 1 costs no extra bits.
constexpr size_t kMaxCopiedRow = 2048;
// A match this long from the run, the row above or a recent distance is taken without
// looking through the hash chain.
constexpr size_t kNiceLength = 32;
// Matches up to this long enter every position they cover into the hash table; longer
// ones their first half of this many and their last three. Every position of a longer
// copy cost time and found no better matches in our pictures (at 16, a line of text took
// 2.5 % more instructions for 0-4 bytes less).
constexpr size_t kFullyEnteredMatch = 8;
// Runs of repeated rows up to this many bytes are searched with the rows around them.
constexpr size_t kSearchedRepeatBytes = 1024;
// Beyond this, positions no longer fit the hash table's entries: runs and rows only.
constexpr size_t kMaxHashedBytes = size_t{1} << 30;

// ---- RFC 1951, section 3.2.5: lengths and distances ----

constexpr std::array<uint16_t, 29> kLengthBase = {3,  4,  5,  6,  7,  8,  9,  10, 11,  13,  15,  17,  19,  23, 27,
                                                  31, 35, 43, 51, 59, 67, 83, 99, 115, 131, 163, 195, 227, 258};
constexpr std::array<uint8_t, 29> kLengthExtra = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                                  2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
constexpr std::array<uint16_t, 30> kDistanceBase = {1,    2,    3,    4,    5,    7,    9,    13,    17,    25,
                                                    33,   49,   65,   97,   129,  193,  257,  385,   513,   769,
                                                    1025, 1537, 2049, 3073, 4097, 6145, 8193, 12289, 16385, 24577};
constexpr std::array<uint8_t, 30> kDistanceExtra = {0, 0, 0, 0, 1, 1, 2, 2,  3,  3,  4,  4,  5,  5,  6,
                                                    6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13};

// The length code (0-28) of each match length less 3.
constexpr std::array<uint8_t, 256> MakeLengthCodes() {
  std::array<uint8_t, 256> codes{};
  for (size_t code = 0; code < kLengthBase.size(); ++code) {
    const size_t end = code + 1 < kLengthBase.size() ? kLengthBase[code + 1] : kMaxMatch + 1;
    for (size_t length = kLengthBase[code]; length < end; ++length)
      codes[length - kMinMatch] = static_cast<uint8_t>(code);
  }
  return codes;
}
constexpr std::array<uint8_t, 256> kLengthCodes = MakeLengthCodes();

// The distance code (0-29) of distance - 1: directly below 256, else by its 128s (every
// code from 256 on starts at a multiple of 128).
struct DistanceCodeTable {
  std::array<uint8_t, 256> near{};
  std::array<uint8_t, 256> far{};
};
constexpr DistanceCodeTable MakeDistanceCodes() {
  DistanceCodeTable table;
  for (size_t code = 0; code < kDistanceBase.size(); ++code) {
    const size_t end = code + 1 < kDistanceBase.size() ? kDistanceBase[code + 1] : kWindow + 1;
    for (size_t distance = kDistanceBase[code]; distance < end; ++distance) {
      const size_t value = distance - 1;
      if (value < 256) {
        table.near[value] = static_cast<uint8_t>(code);
      } else {
        table.far[value >> 7] = static_cast<uint8_t>(code);
      }
    }
  }
  return table;
}
constexpr DistanceCodeTable kDistanceCodes = MakeDistanceCodes();

constexpr int DistanceCode(size_t distance) {
  const size_t value = distance - 1;
  return value < 256 ? kDistanceCodes.near[value] : kDistanceCodes.far[value >> 7];
}

static_assert(kLengthCodes[0] == 0 && kLengthCodes[227 - kMinMatch] == 27 && kLengthCodes[257 - kMinMatch] == 27 &&
              kLengthCodes[kMaxMatch - kMinMatch] == 28);
static_assert(DistanceCode(1) == 0 && DistanceCode(5) == 4 && DistanceCode(256) == 15 && DistanceCode(257) == 16 &&
              DistanceCode(24576) == 28 && DistanceCode(24577) == 29 && DistanceCode(kWindow) == 29);

// A symbol of the block being gathered: a literal byte, or a match.
constexpr uint32_t kMatchFlag = 1U << 31;
constexpr uint32_t MatchSymbol(size_t length, size_t distance) {
  return kMatchFlag | static_cast<uint32_t>(length - kMinMatch) << 16 | static_cast<uint32_t>(distance - 1);
}
constexpr size_t MatchLengthOf(uint32_t symbol) { return ((symbol >> 16) & 0xFFU) + kMinMatch; }
constexpr size_t MatchDistanceOf(uint32_t symbol) { return (symbol & 0xFFFFU) + 1; }

// ---- Huffman codes ----

constexpr int kLiteralCodes = 286;  // bytes, end of block (256), lengths (257-285)
constexpr int kEndOfBlock = 256;
constexpr int kDistanceCodeCount = 30;
constexpr int kCodeLengthCodes = 19;
constexpr int kMaxCodeLength = 15;
constexpr int kMaxCodeLengthCodeLength = 7;
constexpr std::array<uint8_t, kCodeLengthCodes> kCodeLengthOrder = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                                    11, 4,  12, 3, 13, 2, 14, 1, 15};

// Code lengths and the codes themselves, bit-reversed for the stream's LSB-first order.
struct HuffmanCode {
  std::array<uint8_t, 288> lengths{};
  std::array<uint16_t, 288> bits{};
};

constexpr std::array<uint8_t, 256> MakeReversedBytes() {
  std::array<uint8_t, 256> reversed{};
  for (unsigned byte = 0; byte < 256; ++byte) {
    unsigned value = 0;
    for (int bit = 0; bit < 8; ++bit) value |= ((byte >> bit) & 1U) << (7 - bit);
    reversed[byte] = static_cast<uint8_t>(value);
  }
  return reversed;
}
constexpr std::array<uint8_t, 256> kReversedBytes = MakeReversedBytes();

// The `length` low bits of `code` in reverse order.
constexpr uint16_t ReverseBits(unsigned code, int length) {
  const unsigned reversed16 =
      static_cast<unsigned>(kReversedBytes[code & 0xFFU]) << 8 | kReversedBytes[(code >> 8) & 0xFFU];
  return static_cast<uint16_t>(reversed16 >> (16 - length));
}
static_assert(ReverseBits(0b110, 3) == 0b011 && ReverseBits(1, 15) == 0x4000 && ReverseBits(0b10011, 5) == 0b11001);

// The canonical codes of `count` lengths (RFC 1951, section 3.2.2).
void AssignCodes(int count, HuffmanCode* code) {
  std::array<unsigned, kMaxCodeLength + 1> per_length{};
  for (int symbol = 0; symbol < count; ++symbol) ++per_length[code->lengths[symbol]];
  per_length[0] = 0;
  std::array<unsigned, kMaxCodeLength + 1> next{};
  unsigned value = 0;
  for (int length = 1; length <= kMaxCodeLength; ++length) {
    value = (value + per_length[length - 1]) << 1;
    next[length] = value;
  }
  for (int symbol = 0; symbol < count; ++symbol) {
    const int length = code->lengths[symbol];
    if (length != 0) code->bits[symbol] = ReverseBits(next[length]++, length);
  }
}

// Huffman code lengths of at most `max_length` bits for `freq[0..count)`. The optimal
// lengths come from the two-queue construction over the symbols sorted by frequency;
// lengths past the limit are cut to it and the code made complete again by lengthening
// the shortest codes one by one. A lone symbol gets a partner, since a decoder wants a
// complete code.
void BuildLengths(const uint32_t* freq, int count, int max_length, HuffmanCode* code) {
  std::fill(code->lengths.begin(), code->lengths.end(), 0);
  // The work arrays are written before they are read, up to the counts in use: left
  // uninitialised (zeroing their 8 KB three times a block cost 1 % of a small picture).
  std::array<uint16_t, 288> leaves;
  int used = 0;
  for (int symbol = 0; symbol < count; ++symbol) {
    if (freq[symbol] != 0) leaves[used++] = static_cast<uint16_t>(symbol);
  }
  if (used == 0) return;
  if (used == 1) {
    code->lengths[leaves[0]] = 1;
    code->lengths[leaves[0] == 0 ? 1 : 0] = 1;
    AssignCodes(count, code);
    return;
  }
  // Sorted by frequency, then symbol, as one key (blocks hold far fewer than 2^22 symbols).
  std::array<uint32_t, 288> keys;
  for (int i = 0; i < used; ++i) keys[i] = std::min<uint32_t>(freq[leaves[i]], (1U << 22) - 1) << 9 | leaves[i];
  std::sort(keys.begin(), keys.begin() + used);
  for (int i = 0; i < used; ++i) leaves[i] = static_cast<uint16_t>(keys[i] & 0x1FFU);
  // Nodes 0..used-1 are the leaves in that order, then the inner nodes as they are made,
  // which come out in order of weight.
  std::array<uint64_t, 2 * 288> weight;
  std::array<uint16_t, 2 * 288> parent;
  for (int i = 0; i < used; ++i) weight[i] = freq[leaves[i]];
  int next_leaf = 0;
  int next_inner = used;
  int end = used;
  const auto lightest = [&]() {
    if (next_leaf < used && (next_inner >= end || weight[next_leaf] <= weight[next_inner])) return next_leaf++;
    return next_inner++;
  };
  while (end < 2 * used - 1) {
    const int a = lightest();
    const int b = lightest();
    weight[end] = weight[a] + weight[b];
    parent[a] = parent[b] = static_cast<uint16_t>(end);
    ++end;
  }
  std::array<uint16_t, 2 * 288> depth;
  depth[end - 1] = 0;  // the root
  for (int node = end - 2; node >= 0; --node) depth[node] = static_cast<uint16_t>(depth[parent[node]] + 1);

  std::array<unsigned, kMaxCodeLength + 1> per_length{};
  for (int i = 0; i < used; ++i) ++per_length[std::min<int>(depth[i], max_length)];
  uint32_t kraft = 0;  // in units of 2^-max_length
  for (int length = 1; length <= max_length; ++length) kraft += per_length[length] << (max_length - length);
  while (kraft > (1U << max_length)) {
    --per_length[max_length];
    for (int length = max_length - 1; length > 0; --length) {
      if (per_length[length] != 0) {
        --per_length[length];
        per_length[length + 1] += 2;
        break;
      }
    }
    --kraft;
  }
  // The most frequent symbols take the shortest codes.
  int leaf = used - 1;
  for (int length = 1; length <= max_length; ++length) {
    for (unsigned n = per_length[length]; n > 0; --n) code->lengths[leaves[leaf--]] = static_cast<uint8_t>(length);
  }
  AssignCodes(count, code);
}

const HuffmanCode& FixedLiteralCode() {
  static const HuffmanCode code = [] {
    HuffmanCode fixed;
    for (int symbol = 0; symbol < 288; ++symbol) {
      fixed.lengths[symbol] = symbol < 144 ? 8 : symbol < 256 ? 9 : symbol < 280 ? 7 : 8;
    }
    AssignCodes(288, &fixed);
    return fixed;
  }();
  return code;
}

const HuffmanCode& FixedDistanceCode() {
  static const HuffmanCode code = [] {
    HuffmanCode fixed;
    std::fill(fixed.lengths.begin(), fixed.lengths.begin() + 32, 5);
    AssignCodes(32, &fixed);
    return fixed;
  }();
  return code;
}

// ---- The bit stream ----

class BitWriter {
 public:
  // Writes after the end of `out`, which grows ahead of the bits in steps (a resize
  // per word would cost more than the word); Finish trims it to what was written.
  explicit BitWriter(std::vector<uint8_t>* out) : out_(out), next_(out->size()) {}

  // `count` <= 32 bits of `value`, least significant first.
  void Put(uint32_t value, int count) {
    buffer_ |= uint64_t{value} << filled_;
    filled_ += count;
    if (filled_ >= 32) {
      Reserve(4);
      uint8_t* at = out_->data() + next_;
      at[0] = static_cast<uint8_t>(buffer_);
      at[1] = static_cast<uint8_t>(buffer_ >> 8);
      at[2] = static_cast<uint8_t>(buffer_ >> 16);
      at[3] = static_cast<uint8_t>(buffer_ >> 24);
      next_ += 4;
      buffer_ >>= 32;
      filled_ -= 32;
    }
  }

  // Pads to a byte boundary and writes out every bit held.
  void Flush() {
    Reserve(8);
    for (; filled_ > 0; filled_ -= std::min(filled_, 8)) {
      (*out_)[next_++] = static_cast<uint8_t>(buffer_);
      buffer_ >>= 8;
    }
    buffer_ = 0;
    filled_ = 0;
  }

  // Bytes as they are, after Flush.
  void PutBytes(const uint8_t* bytes, size_t count) {
    if (count == 0) return;
    Reserve(count);
    std::memcpy(out_->data() + next_, bytes, count);
    next_ += count;
  }

  void Finish() {
    Flush();
    out_->resize(next_);
  }

 private:
  void Reserve(size_t bytes) {
    if (next_ + bytes > out_->size()) out_->resize(std::max(2 * out_->size(), next_ + bytes + 4096));
  }

  std::vector<uint8_t>* out_;
  size_t next_;
  uint64_t buffer_ = 0;
  int filled_ = 0;
};

// ---- One block ----

struct SymbolCounts {
  std::array<uint32_t, kLiteralCodes> literals{};
  std::array<uint32_t, kDistanceCodeCount> distances{};
  uint64_t extra_bits = 0;  // the length and distance extra bits, the same in every block type
};

SymbolCounts CountSymbols(const std::vector<uint32_t>& symbols) {
  SymbolCounts counts;
  for (const uint32_t symbol : symbols) {
    if ((symbol & kMatchFlag) == 0) {
      ++counts.literals[symbol];
      continue;
    }
    const int length_code = kLengthCodes[MatchLengthOf(symbol) - kMinMatch];
    const int distance_code = DistanceCode(MatchDistanceOf(symbol));
    ++counts.literals[257 + length_code];
    ++counts.distances[distance_code];
    counts.extra_bits += kLengthExtra[length_code] + kDistanceExtra[distance_code];
  }
  counts.literals[kEndOfBlock] = 1;
  return counts;
}

uint64_t CodedBits(const uint32_t* freq, int count, const HuffmanCode& code) {
  uint64_t bits = 0;
  for (int symbol = 0; symbol < count; ++symbol) bits += uint64_t{freq[symbol]} * code.lengths[symbol];
  return bits;
}

// The code lengths of a dynamic block, run-length coded with codes 16-18
// (RFC 1951, section 3.2.7).
struct DynamicHeader {
  HuffmanCode literals;
  HuffmanCode distances;
  HuffmanCode lengths;  // the code of the code lengths
  int literal_count = 257;
  int distance_count = 1;
  int length_code_count = 4;
  std::vector<uint16_t> runs;  // code-length symbol | extra value << 8
  uint64_t bits = 0;           // the header's own size
};

constexpr int kRepeatPrevious = 16;  // 3-6 times, 2 extra bits
constexpr int kRepeatZero = 17;      // 3-10 times, 3 extra bits
constexpr int kRepeatZeroLong = 18;  // 11-138 times, 7 extra bits

std::vector<uint16_t> RunLengthCode(const std::vector<uint8_t>& lengths) {
  std::vector<uint16_t> runs;
  const auto emit = [&runs](int symbol, int extra) { runs.push_back(static_cast<uint16_t>(symbol | extra << 8)); };
  for (size_t i = 0; i < lengths.size();) {
    const uint8_t length = lengths[i];
    size_t run = 1;
    while (i + run < lengths.size() && lengths[i + run] == length) ++run;
    i += run;
    if (length == 0) {
      for (; run >= 11; run -= std::min<size_t>(run, 138))
        emit(kRepeatZeroLong, static_cast<int>(std::min<size_t>(run, 138) - 11));
      if (run >= 3) {
        emit(kRepeatZero, static_cast<int>(run - 3));
        run = 0;
      }
    } else {
      emit(length, 0);
      --run;
      for (; run >= 3; run -= std::min<size_t>(run, 6))
        emit(kRepeatPrevious, static_cast<int>(std::min<size_t>(run, 6) - 3));
    }
    for (; run > 0; --run) emit(length, 0);
  }
  return runs;
}

int ExtraBitsOfRun(int symbol) {
  return symbol == kRepeatPrevious ? 2 : symbol == kRepeatZero ? 3 : symbol == kRepeatZeroLong ? 7 : 0;
}

DynamicHeader MakeDynamicHeader(const SymbolCounts& counts) {
  DynamicHeader header;
  BuildLengths(counts.literals.data(), kLiteralCodes, kMaxCodeLength, &header.literals);
  BuildLengths(counts.distances.data(), kDistanceCodeCount, kMaxCodeLength, &header.distances);
  if (std::all_of(counts.distances.begin(), counts.distances.end(), [](uint32_t n) { return n == 0; })) {
    header.distances.lengths[0] = 1;  // no matches: one unused code, as decoders expect one
    AssignCodes(kDistanceCodeCount, &header.distances);
  }
  header.literal_count = kLiteralCodes;
  while (header.literal_count > 257 && header.literals.lengths[header.literal_count - 1] == 0) --header.literal_count;
  header.distance_count = kDistanceCodeCount;
  while (header.distance_count > 1 && header.distances.lengths[header.distance_count - 1] == 0) --header.distance_count;

  std::vector<uint8_t> all_lengths(header.literals.lengths.begin(),
                                   header.literals.lengths.begin() + header.literal_count);
  all_lengths.insert(all_lengths.end(), header.distances.lengths.begin(),
                     header.distances.lengths.begin() + header.distance_count);
  header.runs = RunLengthCode(all_lengths);
  std::array<uint32_t, kCodeLengthCodes> run_freq{};
  for (const uint16_t run : header.runs) ++run_freq[run & 0xFFU];
  BuildLengths(run_freq.data(), kCodeLengthCodes, kMaxCodeLengthCodeLength, &header.lengths);
  header.length_code_count = kCodeLengthCodes;
  while (header.length_code_count > 4 && header.lengths.lengths[kCodeLengthOrder[header.length_code_count - 1]] == 0) {
    --header.length_code_count;
  }
  header.bits = 5 + 5 + 4 + 3 * static_cast<uint64_t>(header.length_code_count);
  for (const uint16_t run : header.runs) {
    const int symbol = run & 0xFF;
    header.bits += header.lengths.lengths[symbol] + ExtraBitsOfRun(symbol);
  }
  return header;
}

void PutSymbols(const std::vector<uint32_t>& symbols, const HuffmanCode& literals, const HuffmanCode& distances,
                BitWriter* out) {
  for (const uint32_t symbol : symbols) {
    if ((symbol & kMatchFlag) == 0) {
      out->Put(literals.bits[symbol], literals.lengths[symbol]);
      continue;
    }
    // Each code with its extra bits behind it, as one put (at most 15 + 13 bits).
    const size_t length = MatchLengthOf(symbol);
    const int length_code = kLengthCodes[length - kMinMatch];
    const int length_bits = literals.lengths[257 + length_code];
    out->Put(literals.bits[257 + length_code] | static_cast<uint32_t>(length - kLengthBase[length_code]) << length_bits,
             length_bits + kLengthExtra[length_code]);
    const size_t distance = MatchDistanceOf(symbol);
    const int distance_code = DistanceCode(distance);
    const int distance_bits = distances.lengths[distance_code];
    out->Put(distances.bits[distance_code] | static_cast<uint32_t>(distance - kDistanceBase[distance_code])
                                                 << distance_bits,
             distance_bits + kDistanceExtra[distance_code]);
  }
  out->Put(literals.bits[kEndOfBlock], literals.lengths[kEndOfBlock]);
}

constexpr size_t kMaxStoredBlock = 65535;

void PutStored(const uint8_t* raw, size_t size, bool last, BitWriter* out) {
  do {
    const size_t length = std::min(size, kMaxStoredBlock);
    out->Put(last && length == size ? 1 : 0, 1);
    out->Put(0, 2);
    out->Flush();
    out->Put(static_cast<uint32_t>(length), 16);
    out->Put(static_cast<uint32_t>(~length & 0xFFFFU), 16);
    out->PutBytes(raw, length);
    raw += length;
    size -= length;
  } while (size > 0);
}

// Writes `symbols` (which stand for `raw`) as the cheapest of a dynamic, a fixed or a
// stored block.
void PutBlock(const std::vector<uint32_t>& symbols, const uint8_t* raw, size_t raw_size, bool last, BitWriter* out) {
  const SymbolCounts counts = CountSymbols(symbols);
  const DynamicHeader dynamic = MakeDynamicHeader(counts);
  const uint64_t dynamic_bits = dynamic.bits + counts.extra_bits +
                                CodedBits(counts.literals.data(), kLiteralCodes, dynamic.literals) +
                                CodedBits(counts.distances.data(), kDistanceCodeCount, dynamic.distances);
  const uint64_t fixed_bits = counts.extra_bits + CodedBits(counts.literals.data(), kLiteralCodes, FixedLiteralCode()) +
                              CodedBits(counts.distances.data(), kDistanceCodeCount, FixedDistanceCode());
  const uint64_t stored_bits = 8 * raw_size + 40 * (raw_size / kMaxStoredBlock + 1) + 7;
  if (stored_bits < std::min(dynamic_bits, fixed_bits)) {
    PutStored(raw, raw_size, last, out);
    return;
  }
  out->Put(last ? 1 : 0, 1);
  if (fixed_bits <= dynamic_bits) {
    out->Put(1, 2);
    PutSymbols(symbols, FixedLiteralCode(), FixedDistanceCode(), out);
    return;
  }
  out->Put(2, 2);
  out->Put(static_cast<uint32_t>(dynamic.literal_count - 257), 5);
  out->Put(static_cast<uint32_t>(dynamic.distance_count - 1), 5);
  out->Put(static_cast<uint32_t>(dynamic.length_code_count - 4), 4);
  for (int i = 0; i < dynamic.length_code_count; ++i) out->Put(dynamic.lengths.lengths[kCodeLengthOrder[i]], 3);
  for (const uint16_t run : dynamic.runs) {
    const int symbol = run & 0xFF;
    out->Put(dynamic.lengths.bits[symbol], dynamic.lengths.lengths[symbol]);
    if (ExtraBitsOfRun(symbol) != 0) out->Put(run >> 8, ExtraBitsOfRun(symbol));
  }
  PutSymbols(symbols, dynamic.literals, dynamic.distances, out);
}

// ---- Finding matches ----

uint32_t Load32(const uint8_t* bytes) {
  uint32_t value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

uint32_t First3(const uint8_t* bytes) { return bytes[0] | bytes[1] << 8 | bytes[2] << 16; }

// How many of the first `limit` bytes at `a` and `b` agree.
size_t CommonLength(const uint8_t* a, const uint8_t* b, size_t limit) {
  size_t n = 0;
#if defined(__GNUC__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  for (; n + 8 <= limit; n += 8) {
    uint64_t x;
    uint64_t y;
    std::memcpy(&x, a + n, 8);
    std::memcpy(&y, b + n, 8);
    if (x != y) return n + static_cast<size_t>(__builtin_ctzll(x ^ y) / 8);
  }
#endif
  while (n < limit && a[n] == b[n]) ++n;
  return n;
}

// Four equal bytes: a run, which the distance of 1 finds without the hash table.
bool IsRun(uint32_t four) { return four == (four & 0xFFU) * 0x01010101U; }

uint32_t HashOf(uint32_t four) { return (four * 2654435761U) >> (32 - kHashBits); }

}  // namespace

// The matcher over one image's filtered data; the tables are the deflater's.
class ImageDeflater::Search {
 public:
  Search(ImageDeflater* owner, const uint8_t* data, size_t size, size_t stride, int chain_depth, BitWriter* out)
      : owner_(*owner),
        data_(data),
        size_(size),
        stride_(stride),
        chain_depth_(size < kMaxHashedBytes ? chain_depth : 0),
        hashed_end_(size >= 4 ? size - 3 : 0),
        out_(out) {}

  void Run(const std::vector<FilteredRow>& rows) {
    CountRowsToDistinct(rows);
    // Short runs of repeated rows are searched with the rows around them: a match then
    // goes on from the zeros into the next distinct row (the same start pattern, the
    // same quiet zone). Long runs are written as copies without a search.
    size_t searched_from = 0;
    for (size_t y = 1; y < rows.size();) {
      if (rows[y] == FilteredRow::kDistinct) {
        ++y;
        continue;
      }
      size_t end = y;
      while (end < rows.size() && rows[end] != FilteredRow::kDistinct) ++end;
      if ((end - y) * stride_ > kSearchedRepeatBytes) {
        Match(searched_from * stride_, y * stride_);
        PutRepeatedRows(rows, y, end);
        searched_from = end;
      }
      y = end;
    }
    Match(searched_from * stride_, size_);
    Flush(size_, true);
  }

 private:
  // For each row, how many rows up the nearest distinct row lies (1 for row 0).
  void CountRowsToDistinct(const std::vector<FilteredRow>& rows) {
    owner_.rows_up_.assign(rows.size(), 1);
    for (size_t y = 2; y < rows.size(); ++y) {
      if (rows[y - 1] != FilteredRow::kDistinct) owner_.rows_up_[y] = owner_.rows_up_[y - 1] + 1;
    }
  }

  // Rows [begin, end), each equal to the row above: copies of the row above where it is
  // narrow enough, else each row's run of zeros.
  void PutRepeatedRows(const std::vector<FilteredRow>& rows, size_t begin, size_t end) {
    bool zeros = false;  // whether the filtered row above is a filter byte and zeros
    for (size_t y = begin; y < end;) {
      if (rows[y] == FilteredRow::kSameAsAbove && stride_ <= kMaxCopiedRow) {
        size_t last = y;
        while (last < end && rows[last] == FilteredRow::kSameAsAbove) ++last;
        RunOrLiterals(y * stride_, (last - y) * stride_, stride_);
        y = last;
        continue;
      }
      zeros = rows[y] == FilteredRow::kZeroUp || (zeros && rows[y] == FilteredRow::kSameAsAbove);
      if (zeros) {
        ZeroRow(y * stride_);
      } else {
        Match(y * stride_, (y + 1) * stride_);
      }
      ++y;
    }
  }

  // The filter byte, then the zeros as a run.
  void ZeroRow(size_t start) {
    Literal(start);
    if (stride_ < 2) return;
    Literal(start + 1);
    RunOrLiterals(start + 2, stride_ - 2, 1);
  }

  void RunOrLiterals(size_t start, size_t length, size_t distance) {
    if (length < kMinMatch) {
      for (size_t i = 0; i < length; ++i) Literal(start + i);
      return;
    }
    Copy(length, distance);
  }

  // `length` >= 3 bytes copied from `distance` back, in matches of at most 258 bytes.
  void Copy(size_t length, size_t distance) {
    while (length > 0) {
      size_t piece = std::min(length, kMaxMatch);
      if (length - piece != 0 && length - piece < kMinMatch) piece = length - kMinMatch;
      Emit(MatchSymbol(piece, distance), piece);
      length -= piece;
    }
  }

  void Literal(size_t at) { Emit(data_[at], 1); }

  void Emit(uint32_t symbol, size_t covers) {
    owner_.symbols_.push_back(symbol);
    position_ += covers;
    if (owner_.symbols_.size() >= kBlockSymbols) Flush(position_, false);
  }

  void Flush(size_t end, bool last) {
    PutBlock(owner_.symbols_, data_ + block_start_, end - block_start_, last, out_);
    owner_.symbols_.clear();
    block_start_ = end;
  }

  struct Found {
    size_t length = 0;
    size_t distance = 0;
  };

  // Greedy matching over [begin, end).
  void Match(size_t begin, size_t end) {
    size_t row_end = 0;
    size_t above = stride_;
    for (size_t i = begin; i < end;) {
      if (i >= row_end) {
        // The nearest distinct row above: the pixels to compare with, where the row
        // right above is a repeated one, which filtered is zeros.
        const size_t row = i / stride_;
        row_end = (row + 1) * stride_;
        above = owner_.rows_up_[row] * stride_;
      }
      const Found found = Longest(i, end, above);
      if (found.length >= kMinMatch && !(found.length == kMinMatch && found.distance > kFarDistance)) {
        Emit(MatchSymbol(found.length, found.distance), found.length);
        Remember(found.distance);
        InsertCovered(i, found);
        i += found.length;
      } else {
        Literal(i);
        InsertOne(i);
        ++i;
      }
    }
  }

  // The last distance other than a run's and the rows': the next glyph or module of a
  // kind often sits as far back as the last one did.
  void Remember(size_t distance) {
    if (distance != 1 && distance != stride_) recent_ = distance;
  }

  Found Longest(size_t i, size_t end, size_t above) const {
    Found best;
    const size_t limit = std::min(kMaxMatch, end - i);
    if (limit < kMinMatch) return best;
    const uint8_t* here = data_ + i;
    // The first three bytes, read as one word where four are there to read.
    const bool whole_word = i + 4 <= size_;
    const auto first3 = [whole_word](const uint8_t* bytes) {
      return whole_word ? Load32(bytes) & 0xFFFFFFU : First3(bytes);
    };
    const uint32_t first = first3(here);
    const size_t farthest = std::min(i, kWindow);
    const auto consider = [&](size_t distance) {
      // Nothing beats a match to the limit (whose next byte may lie past the data); 0
      // wraps to the largest distance.
      if (best.length == limit || distance - 1 >= farthest) return;
      const uint8_t* there = here - distance;
      // Most candidates fail at once: a match of three bytes first, then one longer than the best.
      if (first3(there) != first || here[best.length] != there[best.length]) return;
      const size_t length = CommonLength(here, there, limit);
      if (length > best.length) best = Found{length, distance};
    };
    consider(1);
    if (above != 1) consider(above);
    if (stride_ != above) consider(stride_);
    if (recent_ != above) consider(recent_);
    if (best.length >= std::min(limit, kNiceLength)) return best;
    if (chain_depth_ == 0 || i + 4 > size_) return best;
    uint32_t entry = owner_.head_[HashOf(Load32(data_ + i))];
    for (int steps = chain_depth_; steps > 0 && entry > owner_.base_; --steps) {
      const size_t at = entry - owner_.base_ - 1;
      if (at >= i || i - at > kWindow) break;
      consider(i - at);
      if (best.length == limit) break;
      const uint32_t previous = owner_.chain_[at & (kWindow - 1)];
      if (previous >= entry) break;  // that slot now serves a later position
      entry = previous;
    }
    return best;
  }

  // The positions a match covers. A run's inner positions are runs themselves, which are
  // never entered; a long copy enters its first positions and its last.
  void InsertCovered(size_t at, const Found& found) {
    if (chain_depth_ == 0) return;
    const size_t end = std::min(at + found.length, hashed_end_);
    size_t from = found.distance == 1 ? at + found.length - kMinMatch : at;
    if (found.distance != 1 && found.length > kFullyEnteredMatch) {
      for (; from < std::min(at + kFullyEnteredMatch / 2, end); ++from) Insert(from);
      from = at + found.length - kMinMatch;
    }
    for (; from < end; ++from) Insert(from);
  }

  void InsertOne(size_t at) {
    if (chain_depth_ != 0 && at < hashed_end_) Insert(at);
  }

  // Enters the 4 bytes at `at`, which lie within the data (at < hashed_end_).
  void Insert(size_t at) {
    const uint32_t four = Load32(data_ + at);
    if (IsRun(four)) return;
    uint32_t& head = owner_.head_[HashOf(four)];
    owner_.chain_[at & (kWindow - 1)] = head;
    head = owner_.base_ + static_cast<uint32_t>(at) + 1;
  }

  ImageDeflater& owner_;
  const uint8_t* data_;
  size_t size_;
  size_t stride_;
  int chain_depth_;
  size_t hashed_end_;  // positions before it have 4 bytes to hash
  BitWriter* out_;
  size_t position_ = 0;
  size_t block_start_ = 0;
  size_t recent_ = 0;
};

ImageDeflater::ImageDeflater() = default;
ImageDeflater::~ImageDeflater() = default;
ImageDeflater::ImageDeflater(ImageDeflater&&) noexcept = default;
ImageDeflater& ImageDeflater::operator=(ImageDeflater&&) noexcept = default;

void ImageDeflater::Deflate(const uint8_t* data, size_t stride, const std::vector<FilteredRow>& rows, int chain_depth,
                            std::vector<uint8_t>* out) {
  const size_t size = stride * rows.size();
  BitWriter writer(out);
  if (size == 0) {
    PutStored(nullptr, 0, true, &writer);
    writer.Finish();
    return;
  }
  if (chain_depth > 0 && size < kMaxHashedBytes) {
    if (head_.empty()) {
      head_.assign(size_t{1} << kHashBits, 0);
      chain_.assign(kWindow, 0);
    }
    // Entries of earlier images lie at or below base_ and so read as empty; only when the
    // counter would run out is the table cleared.
    if (base_ > std::numeric_limits<uint32_t>::max() - size - 1) {
      std::fill(head_.begin(), head_.end(), 0);
      base_ = 0;
    }
  }
  symbols_.clear();
  Search search(this, data, size, stride, chain_depth, &writer);
  search.Run(rows);
  writer.Finish();
  base_ += static_cast<uint32_t>(std::min<size_t>(size + 1, std::numeric_limits<uint32_t>::max() - base_));
}

}  // namespace barcode_orv
