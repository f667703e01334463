#include "core/fixed_format.h"

#include <charconv>
#include <cmath>
#include <cstdint>

namespace barcode_orv {
namespace {

void AppendWithToChars(std::string& out, double value) {
  char buffer[400];  // the longest fixed-notation double with two decimals fits
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 2);
  out.append(buffer, result.ptr);
}

}  // namespace

void AppendFixed2(std::string& out, double value) {
  // |value| = m / 2^shift exactly, m a 53-bit integer, so 100 |value| rounds exactly in
  // integers: to nearest, ties to even, as std::to_chars does. Zero, huge, tiny and
  // non-finite values go to std::to_chars itself.
  int exponent = 0;
  const double mantissa = std::frexp(std::fabs(value), &exponent);
  const int shift = 53 - exponent;
  if (!std::isfinite(value) || value == 0.0 || shift < 1 || shift > 63) {
    AppendWithToChars(out, value);
    return;
  }
  const auto m = static_cast<uint64_t>(std::ldexp(mantissa, 53));
  const uint64_t scaled = m * 100;  // below 2^60
  uint64_t hundredths = scaled >> shift;
  const uint64_t remainder = scaled & ((uint64_t{1} << shift) - 1);
  const uint64_t half = uint64_t{1} << (shift - 1);
  if (remainder > half || (remainder == half && (hundredths & 1U) != 0)) ++hundredths;

  char buffer[32];
  char* const end = buffer + sizeof buffer;
  char* p = end;
  *--p = static_cast<char>('0' + hundredths % 10);
  *--p = static_cast<char>('0' + hundredths / 10 % 10);
  *--p = '.';
  uint64_t whole = hundredths / 100;
  do {
    *--p = static_cast<char>('0' + whole % 10);
    whole /= 10;
  } while (whole != 0);
  if (std::signbit(value)) *--p = '-';
  out.append(p, end);
}

}  // namespace barcode_orv
