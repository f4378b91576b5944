#include "numlib/special/elementary_functions.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>

#include "numlib/processor_vectors.h"

namespace vexa {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;
// Up to here the multiple of pi/2 has at most 20 bits.
constexpr double kFarAngle = 0x1p20;
// ln 2 in two parts; the upper has 32 bits, so that its product with an exponent is exact.
constexpr double kLn2Upper = 0x1.62e42feep-1;
constexpr double kLn2Lower = 0x1.a39ef35793c76p-33;

namespace plain {
#include "numlib/special/elementary_loops.inc"
}  // namespace plain

#if defined(__x86_64__)

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif

namespace avx2 {
// NOLINTNEXTLINE(readability-duplicate-include): one body, several widths
#include "numlib/special/elementary_loops.inc"
}  // namespace avx2

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx512f"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f")
#endif

namespace avx512 {
// NOLINTNEXTLINE(readability-duplicate-include): one body, several widths
#include "numlib/special/elementary_loops.inc"
}  // namespace avx512

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

#endif

constexpr auto allLoops = std::to_array<const ElementaryLoops*>({
  &plain::loops,
#if defined(__x86_64__)
      &avx2::loops, &avx512::loops,
#endif
});

}  // namespace

double sine(double x) { return plain::valueOf<plain::Sine>(x); }
double cosine(double x) { return plain::valueOf<plain::Cosine>(x); }
double exponential(double x) { return plain::valueOf<plain::Exponential>(x); }
double naturalLogarithm(double x) { return plain::valueOf<plain::NaturalLogarithm>(x); }

const ElementaryLoops* elementaryLoopsOfWidth(int width) { return loopsOfWidth(allLoops, width); }

const ElementaryLoops& elementaryLoops() {
  static const ElementaryLoops& best = widestLoops(allLoops);
  return best;
}

}  // namespace vexa
