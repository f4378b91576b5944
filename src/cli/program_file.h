#pragma once

// Reading the text of a program.

#include <cstddef>
#include <string>

namespace vexa {

inline constexpr std::size_t programSizeLimit = std::size_t{1} << 30;

struct ProgramFile {
  std::string text;
  std::string problem;  // empty when the text was read: what is wrong and what to do about it
};

// Reads a file of any kind as bytes; "-" is standard input.
ProgramFile readProgramFile(const std::string& path);

// A path or text as part of a one-line message: control characters become question marks.
std::string onOneLine(std::string text);

}  // namespace vexa
