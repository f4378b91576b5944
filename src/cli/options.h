#pragma once

// What stands on the command line. Parsed by hand: a library would add a tenth to the time in which
// an empty program runs, and could not tell `vexa eval -2+3` from an option.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/picture_options.h"

namespace vexa {

inline constexpr int exitNormal = 0;
inline constexpr int exitFault = 1;
inline constexpr int exitUsage = 2;  // wrong usage, or a file that cannot be read or written
inline constexpr int exitInterrupted = 130;

enum class Command { none, run, eval, repl, draw };

struct Options {
  Command command = Command::none;
  // The path of a program, or of draw's drawing; "-" is standard input; empty where it may be left
  // out.
  std::string program;
  std::string expression;  // of eval
  std::vector<std::string> openFiles, saveFiles, answers;
  std::int32_t seed = 0;  // of the random numbers; 0 where none is given
  bool trace = false;
  bool showValues = false;
  bool ownKernels = false;
  std::string drawing;  // the picture that draw or run writes; its extension is a known one
  PictureOptions picture;

  // Instead of a command: a text for stdout, or what is wrong with the words.
  std::string_view information;
  std::string problem;
};

// `words` are those after the program's own name.
Options parseOptions(std::span<const char* const> words);

}  // namespace vexa
