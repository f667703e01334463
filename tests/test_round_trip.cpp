// Every standard symbol the library draws must scan: one table, a row per symbology and
// setting, each drawing many random payloads through the C interface and reading the PNG
// back with an independent reader (ZXing-cpp).
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "barcode_ffi.h"
#include "linear/code128.h"
#include "support/c_api.h"
#include "support/zxing_decode.h"

namespace barcode_orv {
namespace {

using testing::Symbology;
using Rng = std::mt19937;

std::string Random(Rng& rng, std::string_view alphabet, size_t min_length, size_t max_length) {
  std::string text(std::uniform_int_distribution<size_t>(min_length, max_length)(rng), ' ');
  for (char& c : text) c = alphabet[std::uniform_int_distribution<size_t>(0, alphabet.size() - 1)(rng)];
  return text;
}

std::string Printable() {
  std::string text;
  for (char c = 32; c < 127; ++c) text += c;
  return text;
}

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kCode39Set = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%";

struct Box {
  int width;
  int height;
};

struct RoundTripRow {
  using Payload = std::function<std::string(Rng&, int index)>;
  using Setup = std::function<void(BarcodeHandle*, int index)>;
  using BoxFor = std::function<Box(const std::string& text, Rng&, int index)>;
  using Expected = std::function<std::string(const std::string& text)>;
  RoundTripRow(const char* name_, int type_, Symbology reader_, int payloads_, Payload payload_, Setup setup_,
               BoxFor box_, Expected expected_ = nullptr, bool compare_bytes_ = false)
      : name(name_),
        type(type_),
        reader(reader_),
        payloads(payloads_),
        payload(std::move(payload_)),
        setup(std::move(setup_)),
        box(std::move(box_)),
        expected(std::move(expected_)),
        compare_bytes(compare_bytes_) {}

