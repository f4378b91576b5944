#include "cli/run_command.h"

#include <utility>

#include "cli/interrupt.h"
#include "cli/program_file.h"
#include "cli/terminal_shell.h"
#include "interp/core_view.h"
#include "numlib/linear/dense_kernels.h"
#include "numlib/random/random_builtins.h"

namespace vexa {

int statusOfLastRun() {
  switch (CoreView().lastOutcome()) {
    case RunOutcome::fault:
      return exitFault;
    case RunOutcome::interrupted:
      return exitInterrupted;
    case RunOutcome::none:
    case RunOutcome::normal:
    case RunOutcome::ended:
      break;
  }
  return exitNormal;
}

int runCommand(const Options& options) {
  TerminalShell shell(options);
  ProgramFile file = readProgramFile(options.program);
  if (!file.problem.empty()) {
    shell.complain(file.problem);
    return exitUsage;
  }
  MemoryDocument program(std::move(file.text));
  shell.setProgramName(options.program);
  shell.activate(&program);

  const InterpreterScope scope(shell);
  CoreCommands commands;
  commands.setTrace(options.trace);
  commands.setDisplayValues(options.showValues);
  if (options.seed != 0) seedRandomNumbers(options.seed);
  if (options.ownKernels) allowSystemBlas(false);
  catchInterrupts();
  if (!commands.execute(program)) return shell.finish(exitUsage);
  if (options.showValues) shell.writeCalls();
  return shell.finish(statusOfLastRun());
}

}  // namespace vexa
