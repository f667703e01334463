#include "linear/code128.h"

#include <array>
#include <stdexcept>
#include <utility>

#include "linear/code128_iso.h"

namespace barcode_orv {
namespace {

// Bar/space widths of symbol values 0..106 (ISO/IEC 15417); 106 is the stop character
// with its termination bar.
constexpr std::array<const char*, 107> kPatterns = {
    "212222", "222122", "222221", "121223", "121322", "131222", "122213", "122312",  "132212", "221213", "221312",
    "231212", "112232", "122132", "122231", "113222", "123122", "123221", "223211",  "221132", "221231", "213212",
    "223112", "312131", "311222", "321122", "321221", "312212", "322112", "322211",  "212123", "212321", "232121",
    "111323", "131123", "131321", "112313", "132113", "132311", "211313", "231113",  "231311", "112133", "112331",
    "132131", "113123", "113321", "133121", "313121", "211331", "231131", "213113",  "213311", "213131", "311123",
    "311321", "331121", "312113", "312311", "332111", "314111", "221411", "431111",  "111224", "111422", "121124",
    "121421", "141122", "141221", "112214", "112412", "122114", "122411", "142112",  "142211", "241211", "221114",
    "413111", "241112", "134111", "111242", "121142", "121241", "114212", "124112",  "124211", "411212", "421112",
    "421211", "212141", "214121", "412121", "111143", "111341", "131141", "114113",  "114311", "411113", "411311",
    "113141", "114131", "311141", "411131", "211412", "211214", "211232", "2331112",
};

constexpr int32_t kStartA = 103;
constexpr int32_t kStop = 106;
constexpr int32_t kValueCount = 107;
// Latch values indexed by the set they enter: CODE A, CODE B, CODE C.
constexpr std::array<int32_t, 3> kLatch = {101, 100, 99};

constexpr int kSetA = 0;
constexpr int kSetB = 1;
constexpr int kSetC = 2;

bool IsDigit(unsigned char c) { return c >= '0' && c <= '9'; }

// Whether the character(s) at `pos` can be written in `set`.
bool Encodable(const std::string& text, size_t pos, int set) {
  const auto c = static_cast<unsigned char>(text[pos]);
  switch (set) {
    case kSetA: return c < 96;
    case kSetB: return c >= 32 && c <= 126;
    default: return pos + 1 < text.size() && IsDigit(c) && IsDigit(static_cast<unsigned char>(text[pos + 1]));
  }
}

// Deliberate: set A writes a byte as its own code (so "A" is value 65), not the value
// the standard assigns to that character in set A. Existing symbols printed with this
// library carry these values, so the mapping is kept.
int32_t ValueIn(const std::string& text, size_t pos, int set, bool standard = false) {
  const auto c = static_cast<unsigned char>(text[pos]);
  switch (set) {
    case kSetA:
      if (standard) return c < 32 ? c + 64 : c - 32;  // ISO/IEC 15417 set A
      return c;
    case kSetB: return c - 32;
    default: return (c - '0') * 10 + (static_cast<unsigned char>(text[pos + 1]) - '0');
  }
}

size_t Advance(int set) { return set == kSetC ? 2 : 1; }

// Appends the modulo-103 check character and the stop character.
void Finish(std::vector<int32_t>& values) {
  int64_t sum = values[0];
  for (size_t i = 1; i < values.size(); ++i) {
    sum = (sum + static_cast<int64_t>(values[i]) * static_cast<int64_t>(i % 103)) % 103;
  }
  values.push_back(static_cast<int32_t>(sum % 103));
  values.push_back(kStop);
}

std::vector<int32_t> Expand(const std::vector<int32_t>& values, const char* range_error) {
  std::vector<int32_t> widths;
  widths.reserve(values.size() * 6 + 1);
  for (int32_t v : values) {
    if (v < 0 || v >= kValueCount) throw std::runtime_error(range_error);
    for (const char* p = kPatterns[static_cast<size_t>(v)]; *p != '\0'; ++p) {
      widths.push_back(*p - '0');
    }
  }
  return widths;
}

std::vector<int32_t> SingleSetValues(const std::string& text, CodeSet128 set, bool standard = false) {
  if (text.empty()) throw std::runtime_error("Empty string");
  if (set != CodeSet128::kA && set != CodeSet128::kB && set != CodeSet128::kC) {
    throw std::runtime_error("Invalid CodeMode");
  }
  const int s = static_cast<int>(set);
  std::vector<int32_t> values;
  values.reserve(text.size() + 3);
  values.push_back(kStartA + s);
  for (size_t pos = 0; pos < text.size();) {
    if (!Encodable(text, pos, s)) {
      if (s == kSetA) throw std::runtime_error("Invalid char for CODE_A");
      if (s == kSetB) throw std::runtime_error("Invalid char for CODE_B");
      throw std::runtime_error("Not 2-digit at pos=" + std::to_string(pos));
    }
    values.push_back(ValueIn(text, pos, s, standard));
    pos += Advance(s);
  }
  Finish(values);
  return values;
}

// Minimal-length search over code sets. cost(pos, set) is the number of symbol
// characters that write text[pos..] when `set` is active at pos; staying in the set
// costs 1 per character, latching 2 (latch and character). Ties keep the current set,
// then prefer latching to A, then B, then C. A state depends only on states further
// along the text, so the table is filled from the end backwards without recursion and
// the chosen path is read off from the front afterwards.
class SetSearch {
 public:
  explicit SetSearch(const std::string& text)
      : text_(text), cost_((text.size() + 1) * 3, 0), step_(text.size() * 3, kNone) {
    for (size_t pos = text.size(); pos-- > 0;) {
      for (int set = kSetA; set <= kSetC; ++set) Solve(pos, set);
    }
  }

