// Code 128: symbol values, element widths, the automatic code-set search and the
// C interface, with round trips through an independent reader.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "api/ffi_internal.h"
#include "barcode_ffi.h"
#include "linear/code128.h"
#include "support/c_api.h"
#include "support/zxing_decode.h"

namespace barcode_orv {
namespace {

using Values = std::vector<int32_t>;
constexpr CodeSet128 kA = CodeSet128::kA, kB = CodeSet128::kB, kC = CodeSet128::kC, kAuto = CodeSet128::kAuto;

std::string Message(const std::string& text, CodeSet128 mode) {
  try {
    internal::EncodeCode128(text, mode);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "(no error)";
}

TEST(Code128Values, HandWorkedSymbols) {
  // Check characters worked out by hand: (start + sum of value x position) mod 103.
  const struct {
    std::string text;
    CodeSet128 mode;
    Values values;
  } cases[] = {
      {"1234", kAuto, {105, 12, 34, 82, 106}},            // even digits: one run of C
      {"12345", kAuto, {105, 12, 34, 101, 53, 82, 106}},  // odd digit: latch to A, byte value
      {"ABC", kAuto, {103, 65, 66, 67, 89, 106}},         // A and B tie: A
      {"abc", kAuto, {104, 65, 66, 67, 90, 106}},
      {"ab\tcd", kAuto, {104, 65, 66, 101, 9, 100, 67, 68, 61, 106}},
      {"ab\t", kAuto, {104, 65, 66, 101, 9, 22, 106}},
      {"a123456b", kAuto, {104, 65, 99, 12, 34, 56, 100, 66, 27, 106}},
      {"a12b", kAuto, {104, 65, 17, 18, 66, 6, 106}},  // two digits do not pay for a latch
      {"7", kAuto, {103, 55, 55, 106}},
      {"AB", kB, {104, 33, 34, 102, 106}},
      {"~ ", kB, {104, 94, 0, 95, 106}},
      {"0099", kC, {105, 0, 99, 97, 106}},
      {"A\x01", kA, {103, 65, 1, 67, 106}},
      {"_", kA, {103, 95, 95, 106}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(internal::Code128Values(c.text, c.mode), c.values) << c.text;
    const Values widths = internal::EncodeCode128(c.text, c.mode);
    EXPECT_EQ(std::accumulate(widths.begin(), widths.end(), 0), static_cast<int>(c.values.size()) * 11 + 2) << c.text;
  }
  // Start B, "A", "B", check 102, stop with termination bar.
  const std::string ab =
      "211214"
      "111323"
      "131123"
      "411131"
      "2331112";
  Values ab_widths;
  for (char d : ab) ab_widths.push_back(d - '0');
  EXPECT_EQ(internal::EncodeSingleSet("AB", kB), ab_widths);
  EXPECT_EQ(internal::EncodeAuto("abc"), internal::EncodeSingleSet("abc", kB));
}

TEST(Code128Errors, ThrowTheirMessages) {
  const struct {
    std::string text;
    CodeSet128 mode;
    const char* message;
  } cases[] = {
      {"", kAuto, "Empty string"},
      {"", kC, "Empty string"},
      {"123", static_cast<CodeSet128>(7), "Invalid CodeMode"},
      {"123", kC, "Not 2-digit at pos=2"},
      {"12a4", kC, "Not 2-digit at pos=2"},
      {"x1", kC, "Not 2-digit at pos=0"},
      {"a", kA, "Invalid char for CODE_A"},
      {"AB\x7f", kA, "Invalid char for CODE_A"},
      {"\t", kB, "Invalid char for CODE_B"},
      {"\x7f", kB, "Invalid char for CODE_B"},
      {"ab\xc3\xa9", kAuto, "No valid start"},
      {"1234\x80", kAuto, "No valid start"},
  };
  for (const auto& c : cases) EXPECT_EQ(Message(c.text, c.mode), c.message) << c.text;
}

// The automatic search written the plain way: recursive, memoised, values copied per
// state; ties keep the set, then latch A, B, C; an unwritable byte aborts the start
// set. Start sets of equal cost prefer C, then A, then B.
class ReferenceSearch {
 public:
  explicit ReferenceSearch(const std::string& text) : t_(text) {}

  Values Encode() {
    Values best;
    for (int set : {2, 0, 1}) {
      try {
        Values candidate = Solve(0, set);
        candidate.insert(candidate.begin(), 103 + set);
        if (best.empty() || candidate.size() < best.size()) best = candidate;
      } catch (const std::runtime_error&) {
      }
    }
    if (best.empty()) throw std::runtime_error("No valid start");
    int64_t sum = best[0];
    for (size_t i = 1; i < best.size(); ++i) sum += best[i] * static_cast<int64_t>(i);
    best.push_back(static_cast<int32_t>(sum % 103));
    best.push_back(106);
    return best;
  }

 private:
  bool Digit(size_t i) const { return i < t_.size() && t_[i] >= '0' && t_[i] <= '9'; }
  bool Writable(size_t pos, int set) const {
    const auto c = static_cast<unsigned char>(t_[pos]);
    return set == 0 ? c < 96 : set == 1 ? (c >= 32 && c <= 126) : (Digit(pos) && Digit(pos + 1));
  }
  int32_t Value(size_t pos, int set) const {
    const auto c = static_cast<unsigned char>(t_[pos]);
    return set == 0 ? c : set == 1 ? c - 32 : (c - '0') * 10 + (t_[pos + 1] - '0');
  }

  Values Solve(size_t pos, int set) {
    if (pos >= t_.size()) return {};
    if (auto it = memo_.find({pos, set}); it != memo_.end()) return it->second;
    Values best;
    for (int target : {set, 0, 1, 2}) {
      if ((target == set && !best.empty()) || !Writable(pos, target)) continue;
      Values candidate;
      if (target != set) candidate.push_back(target == 0 ? 101 : target == 1 ? 100 : 99);
      candidate.push_back(Value(pos, target));
      const Values rest = Solve(pos + (target == 2 ? 2 : 1), target);
      candidate.insert(candidate.end(), rest.begin(), rest.end());
      if (best.empty() || candidate.size() < best.size()) best = candidate;
    }
    if (best.empty()) throw std::runtime_error("DP encode error at pos=" + std::to_string(pos));
    return memo_[{pos, set}] = best;
  }

  const std::string& t_;
  std::map<std::pair<size_t, int>, Values> memo_;
};

TEST(Code128Auto, MatchesTheRecursiveDefinitionOnRandomTexts) {
  // Digit runs, set changes, control bytes and the odd unwritable byte.
  const std::string alphabets[] = {"0123456789", "0123456789aB", "0123456789ab\t\x1f", "01aA_`\x7e\x01",
                                   "0123456789AZaz \t\x7f"};
  std::mt19937 rng(128);
  for (const std::string& alphabet : alphabets) {
    for (int round = 0; round < 300; ++round) {
      std::string text(std::uniform_int_distribution<size_t>(1, 24)(rng), ' ');
      for (char& c : text) c = alphabet[std::uniform_int_distribution<size_t>(0, alphabet.size() - 1)(rng)];
      try {
        const Values expected = ReferenceSearch(text).Encode();
        EXPECT_EQ(internal::Code128Values(text, kAuto), expected) << "text: " << text;
      } catch (const std::runtime_error&) {
        EXPECT_EQ(Message(text, kAuto), "No valid start") << "text: " << text;
      }
    }
  }
}

TEST(Code128Auto, VeryLongTextsEncodeWithoutRecursion) {
  const auto started = std::chrono::steady_clock::now();
  const Values digits = internal::Code128Values(std::string(100000, '7'), kAuto);
  ASSERT_EQ(digits.size(), 1 + 50000 + 2U);
  EXPECT_EQ(digits.front(), 105);
  EXPECT_EQ(digits[50000], 77);

  std::mt19937 rng(7);
  std::string mixed(100000, ' ');
  for (char& c : mixed) c = static_cast<char>(std::uniform_int_distribution<int>(0, 126)(rng));
  EXPECT_EQ(internal::EncodeCode128(mixed, kAuto).size() % 6, 1U);
  mixed.back() = '\x80';
  EXPECT_EQ(Message(mixed, kAuto), "No valid start");
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(10));
}

TEST(Code128Auto, ConcurrentEncodingsDoNotShareState) {
  const std::string texts[2] = {"abc123456DEF\t789", "0000000000x"};
  const Values expected[2] = {internal::Code128Values(texts[0], kAuto), internal::Code128Values(texts[1], kAuto)};
  bool ok[2] = {true, true};
  auto run = [&](int k) {
    for (int i = 0; i < 2000; ++i) ok[k] = ok[k] && internal::Code128Values(texts[k], kAuto) == expected[k];
  };
  std::thread first(run, 0);
  std::thread second(run, 1);
  first.join();
  second.join();
  EXPECT_TRUE(ok[0] && ok[1]);
}

struct Handle {
  Handle() : h(barcode_create(BARCODE_CODE128)) {}
  ~Handle() { barcode_destroy(h); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  CodeSet128 Mode() const { return dynamic_cast<Code128&>(*h->object).GetCodeMode(); }
  BarcodeHandle* h;
};

TEST(Code128CInterface, CodeModeKeywordsAndErrorLines) {
  Handle handle;
  ASSERT_NE(handle.h, nullptr);
  EXPECT_EQ(handle.Mode(), kAuto);
  const std::pair<const char*, CodeSet128> steps[] = {
      {"A", kA}, {"B", kB}, {"auto", kB}, {"C", kC}, {"", kC}, {"AUTO", kAuto}, {"b", kAuto}, {nullptr, kAuto},
  };
  for (const auto& [keyword, mode] : steps) {
    barcode_set_code_mode(handle.h, keyword);
    EXPECT_EQ(handle.Mode(), mode) << (keyword ? keyword : "null");
  }
  barcode_set_code_mode(nullptr, "A");
  BarcodeHandle* code39 = barcode_create(BARCODE_CODE39);
  barcode_set_code_mode(code39, "C");  // not a Code 128 handle: ignored
  EXPECT_EQ(barcode_draw_1d(code39, "AB", 300, 60), 1);
  barcode_destroy(code39);

  barcode_set_code_mode(handle.h, "C");
  for (const char* format : {"png", "svg"}) {
    barcode_set_output_format(handle.h, format);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(barcode_draw_1d(handle.h, "12a4", 300, 60), 0);
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("[Code128] Not 2-digit at pos=2"), std::string::npos);
  }
  EXPECT_EQ(barcode_draw_1d(handle.h, "1234", 300, 60), 1);  // the object draws again
  EXPECT_NE(std::string(barcode_get_svg(handle.h)).find(">4</text>"), std::string::npos);
}

// Draws through the C interface at 2 pixels a module and reads the symbol back.
void ExpectRoundTrip(const char* mode, const std::string& text) {
  Handle handle;
  barcode_set_code_mode(handle.h, mode);
  barcode_set_show_text(handle.h, 0);
  const Values widths = internal::EncodeCode128(text, handle.Mode());
  ASSERT_EQ(barcode_draw_1d(handle.h, text.c_str(), std::accumulate(widths.begin(), widths.end(), 0) * 2 + 1, 40), 1);
  const testing::Decoded decoded = testing::DecodeHandle(handle.h, testing::Symbology::kCode128);
  EXPECT_TRUE(decoded.ok && decoded.text == text) << mode << " text: " << text << " read: " << decoded.text;
}

std::string RandomText(std::mt19937& rng, const std::string& alphabet, size_t max_len) {
  std::string text(std::uniform_int_distribution<size_t>(1, max_len)(rng), ' ');
  for (char& c : text) c = alphabet[std::uniform_int_distribution<size_t>(0, alphabet.size() - 1)(rng)];
  return text;
}

TEST(Code128RoundTrip, SetsBAndCAndAutomaticTextsWithoutSetA) {
  std::mt19937 rng(3);
  std::string printable;
  for (char c = 32; c < 127; ++c) printable += c;
  for (int i = 0; i < 100; ++i) ExpectRoundTrip("B", RandomText(rng, printable, 30));
  for (int i = 0; i < 100; ++i) {
    std::string digits = RandomText(rng, "0123456789", 20);
    ExpectRoundTrip("C", digits.size() % 2 == 0 ? digits : digits + "0");
  }
  const std::string mixed = "abcdefghijklmnopqrstuvwxyz{|}~01234567890123456789012345678901 ABC";
  int drawn = 0;
  for (int i = 0; drawn < 120 && i < 2000; ++i) {
    const std::string text = i % 3 == 0 ? RandomText(rng, "0123456789", 16) : RandomText(rng, mixed, 30);
    const Values values = internal::Code128Values(text, kAuto);
    // Set A writes bytes as their own codes, which no standard reader expects.
    if (values.front() == 103 || std::find(values.begin(), values.end() - 2, 101) != values.end() - 2) continue;
    ExpectRoundTrip("AUTO", text);
    ++drawn;
  }
  EXPECT_EQ(drawn, 120);
}

}  // namespace
}  // namespace barcode_orv
