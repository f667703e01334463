#include "support/zint_png.h"

#include <unistd.h>

#ifdef BARCODE_ORV_HAVE_ZINT
#include <zint.h>
#endif

namespace barcode_orv::bench {

std::string ZintScratchPath() { return "/dev/shm/barcode-orv-bench-" + std::to_string(getpid()) + ".png"; }

#ifdef BARCODE_ORV_HAVE_ZINT

namespace {

int ZintSymbology(ZintSymbol symbol) {
  switch (symbol) {
    case ZintSymbol::kCode128: return BARCODE_CODE128;
    case ZintSymbol::kCode39: return BARCODE_CODE39;
    case ZintSymbol::kGs1_128: return BARCODE_GS1_128;
    case ZintSymbol::kEan13: return BARCODE_EANX;
    case ZintSymbol::kEan8: return BARCODE_EANX;
    case ZintSymbol::kUpcA: return BARCODE_UPCA;
    case ZintSymbol::kUpcE: return BARCODE_UPCE;
    case ZintSymbol::kQrCode: return BARCODE_QRCODE;
    case ZintSymbol::kDataBarOmni: return BARCODE_DBAR_OMN;
    case ZintSymbol::kDataBarExpanded: return BARCODE_DBAR_EXP;
    case ZintSymbol::kDataMatrix: return BARCODE_DATAMATRIX;
    case ZintSymbol::kPdf417: return BARCODE_PDF417;
  }
  return BARCODE_CODE128;
}

}  // namespace

bool ZintAvailable() { return true; }

ZintResult ZintPng(ZintSymbol symbol, const std::string& text, const ZintSettings& settings, const std::string& path) {
  ZintResult result;
  zint_symbol* zint = ZBarcode_Create();
  zint->symbology = ZintSymbology(symbol);
  zint->scale = settings.scale;
  if (settings.height > 0) zint->height = settings.height;
  zint->show_hrt = settings.show_text ? 1 : 0;
  if (settings.option_1 >= 0) zint->option_1 = settings.option_1;
  if (settings.option_2 > 0) zint->option_2 = settings.option_2;
  if (settings.option_3 > 0) zint->option_3 = settings.option_3;
  // Element strings as this library takes them: AIs in parentheses.
  if (symbol == ZintSymbol::kDataBarExpanded || symbol == ZintSymbol::kGs1_128) {
    zint->input_mode = GS1_MODE | GS1PARENS_MODE;
  }
  const size_t length = path.copy(zint->outfile, sizeof zint->outfile - 1);
  zint->outfile[length] = '\0';
  const int status = ZBarcode_Encode_and_Print(zint, reinterpret_cast<const unsigned char*>(text.data()),
                                               static_cast<int>(text.size()), 0);
  result.ok = status < ZINT_ERROR;
  result.width = zint->bitmap_width;
  result.height = zint->bitmap_height;
  if (!result.ok) result.error = zint->errtxt;
  ZBarcode_Delete(zint);
  return result;
}

#else

bool ZintAvailable() { return false; }

ZintResult ZintPng(ZintSymbol /*symbol*/, const std::string& /*text*/, const ZintSettings& /*settings*/,
                   const std::string& /*path*/) {
  ZintResult result;
  result.error = "built without Zint";
  return result;
}

#endif

}  // namespace barcode_orv::bench
