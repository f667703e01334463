#include "reference/zint_reference.h"

#include <zint.h>

#include <cstring>

namespace barcode_orv::bench {

bool ZintEan13Png(const std::string& text, const std::string& path) {
  zint_symbol* symbol = ZBarcode_Create();
  if (symbol == nullptr) return false;
  symbol->symbology = BARCODE_EANX;
  std::strncpy(symbol->outfile, path.c_str(), sizeof symbol->outfile - 1);
  const int status = ZBarcode_Encode_and_Print(symbol, reinterpret_cast<const unsigned char*>(text.c_str()),
                                               static_cast<int>(text.size()), 0);
  ZBarcode_Delete(symbol);
  return status < ZINT_ERROR;
}

}  // namespace barcode_orv::bench
