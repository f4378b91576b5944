#pragma once

// Standard output and standard error, written without the C++ streams, whose start-up alone takes
// longer than a small program.

#include <array>
#include <cstddef>
#include <string_view>

namespace vexa {

// Writes all of it to a file descriptor, whatever signals come between. Returns 0 or an errno.
int writeAll(int descriptor, std::string_view text);

// Printed text on its way to a file descriptor through one buffer. After a failed write everything
// more is dropped.
class OutputStream {
 public:
  explicit OutputStream(int descriptor) : m_descriptor(descriptor) {}
  OutputStream(const OutputStream&) = delete;
  OutputStream& operator=(const OutputStream&) = delete;

  // In one of the line modes of TextDocument::write.
  void write(std::string_view text, char mode);
  void flush();
  bool lineIsEmpty() const { return m_lineIsEmpty; }
  bool waiting() const { return m_used != 0; }
  // The errno of the write that failed, or 0.
  int failure() const { return m_failure; }

 private:
  void put(std::string_view text);
  void put(char c);

  int m_descriptor;
  int m_failure = 0;
  bool m_lineIsEmpty = true;
  std::size_t m_used = 0;
  std::array<char, 65536> m_buffer;
};

}  // namespace vexa
