#pragma once

// vexa draw: converts a drawing document into a picture.

#include "cli/options.h"

namespace vexa {

// Gives the exit status.
int drawCommand(const Options& options);

}  // namespace vexa
