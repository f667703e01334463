#include "databar/databar_limited.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "core/log.h"
#include "databar/databar_common.h"
#include "databar/databar_tables.h"
#include "gs1/gtin_check_digit.h"

namespace barcode_orv {
namespace internal {
namespace {

using namespace databar;  // NOLINT(google-build-using-namespace): the standard's tables

constexpr bool TablesHold() {
  for (size_t g = 0; g < kLimitedModulesOdd.size(); ++g) {
    if (kLimitedModulesOdd[g] + kLimitedModulesEven[g] != 26) return false;
    if (kLimitedWidestOdd[g] + kLimitedWidestEven[g] != 9) return false;
  }
  for (const auto& pattern : kLimitedCheckPattern) {
    int sum = 0;
    for (int32_t w : pattern) sum += w;
    if (sum != 18) return false;
  }
  return true;
}
static_assert(TablesHold(), "characters span 26 modules, check patterns 18");
static_assert(kLimitedCheckPattern.size() == 89, "one check pattern per checksum value");

constexpr int64_t kPairSplit = 2013571;

std::vector<int32_t> CharacterWidths(int64_t value) {
  size_t group = 0;
  while (group + 1 < kLimitedGroupSum.size() && value >= kLimitedGroupSum[group + 1]) ++group;
  const int64_t v = value - kLimitedGroupSum[group];
  const auto odd_value = static_cast<int>(v / kLimitedTEven[group]);
  const auto even_value = static_cast<int>(v % kLimitedTEven[group]);
  const auto odd = getWidths(odd_value, kLimitedModulesOdd[group], 7, kLimitedWidestOdd[group], 1);
  const auto even = getWidths(even_value, kLimitedModulesEven[group], 7, kLimitedWidestEven[group], 0);
  return InterleaveSets(odd, even, 7);
}

}  // namespace

DataBarLimitedSymbol EncodeDataBarLimited(const std::string& data) {
  if (std::any_of(data.begin(), data.end(), [](char c) { return c < '0' || c > '9'; })) {
    throw std::runtime_error("GS1 DataBar Limited requires numeric digits only");
  }
  if (data.size() < 8 || data.size() > 13) throw std::runtime_error("Input must be 8-13 digits");
  const std::string padded = std::string(13 - data.size(), '0') + data;
  if (padded[0] != '0' && padded[0] != '1') {
    throw std::runtime_error("GS1 DataBar Limited requires leading digit 0 or 1 after padding");
  }
  const int64_t value = std::stoll(padded);
  const std::vector<int32_t> left = CharacterWidths(value / kPairSplit);
  const std::vector<int32_t> right = CharacterWidths(value % kPairSplit);
  int32_t checksum = 0;
  for (size_t j = 0; j < 14; ++j)
    checksum += left[j] * kLimitedChecksumWeight[j] + right[j] * kLimitedChecksumWeight[14 + j];
  DataBarLimitedSymbol symbol;
  symbol.checksum = checksum % 89;
  const auto& check = kLimitedCheckPattern[static_cast<size_t>(symbol.checksum)];

  std::vector<int32_t> widths = {1, 1};
  widths.insert(widths.end(), left.begin(), left.end());
  widths.insert(widths.end(), check.begin(), check.end());
  widths.insert(widths.end(), right.begin(), right.end());
  widths.insert(widths.end(), {1, 1});
  std::copy(widths.begin(), widths.end(), symbol.widths.begin());
  symbol.digits = padded + GtinCheckDigit13(padded);
  return symbol;
}

}  // namespace internal

namespace {
constexpr const char* kLogPrefix = "[GS1 DataBar Limited] ";
}  // namespace

GS1DataBarLimited::GS1DataBarLimited(std::string output_format) : DataBarBase(std::move(output_format)) {}

GS1DataBarLimited::GS1DataBarLimited(SDL_Renderer* canvas) : DataBarBase(canvas) {}

bool GS1DataBarLimited::encode(const std::string& data) {  // NOLINT(readability-identifier-naming)
  symbol_ = internal::EncodeDataBarLimited(data);
  return true;
}

std::string GS1DataBarLimited::CalculateCheckDigit(const std::string& digits) {
  return internal::GtinCheckDigit13(digits);
}

bool GS1DataBarLimited::Draw(const std::string& text, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(text, x, y, width, height);
  // The leading light module of the guard is the layout's lead; the bars start after it.
  return DrawLinearRaster(text, x, y, width, height, kLogPrefix, [this](const std::string& data) {
    encode(data);
    LinearSymbol symbol(std::vector<int32_t>(symbol_.widths.begin() + 1, symbol_.widths.end()),
                        "(01)" + symbol_.digits);
    symbol.lead_modules = 1;
    return symbol;
  });
}

bool GS1DataBarLimited::DrawSvg(const std::string& /*text*/, int /*x*/, int /*y*/, int /*width*/, int /*height*/) {
  // Silent by default, as it always was; a host can still read why nothing was drawn.
  log::Reason(std::string(kLogPrefix) + "GS1 DataBar Limited has no SVG form; draw it as PNG");
  return false;
}

}  // namespace barcode_orv
