// Pieces shared by the GS1 DataBar symbologies (ISO/IEC 24724): the width-combination
// routines of the standard, the module grid of stacked forms and its run-length rows.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/module_grid.h"

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

// Rows of a stacked symbol on the shared module matrix; positions outside it are ignored
// (Set) or light (Dark).
void SetModule(ModuleGrid* grid, int col, int row, bool dark = true);
bool DarkModule(const ModuleGrid& grid, int col, int row);
// Writes element widths on `row` from `col`, the first element dark or light; returns the
// column after the last element.
int PutElements(ModuleGrid* grid, int col, int row, const std::vector<int32_t>& widths, bool first_dark);
// Row `row` over `width` columns as '1'/'0'.
std::string RowBits(const ModuleGrid& grid, int row, int width);

// "1100010" -> "232" style run lengths: each run becomes '0' + its length.
std::string bin2pat(const std::string& bits);  // NOLINT(readability-identifier-naming)
// A row's pattern, with "0" in front when it starts light.
std::string RowPattern(const std::string& bits);

}  // namespace barcode_orv::internal
