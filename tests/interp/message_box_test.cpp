// What a front shows for the flags of a message box, and which answer a word stands for.

#include <gtest/gtest.h>

#include "interp/message_box.h"
#include "support/scripted_shell.h"

namespace vexa {
namespace {

// The buttons in order, each with its answer; "*" marks the default, "x" what Esc presses.
std::string buttonsOf(const BoxLayout& layout) {
  std::string text;
  for (const BoxButton& button : layout.buttons) {
    text += text.empty() ? "" : ", ";
    text.append(button.label).append("=").append(std::to_string(button.answer));
    if (button.isDefault) text += '*';
    if (button.isCancel) text += 'x';
  }
  return text;
}

TEST(MessageBox, LaysOutCaptionIconAndButtons) {
  const BoxLayout plain = layoutMessageBox(boxOk, "");
  EXPECT_EQ(plain.caption, " Vexa ");
  EXPECT_EQ(plain.icon, BoxIcon::information);
  EXPECT_EQ(buttonsOf(plain), "&View Data=0, O&K=1*");

  const BoxLayout error = layoutMessageBox(boxError, "beam");
  EXPECT_EQ(error.caption, " Vexa      Context: beam     Error message:");
  EXPECT_EQ(error.icon, BoxIcon::error);
  EXPECT_EQ(buttonsOf(error), "&Retry=4, &Cancel=2x, &View Data=0, O&K=1*");

  const BoxLayout question = layoutMessageBox(boxYesNoCancel, "");
  EXPECT_EQ(question.caption, " Vexa      Question:");
  EXPECT_EQ(question.icon, BoxIcon::question);
  EXPECT_EQ(buttonsOf(question), "&View Data=0, &Yes=6*, &No=7, &Cancel=2x");

  EXPECT_EQ(buttonsOf(layoutMessageBox(boxYesNo, "")), "&View Data=0, &Yes=6*, &No=7");
  EXPECT_EQ(buttonsOf(layoutMessageBox(boxOkCancel, "")), "&View Data=0, O&K=1, &Cancel=2x");
  EXPECT_EQ(buttonsOf(layoutMessageBox(boxRetryCancel, "")), "&View Data=0, &Retry=4*, &Cancel=2x");
  EXPECT_EQ(layoutMessageBox(boxQuestion, "").icon, BoxIcon::question);
}

TEST(MessageBox, OffersContinueAndTerminateOnlyForExactlyTheirFlags) {
  const BoxLayout interrupt = layoutMessageBox(boxContinueTerminate, "");
  EXPECT_EQ(buttonsOf(interrupt), "&View Data=0, C&ontinue=2*, &Terminate=7");
  EXPECT_EQ(interrupt.icon, BoxIcon::information);
  EXPECT_EQ(buttonsOf(layoutMessageBox(boxContinueTerminate | boxYesNo, "")),
            "&View Data=0, &Yes=6*, &No=7");
}

TEST(MessageBox, NamesAButtonOnceWhenTwoRulesAddIt) {
  EXPECT_EQ(buttonsOf(layoutMessageBox(boxWarning | boxRetryCancel, "")),
            "&Retry=4*, &Cancel=2x, &View Data=0");
}

TEST(MessageBox, TakesAnswersByTextOrFirstLetter) {
  const BoxLayout question = layoutMessageBox(boxYesNoCancel, "");
  for (const char* word : {"no", "NO", "&No", "n", " N "})
    EXPECT_EQ(question.answerNamed(word), 7) << word;
  EXPECT_EQ(question.answerNamed("cancel"), 2);
  // Neither an unknown word nor the button that leaves the box open is an answer.
  for (const char* word : {"", "nope", "View Data", "v"})
    EXPECT_EQ(question.answerNamed(word), 6) << word;
  EXPECT_EQ(layoutMessageBox(boxContinueTerminate, "").answerNamed("t"), 7);
  EXPECT_EQ(layoutMessageBox(boxOkCancel, "").defaultAnswer(), 1);
}

TEST(MessageBox, SpeaksInTheNameOfTheRunningFunction) {
  ScriptedSession session("ask() { notice(\"in ask\"); }\nmain() { ask(); notice(\"in main\"); }");
  std::vector<std::string> contexts;
  session.shell.onMessage = [&](const MessageRequest& request) {
    contexts.push_back(request.context);
    EXPECT_EQ(request.flags, boxOk);
    EXPECT_FALSE(request.fault);
  };
  session.run();
  EXPECT_EQ(contexts, (std::vector<std::string>{"ask", "main"}));
  messageBox("idle");
  EXPECT_EQ(contexts.back(), "");
}

}  // namespace
}  // namespace vexa
