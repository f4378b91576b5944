#include "cli/run_command.h"

#include <utility>

#include "cli/interrupt.h"
#include "cli/picture_file.h"
#include "cli/program_file.h"
#include "cli/terminal_shell.h"
#include "interp/core_view.h"
#include "numlib/linear/dense_kernels.h"
#include "numlib/random/random_builtins.h"

namespace vexa {

namespace {

// The pictures that --drawing asks for, whatever ended the run. Gives `status`, or exitUsage when
// one could not be written.
int writePictures(TerminalShell& shell, const Options& options, int status) {
  if (options.drawing.empty()) return status;
  if (shell.drawings().empty())
    shell.complain("nothing was drawn, so " + options.drawing + " is not written");
  std::size_t number = 0;
  for (const auto& drawing : shell.drawings()) {
    const std::string path = numberedPath(options.drawing, ++number);
    const std::string problem = writePicture(*drawing, path, options.picture);
    if (problem.empty()) continue;
    shell.complain(problem);
    status = exitUsage;
  }
  return status;
}

}  // namespace

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
  if (!options.drawing.empty()) {
    // Before the work of a run that could not leave its picture.
    if (const std::string obstacle = obstacleTo(options.drawing); !obstacle.empty()) {
      shell.complain(obstacle);
      return exitUsage;
    }
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
  return shell.finish(writePictures(shell, options, statusOfLastRun()));
}

}  // namespace vexa
