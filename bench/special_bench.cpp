// Special functions by their arguments: each call takes the next of a thousand places.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

#include "numlib/special/bessel.h"
#include "numlib/special/beta_functions.h"
#include "numlib/special/elliptic_integrals.h"

namespace vexa {
namespace {

constexpr std::size_t kPlaces = 1000;

// `function` of the first parameter and of places spread over (0, reach].
template <class Function>
void overPlaces(benchmark::State& state, double reach, Function function) {
  std::vector<double> places(kPlaces);
  for (std::size_t i = 0; i < kPlaces; ++i)
    places[i] = reach * static_cast<double>(i + 1) / static_cast<double>(kPlaces);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(function(places[i]));
    i = i + 1 < kPlaces ? i + 1 : 0;
  }
}

// The order in tenths.
double order(const benchmark::State& state) { return static_cast<double>(state.range(0)) / 10; }

void BM_BesselJ(benchmark::State& state) {
  overPlaces(state, 50, [n = order(state)](double x) { return besselJ(n, x); });
}
BENCHMARK(BM_BesselJ)->Arg(0)->Arg(10)->Arg(25)->Arg(200);

void BM_BesselK(benchmark::State& state) {
  overPlaces(state, 50, [n = order(state)](double x) { return besselK(n, x); });
}
BENCHMARK(BM_BesselK)->Arg(0)->Arg(25);

void BM_IncompleteGamma(benchmark::State& state) {
  overPlaces(state, 20, [](double x) { return regularizedGamma(5.5, x, Tail::lower); });
}
BENCHMARK(BM_IncompleteGamma);

void BM_IncompleteBeta(benchmark::State& state) {
  overPlaces(state, 1, [](double x) { return regularizedBeta(5.5, 2.25, x, Tail::lower); });
}
BENCHMARK(BM_IncompleteBeta);

void BM_EllipticF(benchmark::State& state) {
  overPlaces(state, 6, [](double phi) { return ellipticF(phi, 0.8); });
}
BENCHMARK(BM_EllipticF);

}  // namespace
}  // namespace vexa
