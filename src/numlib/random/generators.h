#pragma once

// Uniform and normal pseudo-random numbers. All sequences are exact: the same seed gives the same
// doubles on every machine.

#include <array>
#include <cstdint>
#include <span>

namespace vexa {

// The minimal standard generator of Park and Miller, seed <- 16807 seed mod (2^31 - 1), whose
// outputs pass through a table of 32 entries (Bays and Durham's shuffle): Communications of the ACM
// 31 (1988), pages 1192 to 1201. The generator holds the table and the last output; the seed is the
// caller's, so that several seeds can share one table.
class UniformGenerator {
 public:
  // A deviate above 0 and below 1. A seed of 0 or below starts a sequence at -seed: it is replaced
  // and the table is filled anew.
  double draw(std::int32_t& seed);
  // The same numbers as so many draws.
  void fill(std::span<double> values, std::int32_t& seed);

 private:
  void restart(std::int32_t& seed);
  bool mustRestart(std::int32_t seed) const { return seed <= 0 || m_last == 0; }

  std::array<std::int32_t, 32> m_table{};
  std::int32_t m_last = 0;
};

// Normal deviates of mean 0 and variance 1 by Marsaglia's polar method, which makes them in pairs:
// the second of a pair is kept for the next draw, whichever seed that uses.
class NormalGenerator {
 public:
  explicit NormalGenerator(UniformGenerator& uniform) : m_uniform(uniform) {}

  double draw(std::int32_t& seed);
  void fill(std::span<double> values, std::int32_t& seed);
  void dropSpare() { m_hasSpare = false; }

 private:
  UniformGenerator& m_uniform;
  bool m_hasSpare = false;
  double m_spare = 0;
};

}  // namespace vexa
