// Round trips of the matrix and stacked symbologies through an independent reader
// (ZXing-cpp): random payloads of every kind under every setting, drawn to PNG through
// the C interface (text) or the class (binary data), must decode to the same bytes.
#include <gtest/gtest.h>

#include <cctype>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "api/ffi_internal.h"
#include "barcode_ffi.h"
#include "support/c_api.h"
#include "support/zxing_decode.h"
#include "twod/barcode_base_2d.h"
#include "twod/datamatrix.h"
#include "twod/datamatrix_encoder.h"
#include "twod/pdf417.h"

namespace barcode_orv {
namespace {

using Generator = std::function<std::string(std::mt19937& rng, int index)>;

// `length_max` characters at most, drawn from `alphabet`.
Generator From(std::string alphabet, int length_max) {
  return [alphabet, length_max](std::mt19937& rng, int) {
    std::string text(1 + rng() % static_cast<unsigned>(length_max), ' ');
    for (char& c : text) c = alphabet[rng() % alphabet.size()];
    return text;
  };
}

// Whole UTF-8 characters, so the text stays valid UTF-8 and converts to Shift_JIS.
Generator Utf8Words(std::vector<std::string> words, int count_max) {
  return [words, count_max](std::mt19937& rng, int) {
    std::string text;
    const unsigned count = 1 + rng() % static_cast<unsigned>(count_max);
    for (unsigned i = 0; i < count; ++i) text += words[rng() % words.size()];
    return text;
  };
}

const std::string kDigits = "0123456789";
const std::string kUpper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789";
const std::string kLower = "abcdefghijklmnopqrstuvwxyz 0123456789.,";
const std::string kX12 = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 *>\r";
const std::string kEdifact = "!\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^";

std::string Printable(std::mt19937& rng, int) {
  std::string text(1 + rng() % 90, ' ');
  for (char& c : text) c = static_cast<char>(' ' + rng() % 95);
  return text;
}

std::string MixedCaseText(std::mt19937& rng, int) {
  static const char* const kPieces[] = {"AB", "12", "ab", ".", "-", "/", " ", "\xC3\xA9", "Data", "MATRIX", "2026"};
  std::string text;
  for (unsigned i = 0, n = 1 + rng() % 30; i < n; ++i) text += kPieces[rng() % std::size(kPieces)];
  return text;
}

struct Case {
  const char* name;
  int type;
  Generator payload;
  int count;
  int box;               // square box side; 0 = the symbol's own shape at 4 pixels a module (the reader
                         // looks for a symbol under the picture's centre)
  const char* encoding;  // string-encoding setting; the symbol carries the text in it
  std::function<void(BarcodeHandle*, int index)> settings;
  bool binary = false;  // random bytes through the byte entry point

