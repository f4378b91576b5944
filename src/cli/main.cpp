#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <new>
#include <span>

#include "cli/draw_command.h"
#include "cli/eval_command.h"
#include "cli/options.h"
#include "cli/output_stream.h"
#include "cli/program_file.h"
#include "cli/repl_command.h"
#include "cli/run_command.h"

namespace {

using namespace vexa;

// A closed standard stream leaves its number to the next file that is opened, which would then be
// read or written in its place. What stands there instead fails at every use.
void occupyClosedStreams() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor)
    if (::fcntl(descriptor, F_GETFD) < 0)
      ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

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
    case Command::draw:
      return drawCommand(options);
    case Command::none:
      break;
  }
  return exitUsage;
}

}  // namespace

int main(int count, char** words) {
  occupyClosedStreams();
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
