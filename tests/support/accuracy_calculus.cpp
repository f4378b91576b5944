#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <span>
#include <string>

#include "numlib/calculus/derivative.h"
#include "numlib/calculus/integral.h"
#include "numlib/calculus/series.h"
#include "support/accuracy_families.h"
#include "support/reference_functions.h"
#include "support/scripted_shell.h"

namespace vexa {

namespace {

const std::function<double(double)>& functionOf(const ReferenceRow& row) {
  return referenceFunctions().at(row.text);
}

// The relative error aimed at when a run starts; of sums ten times that.
double aimed(const ReferenceRow& row) { return 1e-10 * std::fabs(static_cast<double>(row.value)); }

// What a derivative of an order may be off.
double aimedOfOrder(const ReferenceRow& row) {
  constexpr double relative[] = {0, 1e-12, 1e-10, 1e-9, 1e-7};
  return relative[static_cast<int>(row[1])] * std::fabs(static_cast<double>(row.value));
}

// ---- Functions that programs write ----

std::string numberText(double x) {
  std::array<char, 32> digits;
  return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), x).ptr};
}

// The number that a program's statements print; not-a-number when they end with a fault.
double printedBy(const std::string& statements) {
  ScriptedSession session("main()\n{\n" + statements + "\n}\n");
  session.run();
  const std::string text = session.outputText();
  return text.empty() ? std::nan("") : std::strtod(text.c_str(), nullptr);
}

// The row's numbers from one on, as a list of a program.
std::string listFrom(const ReferenceRow& row, std::size_t first) {
  std::string list;
  for (const double x : std::span(row.arguments).subspan(first))
    list += (list.empty() ? "{" : ",") + numberText(x);
  return list + '}';
}

// Between several functions of a row stands a semicolon, in a call a comma.
std::string functionsOf(const ReferenceRow& row) {
  std::string text = row.text;
  std::ranges::replace(text, ';', ',');
  return text;
}

// A call of a function of one variable on an interval, and what of its result is printed.
auto ofInterval(std::string name, std::string result) {
  return [=](Arguments v) {
    return printedBy("r = " + name + "(x, " + numberText(v[0]) + ", " + numberText(v[1]) + ", " +
                     v.text + "); print(\"%.17g\", " + result + ");");
  };
}

// A call that makes r of functions of v, and one element of r, which has `columns` or as many
// columns as v has elements. The row counts from 0 along r's rows.
auto ofField(std::string name, std::size_t columns = 0) {
  return [=](Arguments v) {
    const std::size_t width = columns ? columns : v.arguments.size() - 2;
    const auto which = static_cast<std::size_t>(v[0]);
    const std::string element =
        "r[" + std::to_string(which / width + 1) + "," + std::to_string(which % width + 1) + "]";
    return printedBy("!v = " + listFrom(v, 2) + ";\n" + name + "(v, r, " + functionsOf(v) +
                     ");\nprint(\"%.17g\", " + element + ");");
  };
}

double divergence(const ReferenceRow& row) {
  return printedBy("!v = " + listFrom(row, 2) + "; print(\"%.17g\", div(v, " + functionsOf(row) +
                   "));");
}

std::string searchFrom(const ReferenceRow& row, std::size_t first) {
  return "!v = " + listFrom(row, first) + ";\nm = minzs(v, " + row.text + ");\n";
}

double ofPlace(const ReferenceRow& row) {
  return printedBy(searchFrom(row, 1) + "print(\"%.17g\", v[" + numberText(row[0] + 1) + "]);");
}

// An element of the state at the end, for a method's words.
auto ofInitialValue(std::string words) {
  return [=](Arguments v) {
    return printedBy("!y = " + listFrom(v, 3) + ";\nodesint(t, " + numberText(v[1]) + ", " +
                     numberText(v[2]) + ", y, " + functionsOf(v) + words +
                     ");\nprint(\"%.17g\", y[" + numberText(v[0]) + "]);");
  };
}

