// Moments of a million values: all of them, and those that a filter selects.

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "numlib/statistics/moments.h"

namespace vexa {
namespace {

std::vector<double> waves(std::size_t count) {
  std::vector<double> values(count);
  for (std::size_t i = 0; i < count; ++i) values[i] = std::sin(0.7 * static_cast<double>(i));
  return values;
}

void momentsOfAll(benchmark::State& state) {
  const auto values = waves(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    const Moments moments = *computeMoments(values, 1e30);
    benchmark::DoNotOptimize(firstPlaceOf(moments.largest, values, {}));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(momentsOfAll)->Arg(1000)->Arg(1000000);

void momentsOfSelected(benchmark::State& state) {
  const auto values = waves(static_cast<std::size_t>(state.range(0)));
  const Selection positive{false, true, Relation::greater, 0, 0};
  for (auto _ : state)
    benchmark::DoNotOptimize(computeMoments(selectValues(values, positive), 1e30));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(momentsOfSelected)->Arg(1000000);

}  // namespace
}  // namespace vexa
