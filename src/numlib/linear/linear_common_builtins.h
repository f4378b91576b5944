// What the handlers of linear systems share: arguments with their names, checks of their shapes,
// work vectors, the question of an interrupt.
//
// Arguments are read first and checked when all have been read, since an argument may be an
// expression whose functions give another argument a new order. A check that fails cites the
// argument at fault.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "interp/errors.h"
#include "numlib/linear/interrupt_test.h"
#include "values/argument_readers.h"

namespace vexa {

// Looks for Esc and never says yes by itself: the fault that ends the run is raised inside.
extern const InterruptTest askUser;

// The magnitude below which a pivot counts as zero: tol# times 1e-10, as it is now.
double pivotTolerance();

// A matrix argument and the name that messages cite, empty for an expression.
struct NamedMatrix {
  MatrixArgument matrix;
  std::string name;

  Matrix& operator*() const { return *matrix; }
  Matrix* operator->() const { return matrix.get(); }
  Matrix* get() const { return matrix.get(); }
  bool given() const { return matrix.get() != nullptr; }
};
NamedMatrix readNamedMatrix();

// Each raises and gives false when it fails.
bool require(bool condition, ErrorKey key, std::string_view cited);
bool requireSquare(const NamedMatrix& a);
// A row of n elements: the length first (key 64), then the single row (key 34).
bool requireRightSide(const NamedMatrix& b, int n);
// Key 76 when b is the same matrix as a, under whatever name; cites b.
bool requireDifferent(const NamedMatrix& a, const NamedMatrix& b);

// A work vector from the interpreter's slots, given back with the scope.
class ScopedVector {
 public:
  explicit ScopedVector(int n);
  ~ScopedVector();
  ScopedVector(const ScopedVector&) = delete;
  ScopedVector& operator=(const ScopedVector&) = delete;
  std::span<double> values() const;

 private:
  WorkVector* m_vector;
};

// Runs an algorithm: memory that cannot be had is key 28, an interrupted one key 65 where the
// question itself has not ended the run.
template <class Algorithm>
Outcome runAlgorithm(Algorithm algorithm) {
  try {
    const Outcome outcome = algorithm();
    if (outcome == Outcome::interrupted) raiseError(ErrorKey::interrupted);
    return outcome;
  } catch (const std::bad_alloc&) {
    raiseError(ErrorKey::allocationFailed);
    return Outcome::interrupted;
  }
}

// Key 13 for a singular outcome, citing the matrix; true when it is done.
bool requireRegular(Outcome outcome, const NamedMatrix& a);

}  // namespace vexa
