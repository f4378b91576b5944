#include "cli/history.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "cli/output_stream.h"

namespace vexa {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t longestLine = 10000;
constexpr std::size_t longestFile = History::lineLimit * 1000;

std::string historyPath() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  if (state && *state == '/') return std::string(state) + "/vexa/history";
  const char* const home = std::getenv("HOME");
  if (home && *home == '/') return std::string(home) + "/.local/state/vexa/history";
  return {};
}

void keepNewest(std::vector<std::string>& lines) {
  if (lines.size() <= History::lineLimit) return;
  const auto surplus = static_cast<std::ptrdiff_t>(lines.size() - History::lineLimit);
  lines.erase(lines.begin(), lines.begin() + surplus);
}

// The last part of a file, at most `longestFile` bytes. Nothing for what is no regular file.
std::string readTail(const std::string& path) {
  std::string text;
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return text;
  struct stat status {};
  if (::fstat(file, &status) == 0 && S_ISREG(status.st_mode)) {
    const auto size = static_cast<std::size_t>(status.st_size);
    text.resize(std::min(size, longestFile));
    const auto start = static_cast<off_t>(size - text.size());
    const ssize_t count = ::pread(file, text.data(), text.size(), start);
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  }
  ::close(file);
  return text;
}

std::vector<std::string> readLines(const std::string& path) {
  std::vector<std::string> lines;
  const std::string text = readTail(path);
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    if (end > start) lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  keepNewest(lines);
  return lines;
}

// Whole, to a temporary beside the target that then takes its place.
void replaceFile(const std::string& path, const std::string& text) {
  std::string temporary = path + ".XXXXXX";
  const int file = ::mkstemp(temporary.data());
  if (file < 0) return;
  const bool written = writeAll(file, text) == 0 && ::fsync(file) == 0;
  if (::close(file) != 0 || !written || ::rename(temporary.c_str(), path.c_str()) != 0)
    ::unlink(temporary.c_str());
}

}  // namespace

History::History() : m_path(historyPath()) {
  if (!m_path.empty()) m_lines = readLines(m_path);
}

bool History::add(std::string_view line) {
  const bool blank = line.find_first_not_of(" \t") == std::string_view::npos;
  if (blank || line.size() > longestLine || line.find('\n') != std::string_view::npos) return false;
  if (!m_lines.empty() && m_lines.back() == line) return false;
  m_lines.emplace_back(line);
  m_added.emplace_back(line);
  return true;
}

void History::save() const {
  if (m_path.empty() || m_added.empty()) return;
  std::error_code error;
  const fs::path folder = fs::path(m_path).parent_path();
  fs::create_directories(folder, error);
  if (error) return;
  fs::permissions(folder, fs::perms::owner_all, error);
  std::vector<std::string> lines = readLines(m_path);
  lines.insert(lines.end(), m_added.begin(), m_added.end());
  keepNewest(lines);
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  replaceFile(m_path, text);
}

}  // namespace vexa
