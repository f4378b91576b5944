// Handlers of systems that are stored by their bands: trisolv, bandf.

#include <algorithm>
#include <cmath>
#include <vector>

#include "interp/interpreter_state.h"
#include "interp/message_box.h"
#include "numlib/linear/band_system.h"
#include "numlib/linear/linear_builtins.h"
#include "numlib/linear/linear_common_builtins.h"
#include "numlib/linear/tridiagonal_system.h"

namespace vexa {

namespace {

// Shows a message and raises key 34.
double refuse(std::string_view message) {
  messageBox(message);
  raiseError(ErrorKey::invalidData);
  return noResult();
}

// --- bandf

// The list of global unknowns, rounded. Empty when one is beyond n.
std::vector<int> unknownsOf(const std::vector<double>& list, int n) {
  std::vector<int> unknowns;
  for (const double entry : list) {
    const double number = std::round(entry);
    if (!(std::fabs(number) <= n)) return {};
    unknowns.push_back(static_cast<int>(number));
  }
  return unknowns;
}

double assemble() {
  const NamedMatrix element = readNamedMatrix();
  expectChar(',');
  const NamedMatrix band = readNamedMatrix();
  expectChar(',');
  const std::vector<double> list = readDataList();
  expectChar(')');
  const auto entries = static_cast<std::size_t>(element->rows());
  if (!requireSquare(element) ||
      !require(band->cols() <= band->rows(), ErrorKey::ordersIncompatible, band.name) ||
      !require(list.size() == entries, ErrorKey::ordersIncompatible, {})) {
    return noResult();
  }
  const std::vector<int> unknowns = unknownsOf(list, band->rows());
  if (unknowns.empty()) return refuse("bandf> Invalid data");
  if (bandAssemble(band->view(), element->view(), unknowns) == Assembly::bandTooNarrow) {
    return refuse("bandf> Bad bandwidth or data");
  }
  return noResult();
}

void multiply(const Matrix& band, Matrix& v) {
  const ScopedVector product(v.cols());
  const Outcome outcome = runAlgorithm(
      [&] { return bandMultiply(band.view(), v.elements(), product.values(), askUser); });
  if (outcome == Outcome::done) std::ranges::copy(product.values(), v.elements().begin());
}

// False when the run is over.
bool factorise(Matrix& band) {
  long zeroPivots = 0;
  const Outcome outcome =
      runAlgorithm([&] { return bandFactor(band.view(), zeroPivots, askUser); });
  for (; zeroPivots > 0; --zeroPivots) {
    messageBox("Matrix singular");
    pollInterrupt();
  }
  return outcome == Outcome::done;
}

double multiplyOrSolve(char option) {
  const NamedMatrix band = readNamedMatrix();
  expectChar(',');
  const NamedMatrix v = readNamedMatrix();
  expectChar(')');
  const bool fits = v->rows() == 1 && v->cols() == band->rows();
  if (!require(fits, ErrorKey::ordersIncompatible, v.name)) return noResult();
  if (option != 'B' &&
      !require(band->cols() <= band->rows(), ErrorKey::ordersIncompatible, band.name)) {
    return noResult();
  }
  if (option == 'M') {
    multiply(*band, *v);
    return noResult();
  }
  // A diagonal is its own factorisation.
  if (option == 'S' && band->cols() > 1 && !factorise(*band)) return noResult();
  runAlgorithm([&] { return bandSolve(band->view(), v->elements(), askUser); });
  return noResult();
}

// --- trisolv

struct Tridiagonal {
  NamedMatrix a, d, c, r;
};

bool checkShapes(const Tridiagonal& system) {
  const auto& [a, d, c, r] = system;
  const int n = d->cols();
  if (!require(n >= 2, ErrorKey::invalidData, d.name)) return false;
  for (const NamedMatrix* band : {&a, &d, &c}) {
    if (!require((*band)->rows() == 1, ErrorKey::invalidData, band->name)) return false;
  }
  return require(a->cols() >= n, ErrorKey::ordersIncompatible, a.name) &&
         require(c->cols() >= n - 1, ErrorKey::ordersIncompatible, c.name) &&
         require(r->rows() == 1 && r->cols() == n, ErrorKey::ordersIncompatible, r.name) &&
         requireDifferent(a, r) && requireDifferent(d, r) && requireDifferent(c, r);
}

}  // namespace

double bandfBuiltin() {
  expectChar('(');
  const char option = readOption("SABM");
  expectChar(',');
  return option == 'A' ? assemble() : multiplyOrSolve(option);
}

double trisolvBuiltin() {
  Tridiagonal system;
  expectChar('(');
  system.a = readNamedMatrix();
  expectChar(',');
  system.d = readNamedMatrix();
  expectChar(',');
  system.c = readNamedMatrix();
  expectChar(',');
  system.r = readNamedMatrix();
  expectChar(')');
  if (!checkShapes(system)) return noResult();
  const ScopedVector gamma(system.d->cols());
  const Outcome outcome = runAlgorithm([&] {
    return tridiagonalSolve(system.a->elements(), system.d->elements(), system.c->elements(),
                            system.r->elements(), gamma.values(), askUser);
  });
  requireRegular(outcome, system.d);
  return noResult();
}

}  // namespace vexa
