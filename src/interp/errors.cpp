#include "interp/errors.h"

#include <algorithm>
#include <utility>

#include "interp/interpreter_state.h"
#include "interp/message_box.h"
#include "interp/program_text.h"

namespace vexa {

namespace {

// Row 40 would be one too many: every second row among the first twenty goes.
void trimErrorList(std::vector<ListRow>& rows) {
  for (std::size_t at = 0; at < 10; ++at)
    rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(at));
}

}  // namespace

void addToErrorList(std::string_view message, int line, bool isCall) {
  InterpreterState& state = interpreter();
  if (state.errorList.size() == errorListLimit) trimErrorList(state.errorList);
  state.errorList.push_back(
      {std::string(message), line, static_cast<std::int16_t>(state.calls.depth()), isCall});
  state.changed(Bar::errors);
}

int formatAndShowError(ErrorKey key, std::string_view context) {
  InterpreterState& state = interpreter();
  const ErrorMessage* message = findErrorMessage(key);
  if (!message) return 0;
  const std::string cited =
      context.empty() ? " near \"" + std::string(tokenSpelling()) : "\" " + std::string(context);
  const std::string line =
      state.errorLine < 0 ? std::string("CALC") : ' ' + std::to_string(state.errorLine);
  state.lastErrorMessage = " Error #" + fillErrorMessage(*message, cited, line);
  addToErrorList(state.lastErrorMessage, state.errorLine, false);
  MessageRequest request;
  request.text = state.lastErrorMessage;
  request.flags = boxOk;
  request.context = std::string(state.contextText);
  request.line = state.errorLine;
  request.fault = true;
  state.faultContext.clear();
  return state.shell->messageBox(request);
}

void raiseError(ErrorKey key) {
  InterpreterState& state = interpreter();
  state.shell->progress(-1, {});
  if (!state.running && !state.evaluating) {
    state.faultContext.clear();
    return;
  }
  ++state.faultCount;
  // A text that is no program at all would give a message for every word of an update; as many as
  // the error list holds are enough.
  if (state.updatingDeclarations && state.faultCount - state.faultsBeforeUpdate > errorListLimit) {
    state.faultContext.clear();
    return;
  }
  state.busy = false;
  state.errorLine = lineOfPosition(state.scanner.progCursor);
  const std::string context = std::exchange(state.faultContext, {});
  if (key != ErrorKey::programTerminated) formatAndShowError(key, context);
  if (state.programDocument && state.errorLine >= 0)
    state.programDocument->markErrorLine(state.errorLine, key == ErrorKey::programTerminated
                                                              ? std::string_view()
                                                              : state.lastErrorMessage);
  if (state.updatingDeclarations) return;
  state.shell->refresh(refreshValues | refreshLocals | refreshCalls | refreshErrors);
  if (!state.shell->barShown(Bar::errors)) state.shell->showBar(Bar::errors);
  if (state.displayValues && !state.shell->barShown(Bar::values)) state.shell->showBar(Bar::values);
  // The records of the swap list are popped one by one while the stack unwinds.
  state.mode = 0;
  throw RunAbandoned{};
}

void raiseError(ErrorKey key, std::string_view context) {
  interpreter().faultContext = std::string(context);
  raiseError(key);
}

}  // namespace vexa
