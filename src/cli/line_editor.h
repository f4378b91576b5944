#pragma once

// Lines with editing, history and completion, by the editline library if the machine has it.

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cli/history.h"
#include "cli/line_input.h"

namespace vexa {

// The words that could stand where one begins with `start`.
using Completions = std::function<std::vector<std::string>(std::string_view start)>;

// Null when the library cannot be had; then lines are read plainly. `input` and `history` outlive
// the editor.
std::unique_ptr<LineReader> makeLineEditor(StandardInput& input, History& history,
                                           Completions completions, bool coloured);

// What is common to the beginnings of all words; empty for none.
std::string commonBeginning(const std::vector<std::string>& words);

}  // namespace vexa
