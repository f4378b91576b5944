#include "numlib/linear/linear_common_builtins.h"

#include "interp/interpreter_state.h"

namespace vexa {

// A function without captures is stored without allocation.
// NOLINTNEXTLINE(cert-err58-cpp)
const InterruptTest askUser = [] {
  pollInterrupt();
  return false;
};

double pivotTolerance() {
  const Symbol* tolerance = interpreter().names.find("tol#");
  return tolerance ? tolerance->value * 1e-10 : 0.0;
}

NamedMatrix readNamedMatrix() {
  NamedMatrix argument{readMatrix(), {}};
  if (!argument.matrix.temporary()) argument.name = interpreter().scanner.tokenText;
  return argument;
}

bool require(bool condition, ErrorKey key, std::string_view cited) {
  if (!condition) raiseError(key, cited);
  return condition;
}

bool requireSquare(const NamedMatrix& a) {
  return require(a->rows() == a->cols(), ErrorKey::ordersIncompatible, a.name);
}

bool requireRightSide(const NamedMatrix& b, int n) {
  return require(b->cols() == n, ErrorKey::ordersIncompatible, b.name) &&
         require(b->rows() == 1, ErrorKey::invalidData, b.name);
}

bool requireDifferent(const NamedMatrix& a, const NamedMatrix& b) {
  return require(a.get() != b.get(), ErrorKey::conflictsWithParameter, b.name);
}

ScopedVector::ScopedVector(int n) : m_vector(newTempVector(static_cast<std::size_t>(n))) {
  if (!m_vector) throw std::bad_alloc();
}

ScopedVector::~ScopedVector() { freeTempVector(m_vector); }

std::span<double> ScopedVector::values() const { return {&(*m_vector)[1], m_vector->size()}; }

bool requireRegular(Outcome outcome, const NamedMatrix& a) {
  if (outcome == Outcome::singular) raiseError(ErrorKey::singularMatrix, a.name);
  return outcome == Outcome::done;
}

}  // namespace vexa
