#include "numlib/calculus/linear_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "numlib/calculus/clp_library.h"

namespace vexa {
namespace {

using Numbers = std::vector<double>;
using Senses = std::vector<RowSense>;

constexpr double none = std::numeric_limits<double>::infinity();
constexpr RowSense below = RowSense::below, equal = RowSense::equal, above = RowSense::above;

struct Program {
  Objective objective;
  Numbers c, a, b;
  Senses senses;
  Numbers low = Numbers(c.size(), 0.0), high = Numbers(c.size(), none);

  ProgramSolution solve(int mostIterations = 10000) const {
    return solveLinearProgram(
        {.objective = objective,
         .c = c,
         .a = {a.data(), static_cast<int>(b.size()), static_cast<int>(c.size())},
         .b = b,
         .senses = senses,
         .low = low,
         .high = high},
        mostIterations);
  }
  // Rows and bounds are kept within 1e-9 of their size.
  void expectFeasible(const Numbers& x) const {
    for (std::size_t i = 0; i < b.size(); ++i) {
      double sum = 0;
      for (std::size_t j = 0; j < c.size(); ++j) sum += a[i * c.size() + j] * x[j];
      const double allowed = 1e-9 * std::max(1.0, std::fabs(b[i]));
      EXPECT_LE(sum, senses[i] == above ? none : b[i] + allowed) << i;
      EXPECT_GE(sum, senses[i] == below ? -none : b[i] - allowed) << i;
    }
    for (std::size_t j = 0; j < c.size(); ++j) {
      EXPECT_GE(x[j], low[j]) << j;
      EXPECT_LE(x[j], high[j]) << j;
    }
  }
};

class LinearProgramTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!openClp()) GTEST_SKIP() << "libClp.so.1 is not installed";
  }
};

