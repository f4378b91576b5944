#pragma once

// From wider numbers to the 32-bit coordinates of a drawing.

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace vexa {

inline constexpr std::int32_t largestCoordinate = 2147483647;

// What 32 bits do not hold becomes the nearest bound; not-a-number becomes 0.
constexpr std::int32_t saturated(std::int64_t v) {
  constexpr std::int64_t bound = largestCoordinate;
  return static_cast<std::int32_t>(std::clamp(v, -bound, bound));
}

// Toward zero.
inline std::int32_t truncated(double v) {
  constexpr double bound = largestCoordinate;
  return std::isnan(v) ? 0 : static_cast<std::int32_t>(std::clamp(v, -bound, bound));
}

}  // namespace vexa
