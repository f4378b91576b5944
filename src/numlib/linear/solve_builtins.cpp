// Handlers of general and symmetric systems: solve, symsolv, det, invert.

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "interp/interpreter_state.h"
#include "interp/message_box.h"
#include "numlib/linear/linear_builtins.h"
#include "numlib/linear/linear_common_builtins.h"
#include "numlib/linear/lu_factorisation.h"
#include "numlib/linear/symmetric_factorisation.h"
#include "values/evaluator_parts.h"

namespace vexa {

namespace {

constexpr int companionTag = 'I';
constexpr std::uint8_t largestSerial = 255;

// Elements of a vector that holds n row numbers.
int pivotElements(int n) {
  return static_cast<int>(PivotList::elementsFor(static_cast<std::size_t>(n)));
}

struct SolveArguments {
  char option = 0;
  NamedMatrix a, b;  // b only where it was given
};

// False after a fault that did not unwind.
bool readArguments(SolveArguments& arguments) {
  expectChar('(');
  arguments.option = readOption("SBDJ");
  expectChar(',');
  arguments.a = readNamedMatrix();
  const bool ends = arguments.option == 'D' || (arguments.option == 'J' && nextCharacter() == ')');
  if (!ends) {
    expectChar(',');
    arguments.b = readNamedMatrix();
  }
  expectChar(')');
  const SolveArguments& read = arguments;
  return read.option && requireSquare(read.a) &&
         (!read.b.given() || requireRightSide(read.b, read.a->rows()));
}

double solveByFullPivoting(const SolveArguments& arguments) {
  Matrix& a = *arguments.a;
  const int n = a.rows();
  const ScopedVector rows(pivotElements(n)), cols(pivotElements(n)), used(pivotElements(n));
  const auto b = arguments.b.given() ? arguments.b->elements() : std::span<double>();
  int replaced = 0;
  const Outcome outcome = runAlgorithm([&] {
    return gaussJordan(a.view(), b, PivotList(rows.values()), PivotList(cols.values()),
                       PivotList(used.values()), pivotTolerance(), replaced, askUser);
  });
  return requireRegular(outcome, arguments.a) ? replaced : noResult();
}

// --- Pivot companions

std::string companionName(std::uint8_t serial) { return {'#', static_cast<char>(serial)}; }

// The next serial with its companion, a global matrix that holds the pivots of a factorisation.
// Unless it is kept, the end of the scope removes the companion and steps the serial back.
class NewCompanion {
 public:
  NewCompanion() {
    std::uint8_t& serial = interpreter().pivotSerial;
    serial = serial == largestSerial ? 1 : static_cast<std::uint8_t>(serial + 1);
  }
  ~NewCompanion() {
    if (m_kept) return;
    InterpreterState& state = interpreter();
    if (Symbol* symbol = state.names.find(companionName(state.pivotSerial))) {
      state.names.remove(*symbol);
      state.changed(Bar::globals);
    }
    --state.pivotSerial;
  }
  NewCompanion(const NewCompanion&) = delete;
  NewCompanion& operator=(const NewCompanion&) = delete;

  PivotList create(int n) {
    Matrix& matrix = resultMatrix(companionName(interpreter().pivotSerial));
    redefineMatrix(matrix, 1, pivotElements(n));
    matrix.setTag(companionTag);
    return PivotList(matrix.elements());
  }
  std::uint8_t keep() {
    m_kept = true;
    return interpreter().pivotSerial;
  }

