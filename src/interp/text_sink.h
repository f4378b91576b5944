#pragma once

// Where printed text goes.

#include <string_view>

namespace vexa {

inline constexpr char lineAppend = 0;
inline constexpr char lineWhole = 'L';
inline constexpr char lineTitle = 'B';

// Mode 0 (lineAppend) appends to the current line. Mode 'L' (lineWhole) with a text ends the
// current line if it is not empty, writes the text and ends the line; without a text it ends the
// current line. Mode 'B' (lineTitle) is 'L' in the style of a title.
class TextSink {
 public:
  virtual ~TextSink() = default;
  virtual void write(std::string_view text, char mode) = 0;
};

}  // namespace vexa
