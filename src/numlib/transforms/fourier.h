#pragma once

// The fast Fourier transform of complex numbers that lie as real and imaginary part in turn.

#include <cstddef>
#include <span>

#include "numlib/linear/interrupt_test.h"

namespace vexa {

enum class FourierDirection {
  forward,  // point j becomes the sum over k of v[k] exp(2 pi i j k / N)
  inverse   // the same with -2 pi i, divided by N: restores what forward transformed
};

// Whether that many complex points can be transformed: a power of two not below 4.
bool isTransformLength(std::size_t points);

// Transforms in place. `parts` holds twice as many numbers as points, of which there are a power of
// two. Beside it a table of as many twiddle factors as points is kept meanwhile. Interrupted, the
// numbers are of no use.
Outcome fourierTransform(std::span<double> parts, FourierDirection direction,
                         const InterruptTest& interrupted = {});

}  // namespace vexa
