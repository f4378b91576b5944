#include "values/run_options.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <string>

#include "interp/interpreter_state.h"
#include "interp/message_box.h"
#include "interp/statements.h"
#include "values/argument_readers.h"
#include "values/character_class.h"
#include "values/evaluator_parts.h"

namespace vexa {

namespace {

// Not the nearest doubles to 180/pi and pi/180: results in degrees have always been computed with
// these, and programs keep theirs by it.
constexpr auto degreesPerRadian = std::bit_cast<double>(std::uint64_t{0x404CA5DC1A63C200});
constexpr auto radiansPerDegree = std::bit_cast<double>(std::uint64_t{0x3F91DF46A2529D34});

constexpr AngleMode radiansMode;
constexpr AngleMode degreesMode{false, degreesPerRadian, radiansPerDegree};

// Both angle options return whether the mode was radians before.
double chooseAngles(const AngleMode& chosen, std::string_view message) {
  AngleMode& angles = interpreter().angles;
  const bool wereRadians = angles.radians;
  if (wereRadians != chosen.radians) messageBox(message);
  angles = chosen;
  return wereRadians;
}

double chooseDebug(bool on) {
  const bool wasOn = interpreter().debug;
  interpreter().debug = on;
  return wasOn;
}

// Nothing may go on pointing to a matrix that is about to be freed.
void forgetMatrix(InterpreterState& state, const Matrix* matrix) {
  if (state.currentMatrix == matrix) state.currentMatrix = nullptr;
  if (state.returnMatrix == matrix) state.returnMatrix = nullptr;
}

// Only globals that the program made are deleted; locals of the same name do not matter.
void deleteGlobal(const std::string& name) {
  InterpreterState& state = interpreter();
  Symbol* symbol = state.names.find(name);
  if (!symbol || !symbol->isGlobal() || symbol->number == presetNumber) {
    messageBox(name + " is not a user-defined global.");
    return;
  }
  if (const Matrix* matrix = symbol->matrix.get()) {
    if (matrix->pinned()) {
      raiseError(ErrorKey::variableInUse, name);
      return;
    }
    forgetMatrix(state, matrix);
  } else if (symbol->type != typeFloat) {
    raiseError(ErrorKey::undefinedVariable, name);
    return;
  }
  state.names.remove(*symbol);
  state.changed(Bar::globals);
}

// Past the closing parenthesis of the call in whose list the cursor stands.
void skipRestOfCall() {
  for (int depth = 1; depth > 0;) {
    switch (nextStructuralChar()) {
      case '(':
        ++depth;
        break;
      case ')':
        --depth;
        break;
      case '\0':
        raiseError(ErrorKey::parenthesisExpected);
        return;
      default:
        break;
    }
  }
}

// One item of `exec` that is an expression.
double execExpression() {
  const Scanner& scanner = interpreter().scanner;
  getToken();
  double x = 0.0;
  if (scanner.isMark()) {
    Value value;
    evalMatrixExpression(value, static_cast<char>(scanner.tokenChar), true);
    if (value.tempMark) interpreter().currentMatrix = nullptr;
    freeOperand(value);
  } else {
    x = evalCondition();
  }
  rescanToken();
  return x;
}

}  // namespace

double useoptionBuiltin() {
  constexpr std::array<std::string_view, 4> options = {"DEGREES", "RADIANS", "DEBUGON", "DEBUGOFF"};
  expectChar('(');
  std::string option = readLiteral();
  std::ranges::transform(option, option.begin(), upperCase);
  if (std::ranges::find(options, option) == options.end()) {
    raiseError(ErrorKey::invalidData);
    return 0.0;
  }
  expectChar(')');
  if (option == "DEGREES") return chooseAngles(degreesMode, " Switching to option DEGREES");
  if (option == "RADIANS") return chooseAngles(radiansMode, " Switching to option RADIANS");
  return chooseDebug(option == "DEBUGON");
}

double deleteBuiltin() {
  expectChar('(');
  const Scanner& scanner = interpreter().scanner;
  bool more = true;
  while (more) {
    getToken();
    const bool isName = scanner.isWord() || scanner.tokenType == TOKEN_KEYWORD;
    const std::string name(scanner.tokenText);
    if (!isName) raiseError(ErrorKey::variableNameExpected);
    more = moreArguments(ErrorKey::invalidData);
    if (isName) deleteGlobal(name);
  }
  return noResult();
}

double execBuiltin() {
  expectChar('(');
  double value = 0.0;
  bool more = true;
  while (more) {
    if (nextCharacter() == '{') {
      value = 0.0;
      if (executeBlockInExpression() == BlockEnd::broken) {
        skipRestOfCall();
        break;
      }
    } else {
      value = execExpression();
    }
    more = moreArguments(ErrorKey::invalidData);
  }
  // The call stands for the value of its last item, whatever the items were.
  interpreter().noEcho = false;
  return value;
}

}  // namespace vexa
