#include "twod/pdf417.h"

#include <exception>
#include <stdexcept>
#include <utility>

#include "core/log.h"
#include "twod/eci.h"

namespace barcode_orv {

PDF417::PDF417(std::string output_format) : BarcodeBase2D(std::move(output_format)) {}

PDF417::PDF417(SDL_Renderer* canvas) : BarcodeBase2D(canvas) {}

internal_pdf417::Symbol PDF417::Encode(const std::vector<uint8_t>& data) const {
  if (data.empty()) return {};
  const std::string eci_problem = internal::EciProblem(GetEci());
  if (!eci_problem.empty()) throw std::runtime_error(eci_problem);
  internal_pdf417::Settings settings = settings_;
  settings.eci = GetEci();
  return internal_pdf417::EncodePdf417(data, settings);
}

internal_pdf417::Symbol PDF417::CalPDF417(const std::string& text) const {
  return Encode(ConvertStringToBytes(text, GetStringEncoding()));
}

bool PDF417::EncodeReporting(const std::vector<uint8_t>& data, internal_pdf417::Symbol& symbol) const {
  try {
    symbol = Encode(data);
    return true;
  } catch (const std::exception& error) {
    log::Error(std::string("[PDF417] ") + error.what());
    return false;
  }
}

namespace {

// One grid row a symbol row, row_height modules high; bars painted whole.
ModuleView RowsOf(const internal_pdf417::Symbol& symbol, int row_height) {
  ModuleView view = ModuleView::Of(symbol.modules);
  view.row_height = row_height;
  view.merge_runs = true;
  return view;
}

}  // namespace

bool PDF417::Draw(const std::vector<uint8_t>& data, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(data, x, y, width, height);
  internal_pdf417::Symbol symbol;
  if (!EncodeReporting(data, symbol)) return false;
  if (WantsNaturalBox() && !TakeModulesNaturalBox(RowsOf(symbol, settings_.row_height), &width, &height)) {
    return false;
  }
  bool on_caller_canvas = false;
  if (!BeginRaster(x, y, width, height, on_caller_canvas)) return false;
  if (!PaintRasterModules(RowsOf(symbol, settings_.row_height), x, y, width, height, ModuleAspect::kStretch)) {
    return false;
  }
  EndRaster(on_caller_canvas);
  return true;
}

bool PDF417::DrawSvg(const std::vector<uint8_t>& data, int /*x*/, int /*y*/, int width, int height) {
  internal_pdf417::Symbol symbol;
  if (!EncodeReporting(data, symbol) || symbol.modules.empty()) return false;
  if (WantsNaturalBox() && !TakeModulesNaturalBox(RowsOf(symbol, settings_.row_height), &width, &height)) {
    return false;
  }
  return PaintSvgModules(RowsOf(symbol, settings_.row_height), width, height, ModuleAspect::kStretch);
}

}  // namespace barcode_orv
