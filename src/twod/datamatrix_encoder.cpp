#include "twod/datamatrix_encoder.h"

#include <algorithm>
#include <climits>
#include <deque>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "twod/galois_field.h"
#include "twod/shortest_path.h"

namespace barcode_orv::internal {
namespace {

// ---- Codeword values (ISO/IEC 16022, ASCII encodation) ----
constexpr uint8_t kPad = 129;
constexpr uint8_t kLatchC40 = 230;
constexpr uint8_t kLatchBase256 = 231;
constexpr uint8_t kUpperShift = 235;
constexpr uint8_t kLatchX12 = 238;
constexpr uint8_t kLatchText = 239;
constexpr uint8_t kLatchEdifact = 240;
constexpr uint8_t kUnlatch = 254;
constexpr uint8_t kEdifactUnlatch = 31;
constexpr int kDigitPairBase = 130;
constexpr uint8_t kFnc1 = 232;
constexpr uint8_t kEci = 241;
constexpr uint8_t kShift2Fnc1 = 27;
constexpr uint8_t kGroupSeparator = 0x1D;

// ---- The search graph ----
//
// A state is a position in the data and the current mode; in C40, Text and X12 it also
// holds how many values wait for a full triple (0..2), in EDIFACT how many wait for a full
// group of four (0..3). Costs are in twelfths of a codeword, so that a C40 value (2/3
// codeword) and an EDIFACT value (3/4) are whole numbers.
constexpr int kUnit = 12;
constexpr int kTripleValueCost = 8;
constexpr int kEdifactValueCost = 9;
constexpr int kInfinity = kUnreachable;
// Characters a forced scheme may leave to ASCII at the end of the data.
constexpr size_t kForcedAsciiTail = 4;

enum Mode : int { kAsciiMode, kC40Mode, kTextMode, kX12Mode, kEdifactMode };

constexpr int kStateCount = 14;  // ASCII, 3 x C40, 3 x Text, 3 x X12, 4 x EDIFACT
constexpr int kModeFirstState[] = {0, 1, 4, 7, 10};

constexpr int StateOf(Mode mode, int pending) { return kModeFirstState[mode] + pending; }
constexpr Mode ModeOf(int state) {
  return state == 0 ? kAsciiMode : state < 4 ? kC40Mode : state < 7 ? kTextMode : state < 10 ? kX12Mode : kEdifactMode;
}
constexpr int PendingOf(int state) { return state - kModeFirstState[ModeOf(state)]; }
static_assert(StateOf(kEdifactMode, 3) == kStateCount - 1, "EDIFACT's last state closes the table");

enum class Action : uint8_t { kNone, kAsciiChar, kDigitPair, kLatch, kUnlatch, kModeChar, kBase256 };

using Node = PathNode<Action>;

bool IsDigit(uint8_t c) { return c >= '0' && c <= '9'; }

// EDIFACT unlatch: the pending values, the unlatch value and zero bits up to a byte.
constexpr int EdifactGroupCodewords(int values) { return (6 * values + 7) / 8; }

// Values of one character in C40 (text = false) or Text (text = true); up to four.
int TripleValues(uint8_t c, bool text, uint8_t* out) {
  static constexpr std::string_view kShift2 = "!\"#$%&'()*+,-./:;<=>?@[\\]^_";
  int n = 0;
  if (c >= 128) {
    out[n++] = 1;   // Shift 2
    out[n++] = 30;  // Upper Shift
    c = static_cast<uint8_t>(c - 128);
  }
  const char basic_letter = text ? 'a' : 'A';
  const char shifted_letter = text ? 'A' : 'a';
  if (c == ' ') {
    out[n++] = 3;
  } else if (IsDigit(c)) {
    out[n++] = static_cast<uint8_t>(c - '0' + 4);
  } else if (c >= basic_letter && c < basic_letter + 26) {
    out[n++] = static_cast<uint8_t>(c - basic_letter + 14);
  } else if (c < 32) {
    out[n++] = 0;  // Shift 1
    out[n++] = c;
  } else if (const size_t at = kShift2.find(static_cast<char>(c)); at != std::string_view::npos) {
    out[n++] = 1;
    out[n++] = static_cast<uint8_t>(at);
  } else {
    out[n++] = 2;  // Shift 3: ` then the other case's letters, then { | } ~ DEL
    if (c == '`') {
      out[n++] = 0;
    } else if (c >= shifted_letter && c < shifted_letter + 26) {
      out[n++] = static_cast<uint8_t>(c - shifted_letter + 1);
    } else {
      out[n++] = static_cast<uint8_t>(c - '{' + 27);
    }
  }
  return n;
}

int X12Value(uint8_t c) {
  if (c == '\r') return 0;
  if (c == '*') return 1;
  if (c == '>') return 2;
  if (c == ' ') return 3;
  if (IsDigit(c)) return c - '0' + 4;
  if (c >= 'A' && c <= 'Z') return c - 'A' + 14;
  return -1;
}

int EdifactValue(uint8_t c) { return c >= 32 && c <= 94 ? (c & 0x3F) : -1; }

// The values of `c` in a triple or EDIFACT mode; 0 when the mode cannot carry it.
int ModeValues(Mode mode, uint8_t c, uint8_t* out) {
  switch (mode) {
    case kC40Mode: return TripleValues(c, false, out);
    case kTextMode: return TripleValues(c, true, out);
    case kX12Mode: {
      const int value = X12Value(c);
      if (value < 0) return 0;
      out[0] = static_cast<uint8_t>(value);
      return 1;
    }
    case kEdifactMode: {
      const int value = EdifactValue(c);
      if (value < 0) return 0;
      out[0] = static_cast<uint8_t>(value);
      return 1;
    }
    case kAsciiMode: break;
  }
  return 0;
}

// ASCII codewords of data[from, to): digit pairs, Upper Shift above 127.
int AsciiCost(const std::vector<uint8_t>& data, size_t from, size_t to) {
  int cost = 0;
  for (size_t i = from; i < to; ++cost) {
    if (i + 1 < to && IsDigit(data[i]) && IsDigit(data[i + 1])) {
      i += 2;
    } else {
      cost += data[i] >= 128 ? 1 : 0;
      ++i;
    }
  }
  return cost;
}

constexpr uint8_t LatchFor(Mode mode) {
  switch (mode) {
    case kC40Mode: return kLatchC40;
    case kTextMode: return kLatchText;
    case kX12Mode: return kLatchX12;
    case kEdifactMode: return kLatchEdifact;
    case kAsciiMode: break;
  }
  return 0;
}

Mode ForcedMode(Encodation scheme) {
  switch (scheme) {
    case Encodation::kC40: return kC40Mode;
    case Encodation::kText: return kTextMode;
    case Encodation::kX12: return kX12Mode;
    case Encodation::kEdifact: return kEdifactMode;
    default: return kAsciiMode;
  }
}

constexpr size_t kBase256ShortLength = 249;  // the longest segment with a one-byte length field
constexpr int Base256HeaderCodewords(size_t length) {
  return length <= kBase256ShortLength ? 2 : 3;  // latch + length
}

// How a stream ends in a symbol of a given capacity.
enum class Ending {
  kPlain,          // at the end of the data; the writer closes the mode
  kImplicitAscii,  // C40/Text/X12/EDIFACT boundary near the symbol's end: the rest in ASCII
};

struct End {
  int pos;
  int state;
  Ending ending;
};

}  // namespace

const char* EncodationName(Encodation scheme) {
  switch (scheme) {
    case Encodation::kAscii: return "ASCII";
    case Encodation::kC40: return "C40";
    case Encodation::kText: return "Text";
    case Encodation::kX12: return "X12";
    case Encodation::kEdifact: return "EDIFACT";
    case Encodation::kBase256: return "Base 256";
    case Encodation::kAuto: break;
  }
  return "automatic";
}

struct DataMatrixEncodation::Search {
  std::vector<uint8_t> data;
  Encodation scheme = Encodation::kAuto;
  bool gs1 = false;                    // Base 256 would carry the separators as plain GS
  Lattice<Action, kStateCount> nodes;  // per position 0..n

