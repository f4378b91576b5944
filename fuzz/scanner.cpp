// Scans arbitrary bytes as a program: every token, the walk over brackets and the skips that start
// at each bracket. Each loop must move on and stay inside the text.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "interp/interpreter_state.h"
#include "interp/program_text.h"
#include "interp/silent_shell.h"
#include "values/scanner.h"

namespace {

using namespace vexa;

// A fault ends a scan as it would end a run.
template <class Scan>
void untilFault(InterpreterState& state, const char* start, Scan scan) {
  state.scanner = Scanner{};
  state.scanner.progCursor = start;
  try {
    scan();
  } catch (const RunAbandoned&) {
  }
  const char* const end = state.programText->data() + state.programText->size();
  if (state.scanner.progCursor < state.programText->data() || state.scanner.progCursor > end)
    std::abort();
}

void readTokens(InterpreterState& state) {
  while (true) {
    const char* const before = state.scanner.progCursor;
    getToken();
    if (state.scanner.atEnd()) return;
    if (state.scanner.progCursor <= before) std::abort();
    tokenSpelling();
    lineOfPosition(state.scanner.tokenStart);
    const char* const after = state.scanner.progCursor;
    rescanToken();
    getToken();
    if (state.scanner.progCursor != after) std::abort();
  }
}

void skipGroups(InterpreterState& state) {
  while (const char c = nextStructuralChar()) {
    if (c != '(' && c != '[' && c != '{') continue;
    const char* const inside = state.scanner.progCursor;
    state.scanner.progCursor = inside - 1;
    // Only the beginning of a text full of opening brackets, or the time is squared.
    if (inside - state.programText->data() < 2000) skipGroup(c);
    state.scanner.progCursor = inside;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  SilentShell shell;
  shell.dropOutput();
  MemoryDocument program(std::string(reinterpret_cast<const char*>(data), size));
  const InterpreterScope scope(shell);
  InterpreterState& state = interpreter();
  state.programText = prepareProgramText(program);
  if (!state.programText) return 0;
  const char* const start = state.programText->data();

  // Faults are thrown while a program runs, and passed over during an update.
  state.running = true;
  untilFault(state, start, [&] { readTokens(state); });
  untilFault(state, start, [&] { skipGroups(state); });
  untilFault(state, start, [&] { skipToChar(';', '}'); });
  state.updatingDeclarations = true;
  untilFault(state, start, [&] { readTokens(state); });
  untilFault(state, start, [&] { skipGroups(state); });
  return 0;
}
