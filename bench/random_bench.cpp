// Random numbers one by one and by the matrix.

#include <benchmark/benchmark.h>

#include <vector>

#include "numlib/random/generators.h"

namespace vexa {
namespace {

void uniformDraws(benchmark::State& state) {
  UniformGenerator generator;
  std::int32_t seed = -1;
  for (auto _ : state) benchmark::DoNotOptimize(generator.draw(seed));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(uniformDraws);

void uniformFill(benchmark::State& state) {
  std::vector<double> values(static_cast<std::size_t>(state.range(0)));
  UniformGenerator generator;
  for (auto _ : state) {
    std::int32_t seed = -1;
    generator.fill(values, seed);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(uniformFill)->Arg(4000000)->Unit(benchmark::kMillisecond);

void normalFill(benchmark::State& state) {
  std::vector<double> values(static_cast<std::size_t>(state.range(0)));
  UniformGenerator uniform;
  NormalGenerator generator(uniform);
  for (auto _ : state) {
    std::int32_t seed = -1;
    generator.fill(values, seed);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(normalFill)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vexa
