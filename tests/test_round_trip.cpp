// Guards every symbology end to end: one table, a row per symbology and setting, each
// drawing many random payloads (text through the C interface, binary data through the
// class) and reading the PNG back with an independent reader (ZXing-cpp). A wrong pattern,
// check character, codeword, error-correction block, module placement or painted edge
// shows up here as a symbol that does not scan or scans to other data.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <functional>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "api/ffi_internal.h"
#include "barcode_ffi.h"
#include "linear/code128.h"
#include "linear/ean_upc.h"
#include "support/c_api.h"
#include "support/zxing_decode.h"
#include "twod/barcode_base_2d.h"
#include "twod/datamatrix.h"
#include "twod/datamatrix_encoder.h"
#include "twod/pdf417.h"

namespace barcode_orv {
namespace {

using testing::Symbology;
using Rng = std::mt19937;

std::string Random(Rng& rng, std::string_view alphabet, size_t min_length, size_t max_length) {
  std::string text(std::uniform_int_distribution<size_t>(min_length, max_length)(rng), ' ');
  for (char& c : text) c = alphabet[std::uniform_int_distribution<size_t>(0, alphabet.size() - 1)(rng)];
  return text;
}

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kCode39Set = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%";
const std::string kUpper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789";
const std::string kLower = "abcdefghijklmnopqrstuvwxyz 0123456789.,";
const std::string kX12 = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 *>\r";
const std::string kEdifact = "!\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^";
const std::string kPunctuation = kEdifact + "`{|}~\t\n";

struct Box {
  int width;
  int height;
};

struct RoundTripRow {
  using Payload = std::function<std::string(Rng&, int index)>;
  using Setup = std::function<void(BarcodeHandle*, int index)>;
  using BoxFor = std::function<Box(const std::string& text, Rng&, int index)>;
  using Expected = std::function<std::string(const std::string& text)>;
  using Draw = int (*)(BarcodeHandle*, const char*, int, int);
  const char* name;
  int type;
  Symbology reader;
  int payloads;
  Payload payload;
  Setup setup;                  // options for payload `index`
  BoxFor box;                   // linear rows: 2 to 3 pixels a module from an upper bound of the modules
  Expected expected = nullptr;  // what the reader returns for `text` (null: the text itself)
  bool compare_bytes = false;   // compare the payload bytes instead of the reader's text
  Draw draw = barcode_draw_1d;
  int module_pixels = 0;             // matrix and stacked rows: draw at the symbol's own shape, this
                                     // many pixels a module (the box is then ignored)
  bool binary = false;               // the payload's bytes go through the class's byte entry point
  const char* identifier = nullptr;  // the symbology identifier the reader must report (GS1: ]Q3, ]d2)
  bool at_xdim = false;              // the setup sets an X-dimension: the box is 0 x 0 (the natural size)
  bool turned = false;               // the setup may turn the picture a quarter turn
};

std::function<Box(const std::string&, Rng&, int)> LinearBox(std::function<int(size_t length)> modules) {
  return [modules](const std::string& text, Rng& rng, int /*index*/) {
    const int total = modules(text.size());
    return Box{total * (2 + static_cast<int>(rng() % 2)) + static_cast<int>(rng() % 40),
               40 + static_cast<int>(rng() % 80)};
  };
}

// A fixed box whatever the payload.
RoundTripRow::BoxFor Fixed(int width, int height) {
  return [width, height](const std::string&, Rng&, int) { return Box{width, height}; };
}

void NoText(BarcodeHandle* handle, int /*index*/) { barcode_set_show_text(handle, 0); }

// GS1 element strings that reach every DataBar Expanded encodation method: GTINs with and
// without the variable-measure indicator 9, weights, dates, prices and free-text AIs in
// every general-purpose mode (FNC1 after the variable-length ones).
// GS1 modulo-10 check digit of `digits` (weights 3, 1, ... from the right).
char Mod10(const std::string& digits) {
  int sum = 0;
  for (size_t i = 0; i < digits.size(); ++i) sum += (digits[digits.size() - 1 - i] - '0') * (i % 2 == 0 ? 3 : 1);
  return static_cast<char>('0' + (10 - sum % 10) % 10);
}

// GS1-128: one to three fields of common AIs in random order, the GTIN without its check
// digit (the library completes it).
std::string RandomGs1128String(Rng& rng, int /*index*/) {
  static const char* const kAis[] = {"(01)", "(10)", "(17)", "(21)", "(3103)"};
  std::string text;
  for (unsigned n = 1 + rng() % 3, first = rng() % 5, k = 0; k < n; ++k) {
    const std::string ai = kAis[(first + 2 * k) % 5];
    text += ai;
    if (ai == "(01)") {
      const std::string gtin = Random(rng, kDigits, 13, 13);
      text += gtin + Mod10(gtin);
    }
    if (ai == "(10)" || ai == "(21)") text += Random(rng, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcxyz-./", 1, 12);
    if (ai == "(17)")
      text += Random(rng, kDigits, 2, 2) + "0" + Random(rng, "123456789", 1, 1) + "1" + Random(rng, kDigits, 1, 1);
    if (ai == "(3103)") text += Random(rng, kDigits, 6, 6);
  }
  return text;
}

// What the reader returns for such a string: AIs and data run together, a group separator
// after (10) and (21) unless they come last.
std::string ReadGs1128(const std::string& text) {
  std::string out;
  for (size_t at = 0; at < text.size();) {
    const size_t close = text.find(')', at);
    const size_t next = std::min(text.find('(', close), text.size());
    const std::string ai = text.substr(at + 1, close - at - 1);
    std::string data = text.substr(close + 1, next - close - 1);
    out += ai + data + ((ai == "10" || ai == "21") && next < text.size() ? "\x1d" : "");
    at = next;
  }
  return out;
}

std::string RandomDataBarElementString(Rng& rng, int index) {
  auto pick = [&rng](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
  auto date = [&] {
    const int month = 1 + pick(12);
    return Random(rng, kDigits, 2, 2) + (month < 10 ? "0" : "") + std::to_string(month) + "1" + std::to_string(pick(9));
  };
  std::string text;
  const int method = index % 7;
  const std::string gtin = (method < 5 ? "9" : "0") + Random(rng, kDigits, 12, 12);
  if (method < 6) text = "(01)" + gtin + barcode_calculate_check_digit_14(gtin.c_str());
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

RoundTripRow EanUpcRow(const char* name, int type, internal::EanUpcKind kind, size_t length, Symbology reader) {
  return {name, type, reader, 36,
          [type, length](Rng& rng, int i) {
            std::string main = Random(rng, kDigits, length, length);
            if (type == BARCODE_UPCE) main[0] = static_cast<char>('0' + i / 2 % 2);  // number system 0 or 1
            if (i % 3 == 0) return main;
            return main + (i % 4 == 0 ? " " : "+") + Random(rng, kDigits, i % 3 == 1 ? 2 : 5, i % 3 == 1 ? 2 : 5);
          },
          [](BarcodeHandle* h, int i) { barcode_set_extended_guard(h, i % 2); },
          [](const std::string&, Rng&, int i) {
            return Box{200 + 40 * (i % 5), 90 + 5 * (i % 7)};
          },
          // The reader checks the check digit itself; the library's completion of it is
          // only the expected text's source.
          [kind](const std::string& text) {
            const size_t split = text.find_first_of("+ ");
            const std::string main = internal::ParseEanUpc(kind, text.substr(0, split)).digits;
            return split == std::string::npos ? main : main + " " + text.substr(split + 1);
          }};
}

// Payload `index` from generator `index` modulo their count.
RoundTripRow::Payload Cycle(std::vector<RoundTripRow::Payload> generators) {
  return [generators](Rng& rng, int i) { return generators[static_cast<size_t>(i) % generators.size()](rng, i); };
}

RoundTripRow::Payload From(std::string_view alphabet_view, size_t max_length) {
  std::string alphabet(alphabet_view);
  return [alphabet, max_length](Rng& rng, int) { return Random(rng, alphabet, 1, max_length); };
}

// One to `max_count` pieces; whole UTF-8 characters keep the text valid (and Shift_JIS-able).
RoundTripRow::Payload Pieces(std::vector<std::string> pieces, unsigned max_count) {
  return [pieces, max_count](Rng& rng, int) {
    std::string text;
    for (unsigned i = 0, n = 1 + rng() % max_count; i < n; ++i) text += pieces[rng() % pieces.size()];
    return text;
  };
}
const RoundTripRow::Payload JapaneseText = Pieces(
    {"\xE3\x83\x90", "\xE3\x83\xBC", "\xE3\x82\xB3", "\xE3\x83\x89", "\xE6\x97\xA5", "\xE6\x9C\xAC", "A", "1"}, 40);
const RoundTripRow::Payload MixedText =
    Pieces({"AB", "12", "ab", ".", "-", "/", " ", "\xC3\xA9", "Data", "MATRIX", "2026"}, 30);

std::string RandomBytes(Rng& rng, int) {
  std::string bytes(1 + rng() % 200, '\0');
  for (char& byte : bytes) byte = static_cast<char>(rng());
  return bytes;
}

std::string ToShiftJis(const std::string& text) {
  const std::vector<uint8_t> bytes = BarcodeBase2D::ConvertEncoding(text, "utf-8", "shift-jis");
  return {bytes.begin(), bytes.end()};
}

// A matrix or stacked row, read back as bytes; `side` 0 draws at the symbol's own shape.
RoundTripRow TwoDRow(const char* name, int type, int payloads, RoundTripRow::Payload payload, RoundTripRow::Setup setup,
                     int side = 0, RoundTripRow::Expected expected = nullptr, bool binary = false) {
  const Symbology reader = type == BARCODE_DATAMATRIX ? Symbology::kDataMatrix : Symbology::kPDF417;
  RoundTripRow row{name, type, reader, payloads, std::move(payload), std::move(setup), Fixed(side, side)};
  row.expected = std::move(expected);
  row.compare_bytes = true;
  row.draw = barcode_draw_2d_rect;
  row.module_pixels = side != 0 ? 0 : type == BARCODE_DATAMATRIX ? 4 : 2;
  row.binary = binary;
  return row;
}

// A QR row read back as text in a box with room for the symbol and its quiet zone.
RoundTripRow QrRow(const char* name, int payloads, RoundTripRow::Payload payload, RoundTripRow::Setup setup,
                   RoundTripRow::Expected expected = nullptr) {
  RoundTripRow row{name,           BARCODE_QR, Symbology::kQRCode, payloads, std::move(payload), std::move(setup),
                   Fixed(600, 600)};
  row.expected = std::move(expected);
  row.draw = barcode_draw_2d_rect;
  return row;
}

const RoundTripRow::Payload UpperWithDigits = Pieces({"ABC", "XYZ", "Q", "1234567", "89", "0", " ", "-", ".", ":"}, 30);
const RoundTripRow::Payload KanaAndKanji = Pieces({"\xE3\x81\x82", "\xE3\x82\x93", "\xE3\x82\xAB", "\xE3\x83\x8A",
                                                   "\xE6\x9D\xB1", "\xE4\xBA\xAC", "\xE9\xA7\x85", "\xE8\xA9\xB1"},
                                                  60);
// Latin-1 letters beside kana: byte segments that need ECI 26; half-width katakana too.
const RoundTripRow::Payload WithLatin1 =
    Pieces({"caf\xC3\xA9", "\xC3\x84", "\xE3\x81\x82", "\xEF\xBD\xB1", "2026", "ABC", "abc"}, 20);

// ECI 3 (ISO-8859-1), 20 (Shift_JIS) and 26 (UTF-8), each on a text its set holds.
void DeclaredEci(BarcodeHandle* h, int i) { barcode_set_eci(h, i % 3 == 0 ? 3 : i % 3 == 1 ? 20 : 26); }
std::string TextForEci(Rng& rng, int i) {
  return i % 3 == 0 ? Pieces({"caf\xC3\xA9", "\xC3\x84", "\xC3\xBF", "A1", " "}, 20)(rng, i) : JapaneseText(rng, i);
}

// The row reading the reader's text, and the symbology identifier when one is given.
RoundTripRow AsText(RoundTripRow row, const char* identifier = nullptr) {
  row.compare_bytes = false;
  row.identifier = identifier;
  return row;
}

// GS1 mode, every other payload in the standard profile or under a forced scheme.
RoundTripRow::Setup Gs1(const char* scheme) {
  return [scheme](BarcodeHandle* h, int i) {
    barcode_set_gs1(h, 1);
    if (scheme == nullptr) barcode_set_standard(h, i % 2);
    if (scheme != nullptr && i % 2 == 0) barcode_set_encode_scheme(h, scheme);
  };
}

RoundTripRow::Setup Dm(std::vector<const char*> schemes, const char* encoding = "utf-8") {
  return [schemes, encoding](BarcodeHandle* h, int i) {
    barcode_set_string_encoding(h, encoding);
    barcode_set_encode_scheme(h, schemes[static_cast<size_t>(i) % schemes.size()]);
  };
}

// The symbol's own shape for `bytes` under the handle's settings.
Box NaturalBox(BarcodeHandle* handle, const std::string& text, int pixels) {
  const std::vector<uint8_t> bytes(text.begin(), text.end());
  if (auto* data_matrix = dynamic_cast<DataMatrix*>(handle->object.get())) {
    const ModuleGrid modules = data_matrix->Encode(bytes).modules;
    return {pixels * modules.cols(), pixels * modules.rows()};
  }
  const auto& pdf417 = dynamic_cast<PDF417&>(*handle->object);
  const ModuleGrid modules = pdf417.Encode(bytes).modules;
  return {pixels * modules.cols(), pixels * modules.rows() * pdf417.GetYHeight()};
}

// Code 128, JAN-13, DataBar and QR at X-dimensions from 0.17 to 0.5 mm at 200 to 600 dpi,
// in every orientation: the box is the natural size, the modules whole pixels.
RoundTripRow PrintRow(const char* name, int type, Symbology reader, RoundTripRow::Payload payload,
                      RoundTripRow::Expected expected = nullptr) {
  RoundTripRow row{name,
                   type,
                   reader,
                   24,
                   std::move(payload),
                   [](BarcodeHandle* h, int i) {
                     ASSERT_EQ(barcode_set_xdim(h, 0.17 + 0.03 * (i % 12), 200 + 200 * (i % 3)), 1);
                     ASSERT_EQ(barcode_set_rotation(h, 90 * (i % 4)), 1);
                   },
                   Fixed(0, 0)};
  row.expected = std::move(expected);
  row.at_xdim = true;
  row.turned = true;
  return row;
}

std::vector<RoundTripRow> Rows() {
  std::string printable(95, ' ');
  std::iota(printable.begin(), printable.end(), ' ');
  return {
      {"Code 39, whole-pixel modules, text line on and off", BARCODE_CODE39, Symbology::kCode39, 120,
       [](Rng& rng, int) { return "X" + Random(rng, kCode39Set, 0, 12) + "Y"; },  // unambiguous ends
       [](BarcodeHandle* h, int i) { barcode_set_show_text(h, i % 3 != 0); },
       LinearBox([](size_t n) { return 16 * static_cast<int>(n + 2); })},
      {"Code 93 with both check characters", BARCODE_CODE93, Symbology::kCode93, 120,
       [](Rng& rng, int) { return Random(rng, kCode39Set, 1, 30); }, NoText,
       LinearBox([](size_t n) { return 9 * static_cast<int>(n + 4) + 1; })},
      // Every ASCII character, control characters and the shift stand-ins '<>?!' included.
      {"Code 93 full ASCII", BARCODE_CODE93, Symbology::kCode93, 80,
       [](Rng& rng, int) {
         std::string ascii(127, ' ');
         std::iota(ascii.begin(), ascii.end(), '\x01');
         return Random(rng, ascii, 1, 20);
       },
       [](BarcodeHandle* h, int) {
         barcode_set_show_text(h, 0);
         barcode_set_standard_encoding(h, 1);
       },
       LinearBox([](size_t n) { return 18 * static_cast<int>(n + 4) + 1; })},
      {"Code 128 sets B and C, and automatic", BARCODE_CODE128, Symbology::kCode128, 150,
       [printable](Rng& rng, int i) {
         const std::string mixed = "abcdefghijklmnopqrstuvwxyz{|}~0123456789012345678901 ABC";
         if (i % 3 == 0) return Random(rng, printable, 1, 30);
         const std::string digits = Random(rng, kDigits, 1, 20);
         if (i % 3 == 1) return digits.size() % 2 == 0 ? digits : digits + "0";
         for (;;) {
           const std::string text = i % 2 == 0 ? Random(rng, kDigits, 1, 16) : Random(rng, mixed, 1, 30);
           if (AutomaticAvoidsSetA(text)) return text;
         }
       },
       [](BarcodeHandle* h, int i) {
         barcode_set_code_mode(h, i % 3 == 0 ? "B" : i % 3 == 1 ? "C" : "AUTO");
         barcode_set_show_text(h, 0);
       },
       LinearBox([](size_t n) { return 11 * static_cast<int>(n + 4) + 2; })},
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
      {"ITF-14 in its frame of bearer bars, text line on and off", BARCODE_ITF, Symbology::kITF, 40,
       [](Rng& rng, int) { return Random(rng, kDigits, 14, 14); },
       [](BarcodeHandle* h, int i) {
         barcode_set_bearer_bars(h, 1);
         barcode_set_show_text(h, i % 2);
       },
       LinearBox([](size_t n) { return 9 * static_cast<int>(n + 1) + 40; })},
      EanUpcRow("JAN-8", BARCODE_JAN8, internal::EanUpcKind::kJan8, 7, Symbology::kEAN8),
      EanUpcRow("JAN-13", BARCODE_JAN13, internal::EanUpcKind::kJan13, 12, Symbology::kEAN13),
      EanUpcRow("UPC-A", BARCODE_UPCA, internal::EanUpcKind::kUpcA, 11, Symbology::kUPCA),
      EanUpcRow("UPC-E", BARCODE_UPCE, internal::EanUpcKind::kUpcE, 7, Symbology::kUPCE),
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
      {"GS1-128 element strings, read back with FNC1 as GS", BARCODE_GS1_128, Symbology::kCode128, 60,
       RandomGs1128String, NoText, LinearBox([](size_t n) { return 11 * static_cast<int>(n) + 70; }), ReadGs1128},
      {"GS1-128 convenience-store payment code", BARCODE_GS1_128, Symbology::kCode128, 10,
       [](Rng& rng, int) { return "91" + Random(rng, kDigits, 41, 41); }, nullptr, Fixed(600, 100),
       [](const std::string& text) { return text + Mod10(text); }, false, barcode_draw_convenience},
      {"GS1 DataBar Expanded, random element strings", BARCODE_GS1_DATABAR_EXPANDED, Symbology::kDataBarExpanded, 150,
       RandomDataBarElementString, NoText, LinearBox([](size_t n) { return 24 * static_cast<int>(n) + 60; })},
      {"QR Code, random bytes at every level and mask", BARCODE_QR, Symbology::kQRCode, 60,
       [printable](Rng& rng, int) { return Random(rng, printable, 1, 300); },
       [](BarcodeHandle* h, int i) {
         barcode_set_error_correction_level(h, std::string(1, "LMQH"[i % 4]).c_str());
         barcode_set_fit_width(h, i % 5 == 0);
         barcode_set_qr_mask(h, i % 9 - 1);  // -1 chooses
       },
       [](const std::string&, Rng& rng, int) {
         const int side = 200 + static_cast<int>(rng() % 250);
         return Box{side, side + static_cast<int>(rng() % 30)};
       },
       nullptr, true},
      // Numeric mode at the versions where the count field grows (9/10 and 26/27).
      {"QR Code, numeric mode at the count-field boundaries", BARCODE_QR, Symbology::kQRCode, 8,
       [](Rng& rng, int) { return Random(rng, kDigits, 1, 200); },
       [](BarcodeHandle* h, int i) {
         static constexpr int kVersions[] = {9, 10, 26, 27};
         barcode_set_encode_mode(h, "NUMERIC");
         barcode_set_version(h, kVersions[i % 4]);
       },
       Fixed(500, 500)},
      // The standard form: numeric, alphanumeric, byte and Kanji segments, ECI 26 or 20 where
      // byte segments carry more than ASCII, UTF-8 and Shift_JIS input, every level, the
      // ISO/IEC 18004 mask rules.
      QrRow("QR Code segments, Kanji and ECI", 64,
            Cycle({JapaneseText, KanaAndKanji, UpperWithDigits, MixedText, WithLatin1}),
            [](BarcodeHandle* h, int i) {
              barcode_set_standard(h, 1);
              barcode_set_error_correction_level(h, std::string(1, "LMQH"[i % 4]).c_str());
              // Shift_JIS input for the texts that have a Shift_JIS form (the first two kinds).
              if (i % 10 < 2) barcode_set_string_encoding(h, "shift-jis");
            }),
      QrRow("QR Code declared ECI and forced masks", 24, TextForEci,
            [](BarcodeHandle* h, int i) {
              DeclaredEci(h, i);
              barcode_set_qr_mask(h, i % 8);
              barcode_set_standard(h, i % 2);
            }),
      // GS1: FNC1 first (]Q3, ]d2) and as the separator, read back as GS; C40 writes it shifted.
      AsText(QrRow("QR Code GS1 element strings", 30, RandomGs1128String, Gs1(nullptr), ReadGs1128), "]Q3"),
      AsText(TwoDRow("DataMatrix GS1 element strings", BARCODE_DATAMATRIX, 30, RandomGs1128String, Gs1("C40"), 0,
                     ReadGs1128),
             "]d2"),
      AsText(TwoDRow("DataMatrix declared ECI", BARCODE_DATAMATRIX, 12, TextForEci, DeclaredEci, 300)),
      AsText(TwoDRow("PDF417 declared ECI", BARCODE_PDF417, 12, TextForEci, DeclaredEci)),
      TwoDRow("DataMatrix AUTO_RECT and AUTO_DMRE", BARCODE_DATAMATRIX, 24,
              Cycle({From(kDigits, 120), From(kUpper, 100), MixedText}),
              [](BarcodeHandle* h, int i) { barcode_set_code_size(h, i % 2 == 0 ? "AUTO_RECT" : "AUTO_DMRE"); }),
      // Every scheme, chosen automatically and forced, each on a character set it favours.
      TwoDRow("DataMatrix automatic", BARCODE_DATAMATRIX, 42,
              Cycle({From(kDigits, 120), From(kUpper, 120), From(kLower, 120), From(kX12, 120), From(kEdifact, 120),
                     From(printable, 90), MixedText}),
              Dm({"AUTO"}), 300),
      TwoDRow("DataMatrix forced schemes", BARCODE_DATAMATRIX, 36,
              Cycle({MixedText, MixedText, MixedText, From(kX12, 80), From(kEdifact, 80), MixedText}),
              Dm({"ASCII", "C40", "TEXT", "X12", "EDIFACT", "BASE256"}), 300),
      TwoDRow("DataMatrix Shift_JIS", BARCODE_DATAMATRIX, 10, JapaneseText, Dm({"AUTO"}, "shift-jis"), 300, ToShiftJis),
      TwoDRow("DataMatrix binary", BARCODE_DATAMATRIX, 20, RandomBytes, Dm({"AUTO", "BASE256"}), 300, nullptr, true),
      // Every size filled with its largest digit string (two digits a codeword), the DMRE
      // sizes of ISO/IEC 21471 included; 144 x 144 reads only with its error-correction
      // blocks interleaved in the rotated order.
      TwoDRow(
          "DataMatrix every size full", BARCODE_DATAMATRIX, internal::kDataMatrixSizeCount,
          [](Rng& rng, int i) {
            return Random(rng, kDigits, 2 * static_cast<size_t>(internal::kDataMatrixSizes[i].data_codewords),
                          2 * static_cast<size_t>(internal::kDataMatrixSizes[i].data_codewords));
          },
          [](BarcodeHandle* h, int i) { barcode_set_code_size(h, internal::kDataMatrixSizes[i].name); }),
      TwoDRow("PDF417 automatic", BARCODE_PDF417, 42,
              Cycle({From(kDigits, 300), From(kUpper, 200), From(kLower, 200), From(kPunctuation, 200),
                     From(printable, 90), MixedText}),
              nullptr),
      TwoDRow("PDF417 binary", BARCODE_PDF417, 20, RandomBytes, nullptr, 0, nullptr, true),
      // Every level, every column count, fixed rows, aspect ratios and row heights.
      TwoDRow("PDF417 settings", BARCODE_PDF417, 60, Cycle({MixedText, From(kLower, 40), From(kUpper, 60)}),
              [](BarcodeHandle* h, int i) {
                barcode_set_error_level(h, i % 3 == 0 ? i / 3 % 9 : -1);
                if (i % 3 == 1) barcode_set_columns(h, 1 + i / 2);
                if (i % 3 == 2) barcode_set_rows(h, i == 59 ? 90 : 3 + i);
                barcode_set_aspect_ratio(h, 0.5 * (1 + i % 10));
                barcode_set_y_height(h, 3 + i % 4);
              }),
      PrintRow("Code 128 at an X-dimension, turned", BARCODE_CODE128, Symbology::kCode128, From(kLower, 20)),
      PrintRow("JAN-13 at an X-dimension, turned", BARCODE_JAN13, Symbology::kEAN13,
               [](Rng& rng, int) {
                 const std::string digits = Random(rng, kDigits, 12, 12);
                 return digits + Mod10(digits);
               }),
      PrintRow(
          "DataBar at an X-dimension, turned", BARCODE_GS1_DATABAR_14, Symbology::kDataBar,
          [](Rng& rng, int) { return Random(rng, kDigits, 13, 13); },
          [](const std::string& text) { return text + barcode_calculate_check_digit_14(text.c_str()); }),
      PrintRow("QR Code at an X-dimension, turned", BARCODE_QR, Symbology::kQRCode, From(printable, 60)),
  };
}

void PrintTo(const RoundTripRow& row, std::ostream* out) { *out << row.name; }

class RoundTripTest : public ::testing::TestWithParam<RoundTripRow> {};

// Payload `index` of a row on a fresh handle with the row's settings (after the standard
// profile when asked), what the reader must return, and the box to draw it in.
struct Trial {
  std::string text;
  std::string expected;
  Box box;
  testing::HandlePtr handle;
};

Trial Prepare(const RoundTripRow& row, Rng& rng, int index, bool standard) {
  Trial trial{row.payload(rng, index), {}, {}, testing::MakeHandle(row.type)};
  EXPECT_NE(trial.handle, nullptr);
  if (standard) barcode_set_standard(trial.handle.get(), 1);
  if (row.setup) row.setup(trial.handle.get(), index);
  trial.expected = row.expected ? row.expected(trial.text) : trial.text;
  trial.box = row.box(trial.text, rng, index);
  if (row.module_pixels > 0) trial.box = NaturalBox(trial.handle.get(), trial.expected, row.module_pixels);
  return trial;
}

TEST_P(RoundTripTest, EveryPayloadScans) {
  const RoundTripRow& row = GetParam();
  Rng rng(static_cast<unsigned>(row.type) * 7919U + static_cast<unsigned>(row.payloads));
  int decoded = 0;
  for (int i = 0; i < row.payloads; ++i) {
    const Trial trial = Prepare(row, rng, i, false);
    const std::string& text = trial.text;
    const std::string& expected = trial.expected;
    const Box box = trial.box;
    BarcodeHandle* handle = trial.handle.get();
    if (row.binary) {
      auto& object = dynamic_cast<BarcodeBase2D&>(*trial.handle->object);
      ASSERT_TRUE(object.Draw(std::vector<uint8_t>(text.begin(), text.end()), 0, 0, box.width, box.height));
    } else {
      ASSERT_EQ(row.draw(handle, text.c_str(), box.width, box.height), 1)
          << text << ": " << barcode_get_last_error(handle);
    }
    const testing::Decoded result = testing::DecodeHandle(handle, row.reader, row.turned);
    const std::string& got = row.compare_bytes ? result.bytes : result.text;
    EXPECT_TRUE(result.ok && got == expected)
        << "payload " << i << " '" << text << "' in " << box.width << "x" << box.height << " read '" << got << "' as "
        << result.symbology_identifier;
    if (row.identifier != nullptr) {
      EXPECT_EQ(result.symbology_identifier, row.identifier) << text;
    }
    decoded += result.ok && got == expected ? 1 : 0;
  }
  EXPECT_EQ(decoded, row.payloads);
}

// The standard profile never writes a symbol that reads as anything but its text: every
// payload, in a box with room for the quiet zones, reads back exactly or is refused with a
// reason. Binary payloads go through the C interface's byte entry point.
TEST_P(RoundTripTest, StandardProfileReadsBackOrRefuses) {
  const RoundTripRow& row = GetParam();
  Rng rng(static_cast<unsigned>(row.type) * 104729U + static_cast<unsigned>(row.payloads));
  int decoded = 0;
  for (int i = 0; i < row.payloads; ++i) {
    const Trial trial = Prepare(row, rng, i, true);
    const std::string& text = trial.text;
    const std::string& expected = trial.expected;
    BarcodeHandle* handle = trial.handle.get();
    // Room for the quiet zones the profile adds (the natural size has them already).
    const Box box = row.at_xdim ? trial.box : Box{trial.box.width * 3 / 2 + 60, trial.box.height * 3 / 2 + 20};
    const int drawn = row.binary ? barcode_draw_2d_bytes(handle, reinterpret_cast<const unsigned char*>(text.data()),
                                                         text.size(), box.width, box.height)
                                 : row.draw(handle, text.c_str(), box.width, box.height);
    if (drawn == 0) {
      EXPECT_STRNE(barcode_get_last_error(handle), "") << "refused without a reason: '" << text << "'";
      continue;
    }
    const testing::Decoded result = testing::DecodeHandle(handle, row.reader, row.turned);
    const std::string& got = row.compare_bytes || row.binary ? result.bytes : result.text;
    EXPECT_TRUE(result.ok && got == expected)
        << "payload " << i << " '" << text << "' in " << box.width << "x" << box.height << " read '" << got << "'";
    if (row.identifier != nullptr) {
      EXPECT_EQ(result.symbology_identifier, row.identifier) << text;
    }
    decoded += result.ok && got == expected ? 1 : 0;
  }
  // Refusals are for boxes and texts that cannot work, not the norm.
  EXPECT_GE(decoded, row.payloads * 9 / 10);
}

INSTANTIATE_TEST_SUITE_P(Symbologies, RoundTripTest, ::testing::ValuesIn(Rows()),
                         [](const ::testing::TestParamInfo<RoundTripRow>& info) {
                           std::string name = info.param.name;
                           name.erase(std::remove_if(name.begin(), name.end(),
                                                     [](unsigned char c) { return std::isalnum(c) == 0; }),
                                      name.end());
                           return name + "_" + std::to_string(info.index);
                         });

}  // namespace
}  // namespace barcode_orv
