#include "linear/code93.h"

#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace barcode_orv {
namespace {

// Value v of a character is its position; the last four stand for the shift
// characters ($), (%), (/) and (+).
constexpr std::string_view kAlphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%<>?!";

// Bar/space widths of values 0..46 (AIM USS Code 93).
constexpr std::array<const char*, 47> kPatterns = {
    "131112", "111213", "111312", "111411", "121113", "121212", "121311", "111114", "131211", "141111",
    "211113", "211212", "211311", "221112", "221211", "231111", "112113", "112212", "112311", "122112",
    "132111", "111123", "111222", "111321", "121122", "131121", "212112", "212211", "211122", "211221",
    "221121", "222111", "112122", "112221", "122121", "123111", "121131", "311112", "311211", "321111",
    "112131", "113121", "211131", "121221", "312111", "311121", "122211",
};
static_assert(kAlphabet.size() == kPatterns.size());

// Code 93 full ASCII (AIM USS Code 93): every ASCII character as one symbol character or
// a shift and a letter, the shifts written as their stand-ins '<' ($), '>' (%), '?' (/)
// and '!' (+). '$', '%', '+' and '/' have symbol characters of their own.
// Sixteen characters a row, 0x00 to 0x7F.
// clang-format off
constexpr std::array<const char*, 128> kFullAscii = {
    ">U", "<A", "<B", "<C", "<D", "<E", "<F", "<G", "<H", "<I", "<J", "<K", "<L", "<M", "<N", "<O",
    "<P", "<Q", "<R", "<S", "<T", "<U", "<V", "<W", "<X", "<Y", "<Z", ">A", ">B", ">C", ">D", ">E",
    " ",  "?A", "?B", "?C", "$",  "%",  "?F", "?G", "?H", "?I", "?J", "+",  "?L", "-",  ".",  "/",
    "0",  "1",  "2",  "3",  "4",  "5",  "6",  "7",  "8",  "9",  "?Z", ">F", ">G", ">H", ">I", ">J",
    ">V", "A",  "B",  "C",  "D",  "E",  "F",  "G",  "H",  "I",  "J",  "K",  "L",  "M",  "N",  "O",
    "P",  "Q",  "R",  "S",  "T",  "U",  "V",  "W",  "X",  "Y",  "Z",  ">K", ">L", ">M", ">N", ">O",
    ">W", "!A", "!B", "!C", "!D", "!E", "!F", "!G", "!H", "!I", "!J", "!K", "!L", "!M", "!N", "!O",
    "!P", "!Q", "!R", "!S", "!T", "!U", "!V", "!W", "!X", "!Y", "!Z", ">P", ">Q", ">R", ">S", ">T",
};
// clang-format on

constexpr bool IsFullAsciiTable() {
  for (size_t c = 0; c < kFullAscii.size(); ++c) {
    const std::string_view entry = kFullAscii[c];
    const bool plain = entry.size() == 1 && entry[0] == static_cast<char>(c);
    const bool shifted = entry.size() == 2 && kAlphabet.find(entry[0]) >= 43 && entry[1] >= 'A' && entry[1] <= 'Z';
    if (!plain && !shifted) return false;
  }
  return true;
}
static_assert(IsFullAsciiTable(), "each entry is the character itself or a shift and a letter");

constexpr const char* kStart = "111141";
constexpr const char* kStop = "1111411";  // with the termination bar

int ValueOf(char c) {
  const size_t pos = kAlphabet.find(c);
  if (pos == std::string_view::npos) {
    throw std::runtime_error(std::string("Invalid character in CODE93: ") + c);
  }
  return static_cast<int>(pos);
}

void AppendPattern(const char* pattern, std::vector<int32_t>& widths) {
  for (const char* p = pattern; *p != '\0'; ++p) widths.push_back(*p - '0');
}

}  // namespace

namespace internal {

std::string ExpandFullAscii93(const std::string& text) {
  std::string expanded;
  expanded.reserve(text.size() * 2);
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= kFullAscii.size()) throw std::runtime_error(std::string("Invalid character in CODE93: ") + c);
    expanded += kFullAscii[byte];
  }
  return expanded;
}

int GetModulus47(const std::string& text, int max_weight) {
  if (max_weight < 1) throw std::invalid_argument("GetModulus47: max_weight must be positive");
  const size_t n = text.size();
  int64_t sum = 0;
  for (size_t i = 0; i < n; ++i) {
    const int value = ValueOf(text[i]);
    const int64_t weight = static_cast<int64_t>((n - 1 - i) % static_cast<size_t>(max_weight)) + 1;
    sum = (sum + value * weight) % 47;
  }
  return static_cast<int>(sum);
}

std::vector<int32_t> EncodeCode93(const std::string& text) {
  if (text.empty()) throw std::runtime_error("Empty string");
  for (char c : text) ValueOf(c);
  const int c_check = GetModulus47(text, 20);
  const int k_check = GetModulus47(text + kAlphabet[static_cast<size_t>(c_check)], 15);

  std::vector<int32_t> widths;
  widths.reserve((text.size() + 4) * 6 + 1);
  AppendPattern(kStart, widths);
  for (char c : text) AppendPattern(kPatterns[static_cast<size_t>(ValueOf(c))], widths);
  AppendPattern(kPatterns[static_cast<size_t>(c_check)], widths);
  AppendPattern(kPatterns[static_cast<size_t>(k_check)], widths);
  AppendPattern(kStop, widths);
  return widths;
}

}  // namespace internal

Code93::Code93(std::string output_format) : BarcodeBase1D(std::move(output_format)) {}

Code93::Code93(SDL_Renderer* canvas) : BarcodeBase1D(canvas) {}

std::vector<int32_t> Code93::EncodeCode93(const std::string& text) { return internal::EncodeCode93(text); }

BarcodeBase1D::LinearSymbol Code93::Encode(const std::string& text) {
  if (standard_encoding) return LinearSymbol{internal::EncodeCode93(internal::ExpandFullAscii93(text)), text};
  LinearSymbol symbol{EncodeCode93(text), text};
  // Deliberate: by default '<', '>', '?' and '!' stand for the four shift characters, as
  // callers of this library have always written them.
  const size_t stand_in = text.find_first_of("<>?!");
  if (stand_in != std::string::npos) {
    Warn(std::string("[Code93] '") + text[stand_in] +
         "' is written as a shift character: readers decode other text (the standard encoding writes full ASCII)");
  }
  return symbol;
}

bool Code93::Draw(const std::string& text, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(text, x, y, width, height);
  return DrawLinearRaster(text, x, y, width, height, "[Code93] ", [this](const std::string& t) { return Encode(t); });
}

bool Code93::DrawSvg(const std::string& text, int x, int y, int width, int height) {
  return DrawLinearSvg(text, x, y, width, height, "[Code93] ", [this](const std::string& t) { return Encode(t); });
}

}  // namespace barcode_orv
