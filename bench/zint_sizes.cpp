// Symbol sizes against Zint on a seeded corpus: QR versions of the standard profile (level
// M) against Zint's automatic modes, and Data Matrix areas of AUTO, AUTO_RECT and AUTO_DMRE
// against Zint's square, default and DMRE choices. Also checks the DMRE sizes module for
// module against Zint. Prints a Markdown table; exits 1 when any of ours is larger.
// Usage: zint_sizes [payloads per kind, default 32]
#include <zint.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "twod/datamatrix_encoder.h"
#include "twod/qr.h"

namespace {

using barcode_orv::internal::DataMatrixSymbol;
using barcode_orv::internal::Encodation;
using barcode_orv::internal::EncodeDataMatrix;
using barcode_orv::internal::kDataMatrixSizes;
using Rng = std::mt19937;

std::vector<uint8_t> Bytes(const std::string& text) { return {text.begin(), text.end()}; }

std::string Utf8(char32_t c) {
  std::string out;
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
  return out;
}

int Pick(Rng& rng, int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); }

const char32_t kKanji[] = {U'日', U'本', U'語', U'東', U'京', U'大', U'阪', U'駅', U'社', U'会', U'株', U'式',
                           U'話', U'電', U'番', U'号', U'住', U'所', U'名', U'前', U'年', U'月', U'円', U'品'};

char32_t JapaneseChar(Rng& rng) {
  switch (Pick(rng, 0, 2)) {
    case 0: return static_cast<char32_t>(Pick(rng, 0x3041, 0x3093));  // hiragana
    case 1: return static_cast<char32_t>(Pick(rng, 0x30A1, 0x30F3));  // katakana
    default: return kKanji[Pick(rng, 0, static_cast<int>(std::size(kKanji)) - 1)];
  }
}

std::string Japanese(Rng& rng) {
  std::string text;
  for (int i = Pick(rng, 4, 60); i > 0; --i) text += Utf8(JapaneseChar(rng));
  return text;
}

std::string UpperWithDigits(Rng& rng) {
  std::string text;
  for (int pieces = Pick(rng, 2, 8); pieces > 0; --pieces) {
    const bool digits = Pick(rng, 0, 1) == 1;
    for (int i = Pick(rng, 1, digits ? 16 : 10); i > 0; --i) {
      text += static_cast<char>(digits ? '0' + Pick(rng, 0, 9) : 'A' + Pick(rng, 0, 25));
    }
    if (Pick(rng, 0, 2) == 0) text += " -./:"[Pick(rng, 0, 4)];
  }
  return text;
}

std::string Mixed(Rng& rng) {
  std::string text;
  for (int pieces = Pick(rng, 2, 8); pieces > 0; --pieces) {
    const int kind = Pick(rng, 0, 3);
    for (int i = Pick(rng, 1, 10); i > 0; --i) {
      if (kind == 0) text += Utf8(JapaneseChar(rng));
      if (kind == 1) text += static_cast<char>('0' + Pick(rng, 0, 9));
      if (kind == 2) text += static_cast<char>('A' + Pick(rng, 0, 25));
      if (kind == 3) text += static_cast<char>('a' + Pick(rng, 0, 25));
    }
  }
  return text;
}

std::string Ascii(Rng& rng) {
  static const std::string kSets[] = {"0123456789", "ABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789",
                                      "abcdefghijklmnopqrstuvwxyz 0123456789.,", "ABCDEFGHIJKLMNOPQRSTUVWXYZ*>\r 0123"};
  const std::string& set = kSets[Pick(rng, 0, 3)];
  std::string text;
  for (int i = Pick(rng, 1, 90); i > 0; --i)
    text += set[static_cast<size_t>(Pick(rng, 0, static_cast<int>(set.size()) - 1))];
  return text;
}

struct ZintSymbol {
  zint_symbol* symbol = ZBarcode_Create();
  ~ZintSymbol() { ZBarcode_Delete(symbol); }
  ZintSymbol() = default;
  ZintSymbol(const ZintSymbol&) = delete;
  ZintSymbol& operator=(const ZintSymbol&) = delete;
  bool dark(int row, int col) const { return ((symbol->encoded_data[row][col >> 3] >> (col & 7)) & 1) != 0; }
};

int OurQrVersion(const std::string& text) {
  barcode_orv::QR qr(std::string("png"));
  qr.SetStandardProfile(true);
  qr.SetErrorCorrectionLevel(barcode_orv::QRErrorCorrectionLevel::M);
  return (qr.Encode(Bytes(text)).cols() - 17) / 4;
}

int ZintQrVersion(const std::string& text) {
  ZintSymbol zint;
  zint.symbol->symbology = BARCODE_QRCODE;
  zint.symbol->input_mode = UNICODE_MODE;
  zint.symbol->option_1 = 2;  // M
  if (ZBarcode_Encode(zint.symbol, reinterpret_cast<const unsigned char*>(text.data()),
                      static_cast<int>(text.size())) >= ZINT_ERROR) {
    return -1;
  }
  return (zint.symbol->width - 17) / 4;
}

int ZintDataMatrixArea(const std::string& text, int option_3) {
  ZintSymbol zint;
  zint.symbol->symbology = BARCODE_DATAMATRIX;
  zint.symbol->input_mode = DATA_MODE;
  zint.symbol->option_3 = option_3;
  if (ZBarcode_Encode(zint.symbol, reinterpret_cast<const unsigned char*>(text.data()),
                      static_cast<int>(text.size())) >= ZINT_ERROR) {
    return -1;
  }
  return zint.symbol->rows * zint.symbol->width;
}

