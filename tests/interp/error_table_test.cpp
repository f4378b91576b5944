// The texts of faults, byte for byte: their spacing is odd on purpose.

#include <gtest/gtest.h>

#include "interp/errors.h"

namespace vexa {
namespace {

std::string filled(ErrorKey key) {
  const ErrorMessage* message = findErrorMessage(key);
  return message ? fillErrorMessage(*message, "\" cited", " 12") : "no such key";
}

// One row of each pattern, and those whose heads or tails hold quotes or double blanks.
TEST(ErrorTable, FillsEveryPatternWithItsOwnSpacing) {
  EXPECT_EQ(filled(ErrorKey::singularMatrix),
            "47: Singular/Ill-conditioned matrix:  \" cited \" at line  12");
  EXPECT_EQ(filled(ErrorKey::bracketExpected),
            "50: Square bracket ' [ ' or ' ] ' expected:  \" cited \" on line  12"
            " (Matrix order or indexes missing)");
  EXPECT_EQ(filled(ErrorKey::fileNotOpen),
            "18: Given file ID is not currently opened: \" cited \" on line  12");
  EXPECT_EQ(filled(ErrorKey::notConvergent), "59: Function not convergent: \" cited\" on line  12");
  EXPECT_EQ(filled(ErrorKey::stringExpected),
            "62: Quoted string or variable expected: \" cited \"on line  12");
  EXPECT_EQ(filled(ErrorKey::fileNotOpened), "8: Could not create or open data file");
  EXPECT_EQ(filled(ErrorKey::commentNotTerminated),
            "6: Comment not terminated by \" */\":  \" cited \" on line  12");
  EXPECT_EQ(filled(ErrorKey::whileExpected),
            "57: \" while (....); \"  expected following 'do' block:  \" cited \" on line  12");
  EXPECT_EQ(filled(ErrorKey::undefinedVariable),
            "54: Undefined variable or unrecognized keyword:  \" cited \" on line  12 ");
  EXPECT_EQ(filled(ErrorKey::noExpression), " No expression present:  \" cited \" on line  12");
}

TEST(ErrorTable, FindsEveryRowByItsKeyAndNothingElse) {
  for (const ErrorMessage& message : errorMessages())
    EXPECT_EQ(findErrorMessage(message.key), &message) << static_cast<int>(message.key);
  // Texts of the user interface share the numbering.
  for (const int number : {0, 12, 22, 24, 66, 72, 80, 90, 95})
    EXPECT_EQ(findErrorMessage(static_cast<ErrorKey>(number)), nullptr) << number;
  EXPECT_EQ(errorMessages().size(), 67u);
}

}  // namespace
}  // namespace vexa
