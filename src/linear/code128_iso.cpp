#include "linear/code128_iso.h"

#include <array>
#include <stdexcept>
#include <string>

#include "linear/code128.h"

namespace barcode_orv::internal {
namespace {

constexpr int kA = 0;
constexpr int kB = 1;
constexpr int kC = 2;
constexpr int32_t kStartA = 103;
constexpr int32_t kShift = 98;
constexpr int32_t kFnc1Value = 102;
// Latch values indexed by the set they enter: CODE A, CODE B, CODE C.
constexpr std::array<int32_t, 3> kLatch = {101, 100, 99};

bool IsDigit(int c) { return c >= '0' && c <= '9'; }

// How a step writes the character(s) at a position.
enum Step : uint8_t { kStay, kLatchA, kLatchB, kLatchC, kShiftOther, kNone };

class Search {
 public:
  explicit Search(const std::vector<int>& chars)
      : chars_(chars), cost_((chars.size() + 1) * 3, 0), step_(chars.size() * 3, kNone) {
    for (size_t pos = chars.size(); pos-- > 0;) {
      for (int set = kA; set <= kC; ++set) Solve(pos, set);
    }
  }

  int32_t Cost(int set) const { return cost_[static_cast<size_t>(set)]; }

  void AppendValues(int set, std::vector<int32_t>& values) const {
    for (size_t pos = 0; pos < chars_.size();) {
      const Step step = step_[pos * 3 + static_cast<size_t>(set)];
      if (step == kShiftOther) {
        values.push_back(kShift);
        values.push_back(Value(pos, set == kA ? kB : kA));
        pos += 1;
        continue;
      }
      if (step != kStay) {
        set = step - kLatchA;
        values.push_back(kLatch[static_cast<size_t>(set)]);
      }
      values.push_back(Value(pos, set));
      pos += Advance(pos, set);
    }
  }

  static constexpr int32_t kUnencodable = -1;

 private:
  bool Encodable(size_t pos, int set) const {
    const int c = chars_[pos];
    if (c == kCode128Fnc1) return true;
    switch (set) {
      case kA: return c >= 0 && c < 96;
      case kB: return c >= 32 && c < 128;
      default: return IsDigit(c) && pos + 1 < chars_.size() && IsDigit(chars_[pos + 1]);
    }
  }
  size_t Advance(size_t pos, int set) const { return set == kC && chars_[pos] != kCode128Fnc1 ? 2 : 1; }
  int32_t Value(size_t pos, int set) const {
    const int c = chars_[pos];
    if (c == kCode128Fnc1) return kFnc1Value;
    switch (set) {
      case kA: return c < 32 ? c + 64 : c - 32;
      case kB: return c - 32;
      default: return (c - '0') * 10 + (chars_[pos + 1] - '0');
    }
  }
  int32_t Rest(size_t pos, int set) const { return cost_[pos * 3 + static_cast<size_t>(set)]; }

  // cost(pos, set): symbol characters for chars[pos..] with `set` active. Ties keep the
  // set, then prefer latching to C, B, A, then a shift.
  void Solve(size_t pos, int set) {
    int32_t best = kUnencodable;
    Step best_step = kNone;
    auto consider = [&](int32_t rest, int32_t overhead, Step step) {
      if (rest == kUnencodable) return;
      if (best == kUnencodable || rest + overhead < best) {
        best = rest + overhead;
        best_step = step;
      }
    };
    if (Encodable(pos, set)) consider(Rest(pos + Advance(pos, set), set), 1, kStay);
    for (int target : {kC, kB, kA}) {
      if (target != set && Encodable(pos, target)) {
        consider(Rest(pos + Advance(pos, target), target), 2, static_cast<Step>(kLatchA + target));
      }
    }
    if (set != kC && chars_[pos] != kCode128Fnc1 && Encodable(pos, set == kA ? kB : kA)) {
      consider(Rest(pos + 1, set), 2, kShiftOther);
    }
    cost_[pos * 3 + static_cast<size_t>(set)] = best;
    step_[pos * 3 + static_cast<size_t>(set)] = best_step;
  }

  const std::vector<int>& chars_;
  std::vector<int32_t> cost_;  // (pos, set); the row pos == size is 0
  std::vector<Step> step_;
};

}  // namespace

std::vector<int32_t> Iso15417Values(const std::vector<int>& chars) {
  if (chars.empty()) throw std::runtime_error("Empty string");
  for (int c : chars) {
    if (c != kCode128Fnc1 && (c < 0 || c > 127)) {
      throw std::runtime_error("Character " + std::to_string(c) + " is outside Code 128's ASCII range");
    }
  }
  const Search search(chars);
  int start = -1;
  for (int set : {kC, kB, kA}) {  // on equal length: C, then B, then A
    const int32_t cost = search.Cost(set);
    if (cost != Search::kUnencodable && (start < 0 || cost < search.Cost(start))) start = set;
  }
  if (start < 0) throw std::runtime_error("No valid start");
  std::vector<int32_t> values;
  values.reserve(static_cast<size_t>(search.Cost(start)) + 3);
  values.push_back(kStartA + start);
  search.AppendValues(start, values);
  FinishCode128(values);
  return values;
}

}  // namespace barcode_orv::internal