 private:
  bool m_kept = false;
};

// S and D. A matrix whose factorisation fails keeps its old tag.
double factoriseGeneral(const SolveArguments& arguments) {
  const bool solves = arguments.option == 'S';
  Matrix& a = *arguments.a;
  const int n = a.rows();
  NewCompanion companion;
  const PivotList pivots = companion.create(n);
  double sign = 1.0;
  const ScopedVector scale(n);
  const Outcome outcome = runAlgorithm(
      [&] { return luFactor(a.view(), pivots, scale.values(), pivotTolerance(), sign, askUser); });
  if (outcome == Outcome::singular && !solves) return 0.0;
  if (!requireRegular(outcome, arguments.a)) return noResult();
  a.setTag(companion.keep());
  if (!solves) return diagonalProduct(a.view(), sign);
  runAlgorithm([&] { return luSolve(a.view(), pivots, arguments.b->elements(), askUser); });
  return noResult();
}

// The companion that the tag of a stands for; null when there is none of this order.
Matrix* companionOf(const Matrix& a) {
  if (a.tag() < 1 || a.tag() > largestSerial) return nullptr;
  const auto serial = static_cast<std::uint8_t>(a.tag());
  const Symbol* symbol = interpreter().names.find(companionName(serial));
  Matrix* const matrix = symbol && symbol->isGlobal() ? symbol->matrix.get() : nullptr;
  if (!matrix || matrix->tag() != companionTag) return nullptr;
  // Serials come round again, and then the name belongs to another matrix.
  return fitsOrder(PivotList(matrix->elements()), a.rows()) ? matrix : nullptr;
}

double solveAgain(const SolveArguments& arguments) {
  const Matrix& a = *arguments.a;
  if (a.tag() == 0) messageBox("solve> Matrix not yet decomposed?");
  Matrix* const companion = companionOf(a);
  if (!companion) {
    messageBox("solve> Must use original name of decomposed matrix");
    raiseError(ErrorKey::invalidData, arguments.a.name);
    return noResult();
  }
  const PivotList pivots(companion->elements());
  runAlgorithm([&] { return luSolve(a.view(), pivots, arguments.b->elements(), askUser); });
  return noResult();
}

double solveSymmetric(const SolveArguments& arguments) {
  Matrix& a = *arguments.a;
  if (arguments.option != 'B') {
    const Outcome outcome =
        runAlgorithm([&] { return ldltFactor(a.view(), pivotTolerance(), askUser); });
    if (!requireRegular(outcome, arguments.a)) return noResult();
  }
  if (arguments.option == 'D') return diagonalProduct(a.view(), 1.0);
  runAlgorithm([&] { return ldltSolve(a.view(), arguments.b->elements(), askUser); });
  return noResult();
}

// A is left holding its factors; a singular one has the determinant 0.
double determinant(const NamedMatrix& a) {
  const ScopedVector scale(a->rows());
  const ScopedVector pivots(pivotElements(a->rows()));
  double sign = 1.0;
  const Outcome outcome = runAlgorithm([&] {
    return luFactor(a->view(), PivotList(pivots.values()), scale.values(), pivotTolerance(), sign,
                    askUser);
  });
  return outcome == Outcome::done ? diagonalProduct(a->view(), sign) : 0.0;
}

double invert(const NamedMatrix& a) {
  const ScopedVector scale(a->rows());
  const ScopedVector pivotVector(pivotElements(a->rows()));
  const PivotList pivots(pivotVector.values());
  double sign = 1.0;
  const Outcome outcome = runAlgorithm(
      [&] { return luFactor(a->view(), pivots, scale.values(), pivotTolerance(), sign, askUser); });
  if (!requireRegular(outcome, a)) return noResult();
  const MatrixArgument inverse = MatrixArgument::owned(newTempMatrix(a->rows(), a->rows()));
  if (!inverse.get() || inverse->rows() != a->rows()) return noResult();
  const Outcome inverted =
      runAlgorithm([&] { return luInverse(a->view(), pivots, inverse->view(), askUser); });
  if (inverted == Outcome::done) std::ranges::copy(inverse->elements(), a->elements().begin());
  return noResult();
}

}  // namespace

double solveBuiltin() {
  const bool symmetric = interpreter().currentBuiltin == builtinCode("symsolv");
  SolveArguments arguments;
  if (!readArguments(arguments)) return noResult();
  if (arguments.option == 'J') return solveByFullPivoting(arguments);
  if (symmetric) return solveSymmetric(arguments);
  return arguments.option == 'B' ? solveAgain(arguments) : factoriseGeneral(arguments);
}

double determinantBuiltin() {
  const bool inverts = interpreter().currentBuiltin == builtinCode("invert");
  expectChar('(');
  const NamedMatrix a = readNamedMatrix();
  expectChar(')');
  if (!requireSquare(a)) return noResult();
  return inverts ? invert(a) : determinant(a);
}

}  // namespace vexa
