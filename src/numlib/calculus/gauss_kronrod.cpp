#include <algorithm>
#include <array>
#include <boost/math/quadrature/gauss_kronrod.hpp>
#include <cmath>
#include <limits>
#include <vector>

#include "numlib/calculus/integral.h"

namespace vexa {

namespace {

using Kronrod = boost::math::quadrature::gauss_kronrod<double, 21>;
using Gauss = boost::math::quadrature::gauss<double, 10>;

constexpr double unitRoundoff = std::numeric_limits<double>::epsilon() / 2;
constexpr int mostPieces = 1'000'000;  // memory for more is not asked for
constexpr std::size_t half = 10;       // nodes on either side of the middle

struct Piece {
  double a = 0, b = 0;
  double value = 0;
  double magnitude = 0;  // the integral of |f|
  double error = 0;
};

// f at the nodes: the middle one, then pairs outward, as Boost orders the nodes.
struct NodeValues {
  double middle = 0;
  std::array<double, half> left{}, right{};
};

// The error estimate of QUADPACK: where the pair agrees far better than f varies, better still.
double sharpen(double difference, double variation, double magnitude) {
  double error = difference;
  if (variation > 0 && error > 0)
    error = variation * std::min(1.0, std::pow(200 * error / variation, 1.5));
  return std::max(error, 100 * unitRoundoff * magnitude);
}

double variationOf(const NodeValues& f, double mean) {
  const auto& weights = Kronrod::weights();
  double sum = weights[0] * std::fabs(f.middle - mean);
  for (std::size_t i = 0; i < half; ++i)
    sum += weights[i + 1] * (std::fabs(f.left[i] - mean) + std::fabs(f.right[i] - mean));
  return sum;
}

Piece applyRule(RealFunction f, double a, double b) {
  const auto& nodes = Kronrod::abscissa();
  const auto& weights = Kronrod::weights();
  const auto& gaussWeights = Gauss::weights();
  const double centre = a + (b - a) / 2, scale = (b - a) / 2;
  NodeValues values;
  values.middle = f(centre);
  double kronrod = weights[0] * values.middle, gauss = 0;
  double magnitude = weights[0] * std::fabs(values.middle);
  for (std::size_t i = 0; i < half; ++i) {
    const double offset = scale * nodes[i + 1];
    const double left = values.left[i] = f(centre - offset);
    const double right = values.right[i] = f(centre + offset);
    kronrod += weights[i + 1] * (left + right);
    magnitude += weights[i + 1] * (std::fabs(left) + std::fabs(right));
    if (i % 2 == 0) gauss += gaussWeights[i / 2] * (left + right);
  }
  const double length = std::fabs(scale);
  Piece piece{a, b, kronrod * scale, magnitude * length, 0};
  piece.error = sharpen(std::fabs(kronrod - gauss) * length,
                        variationOf(values, kronrod / 2) * length, piece.magnitude);
  return piece;
}

bool liesBetween(double a, double x, double b) { return (a < x && x < b) || (b < x && x < a); }

// Whether all nodes of a piece lie strictly inside, so that no end is evaluated.
bool canBeSampled(double a, double b) {
  const double centre = a + (b - a) / 2;
  const double outermost = (b - a) / 2 * Kronrod::abscissa()[half];
  return liesBetween(a, centre - outermost, b) && liesBetween(a, centre + outermost, b);
}

// What an interval is worth that is too short for the nodes, with the middle for all of it. Between
// neighbouring numbers the middle is one of them: there is nothing else.
Integral integrateShort(RealFunction f, double a, double b) {
  const double value = f(a + (b - a) / 2) * (b - a);
  return {value, std::isfinite(value) ? IntegralOutcome::done : IntegralOutcome::notFinite};
}

struct Totals {
  double value = 0, magnitude = 0, error = 0;
};

// Added up anew each time: corrections of a running sum would leave their rounding behind.
Totals addUp(const std::vector<Piece>& pieces) {
  Totals totals;
  for (const Piece& piece : pieces) {
    totals.value += piece.value;
    totals.magnitude += piece.magnitude;
    totals.error += piece.error;
  }
  return totals;
}

bool accepted(const Totals& totals, double accuracy) {
  return totals.error <= accuracy * std::fabs(totals.value) ||
         totals.error <= 1e-13 * totals.magnitude;
}

// The subintervals, the one with the largest error on top of the heap.
class PieceHeap {
 public:
  explicit PieceHeap(const Piece& whole) : m_pieces{whole}, m_totals(addUp(m_pieces)) {}

  std::size_t size() const { return m_pieces.size(); }
  const Piece& worst() const { return m_pieces.front(); }
  const Totals& totals() const { return m_totals; }

  void replaceWorst(const Piece& left, const Piece& right) {
    std::ranges::pop_heap(m_pieces, {}, &Piece::error);
    m_pieces.back() = left;
    std::ranges::push_heap(m_pieces, {}, &Piece::error);
    m_pieces.push_back(right);
    std::ranges::push_heap(m_pieces, {}, &Piece::error);
    // Of many pieces a few more or less are no matter, but adding them all up each time would be.
    if (m_pieces.size() % (m_pieces.size() / 64 + 1) == 0) m_totals = addUp(m_pieces);
  }

 private:
  std::vector<Piece> m_pieces;
  Totals m_totals;
};

}  // namespace

Integral integrate(RealFunction f, double a, double b, double accuracy, int maxPieces) {
  if (a == b) return {};
  if (!canBeSampled(a, b)) return integrateShort(f, a, b);
  const auto limit = static_cast<std::size_t>(std::clamp(maxPieces, 1, mostPieces));
  const Piece whole = applyRule(f, a, b);
  if (!std::isfinite(whole.magnitude)) return {whole.value, IntegralOutcome::notFinite};
  PieceHeap heap(whole);
  while (!accepted(heap.totals(), accuracy)) {
    const Piece worst = heap.worst();
    const double centre = worst.a + (worst.b - worst.a) / 2;
    if (heap.size() == limit || !canBeSampled(worst.a, centre) || !canBeSampled(centre, worst.b))
      return {heap.totals().value, IntegralOutcome::notReached};
    const Piece left = applyRule(f, worst.a, centre);
    const Piece right = applyRule(f, centre, worst.b);
    if (!std::isfinite(left.magnitude + right.magnitude))
      return {heap.totals().value, IntegralOutcome::notFinite};
    heap.replaceWorst(left, right);
  }
  return {heap.totals().value, IntegralOutcome::done};
}

}  // namespace vexa
