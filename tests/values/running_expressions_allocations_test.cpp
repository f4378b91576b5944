// Evaluating an expression again and again allocates nothing: a call that needs hundreds of times
// as many values allocates as often as a short one, but for what grows with its result.
#include <gtest/gtest.h>

#include <string>

#include "bench/allocation_counter.h"
#include "support/scripted_shell.h"

namespace vexa {
namespace {

struct Count {
  std::size_t allocations = 0;
  double evaluations = 0;
};

// c() counts the evaluations and is worth 0.
Count countOf(const std::string& call) {
  ScriptedSession session("c() { e = e + 1; return 0; }\nfloat e;\nmain() { e = 0; " + call +
                          "; }");
  const std::size_t before = allocationCount();
  session.run();
  const Count count{allocationCount() - before, std::stod(session.evaluate("e"))};
  EXPECT_EQ(session.view.lastOutcome(), RunOutcome::normal) << call;
  return count;
}

TEST(RunningExpressions, AllocateNothingForEachEvaluation) {
  struct Case {
    std::string few, many;
    double evaluations = 50;  // at least so many times as many
    std::size_t more = 0;     // allocations
  };
  const std::string data =
      "int i; mat x[1,N]; mat y[1,N]; !v = {250, 5e-4};"
      "for (i = 1; i <= N; i = i + 1) { x[i] = 60 + 700*i/N;"
      "y[i] = 239*(1 - exp(-5.5e-4*x[i])) + sin(3*i); }";
  const auto points = [&data](const std::string& count, const std::string& call) {
    std::string text = data + call;
    for (std::size_t at; (at = text.find('N')) != std::string::npos;) text.replace(at, 1, count);
    return text;
  };
  const std::string start = "!v = {1, 0};";
  const Case cases[] = {
      {"s = series(k, 1, 10, c() + k)", "s = series(k, 1, 10000, c() + k)"},
      // A heap of pieces that doubles.
      {"s = integ(x, 0, 1, c() + x)", "s = integ(x, 0, 1, c() + 1/sqrt(x))", 50, 10},
      {"s = imteg(x, 0, 1, c() + x)", "s = imteg(x, 0, i#, c() + exp(-x)*cos(5*x))", 2},
      {"s = root1(x, 0, 1, c() + x)", "s = root1(x, 0, 20, c() + cos(x) - x/15)", 5},
      {"s = deriv(x, 1, c() + x)", "s = deriv(x, 1, c() + sin(1000*x), 4)", 2},
      {start + "s = minzs(v, c() + 0)",
       start + "s = minzs(v, c() + 100*(v[2] - v[1]^2)^2 + (v[1] + 1.3)^2)", 5},
      {start + "odesint(t, 0, 1, v, v[2], c() - v[1], \"stiff\")",
       start + "odesint(t, 0, 100, v, v[2], c() - v[1], \"stiff\")"},
      // The library's two lists for each step.
      {start + "odesint(t, 0, 1, v, v[2], c() - v[1])",
       start + "odesint(t, 0, 300, v, v[2], c() - v[1])", 20, 500},
      // A list of points that doubles.
      {points("10", "s = lcfit(t, x, y, a, c() + 1, t)"),
       points("1000", "s = lcfit(t, x, y, a, c() + 1, t)"), 90, 10},
      {points("10", "s = nfit(t, x, y, v, c() + v[1]*(1 - exp(-v[2]*t)))"),
       points("1000", "s = nfit(t, x, y, v, c() + v[1]*(1 - exp(-v[2]*t)))")},
  };
  for (const Case& c : cases) {
    const Count few = countOf(c.few), many = countOf(c.many);
    EXPECT_GE(many.evaluations, c.evaluations * few.evaluations) << c.many;
    EXPECT_LE(many.allocations, few.allocations + c.more)
        << c.many << ": " << many.evaluations << " evaluations";
  }
}

}  // namespace
}  // namespace vexa
