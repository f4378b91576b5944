#include "cli/program_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

#include "cli/interrupt.h"

namespace vexa {

namespace {

class Descriptor {
 public:
  Descriptor(int number, bool owned) : m_number(number), m_owned(owned) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (m_owned && m_number >= 0) ::close(m_number);
  }
  int number() const { return m_number; }

 private:
  int m_number;
  bool m_owned;
};

std::string remedyFor(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return "check the path";
    case EACCES:
    case EPERM:
      return "ask for permission to read it";
    case EISDIR:
      return "name a file in it";
    default:
      return "try another file";
  }
}

std::string problemWith(const std::string& name, int error) {
  return "cannot read " + name + ": " + std::strerror(error) + "; " + remedyFor(error);
}

// Reads to the end. Gives 0, an errno, or EFBIG beyond the limit.
int readAll(int descriptor, std::string& text) {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  if (S_ISREG(status.st_mode) && status.st_size > 0) {
    if (static_cast<std::size_t>(status.st_size) > programSizeLimit) return EFBIG;
    text.reserve(static_cast<std::size_t>(status.st_size));
  }
  std::array<char, 65536> piece;
  while (true) {
    const ssize_t count = ::read(descriptor, piece.data(), piece.size());
    if (count == 0) return 0;
    if (count > 0) {
      if (text.size() + static_cast<std::size_t>(count) > programSizeLimit) return EFBIG;
      text.append(piece.data(), static_cast<std::size_t>(count));
    } else if (errno != EINTR || interruptPending()) {
      return errno;
    }
  }
}

}  // namespace

ProgramFile readProgramFile(const std::string& path) {
  ProgramFile file;
  const bool standardInput = path == "-";
  const std::string name = standardInput ? "standard input" : onOneLine(path);
  const Descriptor descriptor(
      standardInput ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY),
      !standardInput);
  try {
    const int error = descriptor.number() < 0 ? errno : readAll(descriptor.number(), file.text);
    if (error == EFBIG)
      file.problem = name + " holds more than 1 GB; split it";
    else if (error == EINTR)
      file.problem = "reading " + name + " was interrupted; try again";
    else if (error != 0)
      file.problem = problemWith(name, error);
  } catch (const std::bad_alloc&) {
    file.problem = "memory is not enough for " + name + "; close other programs or split it";
  }
  if (!file.problem.empty()) file.text = {};
  return file;
}

std::string onOneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; }, '?');
  return text;
}

}  // namespace vexa