  // Cost of the whole text from the given start set, or kUnencodable.
  int32_t CostFrom(int set) const { return cost_[static_cast<size_t>(set)]; }

  // Appends the values chosen from the start set `set`.
  void AppendValues(int set, std::vector<int32_t>& values) const {
    for (size_t pos = 0; pos < text_.size();) {
      const uint8_t step = step_[pos * 3 + static_cast<size_t>(set)];
      if (step != kStay) {
        set = step;
        values.push_back(kLatch[static_cast<size_t>(set)]);
      }
      values.push_back(ValueIn(text_, pos, set));
      pos += Advance(set);
    }
  }

  static constexpr int32_t kUnencodable = -1;

 private:
  static constexpr uint8_t kStay = 3;  // values 0..2 name the set latched to
  static constexpr uint8_t kNone = 4;

  void Solve(size_t pos, int set) {
    const size_t index = pos * 3 + static_cast<size_t>(set);
    int32_t best = kUnencodable;
    uint8_t best_step = kNone;
    // A state that can reach an unwritable position is unwritable itself, so one byte
    // that no set accepts makes the whole text fail from every start set.
    bool poisoned = false;
    auto consider = [&](int target, int32_t overhead, uint8_t step) {
      if (poisoned || !Encodable(text_, pos, target)) return;
      const int32_t rest = cost_[(pos + Advance(target)) * 3 + static_cast<size_t>(target)];
      if (rest == kUnencodable) {
        poisoned = true;
        return;
      }
      if (best == kUnencodable || rest + overhead < best) {
        best = rest + overhead;
        best_step = step;
      }
    };
    consider(set, 1, kStay);
    for (int target = kSetA; target <= kSetC; ++target) {
      if (target != set) consider(target, 2, static_cast<uint8_t>(target));
    }
    cost_[index] = poisoned ? kUnencodable : best;
    step_[index] = poisoned ? kNone : best_step;
  }

