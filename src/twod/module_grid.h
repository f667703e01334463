// A rectangular matrix of modules (true = dark), addressed by column then row: the
// output of the Data Matrix and PDF417 encoders and the input of the shared painter.
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
  bool dark(int col, int row) const { return cells_[Index(col, row)] != 0; }
  void set(int col, int row, bool dark) { cells_[Index(col, row)] = dark ? 1 : 0; }

 private:
  size_t Index(int col, int row) const { return static_cast<size_t>(row) * cols_ + col; }

  int cols_ = 0;
  int rows_ = 0;
  std::vector<uint8_t> cells_;
};

// What the painter needs of any module matrix: its extent and a dark-module query. The
// query is a plain function over the matrix, not a std::function: the painter asks once a
// module, and the second indirection showed in the profile.
struct ModuleView {
  int cols = 0;
  int rows = 0;
  const void* matrix = nullptr;
  bool (*dark_at)(const void* matrix, int col, int row) = nullptr;
  // Modules of height each row takes (PDF417 rows are several modules high).
  int row_height = 1;
  // Paint each run of dark modules in a row as one rectangle (a bar), with
  // px_adjust_black added once to its width, instead of one rectangle a module.
  bool merge_runs = false;

  // Any matrix with dark(col, row); it must outlive the view.
  template <typename Matrix>
  static ModuleView Over(const Matrix& matrix, int cols, int rows) {
    ModuleView view;
    view.cols = cols;
    view.rows = rows;
    view.matrix = &matrix;
    view.dark_at = [](const void* source, int col, int row) {
      return static_cast<const Matrix*>(source)->dark(col, row);
    };
    return view;
  }
  static ModuleView Of(const ModuleGrid& grid) { return Over(grid, grid.cols(), grid.rows()); }

  bool dark(int col, int row) const { return dark_at(matrix, col, row); }
  int module_rows() const { return rows * row_height; }
};

// How modules take the box: each axis on its own (QR, PDF417), or square modules of
// the smaller fit so that a rectangular symbol keeps its proportions (Data Matrix).
enum class ModuleAspect { kStretch, kSquare };

}  // namespace barcode_orv
