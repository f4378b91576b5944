#pragma once

// The text that is executed: the editor's lines joined, each followed by "//", a blank, its number
// in five digits and a carriage return. The scanner reads the suffix as a comment; the line of a
// position is read back from it.

#include <memory>
#include <string>

#include "interp/shell.h"

namespace vexa {

inline constexpr std::size_t lineSuffixLength = 9;
inline constexpr int maxLineCount = 99999;

// The prepared text of a document, textPadding NULs behind its end. Empty for a document that is
// not loaded. Null when memory cannot be had or there are too many lines.
std::shared_ptr<const std::string> prepareProgramText(const TextDocument& document);
// A calculator's line as text: line ends become carriage returns, ";" is appended.
std::shared_ptr<const std::string> prepareTypedText(std::string_view typed);

// The line of a position in any prepared text, or -1 where there is none (typed text, null).
int lineOfPosition(const char* position);

// Finds the lines of positions that come in the order of the text; many on one line cost no more
// than one.
class LineFinder {
 public:
  int lineOf(const char* position);

 private:
  const char* m_begin = nullptr;  // positions from here to m_end are on line m_line
  const char* m_end = nullptr;
  int m_line = -1;
};

}  // namespace vexa
