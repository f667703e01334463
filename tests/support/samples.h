// One valid payload per symbology type, for the tests that sweep every type the build
// provides (a handle that barcode_create refuses is skipped).
#pragma once

#include "barcode_ffi.h"

namespace barcode_orv::testing {

struct TypeSample {
  int type;
  const char* text;
};

inline constexpr TypeSample kTypeSamples[] = {
    {BARCODE_CODE39, "ABC-1234"},
    {BARCODE_CODE93, "CODE93"},
    {BARCODE_CODE128, "Hello-128"},
    {BARCODE_GS1_128, "(01)04912345123459(10)ABC123"},
    {BARCODE_NW7, "A123456A"},
    {BARCODE_MATRIX2OF5, "123456"},
    {BARCODE_NEC2OF5, "123456"},
    {BARCODE_JAN8, "4901234"},
    {BARCODE_JAN13, "490123456789"},
    {BARCODE_UPCA, "03600029145"},
    {BARCODE_UPCE, "0123456"},
    {BARCODE_ITF, "123456"},
    {BARCODE_GS1_DATABAR_14, "0950110153000"},
    {BARCODE_GS1_DATABAR_LIMITED, "1501234567890"},
    {BARCODE_GS1_DATABAR_EXPANDED, "(01)98898765432106(3202)012345(15)991231"},
    {BARCODE_YUBIN_CUSTOMER, "1060032-3-2-5"},
    {BARCODE_QR, "https://example.com/barcode"},
    {BARCODE_DATAMATRIX, "Data Matrix 2026"},
    {BARCODE_PDF417, "PDF417 sample text"},
};
static_assert(sizeof kTypeSamples / sizeof kTypeSamples[0] == 19, "one sample per symbology type");

}  // namespace barcode_orv::testing
