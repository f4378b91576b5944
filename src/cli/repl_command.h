#pragma once

// vexa repl: a calculator that reads line by line.

#include <string>
#include <string_view>

#include "cli/options.h"

namespace vexa {

// Gives the exit status.
int replCommand(const Options& options);

// Whether a text has an opening bracket or comment whose end is still to come. Literals and
// comments count as the interpreter reads them.
bool isUnfinished(std::string_view text);

// What `help NAME` answers: the description of a built-in, a statement, a function of the loaded
// program or a group of built-ins; the overview for an empty name.
std::string helpFor(std::string_view name);

}  // namespace vexa
