// Handlers of products that expressions have no operator for: tmult, cmult.

#include <array>
#include <memory>
#include <string>

#include "interp/interpreter_state.h"
#include "numlib/linear/linear_builtins.h"
#include "numlib/linear/linear_common_builtins.h"
#include "numlib/linear/structured_products.h"

namespace vexa {

namespace {

// Key 76 when a result's name stands for an argument.
bool differs(const std::string& result, const NamedMatrix& argument) {
  return require(findMatrix(result) != argument.get(), ErrorKey::conflictsWithParameter, result);
}

bool sameOrder(const NamedMatrix& a, const NamedMatrix& b) {
  return require(a->rows() == b->rows() && a->cols() == b->cols(), ErrorKey::ordersIncompatible,
                 b.name);
}

}  // namespace

double tmultBuiltin() {
  expectChar('(');
  const NamedMatrix a = readNamedMatrix();
  expectChar(',');
  const NamedMatrix k = readNamedMatrix();
  expectChar(',');
  const std::string name = readResultName();
  expectChar(')');
  const bool fits = k->rows() == k->cols() && k->rows() == a->rows();
  if (!require(fits, ErrorKey::ordersIncompatible, k.name) || !differs(name, a) ||
      !differs(name, k)) {
    return noResult();
  }
  const auto result = newMatrix(a->cols(), a->cols());
  const ScopedVector column(a->rows());
  const Outcome outcome = runAlgorithm([&] {
    return congruenceProduct(a->view(), k->view(), result->view(), column.values(), askUser);
  });
  if (outcome == Outcome::done) resultMatrix(name).swapContents(*result);
  return noResult();
}

double cmultBuiltin() {
  std::array<NamedMatrix, 4> arguments;
  expectChar('(');
  for (NamedMatrix& argument : arguments) {
    argument = readNamedMatrix();
    expectChar(',');
  }
  const std::string reName = readResultName();
  expectChar(',');
  const std::string imName = readResultName();
  expectChar(')');

  const auto& [a, b, c, d] = arguments;
  if (!sameOrder(a, b) || !sameOrder(c, d) ||
      !require(a->cols() == c->rows(), ErrorKey::ordersIncompatible, c.name)) {
    return noResult();
  }
  for (const std::string& result : {reName, imName}) {
    for (const NamedMatrix& argument : arguments) {
      if (!differs(result, argument)) return noResult();
    }
  }
  if (!require(reName != imName, ErrorKey::conflictsWithParameter, imName)) return noResult();

  const auto re = newMatrix(a->rows(), c->cols());
  const auto im = newMatrix(a->rows(), c->cols());
  const Outcome outcome = runAlgorithm([&] {
    return complexProduct(arguments[0]->view(), arguments[1]->view(), arguments[2]->view(),
                          arguments[3]->view(), re->view(), im->view(), askUser);
  });
  if (outcome != Outcome::done) return noResult();
  resultMatrix(reName).swapContents(*re);
  resultMatrix(imName).swapContents(*im);
  return noResult();
}

}  // namespace vexa
