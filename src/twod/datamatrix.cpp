#include "twod/datamatrix.h"

#include <exception>
#include <stdexcept>
#include <utility>

#include "core/log.h"
#include "twod/eci.h"

namespace barcode_orv {

DataMatrix::DataMatrix(std::string output_format) : BarcodeBase2D(std::move(output_format)) {}

DataMatrix::DataMatrix(SDL_Renderer* canvas) : BarcodeBase2D(canvas) {}

internal::DataMatrixSymbol DataMatrix::Encode(const std::vector<uint8_t>& data) const {
  if (data.empty()) return {};
  if (standard_profile && !unknown_size_.empty()) throw std::runtime_error("Unknown size '" + unknown_size_ + "'");
  const std::string eci_problem = internal::EciProblem(GetEci());
  if (!eci_problem.empty()) throw std::runtime_error(eci_problem);
  internal::DataMatrixOptions options;
  options.gs1 = GetGs1();
  options.eci = GetEci();
  return internal::EncodeDataMatrix(data, code_size_, static_cast<internal::Encodation>(encode_scheme_), options);
}

bool DataMatrix::EncodeReporting(const std::vector<uint8_t>& data, internal::DataMatrixSymbol& symbol) const {
  try {
    symbol = Encode(data);
    return true;
  } catch (const std::exception& error) {
    log::Error(std::string("[DataMatrix] ") + error.what());
    return false;
  }
}

bool DataMatrix::Draw(const std::vector<uint8_t>& data, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(data, x, y, width, height);
  internal::DataMatrixSymbol symbol;
  if (!EncodeReporting(data, symbol)) return false;
  if (WantsNaturalBox() && !TakeModulesNaturalBox(ModuleView::Of(symbol.modules), &width, &height)) return false;
  bool on_caller_canvas = false;
  if (!BeginRaster(x, y, width, height, on_caller_canvas)) return false;
  if (!PaintRasterModules(ModuleView::Of(symbol.modules), x, y, width, height, ModuleAspect::kSquare)) return false;
  EndRaster(on_caller_canvas);
  return true;
}

bool DataMatrix::DrawSvg(const std::vector<uint8_t>& data, int /*x*/, int /*y*/, int width, int height) {
  internal::DataMatrixSymbol symbol;
  if (!EncodeReporting(data, symbol) || symbol.modules.empty()) return false;
  if (WantsNaturalBox() && !TakeModulesNaturalBox(ModuleView::Of(symbol.modules), &width, &height)) return false;
  return PaintSvgModules(ModuleView::Of(symbol.modules), width, height, ModuleAspect::kSquare);
}

}  // namespace barcode_orv