  size_t size() const { return data.size(); }

  void Relax(size_t pos, int state, int cost, size_t from_pos, int from_state, Action action) {
    nodes.Relax(pos, state, cost, from_pos, from_state, action);
  }

  bool Forced() const { return scheme != Encodation::kAuto; }
  // A forced scheme runs from the first character; ASCII only finishes what the scheme's
  // end-of-data rules leave over (the last few characters).
  bool AsciiAllowedAt(size_t pos) const {
    if (scheme == Encodation::kAuto || scheme == Encodation::kAscii) return true;
    if (scheme == Encodation::kBase256) return false;
    return pos + kForcedAsciiTail >= size();
  }
  bool ModeAllowed(Mode mode) const { return !Forced() || mode == ForcedMode(scheme); }

  void Run() {
    const size_t n = size();
    nodes.Reset(n);
    const Mode forced = ForcedMode(scheme);
    if (forced == kAsciiMode || n == 0) {
      nodes[0][StateOf(kAsciiMode, 0)].cost = 0;
    } else {
      // The forced mode's latch opens the stream (from_pos -1: nothing before it).
      nodes[0][StateOf(forced, 0)] = {kUnit, -1, -1, Action::kLatch};
    }
    Base256Starts starts;
    for (size_t pos = 0; pos <= n; ++pos) {
      if (pos > 0) RelaxBase256Into(pos, starts);
      RelaxUnlatches(pos);
      RelaxLatches(pos);
      if (pos == n) break;
      RelaxAscii(pos);
      for (Mode mode : {kC40Mode, kTextMode, kX12Mode, kEdifactMode}) RelaxModeChar(pos, mode);
    }
  }

