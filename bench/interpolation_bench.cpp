// Interpolation in tables of various lengths, one value at a time.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "numlib/interpolation/hermite.h"
#include "numlib/interpolation/point_tables.h"

namespace vexa {
namespace {

struct Table {
  explicit Table(const benchmark::State& state) {
    for (int i = 0; i < state.range(0); ++i) {
      x.push_back(i + 0.3 * std::sin(i));
      y.push_back(1.0 / (1.0 + 0.1 * i));
    }
  }
  PointTable points() const { return {x, y}; }
  // A position that moves through the table.
  double next() {
    at += 0.37;
    if (at > x.back()) at -= x.back();
    return at;
  }

  std::vector<double> x, y;
  double at = 0.1;
};

void BM_Linear(benchmark::State& state) {
  Table table(state);
  for (auto _ : state) benchmark::DoNotOptimize(interpolateLinear(table.points(), table.next()));
}
BENCHMARK(BM_Linear)->Arg(10)->Arg(1000);

void BM_Polynomial(benchmark::State& state) {
  Table table(state);
  for (auto _ : state)
    benchmark::DoNotOptimize(interpolatePolynomial(table.points(), table.next()));
}
BENCHMARK(BM_Polynomial)->Arg(5)->Arg(10)->Arg(40);

void BM_Rational(benchmark::State& state) {
  Table table(state);
  for (auto _ : state) benchmark::DoNotOptimize(interpolateRational(table.points(), table.next()));
}
BENCHMARK(BM_Rational)->Arg(5)->Arg(10)->Arg(40);

void BM_Hermite(benchmark::State& state) {
  Table table(state);
  std::vector<double> d(table.x.size());
  monotoneSlopes(table.points(), d);
  for (auto _ : state)
    benchmark::DoNotOptimize(interpolateHermite(table.points(), d, table.next()));
}
BENCHMARK(BM_Hermite)->Arg(10)->Arg(1000);

}  // namespace
}  // namespace vexa
