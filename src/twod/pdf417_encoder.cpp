#include "twod/pdf417_encoder.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "twod/shortest_path.h"

namespace barcode_orv::internal_pdf417 {
namespace {

using internal::kUnreachable;
using internal::Lattice;
using internal::PathNode;

// ---- Mode codewords ----
constexpr int kLatchText = 900;
constexpr int kLatchByte = 901;
constexpr int kLatchNumeric = 902;
constexpr int kShiftByte = 913;
constexpr int kLatchByteSix = 924;  // byte compaction of a multiple of six bytes
constexpr int kPadCodeword = 900;

// ---- Text compaction sub-modes: 30 values each, '\0' marks the control values ----
enum Submode : int { kAlpha, kLower, kMixed, kPunct };
constexpr int kSubmodes = 4;

constexpr std::string_view kSubmodeValues[kSubmodes] = {
    std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZ \0\0\0", 30),     // LL ML PS
    std::string_view("abcdefghijklmnopqrstuvwxyz \0\0\0", 30),     // AS ML PS
    std::string_view("0123456789&\r\t,:#-.$/+%*=^\0 \0\0\0", 30),  // PL _ LL AL PS
    std::string_view(";<>@[\\]_`~!\r\t,:\n-.$/\"|*()?{}'\0", 30),  // AL
};
constexpr int kLL = 27;
constexpr int kMLFromAlphaOrLower = 28;
constexpr int kPS = 29;
constexpr int kAS = 27;
constexpr int kPL = 25;
constexpr int kLLFromMixed = 27;
constexpr int kALFromMixed = 28;
constexpr int kALFromPunct = 29;

struct SubmodeTable {
  std::array<std::array<int8_t, 128>, kSubmodes> value{};
  constexpr SubmodeTable() {
    for (auto& row : value) {
      for (auto& v : row) v = -1;
    }
    for (int s = 0; s < kSubmodes; ++s) {
      for (size_t i = 0; i < kSubmodeValues[s].size(); ++i) {
        const auto c = static_cast<unsigned char>(kSubmodeValues[s][i]);
        if (c != 0) value[s][c] = static_cast<int8_t>(i);
      }
    }
  }
};
constexpr SubmodeTable kText;
static_assert(kText.value[kMixed][' '] == 26 && kText.value[kPunct]['\''] == 28, "text compaction tables");

int TextValue(int submode, uint8_t c) { return c < 128 ? kText.value[submode][c] : -1; }

// Values that take the text mode from one sub-mode to another (latches).
struct Latch {
  int count;
  int values[2];
};

constexpr Latch kLatches[kSubmodes][kSubmodes] = {
    // from Alpha
    {{0, {}}, {1, {kLL}}, {1, {kMLFromAlphaOrLower}}, {2, {kMLFromAlphaOrLower, kPL}}},
    // from Lower
    {{2, {kMLFromAlphaOrLower, kALFromMixed}}, {0, {}}, {1, {kMLFromAlphaOrLower}}, {2, {kMLFromAlphaOrLower, kPL}}},
    // from Mixed
    {{1, {kALFromMixed}}, {1, {kLLFromMixed}}, {0, {}}, {1, {kPL}}},
    // from Punct
    {{1, {kALFromPunct}}, {2, {kALFromPunct, kLL}}, {2, {kALFromPunct, kMLFromAlphaOrLower}}, {0, {}}},
};

// ---- The search graph ----
//
// States: text in each sub-mode with an even or odd count of values so far (two values
// a codeword), byte compaction with the count of bytes into the current group of six,
// and numeric compaction. Costs are in half codewords.
constexpr int kHalf = 1;
constexpr int kWhole = 2;
constexpr int kInfinity = kUnreachable;

constexpr int kTextStates = 8;  // sub-mode * 2 + parity
constexpr int kByteFirst = 8;   // + bytes into the group (0..5)
constexpr int kNumericState = 14;
constexpr int kStates = 15;

constexpr int TextState(int submode, int parity) { return submode * 2 + parity; }
constexpr bool IsText(int state) { return state < kTextStates; }
constexpr int SubmodeOf(int state) { return state / 2; }
constexpr int ParityOf(int state) { return state % 2; }
constexpr bool IsByte(int state) { return state >= kByteFirst && state < kNumericState; }

// The cheapest latch sequence between any two text states (sub-mode and parity), one or
// more latches long: the search takes one step per pair instead of rounds of single
// latches, and the writer emits the same values.
struct TextMove {
  int count = -1;  // values; -1: no sequence
  std::array<int, 4> values{};
};

struct TextMoves {
  std::array<std::array<TextMove, kTextStates>, kTextStates> move{};
  constexpr TextMoves() {
    for (int from = 0; from < kTextStates; ++from) {
      move[from][from].count = 0;
      for (int to = 0; to < kSubmodes; ++to) {
        const Latch& latch = kLatches[SubmodeOf(from)][to];
        if (latch.count == 0) continue;
        TextMove& direct = move[from][TextState(to, (ParityOf(from) + latch.count) % 2)];
        if (direct.count >= 0 && direct.count <= latch.count) continue;
        direct.count = latch.count;
        for (int i = 0; i < latch.count; ++i) direct.values[i] = latch.values[i];
      }
    }
    // Floyd-Warshall over the eight states; every edge costs its values.
    for (int via = 0; via < kTextStates; ++via) {
      for (int from = 0; from < kTextStates; ++from) {
        for (int to = 0; to < kTextStates; ++to) {
          const TextMove& first = move[from][via];
          const TextMove& second = move[via][to];
          if (first.count < 0 || second.count < 0) continue;
          const int count = first.count + second.count;
          TextMove& best = move[from][to];
          if (count > 4 || (best.count >= 0 && best.count <= count)) continue;
          TextMove joined;
          joined.count = count;
          for (int i = 0; i < first.count; ++i) joined.values[i] = first.values[i];
          for (int i = 0; i < second.count; ++i) joined.values[first.count + i] = second.values[i];
          best = joined;
        }
      }
    }
  }
};
constexpr TextMoves kTextMoves;
static_assert(kTextMoves.move[TextState(kAlpha, 0)][TextState(kLower, 1)].count == 1, "Alpha to Lower: LL");
static_assert(kTextMoves.move[TextState(kAlpha, 0)][TextState(kAlpha, 1)].count == 3, "a parity change costs three");
static_assert(kTextMoves.move[TextState(kPunct, 0)][TextState(kLower, 0)].count == 2, "Punct to Lower: AL LL");

enum class Action : uint8_t { kNone, kModeChange, kTextChar, kByteShift, kByte, kNumericRun };

using Node = PathNode<Action>;

bool IsDigit(uint8_t c) { return c >= '0' && c <= '9'; }

// Codewords of k digits: 15 for each full group of 44, then one more than a third of
// the rest.
int NumericCodewords(size_t digits) {
  const size_t rest = digits % 44;
  return static_cast<int>(15 * (digits / 44) + (rest == 0 ? 0 : rest / 3 + 1));
}

// Half codewords to leave `state` for byte or numeric compaction: pad an odd text
// value count, then the latch codeword.
int LatchOutCost(int state, bool to_numeric) {
  if (IsText(state)) return ParityOf(state) * kHalf + kWhole;
  if (state == kNumericState) return kWhole;
  return to_numeric ? kWhole : 0;  // byte to byte: no latch
}

class Search {
 public:
  explicit Search(const std::vector<uint8_t>& data) : data_(data), nodes_(data.size()) {}