  // Back to ASCII: 254 at a triple boundary; in EDIFACT the unlatch value and the pending
  // values fill whole codewords.
  void RelaxUnlatches(size_t pos) {
    const int ascii = StateOf(kAsciiMode, 0);
    for (Mode mode : {kC40Mode, kTextMode, kX12Mode}) {
      const int state = StateOf(mode, 0);
      const int cost = nodes[pos][state].cost;
      if (cost < kInfinity) Relax(pos, ascii, cost + kUnit, pos, state, Action::kUnlatch);
    }
    // C40 and Text complete two pending values with a Shift 1 pad value first.
    for (Mode mode : {kC40Mode, kTextMode}) {
      const int state = StateOf(mode, 2);
      const int cost = nodes[pos][state].cost;
      if (cost < kInfinity) Relax(pos, ascii, cost + kTripleValueCost + kUnit, pos, state, Action::kUnlatch);
    }
    for (int pending = 0; pending < 4; ++pending) {
      const int state = StateOf(kEdifactMode, pending);
      const int cost = nodes[pos][state].cost;
      if (cost >= kInfinity) continue;
      const int group = kUnit * EdifactGroupCodewords(pending + 1) - kEdifactValueCost * pending;
      Relax(pos, ascii, cost + group, pos, state, Action::kUnlatch);
    }
  }

  void RelaxLatches(size_t pos) {
    const int cost = nodes[pos][StateOf(kAsciiMode, 0)].cost;
    if (cost >= kInfinity || pos == size() || Forced()) return;
    for (Mode mode : {kC40Mode, kTextMode, kX12Mode, kEdifactMode}) {
      Relax(pos, StateOf(mode, 0), cost + kUnit, pos, StateOf(kAsciiMode, 0), Action::kLatch);
    }
  }

  void RelaxAscii(size_t pos) {
    const int state = StateOf(kAsciiMode, 0);
    const int cost = nodes[pos][state].cost;
    if (cost >= kInfinity || !AsciiAllowedAt(pos)) return;
    if (pos + 1 < size() && IsDigit(data[pos]) && IsDigit(data[pos + 1])) {
      Relax(pos + 2, state, cost + kUnit, pos, state, Action::kDigitPair);
    }
    Relax(pos + 1, state, cost + (data[pos] >= 128 ? 2 : 1) * kUnit, pos, state, Action::kAsciiChar);
  }

  // The best Base 256 segment ending at each position, in linear time. A segment from
  // `start` to `end` costs cost(start) + (end - start + header) codewords, so for every
  // header size only the start with the least cost(start) - start matters: a sliding
  // window (monotone queue) over the starts within 249 bytes (one length byte), and the
  // best of all older starts (two length bytes).
  struct Base256Starts {
    std::deque<size_t> near;
    int far = -1;
  };

  int StartKey(size_t start) const {
    return nodes[start][StateOf(kAsciiMode, 0)].cost - static_cast<int>(start) * kUnit;
  }

  void RelaxBase256Into(size_t end, Base256Starts& starts) {
    const int ascii = StateOf(kAsciiMode, 0);
    if (scheme == Encodation::kBase256) {
      // Forced: the whole data is one segment.
      if (end == size()) {
        Relax(end, ascii, (Base256HeaderCodewords(end) + static_cast<int>(end)) * kUnit, 0, ascii, Action::kBase256);
      }
      return;
    }
    if (Forced() || gs1) return;
    const size_t newest = end - 1;
    if (nodes[newest][ascii].cost < kInfinity) {
      while (!starts.near.empty() && StartKey(starts.near.back()) >= StartKey(newest)) starts.near.pop_back();
      starts.near.push_back(newest);
    }
    // Starts more than 249 bytes back need the two-byte length field.
    if (end > kBase256ShortLength) {
      const size_t aged = end - kBase256ShortLength - 1;
      if (nodes[aged][ascii].cost < kInfinity && (starts.far < 0 || StartKey(aged) < StartKey(starts.far))) {
        starts.far = static_cast<int>(aged);
      }
      while (!starts.near.empty() && starts.near.front() <= aged) starts.near.pop_front();
    }
    for (const int start : {starts.near.empty() ? -1 : static_cast<int>(starts.near.front()), starts.far}) {
      if (start < 0) continue;
      const size_t length = end - static_cast<size_t>(start);
      const int segment = static_cast<int>(length) + Base256HeaderCodewords(length);
      Relax(end, ascii, nodes[start][ascii].cost + segment * kUnit, static_cast<size_t>(start), ascii,
            Action::kBase256);
    }
  }

