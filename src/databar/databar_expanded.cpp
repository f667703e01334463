#include "databar/databar_expanded.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "databar/databar_tables.h"

namespace barcode_orv {
namespace internal {
namespace {

using namespace databar;  // NOLINT(google-build-using-namespace): the standard's tables

constexpr bool TablesHold() {
  for (size_t g = 0; g < kExpandedModulesOdd.size(); ++g) {
    if (kExpandedModulesOdd[g] + kExpandedModulesEven[g] != 17) return false;
    if (kExpandedWidestOdd[g] + kExpandedWidestEven[g] != 9) return false;
  }
  for (const auto& finder : kExpandedFinder) {
    int sum = 0;
    for (int32_t w : finder) sum += w;
    if (sum != 15) return false;
  }
  return true;
}
static_assert(TablesHold(), "characters span 17 modules, finders 15");
static_assert(kExpandedGroupSum[4] + 108 == 4096, "the last group ends the 12-bit values (108 of its patterns used)");

constexpr char kFnc1 = '\x1D';  // GS: where the symbol carries FNC1
constexpr int kMaxDataBits = 252;
constexpr int kMaxSymbolCharacters = 22;
constexpr int kMinSymbolCharacters = 4;
constexpr int kBlockElements = 21;  // a segment pair: character, finder, character

[[noreturn]] void Fail(const std::string& message) { throw std::runtime_error(message); }

void Append(std::string* bits, int value, int count) {
  for (int bit = count - 1; bit >= 0; --bit) *bits += ((value >> bit) & 1) != 0 ? '1' : '0';
}

// ---- Compressed data field ----

int Number(const std::string& digits, size_t at, size_t count) { return std::stoi(digits.substr(at, count)); }

// GTIN digits 2 to 13 (the indicator and the check digit left out), three to 10 bits.
void AppendGtin12(std::string* bits, const std::string& gtin) {
  for (size_t at = 1; at < 13; at += 3) Append(bits, Number(gtin, at, 3), 10);
}

bool IsDateAi(const std::string& ai) { return ai == "11" || ai == "13" || ai == "15" || ai == "17"; }

// The method the standard prescribes for the element list, and the count of leading
// characters of the concatenated data that the compressed field carries.
ExpandedMethod ChooseMethod(const std::vector<Gs1Element>& elements, size_t* compressed) {
  *compressed = 0;
  if (elements.empty() || elements[0].ai != "01") return ExpandedMethod::kGeneral;
  *compressed = 16;
  if (elements.size() < 2 || elements[0].value[0] != '9') return ExpandedMethod::kGtin;
  const std::string& ai = elements[1].ai;
  const std::string& value = elements[1].value;
  if (ai.size() == 4 && (ai.compare(0, 3, "310") == 0 || ai.compare(0, 3, "320") == 0) && value[0] == '0') {
    const int weight = std::stoi(value);
    if (elements.size() == 2) {
      *compressed = 26;
      if (ai == "3103" && weight <= 32767) return ExpandedMethod::kWeightKg3103;
      if ((ai == "3202" && weight <= 9999) || (ai == "3203" && weight <= 22767)) return ExpandedMethod::kWeightLb320x;
      return ExpandedMethod::kWeightAndDate;  // with the "no date" value
    }
    if (elements.size() == 3 && IsDateAi(elements[2].ai)) {
      *compressed = 34;
      return ExpandedMethod::kWeightAndDate;
    }
  }
  if (ai.size() == 4 && ai.compare(0, 3, "392") == 0 && ai[3] <= '3') {
    *compressed = 20;
    return ExpandedMethod::kPrice392x;
  }
  if (ai.size() == 4 && ai.compare(0, 3, "393") == 0 && ai[3] <= '3') {
    *compressed = 23;
    return ExpandedMethod::kPrice393x;
  }
  return ExpandedMethod::kGtin;
}

// Linkage flag, method, variable-length field placeholder and compressed data.
std::string CompressedField(ExpandedMethod method, const std::vector<Gs1Element>& elements, size_t* length_field) {
  std::string bits = "0";  // no 2D component linked
  *length_field = std::string::npos;
  const std::string gtin = method == ExpandedMethod::kGeneral ? "" : elements[0].value;
  switch (method) {
    case ExpandedMethod::kGeneral:
      bits += "00";
      *length_field = bits.size();
      bits += "00";
      break;
    case ExpandedMethod::kGtin:
      bits += "1";
      *length_field = bits.size();
      bits += "00";
      Append(&bits, gtin[0] - '0', 4);
      AppendGtin12(&bits, gtin);
      break;
    case ExpandedMethod::kWeightKg3103:
    case ExpandedMethod::kWeightLb320x: {
      bits += method == ExpandedMethod::kWeightKg3103 ? "0100" : "0101";
      AppendGtin12(&bits, gtin);
      const int weight = std::stoi(elements[1].value);
      Append(&bits, elements[1].ai == "3203" ? weight + 10000 : weight, 15);
      break;
    }
    case ExpandedMethod::kWeightAndDate: {
      const bool dated = elements.size() == 3;
      const int date_index = dated ? (elements[2].ai[1] - '1') / 2 : 0;  // 11, 13, 15, 17; none: as 11
      Append(&bits, 0b0111000 + 2 * date_index + (elements[1].ai[1] == '2' ? 1 : 0), 7);
      AppendGtin12(&bits, gtin);
      Append(&bits, (elements[1].ai[3] - '0') * 100000 + std::stoi(elements[1].value), 20);
      constexpr int kNoDate = 38400;
      const std::string date = dated ? elements[2].value : "";
      Append(&bits, dated ? Number(date, 0, 2) * 384 + (Number(date, 2, 2) - 1) * 32 + Number(date, 4, 2) : kNoDate,
             16);
      break;
    }
    case ExpandedMethod::kPrice392x:
    case ExpandedMethod::kPrice393x:
      bits += method == ExpandedMethod::kPrice392x ? "01100" : "01101";
      *length_field = bits.size();
      bits += "00";
      AppendGtin12(&bits, gtin);
      Append(&bits, elements[1].ai[3] - '0', 2);
      if (method == ExpandedMethod::kPrice393x) Append(&bits, Number(elements[1].value, 0, 3), 10);
      break;
  }
  return bits;
}

// ---- General-purpose data ----

enum class Mode : uint8_t { kNumeric, kAlphanumeric, kIso646 };
enum class CharClass : uint8_t { kInvalid, kNumeric, kAlphanumeric, kIso646 };

constexpr std::string_view kAlphanumericPunctuation = "*,-./";
constexpr std::string_view kIso646Punctuation = "!\"%&'()*+,-./:;<=>?_ ";

CharClass ClassOf(char c) {
  if (c == kFnc1 || (c >= '0' && c <= '9')) return CharClass::kNumeric;
  if ((c >= 'A' && c <= 'Z') || kAlphanumericPunctuation.find(c) != std::string_view::npos) {
    return CharClass::kAlphanumeric;
  }
  if ((c >= 'a' && c <= 'z') || kIso646Punctuation.find(c) != std::string_view::npos) return CharClass::kIso646;
  return CharClass::kInvalid;
}

class GeneralField {
 public:
  explicit GeneralField(const std::string& data) : data_(data) {}

