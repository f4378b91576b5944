#pragma once

#include <cstdint>

namespace vexa {

// rand, randnorm: one number.
double randBuiltin();
// randfill, randnormfill: all elements of a matrix.
double randfillBuiltin();

// Starts the sequences of all four at a seed from 1 to 2147483647, as if the process had just begun
// with it: for a front that wants a program's numbers to repeat.
void seedRandomNumbers(std::int32_t seed);

}  // namespace vexa