double atLeastOne(const ReferenceRow& row) { return std::max(sizeOf(row), 1.0); }

// Rows of fields hold the largest of the derivatives.
double aimedOfLargest(const ReferenceRow& row) { return 1e-10 * row[1]; }

void addPrograms(std::vector<AccuracyEntry>& table) {
  const auto place = [](const ReferenceRow& row) { return 1e-7 * atLeastOne(row); };
  const auto value = [](const ReferenceRow& row) { return 1e-14 * sizeOf(row); };
  const auto searchPlace = [](const ReferenceRow& row) { return 1e-6 * atLeastOne(row); };
  const auto searchValue = [](const ReferenceRow& row) { return 1e-12 * atLeastOne(row); };
  const auto state = [](const ReferenceRow& row) { return 1e-8 * atLeastOne(row); };
  const auto stiffState = [](const ReferenceRow& row) { return 1e-7 * atLeastOne(row); };
  table.insert(
      table.end(),
      {{"root1", "calculus/zeros.csv", 2, "ulp", lastPlace, ofInterval("root1", "r")},
       {"minz1, place", "calculus/minima_place.csv", 1, "1e-7 max(1, |x|)", place,
        ofInterval("minz1", "r")},
       {"minz1, value", "calculus/minima_value.csv", 1, "1e-14 of it", value,
        ofInterval("minz1", "min#")},
       {"maxz1, place", "calculus/maxima_place.csv", 1, "1e-7 max(1, |x|)", place,
        ofInterval("maxz1", "r")},
       {"maxz1, value", "calculus/maxima_value.csv", 1, "1e-14 of it", value,
        ofInterval("maxz1", "max#")},
       {"grad", "calculus/gradients.csv", 1, "1e-10 of the largest", aimedOfLargest,
        ofField("grad")},
       {"div", "calculus/divergences.csv", 1, "1e-10 of the largest", aimedOfLargest, divergence},
       {"curl", "calculus/curls.csv", 1, "1e-10 of the largest", aimedOfLargest,
        ofField("curl", 3)},
       {"jacob", "calculus/jacobians.csv", 1, "1e-10 of the largest", aimedOfLargest,
        ofField("jacob")},
       {"minzs, value", "calculus/search_values.csv", 1, "1e-12 max(1, |f|)", searchValue,
        [](Arguments v) { return printedBy(searchFrom(v, 0) + "print(\"%.17g\", m);"); }},
       {"minzs, place", "calculus/search_places.csv", 1, "1e-6 max(1, |v|)", searchPlace, ofPlace},
       {"odesint", "calculus/initial_values.csv", 1, "1e-8 max(1, |y|)", state, ofInitialValue("")},
       {"odesint, stiff", "calculus/stiff_values.csv", 1, "1e-7 max(1, |y|)", stiffState,
        ofInitialValue(", \"stiff\"")}});
}

}  // namespace

void addCalculus(std::vector<AccuracyEntry>& table) {
  table.push_back({"integ", "calculus/integrals.csv", 1, "1e-10 of it", aimed, [](Arguments v) {
                     return integrate(functionOf(v), v[0], v[1], 1e-10, 100).value;
                   }});
  table.push_back({"imteg", "calculus/improper.csv", 1, "1e-10 of it", aimed, [](Arguments v) {
                     return integrateImproper(functionOf(v), v[0], v[1], 1e-10).value;
                   }});
  table.push_back(
      {"deriv", "calculus/derivatives.csv", 1, "bound of its order", aimedOfOrder, [](Arguments v) {
         return differentiate(functionOf(v), v[0], static_cast<int>(v[1])).value_or(std::nan(""));
       }});
  table.push_back({"series", "calculus/sums.csv", 10, "1e-10 of it", aimed, [](Arguments v) {
                     return sumInfiniteSeries(functionOf(v), v[0], 1e-10, 100'000).value;
                   }});
  addPrograms(table);
}

}  // namespace vexa