int OurDataMatrixArea(const std::string& text, int size_value) {
  const DataMatrixSymbol symbol = EncodeDataMatrix(Bytes(text), size_value, Encodation::kAuto);
  return symbol.modules.rows() * symbol.modules.cols();
}

// Sizes of ours against Zint's over a corpus: counts, sums, and each larger one named.
struct Tally {
  int smaller = 0, equal = 0, larger = 0;
  long ours_sum = 0, zint_sum = 0;
  void Add(int ours, int theirs, const char* what, const std::string& text) {
    (ours < theirs ? smaller : ours == theirs ? equal : larger) += 1;
    ours_sum += ours;
    zint_sum += theirs;
    if (ours > theirs) std::fprintf(stderr, "%s larger: %d > %d: %s\n", what, ours, theirs, text.c_str());
  }
  void PrintRow(const char* name, int count, const char* suffix) const {
    std::printf("| %s | %d | %d | %d | %d | %ld / %ld%s |\n", name, count, smaller, equal, larger, ours_sum, zint_sum,
                suffix);
  }
};

// Every DMRE size, filled with ASCII data, module for module against Zint's.
int CheckDmreAgainstZint() {
  int mismatches = 0;
  for (int index = barcode_orv::internal::kIso16022SizeCount; index < barcode_orv::internal::kDataMatrixSizeCount;
       ++index) {
    for (const std::string& text :
         {std::string("ab"), std::string(2 * static_cast<size_t>(kDataMatrixSizes[index].data_codewords), '7')}) {
      const DataMatrixSymbol ours = EncodeDataMatrix(Bytes(text), index, Encodation::kAscii);
      ZintSymbol zint;
      zint.symbol->symbology = BARCODE_DATAMATRIX;
      zint.symbol->input_mode = DATA_MODE;
      zint.symbol->option_2 = index + 1;
      if (ZBarcode_Encode(zint.symbol, reinterpret_cast<const unsigned char*>(text.data()),
                          static_cast<int>(text.size())) >= ZINT_ERROR) {
        std::printf("Zint refused %s: %s\n", kDataMatrixSizes[index].name, zint.symbol->errtxt);
        ++mismatches;
        continue;
      }
      int differing = zint.symbol->rows == ours.modules.rows() && zint.symbol->width == ours.modules.cols() ? 0 : -1;
      for (int row = 0; differing >= 0 && row < ours.modules.rows(); ++row) {
        for (int col = 0; col < ours.modules.cols(); ++col) {
          if (zint.dark(row, col) == ours.modules.dark(col, row)) continue;
          ++differing;
          std::printf("  row %d col %d: Zint %d\n", row, col, zint.dark(row, col) ? 1 : 0);
        }
      }
      if (differing != 0) {
        std::printf("DMRE %s, %zu characters: %d modules differ from Zint's\n", kDataMatrixSizes[index].name,
                    text.size(), differing);
        ++mismatches;
      }
    }
  }
  std::printf("DMRE sizes module for module against Zint: %d of %d differ\n\n", mismatches,
              2 * (barcode_orv::internal::kDataMatrixSizeCount - barcode_orv::internal::kIso16022SizeCount));
  return mismatches;
}

}  // namespace

int main(int argc, char** argv) {
  const int per_kind = argc > 1 ? std::atoi(argv[1]) : 32;
  int larger = CheckDmreAgainstZint();

  std::printf(
      "| QR Code, level M | payloads | smaller | equal | larger | versions, ours / Zint "
      "|\n|---|---:|---:|---:|---:|---|\n");
  struct Kind {
    const char* name;
    std::string (*make)(Rng&);
  };
  const Kind kinds[] = {{"Japanese kana and kanji", Japanese},
                        {"upper case with digit runs", UpperWithDigits},
                        {"Japanese, digits and Latin letters", Mixed}};
  for (const Kind& kind : kinds) {
    Rng rng(20261124);
    Tally tally;
    for (int i = 0; i < per_kind; ++i) {
      const std::string text = kind.make(rng);
      tally.Add(OurQrVersion(text), ZintQrVersion(text), "QR", text);
    }
    tally.PrintRow(kind.name, per_kind, " in all");
    larger += tally.larger;
  }

  std::printf(
      "\n| Data Matrix | payloads | smaller | equal | larger | modules, ours / Zint "
      "|\n|---|---:|---:|---:|---:|---|\n");
  struct DmChoice {
    const char* name;
    int ours;
    int zint_option_3;
  };
  const DmChoice choices[] = {{"AUTO against Zint's square choice", barcode_orv::internal::kAutoSize, DM_SQUARE},
                              {"AUTO_RECT against Zint's default", barcode_orv::internal::kAutoRect, 0},
                              {"AUTO_DMRE against Zint's DMRE choice", barcode_orv::internal::kAutoDmre, DM_DMRE}};
  for (const DmChoice& choice : choices) {
    Rng rng(20261124);
    Tally tally;
    const int count = 2 * per_kind;
    for (int i = 0; i < count; ++i) {
      const std::string text = i % 4 == 3 ? Japanese(rng) : i % 4 == 2 ? Mixed(rng) : Ascii(rng);
      tally.Add(OurDataMatrixArea(text, choice.ours), ZintDataMatrixArea(text, choice.zint_option_3), "Data Matrix",
                text);
    }
    tally.PrintRow(choice.name, count, "");
    larger += tally.larger;
  }
  return larger == 0 ? 0 : 1;
}
