#pragma once

// Faults. A fault is raised by its key, the index of its message in the table; the number that a
// user sees stands at the start of the message's text and differs from the key.

#include <span>
#include <string>
#include <string_view>

namespace vexa {

enum class ErrorKey : int {
  singularMatrix = 13,
  syntax = 14,
  colonExpected = 15,
  noExpression = 16,
  conflictsWithReserved = 17,
  conflictsWithBuiltin = 18,
  conflictsWithGlobal = 19,
  conflictsWithLocal = 20,
  conflictsWithFunction = 21,
  programTerminated = 23,
  tooLong = 25,
  quoteExpected = 26,
  commentNotTerminated = 27,
  allocationFailed = 28,
  semicolonExpected = 29,
  parenthesisExpected = 30,
  braceExpected = 31,
  bracketExpected = 32,
  commaExpected = 33,
  invalidData = 34,
  elseWithoutIf = 35,
  variableNameExpected = 36,
  indexOutOfRange = 37,
  localRedeclared = 38,
  zeroOrder = 39,
  unexpectedBrace = 40,
  blockBraceExpected = 41,
  functionNotDefined = 42,
  caseExpected = 43,
  whileExpected = 44,
  returningLocalMatrix = 45,
  complexPrefixRequired = 46,
  vectorOrderMismatch = 47,
  returnedMatrixUnnamed = 48,
  returnNotExecutable = 49,
  variableInUse = 50,
  nameIsFloat = 51,
  argumentMismatch = 52,
  strayBreak = 53,
  tooManyArguments = 54,
  nestingTooDeep = 55,
  dummyDuplicatesLocal = 56,
  tooManyDummies = 57,
  undefinedVariable = 58,
  matrixNameExpected = 59,
  operatorRepeated = 60,
  nameIsKeyword = 61,
  operatorMissing = 62,
  floatingPoint = 63,
  ordersIncompatible = 64,
  interrupted = 65,
  tooFewElements = 68,
  conflictsWithMatrix = 69,
  squareMatrixExpected = 70,
  invalidOption = 71,
  notSymmetric = 74,
  dummyArgumentExpected = 75,
  conflictsWithParameter = 76,
  fileNotOpen = 77,
  tooManyFiles = 78,
  fileNotOpened = 79,
  fileCorrupted = 83,
  notConvergent = 85,
  indexNotPositive = 91,
  invalidDate = 92,
  fontFailed = 93,
  stringExpected = 94,
};

// How the cited text and the line are joined to the head of a message; see error_table.cpp.
enum class ErrorPattern { none, a, b, c, d, e };

struct ErrorMessage {
  ErrorKey key;
  std::string_view head;
  ErrorPattern pattern;
  std::string_view tail;
};

// All messages in the order of their keys.
std::span<const ErrorMessage> errorMessages();
// Null for a number that is no error key.
const ErrorMessage* findErrorMessage(ErrorKey key);
// The filled template; `cited` already carries its opening quote, `line` its leading blank.
std::string fillErrorMessage(const ErrorMessage& message, std::string_view cited,
                             std::string_view line);

// The one exception. It carries nothing: what a catcher needs stands in the interpreter state.
// Only the Execute command and the calculator's evaluation catch it.
struct RunAbandoned {};

// Shows and records the fault, then throws RunAbandoned while a program or calculator evaluation
// is active. Outside of one, and during a program update, it returns: code after a raise leaves
// things whole and returns the neutral value.
void raiseError(ErrorKey key);
// The same with a cited name (`fault context`).
void raiseError(ErrorKey key, std::string_view context);

// Formats the message with the current error line, records it in the error list and shows it.
// Does not throw. Returns the message box's answer.
int formatAndShowError(ErrorKey key, std::string_view context);

// Adds a row to the error and call list, which drops every second of its first twenty rows when it
// is full.
void addToErrorList(std::string_view message, int line, bool isCall);

}  // namespace vexa
