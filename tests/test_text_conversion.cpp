// Guards the text-to-bytes step of the 2D symbologies: every spelling of the encoding
// setting, the conversions and their all-or-nothing failure, the structural UTF-8 check,
// the two Shift_JIS heuristics with their kept asymmetries, and the Draw routing.
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "twod/barcode_base_2d.h"

namespace barcode_orv {
namespace {

using Bytes = std::vector<uint8_t>;

std::string Text(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

const Bytes kHiraganaAUtf8 = {0xE3, 0x81, 0x82};
const Bytes kHiraganaASjis = {0x82, 0xA0};
const Bytes kNihonUtf8 = {0xE6, 0x97, 0xA5, 0xE6, 0x9C, 0xAC};  // 日本
const Bytes kNihonSjis = {0x93, 0xFA, 0x96, 0x7B};
const Bytes kEAcuteUtf8 = {0xC3, 0xA9};  // é, not in Shift_JIS
const Bytes kTimesUtf8 = {0xC3, 0x97};   // ×
const Bytes kTimesSjis = {0x81, 0x7E};

TEST(ConvertStringToBytes, EverySpellingOfTheSettingAndTheDirectConversions) {
  struct Case {
    const char* setting;
    Bytes text;
    Bytes expected;
  };
  const std::vector<Case> cases = {
      // The UTF-8 spellings: valid UTF-8 passes, anything else is read as Shift_JIS.
      {"utf-8", kHiraganaAUtf8, kHiraganaAUtf8},
      {"utf-8", kHiraganaASjis, kHiraganaAUtf8},
      {"UTF-8", kNihonSjis, kNihonUtf8},
      // The Shift_JIS spellings: valid UTF-8 is converted, anything else passes.
      {"shift-jis", kHiraganaAUtf8, kHiraganaASjis},
      {"shift_jis", kHiraganaAUtf8, kHiraganaASjis},
      {"shift-jis", kTimesUtf8, kTimesSjis},
      {"Shift-JIS", kHiraganaASjis, kHiraganaASjis},
      // Unrecognised spellings act as UTF-8.
      {"SHIFT_JIS", kHiraganaAUtf8, kHiraganaAUtf8},
      {"sjis", kHiraganaAUtf8, kHiraganaAUtf8},
      {"utf8", kHiraganaASjis, kHiraganaAUtf8},
      {"", kNihonSjis, kNihonUtf8},
      // Failed conversions give an empty payload, never a partial one.
      {"UTF-8", {'o', 'k', 0x82}, {}},
      {"shift-jis", kEAcuteUtf8, {}},
      {"shift_jis", {'a', 0xF0, 0x9F, 0x98, 0x80}, {}},  // an emoji has no Shift_JIS form
      // The direct conversions follow the heuristic: UTF-8 kana scan as Shift_JIS.
      {"ConvertToUtf8", kHiraganaASjis, kHiraganaAUtf8},
      {"ConvertToUtf8", kHiraganaAUtf8, {}},
      {"ConvertToSJis", kTimesUtf8, kTimesSjis},
      {"ConvertToSJis", kHiraganaAUtf8, kHiraganaAUtf8},
      {"ConvertToSJis", kEAcuteUtf8, {}},
      {"convertUTF8", kHiraganaASjis, kHiraganaASjis},
      {"convertShiftJIS", {0x61, 0xC3, 0xA9}, {0x61, 0x3F, 0x3F}},
  };
  const std::map<std::string, Bytes (*)(const std::string&)> direct = {
      {"ConvertToUtf8", BarcodeBase2D::ConvertToUtf8},
      {"ConvertToSJis", BarcodeBase2D::ConvertToSJis},
      {"convertUTF8", BarcodeBase2D::convertUTF8},
      {"convertShiftJIS", BarcodeBase2D::convertShiftJIS}};
  for (const Case& c : cases) {
    const auto function = direct.find(c.setting);
    EXPECT_EQ(function != direct.end() ? function->second(Text(c.text))
                                       : BarcodeBase2D::ConvertStringToBytes(Text(c.text), c.setting),
              c.expected)
        << "'" << c.setting << "', text of " << c.text.size() << " bytes";
  }
  EXPECT_TRUE(BarcodeBase2D::ConvertStringToBytes("", "shift-jis").empty());
}

TEST(ConvertEncoding, UnknownCodeGivesEmpty) {
  EXPECT_TRUE(BarcodeBase2D::ConvertEncoding("abc", "utf-8", "no-such-code").empty());
  EXPECT_TRUE(BarcodeBase2D::ConvertEncoding("abc", "no-such-code", "utf-8").empty());
}

// The structural UTF-8 check (overlong forms, surrogates and code points past U+10FFFF
// pass), the Shift_JIS heuristic (any unpaired 110xxxxx or lead byte says Shift_JIS) and the
// detection (only a two-byte UTF-8 sequence first counts as UTF-8); -1 or null: not asserted.
TEST(EncodingHeuristics, KeptAsymmetries) {
  struct Case {
    Bytes text;
    int utf8;
    int shift_jis;
    const char* detected;
  };
  const std::vector<Case> cases = {
      {{}, 1, 0, "utf-8"},
      {{'a', 'b', 'c'}, 1, 0, nullptr},
      {kEAcuteUtf8, 1, 0, "utf-8"},
      {kHiraganaAUtf8, 1, 1, "shift-jis"},  // E3 81 taken as a pair, then a lone 82
      {kHiraganaASjis, 0, 1, "shift-jis"},
      {{0xF0, 0x9F, 0x98, 0x80}, 1, -1, nullptr},
      {{0xED, 0xA0, 0x80}, 1, -1, nullptr},
      {{0xF5, 0x80, 0x80, 0x80}, 1, -1, nullptr},
      {{0xE3, 0x81}, 0, -1, nullptr},                          // truncated
      {{0xC3, 0x41}, 0, 1, nullptr},                           // 110xxxxx without a continuation
      {{0x80}, 0, -1, nullptr},                                // continuation at a lead position
      {{0xC3}, -1, 1, "shift-jis"},                            // 110xxxxx as the last byte
      {{0xA5}, -1, 1, nullptr},                                // half-width katakana
      {{0x81, 0x7F, 0xC3, 0xA9}, -1, 1, nullptr},              // trail out of range: the walk stops there, not at é
      {{0x82, 0xA0, 0xC3, 0xA9}, -1, 0, nullptr},              // a pair, then UTF-8 decides
      {{'x', 0xC3, 0xA9, 0xE3, 0x81, 0x82}, -1, -1, "utf-8"},  // the first non-ASCII byte decides
      {{0xE3, 0x81, 0x82, 0xC3, 0xA9}, -1, -1, "shift-jis"},
  };
  for (const Case& c : cases) {
    const std::string text = Text(c.text);
    const std::string shown = ::testing::PrintToString(c.text);
    EXPECT_TRUE(c.utf8 < 0 || BarcodeBase2D::IsValidUtf8(text) == (c.utf8 == 1)) << "UTF-8 check of " << shown;
    EXPECT_TRUE(c.shift_jis < 0 || BarcodeBase2D::IsShiftJIS(text) == (c.shift_jis == 1)) << "heuristic of " << shown;
    EXPECT_TRUE(c.detected == nullptr || BarcodeBase2D::DetectEncoding(text) == c.detected) << "detection of " << shown;
  }
}

// Records what the byte-level Draw receives.
class RecordingSymbol : public BarcodeBase2D {
 public:
  RecordingSymbol() : BarcodeBase2D("png") {}
  using BarcodeBase2D::Draw;
  bool Draw(const std::vector<uint8_t>& data, int x, int y, int width, int height) override {
    received = data;
    box = {x, y, width, height};
    return !data.empty();
  }
  Bytes received;
  std::vector<int> box;
};

TEST(BarcodeBase2DSetting, StoredAsGivenAndUsedByDraw) {
  RecordingSymbol symbol;
  EXPECT_EQ(symbol.GetStringEncoding(), "utf-8");
  symbol.SetStringEncoding(StringEncoding::ShiftJis);
  EXPECT_EQ(symbol.GetStringEncoding(), "shift-jis");
  symbol.SetStringEncoding(static_cast<StringEncoding>(7));
  EXPECT_EQ(symbol.GetStringEncoding(), "utf-8");
  symbol.SetStringEncoding("Shift-JIS");
  EXPECT_EQ(symbol.GetStringEncoding(), "Shift-JIS");

  EXPECT_TRUE(symbol.Draw(Text(kHiraganaAUtf8), 1, 2, 30, 40));
  EXPECT_TRUE(symbol.received == kHiraganaASjis && symbol.box == (std::vector<int>{1, 2, 30, 40}));
  EXPECT_TRUE(symbol.Draw(kHiraganaAUtf8, 5, 6, 70));  // square byte form: no conversion
  EXPECT_TRUE(symbol.received == kHiraganaAUtf8 && symbol.box == (std::vector<int>{5, 6, 70, 70}));

  symbol.SetStringEncoding("utf-8");
  EXPECT_FALSE(symbol.Draw(std::string("\x82"), 0, 0, 10, 10));  // failed conversion: empty payload
}

}  // namespace
}  // namespace barcode_orv
