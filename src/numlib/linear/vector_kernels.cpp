#include "numlib/linear/vector_kernels.h"

#include <array>
#include <cstdint>
#include <cstring>

#include "numlib/processor_vectors.h"

#if defined(__x86_64__)
#include <immintrin.h>
#define WIDE_VECTORS 1
#else
#define WIDE_VECTORS 0
#endif

namespace vexa {

namespace {

// --- Two lanes: what every processor of the family has.

namespace plain {

constexpr const char* kName = "plain";
constexpr std::size_t kLanes = 2;
constexpr int kTileRows = 4;
using V = double __attribute__((vector_size(16)));

inline V load(const double* at) {
  V v;
  std::memcpy(&v, at, sizeof v);
  return v;
}
inline void store(double* at, V v) { std::memcpy(at, &v, sizeof v); }
inline V spread(double x) { return V{x, x}; }
inline V fused(V a, V b, V c) { return a * b + c; }

struct Part {};
inline Part partOf(std::size_t) { return {}; }
inline V loadPart(const double* at, Part) { return V{at[0], 0.0}; }
inline void storePart(double* at, Part, V v) { at[0] = v[0]; }

#define TILE_ROWS(X) X(0) X(1) X(2) X(3)
#include "numlib/linear/vector_kernels.inc"
#undef TILE_ROWS

}  // namespace plain

#if WIDE_VECTORS

// --- Four lanes.

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2,fma"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2,fma")
#endif

namespace avx2 {

constexpr const char* kName = "avx2";
constexpr std::size_t kLanes = 4;
constexpr int kTileRows = 4;
using V = __m256d;

inline V load(const double* at) { return _mm256_loadu_pd(at); }
inline void store(double* at, V v) { _mm256_storeu_pd(at, v); }
inline V spread(double x) { return _mm256_set1_pd(x); }
inline V fused(V a, V b, V c) { return _mm256_fmadd_pd(a, b, c); }

using Part = __m256i;
inline Part partOf(std::size_t count) {
  alignas(32) static constexpr std::int64_t masks[] = {-1, -1, -1, -1, 0, 0, 0, 0};
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(masks + kLanes - count));
}
inline V loadPart(const double* at, Part part) { return _mm256_maskload_pd(at, part); }
inline void storePart(double* at, Part part, V v) { _mm256_maskstore_pd(at, part, v); }

#define TILE_ROWS(X) X(0) X(1) X(2) X(3)
#include "numlib/linear/vector_kernels.inc"
#undef TILE_ROWS

}  // namespace avx2

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

// --- Eight lanes.

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx512f"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f")
#endif

namespace avx512 {

constexpr const char* kName = "avx512";
constexpr std::size_t kLanes = 8;
constexpr int kTileRows = 8;
using V = __m512d;

inline V load(const double* at) { return _mm512_loadu_pd(at); }
inline void store(double* at, V v) { _mm512_storeu_pd(at, v); }
inline V spread(double x) { return _mm512_set1_pd(x); }
inline V fused(V a, V b, V c) { return _mm512_fmadd_pd(a, b, c); }

using Part = __mmask8;
inline Part partOf(std::size_t count) { return static_cast<Part>((1u << count) - 1); }
inline V loadPart(const double* at, Part part) { return _mm512_maskz_loadu_pd(part, at); }
inline void storePart(double* at, Part part, V v) { _mm512_mask_storeu_pd(at, part, v); }

#define TILE_ROWS(X) X(0) X(1) X(2) X(3) X(4) X(5) X(6) X(7)
#include "numlib/linear/vector_kernels.inc"
#undef TILE_ROWS

}  // namespace avx512

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

#endif  // WIDE_VECTORS

constexpr auto allKernels = std::to_array<const VectorKernels*>({
  &plain::kernels,
#if WIDE_VECTORS
      &avx2::kernels, &avx512::kernels,
#endif
});

}  // namespace

const VectorKernels* vectorKernelsOfWidth(int width) { return loopsOfWidth(allKernels, width); }

const VectorKernels& vectorKernels() {
  static const VectorKernels& best = widestLoops(allKernels);
  return best;
}

}  // namespace vexa
