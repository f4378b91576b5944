// One plane rotation, made to turn a pair of numbers onto the first axis.
#pragma once

#include <cmath>

namespace vexa {

struct PlaneRotation {
  double c = 1.0, s = 0.0;
  double length = 0.0;  // what (x, y) becomes: (length, 0)
};

// Without a length the rotation is none. Where a square would overflow, or lose digits to
// underflow, the slower function takes over: c and s must lie on the circle to the last digit.
inline PlaneRotation rotationOnto(double x, double y) {
  const double square = x * x + y * y;
  const bool safe = square > 1e-280 && square < 1e280;
  const double length = safe ? std::sqrt(square) : std::hypot(x, y);
  if (length == 0.0) return {};
  return {x / length, y / length, length};
}

}  // namespace vexa
