#pragma once

// vexa eval: evaluates one line as the calculator does.

#include "cli/options.h"
#include "cli/terminal_shell.h"
#include "interp/core_view.h"

namespace vexa {

// Gives the exit status.
int evalCommand(const Options& options);

// Evaluates a line and writes what it shows to standard output.
Evaluation evaluateAndShow(const std::string& text);

// Makes a file the program whose functions can be called, and speaks of it by its path from then
// on. `program` receives its text. False after a message.
bool loadProgram(TerminalShell& shell, MemoryDocument& program, const std::string& path);

}  // namespace vexa