  void RelaxModeChar(size_t pos, Mode mode) {
    if (!ModeAllowed(mode)) return;
    uint8_t values[4];
    const int count = ModeValues(mode, data[pos], values);
    if (count == 0) return;
    const int modulus = mode == kEdifactMode ? 4 : 3;
    const int value_cost = mode == kEdifactMode ? kEdifactValueCost : kTripleValueCost;
    for (int pending = 0; pending < modulus; ++pending) {
      const int state = StateOf(mode, pending);
      const int cost = nodes[pos][state].cost;
      if (cost >= kInfinity) continue;
      Relax(pos + 1, StateOf(mode, (pending + count) % modulus), cost + count * value_cost, pos, state,
            Action::kModeChar);
    }
  }

  // Codewords of a stream that ends in `state` at `pos`, or -1 when it cannot end there
  // in a symbol of `capacity` codewords (0 = any capacity: the generic closing).
  int EndCodewords(size_t pos, int state, int capacity) const {
    const int cost = nodes[pos][state].cost;
    if (cost >= kInfinity) return -1;
    const Mode mode = ModeOf(state);
    const int pending = PendingOf(state);
    if (pos < size()) {
      // An implicit return to ASCII near the symbol's end carries the rest: C40, Text and
      // X12 with one codeword left; EDIFACT at a group boundary with one or two left.
      if (capacity == 0 || mode == kAsciiMode || pending != 0) return -1;
      const int used = cost / kUnit;
      const int tail = AsciiCost(data, pos, size());
      const int left = capacity - used;
      if (mode == kEdifactMode) return left <= 2 && tail <= left ? capacity : -1;
      return left == 1 && tail == 1 ? capacity : -1;
    }
    switch (mode) {
      case kAsciiMode: return cost / kUnit;
      case kC40Mode:
      case kTextMode:
        // Two pending values are completed by a Shift 1 pad value; one cannot be.
        if (pending == 1) return -1;
        return (cost + (pending == 2 ? kTripleValueCost : 0)) / kUnit;
      case kX12Mode: return pending == 0 ? cost / kUnit : -1;
      case kEdifactMode: {
        // The data already fits: closing the mode either uses no codeword or fits.
        if (pending == 0) return cost / kUnit;
        const int boundary = (cost - pending * kEdifactValueCost) / kUnit;
        if (capacity != 0 && capacity - boundary <= 2) {
          // No EDIFACT group starts this close to the end: the pending characters in ASCII.
          const int tail = AsciiCost(data, pos - pending, pos);
          return tail <= capacity - boundary ? capacity : -1;
        }
        return boundary + EdifactGroupCodewords(pending + 1);
      }
    }
    return -1;
  }

  std::optional<End> FindEnd(int capacity) const {
    std::optional<End> best;
    int best_codewords = INT_MAX;
    const size_t n = size();
    for (size_t pos = n >= 4 ? n - 4 : 0; pos <= n; ++pos) {
      for (int state = 0; state < kStateCount; ++state) {
        const int codewords = EndCodewords(pos, state, capacity);
        if (codewords < 0 || (capacity != 0 && codewords > capacity) || codewords >= best_codewords) continue;
        best_codewords = codewords;
        best = End{static_cast<int>(pos), state, pos < n ? Ending::kImplicitAscii : Ending::kPlain};
      }
    }
    return best;
  }

  int MinimumCodewords() const {
    int best = INT_MAX;
    for (int state = 0; state < kStateCount; ++state) {
      const int codewords = EndCodewords(size(), state, 0);
      if (codewords >= 0) best = std::min(best, codewords);
    }
    return best;
  }
};

namespace {

// Writes the codewords of a chosen path, applying the symbol's capacity where the
// standard lets the end of the symbol stand in for an unlatch.
class CodewordWriter {
 public:
  CodewordWriter(const std::vector<uint8_t>& data, int capacity, const std::vector<uint8_t>& prefix, bool gs1)
      : data_(data), capacity_(capacity), gs1_(gs1), out_(prefix) {}

  void AsciiChar(uint8_t c) {
    if (gs1_ && c == kGroupSeparator) {
      out_.push_back(kFnc1);
      return;
    }
    if (c >= 128) {
      out_.push_back(kUpperShift);
      c = static_cast<uint8_t>(c - 128);
    }
    out_.push_back(static_cast<uint8_t>(c + 1));
  }
  void DigitPair(uint8_t a, uint8_t b) {
    out_.push_back(static_cast<uint8_t>(kDigitPairBase + (a - '0') * 10 + (b - '0')));
  }
  void AsciiRun(size_t from, size_t to) {
    for (size_t i = from; i < to;) {
      if (i + 1 < to && IsDigit(data_[i]) && IsDigit(data_[i + 1])) {
        DigitPair(data_[i], data_[i + 1]);
        i += 2;
      } else {
        AsciiChar(data_[i++]);
      }
    }
  }

  void Latch(Mode mode) {
    out_.push_back(LatchFor(mode));
    mode_ = mode;
    values_.clear();
  }

