// Handlers of symmetric matrices that keep more than a solution: cholesky, gauss.

#include <cmath>

#include "interp/interpreter_state.h"
#include "interp/message_box.h"
#include "numlib/linear/linear_builtins.h"
#include "numlib/linear/linear_common_builtins.h"
#include "numlib/linear/symmetric_factorisation.h"

namespace vexa {

namespace {

struct GaussArguments {
  char option = 0;
  NamedMatrix a, b;
  double retained = 0;  // C only
};

bool checkShapes(const GaussArguments& arguments) {
  const auto& [option, a, b, retained] = arguments;
  return option && requireSquare(a) && require(b->rows() == 1, ErrorKey::invalidData, b.name) &&
         require(b->cols() == a->rows(), ErrorKey::ordersIncompatible, b.name) &&
         requireDifferent(a, b);
}

// The number of unknowns that stay, from the option, the fourth argument or the matrix's tag, which
// S and C set. 0 after a fault that did not unwind.
int retainedUnknowns(const GaussArguments& arguments) {
  Matrix& a = *arguments.a;
  if (arguments.option == 'S') a.setTag(1);
  if (arguments.option == 'C') {
    const double k = std::round(arguments.retained);
    if (!require(k >= 1 && k <= a.rows(), ErrorKey::invalidData, {})) return 0;
    a.setTag(static_cast<int>(k));
  }
  return a.tag() == 0 ? 1 : a.tag();
}

}  // namespace

double choleskyBuiltin() {
  expectChar('(');
  const char option = readOption("SBDI");
  expectChar(',');
  const NamedMatrix a = readNamedMatrix();
  NamedMatrix b;
  if (option == 'S' || option == 'B') {
    expectChar(',');
    b = readNamedMatrix();
  }
  expectChar(')');
  if (!option || !requireSquare(a)) return noResult();
  if (b.given() && !requireRightSide(b, a->rows())) return noResult();

  if (option == 'S' || option == 'D') {
    const Outcome outcome = runAlgorithm([&] { return choleskyFactor(a->view(), askUser); });
    if (outcome == Outcome::singular) {
      messageBox(" Matrix not positive definite");
      return 1.0;
    }
    if (outcome != Outcome::done) return noResult();
  }
  if (option == 'I') {
    const ScopedVector row(a->rows());
    runAlgorithm([&] { return choleskyInvertFactor(a->view(), row.values(), askUser); });
  }
  if (!b.given()) return 0.0;
  runAlgorithm([&] { return choleskySolve(a->view(), b->elements(), askUser); });
  return noResult();
}

double gaussBuiltin() {
  GaussArguments arguments;
  expectChar('(');
  arguments.option = readOption("SBCR");
  expectChar(',');
  arguments.a = readNamedMatrix();
  expectChar(',');
  arguments.b = readNamedMatrix();
  if (arguments.option == 'C') {
    expectChar(',');
    arguments.retained = evalScalarArg();
  }
  expectChar(')');
  if (!checkShapes(arguments)) return noResult();
  const int retained = retainedUnknowns(arguments);
  if (retained == 0) return noResult();

  const auto& [option, a, b, k] = arguments;
  const std::span<double> vector = b->elements();
  if (option != 'R') {
    const Reduce reduce = option == 'B' ? Reduce::vectorOnly : Reduce::matrixAndVector;
    const Outcome outcome = runAlgorithm([&] {
      return eliminateUpward(arguments.a->view(), vector, retained, pivotTolerance(), reduce,
                             askUser);
    });
    if (!requireRegular(outcome, a) || option == 'C') return noResult();
    vector[0] /= a->at(1, 1);
  }
  const int first = option == 'R' ? retained : 1;
  runAlgorithm([&] { return substituteDownward(arguments.a->view(), vector, first, askUser); });
  return noResult();
}

}  // namespace vexa
