// GS1 modulo-10 check digit of a 13-digit GTIN body (DataBar-14 human-readable text).
#pragma once

#include <string>
#include <string_view>

namespace barcode_orv::internal {

// Weights 3, 1, 3, ... from the left; check = (10 - sum mod 10) mod 10, as one digit.
// Throws std::runtime_error unless `digits` has exactly 13 characters.
std::string GtinCheckDigit13(std::string_view digits);

}  // namespace barcode_orv::internal
