#include "databar/databar14.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "core/log.h"
#include "databar/databar_tables.h"
#include "gs1/gtin_check_digit.h"

namespace barcode_orv {
namespace internal {
namespace {

using namespace databar;  // NOLINT(google-build-using-namespace): the standard's tables

// The last groups have one pattern of their narrow set (all ones), so T values end them.
static_assert(kOmniGroupSum[4] + kOmniT[4] == 2841, "outside values end at 2840");
static_assert(kOmniGroupSum[8] + kOmniT[8] == 1597, "inside values end at 1596");
constexpr bool ModuleSumsHold() {
  for (size_t g = 0; g < kOmniModulesOdd.size(); ++g) {
    if (kOmniModulesOdd[g] + kOmniModulesEven[g] != (g < 5 ? 16 : 15)) return false;
    if (kOmniWidestOdd[g] + kOmniWidestEven[g] != 9) return false;
  }
  for (const auto& finder : kOmniFinder) {
    int sum = 0;
    for (int32_t w : finder) sum += w;
    if (sum != 15) return false;
  }
  return true;
}
static_assert(ModuleSumsHold(), "outside characters span 16 modules, inside 15, finders 15");

constexpr int64_t kPairSplit = 4537077;
constexpr int32_t kCharacterSplit = 1597;
constexpr int kRowWidthStacked = 50;

// The eight widths of data character `index` (0..3) in its own order.
std::vector<int32_t> CharacterWidths(int32_t value, int index) {
  const bool outside = index % 2 == 0;
  size_t group = outside ? 0 : 5;
  const size_t last = outside ? 4 : 8;
  while (group < last && value >= kOmniGroupSum[group + 1]) ++group;
  const int32_t v = value - kOmniGroupSum[group];
  const int32_t t = kOmniT[group];
  const int32_t odd_value = outside ? v / t : v % t;
  const int32_t even_value = outside ? v % t : v / t;
  const auto odd = getWidths(odd_value, kOmniModulesOdd[group], 4, kOmniWidestOdd[group], outside ? 1 : 0);
  const auto even = getWidths(even_value, kOmniModulesEven[group], 4, kOmniWidestEven[group], outside ? 0 : 1);
  return InterleaveSets(odd, even, 4);
}

// Checksum 0..78 mapped onto 0..80 without 8 and 72, as the finder pairs are numbered.
int32_t SkipReservedChecksums(int32_t checksum) {
  if (checksum >= 8) ++checksum;
  if (checksum >= 72) ++checksum;
  return checksum;
}

template <typename Range>
void Append(std::vector<int32_t>* out, const Range& range, bool reversed) {
  if (reversed)
    out->insert(out->end(), range.rbegin(), range.rend());
  else
    out->insert(out->end(), range.begin(), range.end());
}

// Top row 0 and bottom row `bottom` of the stacked forms, 50 modules each.
void PutStackedHalves(ModuleGrid* grid, const std::array<int32_t, 46>& widths, int bottom) {
  const std::vector<int32_t> top(widths.begin(), widths.begin() + 23);
  const int end = PutElements(grid, 0, 0, top, false);
  SetModule(grid, end, 0);  // dark-light guard closing the top row
  SetModule(grid, end + 1, 0, false);
  SetModule(grid, 0, bottom);
  SetModule(grid, 1, bottom, false);
  PutElements(grid, 2, bottom, std::vector<int32_t>(widths.begin() + 23, widths.end()), true);
}

// Separator between the two halves of the stacked form.
void PutStackedSeparator(ModuleGrid* grid) {
  for (int column = 4; column < 46; ++column) {
    const bool top = DarkModule(*grid, column, 0);
    if (top == DarkModule(*grid, column, 2)) {
      SetModule(grid, column, 1, !top);
    } else {
      SetModule(grid, column, 1, !DarkModule(*grid, column - 1, 1));
    }
  }
}

// Separator row `row` against the data row `against`: its complement, except over the
// finder, where light modules of the data row alternate dark and light.
void PutOmniSeparator(ModuleGrid* grid, int row, int against, int finder_begin) {
  for (int column = 4; column < 46; ++column) SetModule(grid, column, row, !DarkModule(*grid, column, against));
  bool dark_next = true;
  for (int column = finder_begin; column < finder_begin + 16; ++column) {
    if (DarkModule(*grid, column, against)) {
      SetModule(grid, column, row, false);
      dark_next = true;
    } else {
      SetModule(grid, column, row, dark_next);
      dark_next = !dark_next;
    }
  }
}

DataBarRows GridRows(const ModuleGrid& grid, int rows, int width, std::vector<int32_t> heights) {
  DataBarRows out;
  for (int row = 0; row < rows; ++row) out.patterns.push_back(RowPattern(RowBits(grid, row, width)));
  out.heights = std::move(heights);
  return out;
}

}  // namespace

DataBar14Symbol EncodeDataBar14(const std::string& data, DataBar14Form form) {
  if (std::any_of(data.begin(), data.end(), [](char c) { return c < '0' || c > '9'; })) {
    throw std::runtime_error("GS1 DataBar requires numeric digits only");
  }
  if (data.size() > 13) throw std::runtime_error("Input too long (max 13 digits)");
  DataBar14Symbol symbol;
  const std::string padded = std::string(13 - data.size(), '0') + data;
  const int64_t value = std::stoll(padded);
  const int64_t left = value / kPairSplit;
  const int64_t right = value % kPairSplit;
  const std::array<int32_t, 4> values = {
      static_cast<int32_t>(left / kCharacterSplit), static_cast<int32_t>(left % kCharacterSplit),
      static_cast<int32_t>(right / kCharacterSplit), static_cast<int32_t>(right % kCharacterSplit)};

  std::array<std::vector<int32_t>, 4> characters;
  int32_t checksum = 0;
  for (size_t c = 0; c < 4; ++c) {
    characters[c] = CharacterWidths(values[c], static_cast<int>(c));
    for (size_t j = 0; j < 8; ++j) checksum += characters[c][j] * kOmniChecksumWeight[8 * c + j];
  }
  symbol.checksum = SkipReservedChecksums(checksum % 79);
  const auto& left_finder = kOmniFinder[static_cast<size_t>(symbol.checksum / 9)];
  const auto& right_finder = kOmniFinder[static_cast<size_t>(symbol.checksum % 9)];

  std::vector<int32_t> widths = {1, 1};
  Append(&widths, characters[0], false);
  Append(&widths, left_finder, false);
  Append(&widths, characters[1], true);
  Append(&widths, characters[3], false);
  Append(&widths, right_finder, true);
  Append(&widths, characters[2], true);
  widths.insert(widths.end(), {1, 1});
  std::copy(widths.begin(), widths.end(), symbol.widths.begin());
  symbol.digits = padded + GtinCheckDigit13(padded);

  ModuleGrid grid(100, 5);
  switch (form) {
    case DataBar14Form::kOmnidirectional:
      PutElements(&grid, 0, 0, widths, false);
      symbol.rows = GridRows(grid, 1, 96, {-1});
      break;
    case DataBar14Form::kStacked:
      PutStackedHalves(&grid, symbol.widths, 2);
      PutStackedSeparator(&grid);
      symbol.rows = GridRows(grid, 3, kRowWidthStacked, {5, 1, 7});
      break;
    case DataBar14Form::kStackedOmnidirectional:
      PutStackedHalves(&grid, symbol.widths, 4);
      for (int column = 5; column < 46; column += 2) SetModule(&grid, column, 2);
      PutOmniSeparator(&grid, 1, 0, 17);
      PutOmniSeparator(&grid, 3, 4, 16);
      symbol.rows = GridRows(grid, 5, kRowWidthStacked, {-1, 1, 1, 1, -1});
      break;
  }
  return symbol;
}

}  // namespace internal

namespace {
constexpr const char* kLogPrefix = "[GS1 DataBar] ";
}  // namespace

GS1DataBar14::GS1DataBar14(std::string output_format) : DataBarBase(std::move(output_format)) {}

GS1DataBar14::GS1DataBar14(SDL_Renderer* canvas) : DataBarBase(canvas) {}

internal::DataBar14Form GS1DataBar14::Form() const {
  if (m_symbolType == 1) return internal::DataBar14Form::kStacked;
  if (m_symbolType == 2) return internal::DataBar14Form::kStackedOmnidirectional;
  return internal::DataBar14Form::kOmnidirectional;
}

bool GS1DataBar14::encode(const std::string& data) {  // NOLINT(readability-identifier-naming)
  symbol_ = internal::EncodeDataBar14(data, Form());
  for (const std::string& pattern : symbol_.rows.patterns) log::Debug("DEBUG DataBar14: row " + pattern);
  log::Debug("DEBUG DataBar14: m_rowCount=" + std::to_string(symbol_.rows.patterns.size()));
  log::Debug("DEBUG DataBar14: m_symbolType=" + std::to_string(m_symbolType));
  return true;
}

std::string GS1DataBar14::CalculateCheckDigit(const std::string& digits) { return internal::GtinCheckDigit13(digits); }

bool GS1DataBar14::DrawForm(const std::string& text, int x, int y, int width, int height, bool svg) {
  // Deliberate: an empty text pads to GTIN 00000000000000, as this symbol always has.
  if (text.empty()) Warn(std::string(kLogPrefix) + "Empty data: the symbol carries GTIN 00000000000000");
  if (Form() == internal::DataBar14Form::kOmnidirectional) {
    // The leading light module of the guard is the layout's lead; the bars start after it.
    auto linear = [this](const std::string& data) {
      encode(data);
      LinearSymbol symbol(std::vector<int32_t>(symbol_.widths.begin() + 1, symbol_.widths.end()),
                          "(01)" + symbol_.digits);
      symbol.lead_modules = 1;
      return symbol;
    };
    return svg ? DrawLinearSvg(text, x, y, width, height, kLogPrefix, linear)
               : DrawLinearRaster(text, x, y, width, height, kLogPrefix, linear);
  }
  auto stacked = [this](const std::string& data) {
    encode(data);
    StackedSymbol symbol;
    symbol.rows = symbol_.rows;
    symbol.display_text = "(01)" + symbol_.digits;
    symbol.rule = Form() == internal::DataBar14Form::kStacked ? RowHeightRule::kShareOfBox : RowHeightRule::kModules;
    return symbol;
  };
  return DrawStackedRows(text, x, y, width, height, svg, kLogPrefix, stacked);
}

bool GS1DataBar14::Draw(const std::string& text, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(text, x, y, width, height);
  return DrawForm(text, x, y, width, height, false);
}

bool GS1DataBar14::DrawSvg(const std::string& text, int x, int y, int width, int height) {
  return DrawForm(text, x, y, width, height, true);
}

}  // namespace barcode_orv
