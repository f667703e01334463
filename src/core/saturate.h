// Conversions to int that saturate at the ends of its range instead of reaching the
// undefined behaviour of an out-of-range conversion or a signed overflow. Box and
// coordinate arithmetic is done in int64_t or double and narrowed once, here.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace barcode_orv {

// `value` clamped to the int range.
inline int ClampToInt(int64_t value) {
  return static_cast<int>(std::clamp<int64_t>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

// The integer part of `value` (truncated toward zero, as static_cast does), saturated to
// the int range; NaN gives 0.
inline int TruncateToInt(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 2147483647.0) return std::numeric_limits<int>::max();
  if (value <= -2147483648.0) return std::numeric_limits<int>::min();
  return static_cast<int>(value);
}

}  // namespace barcode_orv
