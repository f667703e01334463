// One valid payload per symbology type, for the tests that sweep every type the build
// provides (a handle that barcode_create refuses is skipped), and the prefix of the
// symbology's failure lines.
#pragma once

#include "barcode_ffi.h"

namespace barcode_orv::testing {

struct TypeSample {
  int type;
  const char* text;
  const char* prefix;
};

inline constexpr TypeSample kTypeSamples[] = {
    {BARCODE_CODE39, "ABC-1234", "[Code39] "},
    {BARCODE_CODE93, "CODE93", "[Code93] "},
    {BARCODE_CODE128, "Hello-128", "[Code128] "},
    {BARCODE_GS1_128, "(01)04912345123459(10)ABC123", "[GS1-128] "},
    {BARCODE_NW7, "A123456A", "[NW7] "},
    {BARCODE_MATRIX2OF5, "123456", "[Matrix2of5] "},
    {BARCODE_NEC2OF5, "123456", "[NEC2of5] "},
    {BARCODE_JAN8, "4901234", "[Jan8] "},
    {BARCODE_JAN13, "490123456789", "[Jan13] "},
    {BARCODE_UPCA, "03600029145", "[UpcA] "},
    {BARCODE_UPCE, "0123456", "[UpcE] "},
    {BARCODE_ITF, "123456", "[ITF] "},
    {BARCODE_GS1_DATABAR_14, "0950110153000", "[GS1 DataBar] "},
    {BARCODE_GS1_DATABAR_LIMITED, "1501234567890", "[GS1 DataBar Limited] "},
    {BARCODE_GS1_DATABAR_EXPANDED, "(01)98898765432106(3202)012345(15)991231", "[GS1 DataBar Expanded] "},
    {BARCODE_YUBIN_CUSTOMER, "1060032-3-2-5", "[YubinCustomer] "},
    {BARCODE_QR, "https://example.com/barcode", "[QR] "},
    {BARCODE_DATAMATRIX, "Data Matrix 2026", "[DataMatrix] "},
    {BARCODE_PDF417, "PDF417 sample text", "[PDF417] "},
};
static_assert(sizeof kTypeSamples / sizeof kTypeSamples[0] == 19, "one sample per symbology type");

}  // namespace barcode_orv::testing
