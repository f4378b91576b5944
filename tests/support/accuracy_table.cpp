#include "support/accuracy_table.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>

#include "numlib/calculus/derivative.h"
#include "numlib/calculus/gauss_points.h"
#include "numlib/calculus/integral.h"
#include "numlib/calculus/series.h"
#include "numlib/finance/annuity.h"
#include "numlib/special/bessel.h"
#include "numlib/special/beta_functions.h"
#include "numlib/special/complex_arithmetic.h"
#include "numlib/special/elliptic_integrals.h"
#include "numlib/special/gamma.h"
#include "numlib/special/two_number_functions.h"
#include "support/calculus_rows.h"

namespace vexa {

namespace {

using Arguments = std::span<const double>;

constexpr double halfEpsilon = std::numeric_limits<double>::epsilon() / 2;

double lastPlace(const ReferenceRow& row) { return ulpOf(row.value); }

// Next to a zero of J and Y what counts is the size of the wave there.
double lastPlaceOrWave(const ReferenceRow& row) {
  const double x = std::max(1.0, std::fabs(row.arguments[1]));
  return std::max(ulpOf(row.value), halfEpsilon * std::sqrt(2 / (std::numbers::pi * x)));
}

// Rows of complex functions: the parts of z, which part of the value, and the value's modulus.
double partOfModulus(const ReferenceRow& row) { return halfEpsilon * row.arguments[3]; }

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

Due dueOf(double type) { return type == 0 ? Due::end : Due::beginning; }

// Annuities, with the arguments in the order of a call.
void addAnnuities(std::vector<AccuracyEntry>& table) {
  const auto add = [&table](std::string_view name, std::string_view file, auto function) {
    table.push_back({name, file, 2, "ulp", lastPlace, function});
  };
  add("pv", "finance/pv.csv", [](Arguments v) {
    return presentValue(v[0], {v[1], v[2], 0, v[3], dueOf(v[4])});
  });
  add("fv", "finance/fv.csv", [](Arguments v) {
    return futureValue(v[0], {v[1], v[2], v[3], 0, dueOf(v[4])});
  });
  add("pmt", "finance/pmt.csv", [](Arguments v) {
    return payment(v[0], {v[1], 0, v[2], v[3], dueOf(v[4])});
  });
  add("nper", "finance/nper.csv", [](Arguments v) {
    return periods(v[0], {0, v[1], v[2], v[3], dueOf(v[4])});
  });
  add("ipmt", "finance/ipmt.csv", [](Arguments v) {
    return interestPart(v[0], v[1], {v[2], 0, v[3], v[4], dueOf(v[5])});
  });
  add("ppmt", "finance/ppmt.csv", [](Arguments v) {
    return principalPart(v[0], v[1], {v[2], 0, v[3], v[4], dueOf(v[5])});
  });
  add("cumipmt", "finance/cumipmt.csv", [](Arguments v) {
    return interestSum(v[0], v[3], v[4], {v[1], 0, v[2], 0, dueOf(v[5])});
  });
  add("cumprinc", "finance/cumprinc.csv", [](Arguments v) {
    return principalSum(v[0], v[3], v[4], {v[1], 0, v[2], 0, dueOf(v[5])});
  });
  // A rate is a small difference of given amounts, so it has an absolute part.
  const auto rateUnit = [](const ReferenceRow& row) { return ulpOf(row.value) + 1e-18; };
  table.push_back({"intrate", "finance/intrate.csv", 2, "ulp + 1e-18", rateUnit, [](Arguments v) {
                     const Annuity a{v[0], v[1], v[2], v[3], dueOf(v[4])};
                     return annuityRate(a, v[5]).value_or(HUGE_VAL);
                   }});
}

// Rows of calculus name a function, whose place among the functions becomes their first argument.
std::vector<ReferenceRow> namedRows(const std::string& file) {
  std::vector<ReferenceRow> rows;
  for (const CalculusRow& named : calculusRows(file)) {
    const auto& functions = referenceFunctions();
    const auto place = std::distance(functions.begin(), functions.find(named.name));
    ReferenceRow row{{static_cast<double>(place)}, named.value};
    row.arguments.insert(row.arguments.end(), named.arguments.begin(), named.arguments.end());
    rows.push_back(row);
  }
  return rows;
}

const std::function<double(double)>& namedFunction(Arguments v) {
  return std::next(referenceFunctions().begin(), static_cast<std::ptrdiff_t>(v[0]))->second;
}

// The relative error aimed at when a run starts; of sums ten times that.
double aimed(const ReferenceRow& row) { return 1e-10 * std::fabs(static_cast<double>(row.value)); }

// What a derivative of an order may be off.
double aimedOfOrder(const ReferenceRow& row) {
  constexpr double relative[] = {0, 1e-12, 1e-10, 1e-9, 1e-7};
  return relative[static_cast<int>(row.arguments[2])] * std::fabs(static_cast<double>(row.value));
}

void addCalculus(std::vector<AccuracyEntry>& table) {
  table.push_back(
      {"integ", "calculus/integrals.csv", 1, "1e-10 of it", aimed,
       [](Arguments v) { return integrate(namedFunction(v), v[1], v[2], 1e-10, 100).value; },
       namedRows});
  table.push_back(
      {"imteg", "calculus/improper.csv", 1, "1e-10 of it", aimed,
       [](Arguments v) { return integrateImproper(namedFunction(v), v[1], v[2], 1e-10).value; },
       namedRows});
  table.push_back({"deriv", "calculus/derivatives.csv", 1, "bound of its order", aimedOfOrder,
                   [](Arguments v) {
                     return differentiate(namedFunction(v), v[1], static_cast<int>(v[2]))
                         .value_or(std::nan(""));
                   },
                   namedRows});
  table.push_back(
      {"series", "calculus/sums.csv", 10, "1e-10 of it", aimed,
       [](Arguments v) { return sumInfiniteSeries(namedFunction(v), v[1], 1e-10, 100'000).value; },
       namedRows});
}

std::vector<AccuracyEntry> makeTable() {
  std::vector<AccuracyEntry> table;
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
  complex("ccos", "special/ccos.csv", complexCos);
  complex("cexp", "special/cexp.csv", complexExp);
  complex("cln", "special/cln.csv", complexLog);
  complex("csin", "special/csin.csv", complexSin);
  complex("csqrt", "special/csqrt.csv", complexSqrt);
  complex("ctan", "special/ctan.csv", complexTan);

  inPlaces("gausspt, nodes", "special/gauss_nodes.csv", 2, gaussPoint(&GaussPoints::nodes));
  inPlaces("gausspt, weights", "special/gauss_weights.csv", 4, gaussPoint(&GaussPoints::weights));
  addAnnuities(table);
  addCalculus(table);
  return table;
}

}  // namespace

const std::vector<AccuracyEntry>& accuracyTable() {
  static const std::vector<AccuracyEntry> table = makeTable();
  return table;
}

WorstError worstError(const AccuracyEntry& entry) {
  WorstError worst;
  const auto rows = entry.rows(std::string(entry.file));
  worst.rows = rows.size();
  for (const ReferenceRow& row : rows) {
    const double result = entry.function(row.arguments);
    const long double error = std::fabs(result - row.value);
    double units = 0;
    if (std::isnan(result))
      units = std::numeric_limits<double>::infinity();
    else if (error != 0)
      units = static_cast<double>(error) / entry.unitOf(row);
    if (units > worst.units || worst.row.arguments.empty()) {
      worst.units = units;
      worst.row = row;
      worst.result = result;
    }
  }
  return worst;
}

}  // namespace vexa
