#include <algorithm>
#include <cmath>
#include <numbers>

#include "numlib/calculus/gauss_points.h"
#include "numlib/special/bessel.h"
#include "numlib/special/beta_functions.h"
#include "numlib/special/complex_arithmetic.h"
#include "numlib/special/elliptic_integrals.h"
#include "numlib/special/gamma.h"
#include "numlib/special/two_number_functions.h"
#include "support/accuracy_families.h"

namespace vexa {

namespace {

// Next to a zero of J and Y what counts is the size of the wave there.
double lastPlaceOrWave(const ReferenceRow& row) {
  const double x = std::max(1.0, std::fabs(row[1]));
  return std::max(ulpOf(row.value), halfEpsilon * std::sqrt(2 / (std::numbers::pi * x)));
}

// Rows of complex functions: the parts of z, which part of the value, and the value's modulus.
double partOfModulus(const ReferenceRow& row) { return halfEpsilon * row[3]; }

auto onePart(Complex (*function)(Complex)) {
  return [function](Arguments v) {
    const Complex w = function({v[0], v[1]});
    return v[2] == 0 ? w.re : w.im;
  };
}

auto ofTwo(double (*function)(double, double)) {
  return [function](Arguments v) { return function(v[0], v[1]); };
}

// Rows of Gauss points: family, parameters, number of points, which one.
auto gaussPoint(std::vector<double> GaussPoints::*column) {
  return [column](Arguments v) {
    const GaussWeight weight{static_cast<GaussFamily>(v[0]), v[1], v[2]};
    return (gaussPoints(static_cast<int>(v[3]), weight).*column)[static_cast<std::size_t>(v[4])];
  };
}

}  // namespace

void addSpecialFunctions(std::vector<AccuracyEntry>& table) {
  const auto add = [&table](std::string_view name, std::string_view file, double allowed,
                            auto function, auto unitOf, std::string_view unit) {
    table.push_back({name, file, allowed, unit, unitOf, function});
  };
  const auto inPlaces = [&add](std::string_view name, std::string_view file, double allowed,
                               auto function) {
    add(name, file, allowed, function, lastPlace, "ulp");
  };

  inPlaces("gammaln", "special/log_gamma.csv", 0.51, [](Arguments v) { return logGamma(v[0]); });
  inPlaces("erf", "special/erf.csv", 1, [](Arguments v) { return erfValue(v[0]); });

  inPlaces("atan2", "special/atan2.csv", 1, ofTwo(std::atan2));
  inPlaces("hypot", "special/hypot.csv", 1, ofTwo(hypotenuse));
  inPlaces("mod", "special/mod.csv", 0.5, ofTwo(floorRemainder));
  inPlaces("hcoc", "special/hcoc.csv", 4, ofTwo(coshOverCosh));
  inPlaces("hcos", "special/hcos.csv", 4, ofTwo(coshOverSinh));
  inPlaces("hsoc", "special/hsoc.csv", 4, ofTwo(sinhOverCosh));
  inPlaces("hsos", "special/hsos.csv", 4, ofTwo(sinhOverSinh));

  inPlaces("beta", "special/beta.csv", 2, ofTwo(betaFunction));
  inPlaces("binom", "special/binom.csv", 0.5, ofTwo(binomialCoefficient));
  inPlaces("binom, products", "special/binom_product.csv", 45, ofTwo(binomialCoefficient));
  for (const Tail tail : {Tail::lower, Tail::upper}) {
    const bool lower = tail == Tail::lower;
    inPlaces(lower ? "gammainc" : "gammainc, upper",
             lower ? "special/gammainc.csv" : "special/gammainc_upper.csv", 4,
             [tail](Arguments v) { return regularizedGamma(v[0], v[1], tail); });
    inPlaces(lower ? "betainc" : "betainc, upper",
             lower ? "special/betainc.csv" : "special/betainc_upper.csv", 4,
             [tail](Arguments v) { return regularizedBeta(v[0], v[1], v[2], tail); });
  }

  inPlaces("gammainc, large a", "special/gamma_p.csv", 1, ofTwo(regularizedGammaP));

  inPlaces("ellipf", "special/ellipf.csv", 2, ofTwo(ellipticF));
  inPlaces("ellipe", "special/ellipe.csv", 2, ofTwo(ellipticE));
  inPlaces("ellipi", "special/ellipi.csv", 2,
           [](Arguments v) { return ellipticPi(v[0], v[1], v[2]); });
  inPlaces("ellipi, complete", "special/ellipi_complete.csv", 2, ofTwo(completeEllipticPi));

  add("bessj", "special/bessj.csv", 4, ofTwo(besselJ), lastPlaceOrWave, "ulp or wave");
  add("bessy", "special/bessy.csv", 4, ofTwo(besselY), lastPlaceOrWave, "ulp or wave");
  inPlaces("bessi", "special/bessi.csv", 4, ofTwo(besselI));
  inPlaces("bessk", "special/bessk.csv", 4, ofTwo(besselK));

  const auto complex = [&add](std::string_view name, std::string_view file,
                              Complex (*function)(Complex)) {
    add(name, file, 4, onePart(function), partOfModulus, "2^-53 |w|");
  };
  inPlaces("cabs", "special/hypot.csv", 1, [](Arguments v) { return complexAbs({v[0], v[1]}); });
  complex("ccos", "special/ccos.csv", complexCos);
  complex("cexp", "special/cexp.csv", complexExp);
  complex("cln", "special/cln.csv", complexLog);
  complex("csin", "special/csin.csv", complexSin);
  complex("csqrt", "special/csqrt.csv", complexSqrt);
  complex("ctan", "special/ctan.csv", complexTan);

  inPlaces("gausspt, nodes", "special/gauss_nodes.csv", 2, gaussPoint(&GaussPoints::nodes));
  inPlaces("gausspt, weights", "special/gauss_weights.csv", 4, gaussPoint(&GaussPoints::weights));
}

}  // namespace vexa