  testing::Symbology format() const {
    return type == BARCODE_DATAMATRIX ? testing::Symbology::kDataMatrix : testing::Symbology::kPDF417;
  }
};

void DataMatrixSettings(BarcodeHandle* handle, const char* size, const char* scheme) {
  barcode_set_code_size(handle, size);
  barcode_set_encode_scheme(handle, scheme);
}

std::function<void(BarcodeHandle*, int)> Dm(const char* size, const char* scheme) {
  return [size, scheme](BarcodeHandle* handle, int) { DataMatrixSettings(handle, size, scheme); };
}

std::function<void(BarcodeHandle*, int)> Pdf(int level, int columns, int rows) {
  return [level, columns, rows](BarcodeHandle* handle, int) {
    barcode_set_error_level(handle, level);
    barcode_set_columns(handle, columns);
    barcode_set_rows(handle, rows);
  };
}

// The symbol's own shape: Data Matrix at 4 pixels a module, PDF417 at 2.
std::pair<int, int> NaturalBox(BarcodeHandle* handle, const std::vector<uint8_t>& bytes) {
  if (auto* data_matrix = dynamic_cast<DataMatrix*>(handle->object.get())) {
    const ModuleGrid modules = data_matrix->Encode(bytes).modules;
    return {4 * modules.cols(), 4 * modules.rows()};
  }
  const auto& pdf417 = dynamic_cast<PDF417&>(*handle->object);
  const ModuleGrid modules = pdf417.Encode(bytes).modules;
  return {2 * modules.cols(), 2 * modules.rows() * pdf417.GetYHeight()};
}

const std::vector<Case>& Cases() {
  static const std::vector<std::string> kJapanese = {
      "\xE3\x83\x90", "\xE3\x83\xBC", "\xE3\x82\xB3", "\xE3\x83\x89", "\xE6\x97\xA5", "\xE6\x9C\xAC", "A", "1"};
  static const std::vector<Case> cases = {
      {"DataMatrix digits", BARCODE_DATAMATRIX, From(kDigits, 120), 30, 300, "utf-8", Dm("AUTO", "AUTO")},
      {"DataMatrix upper case", BARCODE_DATAMATRIX, From(kUpper, 120), 30, 300, "utf-8", Dm("AUTO", "AUTO")},
      {"DataMatrix lower case", BARCODE_DATAMATRIX, From(kLower, 120), 30, 300, "utf-8", Dm("AUTO", "AUTO")},
      {"DataMatrix X12 set", BARCODE_DATAMATRIX, From(kX12, 120), 30, 300, "utf-8", Dm("AUTO", "AUTO")},
      {"DataMatrix EDIFACT set", BARCODE_DATAMATRIX, From(kEdifact, 120), 30, 300, "utf-8", Dm("AUTO", "AUTO")},
      {"DataMatrix printable", BARCODE_DATAMATRIX, Printable, 30, 300, "utf-8", Dm("AUTO", "AUTO")},
      {"DataMatrix UTF-8 text", BARCODE_DATAMATRIX, MixedCaseText, 30, 300, "utf-8", Dm("AUTO", "AUTO")},
      {"DataMatrix Shift_JIS", BARCODE_DATAMATRIX, Utf8Words(kJapanese, 40), 20, 300, "shift-jis", Dm("AUTO", "AUTO")},
      {"DataMatrix binary", BARCODE_DATAMATRIX, nullptr, 30, 300, "utf-8", Dm("AUTO", "AUTO"), true},
      {"DataMatrix forced ASCII", BARCODE_DATAMATRIX, MixedCaseText, 15, 300, "utf-8", Dm("AUTO", "ASCII")},
      {"DataMatrix forced C40", BARCODE_DATAMATRIX, MixedCaseText, 15, 300, "utf-8", Dm("AUTO", "C40")},
      {"DataMatrix forced Text", BARCODE_DATAMATRIX, MixedCaseText, 15, 300, "utf-8", Dm("AUTO", "TEXT")},
      {"DataMatrix forced X12", BARCODE_DATAMATRIX, From(kX12, 80), 15, 300, "utf-8", Dm("AUTO", "X12")},
      {"DataMatrix forced EDIFACT", BARCODE_DATAMATRIX, From(kEdifact, 80), 15, 300, "utf-8", Dm("AUTO", "EDIFACT")},
      {"DataMatrix forced Base 256", BARCODE_DATAMATRIX, nullptr, 15, 300, "utf-8", Dm("AUTO", "BASE256"), true},
      // Every size filled with its largest digit string (two digits a codeword); 144 x 144
      // reads only with its error-correction blocks interleaved in the rotated order.
      {"DataMatrix every size full", BARCODE_DATAMATRIX,
       [](std::mt19937& rng, int index) {
         std::string digits(2 * static_cast<size_t>(internal::kDataMatrixSizes[index].data_codewords), '0');
         for (char& c : digits) c = static_cast<char>('0' + rng() % 10);
         return digits;
       },
       internal::kDataMatrixSizeCount, 0, "utf-8",
       [](BarcodeHandle* handle, int index) {
         DataMatrixSettings(handle, internal::kDataMatrixSizes[index].name, "AUTO");
       }},
      {"PDF417 digits", BARCODE_PDF417, From(kDigits, 300), 30, 0, "utf-8", Pdf(-1, 0, 0)},
      {"PDF417 upper case", BARCODE_PDF417, From(kUpper, 200), 30, 0, "utf-8", Pdf(-1, 0, 0)},
      {"PDF417 lower case", BARCODE_PDF417, From(kLower, 200), 30, 0, "utf-8", Pdf(-1, 0, 0)},
      {"PDF417 punctuation", BARCODE_PDF417, From(kEdifact + "`{|}~\t\n", 200), 30, 0, "utf-8", Pdf(-1, 0, 0)},
      {"PDF417 printable", BARCODE_PDF417, Printable, 30, 0, "utf-8", Pdf(-1, 0, 0)},
      {"PDF417 UTF-8 text", BARCODE_PDF417, MixedCaseText, 30, 0, "utf-8", Pdf(-1, 0, 0)},
      {"PDF417 Shift_JIS", BARCODE_PDF417, Utf8Words(kJapanese, 40), 20, 0, "shift-jis", Pdf(-1, 0, 0)},
      {"PDF417 binary", BARCODE_PDF417, nullptr, 30, 0, "utf-8", Pdf(-1, 0, 0), true},
      {"PDF417 every level", BARCODE_PDF417, MixedCaseText, 27, 0, "utf-8",
       [](BarcodeHandle* handle, int index) { barcode_set_error_level(handle, index % 9); }},
      {"PDF417 every column count", BARCODE_PDF417, From(kLower, 40), 30, 0, "utf-8",
       [](BarcodeHandle* handle, int index) { barcode_set_columns(handle, index + 1); }},
      {"PDF417 fixed rows", BARCODE_PDF417, From(kUpper, 60), 15, 0, "utf-8",
       [](BarcodeHandle* handle, int index) { barcode_set_rows(handle, index == 14 ? 90 : 3 + 6 * index); }},
      {"PDF417 aspect ratio and row height", BARCODE_PDF417, Printable, 20, 0, "utf-8",
       [](BarcodeHandle* handle, int index) {
         barcode_set_aspect_ratio(handle, 0.5 * (1 + index % 10));
         barcode_set_y_height(handle, 3 + index % 4);
       }},
  };
  return cases;
}

std::vector<uint8_t> RandomBytes(std::mt19937& rng) {
  std::vector<uint8_t> bytes(1 + rng() % 200);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(rng());
  return bytes;
}

// The symbol's bytes: the text as the reader must return it.
std::string ExpectedBytes(const std::string& text, const char* encoding) {
  if (std::string(encoding) == "utf-8") return text;
  const std::vector<uint8_t> sjis = BarcodeBase2D::ConvertEncoding(text, "utf-8", "shift-jis");
  return {sjis.begin(), sjis.end()};
}

class RoundTrip : public ::testing::TestWithParam<Case> {};

TEST_P(RoundTrip, DecodesToTheSameBytes) {
  const Case& row = GetParam();
  std::mt19937 rng(20261122);
  int decoded = 0;
  for (int index = 0; index < row.count; ++index) {
    testing::HandlePtr handle = testing::MakeHandle(row.type);
    ASSERT_NE(handle, nullptr);
    barcode_set_string_encoding(handle.get(), row.encoding);
    row.settings(handle.get(), index);
    std::string expected;
    std::vector<uint8_t> bytes;
    std::string text;
    if (row.binary) {
      bytes = RandomBytes(rng);
      expected.assign(bytes.begin(), bytes.end());
    } else {
      text = row.payload(rng, index);
      expected = ExpectedBytes(text, row.encoding);
      bytes.assign(expected.begin(), expected.end());
    }
    const auto [width, height] = row.box == 0 ? NaturalBox(handle.get(), bytes) : std::pair{row.box, row.box};
    if (row.binary) {
      auto* object = dynamic_cast<BarcodeBase2D*>(handle->object.get());
      ASSERT_TRUE(object->Draw(bytes, 0, 0, width, height));
    } else {
      ASSERT_EQ(barcode_draw_2d_rect(handle.get(), text.c_str(), width, height), 1) << text;
    }
    const testing::Decoded result = testing::DecodeHandle(handle.get(), row.format());
    EXPECT_TRUE(result.ok) << row.name << " #" << index;
    EXPECT_EQ(result.bytes, expected) << row.name << " #" << index;
    decoded += result.ok && result.bytes == expected ? 1 : 0;
  }
  EXPECT_EQ(decoded, row.count);
}

std::string CaseName(const ::testing::TestParamInfo<Case>& info) {
  std::string name;
  for (const char* c = info.param.name; *c != '\0'; ++c) {
    name += std::isalnum(static_cast<unsigned char>(*c)) != 0 ? *c : '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(MatrixAndStacked, RoundTrip, ::testing::ValuesIn(Cases()), CaseName);

}  // namespace
}  // namespace barcode_orv
