// The one matrix of modules (true = dark), addressed by column then row: the output of
// the matrix and stacked encoders and the input of the painters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace barcode_orv {

class ModuleGrid {
 public:
  ModuleGrid() = default;
  ModuleGrid(int cols, int rows) : cols_(cols), rows_(rows), cells_(static_cast<size_t>(cols) * rows, 0) {}

  int cols() const { return cols_; }
  int rows() const { return rows_; }
  bool empty() const { return cols_ == 0 || rows_ == 0; }
  bool contains(int col, int row) const { return col >= 0 && row >= 0 && col < cols_ && row < rows_; }
  bool dark(int col, int row) const { return cells_[Index(col, row)] != 0; }
  void set(int col, int row, bool dark) { cells_[Index(col, row)] = dark ? 1 : 0; }
  // Row by row, one byte a module.
  const uint8_t* cells() const { return cells_.data(); }

 private:
  size_t Index(int col, int row) const { return static_cast<size_t>(row) * cols_ + col; }

  int cols_ = 0;
  int rows_ = 0;
  std::vector<uint8_t> cells_;
};

// What the painter needs of any module matrix: its extent and its cells, row by row, one
// byte a module (non-zero: dark). The painter reads them directly; a call a module
// showed in the profile.
struct ModuleView {
  int cols = 0;
  int rows = 0;
  const uint8_t* cells = nullptr;  // owned by the matrix, which must outlive the view
  // Modules of height each row takes (PDF417 rows are several modules high).
  int row_height = 1;
  // Paint each run of dark modules in a row as one rectangle (a bar), with
  // px_adjust_black added once to its width, instead of one rectangle a module.
  bool merge_runs = false;

  static ModuleView Of(const ModuleGrid& grid) { return {grid.cols(), grid.rows(), grid.cells()}; }

  bool dark(int col, int row) const { return cells[static_cast<size_t>(row) * cols + col] != 0; }
  int module_rows() const { return rows * row_height; }
};

// How modules take the box: each axis on its own (QR, PDF417), or square modules of
// the smaller fit so that a rectangular symbol keeps its proportions (Data Matrix).
enum class ModuleAspect { kStretch, kSquare };

}  // namespace barcode_orv
