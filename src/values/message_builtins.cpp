#include "values/message_builtins.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "interp/interpreter_state.h"
#include "interp/message_box.h"
#include "values/argument_readers.h"
#include "values/calculator.h"
#include "values/character_class.h"
#include "values/numeric_arguments.h"
#include "values/value_builtins.h"

namespace vexa {

namespace {

constexpr int answerYes = 6;
constexpr double secondsBetweenPolls = 0.02;
constexpr std::size_t longestAddress = 2000;

// "(" text list ")"
std::string readTextArgument() {
  expectChar('(');
  std::string text = readTextList();
  expectChar(')');
  return text;
}

// ---- view, debugview, select ----

// A variable's name; key 58 for any other word.
std::string readVariableName() {
  NameArgument name = readName();
  if (!isVariable(name.kind)) raiseError(ErrorKey::undefinedVariable);
  return std::move(name.text);
}

void viewVariables(DataRequest::Mode mode) {
  expectChar('(');
  std::vector<std::string> names;
  do names.push_back(readVariableName());
  while (moreArguments());
  for (const std::string& name : names) shell().viewData({mode, name});
}

// The name of a matrix variable, with or without a mark; key 59 for anything else.
std::string readMatrixName() {
  acceptChar('!');
  const NameArgument name = readName(ErrorKey::matrixNameExpected);
  const Matrix* matrix = findMatrix(name.text);
  if (!matrix || matrix->isString()) raiseError(ErrorKey::matrixNameExpected);
  return name.text;
}

double selectElement() {
  expectChar('(');
  const std::string name = readMatrixName();
  expectChar(')');
  const ElementPick pick = shell().viewData({DataRequest::Mode::select, name});
  const Matrix* matrix = findMatrix(name);
  const bool picked = matrix && pick.row != 0;
  Indexes at;
  if (picked) at = checkIndexes({pick.row, pick.col}, matrix->rows(), matrix->cols());
  setPreset("row#", at.i);
  setPreset("col#", at.j);
  return picked ? matrix->at(at.i, at.j) : 0.0;
}

// ---- gotourl ----

// A program from elsewhere must not start what lies on the disk, so only addresses of the net and
// of mail are opened.
bool isOpenableAddress(std::string_view address) {
  constexpr std::array<std::string_view, 3> schemes = {"http:", "https:", "mailto:"};
  constexpr unsigned char lastControl = 0x20;
  constexpr unsigned char deleteControl = 0x7F;
  const bool plain = std::ranges::none_of(address, [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte <= lastControl || byte == deleteControl;
  });
  return plain && address.size() <= longestAddress &&
         std::ranges::any_of(schemes, [address](std::string_view scheme) {
           return equalIgnoringCase(address.substr(0, scheme.size()), scheme);
         });
}

}  // namespace

double messageBuiltin() {
  switch (interpreter().currentBuiltin) {
    case builtinCode("isvar"):
      return isvarBuiltin();
    case builtinCode("yesno"):
      return messageBox(readTextArgument(), boxYesNo) == answerYes;
    case builtinCode("postmessage"):
      shell().postMessage(readTextArgument());
      return noResult();
    default:
      messageBox(readTextArgument());
      return noResult();
  }
}

double hidemessageBuiltin() {
  expectNoArguments();
  shell().hideMessage();
  return noResult();
}

double viewBuiltin() {
  switch (interpreter().currentBuiltin) {
    case builtinCode("select"):
      return selectElement();
    case builtinCode("debugview"):
      if (interpreter().debug)
        viewVariables(DataRequest::Mode::debug);
      else
        skipGroup('(');
      return noResult();
    default:
      viewVariables(DataRequest::Mode::view);
      return noResult();
  }
}

double calcBuiltin() {
  expectChar('(');
  if (acceptChar(')')) return shell().calculator(CalcRequest{}).value_or(0.0);
  const std::string text = readText();
  expectChar(')');
  Evaluation evaluation;
  evaluateTypedText(text, evaluation, true);
  interpreter().noEcho = false;
  return evaluation.value;
}

// The time is the shell's clock, or what was waited if that stands still.
double sleepBuiltin() {
  expectChar('(');
  const double seconds = evalScalarArg();
  expectChar(')');
  if (!(seconds >= 0)) {
    raiseError(ErrorKey::invalidData);
    return noResult();
  }
  const double start = shell().clock();
  double waited = 0;
  while (waited < seconds) {
    const double turn = std::min(seconds - waited, secondsBetweenPolls);
    shell().wait(turn);
    waited = std::max(waited + turn, shell().clock() - start);
    shell().pump();
    pollInterrupt();
  }
  return noResult();
}

double gotourlBuiltin() {
  expectChar('(');
  const std::string address = readText();
  expectChar(')');
  if (!isOpenableAddress(address)) {
    raiseError(ErrorKey::invalidData);
    return 0.0;
  }
  return shell().openUrl(address);
}

double elapsedTimeBuiltin() {
  expectNoArguments();
  return shell().clock() - interpreter().runStartTime;
}

}  // namespace vexa
