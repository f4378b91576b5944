#include "numlib/random/generators.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

namespace vexa {
namespace {

struct ReferenceRow {
  std::int32_t seed;
  std::vector<double> numbers;
};

// Rows of tests/data/random, see the README there.
std::vector<ReferenceRow> readReference(const std::string& name) {
  std::vector<ReferenceRow> rows;
  std::ifstream file(VEXA_TEST_DATA "/random/" + name);
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    std::string field;
    std::getline(fields, field, ',');
    ReferenceRow row{std::stoi(field), {}};
    while (std::getline(fields, field, ',')) row.numbers.push_back(std::stod(field));
    rows.push_back(std::move(row));
  }
  return rows;
}

TEST(UniformGenerator, DrawsAreThoseOfTheReference) {
  const auto rows = readReference("uniform.csv");
  ASSERT_EQ(rows.size(), 3u);
  for (const ReferenceRow& row : rows) {
    ASSERT_EQ(row.numbers.size(), 1000u);
    UniformGenerator generator;
    std::int32_t seed = -row.seed;
    for (std::size_t i = 0; i < row.numbers.size(); ++i)
      ASSERT_EQ(generator.draw(seed), std::min(row.numbers[i] * (1.0 / 2147483647.0), 0.99999988))
          << "draw " << i << " of seed " << row.seed;
  }
}

TEST(UniformGenerator, FillingIsDrawing) {
  for (const std::size_t count : {0u, 1u, 7u, 8u, 9u, 64u, 1003u}) {
    UniformGenerator one, other;
    std::int32_t seed = -99, otherSeed = -99;
    std::vector<double> filled(count), drawn;
    one.fill(filled, seed);
    for (std::size_t i = 0; i < count; ++i) drawn.push_back(other.draw(otherSeed));
    EXPECT_EQ(filled, drawn) << count;
    EXPECT_EQ(one.draw(seed), other.draw(otherSeed)) << "the draw after " << count;
  }
}

TEST(UniformGenerator, EverySeedStartsASequenceInsideTheUnitInterval) {
  constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
  for (const std::int32_t start : {0, -1, -7, -largest, -largest - 1, 1 - largest}) {
    UniformGenerator generator;
    std::int32_t seed = start;
    for (int i = 0; i < 100; ++i) {
      const double x = generator.draw(seed);
      ASSERT_GT(x, 0.0) << start;
      ASSERT_LT(x, 1.0) << start;
      ASSERT_GT(seed, 0) << start;
    }
  }
  // The modulus as a seed would give nothing but 0.
  UniformGenerator one, other;
  std::int32_t modulus = -largest, first = -1;
  EXPECT_EQ(one.draw(modulus), other.draw(first));
}

// The logarithm, a quotient, a root and a product of doubles: each within one rounding.
TEST(NormalGenerator, DrawsAreThoseOfTheReference) {
  const auto rows = readReference("normal.csv");
  ASSERT_EQ(rows.size(), 2u);
  for (const ReferenceRow& row : rows) {
    ASSERT_EQ(row.numbers.size(), 1000u);
    UniformGenerator uniform;
    NormalGenerator generator(uniform);
    std::int32_t seed = -row.seed;
    for (std::size_t i = 0; i < row.numbers.size(); ++i)
      ASSERT_NEAR(generator.draw(seed), row.numbers[i],
                  3 * std::numeric_limits<double>::epsilon() * std::fabs(row.numbers[i]))
          << "draw " << i << " of seed " << row.seed;
  }
}

}  // namespace
}  // namespace vexa
