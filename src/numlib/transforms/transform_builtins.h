#pragma once

namespace vexa {

// sort(M [, N]): in place, upward; N's elements move along.
double sortBuiltin();
// fft(V, dir): in place, real and imaginary parts in turn.
double fftBuiltin();

}  // namespace vexa
