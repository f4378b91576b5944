// Eigenvalues and singular values by order.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "numlib/eigen/definite_pair.h"
#include "numlib/eigen/singular_values.h"
#include "numlib/eigen/symmetric_eigen.h"

namespace vexa {
namespace {

std::vector<double> testMatrix(int rows, int cols) {
  std::vector<double> a(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols));
  std::size_t at = 0;
  for (int i = 1; i <= rows; ++i)
    for (int j = 1; j <= cols; ++j) a[at++] = std::sin(0.7 * (i * j)) + (i == j ? 0.01 * i : 0.0);
  return a;
}

// Times `work` on a fresh copy of a matrix.
template <class Work>
void onCopies(benchmark::State& state, int rows, int cols, Work work) {
  const std::vector<double> original = testMatrix(rows, cols);
  std::vector<double> copy(original.size());
  std::vector<double> values(static_cast<std::size_t>(cols));
  for (auto _ : state) {
    state.PauseTiming();
    std::ranges::copy(original, copy.begin());
    state.ResumeTiming();
    work(MatrixView{copy.data(), rows, cols}, std::span(values));
    benchmark::ClobberMemory();
  }
}

void BM_EigenSymmetric(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  onCopies(state, n, n, [](MatrixView a, std::span<double> values) {
    benchmark::DoNotOptimize(eigenSymmetric(a, values));
  });
}
BENCHMARK(BM_EigenSymmetric)->Arg(3)->Arg(30)->Arg(200)->Arg(500)->Unit(benchmark::kMicrosecond);

void BM_EigenPair(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<double> b(static_cast<std::size_t>(n) * static_cast<std::size_t>(n), 0.1);
  for (int i = 0; i < n; ++i) MatrixView{b.data(), n, n}(i, i) = 2.0;
  onCopies(state, n, n, [&](MatrixView a, std::span<double> values) {
    benchmark::DoNotOptimize(eigenDefinitePair(a, MatrixView{b.data(), n, n}, values));
  });
}
BENCHMARK(BM_EigenPair)->Arg(30)->Arg(200)->Unit(benchmark::kMicrosecond);

void BM_SingularValues(benchmark::State& state) {
  const int m = static_cast<int>(state.range(0));
  const int n = static_cast<int>(state.range(1));
  std::vector<double> v(static_cast<std::size_t>(n) * static_cast<std::size_t>(n));
  onCopies(state, m, n, [&](MatrixView a, std::span<double> values) {
    benchmark::DoNotOptimize(decomposeSingular(a, values, MatrixView{v.data(), n, n}));
  });
}
BENCHMARK(BM_SingularValues)
    ->Args({30, 20})
    ->Args({300, 200})
    ->Args({1000, 50})
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace vexa
