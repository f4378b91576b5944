#include "interp/program_text.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <new>

#include "interp/name_pool.h"

namespace vexa {

namespace {

// A NUL inside the text would end it; it is read as a blank.
void appendLine(std::string& text, std::string_view line) {
  const std::size_t start = text.size();
  text.append(line);
  std::replace(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(), '\0', ' ');
}

void appendSuffix(std::string& text, int number) {
  char digits[] = "// 00000\r";
  for (int at = 7; number > 0 && at >= 3; --at, number /= 10)
    digits[at] = static_cast<char>('0' + number % 10);
  text.append(digits, lineSuffixLength);
}

}  // namespace

std::shared_ptr<const std::string> prepareProgramText(const TextDocument& document) {
  const int count = document.loaded() ? document.lineCount() : 0;
  if (count > maxLineCount) return nullptr;
  try {
    auto text = std::make_shared<std::string>();
    for (int number = 1; number <= count; ++number) {
      appendLine(*text, document.line(number));
      appendSuffix(*text, number);
    }
    text->append(textPadding, '\0');
    return text;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

std::shared_ptr<const std::string> prepareTypedText(std::string_view typed) {
  // The blanks in front let lineOfPosition look back from anywhere.
  auto text = std::make_shared<std::string>(lineSuffixLength, ' ');
  appendLine(*text, typed);
  std::replace(text->begin(), text->end(), '\n', '\r');
  // On a line of its own, so that a comment at the end does not swallow it.
  text->append("\r;");
  text->append(textPadding, '\0');
  return text;
}

int lineOfPosition(const char* position) {
  if (!position) return -1;
  // The end of a program lies behind the last suffix.
  if (*position == '\0') position -= 5;
  while (*position != '\r' && *position != '\0') ++position;
  if (*position == '\0') return -1;
  // Typed text has carriage returns, too, but no numbers before them.
  constexpr std::string_view pattern = "// ";
  const char* digits = position - 5;
  for (int i = 1; i <= 5; ++i)
    if (position[-i] < '0' || position[-i] > '9') return -1;
  if (std::string_view(digits - 3, 3) != pattern) return -1;
  int line = 0;
  std::from_chars(digits, position, line);
  return line;
}

int LineFinder::lineOf(const char* position) {
  if (!m_begin || position < m_begin || position > m_end) {
    m_begin = position;
    m_end = position + std::strcspn(position, "\r");
    m_line = lineOfPosition(position);
  }
  return m_line;
}

}  // namespace vexa
