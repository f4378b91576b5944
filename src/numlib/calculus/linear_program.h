// Linear programs: the least or greatest value of c x, with each row of A x below, equal to or
// above b, and x between bounds.
//
// The simplex method is that of Clp, reached through its C interface and opened when the first
// program is solved. Its tolerances are absolute, so rows, columns, costs and sides are scaled by
// powers of two first, and what it finds is refined until rows and bounds hold to the last digit.
#pragma once

#include <span>
#include <vector>

#include "numlib/linear/interrupt_test.h"
#include "numlib/matrix_view.h"

namespace vexa {

enum class Objective { least, greatest };
enum class RowSense : signed char { below = -1, equal = 0, above = 1 };

// m rows, n columns; all numbers finite but the bounds, which may be infinite.
struct LinearProgram {
  Objective objective = Objective::least;
  std::span<const double> c;  // n
  ConstMatrixView a;          // m x n
  std::span<const double> b;  // m
  std::span<const RowSense> senses;
  std::span<const double> low, high;  // n each
};

enum class ProgramOutcome {
  optimal,
  infeasible,
  unbounded,
  tooManyIterations,
  failed,   // the library gave up for another reason
  missing,  // the library could not be opened
  interrupted,
};

struct ProgramSolution {
  ProgramOutcome outcome = ProgramOutcome::failed;
  double optimum = 0;
  std::vector<double> x;      // a point where it is reached
  std::vector<double> duals;  // derivatives of the optimum by b
};

ProgramSolution solveLinearProgram(const LinearProgram& program, int mostIterations,
                                   const InterruptTest& interrupted = {});

}  // namespace vexa