  void ModeChar(size_t pos) {
    uint8_t values[4];
    int count = ModeValues(mode_, data_[pos], values);
    if (gs1_ && data_[pos] == kGroupSeparator) {
      values[0] = 1;  // Shift 2
      values[1] = kShift2Fnc1;
      count = 2;
    }
    for (int i = 0; i < count; ++i) {
      values_.push_back(values[i]);
      if (mode_ != kEdifactMode && values_.size() == 3) FlushTriple();
      if (mode_ == kEdifactMode && values_.size() == 4) FlushEdifact();
    }
  }

  // Back to ASCII at `pos` (the data position after the last character written).
  void Unlatch(size_t pos) {
    if ((mode_ == kC40Mode || mode_ == kTextMode) && values_.size() == 2) {
      values_.push_back(0);  // Shift 1 as the pad value
      FlushTriple();
    }
    const int left = capacity_ - static_cast<int>(out_.size());
    if (mode_ == kEdifactMode) {
      if (left <= 2) {
        // The reader returns to ASCII on its own; pending characters go in ASCII.
        const size_t pending = values_.size();
        values_.clear();
        AsciiRun(pos - pending, pos);
      } else {
        values_.push_back(kEdifactUnlatch);
        FlushEdifact();
      }
    } else if (left >= 2) {
      out_.push_back(kUnlatch);  // with one codeword left the reader returns by itself
    }
    mode_ = kAsciiMode;
  }

  void Base256(size_t from, size_t to) {
    const size_t length = to - from;
    out_.push_back(kLatchBase256);
    if (length <= 249) {
      PushRandomised255(static_cast<uint8_t>(length));
    } else {
      PushRandomised255(static_cast<uint8_t>(249 + length / 250));
      PushRandomised255(static_cast<uint8_t>(length % 250));
    }
    for (size_t i = from; i < to; ++i) PushRandomised255(data_[i]);
  }

  // Closes the mode at the end of the data.
  void Finish() {
    if (mode_ != kAsciiMode) Unlatch(data_.size());
  }

  std::vector<uint8_t> Take() { return std::move(out_); }

 private:
  void FlushTriple() {
    const int packed = 1600 * values_[0] + 40 * values_[1] + values_[2] + 1;
    out_.push_back(static_cast<uint8_t>(packed >> 8));
    out_.push_back(static_cast<uint8_t>(packed & 0xFF));
    values_.clear();
  }

  void FlushEdifact() {
    uint32_t bits = 0;
    for (size_t i = 0; i < 4; ++i) bits = (bits << 6) | (i < values_.size() ? values_[i] : 0);
    const int codewords = EdifactGroupCodewords(static_cast<int>(values_.size()));
    for (int i = 0; i < codewords; ++i) out_.push_back(static_cast<uint8_t>(bits >> (16 - 8 * i)));
    values_.clear();
  }

  void PushRandomised255(uint8_t value) {
    const int position = static_cast<int>(out_.size()) + 1;
    const int randomised = value + (149 * position) % 255 + 1;
    out_.push_back(static_cast<uint8_t>(randomised <= 255 ? randomised : randomised - 256));
  }

