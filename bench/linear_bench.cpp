// Linear systems by order, with our own kernels (0) and with the system's BLAS (1).

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "numlib/linear/band_system.h"
#include "numlib/linear/dense_basics.h"
#include "numlib/linear/dense_kernels.h"
#include "numlib/linear/lu_factorisation.h"
#include "numlib/linear/symmetric_factorisation.h"
#include "numlib/linear/tridiagonal_system.h"

namespace vexa {
namespace {

constexpr double kTolerance = 1e-16;

std::size_t size(int count) { return static_cast<std::size_t>(count); }

// Symmetric in its diagonal only; the diagonal keeps every factorisation going.
std::vector<double> testMatrix(int n) {
  std::vector<double> a(size(n) * size(n));
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) a[size(i) * size(n) + size(j)] = std::sin(0.7 * (i + 1) * (j + 1));
    a[size(i) * size(n) + size(i)] += 0.1 * n;
  }
  return a;
}

// Times `work` on a fresh copy of a matrix of the order in the first argument; the second chooses
// the provider, the number of multiplications tells the speed.
template <class Work>
void onCopies(benchmark::State& state, double multiplications, Work work) {
  const int n = static_cast<int>(state.range(0));
  allowSystemBlas(state.range(1) != 0);
  const std::vector<double> original = testMatrix(n);
  std::vector<double> copy(original.size());
  std::vector<double> vector(size(n));
  const MatrixView a{copy.data(), n, n};
  for (auto _ : state) {
    state.PauseTiming();
    std::ranges::copy(original, copy.begin());
    std::ranges::fill(vector, 1.0);
    state.ResumeTiming();
    work(a, std::span(vector));
    benchmark::ClobberMemory();
  }
  state.counters["GFLOP/s"] =
      benchmark::Counter(2e-9 * multiplications, benchmark::Counter::kIsIterationInvariantRate);
}

double cube(const benchmark::State& state) { return std::pow(double(state.range(0)), 3); }

void BM_Multiply(benchmark::State& state) {
  const std::vector<double> b = testMatrix(static_cast<int>(state.range(0)));
  std::vector<double> c(b.size());
  onCopies(state, cube(state), [&](MatrixView a, std::span<double>) {
    benchmark::DoNotOptimize(
        multiply(a, ConstMatrixView(b.data(), a.rows, a.cols), {c.data(), a.rows, a.cols}));
  });
}

void BM_Solve(benchmark::State& state) {
  const std::size_t n = static_cast<std::size_t>(state.range(0));
  std::vector<double> storage(PivotList::elementsFor(n)), scale(n);
  onCopies(state, cube(state) / 3, [&](MatrixView a, std::span<double> b) {
    double sign = 1;
    benchmark::DoNotOptimize(luFactor(a, PivotList(storage), scale, kTolerance, sign));
    luSolve(a, PivotList(storage), b);
  });
}

void BM_Invert(benchmark::State& state) {
  std::vector<double> inverse(size(static_cast<int>(state.range(0) * state.range(0))));
  onCopies(state, cube(state), [&](MatrixView a, std::span<double>) {
    benchmark::DoNotOptimize(invertInto(a, {inverse.data(), a.rows, a.cols}, kTolerance));
  });
}

void BM_Symmetric(benchmark::State& state) {
  onCopies(state, cube(state) / 6, [](MatrixView a, std::span<double> b) {
    benchmark::DoNotOptimize(ldltFactor(a, kTolerance));
    ldltSolve(a, b);
  });
}

void BM_Cholesky(benchmark::State& state) {
  onCopies(state, cube(state) / 6, [](MatrixView a, std::span<double> b) {
    benchmark::DoNotOptimize(choleskyFactor(a));
    choleskySolve(a, b);
  });
}

void BM_Upward(benchmark::State& state) {
  onCopies(state, cube(state) / 6, [](MatrixView a, std::span<double> b) {
    benchmark::DoNotOptimize(eliminateUpward(a, b, 1, kTolerance, Reduce::matrixAndVector));
    substituteDownward(a, b, 1);
  });
}

void orders(benchmark::internal::Benchmark* benchmark) {
  for (const int provider : {0, 1}) {
    for (const int n : {20, 100, 400, 600, 1000, 1024}) benchmark->Args({n, provider});
  }
  benchmark->Unit(benchmark::kMicrosecond);
}
BENCHMARK(BM_Multiply)->Apply(orders);
BENCHMARK(BM_Solve)->Apply(orders);
BENCHMARK(BM_Invert)->Apply(orders);
BENCHMARK(BM_Symmetric)->Apply(orders);
BENCHMARK(BM_Cholesky)->Apply(orders);
BENCHMARK(BM_Upward)->Apply(orders);

void BM_Band(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0)), b = static_cast<int>(state.range(1));
  const std::vector<double> original(size(n) * size(b), 1.0 / b);
  std::vector<double> band(original.size()), v(size(n));
  for (auto _ : state) {
    state.PauseTiming();
    std::ranges::copy(original, band.begin());
    for (int i = 0; i < n; ++i) band[size(i) * size(b)] = 4.0;
    std::ranges::fill(v, 1.0);
    state.ResumeTiming();
    long zeroPivots = 0;
    benchmark::DoNotOptimize(bandFactor({band.data(), n, b}, zeroPivots));
    bandSolve({band.data(), n, b}, v);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_Band)
    ->Args({20000, 20})
    ->Args({20000, 3})
    ->Args({2000, 200})
    ->Unit(benchmark::kMicrosecond);

void BM_Tridiagonal(benchmark::State& state) {
  const std::size_t n = static_cast<std::size_t>(state.range(0));
  const std::vector<double> a(n, 1.0), d(n, 4.0), c(n, -1.0);
  std::vector<double> r(n, 1.0), gamma(n);
  for (auto _ : state) {
    benchmark::DoNotOptimize(tridiagonalSolve(a, d, c, r, gamma));
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_Tridiagonal)->Arg(100000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace vexa
