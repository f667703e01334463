// Guards Code 128: symbol values worked out by hand (the automatic code-set choice and its
// tie rules, check characters), the element widths of a whole symbol, very long texts
// without recursion, and the code-mode keywords of the C interface.
#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "api/ffi_internal.h"
#include "barcode_ffi.h"
#include "linear/code128.h"
#include "support/c_api.h"

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
      {"12ab", kAuto, {105, 12, 100, 65, 66, 55, 106}},  // C and B starts tie: C
      {"\x01\x61", kAuto, {103, 1, 100, 65, 87, 106}},   // a control byte needs A, then latch B "a"
      {"AB", kB, {104, 33, 34, 102, 106}},
      {"~ ", kB, {104, 94, 0, 95, 106}},
      {"0099", kC, {105, 0, 99, 97, 106}},
      {"A\x01", kA, {103, 65, 1, 67, 106}},
      {"_", kA, {103, 95, 95, 106}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(internal::Code128Values(c.text, c.mode), c.values) << c.text;
  }
  // Start B, "A", "B", check 102, stop with termination bar.
  const Values ab_widths = {2, 1, 1, 2, 1, 4, 1, 1, 1, 3, 2, 3, 1, 3, 1, 1,
                            2, 3, 4, 1, 1, 1, 3, 1, 2, 3, 3, 1, 1, 1, 2};
  EXPECT_EQ(internal::EncodeSingleSet("AB", kB), ab_widths);
  EXPECT_EQ(internal::EncodeAuto("abc"), internal::EncodeSingleSet("abc", kB));
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

TEST(Code128CInterface, CodeModeKeywords) {
  testing::HandlePtr handle = testing::MakeHandle(BARCODE_CODE128);
  const Code128& object = dynamic_cast<Code128&>(*handle->object);
  EXPECT_EQ(object.GetCodeMode(), kAuto);
  const std::pair<const char*, CodeSet128> steps[] = {
      {"A", kA}, {"B", kB}, {"auto", kB}, {"C", kC}, {"AUTO", kAuto}, {"b", kAuto},
  };
  for (const auto& [keyword, mode] : steps) {
    barcode_set_code_mode(handle.get(), keyword);
    EXPECT_EQ(object.GetCodeMode(), mode) << keyword;
  }
  testing::HandlePtr code39 = testing::MakeHandle(BARCODE_CODE39);
  barcode_set_code_mode(code39.get(), "C");  // not a Code 128 handle: ignored
  EXPECT_EQ(barcode_draw_1d(code39.get(), "AB", 300, 60), 1);
  barcode_set_code_mode(handle.get(), "C");
  EXPECT_EQ(barcode_draw_1d(handle.get(), "12a4", 300, 60), 0);
  EXPECT_EQ(barcode_draw_1d(handle.get(), "1234", 300, 60), 1);  // the object draws again
}

}  // namespace
}  // namespace barcode_orv
