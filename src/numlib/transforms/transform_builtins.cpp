#include "numlib/transforms/transform_builtins.h"

#include <new>
#include <string>

#include "interp/message_box.h"
#include "numlib/transforms/fourier.h"
#include "numlib/transforms/sorting.h"
#include "values/argument_readers.h"

namespace vexa {

double sortBuiltin() {
  expectChar('(');
  const MatrixArgument keys = readMatrix();
  if (!moreArguments()) {
    sortAscending(keys->elements());
    keys->setTag(0);
    return noResult();
  }
  const MatrixArgument companions = readMatrix();
  const std::string name(interpreter().scanner.tokenText);
  expectChar(')');
  if (companions->rows() != keys->rows() || companions->cols() != keys->cols()) {
    raiseError(ErrorKey::ordersIncompatible);
    return noResult();
  }
  if (companions.get() == keys.get()) {
    raiseError(ErrorKey::conflictsWithParameter, name);
    return noResult();
  }
  sortAscending(keys->elements(), companions->elements());
  keys->setTag(0);
  companions->setTag(0);
  return noResult();
}

double fftBuiltin() {
  expectChar('(');
  const MatrixArgument parts = readMatrix();
  expectChar(',');
  const double direction = evalScalarArg();
  expectChar(')');
  if (parts->rows() != 1 || parts->cols() < 4) {
    raiseError(ErrorKey::ordersIncompatible);
    return noResult();
  }
  const std::size_t length = parts->size();
  if (length % 2 != 0 || !isTransformLength(length / 2)) {
    messageBox("fft> array size is not integer power of 2");
    raiseError(ErrorKey::invalidData);
    return noResult();
  }
  try {
    fourierTransform(parts->elements(),
                     direction > 0 ? FourierDirection::forward : FourierDirection::inverse);
  } catch (const std::bad_alloc&) {
    raiseError(ErrorKey::allocationFailed);
  }
  parts->setTag(0);
  return noResult();
}

}  // namespace vexa
