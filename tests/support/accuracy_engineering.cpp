// Linear programs and element stiffness.
#include <cmath>
#include <span>

#include "numlib/calculus/linear_program.h"
#include "numlib/linear/element_stiffness.h"
#include "support/accuracy_families.h"

namespace vexa {

namespace {

// Infinite where there is none.
std::vector<double> bounds(std::span<const double> given) {
  std::vector<double> found;
  for (const double x : given)
    found.push_back(std::fabs(x) < 1e308 ? x : std::copysign(HUGE_VAL, x));
  return found;
}

// Rows of programs: objective (0 least), c, A, b, senses, bounds, which dual or 0 for the optimum,
// the size that errors are held against.
double optimumOrDual(Arguments v) {
  std::vector<RowSense> senses;
  for (const double sign : v.list(4))
    senses.push_back(static_cast<RowSense>(static_cast<int>(sign)));
  const std::vector<double> low = bounds(v.list(5)), high = bounds(v.list(6));
  const auto rows = static_cast<int>(senses.size()), cols = static_cast<int>(low.size());
  const ProgramSolution solution =
      solveLinearProgram({.objective = v[0] == 0 ? Objective::least : Objective::greatest,
                          .c = v.list(1),
                          .a = {v.list(2).data(), rows, cols},
                          .b = v.list(3),
                          .senses = senses,
                          .low = low,
                          .high = high},
                         10000);
  if (solution.outcome != ProgramOutcome::optimal) return NAN;
  const auto dual = static_cast<std::size_t>(v[7]);
  return dual == 0 ? solution.optimum : solution.duals[dual - 1];
}

// Rows of elements: kind, EA, EIy, EIz, GJ, node distance, turn, row, column, largest element.
double elementOfStiffness(Arguments v) {
  const NodeDistance d{v[5], v[6], v[7]};
  const auto element = [&] {
    switch (static_cast<int>(v[0])) {
      case 0:
        return beamStiffness(v[3], d.dx);
      case 1:
        return planeBarStiffness(v[1], d);
      case 2:
        return spaceBarStiffness(v[1], d);
      case 3:
        return planeFrameStiffness(v[1], v[3], d);
      case 4:
        return gridStiffness(v[2], v[4], d);
      default:
        return spaceFrameStiffness({v[1], v[2], v[3], v[4]}, d, v[8]);
    }
  }();
  return element.stiffnessView()(static_cast<int>(v[9]), static_cast<int>(v[10]));
}

}  // namespace

void addEngineering(std::vector<AccuracyEntry>& table) {
  const auto partOfScale = [](const ReferenceRow& row) { return 1e-10 * row[8]; };
  table.push_back({"simplx", "linear_programs/simplx.csv", 1, "1e-10 of the largest", partOfScale,
                   optimumOrDual});
  const auto unit = [](const ReferenceRow& row) { return std::ldexp(row[11], -53); };
  table.push_back({"frame", "elements/frame.csv", 8, "2^-53 max|k|", unit, elementOfStiffness});
}

}  // namespace vexa
