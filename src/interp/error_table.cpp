#include <algorithm>
#include <array>

#include "interp/errors.h"

// The texts keep their spelling and spacing, odd as some are: users search for them, and programs
// that read the messages compare them byte for byte.

namespace vexa {

namespace {

using enum ErrorKey;
using enum ErrorPattern;

constexpr std::array errorRows = std::to_array<ErrorMessage>({
    {singularMatrix, "47: Singular/Ill-conditioned matrix:", a, ""},
    {syntax, "52: Syntax error (unexpected character encountered):", b, ""},
    {colonExpected, "4: Colon expected:", b, ""},
    {noExpression, " No expression present:", b, ""},
    {conflictsWithReserved, "32: Name conflicts with Vexa reserved word:", b, ""},
    {conflictsWithBuiltin, "31: Name conflicts with Vexa built-in function:", b, ""},
    {conflictsWithGlobal, "33: Name conflicts with existing global variable:", b, ""},
    {conflictsWithLocal, "34: Name conflicts with existing local variable:", b, ""},
    {conflictsWithFunction, "35: Name conflicts with existing user-defined function:", b, ""},
    {programTerminated, "Program terminated:", b, ""},
    {tooLong, "36: Name, String or Data list is longer than expected:", b, ""},
    {quoteExpected, "41: Quote character expected:", a, ""},
    {commentNotTerminated, "6: Comment not terminated by \" */\":", b, ""},
    {allocationFailed, "20: Failed to allocate memory (bad matrix order):", b, ""},
    {semicolonExpected, "46: Semicolon ' ; ' expected:", b, ""},
    {parenthesisExpected, "40. Parenthesis ( or ) expected:", b, ""},
    {braceExpected, "2: Brace { or } expected:", b, ""},
    {bracketExpected, "50: Square bracket ' [ ' or ' ] ' expected:", b,
     " (Matrix order or indexes missing)"},
    {commaExpected, "5: Comma ' , ' expected:", b, ""},
    {invalidData, "19. Invalid data or option or missing delimiter to separate items:", b, ""},
    {elseWithoutIf, "22. Keyword 'else' must follow an 'if' statement:", b, ""},
    {variableNameExpected, "1: A variable-name expected:", a, ""},
    {indexOutOfRange, "23*: Matrix indexes out of range:", b,
     " (Verify the matrix orders and the index values)"},
    {localRedeclared, "42: Redeclaration of a local variable name:", b, ""},
    {zeroOrder, "58*: Zero matrix-order not permitted:", b, ""},
    {unexpectedBrace, "55: Unexpected brace ' { ' encountered:", b, ""},
    {blockBraceExpected, "2: Brace ' { ' or '  } ' expected:", b, ""},
    {functionNotDefined, "17: Function not defined or missing data type specifier:", b, ""},
    {caseExpected, "21: Keyword ' case ' expected within 'switch' block:", b, ""},
    {whileExpected, "57: \" while (....); \"  expected following 'do' block:", b, ""},
    {returningLocalMatrix, "45: Returning local matrix is not permitted:", b,
     " (Local matrix is destroyed on return)"},
    {complexPrefixRequired, "7: Complex-value expression requires ' @ ' prefix:", b, ""},
    {vectorOrderMismatch, "39: Order of resulting matrix does not match vector expression:", a, ""},
    {returnedMatrixUnnamed, "44: Returned matrix must have a name:", b,
     " (Un-named matrix is destroyed on return)"},
    {returnNotExecutable, "43: 'return' statement cannot be executed:", b, ""},
    {variableInUse, "48: Sorry! Can't delete variable currently in use elsewhere:", b, ""},
    {nameIsFloat, "28: Name already used as float variable:", b,
     " - You may delete the undesired name by delete(Name) function."},
    {argumentMismatch,
     "15: Function arguments do not match parameter types in function definition:", b, ""},
    {strayBreak, "3: 'break' or 'continue' statement used at improper place:", b, ""},
    {tooManyArguments, "38: Number of function arguments must be less than 30:", b, ""},
    {nestingTooDeep, "16*: Function nesting too deep:", b, ""},
    {dummyDuplicatesLocal, "12: Dummy variable name duplicates local var name:", b, ""},
    {tooManyDummies, "37: Number of active dummy variables exceeds limit:", b, ""},
    {undefinedVariable, "54: Undefined variable or unrecognized keyword:", b, " "},
    {matrixNameExpected, "24: Matrix name expected:", b, ""},
    {operatorRepeated, "27: More than one operator or delimiter  encountered:", b, ""},
    {nameIsKeyword, "56: Variable name duplicates reserved keyword:", b,
     " (Keywords appear in color)"},
    {operatorMissing, "26: Missing operator or  delimiter:", b, ""},
    {floatingPoint, "14*: Floating point error (division by zero or value out of range):", b, ""},
    {ordersIncompatible, "25*: Matrix orders incompatible or inconsistent:", b, ""},
    {interrupted, "Program interrupted:", b, ""},
    {tooFewElements, "53: Too few elements in DataList:", b,
     " (Verify the size specification and the number of listed elements)"},
    {conflictsWithMatrix, "29: Name conflicts with an existing matrix:", b,
     " (You may delete the unwanted matrix by delete() function)"},
    {squareMatrixExpected, "51: Square matrix expected:", b, " (Verify the order of the matrix)"},
    {invalidOption, "49: Specified option is invalid:", b, ""},
    {notSymmetric,
     "13: Existing matrix not symmetrical (Overide it with new size specification):", c, ""},
    {dummyArgumentExpected, "11. Dummy argument expected in function declaration:", c, ""},
    {conflictsWithParameter, "30: Name conflicts with another parameter:", b, ""},
    {fileNotOpen, "18: Given file ID is not currently opened:", c, ""},
    {tooManyFiles, "10: Currently opened files exceed limit of 15:", c, ""},
    {fileNotOpened, "8: Could not create or open data file", none, ""},
    {fileCorrupted, "File format corrupted", none, ""},
    {notConvergent, "59: Function not convergent:", d, ""},
    {indexNotPositive, "60: Matrix index or order is zero or negative:", b, ""},
    {invalidDate, "61: Invalid date or format:", e, ""},
    {fontFailed, "Unable to create font:", e, ""},
    {stringExpected, "62: Quoted string or variable expected:", e, ""},
});

static_assert(std::is_sorted(errorRows.begin(), errorRows.end(),
                             [](const ErrorMessage& x, const ErrorMessage& y) {
                               return x.key < y.key;
                             }),
              "rows are searched by key");

// What stands around the cited text. The quote that closes it belongs to the pattern, the one that
// opens it to the cited text.
struct PatternText {
  std::string_view beforeCited, beforeLine;
};

constexpr PatternText textOf(ErrorPattern pattern) {
  switch (pattern) {
    case a:
      return {"  ", " \" at line "};
    case b:
      return {"  ", " \" on line "};
    case c:
      return {" ", " \" on line "};
    case d:
      return {" ", "\" on line "};
    case e:
      return {" ", " \"on line "};
    case none:
      break;
  }
  return {};
}

}  // namespace

std::span<const ErrorMessage> errorMessages() { return errorRows; }

const ErrorMessage* findErrorMessage(ErrorKey key) {
  const auto row = std::lower_bound(
      errorRows.begin(), errorRows.end(), key,
      [](const ErrorMessage& message, ErrorKey wanted) { return message.key < wanted; });
  return row != errorRows.end() && row->key == key ? &*row : nullptr;
}

std::string fillErrorMessage(const ErrorMessage& message, std::string_view cited,
                             std::string_view line) {
  std::string text(message.head);
  if (message.pattern != none) {
    const PatternText around = textOf(message.pattern);
    text.append(around.beforeCited).append(cited).append(around.beforeLine).append(line);
  }
  text.append(message.tail);
  return text;
}

}  // namespace vexa