  void Run() {
    const size_t n = data_.size();
    nodes_[0][TextState(kAlpha, 0)].cost = 0;
    for (size_t pos = 0; pos <= n; ++pos) {
      RelaxSamePosition(pos);
      if (pos == n) break;
      RelaxNumericRuns(pos);
      RelaxText(pos);
      RelaxBytes(pos);
    }
  }

  // The steps of the cheapest path, from the start.
  std::vector<Lattice<Action, kStates>::Step> Path() const {
    const size_t n = data_.size();
    int best_state = 0;
    int best_cost = kInfinity;
    for (int state = 0; state < kStates; ++state) {
      const int cost = nodes_[n][state].cost + (IsText(state) ? ParityOf(state) * kHalf : 0);
      if (cost < best_cost) {
        best_cost = cost;
        best_state = state;
      }
    }
    return nodes_.Path(n, best_state, Action::kNone);
  }

 private:
  void Relax(size_t pos, int state, int cost, size_t from_pos, int from_state, Action action) {
    nodes_.Relax(pos, state, cost, from_pos, from_state, action);
  }

  // Mode changes that consume no data: into byte compaction (901/924) and back to text
  // (900), processed text -> byte -> text so every chain is seen.
  void RelaxSamePosition(size_t pos) {
    auto& here = nodes_[pos];
    for (int state = 0; state < kStates; ++state) {
      if (IsByte(state) || here[state].cost >= kInfinity) continue;
      Relax(pos, kByteFirst, here[state].cost + LatchOutCost(state, false), pos, state, Action::kModeChange);
    }
    for (int state = kByteFirst; state < kStates; ++state) {
      if (here[state].cost >= kInfinity) continue;
      Relax(pos, TextState(kAlpha, 0), here[state].cost + kWhole, pos, state, Action::kModeChange);
    }
    // Latches inside text: from every text state reached so far, the cheapest sequence
    // to every other.
    std::array<int, kTextStates> reached{};
    for (int state = 0; state < kTextStates; ++state) reached[state] = here[state].cost;
    for (int from = 0; from < kTextStates; ++from) {
      if (reached[from] >= kInfinity) continue;
      for (int to = 0; to < kTextStates; ++to) {
        const int count = kTextMoves.move[from][to].count;
        if (count <= 0) continue;
        Relax(pos, to, reached[from] + count * kHalf, pos, from, Action::kModeChange);
      }
    }
  }

