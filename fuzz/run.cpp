// Executes arbitrary bytes as a program, then calculates in what it left: whatever a program does,
// the process and the next line are safe.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "interp/core_view.h"
#include "interp/silent_shell.h"
#include "values/matrix.h"

namespace {

using namespace vexa;

constexpr std::uint64_t pollLimit = 60;  // one for every 512 tokens
constexpr std::uint64_t matrixBytes = 64u << 20;

void readEverything() {
  const CoreView view;
  view.globals();
  view.userFunctions();
  const std::vector<FrameRow> frames = view.frames();
  for (const FrameRow& frame : frames) view.locals(frame.depth);
}

// Reads everything at each message, as a window would.
class WatchingShell : public SilentShell {
 public:
  int messageBox(const MessageRequest& request) override {
    readEverything();
    return SilentShell::messageBox(request);
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  setMatrixMemoryLimit(matrixBytes);
  WatchingShell shell;
  shell.dropOutput();
  shell.stopAfterPolls(pollLimit);
  MemoryDocument program(std::string(reinterpret_cast<const char*>(data), size));
  shell.activate(&program);
  {
    const InterpreterScope scope(shell);
    CoreCommands commands;
    commands.setDisplayValues(size % 2 == 0);
    commands.setTrace(size % 3 == 0);
    commands.execute(program);
    if (CoreView().running()) std::abort();
    readEverything();

    shell.stopAfterPolls(pollLimit);
    commands.textChanged(program);
    Evaluation evaluation;
    if (!commands.evaluate(program.text(), evaluation)) std::abort();
    shell.stopAfterPolls(pollLimit);
    evaluation = {};
    if (!commands.evaluate("1+1", evaluation) || evaluation.fault || evaluation.value != 2)
      std::abort();
    readEverything();
  }
  if (matrixMemoryInUse() != 0) std::abort();
  return 0;
}
