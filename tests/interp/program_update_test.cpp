// Registering the functions of a changed program without running it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/scripted_shell.h"

namespace vexa {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr char brokenDeclaration[] = "Program Update: Error in function declaration";

TEST(ProgramUpdate, TakesTheTextAnewWhenItHasChanged) {
  ScriptedSession session("f() { return 1; }\nmain() { x = 5; }");
  session.run();
  session.program.setText("\n\nf(float a, mat  m /* its order */) // first\n{ return 2; }\n");
  EXPECT_EQ(session.evaluate("f()"), "           1\n");  // nobody has told of the change yet
  CoreCommands().textChanged(session.program);
  EXPECT_TRUE(CoreCommands().updateFunctions());
  const std::vector<FunctionRow> functions = session.view.userFunctions();
  ASSERT_THAT(functions, SizeIs(2));
  EXPECT_EQ(functions[0].name, "f");
  EXPECT_EQ(functions[0].signature, "f(float a, mat m)");
  EXPECT_EQ(functions[0].line, 3);
  EXPECT_EQ(functions[0].state, 'M');
  EXPECT_EQ(session.evaluate("f(1, !{1})"), "           2\n");
  EXPECT_EQ(session.evaluate("x"), "           5\n");
  EXPECT_THAT(session.messages(), IsEmpty());
}

TEST(ProgramUpdate, SkipsGlobalDeclarationsOfAllFiveWords) {
  ScriptedSession session(
      "float a = 1;\nint b = 2;\nchar c = 'x';\nmat m[2,2];\nstring s = \"t;\";\n"
      "f() { return 7; }");
  EXPECT_TRUE(CoreCommands().setProgram(session.program));
  EXPECT_TRUE(CoreCommands().updateFunctions());
  EXPECT_EQ(session.evaluate("f()"), "           7\n");
  EXPECT_EQ(session.evaluate("isvar(a) + isvar(b) + isvar(c) + isvar(m) + isvar(s)"),
            "           0\n");
  EXPECT_EQ(session.program.role(), roleExecuted);
}

TEST(ProgramUpdate, ShowsItsOwnErrorsAndGoesOn) {
  const auto update = [](const std::string& text) {
    ScriptedSession session(text);
    CoreCommands().setProgram(session.program);
    EXPECT_TRUE(CoreCommands().updateFunctions());
    return session.messages();
  };
  const std::vector<std::string> stray = update("f() { }\n12;\ng() { }");
  EXPECT_EQ(stray.back(), brokenDeclaration);
  EXPECT_EQ(stray.front(),
            " Error #19. Invalid data or option or missing delimiter to separate items:   near "
            "\"12 \" on line  2");
  const std::vector<std::string> noList = update("f { return 1; }");
  EXPECT_TRUE(noList.front().starts_with(" Error #40. Parenthesis ( or ) expected:"));
  const std::vector<std::string> noBody = update("f(float x)\n");
  EXPECT_TRUE(noBody.front().starts_with(" Error #2: Brace ' { ' or '  } ' expected:"));
  EXPECT_EQ(noBody.back(), brokenDeclaration);
}

TEST(ProgramUpdate, RegistersNoNameThatIsTooLong) {
  const std::string name(200, 'n');
  ScriptedSession session(name + "() { }\nok() { return 1; }");
  CoreCommands().setProgram(session.program);
  CoreCommands().updateFunctions();
  ASSERT_FALSE(session.messages().empty());
  EXPECT_TRUE(session.messages().front().starts_with(" Error #36: Name, String or Data list"));
  for (const FunctionRow& row : session.view.userFunctions()) EXPECT_EQ(row.name, "ok");
}

TEST(ProgramUpdate, NeedsAProgram) {
  ScriptedSession session("f() { return 1; }");
  EXPECT_FALSE(CoreCommands().updateFunctions());
  EXPECT_TRUE(session.evaluate("f()").starts_with(" Error #17: Function not defined"));
  CoreCommands().setProgram(session.program);
  CoreCommands().documentClosed(&session.program);
  EXPECT_FALSE(CoreCommands().updateFunctions());
  session.program.setText(std::string(100000, '\n'));
  EXPECT_FALSE(CoreCommands().setProgram(session.program));
}

}  // namespace
}  // namespace vexa
