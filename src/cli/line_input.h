#pragma once

// Lines that a person types or that come through a pipe.

#include <memory>
#include <string>
#include <string_view>

namespace vexa {

struct InputLine {
  enum class Kind { line, end, interrupted } kind = Kind::end;
  std::string text;  // without its line end
};

// Standard input, byte by byte and line by line.
class StandardInput {
 public:
  // The next byte, -1 at the end of the input, -2 when Ctrl-C came first.
  int readByte();
  InputLine readLine();

 private:
  std::string m_buffer;
  std::size_t m_next = 0;
};

// Asks for lines with a prompt on stderr, so that stdout stays free for values.
class LineReader {
 public:
  virtual ~LineReader() = default;
  virtual InputLine read(std::string_view prompt) = 0;
  // Puts a line among those that can be called back.
  virtual void remember(std::string_view) {}
};

// Without editing: the prompt may be empty, and is then not written.
class PlainLineReader : public LineReader {
 public:
  explicit PlainLineReader(StandardInput& input) : m_input(input) {}
  InputLine read(std::string_view prompt) override;

 private:
  StandardInput& m_input;
};

}  // namespace vexa
