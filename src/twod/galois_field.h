// GF(256) arithmetic for the Reed-Solomon codes of the matrix symbols, parameterised by
// the field polynomial: QR Code uses x^8 + x^4 + x^3 + x^2 + 1 (0x11D, ISO/IEC 18004),
// Data Matrix x^8 + x^5 + x^3 + x^2 + 1 (0x12D, ISO/IEC 16022); 2 generates both.
#pragma once

#include <array>
#include <cstdint>

namespace barcode_orv::internal {

template <int Polynomial>
struct GaloisField256 {
  std::array<uint8_t, 512> exp{};  // doubled, so exp[log a + log b] needs no reduction
  std::array<uint8_t, 256> log{};

  constexpr GaloisField256() {
    int value = 1;
    for (int power = 0; power < 255; ++power) {
      exp[power] = static_cast<uint8_t>(value);
      log[value] = static_cast<uint8_t>(power);
      value <<= 1;
      if (value & 0x100) value ^= Polynomial;
    }
    for (int power = 255; power < 512; ++power) exp[power] = exp[power - 255];
  }

  constexpr uint8_t Multiply(uint8_t a, uint8_t b) const {
    if (a == 0 || b == 0) return 0;
    return exp[log[a] + log[b]];
  }
};

inline constexpr GaloisField256<0x11D> kQrField{};
inline constexpr GaloisField256<0x12D> kDataMatrixField{};

}  // namespace barcode_orv::internal