  void RelaxText(size_t pos) {
    const uint8_t c = data_[pos];
    for (int state = 0; state < kTextStates; ++state) {
      const int cost = nodes_[pos][state].cost;
      if (cost >= kInfinity) continue;
      const int submode = SubmodeOf(state);
      const int parity = ParityOf(state);
      if (TextValue(submode, c) >= 0) {
        Relax(pos + 1, TextState(submode, 1 - parity), cost + kHalf, pos, state, Action::kTextChar);
      } else if ((submode != kPunct && TextValue(kPunct, c) >= 0) || (submode == kLower && TextValue(kAlpha, c) >= 0)) {
        // A one-character shift: PS to punctuation, AS from lower case to capitals.
        Relax(pos + 1, state, cost + 2 * kHalf, pos, state, Action::kTextChar);
      }
      if (parity == 0) Relax(pos + 1, state, cost + 2 * kWhole, pos, state, Action::kByteShift);
    }
  }

  void RelaxBytes(size_t pos) {
    for (int group = 0; group < 6; ++group) {
      const int state = kByteFirst + group;
      const int cost = nodes_[pos][state].cost;
      if (cost >= kInfinity) continue;
      // Six bytes take five codewords: the sixth byte of a group is free.
      Relax(pos + 1, kByteFirst + (group + 1) % 6, cost + (group == 5 ? 0 : kWhole), pos, state, Action::kByte);
    }
  }

  // A numeric segment from `pos` to every later position inside the digit run.
  void RelaxNumericRuns(size_t pos) {
    if (!IsDigit(data_[pos])) return;
    int best_entry = kInfinity;
    int entry_state = -1;
    // Not from numeric compaction itself: only a segment's last group may hold fewer than
    // 44 digits, so a new segment needs its own 902.
    for (int state = 0; state < kNumericState; ++state) {
      const int cost = nodes_[pos][state].cost;
      if (cost >= kInfinity) continue;
      const int entry = cost + LatchOutCost(state, true);
      if (entry < best_entry) {
        best_entry = entry;
        entry_state = state;
      }
    }
    if (entry_state < 0) return;
    for (size_t end = pos + 1; end <= data_.size() && IsDigit(data_[end - 1]); ++end) {
      Relax(end, kNumericState, best_entry + NumericCodewords(end - pos) * kWhole, pos, entry_state,
            Action::kNumericRun);
    }
  }

