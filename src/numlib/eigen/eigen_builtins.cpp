#include "numlib/eigen/eigen_builtins.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "interp/errors.h"
#include "interp/interpreter_state.h"
#include "interp/message_box.h"
#include "numlib/eigen/definite_pair.h"
#include "numlib/eigen/singular_values.h"
#include "numlib/eigen/symmetric_eigen.h"
#include "numlib/linear/linear_common_builtins.h"
#include "values/argument_readers.h"
#include "values/evaluator_parts.h"
#include "values/numeric_arguments.h"

namespace vexa {

namespace {

// Key 76 when a result's name stands for an argument.
bool differs(const std::string& name, const MatrixArgument& argument) {
  if (!argument.get() || findMatrix(name) != argument.get()) return true;
  raiseError(ErrorKey::conflictsWithParameter, name);
  return false;
}

bool requireOrder(const MatrixArgument& m, int rows, int cols) {
  if (m->rows() == rows && m->cols() == cols) return true;
  raiseError(ErrorKey::ordersIncompatible);
  return false;
}

void storeRow(const std::string& name, const std::vector<double>& values) {
  Matrix& matrix = resultMatrix(name);
  redefineMatrix(matrix, 1, static_cast<int>(values.size()));
  if (matrix.size() == values.size()) std::ranges::copy(values, matrix.elements().begin());
}

// The arguments of eigen behind A: B, if there is one, and the name of the eigenvalues.
struct EigenTail {
  MatrixArgument b;
  std::string values;
};

// What the first name is shows only behind it: B when a comma follows.
bool readEigenTail(const MatrixArgument& a, EigenTail& tail) {
  Scanner& scanner = interpreter().scanner;
  const char* const start = scanner.progCursor;
  acceptChar('!');
  const NameArgument name = readName(ErrorKey::nameIsKeyword);
  const bool isPair = nextCharacter() == ',';
  if (!isPair) {
    scanner.progCursor = start;
    tail.values = readResultName();
    return differs(tail.values, a);
  }
  if (!differs(name.text, a)) return false;
  Matrix* const b = findMatrix(name.text);
  if (!b || b->isString()) {
    raiseError(ErrorKey::matrixNameExpected);
    return false;
  }
  tail.b = MatrixArgument::variable(b);
  if (!requireOrder(tail.b, a->rows(), a->cols())) return false;
  expectChar(',');
  tail.values = readResultName();
  return differs(tail.values, a) && differs(tail.values, tail.b);
}

// The value of the call.
double storeEigen(const MatrixArgument& a, const EigenTail& tail) {
  const SlowIteration slow{[] { messageBox("Too many iterations in eigen"); }};
  std::vector<double> values(static_cast<std::size_t>(a->rows()));
  const int tag = a->tag();
  a->setTag(0);
  const Outcome outcome = runAlgorithm([&] {
    return tail.b.get() ? eigenDefinitePair(a->view(), tail.b->view(), values, askUser, slow)
                        : eigenSymmetric(a->view(), values, askUser, slow);
  });
  if (outcome == Outcome::singular) {
    a->setTag(tag);  // A has not been touched
    messageBox("eigen> matrices not positive definite");
    return 1.0;
  }
  if (outcome == Outcome::done) storeRow(tail.values, values);
  return noResult();
}

}  // namespace

double eigenBuiltin() {
  expectChar('(');
  const MatrixArgument a = readMatrix();
  if (!requireOrder(a, a->rows(), a->rows())) return 0.0;
  expectChar(',');
  EigenTail tail;
  if (!readEigenTail(a, tail)) return 0.0;
  expectChar(')');
  return storeEigen(a, tail);
}

double svdBuiltin() {
  expectChar('(');
  const MatrixArgument a = readMatrix();
  if (a->rows() < a->cols()) {
    messageBox("svd> padd matrix with rows of zero");
    raiseError(ErrorKey::invalidData);
    return 0.0;
  }
  expectChar(',');
  const std::string wName = readResultName();
  expectChar(',');
  const std::string vName = readResultName();
  if (!differs(wName, a) || !differs(vName, a)) return 0.0;
  const Matrix* const known = findMatrix(wName);
  if (wName == vName || (known && known == findMatrix(vName))) {
    raiseError(ErrorKey::conflictsWithParameter, vName);
    return 0.0;
  }
  expectChar(')');

  const int n = a->cols();
  Matrix& v = resultMatrix(vName);
  redefineMatrix(v, n, n);
  const MatrixPin pin(&v);
  const SlowIteration slow{
      [] { formatAndShowError(ErrorKey::notConvergent, interpreter().faultContext); }};
  std::vector<double> w(static_cast<std::size_t>(n));
  a->setTag(0);
  const Outcome outcome =
      runAlgorithm([&] { return decomposeSingular(a->view(), w, v.view(), askUser, slow); });
  if (outcome != Outcome::done) return 0.0;
  const double condition = cutSmallValues(w, presetValue("tol#"), presetValue("i#"));
  storeRow(wName, w);
  return condition;
}

double svsolveBuiltin() {
  expectChar('(');
  const MatrixArgument u = readMatrix();
  expectChar(',');
  const MatrixArgument w = readMatrix();
  expectChar(',');
  const MatrixArgument v = readMatrix();
  expectChar(',');
  const MatrixArgument b = readMatrix();
  if (u->rows() < u->cols()) {
    messageBox("svsolve> matrix not yet decomposed by svd");
    raiseError(ErrorKey::invalidData);
    return 0.0;
  }
  const int n = u->cols();
  if (!requireOrder(w, 1, n) || !requireOrder(b, 1, u->rows()) || !requireOrder(v, n, n))
    return 0.0;
  expectChar(',');
  const std::string xName = readResultName();
  for (const MatrixArgument* argument : {&u, &w, &v, &b})
    if (!differs(xName, *argument)) return 0.0;
  expectChar(')');

  std::vector<double> x(static_cast<std::size_t>(n));
  (void)leastSquares(u->view(), w->elements(), v->view(), b->elements(), x, askUser);
  storeRow(xName, x);
  return noResult();
}

}  // namespace vexa