  const std::vector<uint8_t>& data_;
  int capacity_;
  bool gs1_;
  Mode mode_ = kAsciiMode;
  std::vector<uint8_t> values_;
  std::vector<uint8_t> out_;
};

}  // namespace

DataMatrixEncodation::DataMatrixEncodation(const std::vector<uint8_t>& data, Encodation scheme,
                                           const DataMatrixOptions& options)
    : search_(std::make_unique<Search>()) {
  search_->data = data;
  search_->scheme = scheme;
  search_->gs1 = options.gs1;
  if (options.gs1) {
    if (scheme == Encodation::kBase256) throw std::runtime_error("GS1 data cannot be carried in Base 256");
    prefix_.push_back(kFnc1);
  }
  if (options.eci >= 0) {
    // ISO/IEC 16022 section 5.4.1: the ECI number in one to three codewords.
    const int eci = options.eci;
    prefix_.push_back(kEci);
    if (eci < 127) {
      prefix_.push_back(static_cast<uint8_t>(eci + 1));
    } else if (eci < 16383) {
      prefix_.push_back(static_cast<uint8_t>((eci - 127) / 254 + 128));
      prefix_.push_back(static_cast<uint8_t>((eci - 127) % 254 + 1));
    } else {
      prefix_.push_back(static_cast<uint8_t>((eci - 16383) / 64516 + 192));
      prefix_.push_back(static_cast<uint8_t>((eci - 16383) / 254 % 254 + 1));
      prefix_.push_back(static_cast<uint8_t>((eci - 16383) % 254 + 1));
    }
  }
  if (scheme == Encodation::kX12 || scheme == Encodation::kEdifact) {
    for (size_t i = 0; i < data.size(); ++i) {
      const bool fits = scheme == Encodation::kX12 ? X12Value(data[i]) >= 0 : EdifactValue(data[i]) >= 0;
      if (!fits) {
        throw std::runtime_error("Character " + std::to_string(data[i]) + " at position " + std::to_string(i) +
                                 " cannot be encoded in " + EncodationName(scheme));
      }
    }
  }
  search_->Run();
  if (search_->MinimumCodewords() == INT_MAX) {
    throw std::runtime_error(std::string("Data cannot be encoded in ") + EncodationName(scheme));
  }
}

DataMatrixEncodation::~DataMatrixEncodation() = default;

int DataMatrixEncodation::MinimumCodewords() const {
  return search_->MinimumCodewords() + static_cast<int>(prefix_.size());
}

bool DataMatrixEncodation::FitsIn(int capacity) const {
  const int left = capacity - static_cast<int>(prefix_.size());
  return left > 0 && search_->FindEnd(left).has_value();
}

std::vector<uint8_t> DataMatrixEncodation::Codewords(int capacity) const {
  const std::optional<End> end = search_->FindEnd(capacity - static_cast<int>(prefix_.size()));
  if (!end) throw std::logic_error("Data Matrix codewords requested for a capacity that does not fit");

  // Walk back from the end, then write forward.
  const auto steps = search_->nodes.Path(static_cast<size_t>(end->pos), end->state, Action::kNone);

  const std::vector<uint8_t>& data = search_->data;
  CodewordWriter writer(data, capacity, prefix_, search_->gs1);
  for (const auto& step : steps) {
    const size_t from = static_cast<size_t>(std::max(step.node->from_pos, 0));
    switch (step.node->action) {
      case Action::kAsciiChar: writer.AsciiChar(data[from]); break;
      case Action::kDigitPair: writer.DigitPair(data[from], data[from + 1]); break;
      case Action::kLatch: writer.Latch(ModeOf(step.state)); break;
      case Action::kUnlatch: writer.Unlatch(from); break;
      case Action::kModeChar: writer.ModeChar(from); break;
      case Action::kBase256: writer.Base256(from, static_cast<size_t>(step.pos)); break;
      case Action::kNone: break;
    }
  }
  if (end->ending == Ending::kImplicitAscii) {
    writer.AsciiRun(static_cast<size_t>(end->pos), data.size());
  } else {
    writer.Finish();
  }
  return PadCodewords(writer.Take(), capacity);
}

std::vector<uint8_t> PadCodewords(std::vector<uint8_t> codewords, int capacity) {
  bool first = true;
  while (static_cast<int>(codewords.size()) < capacity) {
    if (first) {
      codewords.push_back(kPad);
      first = false;
      continue;
    }
    const int position = static_cast<int>(codewords.size()) + 1;
    const int randomised = kPad + (149 * position) % 253 + 1;
    codewords.push_back(static_cast<uint8_t>(randomised <= 254 ? randomised : randomised - 254));
  }
  return codewords;
}

// ---- Reed-Solomon over GF(256) with the primitive polynomial 0x12D ----

namespace {

constexpr const auto& kField = kDataMatrixField;
static_assert(kField.exp[8] == 0x2D, "2^8 reduces by 0x12D");

}  // namespace

std::vector<uint8_t> GeneratorPolynomial(int ecc_count) {
  std::vector<uint8_t> g{1};
  for (int i = 1; i <= ecc_count; ++i) {
    // Multiply by (x + 2^i); highest order first.
    const uint8_t root = kField.exp[i];
    std::vector<uint8_t> next(g.size() + 1, 0);
    for (size_t j = 0; j < g.size(); ++j) {
      next[j] ^= g[j];
      next[j + 1] ^= kField.Multiply(g[j], root);
    }
    g = std::move(next);
  }
  return g;
}

namespace {

std::vector<uint8_t> BlockErrorCorrection(const std::vector<uint8_t>& block, const std::vector<uint8_t>& generator) {
  const size_t ecc_count = generator.size() - 1;
  std::vector<uint8_t> remainder(ecc_count, 0);
  for (uint8_t codeword : block) {
    const uint8_t feedback = codeword ^ remainder[0];
    for (size_t j = 0; j + 1 < ecc_count; ++j) {
      remainder[j] = remainder[j + 1] ^ kField.Multiply(feedback, generator[j + 1]);
    }
    remainder[ecc_count - 1] = kField.Multiply(feedback, generator[ecc_count]);
  }
  return remainder;
}

}  // namespace

std::vector<uint8_t> AddErrorCorrection(const std::vector<uint8_t>& data, const DataMatrixSize& size) {
  const int blocks = size.blocks;
  const std::vector<uint8_t> generator = GeneratorPolynomial(size.ecc_per_block);
  std::vector<uint8_t> out = data;
  out.resize(static_cast<size_t>(size.data_codewords + size.ecc_codewords), 0);
  // 144 x 144 alone interleaves its error-correction blocks rotated by two, as
  // deployed readers expect.
  const int rotation = blocks == 10 ? 2 : 0;
  for (int b = 0; b < blocks; ++b) {
    std::vector<uint8_t> block;
    for (size_t i = static_cast<size_t>(b); i < data.size(); i += static_cast<size_t>(blocks)) block.push_back(data[i]);
    const std::vector<uint8_t> ecc = BlockErrorCorrection(block, generator);
    const int slot = (b + rotation) % blocks;
    for (size_t j = 0; j < ecc.size(); ++j) {
      out[static_cast<size_t>(size.data_codewords) + static_cast<size_t>(slot) + j * static_cast<size_t>(blocks)] =
          ecc[j];
    }
  }
  return out;
}

// ---- Module placement (ISO/IEC 16022 Annex F) ----

namespace {

class Placement {
 public:
  Placement(const std::vector<uint8_t>& codewords, int rows, int cols)
      : codewords_(codewords), rows_(rows), cols_(cols), cells_(static_cast<size_t>(rows) * cols, kEmpty) {}

