#include "numlib/transforms/transform_builtins.h"

#include <string>

#include "interp/message_box.h"
#include "numlib/linear/linear_common_builtins.h"
#include "numlib/transforms/fourier.h"
#include "numlib/transforms/sorting.h"
#include "values/argument_readers.h"

namespace vexa {

double sortBuiltin() {
  expectChar('(');
  const MatrixArgument keys = readMatrix();
  if (!moreArguments()) {
    keys->setTag(0);
    runAlgorithm([&] { return sortAscending(keys->elements(), askUser); });
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
  keys->setTag(0);
  companions->setTag(0);
  runAlgorithm([&] { return sortAscending(keys->elements(), companions->elements(), askUser); });
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
  parts->setTag(0);
  runAlgorithm([&] {
    return fourierTransform(parts->elements(),
                            direction > 0 ? FourierDirection::forward : FourierDirection::inverse,
                            askUser);
  });
  return noResult();
}

}  // namespace vexa
