#include "databar/databar_common.h"

namespace barcode_orv::internal {

int getCombinations(int n, int r) {  // NOLINT(readability-identifier-naming)
  int min_denominator = n - r > r ? r : n - r;
  int max_denominator = n - r > r ? n - r : r;
  int64_t value = 1;
  int j = 1;
  for (int i = n; i > max_denominator; --i) {
    value *= i;
    if (j <= min_denominator) value /= j++;
  }
  for (; j <= min_denominator; ++j) value /= j;
  return static_cast<int>(value);
}

std::array<int32_t, kMaxSetElements> getWidths(  // NOLINT(readability-identifier-naming)
    int val, int n, int elements, int max_width, int no_narrow) {
  std::array<int32_t, kMaxSetElements> widths{};
  int narrow_mask = 0;
  int bar = 0;
  for (; bar < elements - 1; ++bar) {
    int width = 1;
    int sub_value = 0;
    narrow_mask |= 1 << bar;
    for (;; ++width, narrow_mask &= ~(1 << bar)) {
      // Patterns whose element `bar` is `width` modules wide.
      sub_value = getCombinations(n - width - 1, elements - bar - 2);
      // Less those without a narrow element, when one is still required.
      if (no_narrow == 0 && narrow_mask == 0 && n - width - (elements - bar - 1) >= elements - bar - 1) {
        sub_value -= getCombinations(n - width - (elements - bar), elements - bar - 2);
      }
      // Less those with an element wider than max_width.
      if (elements - bar - 1 > 1) {
        int less = 0;
        for (int widest = n - width - (elements - bar - 2); widest > max_width; --widest) {
          less += getCombinations(n - width - widest - 1, elements - bar - 3);
        }
        sub_value -= less * (elements - 1 - bar);
      } else if (n - width > max_width) {
        --sub_value;
      }
      val -= sub_value;
      if (val < 0) break;
    }
    val += sub_value;
    n -= width;
    widths[static_cast<size_t>(bar)] = width;
  }
  widths[static_cast<size_t>(bar)] = n;
  return widths;
}

std::vector<int32_t> InterleaveSets(const std::array<int32_t, kMaxSetElements>& odd,
                                    const std::array<int32_t, kMaxSetElements>& even, int per_set) {
  std::vector<int32_t> widths;
  widths.reserve(static_cast<size_t>(2 * per_set));
  for (size_t i = 0; i < static_cast<size_t>(per_set); ++i) {
    widths.push_back(odd[i]);
    widths.push_back(even[i]);
  }
  return widths;
}

void SetModule(ModuleGrid* grid, int col, int row, bool dark) {
  if (grid->contains(col, row)) grid->set(col, row, dark);
}

bool DarkModule(const ModuleGrid& grid, int col, int row) { return grid.contains(col, row) && grid.dark(col, row); }

int PutElements(ModuleGrid* grid, int col, int row, const std::vector<int32_t>& widths, bool first_dark) {
  bool dark = first_dark;
  for (int32_t width : widths) {
    for (int32_t k = 0; k < width; ++k) SetModule(grid, col++, row, dark);
    dark = !dark;
  }
  return col;
}

std::string RowBits(const ModuleGrid& grid, int row, int width) {
  std::string bits;
  for (int col = 0; col < width; ++col) bits += DarkModule(grid, col, row) ? '1' : '0';
  return bits;
}

std::string bin2pat(const std::string& bits) {  // NOLINT(readability-identifier-naming)
  std::string pattern;
  for (size_t i = 0; i < bits.size();) {
    size_t run = 1;
    while (i + run < bits.size() && bits[i + run] == bits[i]) ++run;
    pattern += static_cast<char>('0' + run);
    i += run;
  }
  return pattern;
}

std::string RowPattern(const std::string& bits) {
  const std::string pattern = bin2pat(bits);
  return !bits.empty() && bits[0] == '0' ? "0" + pattern : pattern;
}

}  // namespace barcode_orv::internal
