// Built-ins that wait for a person: what reaches the shell, and what stops them.

#include "values/message_builtins.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/scripted_shell.h"

namespace vexa {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::Le;
using ::testing::SizeIs;

TEST(MessageBuiltins, SleepingHearsEsc) {
  ScriptedSession session("main() { sleep(0.05); print(\"awake\"); sleep(1e6); }");
  session.shell.recordNotices = true;
  session.shell.interrupts = {{2, Interrupt::escape}, {5, Interrupt::escape}};
  session.shell.answers = {"continue", "terminate"};
  session.run();
  EXPECT_EQ(session.outputText(), "awake");
  EXPECT_THAT(session.shell.calls("wait "), SizeIs(Le(5)));
  EXPECT_EQ(session.view.lastOutcome(), RunOutcome::interrupted);
}

TEST(MessageBuiltins, AFormThatIsNeverRightUsesUpTheLoopBudget) {
  ScriptedSession session(
      "float x = 1; main() { x = 2; inform(\"Data\", \"factor\", x); print(x); }");
  for (int i = 0; i <= loopBudgetAtStart; ++i) session.shell.answers.emplace_back("1/0");
  session.run();
  EXPECT_THAT(session.shell.calls("form "), SizeIs(loopBudgetAtStart));
  EXPECT_EQ(session.shell.calls("form ")[1], "Data again for field 0, factor = 1/0 -> 1/0");
  EXPECT_THAT(session.messages().back(), EndsWith("Program interrupted:   near \") \" on line  1"));
  EXPECT_EQ(session.outputText(), "");
}

TEST(MessageBuiltins, AFormStoresNothingBeforeAllEntriesAreRight) {
  ScriptedSession session(
      "main() { x = 2; mat m[2,2]; string s = \"old\"; inform(\"Data\", x, m, s);"
      " print(\"%g \", x, \"%g\", m, s); }");
  session.shell.answers = {"x + 1", "1,", "new", "2*x", "{x,5}", "new"};
  session.run();
  EXPECT_THAT(session.shell.calls("form "),
              ElementsAre("Data, x = 2 -> x + 1, m = 0,0;0,0 -> 1,, s = old -> new",
                          "Data again for field 1, x = x + 1 -> 2*x, m = 1, -> {x,5}, s = new -> "
                          "new"));
  EXPECT_EQ(session.outputText(), "4 \n2 5\nnew");
}

TEST(MessageBuiltins, APickOutsideTheMatrixIsAFault) {
  ScriptedSession session(
      "main() { mat m[2,3]; m[2,3] = 7; x = select(m); print(x, row#, col#); }");
  session.shell.answers = {"2,3"};
  session.run();
  EXPECT_EQ(session.outputText(), "           7           2           3");
  session.shell.answers = {"3,1"};
  session.run();
  EXPECT_THAT(session.messages(), SizeIs(1));
}

}  // namespace
}  // namespace vexa
