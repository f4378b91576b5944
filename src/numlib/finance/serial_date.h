// Days as serial numbers, with the time of day as the fraction.
//
// Serial 1 is 1 January 1900 and 2958465 is 31 December 9999. Spreadsheets give the number 60 to a
// 29 February 1900 that never was. Here 60 is no date: 1 to 59 are 1 January to 28 February 1900,
// and from 61, 1 March 1900, on every serial is theirs. Time zones and leap seconds do not exist.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vexa {

inline constexpr double lastSerial = 2958465;

// A calendar date of the years 1900 to 9999 and a time of day; seconds below 60.
struct DateTime {
  int year = 0, month = 0, day = 0;
  int hour = 0, minute = 0;
  double second = 0;
  int weekday = 0;  // 1 Monday to 7 Sunday; not looked at when a serial is made
};

// Whether a serial is one: from 1 to below lastSerial + 1, without those from 60 to below 61.
bool isSerial(double serial);

// None for a date that the calendar does not have or a time of day beyond 23:59:59.9...
std::optional<double> serialOf(const DateTime& date);

// The smallest step of a time of day that is shown.
enum class TimeStep { millisecond, second };

// The date of a serial, rounded to the nearest step, which may carry it into the next day; in the
// last day it stays on the last step. None where isSerial says no.
std::optional<DateTime> dateOf(double serial, TimeStep step);

// Written order of a date; the separator tells it.
enum class DateOrder {
  yearMonthDay,  // 2024-02-29
  dayMonthYear,  // 29.02.2024
  monthDayYear,  // 2/29/2024
};

// The serial of a text such as "2024-02-29", "29.2.2024 7:05" or "2/29/2024T18:00:12.5": four
// digits for the year, one or two for day, month and hour, two for minutes and seconds; blanks
// around it are passed over. None for anything else.
std::optional<double> serialOfText(std::string_view text);

// The text of a serial for which isSerial holds, with " hh:mm:ss" unless it is whole.
std::string textOfSerial(double serial, DateOrder order);

}  // namespace vexa
