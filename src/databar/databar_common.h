// Pieces shared by the GS1 DataBar symbologies (ISO/IEC 24724): the width-combination
// routines of the standard, the module grid of stacked forms and its run-length rows.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace barcode_orv::internal {

// The most elements of one set (odd or even) in any DataBar character: 7 in Limited.
constexpr int kMaxSetElements = 7;

// n choose r without overflow for the sizes DataBar uses.
int getCombinations(int n, int r);  // NOLINT(readability-identifier-naming): the standard's routine

// The `val`-th pattern (in lexicographic order) of `elements` widths summing to `n`
// modules, none wider than `max_width`; with `no_narrow` 0 some element must be one
// module wide. Only the first `elements` entries are meaningful.
std::array<int32_t, kMaxSetElements> getWidths(  // NOLINT(readability-identifier-naming)
    int val, int n, int elements, int max_width, int no_narrow);

// One character's widths in its own order: odd set at 0, 2, 4, ..., even set at 1, 3, 5, ...
std::vector<int32_t> InterleaveSets(const std::array<int32_t, kMaxSetElements>& odd,
                                    const std::array<int32_t, kMaxSetElements>& even, int per_set);

// Stacked symbols: rows of modules (true = dark) and their heights in modules; -1 marks a
// row that takes a share of the free height.
struct DataBarRows {
  std::vector<std::string> patterns;  // run-length, dark first ("0" leads a light start)
  std::vector<int32_t> heights;
};

class ModuleGrid {
 public:
  ModuleGrid(int rows, int columns) : rows_(rows, std::vector<bool>(static_cast<size_t>(columns))) {}
  // Out-of-range coordinates are ignored; Get returns false for them.
  void Set(int row, int column, bool dark = true);
  bool Get(int row, int column) const;
  // Writes element widths from `column`, the first element dark or light; returns the
  // column after the last element.
  int PutElements(int row, int column, const std::vector<int32_t>& widths, bool first_dark);
  int rows() const { return static_cast<int>(rows_.size()); }
  int columns() const { return rows_.empty() ? 0 : static_cast<int>(rows_[0].size()); }
  // Row `row` over `width` columns as '1'/'0'.
  std::string Bits(int row, int width) const;

 private:
  std::vector<std::vector<bool>> rows_;
};

// "1100010" -> "232" style run lengths: each run becomes '0' + its length.
std::string bin2pat(const std::string& bits);  // NOLINT(readability-identifier-naming)
// A row's pattern, with "0" in front when it starts light.
std::string RowPattern(const std::string& bits);

}  // namespace barcode_orv::internal
