#include <unistd.h>

#include <csignal>
#include <new>
#include <span>

#include "cli/eval_command.h"
#include "cli/options.h"
#include "cli/output_stream.h"
#include "cli/program_file.h"
#include "cli/repl_command.h"
#include "cli/run_command.h"

namespace {

using namespace vexa;

int carryOut(const Options& options) {
  if (!options.information.empty())
    return writeAll(STDOUT_FILENO, options.information) == 0 ? exitNormal : exitUsage;
  if (!options.problem.empty()) {
    writeAll(STDERR_FILENO, onOneLine(options.problem) + '\n');
    return exitUsage;
  }
  switch (options.command) {
    case Command::run:
      return runCommand(options);
    case Command::eval:
      return evalCommand(options);
    case Command::repl:
      return replCommand(options);
    case Command::none:
      break;
  }
  return exitUsage;
}

}  // namespace

int main(int count, char** words) {
  // A reader that goes away is noticed at the write.
  std::signal(SIGPIPE, SIG_IGN);
  try {
    const std::span<const char* const> all(words, static_cast<std::size_t>(count));
    return carryOut(parseOptions(count > 0 ? all.subspan(1) : all));
  } catch (const std::bad_alloc&) {
    writeAll(STDERR_FILENO, "vexa: memory is used up; make the program or its data smaller\n");
    return exitFault;
  }
}