TEST_F(LinearProgramTest, KnownOptima) {
  struct Case {
    const char* what;
    Program program;
    double optimum;
  };
  const Case cases[] = {
      {"two products",
       {Objective::greatest, {3, 5}, {1, 0, 0, 2, 3, 2}, {4, 12, 18}, {below, below, below}},
       36},
      {"equation and inequality",
       {Objective::least, {2, 3, 1}, {1, 1, 0, 1, 2, 3}, {4, 12}, {equal, above}},
       32.0 / 3},
      {"redundant equation",
       {Objective::least, {1, 2}, {1, 1, 2, 2, 1, -1}, {3, 6, 1}, {equal, equal, below}},
       4},
      {"cycles under the plain rule (Beale)",
       {Objective::least,
        {-0.75, 150, -0.02, 6},
        {0.25, -60, -0.04, 9, 0.5, -90, -0.02, 3, 0, 0, 1, 0},
        {0, 0, 1},
        {below, below, below}},
       -0.05},
      {"negative side", {Objective::least, {1, 1}, {-1, -2}, {-4}, {below}}, 2},
      {"free variable",
       {Objective::least, {1, 0}, {1, 1, 1, -1}, {-3, -5}, {above, above}, {-none, 0}, {none, 1}},
       -4},
      {"upper bounds", {Objective::greatest, {1, 2}, {1, 1}, {10}, {below}, {-1, 2}, {3, 4}}, 11},
      {"costs of 1e-12", {Objective::least, {1e-12, 2e-12}, {1, 1}, {5}, {above}}, 5e-12},
      {"sides of 1e-9", {Objective::greatest, {1}, {1, 1}, {3e-9, 2e-9}, {below, below}}, 2e-9},
      {"rows of 1e-9 and 1e9",
       {Objective::least, {1}, {1e-9, 1e9}, {4e-9, 1e9}, {above, above}},
       4},
      {"sides of 1e-4 and 1e9",
       {Objective::least, {1, 1}, {1, 0, 0, 1}, {1e-4, 1e9}, {above, above}},
       1e9 + 1e-4},
      {"sides of 1 and 1e30",
       {Objective::greatest, {1, 1}, {1, 0, 0, 1}, {1, 1e30}, {below, below}},
       1e30},
      {"costs of 1 and 1e-11",
       {Objective::greatest, {1, 1e-11}, {1, 0, 0, 1}, {1, 1e12}, {below, below}},
       11},
      {"elements of 1e15 and 1e-15",
       {Objective::least, {1e20, 1e-20}, {1e15, 1e-15}, {1}, {above}},
       1e-5},
      {"a column of zeros at its bound",
       {Objective::least, {1, -1}, {1, 0}, {2}, {above}, {0, 0}, {none, 3}},
       -1},
      {"no costs", {Objective::least, {0}, {1}, {5}, {above}}, 0},
      {"a row of zeros", {Objective::greatest, {1}, {0, 1}, {0, 3}, {equal, below}}, 3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ProgramSolution solution = c.program.solve();
    ASSERT_EQ(solution.outcome, ProgramOutcome::optimal);
    EXPECT_NEAR(solution.optimum, c.optimum, 1e-10 * std::fabs(c.optimum));
    c.program.expectFeasible(solution.x);
  }
}

TEST_F(LinearProgramTest, NoOptimum) {
  const Program contradictory{Objective::least, {1}, {1, 1}, {4, 12}, {below, above}};
  EXPECT_EQ(contradictory.solve().outcome, ProgramOutcome::infeasible);
  const Program tiny{Objective::least, {1}, {1e-9, 1e-9}, {1e-9, 2e-9}, {below, above}};
  EXPECT_EQ(tiny.solve().outcome, ProgramOutcome::infeasible)
      << "the library's tolerance is larger";
  for (const double gap : {1e-1, 1e-3, 1e-5, 1e-8}) {
    const Program near{Objective::least, {1, 1}, {1, 1, 1, 1}, {4, 4 + gap}, {equal, equal}};
    EXPECT_EQ(near.solve().outcome, ProgramOutcome::infeasible) << gap;
  }
  const Program openColumn{Objective::least, {3, 0, -3, -4, -5}, {-3, 3, 3, 0, 3}, {6}, {equal}};
  EXPECT_EQ(openColumn.solve().outcome, ProgramOutcome::unbounded);
  const Program emptyAndOpen{Objective::least, {1, -1}, {1, 0}, {-2}, {equal}};
  EXPECT_EQ(emptyAndOpen.solve().outcome, ProgramOutcome::infeasible);
  const Program ray{Objective::greatest, {1, 1}, {1, -1}, {1}, {below}};
  EXPECT_EQ(ray.solve().outcome, ProgramOutcome::unbounded);
  // What the library says of these is wrong: not feasible, with its presolve an optimum, nothing.
  const Program column{Objective::least, {3, 1, 1, -1, -1}, {3, 0, 0, 1, 0}, {5}, {above}};
  EXPECT_EQ(column.solve().outcome, ProgramOutcome::unbounded);
  const Program presolved{Objective::least,
                          {1, 2, 1, 2},
                          {-1, 0, 2, 3, 0, 0.5, 0, 2, 0, 3, 1, 2, 1, 0, 1, 0.5, 0, 0, 0, -1},
                          {16, 11, 16, 4.5, -5},
                          {below, below, above, equal, above},
                          {-2, -none, -2, -none},
                          {9, none, none, none}};
  EXPECT_EQ(presolved.solve().outcome, ProgramOutcome::unbounded);
  const Program zeros{Objective::least, {3}, {0, 0}, {0, -2}, {below, below}, {-none}};
  EXPECT_EQ(zeros.solve().outcome, ProgramOutcome::infeasible);
}

// Random programs with a feasible point: the duals prove the optimum, and tell how it moves.
TEST_F(LinearProgramTest, DualsProveTheOptimum) {
  std::mt19937 generator(60);  // the seed of the random case
  std::uniform_real_distribution<double> any(-1, 1);
  for (int repeat = 0; repeat < 20; ++repeat) {
    constexpr std::size_t m = 12, n = 9;
    Program p{Objective::least, Numbers(n), Numbers(m * n), Numbers(m), Senses(m)};
    Numbers inside(n);
    for (double& x : inside) x = std::max(0.0, any(generator));
    for (double& c : p.c) c = any(generator) + 1.2;
    for (double& a : p.a) a = any(generator);
    for (std::size_t i = 0; i < m; ++i) {
      for (std::size_t j = 0; j < n; ++j) p.b[i] += p.a[i * n + j] * inside[j];
      p.senses[i] = i % 4 == 0 ? equal : above;
      if (i % 4 != 0) p.b[i] -= 0.1 * (1 + any(generator));
    }
    const ProgramSolution solution = p.solve();
    ASSERT_EQ(solution.outcome, ProgramOutcome::optimal) << repeat;
    p.expectFeasible(solution.x);
    double dualValue = 0;
    for (std::size_t i = 0; i < m; ++i) {
      dualValue += p.b[i] * solution.duals[i];
      EXPECT_GE(solution.duals[i], p.senses[i] == above ? -1e-9 : -none) << repeat;
    }
    EXPECT_NEAR(dualValue, solution.optimum, 1e-9 * std::fabs(solution.optimum)) << repeat;
    for (std::size_t j = 0; j < n; ++j) {
      double price = 0;
      for (std::size_t i = 0; i < m; ++i) price += p.a[i * n + j] * solution.duals[i];
      EXPECT_LE(price, p.c[j] + 1e-9) << repeat;
    }
  }
}

TEST_F(LinearProgramTest, IterationsAreBounded) {
  std::mt19937 generator(61);
  std::uniform_real_distribution<double> any(0.1, 1);
  constexpr std::size_t m = 900, n = 900;
  Program p{Objective::greatest, Numbers(n), Numbers(m * n), Numbers(m, 1.0), Senses(m, below)};
  for (double& c : p.c) c = any(generator);
  for (std::size_t k = 0; k < m * n; k += 1 + generator() % 200) p.a[k] = any(generator);
  p.high.assign(n, 1.0);
  EXPECT_EQ(p.solve(1).outcome, ProgramOutcome::tooManyIterations);
  EXPECT_EQ(p.solve(1100).outcome, ProgramOutcome::tooManyIterations) << "in several slices";
  EXPECT_EQ(p.solve(5000).outcome, ProgramOutcome::optimal);
}

}  // namespace
}  // namespace vexa
