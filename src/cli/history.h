#pragma once

// The lines of earlier sessions, kept in a file of the user's state folder.

#include <string>
#include <string_view>
#include <vector>

namespace vexa {

// Everything here succeeds or is silently given up: calculating does not depend on it.
class History {
 public:
  static constexpr std::size_t lineLimit = 2000;

  // Reads what is kept.
  History();
  const std::vector<std::string>& lines() const { return m_lines; }
  // False for a line that is not worth keeping: empty, as the one before, or very long.
  bool add(std::string_view line);
  // Adds this session's lines to those of sessions that ended meanwhile.
  void save() const;

 private:
  std::string m_path;  // empty when there is no place
  std::vector<std::string> m_lines;
  std::vector<std::string> m_added;
};

}  // namespace vexa
