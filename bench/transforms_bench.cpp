// Sorting with and without a companion, and Fourier transforms that stay in the cache and do not.

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "numlib/transforms/fourier.h"
#include "numlib/transforms/sorting.h"

namespace vexa {
namespace {

std::vector<double> scatteredValues(std::size_t count) {
  std::vector<double> values(count);
  for (std::size_t i = 0; i < count; ++i)
    values[i] = std::sin(static_cast<double>(i) * static_cast<double>(i % 1009));
  return values;
}

void sortValues(benchmark::State& state) {
  const auto values = scatteredValues(static_cast<std::size_t>(state.range(0)));
  std::vector<double> sorted;
  for (auto _ : state) {
    sorted = values;
    sortAscending(sorted);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(sortValues)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void sortPairs(benchmark::State& state) {
  const auto values = scatteredValues(static_cast<std::size_t>(state.range(0)));
  std::vector<double> keys, companions;
  for (auto _ : state) {
    keys = companions = values;
    sortAscending(keys, companions);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(sortPairs)->Arg(1000000)->Unit(benchmark::kMillisecond);

// There and back, so that the numbers stay in their range.
void transformTwice(benchmark::State& state) {
  auto parts = scatteredValues(2 * static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    fourierTransform(parts, FourierDirection::forward);
    fourierTransform(parts, FourierDirection::inverse);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(2 * state.iterations() * state.range(0));
}
BENCHMARK(transformTwice)->Arg(1 << 10)->Arg(1 << 19)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace vexa