  // Encodes everything but a final lone digit, which is left in `last_digit` (or -1).
  Mode Encode(std::string* bits, int* last_digit) {
    Mode mode = Mode::kNumeric;
    *last_digit = -1;
    size_t i = 0;
    while (i < data_.size()) {
      const char c = data_[i];
      switch (mode) {
        case Mode::kNumeric:
          if (i + 1 < data_.size() && Is(i, CharClass::kNumeric) && Is(i + 1, CharClass::kNumeric)) {
            Append(bits, 11 * DigitValue(c) + DigitValue(data_[i + 1]) + 8, 7);
            i += 2;
          } else if (i + 1 == data_.size() && c != kFnc1 && Is(i, CharClass::kNumeric)) {
            *last_digit = c - '0';
            ++i;
          } else {
            Append(bits, 0, 4);  // latch to alphanumeric
            mode = Mode::kAlphanumeric;
          }
          break;
        case Mode::kAlphanumeric:
          if (c == kFnc1) {
            Append(bits, 0b01111, 5);  // FNC1, back to numeric
            mode = Mode::kNumeric;
            ++i;
          } else if (Is(i, CharClass::kIso646)) {
            Append(bits, 0b00100, 5);
            mode = Mode::kIso646;
          } else if (NextAll(i, 6, CharClass::kNumeric) || RestNumeric(i, 4)) {
            Append(bits, 0, 3);
            mode = Mode::kNumeric;
          } else if (c >= '0' && c <= '9') {
            Append(bits, c - 43, 5);
            ++i;
          } else if (c >= 'A' && c <= 'Z') {
            Append(bits, c - 33, 6);
            ++i;
          } else {
            Append(bits, 58 + static_cast<int>(kAlphanumericPunctuation.find(c)), 6);
            ++i;
          }
          break;
        case Mode::kIso646:
          if (c == kFnc1) {
            Append(bits, 0b01111, 5);
            mode = Mode::kNumeric;
            ++i;
          } else if (NoIso646Within(i, 10) && NextAll(i, 4, CharClass::kNumeric)) {
            Append(bits, 0, 3);
            mode = Mode::kNumeric;
          } else if (NoIso646Within(i, 10) && NextAlphanumericOrNumeric(i, 5)) {
            Append(bits, 0b00100, 5);
            mode = Mode::kAlphanumeric;
          } else if (c >= '0' && c <= '9') {
            Append(bits, c - 43, 5);
            ++i;
          } else if (c >= 'A' && c <= 'Z') {
            Append(bits, c - 1, 7);
            ++i;
          } else if (c >= 'a' && c <= 'z') {
            Append(bits, c - 7, 7);
            ++i;
          } else {
            Append(bits, 232 + static_cast<int>(kIso646Punctuation.find(c)), 8);
            ++i;
          }
          break;
      }
    }
    return mode;
  }

