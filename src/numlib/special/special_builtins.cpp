#include "numlib/special/special_builtins.h"

#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "interp/interpreter_state.h"
#include "numlib/special/bessel.h"
#include "numlib/special/beta_functions.h"
#include "numlib/special/elliptic_integrals.h"
#include "numlib/special/two_number_functions.h"
#include "values/argument_readers.h"
#include "values/numeric_arguments.h"

namespace vexa {

namespace {

using Numbers = std::span<const double>;

// The arguments behind the opening parenthesis, up to the closing one or a word.
std::vector<ElementwiseNumber> readNumbers(std::size_t fewest, std::size_t most) {
  std::vector<ElementwiseNumber> numbers;
  for (;;) {
    numbers.push_back(readElementwise());
    if (numbers.size() < fewest) {
      expectChar(',');
    } else if (numbers.size() == most || !moreBeforeWords()) {
      return numbers;
    }
  }
}

// The word of the incomplete integrals and the closing parenthesis.
Tail readTail() {
  Tail tail = Tail::lower;
  for (WordReader words({"upper"}); words.next();) tail = Tail::upper;
  return tail;
}

ElementFunction plain(double (*function)(double, double)) {
  return [function](Numbers v) { return function(v[0], v[1]); };
}

// The first argument is an angle in the unit in force.
ElementFunction ofAngle(double (*function)(double, double)) {
  return [function, toRadians = interpreter().angles.userToRadians](Numbers v) {
    return function(v[0] * toRadians, v[1]);
  };
}

ElementFunction thirdIntegral(std::size_t arguments) {
  if (arguments == 2) return plain(completeEllipticPi);
  return [toRadians = interpreter().angles.userToRadians](Numbers v) {
    return ellipticPi(v[0] * toRadians, v[1], v[2]);
  };
}

ElementFunction signFunction(std::size_t arguments) {
  if (arguments == 2) return plain(magnitudeWithSign);
  return [](Numbers v) { return signOf(v[0]); };
}

ElementFunction functionOf(int builtin, std::size_t arguments) {
  switch (builtin) {
    case builtinCode("atan2"):
      return [toUser = interpreter().angles.radiansToUser](Numbers v) {
        return std::atan2(v[0], v[1]) * toUser;
      };
    case builtinCode("beta"):
      return plain(betaFunction);
    case builtinCode("binom"):
      return plain(binomialCoefficient);
    case builtinCode("ellipe"):
      return ofAngle(ellipticE);
    case builtinCode("ellipf"):
      return ofAngle(ellipticF);
    case builtinCode("ellipi"):
      return thirdIntegral(arguments);
    case builtinCode("gez"):
      return plain(whereNotNegative);
    case builtinCode("hcoc"):
      return plain(coshOverCosh);
    case builtinCode("hcos"):
      return plain(coshOverSinh);
    case builtinCode("hsoc"):
      return plain(sinhOverCosh);
    case builtinCode("hsos"):
      return plain(sinhOverSinh);
    case builtinCode("hypot"):
      return plain(hypotenuse);
    case builtinCode("mod"):
      return plain(floorRemainder);
    default:
      return signFunction(arguments);
  }
}

double (*besselFunction(int builtin))(double, double) {
  switch (builtin) {
    case builtinCode("bessi"):
      return besselI;
    case builtinCode("bessj"):
      return besselJ;
    case builtinCode("bessk"):
      return besselK;
    default:
      return besselY;
  }
}

}  // namespace

double twoArgumentBuiltin() {
  const int builtin = interpreter().currentBuiltin;
  expectChar('(');
  const std::size_t fewest = builtin == builtinCode("sign") ? 1 : 2;
  const std::size_t most = builtin == builtinCode("ellipi") ? 3 : 2;
  const auto numbers = readNumbers(fewest, most);
  if (builtin == builtinCode("gammainc")) {
    const Tail tail = readTail();
    return applyElementwise(numbers,
                            [tail](Numbers v) { return regularizedGamma(v[0], v[1], tail); });
  }
  expectChar(')');
  return applyElementwise(numbers, functionOf(builtin, numbers.size()));
}

double betaincBuiltin() {
  expectChar('(');
  const auto numbers = readNumbers(3, 3);
  const Tail tail = readTail();
  return applyElementwise(numbers,
                          [tail](Numbers v) { return regularizedBeta(v[0], v[1], v[2], tail); });
}

double besselBuiltin() {
  const int builtin = interpreter().currentBuiltin;
  expectChar('(');
  const double order = evalScalarArg();
  expectChar(',');
  const ElementwiseNumber x = readElementwise();
  expectChar(')');
  return applyElementwise({&x, 1}, [order, function = besselFunction(builtin)](Numbers v) {
    return function(order, v[0]);
  });
}

}  // namespace vexa