  const char* name;
  int type;
  Symbology reader;
  int payloads;
  Payload payload;
  Setup setup;         // options for payload `index`
  BoxFor box;          // linear rows: 2 to 3 pixels a module from an upper bound of the modules
  Expected expected;   // what the reader returns for `text` (null: the text itself)
  bool compare_bytes;  // compare the payload bytes instead of the reader's text
};

std::function<Box(const std::string&, Rng&, int)> LinearBox(std::function<int(size_t length)> modules) {
  return [modules](const std::string& text, Rng& rng, int /*index*/) {
    const int total = modules(text.size());
    return Box{total * (2 + static_cast<int>(rng() % 2)) + static_cast<int>(rng() % 40),
               40 + static_cast<int>(rng() % 80)};
  };
}

void NoText(BarcodeHandle* handle, int /*index*/) { barcode_set_show_text(handle, 0); }

std::string WithGtinCheckDigit(const std::string& digits13) {
  return digits13 + barcode_calculate_check_digit_14(digits13.c_str());
}

// GS1 element strings that reach every DataBar Expanded encodation method: GTINs with and
// without the variable-measure indicator 9, weights, dates, prices and free-text AIs in
// every general-purpose mode (FNC1 after the variable-length ones).
std::string RandomElementString(Rng& rng, int index) {
  auto pick = [&rng](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
  auto date = [&] {
    const int month = 1 + pick(12);
    return Random(rng, kDigits, 2, 2) + (month < 10 ? "0" : "") + std::to_string(month) + "1" + std::to_string(pick(9));
  };
  std::string text;
  const int method = index % 7;
  if (method < 6) text = "(01)" + WithGtinCheckDigit((method < 5 ? "9" : "0") + Random(rng, kDigits, 12, 12));
  switch (method) {
    case 0: text += "(3103)0" + Random(rng, "012", 1, 1) + Random(rng, kDigits, 4, 4); break;
    case 1: text += std::string(pick(2) == 0 ? "(3202)00" : "(3203)01") + Random(rng, kDigits, 4, 4); break;
    case 2:
      text += "(3" + std::to_string(1 + pick(2)) + "0" + std::to_string(pick(6)) + ")0" + Random(rng, kDigits, 5, 5);
      if (pick(3) != 0) text += "(1" + std::to_string(1 + 2 * pick(4)) + ")" + date();
      break;
    case 3: text += "(392" + std::to_string(pick(4)) + ")" + Random(rng, kDigits, 1, 12); break;
    case 4: text += "(393" + std::to_string(pick(4)) + ")" + Random(rng, kDigits, 4, 12); break;
    default: break;
  }
  const char* const free_text[] = {"0123456789", "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789*,-./", "abcxyz!%&'+:;<=>?_0189"};
  for (int n = method >= 5 ? 1 + pick(2) : 0; n > 0; --n) {
    text += std::string(pick(2) == 0 ? "(10)" : "(21)") + Random(rng, free_text[pick(3)], 1, 10);
  }
  return text;
}

// Code 128 set A writes bytes as their own values, which readers decode differently; the
// automatic rows keep to texts whose shortest encoding never chooses set A.
bool AutomaticAvoidsSetA(const std::string& text) {
  const std::vector<int32_t> values = internal::Code128Values(text, CodeSet128::kAuto);
  return values.front() != 103 && std::find(values.begin(), values.end() - 2, 101) == values.end() - 2;
}

std::vector<RoundTripRow> Rows() {
  const std::string printable = Printable();
  const std::string kana = "\xE3\x81\x93\xE3\x82\x93\xE3\x81\xAB\xE3\x81\xA1\xE3\x81\xAF, QR";  // こんにちは, QR
  const std::string kana_sjis = "\x82\xB1\x82\xF1\x82\xC9\x82\xBF\x82\xCD, QR";
  return {
      {"Code 39, whole-pixel modules, text line on and off", BARCODE_CODE39, Symbology::kCode39, 120,
       [](Rng& rng, int) {
         std::string text = Random(rng, kCode39Set, 1, 14);
         if (text.front() == ' ') text.front() = 'X';  // keep the payload's ends unambiguous
         if (text.back() == ' ') text.back() = 'Y';
         return text;
       },
       [](BarcodeHandle* h, int i) { barcode_set_show_text(h, i % 3 != 0); },
       LinearBox([](size_t n) { return 16 * static_cast<int>(n + 2); })},
      // "$/+%" have no wide bar: a fractional module that widens a space by one pixel
      // more than three bars makes the reader reject them, so fit_width payloads skip them.
      {"Code 39, fit_width from 4 pixels a module", BARCODE_CODE39, Symbology::kCode39, 60,
       [](Rng& rng, int) { return "A" + Random(rng, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-.", 0, 12) + "Z"; },
       [](BarcodeHandle* h, int) { barcode_set_fit_width(h, 1); },
       [](const std::string& text, Rng& rng, int) {
         const int modules = 16 * static_cast<int>(text.size() + 2) - 1;
         return Box{modules * 4 + static_cast<int>(rng() % modules), 60 + static_cast<int>(rng() % 100)};
       }},
      {"Code 93 with both check characters", BARCODE_CODE93, Symbology::kCode93, 120,
       [](Rng& rng, int) { return Random(rng, kCode39Set, 1, 30); }, NoText,
       LinearBox([](size_t n) { return 9 * static_cast<int>(n + 4) + 1; })},
      {"Code 128 set B", BARCODE_CODE128, Symbology::kCode128, 80,
       [printable](Rng& rng, int) { return Random(rng, printable, 1, 30); },
       [](BarcodeHandle* h, int) {
         barcode_set_code_mode(h, "B");
         barcode_set_show_text(h, 0);
       },
       LinearBox([](size_t n) { return 11 * static_cast<int>(n + 3) + 2; })},
      {"Code 128 set C", BARCODE_CODE128, Symbology::kCode128, 60,
       [](Rng& rng, int) {
         const std::string digits = Random(rng, kDigits, 1, 20);
         return digits.size() % 2 == 0 ? digits : digits + "0";
       },
       [](BarcodeHandle* h, int) {
         barcode_set_code_mode(h, "C");
         barcode_set_show_text(h, 0);
       },
       LinearBox([](size_t n) { return 11 * static_cast<int>(n / 2 + 3) + 2; })},
      {"Code 128 automatic", BARCODE_CODE128, Symbology::kCode128, 100,
       [](Rng& rng, int i) {
         const std::string mixed = "abcdefghijklmnopqrstuvwxyz{|}~0123456789012345678901 ABC";
         for (;;) {
           const std::string text = i % 3 == 0 ? Random(rng, kDigits, 1, 16) : Random(rng, mixed, 1, 30);
           if (AutomaticAvoidsSetA(text)) return text;
         }
       },
       NoText, LinearBox([](size_t n) { return 11 * static_cast<int>(n + 4) + 2; })},
      {"NW-7 with supplied and default start/stop", BARCODE_NW7, Symbology::kCodabar, 100,
       [](Rng& rng, int i) {
         // The reader wants at least two data characters, and drops start and stop.
         const std::string data = Random(rng, "0123456789-$:/.+", 2, 24);
         if (i % 2 == 0) return data;
         return std::string(1, "ABCDabcd"[rng() % 8]) + data + std::string(1, "ABCDabcd"[rng() % 8]);
       },
       NoText, LinearBox([](size_t n) { return 12 * static_cast<int>(n + 2); }),
       [](const std::string& text) {
         const bool framed = std::string("ABCDabcd").find(text.front()) != std::string::npos;
         return framed ? text.substr(1, text.size() - 2) : text;
       }},
      {"ITF, odd lengths padded with a zero", BARCODE_ITF, Symbology::kITF, 100,
       [](Rng& rng, int) { return Random(rng, kDigits, 5, 30); }, NoText,
       LinearBox([](size_t n) { return 9 * static_cast<int>(n + 1) + 10; }),
       [](const std::string& text) { return text.size() % 2 == 0 ? text : "0" + text; }},
      {"GS1 DataBar Omnidirectional, random GTINs of 1 to 13 digits", BARCODE_GS1_DATABAR_14, Symbology::kDataBar, 150,
       [](Rng& rng, int) { return Random(rng, kDigits, 1, 13); },
       [](BarcodeHandle* h, int i) {
         barcode_set_show_text(h, i % 2);
         barcode_set_fit_width(h, i % 3 == 0);
       },
       // Fractional modules below 3 pixels blur the 1:9 element ratios past what the reader accepts.
       [](const std::string&, Rng& rng, int i) {
         const int per_module = i % 3 == 0 ? 3 : 2 + static_cast<int>(rng() % 2);
         return Box{96 * per_module + static_cast<int>(rng() % 40), 40 + static_cast<int>(rng() % 80)};
       },
       [](const std::string& text) {
         const std::string digits = std::string(13 - text.size(), '0') + text;
         return digits + barcode_calculate_check_digit_14(digits.c_str());
       }},
      {"GS1 DataBar Expanded, random element strings", BARCODE_GS1_DATABAR_EXPANDED, Symbology::kDataBarExpanded, 150,
       RandomElementString, NoText, LinearBox([](size_t n) { return 24 * static_cast<int>(n) + 60; })},
      {"QR Code, random bytes at every level", BARCODE_QR, Symbology::kQRCode, 60,
       [printable](Rng& rng, int) { return Random(rng, printable, 1, 300); },
       [](BarcodeHandle* h, int i) {
         barcode_set_error_correction_level(h, std::string(1, "LMQH"[i % 4]).c_str());
         barcode_set_fit_width(h, i % 5 == 0);
       },
       [](const std::string&, Rng& rng, int) {
         const int side = 200 + static_cast<int>(rng() % 250);
         return Box{side, side + static_cast<int>(rng() % 30)};
       },
       nullptr, true},
      {"QR Code, numeric mode", BARCODE_QR, Symbology::kQRCode, 30,
       [](Rng& rng, int) { return Random(rng, kDigits, 1, 500); },
       [](BarcodeHandle* h, int i) {
         barcode_set_encode_mode(h, "NUMERIC");
         barcode_set_version(h, i % 2 == 0 ? 0 : 20);
       },
       [](const std::string&, Rng&, int) {
         return Box{400, 400};
       }},
      {"QR Code, UTF-8 text carried as Shift_JIS", BARCODE_QR, Symbology::kQRCode, 1,
       [kana](Rng&, int) { return kana; }, [](BarcodeHandle* h, int) { barcode_set_string_encoding(h, "shift_jis"); },
       [](const std::string&, Rng&, int) {
         return Box{200, 200};
       },
       [kana_sjis](const std::string&) { return kana_sjis; }, true},
      {"QR Code, Shift_JIS text carried as UTF-8", BARCODE_QR, Symbology::kQRCode, 1,
       [kana_sjis](Rng&, int) { return kana_sjis; },
       [](BarcodeHandle* h, int) { barcode_set_string_encoding(h, "UTF-8"); },
       [](const std::string&, Rng&, int) {
         return Box{200, 200};
       },
       [kana](const std::string&) { return kana; }, true},
  };
}

void PrintTo(const RoundTripRow& row, std::ostream* out) { *out << row.name; }

class RoundTripTest : public ::testing::TestWithParam<RoundTripRow> {};

TEST_P(RoundTripTest, EveryPayloadScans) {
  const RoundTripRow& row = GetParam();
  Rng rng(static_cast<unsigned>(row.type) * 7919U + static_cast<unsigned>(row.payloads));
  int decoded = 0;
  for (int i = 0; i < row.payloads; ++i) {
    const std::string text = row.payload(rng, i);
    testing::HandlePtr handle = testing::MakeHandle(row.type);
    ASSERT_NE(handle, nullptr);
    if (row.setup) row.setup(handle.get(), i);
    const Box box = row.box(text, rng, i);
    ASSERT_EQ(barcode_draw_1d(handle.get(), text.c_str(), box.width, box.height), 1)
        << text << ": " << barcode_get_last_error(handle.get());
    const testing::Decoded result = testing::DecodeHandle(handle.get(), row.reader);
    const std::string expected = row.expected ? row.expected(text) : text;
    const std::string& got = row.compare_bytes ? result.bytes : result.text;
    EXPECT_TRUE(result.ok && got == expected)
        << "payload " << i << " '" << text << "' in " << box.width << "x" << box.height << " read '" << got << "'";
    decoded += result.ok && got == expected ? 1 : 0;
  }
  EXPECT_EQ(decoded, row.payloads);
}

INSTANTIATE_TEST_SUITE_P(Symbologies, RoundTripTest, ::testing::ValuesIn(Rows()),
                         [](const ::testing::TestParamInfo<RoundTripRow>& info) {
                           std::string name;
                           for (const char* c = info.param.name; *c != '\0'; ++c) {
                             if (std::isalnum(static_cast<unsigned char>(*c)) != 0) name += *c;
                           }
                           return name + "_" + std::to_string(info.index);
                         });

}  // namespace
}  // namespace barcode_orv
