#pragma once

// The operators of matrix and complex expressions. Each replaces its left operand by a new
// temporary, frees operands that are temporaries, and never changes a named matrix.

#include "values/evaluator.h"

namespace vexa {

enum class BinaryOperator { add, subtract, multiply, divide, elementMultiply, elementDivide };

void applyBinary(Value& left, BinaryOperator op, Value& right, char mode);
// `a ? b`: the magnitude of b in the direction of a; numbers only (key 34).
void applySignedMagnitude(Value& left, Value& right);
void applyNegation(Value& operand);
// `~`: the transpose, or in complex mode the conjugate.
void applyTilde(Value& operand, char mode);
// `^` with a primary on the right; cross product, power of a matrix, complex power.
void applyPower(Value& left, Value& right, char mode);
// `A^-1`.
void applyInverse(Value& operand);
// `&^`.
void applyElementPower(Value& left, Value& right);

// A pair as 1 x 2; raises key 46 when the value is no pair of two elements.
void makePair(Value& value);

}  // namespace vexa