  const std::vector<uint8_t>& data_;
  Lattice<Action, kStates> nodes_;
};

// Base-900 digits of a decimal digit string, most significant first.
std::vector<int> DecimalToBase900(std::string digits) {
  std::vector<int> out;
  while (!(digits.size() == 1 && digits[0] == '0') && !digits.empty()) {
    std::string quotient;
    int remainder = 0;
    for (char d : digits) {
      const int value = remainder * 10 + (d - '0');
      const int q = value / 900;
      remainder = value % 900;
      if (!quotient.empty() || q != 0) quotient += static_cast<char>('0' + q);
    }
    out.push_back(remainder);
    digits = quotient.empty() ? "0" : quotient;
  }
  std::reverse(out.begin(), out.end());
  return out;
}

class CodewordWriter {
 public:
  explicit CodewordWriter(const std::vector<uint8_t>& data) : data_(data) {}

  // Text after byte or numeric compaction: 900, which resets to Alpha.
  void EnterText() {
    LeaveMode(Mode::kText);
    out_.push_back(kLatchText);
    submode_ = kAlpha;
  }

  // The latch values from text state `from` to `to`.
  void Latch(int from, int to) {
    const TextMove& move = kTextMoves.move[from][to];
    for (int i = 0; i < move.count; ++i) Value(move.values[i]);
    submode_ = SubmodeOf(to);
  }

  void EnterBytes() { LeaveMode(Mode::kBytes); }

  // A character of the current sub-mode, or shifted for this character only.
  void TextChar(uint8_t c) {
    if (TextValue(submode_, c) >= 0) {
      Value(TextValue(submode_, c));
    } else if (TextValue(kPunct, c) >= 0) {
      Value(kPS);
      Value(TextValue(kPunct, c));
    } else {
      Value(kAS);
      Value(TextValue(kAlpha, c));
    }
  }

  void ByteShift(uint8_t c) {
    out_.push_back(kShiftByte);
    out_.push_back(c);
  }

  void Byte(uint8_t c) {
    LeaveMode(Mode::kBytes);
    bytes_.push_back(c);
  }

  void NumericRun(size_t from, size_t to) {
    LeaveMode(Mode::kNumeric);
    for (size_t group = from; group < to; group += 44) {
      const size_t end = std::min(to, group + 44);
      const std::vector<int> base900 = DecimalToBase900(
          "1" + std::string(data_.begin() + static_cast<long>(group), data_.begin() + static_cast<long>(end)));
      out_.insert(out_.end(), base900.begin(), base900.end());
    }
  }

  std::vector<int> Finish() {
    LeaveMode(Mode::kNone);
    return std::move(out_);
  }

 private:
  enum class Mode { kText, kBytes, kNumeric, kNone };

  void LeaveMode(Mode next) {
    if (mode_ == next) return;
    if (mode_ == Mode::kText) {
      if (pending_ >= 0) Value(kPS);  // an odd count is completed with PS
    } else if (mode_ == Mode::kBytes) {
      FlushBytes();
    }
    if (next == Mode::kNumeric) out_.push_back(kLatchNumeric);
    mode_ = next;
  }

  void Value(int value) {
    if (pending_ < 0) {
      pending_ = value;
      return;
    }
    out_.push_back(30 * pending_ + value);
    pending_ = -1;
  }

  // One byte-compaction segment: 924 for whole groups of six, else 901 with the last
  // bytes one a codeword.
  void FlushBytes() {
    out_.push_back(bytes_.size() % 6 == 0 ? kLatchByteSix : kLatchByte);
    size_t i = 0;
    for (; i + 6 <= bytes_.size(); i += 6) {
      uint64_t value = 0;
      for (size_t j = 0; j < 6; ++j) value = (value << 8) | bytes_[i + j];
      int group[5];
      for (int j = 4; j >= 0; --j) {
        group[j] = static_cast<int>(value % 900);
        value /= 900;
      }
      out_.insert(out_.end(), group, group + 5);
    }
    for (; i < bytes_.size(); ++i) out_.push_back(bytes_[i]);
    bytes_.clear();
  }

