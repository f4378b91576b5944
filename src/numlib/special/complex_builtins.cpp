#include "numlib/special/complex_builtins.h"

#include <cmath>
#include <limits>

#include "interp/interpreter_state.h"
#include "numlib/special/complex_arithmetic.h"
#include "values/argument_readers.h"

namespace vexa {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Of angle functions both parts are in the unit in force; logarithm and exponential keep to
// radians, so that they undo each other.
Complex valueOf(int builtin, Complex z) {
  const AngleMode& angles = interpreter().angles;
  const Complex inRadians{z.re * angles.userToRadians, z.im * angles.userToRadians};
  switch (builtin) {
    case builtinCode("ccos"):
      return complexCos(inRadians);
    case builtinCode("cexp"):
      return complexExp(z);
    case builtinCode("cln"):
      return complexLog(z);
    case builtinCode("csin"):
      return complexSin(inRadians);
    case builtinCode("csqrt"):
      return complexSqrt(z);
    case builtinCode("ctan"):
      return complexTan(inRadians);
    case builtinCode("ptor"):
      // A zero counts as positive.
      return {z.re * std::cos(inRadians.im) + 0.0, z.re * std::sin(inRadians.im) + 0.0};
    default:
      return {complexAbs(z), std::atan2(z.im + 0.0, z.re + 0.0) * angles.radiansToUser};
  }
}

}  // namespace

double complexFunctionBuiltin() {
  const int builtin = interpreter().currentBuiltin;
  expectChar('(');
  const ComplexArgument argument = readComplex();
  expectChar(')');
  const Complex z{argument.re, argument.im};
  if (builtin == builtinCode("cabs")) return complexAbs(z);
  const bool isNumber = !std::isnan(z.re) && !std::isnan(z.im);
  const Complex w = isNumber ? valueOf(builtin, z) : Complex{kNaN, kNaN};
  Matrix* pair = newTempMatrix(1, 2);
  if (!pair) return 0.0;
  pair->at(1, 1) = w.re;
  pair->at(1, 2) = w.im;
  setBuiltinResult(pair);
  return 0.0;
}

}  // namespace vexa
