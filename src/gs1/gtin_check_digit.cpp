#include "gs1/gtin_check_digit.h"

#include <stdexcept>

namespace barcode_orv::internal {

int Gs1Mod10(std::string_view digits) {
  int sum = 0;
  const size_t n = digits.size();
  for (size_t i = 0; i < n; ++i) {
    const int digit = digits[i] - '0';
    sum += digit * ((n - 1 - i) % 2 == 0 ? 3 : 1);  // the rightmost digit weighs 3
  }
  return (10 - sum % 10) % 10;
}

std::string GtinCheckDigit13(std::string_view digits) {
  if (digits.size() != 13) throw std::runtime_error("CalculateCheckDigit requires exactly 13 digits");
  // Thirteen digits: weighing 3 from the right is weighing 3 from the left.
  return std::string(1, static_cast<char>('0' + Gs1Mod10(digits)));
}

}  // namespace barcode_orv::internal
