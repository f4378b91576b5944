// What fronts read of the core, most of all after a fault.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "support/scripted_shell.h"

namespace vexa {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string describe(const VariableRow& row) {
  switch (row.kind) {
    case VariableRow::Kind::scalar:
      return row.name + " = " + std::to_string(row.value).substr(0, 3);
    case VariableRow::Kind::wholeNumber:
      return row.name + " is whole " + std::to_string(static_cast<int>(row.value));
    case VariableRow::Kind::matrix:
      return row.name + '[' + std::to_string(row.rows) + ',' + std::to_string(row.cols) + ']';
    case VariableRow::Kind::string:
      return row.name + " is \"" + row.text + '"';
  }
  return {};
}

std::vector<std::string> describe(const std::vector<VariableRow>& rows) {
  std::vector<std::string> texts;
  for (const VariableRow& row : rows)
    if (!row.preset) texts.push_back(describe(row));
  return texts;
}

std::vector<std::string> describe(const std::vector<FrameRow>& rows) {
  std::vector<std::string> texts;
  for (const FrameRow& row : rows)
    texts.push_back(std::to_string(row.depth) + ' ' + row.function + " at " +
                    std::to_string(row.line));
  return texts;
}

constexpr char faulty[] =
    "float g = 1.5;\n"
    "main()\n"
    "{\n"
    "  mat a[2,3]; int n = 7.9;\n"
    "  !big = {1,2;3,4};\n"
    "  middle(a,\n"
    "    0);\n"
    "}\n"
    "middle(mat m, float x)\n"
    "{\n"
    "  string s = \"text\";\n"
    "  inner();\n"
    "}\n"
    "inner()\n"
    "{\n"
    "  float g = 2.5;\n"
    "  x = 1/0;\n"
    "}\n";

TEST(CoreView, ShowsFramesAndLocalsThatAFaultLeft) {
  ScriptedSession session(faulty);
  session.run();
  EXPECT_THAT(describe(session.view.frames()),
              ElementsAre("3 inner at 17", "2 middle at 12", "1 main at 6"));
  EXPECT_THAT(describe(session.view.locals(3)), ElementsAre("g = 2.5"));
  EXPECT_THAT(describe(session.view.locals(2)), ElementsAre("s is \"text\"", "m[2,3]", "x = 0.0"));
  EXPECT_THAT(describe(session.view.locals(1)), ElementsAre("n is whole 7", "a[2,3]"));
  EXPECT_THAT(session.view.locals(0), IsEmpty());
  EXPECT_THAT(session.view.locals(4), IsEmpty());
  EXPECT_THAT(describe(session.view.globals()), ElementsAre("g = 1.5", "big[2,2]"));
  EXPECT_EQ(describe(session.view.variable("g").value()), "g = 2.5");

  // Calculating sees globals only, and leaves what the fault left, as does another program text.
  EXPECT_EQ(session.evaluate("g"), "         1.5\n");
  session.program.setText("main() { }");
  EXPECT_TRUE(CoreCommands().setProgram(session.program));
  EXPECT_THAT(describe(session.view.frames()),
              ElementsAre("3 inner at 17", "2 middle at 12", "1 main at 6"));
  session.run("main() { }");
  EXPECT_THAT(session.view.frames(), IsEmpty());
  EXPECT_THAT(describe(session.view.globals()), IsEmpty());
}

TEST(CoreView, KeepsTheTemporariesThatParametersOfAFailedRunHold) {
  ScriptedSession session("f(mat m) { x = 1/0; }\nmain() { !a = {1,2;3,4}; f(!a &* 2); }");
  session.run();
  EXPECT_THAT(describe(session.view.locals(2)), ElementsAre("m[2,2]"));
  ASSERT_NE(session.view.matrix("m"), nullptr);
  EXPECT_EQ(session.view.matrix("m")->at(2, 2), 8);
  EXPECT_TRUE(session.evaluate("f(!{5}/1)").starts_with(" Error #14*"));
  EXPECT_EQ(session.view.matrix("m")->at(1, 1), 2);
}

TEST(CoreView, FollowsARunWhileItWaits) {
  ScriptedSession session("f(float x)\n{\n  notice(\"here\");\n}\nmain()\n{\n  f(4.25);\n}");
  session.shell.onMessage = [&](const MessageRequest&) {
    EXPECT_THAT(describe(session.view.frames()), ElementsAre("2 f at 3", "1 main at 7"));
    EXPECT_THAT(describe(session.view.locals(2)), ElementsAre("x = 4.2"));
  };
  session.run();
  EXPECT_EQ(session.messages().size(), 1u);
}

TEST(CoreView, ListsPresetsLastAndSeesVariablesChange) {
  ScriptedSession session("main() { }");
  session.run();
  const std::uint64_t before = session.view.generation(Bar::globals);
  session.evaluate("first = 1; !second = {1,2,3}; %third = \"t\"");
  EXPECT_GT(session.view.generation(Bar::globals), before);
  const std::vector<VariableRow> globals = session.view.globals();
  EXPECT_THAT(describe(globals), ElementsAre("first = 1.0", "second[1,3]", "third is \"t\""));
  EXPECT_TRUE(globals.back().preset);
  EXPECT_FALSE(globals.front().preset);
  EXPECT_EQ(session.view.variable("pi#")->value, 3.141592653589793);
  EXPECT_FALSE(session.view.variable("sin"));
  EXPECT_EQ(session.view.builtins().size(), 240u);
}

TEST(CoreView, HidesThePivotsOfSolveAndNoMatrixOfTheUser) {
  ScriptedSession session("main() { }");
  session.run();
  // 73 unknowns kept leave the tag that pivots have.
  session.evaluate("unit(kept[73]); zeronew(b[1,73]); gauss(C, kept, b, 73); solve(J, kept)");
  session.evaluate("!a = {2}; solve(D, a)");
  EXPECT_THAT(describe(session.view.globals()), ElementsAre("kept[73,73]", "b[1,73]", "a[1,1]"));
}

TEST(CoreCommands, TheKeywordEndStopsTheTextAndWhatOpenedIt) {
  ScriptedSession session;
  session.shell.answers = {"exec({ end; })", "7"};
  EXPECT_EQ(session.evaluate("1; ? + 1; 2"), "           1\n");
  EXPECT_EQ(session.evaluate("?"), "           7\n");
  EXPECT_THAT(session.messages(), IsEmpty());
}

TEST(CoreCommands, DefineMatricesByTheRulesOfNames) {
  ScriptedSession session("f() { } main() { }");
  session.run();
  CoreCommands commands;
  EXPECT_TRUE(commands.defineMatrix("m", 2, 2));
  const std::array<double, 4> values = {1, 2, 3, 4};
  EXPECT_TRUE(commands.writeBlock("m", 1, 1, 2, values));
  EXPECT_TRUE(commands.defineMatrix("m", 3, 1));  // keeps what both orders have
  EXPECT_EQ(session.evaluate("m"), "           1\n           3\n           0\n");

  session.evaluate("x = 1; %s = \"text\"");
  for (const char* name :
       {"x", "f", "sin", "while", "pi#", "", "1a", "a b", "_a", "abcdefghijklmnopqrstuvwxyz"})
    EXPECT_FALSE(commands.defineMatrix(name, 1, 1)) << name;
  EXPECT_FALSE(commands.defineMatrix("m", 0, 1));
  EXPECT_FALSE(commands.defineMatrix("m", 2000000000, 2000000000));
  EXPECT_EQ(session.view.matrix("m")->rows(), 3);

  EXPECT_FALSE(commands.writeBlock("m", 3, 1, 1, values));  // beyond the last row
  EXPECT_FALSE(commands.writeBlock("m", 1, 1, 3, values));  // not whole rows
  EXPECT_FALSE(commands.writeBlock("m", 0, 1, 1, values));
  EXPECT_FALSE(commands.writeBlock("x", 1, 1, 1, values));
  EXPECT_FALSE(commands.writeBlock("s", 1, 1, 1, values));
  EXPECT_THAT(session.messages(), IsEmpty());
}

}  // namespace
}  // namespace vexa
