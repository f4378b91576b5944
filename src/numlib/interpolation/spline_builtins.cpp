#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "interp/interpreter_state.h"
#include "numlib/interpolation/cubic_spline.h"
#include "numlib/interpolation/hermite.h"
#include "numlib/interpolation/interpolation_builtins.h"
#include "values/numeric_arguments.h"

namespace vexa {

namespace {

constexpr std::string_view notIncreasing = "x-data must be in increasing values";

// Two points at least; said after the shapes.
bool checkCount(const DataArgument& x) {
  if (x.size() >= 2) return true;
  refuse("Too few data points for interpolation");
  return false;
}

// Key 34 for a second kind of ends.
SplineEnds readEnds() {
  SplineEnds ends;
  for (WordReader words({"clamped=", "notaknot", "periodic"}); words.next();) {
    if (ends.kind != SplineEnd::natural) raiseError(ErrorKey::invalidData);
    ends.kind = words.index() == 0   ? SplineEnd::clamped
                : words.index() == 1 ? SplineEnd::notAKnot
                                     : SplineEnd::periodic;
    if (ends.kind != SplineEnd::clamped) continue;
    expectChar(',');
    ends.firstSlope = evalScalarArg();
    expectChar(',');
    ends.lastSlope = evalScalarArg();
  }
  return ends;
}

// Whether a periodic spline has as many points as it needs, and meets itself at the ends.
bool closesUp(std::span<const double> y) {
  double largest = 0;
  for (const double value : y) largest = std::max(largest, std::fabs(value));
  const double gap = std::fabs(y.front() - y.back());
  return y.size() >= 3 && gap <= presetValue("tol#") * 1e-10 * largest;
}

// spline(x, y, m [, words]), from m on.
double makeSpline(DataArgument& x, DataArgument& y) {
  const std::string name = readResultName();
  const SplineEnds ends = readEnds();
  if (!requireVectors({&x, &y}) || !requireDistinct({name}, {x.matrix(), y.matrix()}) ||
      !checkCount(x))
    return 0.0;
  const PointTable table{x.elements(), y.elements()};
  const double slopes[] = {ends.firstSlope, ends.lastSlope};
  if (!requireFinite(table.x) || !requireFinite(table.y) || !requireFinite(slopes)) return 0.0;
  if (!strictlyIncreasing(table.x)) return refuse(notIncreasing);
  if (ends.kind == SplineEnd::periodic && !closesUp(table.y)) {
    raiseError(ErrorKey::invalidData);
    return 0.0;
  }
  std::vector<double> m(table.size());
  splineMoments(table, ends, m);
  if (!requireFinite(m)) return 0.0;
  storeRow(name, m);
  return noResult();
}

// splint(x, y, m, xv [, word]), from m on.
double evaluateSpline(DataArgument& x, DataArgument& y) {
  DataArgument m = readData();
  expectChar(',');
  const ElementwiseNumber at = readElementwise();
  SplineQuantity quantity = SplineQuantity::value;
  for (WordReader words({"slope", "curvature", "integral"}); words.next();) {
    if (quantity != SplineQuantity::value) raiseError(ErrorKey::invalidData);
    quantity = words.index() == 0   ? SplineQuantity::slope
               : words.index() == 1 ? SplineQuantity::curvature
                                    : SplineQuantity::integral;
  }
  if (!requireVectors({&x, &y, &m}) || !checkCount(x)) return 0.0;
  const PointTable table{x.elements(), y.elements()};
  const CubicSpline spline(table, m.elements(), quantity);
  return applyElementwise({&at, 1}, [&](std::span<const double> arguments) {
    const double value = spline(arguments[0]);
    if (std::isfinite(value)) return value;
    if (std::isfinite(arguments[0]) && !strictlyIncreasing(table.x)) return refuse(notIncreasing);
    raiseError(ErrorKey::floatingPoint);
    return 0.0;
  });
}

}  // namespace

double splineBuiltin() {
  const bool makes = interpreter().currentBuiltin == builtinCode("spline");
  expectChar('(');
  DataArgument x = readData();
  expectChar(',');
  DataArgument y = readData();
  expectChar(',');
  return makes ? makeSpline(x, y) : evaluateSpline(x, y);
}

}  // namespace vexa
