#include "cli/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <utility>

#include "cli/output_stream.h"

namespace vexa {

namespace {

// Where a path leads through links; the path itself where nothing stands yet.
std::string resolved(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr),
                                                         &std::free);
  return real ? std::string(real.get()) : path;
}

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

int writeDirectly(const std::string& path, std::string_view bytes) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
  if (file < 0) return errno;
  const int error = writeAll(file, bytes);
  const bool closed = ::close(file) == 0;
  return error != 0 || closed ? error : errno;
}

// A file beside the target that is gone again unless it was put in the target's place.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target)
      : m_path(folderOf(target) + "/.vexa-XXXXXX"),
        m_file(::mkostemp(m_path.data(), O_CLOEXEC)),
        m_error(m_file < 0 ? errno : 0),
        m_exists(m_file >= 0) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (m_file >= 0) ::close(m_file);
    if (m_exists) ::unlink(m_path.c_str());
  }

  int error() const { return m_error; }
  void write(std::string_view bytes, mode_t mode) {
    m_error = writeAll(m_file, bytes);
    if (m_error == 0 && (::fchmod(m_file, mode) != 0 || ::fsync(m_file) != 0)) m_error = errno;
    if (::close(std::exchange(m_file, -1)) != 0 && m_error == 0) m_error = errno;
  }
  void putInPlaceOf(const std::string& target) {
    if (::rename(m_path.c_str(), target.c_str()) == 0)
      m_exists = false;
    else
      m_error = errno;
  }

 private:
  std::string m_path;
  int m_file = -1;
  int m_error = 0;
  bool m_exists = false;
};

// The name must outlast a loss of power as well as the bytes do.
void syncFolder(const std::string& path) {
  const int folder = ::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return;
  ::fsync(folder);
  ::close(folder);
}

mode_t modeOfNewFiles() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

}  // namespace

int writeWholeFile(const std::string& path, std::string_view bytes) {
  const std::string target = resolved(path);
  struct stat status {};
  const bool exists = ::stat(target.c_str(), &status) == 0;
  if (exists && S_ISDIR(status.st_mode)) return EISDIR;
  if (exists && !S_ISREG(status.st_mode)) return writeDirectly(target, bytes);
  // A file that its owner has protected is not to vanish because its folder allows that.
  if (exists && ::access(target.c_str(), W_OK) != 0) return errno;

  TemporaryFile file(target);
  if (file.error() == 0) file.write(bytes, exists ? status.st_mode & 07777 : modeOfNewFiles());
  if (file.error() == 0) file.putInPlaceOf(target);
  if (file.error() == 0) syncFolder(target);
  return file.error();
}

int checkWritable(const std::string& path) {
  const std::string target = resolved(path);
  struct stat status {};
  if (::stat(target.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) return EISDIR;
    if (::access(target.c_str(), W_OK) != 0) return errno;
    if (!S_ISREG(status.st_mode)) return 0;
  } else if (errno != ENOENT) {
    return errno;
  }
  return ::access(folderOf(target).c_str(), W_OK | X_OK) == 0 ? 0 : errno;
}

std::string_view remedyForWriting(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return "make the folder first or check the path";
    case EACCES:
    case EPERM:
    case EROFS:
      return "choose a place where you may write";
    case EISDIR:
      return "name a file in it";
    case ENOSPC:
    case EDQUOT:
      return "make room or write elsewhere";
    default:
      return "write elsewhere";
  }
}

}  // namespace vexa
