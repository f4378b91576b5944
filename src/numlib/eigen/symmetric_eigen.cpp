#include "numlib/eigen/symmetric_eigen.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "numlib/eigen/plane_rotation.h"
#include "numlib/eigen/reflections.h"
#include "numlib/eigen/rotations.h"
#include "numlib/eigen/tridiagonal_form.h"

namespace vexa {

namespace {

using Direction = ColumnRotations::Direction;

// The tridiagonal matrix during the iteration: d the diagonal, e[i] joins i and i + 1.
struct Tridiagonal {
  std::span<double> d, e;

  // The end of the part that begins at `first` and is joined throughout. Not-a-number joins
  // nothing, or the iteration would never end.
  int endOfPart(int first) const {
    constexpr double unit = std::numeric_limits<double>::epsilon() / 2;
    constexpr double least = std::numeric_limits<double>::min();
    int i = first;
    for (; i + 1 < static_cast<int>(d.size()); ++i) {
      const auto at = static_cast<std::size_t>(i);
      const double neighbours = std::fabs(d[at]) + std::fabs(d[at + 1]);
      const double joint = std::fabs(e[at]);
      if (!(joint > unit * neighbours && joint > least)) break;
    }
    return i;
  }

  // The eigenvalue of the first two rows of a part that lies nearer to the first diagonal element.
  double shift(std::size_t first) const {
    const double g = (d[first + 1] - d[first]) / 2.0 / e[first];
    return d[first] - e[first] / (g + std::copysign(std::hypot(g, 1.0), g));
  }

  // One implicit QL step from `last` up to `first`: the first rotation is that of the shifted
  // matrix, each further one drives out the element that its forerunner brought in.
  void iterate(std::size_t first, std::size_t last, ColumnRotations& vectors) const {
    vectors.beginChain(static_cast<int>(last), Direction::descending);
    double x = d[last] - shift(first);
    double y = e[last - 1];
    for (std::size_t i = last; i-- > first;) {
      const PlaneRotation turn = rotationOnto(x, y);
      if (i + 1 < last) e[i + 1] = turn.length;
      const double mixed = (d[i] - d[i + 1]) * turn.s + 2.0 * turn.c * e[i];
      d[i + 1] += turn.s * mixed;
      d[i] -= turn.s * mixed;
      e[i] = turn.c * mixed - e[i];
      if (i > first) {
        x = e[i];
        y = turn.s * e[i - 1];
        e[i - 1] *= turn.c;
      }
      vectors.add(turn.c, turn.s);
    }
  }
};

Outcome iterateValues(Tridiagonal t, ColumnRotations& vectors, const InterruptTest& interrupted,
                      const SlowIteration& slow) {
  const int n = static_cast<int>(t.d.size());
  for (int value = 0; value < n; ++value) {
    if (asksToStop(interrupted)) return Outcome::interrupted;
    for (int round = 0;; ++round) {
      const int last = t.endOfPart(value);
      if (last == value) break;
      if (round == slow.patience && slow.notice) slow.notice();
      t.iterate(static_cast<std::size_t>(value), static_cast<std::size_t>(last), vectors);
      if (!vectors.applyWhenLong()) return Outcome::interrupted;
    }
  }
  return vectors.applyAll() ? Outcome::done : Outcome::interrupted;
}

}  // namespace

Outcome eigenSymmetric(MatrixView a, std::span<double> values, const InterruptTest& interrupted,
                       const SlowIteration& slow) {
  const auto n = static_cast<std::size_t>(a.rows);
  const double scale = safeScale(largestMagnitude(a.elements()));
  if (scale != 1.0)
    for (double& element : a.elements()) element *= scale;

  std::vector<double> coupling(n);
  if (!makeTridiagonal(a, values, coupling, interrupted)) return Outcome::interrupted;
  if (!accumulateReflections(a, values, interrupted)) return Outcome::interrupted;
  std::shift_left(coupling.begin(), coupling.end(), 1);

  ColumnRotations vectors(a, interrupted);
  const Outcome outcome = iterateValues({values, coupling}, vectors, interrupted, slow);
  if (scale != 1.0)
    for (double& value : values) value /= scale;
  return outcome;
}

}  // namespace vexa
