#include "interp/memory_document.h"

#include <algorithm>
#include <utility>

#include "interp/output.h"
#include "interp/program_text.h"

namespace vexa {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// Past the line end at `at`, which is a CR or LF.
std::size_t afterLineEnd(std::string_view text, std::size_t at) {
  const bool pair = text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n';
  return at + (pair ? 2 : 1);
}

// The first line end from `at` on, or the end of the text.
std::size_t findLineEnd(std::string_view text, std::size_t at) {
  const std::size_t found = text.find_first_of("\r\n", at);
  return found == std::string_view::npos ? text.size() : found;
}

}  // namespace

MemoryDocument::MemoryDocument(std::string text) { setText(std::move(text)); }

void MemoryDocument::setText(std::string text) {
  m_text = std::move(text);
  if (m_text.starts_with(byteOrderMark)) m_text.erase(0, byteOrderMark.size());
  m_lineStarts.clear();
}

int MemoryDocument::lineCount() const {
  findLines();
  return static_cast<int>(m_lineStarts.size());
}

std::string MemoryDocument::line(int number) const {
  findLines();
  const auto index = static_cast<std::size_t>(number - 1);
  if (number < 1 || index >= m_lineStarts.size()) return {};
  const std::size_t start = m_lineStarts[index];
  return m_text.substr(start, findLineEnd(m_text, start) - start);
}

void MemoryDocument::write(std::string_view text, char mode) {
  appendInMode(m_text, text, mode);
  m_lineStarts.clear();
}

void MemoryDocument::markErrorLine(int number, std::string_view) { m_markedLine = number; }

void MemoryDocument::findLines() const {
  if (!m_lineStarts.empty()) return;
  m_lineStarts.push_back(0);
  const std::string_view text = m_text;
  std::size_t at = findLineEnd(text, 0);
  while (at < text.size() && m_lineStarts.size() <= maxLineCount) {
    at = afterLineEnd(text, at);
    if (at == text.size()) break;  // the last line end begins no further line
    m_lineStarts.push_back(at);
    at = findLineEnd(text, at);
  }
}

}  // namespace vexa