  const std::string& text_;
  std::vector<int32_t> cost_;  // (pos, set) -> cost; the row pos == size is 0
  std::vector<uint8_t> step_;  // (pos, set) -> kStay or the set latched to
};

std::vector<int32_t> AutoValues(const std::string& text) {
  if (text.empty()) throw std::runtime_error("Empty string");
  const SetSearch search(text);
  // Among start sets of equal cost, C wins (so a digit run opens in C), then A, then B.
  int start = -1;
  int32_t start_cost = 0;
  for (int set : {kSetC, kSetA, kSetB}) {
    const int32_t cost = search.CostFrom(set);
    if (cost == SetSearch::kUnencodable) continue;
    if (start < 0 || cost < start_cost) {
      start = set;
      start_cost = cost;
    }
  }
  if (start < 0) throw std::runtime_error("No valid start");
  std::vector<int32_t> values;
  values.reserve(static_cast<size_t>(start_cost) + 3);
  values.push_back(kStartA + start);
  search.AppendValues(start, values);
  Finish(values);
  return values;
}

}  // namespace

namespace internal {

std::vector<int32_t> Code128Values(const std::string& text, CodeSet128 mode) {
  if (text.empty()) throw std::runtime_error("Empty string");
  if (mode == CodeSet128::kAuto) return AutoValues(text);
  return SingleSetValues(text, mode);
}

std::vector<int32_t> EncodeSingleSet(const std::string& text, CodeSet128 set) {
  return Expand(SingleSetValues(text, set), "Invalid code val");
}

std::vector<int32_t> EncodeAuto(const std::string& text) { return Expand(AutoValues(text), "Invalid code value"); }

void FinishCode128(std::vector<int32_t>& values) { Finish(values); }

std::vector<int32_t> Code128Widths(const std::vector<int32_t>& values) { return Expand(values, "Invalid code value"); }

std::vector<int32_t> EncodeCode128(const std::string& text, CodeSet128 mode) {
  if (text.empty()) throw std::runtime_error("Empty string");
  if (mode == CodeSet128::kAuto) return EncodeAuto(text);
  return EncodeSingleSet(text, mode);
}

std::vector<int32_t> StandardCode128Values(const std::string& text, CodeSet128 mode) {
  if (text.empty()) throw std::runtime_error("Empty string");
  if (mode != CodeSet128::kAuto) return SingleSetValues(text, mode, true);
  std::vector<int> chars;
  chars.reserve(text.size());
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > 127) throw std::runtime_error("No valid start");
    chars.push_back(byte);
  }
  return Iso15417Values(chars);
}

}  // namespace internal

Code128::Code128(std::string output_format) : BarcodeBase1D(std::move(output_format)) {}

Code128::Code128(SDL_Renderer* canvas) : BarcodeBase1D(canvas) {}

std::vector<int32_t> Code128::EncodeCode128(const std::string& text) {
  if (standard_encoding) return internal::Code128Widths(internal::StandardCode128Values(text, code_mode_));
  return internal::EncodeCode128(text, code_mode_);
}

namespace {

// Whether symbol values (start to stop) write any data character in code set A.
bool WritesSetA(const std::vector<int32_t>& values) {
  int set = values.front() - kStartA;
  for (size_t i = 1; i + 2 < values.size(); ++i) {
    const int32_t value = values[i];
    if (set == kSetA && value < 96) return true;
    // A latch value names the set it enters; in that set itself it is data or FNC4.
    for (int target = kSetA; target <= kSetC; ++target) {
      if (value == kLatch[static_cast<size_t>(target)] && set != target) set = target;
    }
  }
  return false;
}

}  // namespace

BarcodeBase1D::LinearSymbol Code128::Encode(const std::string& text) {
  if (standard_encoding) return LinearSymbol{EncodeCode128(text), text};
  // The values once: the widths come from them, and so does the warning.
  const std::vector<int32_t> values = internal::Code128Values(text, code_mode_);
  LinearSymbol symbol{internal::Code128Widths(values), text};
  if (WritesSetA(values)) {
    Warn(
        "[Code128] Code set A written with the compatibility values: readers decode other text "
        "(the standard encoding writes ISO/IEC 15417's)");
  }
  return symbol;
}

bool Code128::Draw(const std::string& text, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(text, x, y, width, height);
  return DrawLinearRaster(text, x, y, width, height, "[Code128] ", [this](const std::string& t) { return Encode(t); });
}

bool Code128::DrawSvg(const std::string& text, int x, int y, int width, int height) {
  return DrawLinearSvg(text, x, y, width, height, "[Code128] ", [this](const std::string& t) { return Encode(t); });
}

}  // namespace barcode_orv
