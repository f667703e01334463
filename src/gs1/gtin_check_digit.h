// GS1 modulo-10 check digits: the GTIN family, EAN/UPC symbols and the numeric check
// digits of GS1 application identifiers.
#pragma once

#include <string>
#include <string_view>

namespace barcode_orv::internal {

// Check digit of `digits` (the digits before it): weights 3, 1, 3, ... from the right,
// check = (10 - sum mod 10) mod 10. Characters are not checked to be digits.
int Gs1Mod10(std::string_view digits);

// Weights 3, 1, 3, ... from the left; check = (10 - sum mod 10) mod 10, as one digit.
// Throws std::runtime_error unless `digits` has exactly 13 characters.
std::string GtinCheckDigit13(std::string_view digits);

}  // namespace barcode_orv::internal
