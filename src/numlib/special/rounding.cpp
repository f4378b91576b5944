#include "numlib/special/rounding.h"

#include <cmath>
#include <cstdlib>

namespace vexa {

double roundDecimals(int n, double x) {
  // The scale is defined by its products: a power of 0.1 formed this way is not the double nearest
  // to 10^n, and results show the difference, so a table of powers cannot take their place.
  const double step = n < 0 ? 0.1 : 10.0;
  double scale = 1.0;
  for (int i = std::abs(n); i > 0; --i) scale *= step;

  const double scaled = std::fabs(x) * scale;
  double whole = std::floor(scaled);
  if (whole + 0.5 <= scaled) whole += 1.0;
  return std::copysign(whole / scale, x);
}

}  // namespace vexa
