// The table of symbologies, and the factory it drives.
#include "api/symbology_registry.h"

#include <iterator>
#include <type_traits>
#include <utility>

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
namespace {

template <typename Class>
std::unique_ptr<BarcodeBase> Make(std::string output_format) {
  return std::make_unique<Class>(std::move(output_format));
}

// The parts whose class `Class` derives from: those its objects can serve.
template <typename Class, int... kBits>
constexpr uint32_t ClassParts(std::integer_sequence<int, kBits...> /*bits*/) {
  return ((std::is_base_of_v<typename PartClass<1U << kBits>::type, Class> ? 1U << kBits : 0U) | ...);
}

template <typename Class>
constexpr Symbology Row(int type, const char* name, const char* description, Family family, uint32_t draws,
                        uint32_t options) {
  return {type,  name,    description,  family,
          draws, options, &Make<Class>, ClassParts<Class>(std::make_integer_sequence<int, kPartCount>())};
}

constexpr Family kLinear = Family::kLinear;
constexpr Family kEanUpc = Family::kEanUpc;
constexpr Family kDataBar = Family::kDataBar;
constexpr Family kTwoD = Family::kTwoD;
constexpr uint32_t kNone = 0;

constexpr Symbology kSymbologies[] = {
    Row<Code39>(BARCODE_CODE39, "code39", "Code 39", kLinear, kNone, kTextLine | kStartStop),
    Row<Code93>(BARCODE_CODE93, "code93", "Code 93", kLinear, kNone, kTextLine),
    Row<Code128>(BARCODE_CODE128, "code128", "Code 128", kLinear, kNone, kTextLine | kCodeSet),
    Row<GS1_128>(BARCODE_GS1_128, "gs1-128", "GS1-128", Family::kGs1_128, kDrawConvenience, kTextLine),
    Row<NW7>(BARCODE_NW7, "nw7", "NW-7 (Codabar)", kLinear, kNone, kTextLine | kStartStop),
    Row<Matrix2of5>(BARCODE_MATRIX2OF5, "matrix2of5", "Matrix 2 of 5", kLinear, kNone, kTextLine),
    Row<NEC2of5>(BARCODE_NEC2OF5, "nec2of5", "NEC 2 of 5", kLinear, kNone, kTextLine),
    Row<Jan8>(BARCODE_JAN8, "jan8", "JAN-8 (EAN-8)", kEanUpc, kNone, kTextLine | kExtendedGuard),
    Row<Jan13>(BARCODE_JAN13, "jan13", "JAN-13 (EAN-13)", kEanUpc, kNone, kTextLine | kExtendedGuard),
    Row<UpcA>(BARCODE_UPCA, "upca", "UPC-A", kEanUpc, kNone, kTextLine | kExtendedGuard),
    Row<UpcE>(BARCODE_UPCE, "upce", "UPC-E", kEanUpc, kNone, kTextLine | kExtendedGuard),
    Row<ITF>(BARCODE_ITF, "itf", "Interleaved 2 of 5", kLinear, kNone, kTextLine | kBearerBars),
    Row<GS1DataBar14>(BARCODE_GS1_DATABAR_14, "databar14", "GS1 DataBar (omnidirectional family)", kDataBar, kNone,
                      kTextLine | kDataBar14Form),
    Row<GS1DataBarLimited>(BARCODE_GS1_DATABAR_LIMITED, "databar-limited", "GS1 DataBar Limited", kDataBar, kNone,
                           kTextLine),
    Row<GS1DataBarExpanded>(BARCODE_GS1_DATABAR_EXPANDED, "databar-expanded", "GS1 DataBar Expanded", kDataBar,
                            kDrawStacked, kTextLine | kExpandedForm),
    Row<YubinCustomer>(BARCODE_YUBIN_CUSTOMER, "yubin", "Japan Post customer barcode", Family::kPostal, kDrawYubin,
                       kTextLine),
    Row<QR>(BARCODE_QR, "qr", "QR Code", kTwoD, kDraw2D, kStringEncoding | kQrSettings | kGs1Mode),
    Row<DataMatrix>(BARCODE_DATAMATRIX, "datamatrix", "Data Matrix", kTwoD, kDraw2D,
                    kStringEncoding | kDataMatrixSettings | kGs1Mode),
    Row<PDF417>(BARCODE_PDF417, "pdf417", "PDF417", kTwoD, kDraw2D, kStringEncoding | kPdf417Settings),
};

// Each row sits at its type's index, names itself uniquely and takes only parts its class
// serves: the downcasts of ObjectFor rest on this.
constexpr bool TableHolds() {
  for (size_t i = 0; i < std::size(kSymbologies); ++i) {
    const Symbology& row = kSymbologies[i];
    if (row.type != static_cast<int>(i) ||
        (row.draws & ~(kDraw2D | kDrawYubin | kDrawConvenience | kDrawStacked)) != 0 ||
        ((row.draws | row.options) & ~row.class_parts) != 0) {
      return false;
    }
    for (size_t j = 0; j < i; ++j) {
      if (std::string_view(kSymbologies[j].name) == row.name) return false;
    }
  }
  return true;
}
static_assert(TableHolds(), "a row out of place, named twice, or taking a part its class does not serve");

}  // namespace

int SymbologyCount() { return static_cast<int>(std::size(kSymbologies)); }

const Symbology* FindSymbology(int type) {
  return type >= 0 && type < SymbologyCount() ? &kSymbologies[type] : nullptr;
}

const Symbology* FindSymbology(std::string_view name) {
  for (const Symbology& row : kSymbologies) {
    if (name == row.name) return &row;
  }
  return nullptr;
}

const Symbology* SymbologyOf(const BarcodeHandle* handle) {
  return handle == nullptr || !handle->object ? nullptr : FindSymbology(handle->type);
}

std::unique_ptr<BarcodeBase> MakeSymbology(int type) {
  const Symbology* row = FindSymbology(type);
  return row == nullptr || row->make == nullptr ? nullptr : row->make("png");
}

}  // namespace barcode_orv::ffi

// ---- The registry for hosts ----

extern "C" {

int barcode_type_count(void) { return barcode_orv::ffi::SymbologyCount(); }

const char* barcode_type_name(int type) {
  const barcode_orv::ffi::Symbology* row = barcode_orv::ffi::FindSymbology(type);
  return row == nullptr ? "" : row->name;
}

const char* barcode_type_description(int type) {
  const barcode_orv::ffi::Symbology* row = barcode_orv::ffi::FindSymbology(type);
  return row == nullptr ? "" : row->description;
}

int barcode_type_from_name(const char* name) {
  const barcode_orv::ffi::Symbology* row =
      name == nullptr ? nullptr : barcode_orv::ffi::FindSymbology(std::string_view(name));
  return row == nullptr ? -1 : row->type;
}

int barcode_type_accepts(int type, const char* function) {
  const barcode_orv::ffi::Symbology* row = barcode_orv::ffi::FindSymbology(type);
  if (row == nullptr || function == nullptr) return 0;
  const uint32_t part = barcode_orv::ffi::PartOf(function);
  return part != barcode_orv::ffi::kNoPart && row->Takes(part) ? 1 : 0;
}

}  // extern "C"
