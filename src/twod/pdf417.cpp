#include "twod/pdf417.h"

#include <exception>
#include <utility>

#include "core/log.h"

namespace barcode_orv {

PDF417::PDF417(std::string output_format) : BarcodeBase2D(std::move(output_format)) {}

PDF417::PDF417(SDL_Renderer* canvas) : BarcodeBase2D(canvas) {}

internal_pdf417::Symbol PDF417::Encode(const std::vector<uint8_t>& data) const {
  if (data.empty()) return {};
  return internal_pdf417::EncodePdf417(data, settings_);
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

bool PDF417::Draw(const std::vector<uint8_t>& data, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(data, x, y, width, height);
  internal_pdf417::Symbol symbol;
  if (!EncodeReporting(data, symbol)) return false;
  bool on_caller_canvas = false;
  if (!BeginRaster(x, y, width, height, on_caller_canvas)) return false;
  PaintRasterModules(ModuleView::Of(symbol.modules), x, y, width, height, ModuleAspect::kStretch);
  EndRaster(on_caller_canvas);
  return true;
}

bool PDF417::DrawSvg(const std::vector<uint8_t>& data, int /*x*/, int /*y*/, int width, int height) {
  internal_pdf417::Symbol symbol;
  if (!EncodeReporting(data, symbol) || symbol.modules.empty()) return false;
  PaintSvgModules(ModuleView::Of(symbol.modules), width, height, ModuleAspect::kStretch);
  return true;
}

}  // namespace barcode_orv