  void Run() {
    int pos = 0;
    int row = 4;
    int col = 0;
    do {
      if (row == rows_ && col == 0) Corner1(pos++);
      if (row == rows_ - 2 && col == 0 && cols_ % 4 != 0) Corner2(pos++);
      if (row == rows_ - 2 && col == 0 && cols_ % 8 == 4) Corner3(pos++);
      if (row == rows_ + 4 && col == 2 && cols_ % 8 == 0) Corner4(pos++);
      // Up and to the right.
      do {
        if (row < rows_ && col >= 0 && At(row, col) == kEmpty) Utah(row, col, pos++);
        row -= 2;
        col += 2;
      } while (row >= 0 && col < cols_);
      row += 1;
      col += 3;
      // Down and to the left.
      do {
        if (row >= 0 && col < cols_ && At(row, col) == kEmpty) Utah(row, col, pos++);
        row += 2;
        col -= 2;
      } while (row < rows_ && col >= 0);
      row += 3;
      col += 1;
    } while (row < rows_ || col < cols_);
    // The fixed pattern of the sizes whose mapping area leaves four modules over.
    if (At(rows_ - 1, cols_ - 1) == kEmpty) {
      At(rows_ - 1, cols_ - 1) = kDark;
      At(rows_ - 2, cols_ - 2) = kDark;
      At(rows_ - 1, cols_ - 2) = kLight;
      At(rows_ - 2, cols_ - 1) = kLight;
    }
  }

  bool dark(int row, int col) const { return cells_[static_cast<size_t>(row) * cols_ + col] == kDark; }

 private:
  static constexpr uint8_t kEmpty = 0;
  static constexpr uint8_t kLight = 1;
  static constexpr uint8_t kDark = 2;

  uint8_t& At(int row, int col) { return cells_[static_cast<size_t>(row) * cols_ + col]; }

  // Bit `bit` (1 = most significant) of codeword `pos` at (row, col), wrapping the
  // coordinates that fall outside the mapping matrix as the standard prescribes.
  void Module(int row, int col, int pos, int bit) {
    if (row < 0) {
      row += rows_;
      col += 4 - ((rows_ + 4) % 8);
    }
    if (col < 0) {
      col += cols_;
      row += 4 - ((cols_ + 4) % 8);
    }
    // ISO/IEC 21471 Annex E: in the DMRE sizes this wrap can pass the last row.
    if (row >= rows_) row -= rows_;
    const uint8_t codeword = static_cast<size_t>(pos) < codewords_.size() ? codewords_[pos] : 0;
    At(row, col) = ((codeword >> (8 - bit)) & 1) != 0 ? kDark : kLight;
  }

  void Utah(int row, int col, int pos) {
    Module(row - 2, col - 2, pos, 1);
    Module(row - 2, col - 1, pos, 2);
    Module(row - 1, col - 2, pos, 3);
    Module(row - 1, col - 1, pos, 4);
    Module(row - 1, col, pos, 5);
    Module(row, col - 2, pos, 6);
    Module(row, col - 1, pos, 7);
    Module(row, col, pos, 8);
  }

  void Corner1(int pos) {
    Module(rows_ - 1, 0, pos, 1);
    Module(rows_ - 1, 1, pos, 2);
    Module(rows_ - 1, 2, pos, 3);
    Module(0, cols_ - 2, pos, 4);
    Module(0, cols_ - 1, pos, 5);
    Module(1, cols_ - 1, pos, 6);
    Module(2, cols_ - 1, pos, 7);
    Module(3, cols_ - 1, pos, 8);
  }

  void Corner2(int pos) {
    Module(rows_ - 3, 0, pos, 1);
    Module(rows_ - 2, 0, pos, 2);
    Module(rows_ - 1, 0, pos, 3);
    Module(0, cols_ - 4, pos, 4);
    Module(0, cols_ - 3, pos, 5);
    Module(0, cols_ - 2, pos, 6);
    Module(0, cols_ - 1, pos, 7);
    Module(1, cols_ - 1, pos, 8);
  }