  const std::vector<uint8_t>& data_;
  Mode mode_ = Mode::kText;  // a symbol starts in text compaction, Alpha
  int submode_ = kAlpha;
  int pending_ = -1;  // the first value of a codeword not yet complete
  std::vector<uint8_t> bytes_;
  std::vector<int> out_;
};

}  // namespace

std::vector<int> CompactData(const std::vector<uint8_t>& data) {
  Search search(data);
  search.Run();
  CodewordWriter writer(data);
  for (const auto& step : search.Path()) {
    const size_t pos = step.pos;
    const int state = step.state;
    const Node& node = *step.node;
    const auto from = static_cast<size_t>(node.from_pos);
    switch (node.action) {
      case Action::kModeChange:
        if (IsText(state) && IsText(node.from_state)) {
          writer.Latch(node.from_state, state);
        } else if (IsText(state)) {
          writer.EnterText();
        } else {
          writer.EnterBytes();
        }
        break;
      case Action::kTextChar: writer.TextChar(data[from]); break;
      case Action::kByteShift: writer.ByteShift(data[from]); break;
      case Action::kByte: writer.Byte(data[from]); break;
      case Action::kNumericRun: writer.NumericRun(from, pos); break;
      case Action::kNone: break;
    }
  }
  return writer.Finish();
}

int RecommendedLevel(int data_codewords) {
  int level = data_codewords <= 40 ? 2 : data_codewords <= 160 ? 3 : data_codewords <= 320 ? 4 : 5;
  // The length descriptor comes on top of the data.
  while (level > 0 && 1 + data_codewords + (2 << level) > kMaxCodewords) --level;
  return level;
}

namespace {

// The nine generator polynomials (levels 0-8, 2^(level+1) coefficients each, ascending
// powers without the leading 1), one after another: built once, on first use. (At compile
// time the 175,000 steps of level 8 exceed clang's constant-evaluation limit.)
constexpr int GeneratorOffset(int level) { return (2 << level) - 2; }
constexpr int kGeneratorCoefficients = GeneratorOffset(kMaxLevel + 1);

struct GeneratorTable {
  std::array<int, kGeneratorCoefficients> coefficients{};
  GeneratorTable() {
    for (int level = 0; level <= kMaxLevel; ++level) {
      const int k = 2 << level;
      std::array<int, 513> g{};  // g[0..size) ascending, leading coefficient last
      g[0] = 1;
      int size = 1;
      int root = 1;
      for (int i = 1; i <= k; ++i) {
        root = root * 3 % kCodewordValues;
        // g = g * (x - root)
        g[size] = 0;
        for (int j = size; j > 0; --j) {
          g[j] = (g[j - 1] + kCodewordValues - g[j] * root % kCodewordValues) % kCodewordValues;
        }
        g[0] = (kCodewordValues - g[0] * root % kCodewordValues) % kCodewordValues;
        ++size;
      }
      for (int j = 0; j < k; ++j) coefficients[GeneratorOffset(level) + j] = g[j];
    }
  }
};
const GeneratorTable& Generators() {
  static const GeneratorTable table;
  return table;
}

}  // namespace

std::vector<int> GeneratorCoefficients(int level) {
  const int* first = Generators().coefficients.data() + GeneratorOffset(level);
  return std::vector<int>(first, first + (2 << level));
}

std::vector<int> ErrorCorrection(const std::vector<int>& data, int level) {
  const int* a = Generators().coefficients.data() + GeneratorOffset(level);
  const size_t k = size_t{2} << level;
  // Division by the generator with the register kept unreduced: each cell gathers at most
  // k products below 929 x 929 (under 2^32 for k = 512), so only the cell that feeds
  // back is reduced on the way.
  std::array<uint32_t, 512> negated{};
  for (size_t j = 0; j < k; ++j) negated[j] = static_cast<uint32_t>((kCodewordValues - a[j]) % kCodewordValues);
  std::array<uint32_t, 512> c{};
  for (int d : data) {
    const uint32_t t1 = (static_cast<uint32_t>(d) + c[k - 1]) % kCodewordValues;
    for (size_t j = k - 1; j > 0; --j) c[j] = c[j - 1] + t1 * negated[j];
    c[0] = t1 * negated[0];
  }
  std::vector<int> out(k);
  for (size_t j = 0; j < k; ++j) {
    const auto r = static_cast<int>(c[k - 1 - j] % kCodewordValues);
    out[j] = r == 0 ? 0 : kCodewordValues - r;
  }
  return out;
}

namespace {

struct Shape {
  int columns;
  int rows;
};

std::string Count(int n, const char* noun) { return std::to_string(n) + " " + noun + (n == 1 ? "" : "s"); }

std::string Describe(const Settings& s) {
  std::string text;
  if (s.columns != 0) text += Count(s.columns, "column");
  if (s.rows != 0) text += (text.empty() ? "" : " x ") + Count(s.rows, "row");
  return text.empty() ? "PDF417" : text;
}

void CheckSettings(const Settings& s) {
  if (s.columns < 0 || s.columns > kMaxColumns) {
    throw std::runtime_error("Columns must be 1 to 30, or 0 for automatic: " + std::to_string(s.columns));
  }
  if (s.rows != 0 && (s.rows < kMinRows || s.rows > kMaxRows)) {
    throw std::runtime_error("Rows must be 3 to 90, or 0 for automatic: " + std::to_string(s.rows));
  }
  if (s.row_height < kMinRowHeight || s.row_height > kMaxRowHeight) {
    throw std::runtime_error("Row height must be 3 to 50 modules: " + std::to_string(s.row_height));
  }
}

// Width over height of a symbol in modules.
double AspectOf(int columns, int rows, int row_height) {
  return static_cast<double>(kCodewordModules * columns + kRowOverheadModules) / (rows * row_height);
}

// Rows for `needed` codewords in `columns`, or 0 when no symbol of that width holds them.
int RowsFor(int needed, int columns, const Settings& s) {
  int rows = std::max(kMinRows, (needed + columns - 1) / columns);
  if (s.rows != 0) {
    if (rows > s.rows) return 0;
    rows = s.rows;
  }
  return rows > kMaxRows || rows * columns > kMaxCodewords ? 0 : rows;
}

double ModuleArea(int columns, int rows) {
  return static_cast<double>(kCodewordModules * columns + kRowOverheadModules) * rows;
}

// The shape for `needed` codewords. With an aspect ratio, the width over height
// nearest to it (in ratio, the smaller symbol on a tie). Without one, fixed rows take the
// fewest columns that hold the data; otherwise about three rows a column (a symbol about
// twice as wide as tall), or one column more when that makes the symbol smaller.
Shape ChooseShape(int needed, const Settings& s) {
  const bool steered = s.aspect_ratio > 0 && std::isfinite(s.aspect_ratio);
  const int usual = std::clamp(static_cast<int>(std::lround(std::sqrt(needed / 3.0))), 1, kMaxColumns);
  bool found = false;
  Shape best{0, 0};
  double best_distance = 0;
  for (int columns = 1; columns <= kMaxColumns; ++columns) {
    if (s.columns != 0 && columns != s.columns) continue;
    const int rows = RowsFor(needed, columns, s);
    if (rows == 0) continue;
    double distance = 0;
    if (steered) {
      distance = std::fabs(std::log(AspectOf(columns, rows, s.row_height) / s.aspect_ratio));
    } else if (s.rows != 0) {
      distance = columns;  // rows fixed: as narrow as the data allows
    } else if (s.columns == 0 && (columns == usual || columns == usual + 1)) {
      distance = 0;  // the usual shape and its one-column-wider neighbour compete on area
    } else {
      distance = 1.0 + std::abs(columns - usual);  // only when neither fits
    }
    const bool better =
        !found || distance < best_distance - 1e-12 ||
        (distance < best_distance + 1e-12 && ModuleArea(columns, rows) < ModuleArea(best.columns, best.rows));
    if (better) {
      found = true;
      best = {columns, rows};
      best_distance = distance;
    }
  }
  if (!found) {
    throw std::runtime_error("Data too long for " + Describe(s) + ": " + std::to_string(needed) + " codewords");
  }
  return best;
}

// The row indicator values of row `row` (left, right).
std::pair<int, int> RowIndicators(int row, const Shape& shape, int level) {
  const int base = 30 * (row / 3);
  const int rows_part = (shape.rows - 1) / 3;
  const int level_part = 3 * level + (shape.rows - 1) % 3;
  const int columns_part = shape.columns - 1;
  switch (row % 3) {
    case 0: return {base + rows_part, base + columns_part};
    case 1: return {base + level_part, base + rows_part};
    default: return {base + columns_part, base + level_part};
  }
}

ModuleGrid Paint(const std::vector<int>& codewords, const Shape& shape, int level) {
  const int width = kCodewordModules * shape.columns + kRowOverheadModules;
  ModuleGrid grid(width, shape.rows);
  for (int row = 0; row < shape.rows; ++row) {
    const auto& patterns = kCodewordPatterns[static_cast<size_t>(row % 3)];
    std::vector<std::pair<uint32_t, int>> pieces;  // bit image, module count
    const auto [left, right] = RowIndicators(row, shape, level);
    pieces.emplace_back(kStartPattern, 17);
    pieces.emplace_back(patterns[static_cast<size_t>(left)], kCodewordModules);
    for (int col = 0; col < shape.columns; ++col) {
      pieces.emplace_back(patterns[static_cast<size_t>(codewords[static_cast<size_t>(row * shape.columns + col)])],
                          kCodewordModules);
    }
    pieces.emplace_back(patterns[static_cast<size_t>(right)], kCodewordModules);
    pieces.emplace_back(kStopPattern, 18);
    int x = 0;
    for (const auto& [image, modules] : pieces) {
      for (int bit = modules - 1; bit >= 0; --bit, ++x) {
        const bool dark = ((image >> bit) & 1U) != 0;
        grid.set(x, row, dark);
      }
    }
  }
  return grid;
}

}  // namespace

Symbol EncodePdf417(const std::vector<uint8_t>& data, const Settings& settings) {
  CheckSettings(settings);
  // No symbol holds more: at level 0, 924 codewords after the length descriptor and the
  // numeric latch carry 61 groups of 44 digits (15 codewords each) and 26 digits more.
  constexpr size_t kMaxBytes = 61 * 44 + 26;
  if (data.size() > kMaxBytes) {
    throw std::runtime_error("Data too long for PDF417: " + std::to_string(data.size()) + " bytes, at most " +
                             std::to_string(kMaxBytes) + " digits fit");
  }
  std::vector<int> compacted = CompactData(data);
  if (settings.eci >= 0) {
    // ISO/IEC 15438 section 5.5.3: 927 for ECI 0..899, 926 and two codewords up to
    // 810899, 925 up to 811799.
    constexpr int kMaxEci = 811799;
    const int eci = settings.eci;
    std::vector<int> designator;
    if (eci < 900) {
      designator = {927, eci};
    } else if (eci < 810900) {
      designator = {926, eci / 900 - 1, eci % 900};
    } else if (eci <= kMaxEci) {
      designator = {925, eci - 810900};
    } else {
      throw std::runtime_error("ECI must be 0 to " + std::to_string(kMaxEci) + " in PDF417, not " +
                               std::to_string(eci));
    }
    compacted.insert(compacted.begin(), designator.begin(), designator.end());
  }
  const int data_codewords = 1 + static_cast<int>(compacted.size());
  const int level =
      settings.level >= 0 && settings.level <= kMaxLevel ? settings.level : RecommendedLevel(data_codewords - 1);
  const int needed = data_codewords + (2 << level);
  if (needed > kMaxCodewords) {
    throw std::runtime_error("Data too long for PDF417: " + std::to_string(needed) + " codewords at level " +
                             std::to_string(level) + ", capacity 928");
  }
  const Shape shape = ChooseShape(needed, settings);

  Symbol symbol;
  symbol.columns = shape.columns;
  symbol.rows = shape.rows;
  symbol.level = level;
  const int ecc_count = 2 << level;
  const int length_descriptor = shape.columns * shape.rows - ecc_count;
  std::vector<int>& codewords = symbol.codewords;
  codewords.push_back(length_descriptor);
  codewords.insert(codewords.end(), compacted.begin(), compacted.end());
  codewords.resize(static_cast<size_t>(length_descriptor), kPadCodeword);
  const std::vector<int> ecc = ErrorCorrection(codewords, level);
  codewords.insert(codewords.end(), ecc.begin(), ecc.end());
  symbol.modules = Paint(codewords, shape, level);
  return symbol;
}

}  // namespace barcode_orv::internal_pdf417
