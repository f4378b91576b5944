#include "cli/output_stream.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "interp/output.h"

namespace vexa {

int writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(descriptor, text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
      pollfd ready{descriptor, POLLOUT, 0};
      ::poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

void OutputStream::write(std::string_view text, char mode) {
  if (mode == lineAppend) {
    if (text.empty()) return;
    put(text);
    m_lineIsEmpty = text.back() == '\n';
    return;
  }
  if (!text.empty()) {
    if (!m_lineIsEmpty) put('\n');
    put(text);
  }
  put('\n');
  m_lineIsEmpty = true;
}

void OutputStream::put(char c) {
  if (m_used == m_buffer.size()) flush();
  m_buffer[m_used++] = c;
}

void OutputStream::flush() {
  if (m_used == 0) return;
  if (m_failure == 0) m_failure = writeAll(m_descriptor, {m_buffer.data(), m_used});
  m_used = 0;
}

void OutputStream::put(std::string_view text) {
  if (text.empty()) return;
  if (text.size() > m_buffer.size() - m_used) flush();
  if (text.size() > m_buffer.size()) {
    if (m_failure == 0) m_failure = writeAll(m_descriptor, text);
    return;
  }
  char* out = m_buffer.data() + m_used;
  if (text.size() >= 8 && text.size() <= 16) {
    // Printed numbers: two overlapping words cost less than a call.
    std::memcpy(out, text.data(), 8);
    std::memcpy(out + text.size() - 8, text.data() + text.size() - 8, 8);
  } else {
    std::memcpy(out, text.data(), text.size());
  }
  m_used += text.size();
}

}  // namespace vexa
