// Maps a symbology type number to its class.
#include <memory>

#include "api/ffi_internal.h"
#include "databar/databar14.h"
#include "databar/databar_expanded.h"
#include "databar/databar_limited.h"
#include "linear/code128.h"
#include "linear/code39.h"
#include "linear/code93.h"
#include "linear/ean_upc.h"
#include "linear/gs1_128.h"
#include "linear/itf.h"
#include "linear/matrix2of5.h"
#include "linear/nec2of5.h"
#include "linear/nw7.h"
#include "linear/yubin_customer.h"
#include "twod/datamatrix.h"
#include "twod/pdf417.h"
#include "twod/qr.h"

namespace barcode_orv::ffi {

std::unique_ptr<BarcodeBase> MakeSymbology(int type) {
  const std::string format = "png";
  switch (type) {
    case BARCODE_CODE39: return std::make_unique<Code39>(format);
    case BARCODE_CODE93: return std::make_unique<Code93>(format);
    case BARCODE_CODE128: return std::make_unique<Code128>(format);
    case BARCODE_GS1_128: return std::make_unique<GS1_128>(format);
    case BARCODE_NW7: return std::make_unique<NW7>(format);
    case BARCODE_MATRIX2OF5: return std::make_unique<Matrix2of5>(format);
    case BARCODE_NEC2OF5: return std::make_unique<NEC2of5>(format);
    case BARCODE_JAN8: return std::make_unique<Jan8>(format);
    case BARCODE_JAN13: return std::make_unique<Jan13>(format);
    case BARCODE_UPCA: return std::make_unique<UpcA>(format);
    case BARCODE_UPCE: return std::make_unique<UpcE>(format);
    case BARCODE_ITF: return std::make_unique<ITF>(format);
    case BARCODE_GS1_DATABAR_14: return std::make_unique<GS1DataBar14>(format);
    case BARCODE_GS1_DATABAR_LIMITED: return std::make_unique<GS1DataBarLimited>(format);
    case BARCODE_GS1_DATABAR_EXPANDED: return std::make_unique<GS1DataBarExpanded>(format);
    case BARCODE_YUBIN_CUSTOMER: return std::make_unique<YubinCustomer>(format);
    case BARCODE_QR: return std::make_unique<QR>(format);
    case BARCODE_DATAMATRIX: return std::make_unique<DataMatrix>(format);
    case BARCODE_PDF417: return std::make_unique<PDF417>(format);
    default: return nullptr;  // not provided by this build
  }
}

}  // namespace barcode_orv::ffi
