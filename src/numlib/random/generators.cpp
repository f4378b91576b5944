#include "numlib/random/generators.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace vexa {

namespace {

constexpr std::uint64_t modulus = 2147483647;  // 2^31 - 1, a prime
constexpr std::uint64_t multiplier = 16807;
constexpr int stepsBeforeTable = 8;
constexpr int indexShift = 26;  // the upper five bits of an output choose the entry
constexpr double toUnit = 1.0 / 2147483647.0;
constexpr double largestDeviate = 0.99999988;

// a b mod (2^31 - 1) without a division: 2^31 counts as 1, so the upper bits of the product are
// added to the lower ones.
constexpr std::uint64_t multiply(std::uint64_t a, std::uint64_t b) {
  const std::uint64_t product = a * b;
  const std::uint64_t sum = (product & modulus) + (product >> 31);
  return sum >= modulus ? sum - modulus : sum;
}

// Seeds are made this many at a time. Each follows from the one that many places before it, so
// that a group's products do not wait for each other.
constexpr std::size_t groupSize = 8;

constexpr std::uint64_t groupMultiplier = [] {
  std::uint64_t power = 1;
  for (std::size_t i = 0; i < groupSize; ++i) power = multiply(power, multiplier);
  return power;
}();

constexpr std::size_t indexOf(std::int32_t output) {
  return static_cast<std::size_t>(static_cast<std::uint32_t>(output) >> indexShift);
}

double toDeviate(std::int32_t output) { return std::min(output * toUnit, largestDeviate); }

std::int32_t nextSeed(std::int32_t seed) {
  return static_cast<std::int32_t>(multiply(static_cast<std::uint64_t>(seed), multiplier));
}

}  // namespace

void UniformGenerator::restart(std::int32_t& seed) {
  // The modulus itself is no seed: every number after it would be 0.
  const std::int64_t start = std::max<std::int64_t>(1, -static_cast<std::int64_t>(seed));
  seed = start >= static_cast<std::int64_t>(modulus) ? 1 : static_cast<std::int32_t>(start);
  for (int i = 0; i < stepsBeforeTable; ++i) seed = nextSeed(seed);
  for (std::size_t i = m_table.size(); i-- > 0;) m_table[i] = seed = nextSeed(seed);
  m_last = m_table[0];
}

double UniformGenerator::draw(std::int32_t& seed) {
  if (mustRestart(seed)) restart(seed);
  seed = nextSeed(seed);
  std::int32_t& entry = m_table[indexOf(m_last)];
  m_last = entry;
  entry = seed;
  return toDeviate(m_last);
}

void UniformGenerator::fill(std::span<double> values, std::int32_t& seed) {
  if (mustRestart(seed)) restart(seed);
  std::array<std::uint64_t, groupSize> seeds;
  seeds[0] = multiply(static_cast<std::uint64_t>(seed), multiplier);
  for (std::size_t i = 1; i < groupSize; ++i) seeds[i] = multiply(seeds[i - 1], multiplier);
  std::array<std::int32_t, 32> table = m_table;
  std::int32_t last = m_last;
  std::size_t done = 0;
  for (; values.size() - done >= groupSize; done += groupSize) {
    double* const group = values.data() + done;
    seed = static_cast<std::int32_t>(seeds[groupSize - 1]);
    for (std::size_t i = 0; i < groupSize; ++i) {
      std::int32_t& entry = table[indexOf(last)];
      last = entry;
      entry = static_cast<std::int32_t>(seeds[i]);
      group[i] = toDeviate(last);
    }
    for (std::uint64_t& next : seeds) next = multiply(next, groupMultiplier);
  }
  m_table = table;
  m_last = last;
  for (double& value : values.subspan(done)) value = draw(seed);
}

double NormalGenerator::draw(std::int32_t& seed) {
  if (m_hasSpare) {
    m_hasSpare = false;
    return m_spare;
  }
  double p, q, r;
  do {
    p = 2.0 * m_uniform.draw(seed) - 1.0;
    q = 2.0 * m_uniform.draw(seed) - 1.0;
    r = p * p + q * q;
  } while (r >= 1.0 || r == 0.0);
  const double f = std::sqrt(-2.0 * std::log(r) / r);
  m_spare = p * f;
  m_hasSpare = true;
  return q * f;
}

void NormalGenerator::fill(std::span<double> values, std::int32_t& seed) {
  for (double& value : values) value = draw(seed);
}

}  // namespace vexa