  void Corner3(int pos) {
    Module(rows_ - 3, 0, pos, 1);
    Module(rows_ - 2, 0, pos, 2);
    Module(rows_ - 1, 0, pos, 3);
    Module(0, cols_ - 2, pos, 4);
    Module(0, cols_ - 1, pos, 5);
    Module(1, cols_ - 1, pos, 6);
    Module(2, cols_ - 1, pos, 7);
    Module(3, cols_ - 1, pos, 8);
  }

  void Corner4(int pos) {
    Module(rows_ - 1, 0, pos, 1);
    Module(rows_ - 1, cols_ - 1, pos, 2);
    Module(0, cols_ - 3, pos, 3);
    Module(0, cols_ - 2, pos, 4);
    Module(0, cols_ - 1, pos, 5);
    Module(1, cols_ - 3, pos, 6);
    Module(1, cols_ - 2, pos, 7);
    Module(1, cols_ - 1, pos, 8);
  }

  const std::vector<uint8_t>& codewords_;
  int rows_;
  int cols_;
  std::vector<uint8_t> cells_;
};

}  // namespace

ModuleGrid PlaceModules(const std::vector<uint8_t>& codewords, const DataMatrixSize& size) {
  Placement placement(codewords, size.mapping_rows(), size.mapping_cols());
  placement.Run();

  ModuleGrid grid(size.cols, size.rows);
  const int region_height = size.region_rows + 2;
  const int region_width = size.region_cols + 2;
  for (int row = 0; row < size.rows; ++row) {
    const int in_row = row % region_height;  // 0 = top clock track, last = bottom finder
    for (int col = 0; col < size.cols; ++col) {
      const int in_col = col % region_width;  // 0 = left finder, last = right clock track
      bool dark = false;
      if (in_row == region_height - 1 || in_col == 0) {
        dark = true;
      } else if (in_row == 0) {
        dark = in_col % 2 == 0;
      } else if (in_col == region_width - 1) {
        dark = in_row % 2 == 1;
      } else {
        const int map_row = (row / region_height) * size.region_rows + in_row - 1;
        const int map_col = (col / region_width) * size.region_cols + in_col - 1;
        dark = placement.dark(map_row, map_col);
      }
      grid.set(col, row, dark);
    }
  }
  return grid;
}

DataMatrixSymbol EncodeDataMatrix(const std::vector<uint8_t>& data, int size_value, Encodation scheme,
                                  const DataMatrixOptions& options) {
  // No symbol holds more than two digits a codeword; data far beyond that is refused
  // before the search, which needs memory in proportion to the data.
  const size_t most = 2 * static_cast<size_t>(kDataMatrixSizes[kSquareSizeCount - 1].data_codewords);
  if (data.size() > 4 * most) {
    throw std::runtime_error("Data too long for Data Matrix: " + std::to_string(data.size()) + " bytes, at most " +
                             std::to_string(most) + " digits fit");
  }
  const bool known_scheme = static_cast<int>(scheme) >= -1 && static_cast<int>(scheme) <= 5;
  const DataMatrixEncodation encodation(data, known_scheme ? scheme : Encodation::kAuto, options);
  int size_index = -1;
  if (size_value >= 0 && size_value < kDataMatrixSizeCount) {
    const DataMatrixSize& size = kDataMatrixSizes[size_value];
    if (!encodation.FitsIn(size.data_codewords)) {
      throw std::runtime_error(std::string("Data too long for ") + size.name + ": " +
                               std::to_string(encodation.MinimumCodewords()) + " codewords, capacity " +
                               std::to_string(size.data_codewords));
    }
    size_index = size_value;
  } else if (size_value == kAutoRect || size_value == kAutoDmre) {
    // The smallest area that holds the data; on equal areas the earlier size in the table.
    const int candidates = size_value == kAutoRect ? kIso16022SizeCount : kDataMatrixSizeCount;
    for (int i = 0; i < candidates; ++i) {
      const DataMatrixSize& size = kDataMatrixSizes[i];
      if (size_index >= 0 &&
          size.rows * size.cols >= kDataMatrixSizes[size_index].rows * kDataMatrixSizes[size_index].cols) {
        continue;
      }
      if (encodation.FitsIn(size.data_codewords)) size_index = i;
    }
  } else {
    for (int i = 0; i < kSquareSizeCount && size_index < 0; ++i) {
      if (encodation.FitsIn(kDataMatrixSizes[i].data_codewords)) size_index = i;
    }
  }
  if (size_index < 0) {
    throw std::runtime_error("Data too long for Data Matrix: " + std::to_string(encodation.MinimumCodewords()) +
                             " codewords, capacity " +
                             std::to_string(kDataMatrixSizes[kSquareSizeCount - 1].data_codewords));
  }
  const DataMatrixSize& size = kDataMatrixSizes[size_index];
  const std::vector<uint8_t> codewords = AddErrorCorrection(encodation.Codewords(size.data_codewords), size);
  return {size_index, PlaceModules(codewords, size)};
}

}  // namespace barcode_orv::internal
