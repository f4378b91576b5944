#pragma once

// vexa run: executes a program document.

#include "cli/options.h"

namespace vexa {

// Gives the exit status.
int runCommand(const Options& options);

// The exit status that the last run deserves.
int statusOfLastRun();

}  // namespace vexa
