// Base of the GS1 DataBar symbologies: the drawing of stacked symbols, row by row from
// run-length patterns. Single-row forms draw through the linear layout of BarcodeBase1D.
#pragma once

#include <functional>
#include <string>

#include "databar/databar_common.h"
#include "linear/barcode_base_1d.h"

namespace barcode_orv {

class DataBarBase : public BarcodeBase1D {
 public:
  using BarcodeBase1D::BarcodeBase1D;

 protected:
  // How the rows share the height left above the text.
  enum class RowHeightRule {
    kShareOfBox,  // each row its share of that height by its module count
    kModules,     // rows of fixed height are that many modules tall; -1 rows split the rest
  };
  struct StackedSymbol {
    internal::DataBarRows rows;
    std::string display_text;
    RowHeightRule rule = RowHeightRule::kModules;
  };
  using StackedEncoder = std::function<StackedSymbol(const std::string& text)>;

  // The whole draw of a stacked symbol into the raster canvas or a fresh SVG document;
  // encoding errors are written as `log_prefix` + message.
  bool DrawStackedRows(const std::string& text, int x, int y, int width, int height, bool svg, const char* log_prefix,
                       const StackedEncoder& encode);

 private:
  // The natural box of the rows: rows of a fixed height that many modules, the others
  // NaturalBarModules(), with the text band under them (TakeNaturalBox).
  bool TakeStackedNaturalBox(const StackedSymbol& symbol, int* width, int* height, const char* log_prefix);
  // Warns when the rows (`widest` modules) or their text line leave the box.
  void WarnUnlessInside(const StackedSymbol& symbol, int widest, int x, int y, int width, int height,
                        const char* log_prefix) const;
  bool DrawStackedRaster(const StackedSymbol& symbol, int x, int y, int width, int height);
  bool DrawStackedSvg(const StackedSymbol& symbol, int x, int y, int width, int height);
  // Bars of every row, and the drawn symbol width, for the box.
  std::vector<SDL_FRect> PlaceRows(const StackedSymbol& symbol, int x, int y, int width, int height,
                                   int* symbol_width) const;
};

}  // namespace barcode_orv
