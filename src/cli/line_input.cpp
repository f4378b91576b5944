#include "cli/line_input.h"

#include <unistd.h>

#include <cerrno>

#include "cli/interrupt.h"
#include "cli/output_stream.h"

namespace vexa {

namespace {

constexpr int endOfInput = -1;
constexpr int interrupted = -2;
constexpr std::size_t pieceSize = 65536;

}  // namespace

int StandardInput::readByte() {
  if (m_next == m_buffer.size()) {
    m_next = 0;
    m_buffer.resize(pieceSize);
    ssize_t count;
    do {
      waitUnlessInterrupted(STDIN_FILENO, -1);
      if (interruptPending()) {
        m_buffer.clear();
        return interrupted;
      }
      count = ::read(STDIN_FILENO, m_buffer.data(), m_buffer.size());
    } while (count < 0 && (errno == EINTR || errno == EAGAIN));
    m_buffer.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    if (count <= 0) return endOfInput;
  }
  return static_cast<unsigned char>(m_buffer[m_next++]);
}

InputLine StandardInput::readLine() {
  InputLine line;
  while (true) {
    const int byte = readByte();
    if (byte == interrupted) {
      line.kind = InputLine::Kind::interrupted;
      return line;
    }
    if (byte == endOfInput || byte == '\n') {
      if (byte == '\n' || !line.text.empty()) line.kind = InputLine::Kind::line;
      if (line.text.ends_with('\r')) line.text.pop_back();
      return line;
    }
    line.text += static_cast<char>(byte);
  }
}

InputLine PlainLineReader::read(std::string_view prompt) {
  if (!prompt.empty()) writeAll(STDERR_FILENO, prompt);
  return m_input.readLine();
}

}  // namespace vexa
