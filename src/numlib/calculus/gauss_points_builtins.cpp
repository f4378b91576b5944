#include "numlib/calculus/gauss_points_builtins.h"

#include <array>
#include <optional>
#include <string>

#include "interp/errors.h"
#include "numlib/calculus/gauss_points.h"
#include "values/argument_readers.h"
#include "values/numeric_arguments.h"

namespace vexa {

namespace {

struct Limits {
  double from, to;
};

// The limits of Legendre's points, if there are any.
std::optional<Limits> readLimits() {
  if (!moreBeforeWords()) return std::nullopt;
  const double from = limitValue(evalScalarArg());
  expectChar(',');
  const double to = limitValue(evalScalarArg());
  return Limits{from, to};
}

double readParameter() {
  expectChar(',');
  return evalScalarArg();
}

// The word for the family with its parameters, and the closing parenthesis.
GaussWeight readFamily() {
  constexpr std::array families = {GaussFamily::laguerre, GaussFamily::laguerre,
                                   GaussFamily::hermite, GaussFamily::chebyshev,
                                   GaussFamily::jacobi};
  GaussWeight weight;
  for (WordReader words({"laguerre", "laguerre=", "hermite", "chebyshev", "jacobi="});
       words.next();) {
    if (weight.family != GaussFamily::legendre) raiseError(ErrorKey::invalidData);
    weight.family = families[words.index()];
    if (words.index() == 1 || words.index() == 4) weight.alpha = readParameter();
    if (words.index() == 4) weight.beta = readParameter();
  }
  return weight;
}

}  // namespace

double gaussptBuiltin() {
  expectChar('(');
  const double count = evalScalarArg();
  expectChar(',');
  const std::string nodesName = readResultName();
  expectChar(',');
  const std::string weightsName = readResultName();
  const auto limits = readLimits();
  GaussWeight weight;
  if (limits)
    expectChar(')');
  else
    weight = readFamily();
  if (!requireDistinct({nodesName, weightsName})) return 0.0;
  const int n = requireWhole(count, 1, gaussPointLimit);
  const std::array numbers = {weight.alpha, weight.beta, limits ? limits->from : 0.0,
                              limits ? limits->to : 0.0};
  if (!requireFinite(numbers)) return 0.0;
  if (weight.alpha <= -1 || weight.beta <= -1) {
    raiseError(ErrorKey::invalidData);
    return 0.0;
  }
  pollInterrupt();
  const GaussPoints points =
      limits ? gaussPointsBetween(n, limits->from, limits->to) : gaussPoints(n, weight);
  if (!requireFinite(points.nodes) || !requireFinite(points.weights)) return 0.0;
  storeRow(nodesName, points.nodes);
  storeRow(weightsName, points.weights);
  return noResult();
}

}  // namespace vexa
