// The Execute command: which document runs, where its output goes, what is shown meanwhile.

#include "interp/run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interp/message_box.h"
#include "support/scripted_shell.h"

namespace vexa {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Texts = std::vector<std::string>;

TEST(Run, TellsTheShellAboutARunInOrder) {
  ScriptedSession session("main() { print(1); }");
  EXPECT_TRUE(session.run());
  EXPECT_THAT(session.shell.calls(),
              ElementsAre("program has role 3", "new output 1", "output 1 has role 2",
                          "output 1 begins a run", "run begins", "run ends"));
  EXPECT_EQ(session.outputText(), "           1");
  EXPECT_EQ(session.view.lastOutcome(), RunOutcome::normal);
  EXPECT_FALSE(session.view.running());

  session.shell.clearRecords();
  session.run("main() { print(2); }");
  EXPECT_THAT(session.shell.calls(),
              ElementsAre("program has role 3", "output 1 to the front", "output 1 begins a run",
                          "run begins", "run ends"));
  EXPECT_EQ(session.outputText(), "           1           2");
}

TEST(Run, RefusesADocumentThatReceivedOutput) {
  ScriptedSession session("main() { print(1); }");
  session.run();
  EXPECT_FALSE(CoreCommands().execute(session.shell.output(0)));
  EXPECT_THAT(session.messages(),
              ElementsAre("This document has been used for output. Please click on a program "
                          "document to execute"));
}

TEST(Run, TakesOnlyLoadedDocumentsOfAllowedLength) {
  ScriptedSession session("main() { }");
  session.program.setLoaded(false);
  EXPECT_FALSE(session.run());
  session.program.setLoaded(true);
  EXPECT_FALSE(session.run(std::string(99999, '\n') + "main() { }"));
  EXPECT_THAT(session.messages(), ElementsAre(" Program has more than 99999 lines"));
  EXPECT_TRUE(session.run(std::string(99998, '\n') + "main() { x = 1/0; }"));
  EXPECT_EQ(session.view.errorLine(), 99999);
}

TEST(Run, ActivatesAFileOfFunctionsAndRefusesAnEmptyOne) {
  ScriptedSession session("twice(float x)\n{ return 2*x; }\nfloat three = 3;");
  session.run();
  EXPECT_THAT(session.messages(), ElementsAre("Functions are activated."));
  EXPECT_EQ(session.view.lastOutcome(), RunOutcome::normal);
  EXPECT_EQ(session.evaluate("twice(three)"), "           6\n");

  session.shell.clearRecords();
  session.run("// nothing\n");
  ASSERT_EQ(session.messages().size(), 1u);
  EXPECT_TRUE(session.messages()[0].starts_with(" Error #19. Invalid data"));
  EXPECT_EQ(session.view.lastOutcome(), RunOutcome::fault);
  EXPECT_THAT(session.view.userFunctions(), IsEmpty());
}

TEST(Run, WarnsAboutUnbalancedBracketsAndGoesOn) {
  ScriptedSession session("main() { print(1); } { [ (");
  session.run();
  const Texts messages = session.messages();
  ASSERT_GE(messages.size(), 4u);
  EXPECT_EQ(messages[0], "Unbalanced braces {{..}");
  EXPECT_EQ(messages[1], "Unbalanced square brackets [[..]");
  EXPECT_EQ(messages[2], "Unbalanced parentheses ((..)");
  EXPECT_TRUE(messages[3].starts_with(" Error #17: Function not defined"));
}

TEST(Run, KeepsASecondExecuteOut) {
  ScriptedSession session("main() { notice(\"now\"); }");
  CScriptedDocument& other = session.shell.addDocument("other", "main() { print(2); }");
  bool started = true, evaluated = true;
  session.shell.onMessage = [&](const MessageRequest&) {
    started = CoreCommands().execute(other);
    Evaluation evaluation;
    evaluated = CoreCommands().evaluate("1+1", evaluation);
    EXPECT_TRUE(session.view.running());
    EXPECT_FALSE(CoreCommands().updateFunctions());
    EXPECT_FALSE(CoreCommands().setProgram(other));
    EXPECT_FALSE(CoreCommands().chooseOutput(1));
    EXPECT_FALSE(CoreCommands().defineMatrix("m", 2, 2));
  };
  session.run();
  EXPECT_FALSE(started);
  EXPECT_FALSE(evaluated);
  EXPECT_EQ(session.outputText(), "");
}

TEST(Run, EndsByTheKeywordWithoutMessageAndByAFaultWithOne) {
  ScriptedSession session("main()\n{\n  print(1);\n  end;\n  print(2);\n}");
  session.run();
  EXPECT_THAT(session.messages(), IsEmpty());
  EXPECT_THAT(session.view.errorRows(), IsEmpty());
  EXPECT_EQ(session.view.lastOutcome(), RunOutcome::ended);
  EXPECT_EQ(session.outputText(), "           1");

  session.shell.clearRecords();
  session.shell.hiddenBars = {Bar::errors, Bar::values};
  session.run("f(float x)\n{\n  return 1/x;\n}\nmain()\n{\n  f(0);\n}");
  EXPECT_THAT(session.shell.calls(),
              ElementsAre("program has role 3", "output 1 to the front", "output 1 begins a run",
                          "run begins",
                          "message:  Error #14*: Floating point error (division by zero or value "
                          "out of range):   near \"; \" on line  3",
                          "program marks line 3", "show errors", "run ends with a fault"));
  EXPECT_EQ(session.view.errorLine(), 3);
}

TEST(Run, ChoosesTheActiveDocumentForOutputInModeOne) {
  ScriptedSession session("main() { print(1); }");
  session.shell.activate(nullptr);
  EXPECT_FALSE(CoreCommands().chooseOutput(1));
  EXPECT_THAT(session.messages(), ElementsAre("Please open a new document or click on an existing "
                                              "document for output"));
  CScriptedDocument& notes = session.shell.addDocument("notes");
  EXPECT_TRUE(CoreCommands().chooseOutput(1));
  session.run();
  EXPECT_EQ(notes.text(), "           1");
  EXPECT_EQ(session.shell.outputCount(), 0u);
  EXPECT_FALSE(CoreCommands().execute(notes));
}

TEST(Run, FindsATargetForOutputInModeTwo) {
  ScriptedSession session;
  CScriptedDocument& notes = session.shell.addDocument("notes");
  // Nothing is chosen: an active document that is no program serves.
  session.shell.activate(&notes);
  EXPECT_EQ(session.evaluate("print(1)"), "");
  EXPECT_EQ(notes.text(), "           1");
  EXPECT_EQ(notes.role(), roleOutput);

  // The chosen one stays chosen, whatever is active.
  session.shell.activate(&session.program);
  session.evaluate("print(2)");
  EXPECT_EQ(notes.text(), "           1           2");

  // A program is never written into: without a choice a new document is made.
  CoreCommands().documentClosed(&notes);
  session.program.setRole(roleExecuted);
  session.evaluate("print(3)");
  ASSERT_EQ(session.shell.outputCount(), 1u);
  EXPECT_EQ(session.shell.output(0).text(), "           3");

  // The one that the system made comes back when the chosen one has become a program.
  CScriptedDocument& other = session.shell.addDocument("other", "main() { print(4); }");
  session.shell.activate(&other);
  EXPECT_TRUE(CoreCommands().chooseOutput(1));
  CoreCommands().execute(other);
  EXPECT_EQ(other.text(), "main() { print(4); }");
}

TEST(Run, TracesEntriesAndReturnsWithTheirIndent) {
  ScriptedSession session("c() { }\nb() { c(); }\na() { b(); }\nmain() { a(); }");
  CoreCommands().setTrace(true);
  session.run();
  EXPECT_EQ(session.outputText(),
            ">>    main()\n"
            ">>       a()\n"
            ">>          b()\n"
            ">>             c()\n"
            "<<**          b()\n"
            "<<**       a()\n"
            "<<**    main()\n");
}

TEST(Run, ListsCallsWithTheirArgumentsWhileValuesAreDisplayed) {
  ScriptedSession session(
      "f(mat m, float x) { return x; }\n"
      "main() { mat a[2,3]; f(a, pi#); g(); }\n"
      "g() { }");
  CoreCommands().setDisplayValues(true);
  session.run();
  Texts rows;
  for (const ListRow& row : session.view.errorRows())
    rows.push_back(std::to_string(row.line) + ' ' + row.message + (row.isCall ? "" : " fault"));
  EXPECT_THAT(rows, ElementsAre("2 f([2x3], 3.1416)", "2 g()"));
}

TEST(Run, AsksOnEscapeAndStopsWithoutAskingOnStop) {
  const std::string endless = "main()\n{\n  while (1) { x = 1; }\n}";
  ScriptedSession session(endless);
  session.shell.interrupts = {{2, Interrupt::escape}, {5, Interrupt::escape}};
  session.shell.answers = {"Continue", "Terminate"};
  session.run();
  EXPECT_THAT(session.shell.calls("question: "),
              ElementsAre(" You have pressed key Esc: -> 2", " You have pressed key Esc: -> 7"));
  EXPECT_THAT(session.messages(), IsEmpty());
  EXPECT_EQ(session.view.lastOutcome(), RunOutcome::interrupted);

  ScriptedSession stopped(endless);
  stopped.shell.interrupts = {{3, Interrupt::stop}};
  stopped.run();
  EXPECT_TRUE(stopped.shell.calls("question: ").empty());
  ASSERT_EQ(stopped.messages().size(), 1u);
  EXPECT_TRUE(stopped.messages()[0].starts_with(" Error #Program interrupted:"));
  EXPECT_EQ(stopped.view.lastOutcome(), RunOutcome::interrupted);
  EXPECT_EQ(stopped.view.errorLine(), 3);

  // A large result is asked about at once: few tokens may take long.
  ScriptedSession large("main() { mat a[1024,1024]; !a = a + a; }");
  large.shell.interrupts = {{1, Interrupt::stop}};
  large.run();
  EXPECT_EQ(large.view.lastOutcome(), RunOutcome::interrupted);
}

TEST(Run, ClosedDocumentsAreForgottenEvenDuringARun) {
  ScriptedSession session("main() { notice(\"now\"); print(1); }");
  session.shell.onMessage = [&](const MessageRequest&) {
    CoreCommands().documentClosed(&session.shell.output(0));
  };
  session.run();
  ASSERT_EQ(session.shell.outputCount(), 2u);
  EXPECT_EQ(session.shell.output(1).text(), "           1");
}

// The 41st row drops every second one of the first twenty; the list then holds 31.
TEST(ErrorList, DropsRowsWhenTheFortyFirstComes) {
  ScriptedSession session;
  for (int i = 1; i <= 40; ++i) session.evaluate("unknown" + std::to_string(i));
  EXPECT_EQ(session.view.errorRows().size(), 40u);
  session.evaluate("unknown41");
  const std::span<const ListRow> rows = session.view.errorRows();
  ASSERT_EQ(rows.size(), 31u);
  const auto isAbout = [&](std::size_t row, int number) {
    return rows[row].message.find("\"unknown" + std::to_string(number) + ' ') != std::string::npos;
  };
  EXPECT_TRUE(isAbout(0, 2));
  EXPECT_TRUE(isAbout(1, 4));
  EXPECT_TRUE(isAbout(9, 20));
  EXPECT_TRUE(isAbout(10, 21));
  EXPECT_TRUE(isAbout(30, 41));
  EXPECT_EQ(rows[30].line, -1);
}

}  // namespace
}  // namespace vexa
