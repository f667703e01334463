#include "databar/gtin_check_digit.h"

#include <stdexcept>

namespace barcode_orv::internal {

std::string GtinCheckDigit13(std::string_view digits) {
  if (digits.size() != 13) throw std::runtime_error("CalculateCheckDigit requires exactly 13 digits");
  int sum = 0;
  for (size_t i = 0; i < digits.size(); ++i) {
    const int digit = digits[i] - '0';  // characters are not checked to be digits
    sum += digit * (i % 2 == 0 ? 3 : 1);
  }
  const int check = (10 - sum % 10) % 10;
  return std::string(1, static_cast<char>('0' + check));
}

}  // namespace barcode_orv::internal