 private:
  static int DigitValue(char c) { return c == kFnc1 ? 10 : c - '0'; }
  bool Is(size_t i, CharClass wanted) const { return ClassOf(data_[i]) == wanted; }
  bool NextAll(size_t i, size_t count, CharClass wanted) const {
    if (i + count > data_.size()) return false;
    for (size_t k = i; k < i + count; ++k) {
      if (!Is(k, wanted)) return false;
    }
    return true;
  }
  // The rest of the data, at least `minimum` characters, is numeric.
  bool RestNumeric(size_t i, size_t minimum) const {
    return data_.size() - i >= minimum && NextAll(i, data_.size() - i, CharClass::kNumeric);
  }
  bool NoIso646Within(size_t i, size_t count) const {
    for (size_t k = i; k < data_.size() && k < i + count; ++k) {
      if (Is(k, CharClass::kIso646)) return false;
    }
    return true;
  }
  bool NextAlphanumericOrNumeric(size_t i, size_t count) const {
    if (i + count > data_.size()) return false;
    for (size_t k = i; k < i + count; ++k) {
      if (!Is(k, CharClass::kAlphanumeric) && !Is(k, CharClass::kNumeric)) return false;
    }
    return true;
  }

  const std::string& data_;
};

// ---- Symbol characters ----

std::vector<int32_t> CharacterWidths(int32_t value) {
  size_t group = 0;
  while (group + 1 < kExpandedGroupSum.size() && value >= kExpandedGroupSum[group + 1]) ++group;
  const int32_t v = value - kExpandedGroupSum[group];
  const int32_t t = kExpandedTEven[group];
  const auto odd = getWidths(v / t, kExpandedModulesOdd[group], 4, kExpandedWidestOdd[group], 0);
  const auto even = getWidths(v % t, kExpandedModulesEven[group], 4, kExpandedWidestEven[group], 1);
  return InterleaveSets(odd, even, 4);
}

// Finder id (A1 = 0, A2 = 1, ... F2 = 11) of segment pair `pair`.
int32_t FinderId(int32_t symbol_characters, int32_t pair) {
  const int32_t finders = (symbol_characters + 1) / 2;
  return kExpandedFinderSequence[static_cast<size_t>(finders - 2)][static_cast<size_t>(pair)];
}

std::array<int32_t, 5> FinderWidths(int32_t id) {
  std::array<int32_t, 5> widths{};
  const auto& finder = kExpandedFinder[static_cast<size_t>(id / 2)];
  for (size_t i = 0; i < 5; ++i) widths[i] = id % 2 == 0 ? finder[i] : finder[4 - i];
  return widths;
}

// The segment pairs, 21 elements each; a missing last character is left at width 0.
std::vector<std::array<int32_t, kBlockElements>> Blocks(const std::vector<std::vector<int32_t>>& characters) {
  const auto count = static_cast<int32_t>(characters.size());
  std::vector<std::array<int32_t, kBlockElements>> blocks(static_cast<size_t>((count + 1) / 2));
  for (size_t p = 0; p < blocks.size(); ++p) {
    auto& block = blocks[p];
    std::copy(characters[2 * p].begin(), characters[2 * p].end(), block.begin());
    const auto finder = FinderWidths(FinderId(count, static_cast<int32_t>(p)));
    std::copy(finder.begin(), finder.end(), block.begin() + 8);
    if (2 * p + 1 < characters.size()) {
      std::copy(characters[2 * p + 1].rbegin(), characters[2 * p + 1].rend(), block.begin() + 13);
    }
  }
  return blocks;
}

// ---- Stacked rows ----

std::string ElementBits(const std::vector<int32_t>& widths, bool dark) {
  std::string bits;
  for (int32_t w : widths) {
    bits.append(static_cast<size_t>(w), dark ? '1' : '0');
    dark = !dark;
  }
  return bits;
}

struct StackRow {
  std::string bits;
  int32_t pairs = 0;
  int32_t shift = 0;  // 1 when the row starts one module further right
  bool left_to_right = true;
};

// Separator next to `row`: its complement within the guards, except that light modules
// over the finders alternate dark and light, counted from the finder's wide end.
std::string Separator(const StackRow& row, bool half_pair_first, bool second_finder) {
  const auto width = static_cast<int32_t>(row.bits.size());
  std::string separator(row.bits.size(), '0');
  for (int32_t column = 4 + row.shift; column < width - 4; ++column) {
    separator[static_cast<size_t>(column)] = row.bits[static_cast<size_t>(column)] == '1' ? '0' : '1';
  }
  bool light_next = false;
  auto visit = [&](int32_t column) {
    const auto at = static_cast<size_t>(column);
    if (row.bits[at] == '1') {
      separator[at] = '0';
      light_next = false;
    } else {
      separator[at] = light_next ? '0' : '1';
      light_next = !light_next;
    }
  };
  for (int32_t pair = 0; pair < row.pairs; ++pair) {
    const int32_t finder = 49 * pair + 19 + row.shift;  // guard (2) and a character (17) before it
    if (row.left_to_right) {
      for (int32_t i = second_finder ? 2 : 0; i < (second_finder ? 15 : 13); ++i) visit(finder + i);
    } else {
      const int32_t start = finder - (half_pair_first ? 17 : 0);
      for (int32_t i = second_finder ? 14 : 12; i >= (second_finder ? 2 : 0); --i) visit(start + i);
    }
    second_finder = !second_finder;
  }
  return separator;
}

DataBarRows StackedRows(const std::vector<std::array<int32_t, kBlockElements>>& blocks, int32_t symbol_characters,
                        int32_t columns) {
  const auto pairs = static_cast<int32_t>(blocks.size());
  const int32_t row_count = (pairs + columns - 1) / columns;
  std::vector<StackRow> rows(static_cast<size_t>(row_count));
  size_t width = 0;
  for (int32_t r = 0; r < row_count; ++r) {
    StackRow& row = rows[static_cast<size_t>(r)];
    const bool odd_row = r % 2 == 0;  // first, third, ... row
    row.pairs = std::min(columns, pairs - r * columns);
    // An even-numbered last row with an odd count of pairs (when rows hold an even count)
    // reads left to right, one module further right, so its finders keep their parity.
    const bool shifted =
        r == row_count - 1 && row.pairs != columns && !odd_row && columns % 2 == 0 && row.pairs % 2 == 1;
    row.shift = shifted ? 1 : 0;
    row.left_to_right = columns % 2 == 1 || odd_row || shifted;
    std::vector<int32_t> elements = {1 + row.shift, 1};
    elements.resize(2 + static_cast<size_t>(kBlockElements * row.pairs));
    for (int32_t k = 0; k < row.pairs; ++k) {
      const auto& block = blocks[static_cast<size_t>(r * columns + k)];
      for (int32_t j = 0; j < kBlockElements; ++j) {
        const int32_t slot = row.left_to_right ? kBlockElements * k + j
                                               : kBlockElements * (row.pairs - 1 - k) + (kBlockElements - 1 - j);
        elements[static_cast<size_t>(2 + slot)] = block[static_cast<size_t>(j)];
      }
    }
    elements.insert(elements.end(), {1, 1});
    row.bits = ElementBits(elements, !(odd_row || shifted));
    width = std::max(width, row.bits.size());
  }

  std::vector<std::string> bits;
  std::vector<int32_t> heights;
  bool second_finder = false;
  for (int32_t r = 0; r < row_count; ++r) {
    const StackRow& row = rows[static_cast<size_t>(r)];
    if (r > 0) {
      std::string middle(width, '0');
      for (size_t column = 5; column < static_cast<size_t>(49 * columns) && column < width; column += 2) {
        middle[column] = '1';
      }
      const bool half_pair_first = r == row_count - 1 && symbol_characters % 2 == 1;
      bits.push_back(middle);
      bits.push_back(Separator(row, half_pair_first, second_finder));
      heights.insert(heights.end(), {1, 1});
    }
    bits.push_back(row.bits);
    heights.push_back(-1);
    if (r + 1 < row_count) {
      bits.push_back(Separator(row, false, second_finder));
      heights.push_back(1);
      if (row.pairs % 2 == 1) second_finder = !second_finder;
    }
  }
  DataBarRows out;
  for (std::string& row : bits) {
    row.erase(row.find_last_not_of('0') + 1);  // trailing light modules draw nothing
    out.patterns.push_back(RowPattern(row));
  }
  out.heights = std::move(heights);
  return out;
}

}  // namespace

ExpandedBits EncodeExpandedBits(const std::vector<Gs1Element>& elements, int stack_columns) {
  size_t compressed = 0;
  ExpandedBits result;
  result.method = ChooseMethod(elements, &compressed);
  size_t length_field = std::string::npos;
  std::string bits = CompressedField(result.method, elements, &length_field);

  const std::string data = Gs1Concatenated(elements, kFnc1);
  const std::string general = data.substr(std::min(compressed, data.size()));
  for (char c : general) {
    if (ClassOf(c) == CharClass::kInvalid) {
      Fail(std::string("Invalid character '") + c + "': not encodable in GS1 DataBar Expanded");
    }
  }
  int last_digit = -1;
  const Mode mode = GeneralField(general).Encode(&bits, &last_digit);

  auto symbol_characters_for = [stack_columns](size_t bit_count) {
    auto characters = static_cast<int32_t>((bit_count + 11) / 12 + 1);
    // A stacked symbol's last row holds two symbol characters or more.
    if (stack_columns > 0 && characters % (2 * stack_columns) == 1) ++characters;
    return std::max(characters, kMinSymbolCharacters);
  };
  if (last_digit >= 0) {
    const auto room = 12 * (symbol_characters_for(bits.size()) - 1) - static_cast<int32_t>(bits.size());
    if (room >= 4 && room <= 6) {
      Append(&bits, last_digit + 1, 4);
    } else {
      Append(&bits, 11 * last_digit + 10 + 8, 7);  // the digit and FNC1
    }
  }
  const int32_t characters = symbol_characters_for(bits.size());
  if (bits.size() > static_cast<size_t>(kMaxDataBits) || characters > kMaxSymbolCharacters) {
    Fail("Element string too long for GS1 DataBar Expanded: " +
         std::to_string(std::max<size_t>(characters, (bits.size() + 11) / 12 + 1)) + " symbol characters (max " +
         std::to_string(kMaxSymbolCharacters) + ")");
  }
  // Padding: back to alphanumeric if need be, then "00100" (an ISO/IEC 646 latch) repeated.
  std::string padding = mode == Mode::kNumeric ? "0000" : "";
  const size_t pad = static_cast<size_t>(12 * (characters - 1)) - bits.size();
  while (padding.size() < pad) padding += "00100";
  bits += padding.substr(0, pad);
  if (length_field != std::string::npos) {
    bits[length_field] = characters % 2 == 1 ? '1' : '0';
    bits[length_field + 1] = characters > 14 ? '1' : '0';
  }
  result.bits = std::move(bits);
  return result;
}

ExpandedSymbol EncodeDataBarExpanded(const std::string& element_string, int stack_columns) {
  const std::vector<Gs1Element> elements = ParseGs1ElementString(element_string);
  const ExpandedBits encoded = EncodeExpandedBits(elements, stack_columns);

  ExpandedSymbol symbol;
  const auto data_characters = static_cast<int32_t>(encoded.bits.size() / 12);
  symbol.symbol_characters = data_characters + 1;
  std::vector<std::vector<int32_t>> characters(static_cast<size_t>(symbol.symbol_characters));
  int32_t checksum = 0;
  for (int32_t k = 1; k < symbol.symbol_characters; ++k) {
    const int32_t value = std::stoi(encoded.bits.substr(static_cast<size_t>(12 * (k - 1)), 12), nullptr, 2);
    characters[static_cast<size_t>(k)] = CharacterWidths(value);
    const int32_t finder = FinderId(symbol.symbol_characters, k / 2);
    const int32_t row = k % 2 == 0 ? 2 * finder - 1 : 2 * finder;
    for (size_t j = 0; j < 8; ++j) {
      checksum += characters[static_cast<size_t>(k)][j] * kExpandedChecksumWeight[static_cast<size_t>(row)][j];
    }
  }
  symbol.check_value = 211 * (symbol.symbol_characters - 4) + checksum % 211;
  characters[0] = CharacterWidths(symbol.check_value);

  const auto blocks = Blocks(characters);
  symbol.widths = {1, 1};
  for (size_t p = 0; p < blocks.size(); ++p) {
    const bool half = 2 * p + 1 == characters.size();
    symbol.widths.insert(symbol.widths.end(), blocks[p].begin(), blocks[p].end() - (half ? 8 : 0));
  }
  symbol.widths.insert(symbol.widths.end(), {1, 1});
  symbol.display_text = Gs1HumanReadable(elements);
  if (stack_columns > 0) symbol.rows = StackedRows(blocks, symbol.symbol_characters, stack_columns);
  return symbol;
}

}  // namespace internal

namespace {
constexpr const char* kLogPrefix = "[GS1 DataBar Expanded] ";
constexpr int32_t kDefaultColumns = 2;
}  // namespace

GS1DataBarExpanded::GS1DataBarExpanded(std::string output_format) : DataBarBase(std::move(output_format)) {}

GS1DataBarExpanded::GS1DataBarExpanded(SDL_Renderer* canvas) : DataBarBase(canvas) {}

int32_t GS1DataBarExpanded::StackColumns() const {
  return columns_ >= 1 && columns_ <= 11 ? columns_ : kDefaultColumns;
}

bool GS1DataBarExpanded::DrawForm(const std::string& text, int x, int y, int width, int height, bool svg) {
  if (symbol_type_ != 1) {
    // The leading light module of the guard is the layout's lead; the bars start after it.
    auto linear = [](const std::string& data) {
      const internal::ExpandedSymbol symbol = internal::EncodeDataBarExpanded(data, 0);
      LinearSymbol out(std::vector<int32_t>(symbol.widths.begin() + 1, symbol.widths.end()), symbol.display_text);
      out.lead_modules = 1;
      return out;
    };
    return svg ? DrawLinearSvg(text, x, y, width, height, kLogPrefix, linear)
               : DrawLinearRaster(text, x, y, width, height, kLogPrefix, linear);
  }
  const int32_t columns = StackColumns();
  auto stacked = [columns](const std::string& data) {
    internal::ExpandedSymbol symbol = internal::EncodeDataBarExpanded(data, columns);
    StackedSymbol out;
    out.rows = std::move(symbol.rows);
    out.display_text = symbol.display_text;
    out.rule = RowHeightRule::kModules;
    return out;
  };
  return DrawStackedRows(text, x, y, width, height, svg, kLogPrefix, stacked);
}

bool GS1DataBarExpanded::Draw(const std::string& text, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(text, x, y, width, height);
  return DrawForm(text, x, y, width, height, false);
}

bool GS1DataBarExpanded::DrawSvg(const std::string& text, int x, int y, int width, int height) {
  return DrawForm(text, x, y, width, height, true);
}

bool GS1DataBarExpanded::DrawStacked(const std::string& text, int x, int y, int width, int height) {
  symbol_type_ = 1;
  return Draw(text, x, y, width, height);
}

}  // namespace barcode_orv
