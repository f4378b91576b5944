#include "numlib/finance/serial_date.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace vexa {

namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr double secondsPerDay = 86400;
constexpr int missingSerial = 60;

constexpr sys_days dayOf(int year, unsigned month, unsigned day) {
  return year_month_day{std::chrono::year{year}, std::chrono::month{month}, std::chrono::day{day}};
}

constexpr sys_days firstDay = dayOf(1900, 1, 1);
constexpr sys_days lastDay = dayOf(9999, 12, 31);

int wholeSerial(sys_days day) {
  const auto serial = static_cast<int>((day - firstDay).count()) + 1;
  return serial < missingSerial ? serial : serial + 1;
}

sys_days dayOfSerial(int serial) {
  return firstDay + days{serial < missingSerial ? serial - 1 : serial - 2};
}

// Takes a text apart from left to right; what does not fit is remembered.
class TextReader {
 public:
  explicit TextReader(std::string_view text) : m_rest(text) {}

  // A whole number of at least `least` and at most `most` digits.
  int number(std::size_t least, std::size_t most) {
    std::size_t length = 0;
    int value = 0;
    while (length < m_rest.size() && isDigit(m_rest[length]) && length <= most)
      value = 10 * value + (m_rest[length++] - '0');
    if (length < least || length > most) m_good = false;
    m_rest.remove_prefix(length);
    return value;
  }

  // Two digits and, after a point, at least one more.
  double secondsWithFraction() {
    const std::string_view start = m_rest;
    number(2, 2);
    if (accept('.')) {
      if (m_rest.empty() || !isDigit(m_rest.front())) m_good = false;
      while (!m_rest.empty() && isDigit(m_rest.front())) m_rest.remove_prefix(1);
    }
    double value = 0;
    std::from_chars(start.data(), m_rest.data(), value, std::chars_format::fixed);
    return value;
  }

  bool accept(char c) {
    if (m_rest.empty() || m_rest.front() != c) return false;
    m_rest.remove_prefix(1);
    return true;
  }

  void expect(char c) {
    if (!accept(c)) m_good = false;
  }

  bool atEnd() const { return m_rest.empty(); }
  bool good() const { return m_good; }

 private:
  static bool isDigit(char c) { return c >= '0' && c <= '9'; }

  std::string_view m_rest;
  bool m_good = true;
};

std::string_view withoutBlanks(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

void readDate(TextReader& reader, char separator, DateTime& date) {
  if (separator == '-') {
    date.year = reader.number(4, 4);
    reader.expect('-');
    date.month = reader.number(1, 2);
    reader.expect('-');
    date.day = reader.number(1, 2);
    return;
  }
  int& first = separator == '.' ? date.day : date.month;
  int& second = separator == '.' ? date.month : date.day;
  first = reader.number(1, 2);
  reader.expect(separator);
  second = reader.number(1, 2);
  reader.expect(separator);
  date.year = reader.number(4, 4);
}

void readTime(TextReader& reader, DateTime& date) {
  if (!reader.accept('T')) reader.expect(' ');
  date.hour = reader.number(1, 2);
  reader.expect(':');
  date.minute = reader.number(2, 2);
  if (reader.accept(':')) date.second = reader.secondsWithFraction();
}

// A double that an int cannot hold is no part of a date; the caller has checked the range.
DateTime splitTime(sys_days day, std::int64_t steps, std::int64_t stepsPerSecond) {
  const year_month_day civil{day};
  const std::int64_t seconds = steps / stepsPerSecond;
  DateTime date;
  date.year = static_cast<int>(civil.year());
  date.month = static_cast<int>(static_cast<unsigned>(civil.month()));
  date.day = static_cast<int>(static_cast<unsigned>(civil.day()));
  date.hour = static_cast<int>(seconds / 3600);
  date.minute = static_cast<int>(seconds / 60 % 60);
  date.second =
      static_cast<double>(steps % (60 * stepsPerSecond)) / static_cast<double>(stepsPerSecond);
  date.weekday = static_cast<int>(std::chrono::weekday{day}.iso_encoding());
  return date;
}

}  // namespace

bool isSerial(double serial) {
  if (!(serial >= 1 && serial < lastSerial + 1)) return false;
  return serial < missingSerial || serial >= missingSerial + 1;
}

std::optional<double> serialOf(const DateTime& date) {
  if (date.year < 1900 || date.year > 9999 || date.month < 1 || date.month > 12 || date.day < 1 ||
      date.day > 31)
    return std::nullopt;
  if (date.hour < 0 || date.hour > 23 || date.minute < 0 || date.minute > 59 ||
      !(date.second >= 0 && date.second < 60))
    return std::nullopt;
  const year_month_day civil{std::chrono::year{date.year},
                             std::chrono::month{static_cast<unsigned>(date.month)},
                             std::chrono::day{static_cast<unsigned>(date.day)}};
  if (!civil.ok()) return std::nullopt;
  const double seconds = 3600.0 * date.hour + 60.0 * date.minute + date.second;
  const double serial = wholeSerial(sys_days{civil}) + seconds / secondsPerDay;
  // The last moment of a day must not round to the next, which may be no date.
  const double nextDay = wholeSerial(sys_days{civil}) + 1.0;
  return serial < nextDay ? serial : std::nextafter(nextDay, 0.0);
}

std::optional<DateTime> dateOf(double serial, TimeStep step) {
  if (!isSerial(serial)) return std::nullopt;
  const double whole = std::floor(serial);
  const std::int64_t stepsPerSecond = step == TimeStep::second ? 1 : 1000;
  const std::int64_t stepsPerDay = static_cast<std::int64_t>(secondsPerDay) * stepsPerSecond;
  sys_days day = dayOfSerial(static_cast<int>(whole));
  std::int64_t steps = std::llround((serial - whole) * static_cast<double>(stepsPerDay));
  if (steps == stepsPerDay) {
    steps = day == lastDay ? stepsPerDay - 1 : 0;
    if (day != lastDay) day += days{1};
  }
  return splitTime(day, steps, stepsPerSecond);
}

std::optional<double> serialOfText(std::string_view text) {
  text = withoutBlanks(text);
  const std::size_t place = text.find_first_of("-./");
  if (place == std::string_view::npos) return std::nullopt;
  TextReader reader(text);
  DateTime date;
  readDate(reader, text[place], date);
  if (!reader.atEnd()) readTime(reader, date);
  if (!reader.good() || !reader.atEnd()) return std::nullopt;
  return serialOf(date);
}

std::string textOfSerial(double serial, DateOrder order) {
  const std::optional<DateTime> found = dateOf(serial, TimeStep::second);
  if (!found) return {};
  const DateTime& date = *found;
  char text[64];
  switch (order) {
    case DateOrder::yearMonthDay:
      std::snprintf(text, sizeof text, "%04d-%02d-%02d", date.year, date.month, date.day);
      break;
    case DateOrder::dayMonthYear:
      std::snprintf(text, sizeof text, "%02d.%02d.%04d", date.day, date.month, date.year);
      break;
    case DateOrder::monthDayYear:
      std::snprintf(text, sizeof text, "%d/%d/%04d", date.month, date.day, date.year);
      break;
  }
  std::string result = text;
  if (serial != std::floor(serial)) {
    std::snprintf(text, sizeof text, " %02d:%02d:%02d", date.hour, date.minute,
                  static_cast<int>(date.second));
    result += text;
  }
  return result;
}

}  // namespace vexa
