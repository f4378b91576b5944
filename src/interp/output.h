#pragma once

// Text on its way to the current output document, or to whatever collects it instead.

#include <string>
#include <string_view>

#include "interp/text_sink.h"

namespace vexa {

// Appends in one of the line modes to a text whose lines end with a line feed.
void appendInMode(std::string& out, std::string_view text, char mode);

// Collects what would be printed; lines end with a line feed.
class StringSink : public TextSink {
 public:
  void write(std::string_view text, char mode) override;
  const std::string& text() const { return m_text; }

 private:
  std::string m_text;
};

// The current output document; chooses or creates one at the first text when none is chosen.
TextSink& outputSink();

inline void writeOutput(std::string_view text, char mode = lineAppend) {
  outputSink().write(text, mode);
}
// Ends the current line; on an empty line that gives an empty line.
inline void endOutputLine() { outputSink().write({}, lineWhole); }

}  // namespace vexa
