// What faults and interruptions inside an expression leave behind, which no program can see.

#include "values/running_expressions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interp/functions.h"
#include "support/scripted_shell.h"

namespace vexa {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

std::vector<double> elementsOf(const Matrix* matrix) {
  if (!matrix) return {};
  return {matrix->elements().begin(), matrix->elements().end()};
}

TEST(RunningExpressions, FreeTheVariableAfterAFault) {
  ScriptedSession session("main() { }");
  session.run();
  EXPECT_THAT(session.evaluate("integ(x, 0, 1, series(k, 1, 2, 1/(x - x)))"), HasSubstr("#14*"));
  EXPECT_THAT(session.evaluate("x"), HasSubstr("#54"));
  EXPECT_EQ(session.scope.state().calls.dummyCount(), 0);
  EXPECT_EQ(session.evaluate("integ(x, 0, 1, integ(k, 0, 2, x))"), "           1\n");
}

// In a run the row is seen after a fault; in the calculator it is used again. The function has
// given it another order before it fails.
TEST(RunningExpressions, RestoreTheRowAfterAFault) {
  const char* const calls[] = {
      "grad(v, g, v[1]/(v[2] - v[2]))", "jacob(v, J, f)",
      "minzs(v, 1/(v[1] - v[1]))",      "odesint(t, 0, 1, v, v[2], 1/(v[1] - v[1]))",
      "odesint(t, 0, 1, v, f3)",        "nfit(t, !{1,2,3}, !{1,2,3}, v, 1/(v[1] - v[1]))",
  };
  const std::string functions =
      "f(mat v, mat r) { v[1] = 8; !v = {1,2,3}; return 1/0; }\n"
      "f3(float t, mat v, mat r) { v[1] = 8; r[1] = 1/0; }\n";
  for (const std::string call : calls) {
    ScriptedSession session(functions + "mat v[2]; main() { !v = {3,4}; " + call + "; }");
    session.run();
    EXPECT_EQ(session.view.lastOutcome(), RunOutcome::fault) << call;
    EXPECT_THAT(elementsOf(session.view.matrix("v")), ElementsAre(3, 4)) << call;
    EXPECT_THAT(session.evaluate(call), HasSubstr("Error #")) << call;
    EXPECT_EQ(session.evaluate("v"), "           3           4\n") << call;
    EXPECT_EQ(session.scope.state().tempMatrices.inUse(), 0) << call;
  }
}

TEST(RunningExpressions, KeepTheRowThatAFailedFunctionFills) {
  ScriptedSession session(
      "f(mat v, mat r) { r[1] = 7; x = 1/0; }\nmain() { !v = {3,4}; jacob(v, J, f); }");
  session.run();
  ASSERT_NE(session.view.matrix("r"), nullptr);
  EXPECT_THAT(elementsOf(session.view.matrix("r")), ElementsAre(7, 0));
}

TEST(RunningExpressions, HearEscBetweenEvaluations) {
  for (const std::string call :
       {"series(k, 1, 1e15, 1)", "integ(x, 0, 1, integ(y, 0, 1, integ(z, 0, 1, abs(x - y + z))))",
        "minzs(v, sin(1e3*v[1]) + cos(1e3*v[2]))",
        "odesint(t, 0, 1e9, v, v[2], -v[1], \"maxstep=\", 0.01)"}) {
    ScriptedSession session("main() { !v = {3,4}; iter# = 1e9; " + call + "; }");
    session.shell.interrupts = {{5, Interrupt::stop}};
    session.run();
    EXPECT_EQ(session.view.lastOutcome(), RunOutcome::interrupted) << call;
  }
}

TEST(RunningExpressions, CallsOfABuiltinStandInTheListOfFrames) {
  ScriptedSession session(
      "f(mat v)\n{ notice(\"here\"); return 1; }\nmain()\n{\n"
      "  !v = {1};\n  grad(v, g,\n    f);\n}");
  bool seen = false;
  session.shell.onMessage = [&](const MessageRequest&) {
    const auto frames = session.view.frames();
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[1].line, 7);
    EXPECT_EQ(frames[0].line, 2);
    seen = true;
  };
  session.run();
  EXPECT_TRUE(seen);
}

}  // namespace
}  // namespace vexa
