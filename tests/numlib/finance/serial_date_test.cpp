#include "numlib/finance/serial_date.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace vexa {
namespace {

constexpr int daysOfMonth[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

bool isLeap(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

// Counts on from the first day; what the calendar says must agree all the way to year 9999.
TEST(SerialDate, EveryDayThereAndBack) {
  int serial = 1, weekday = 1;  // a Monday
  for (int year = 1900; year <= 9999; ++year) {
    for (int month = 1; month <= 12; ++month) {
      const int last = daysOfMonth[month - 1] + (month == 2 && isLeap(year));
      for (int day = 1; day <= last; ++day) {
        ASSERT_EQ(serialOf({year, month, day}), serial) << year << '-' << month << '-' << day;
        const auto date = dateOf(serial, TimeStep::millisecond);
        ASSERT_TRUE(date) << serial;
        ASSERT_TRUE(date->year == year && date->month == month && date->day == day &&
                    date->weekday == weekday && date->hour == 0 && date->second == 0)
            << serial;
        weekday = weekday % 7 + 1;
        serial += serial == 59 ? 2 : 1;
      }
      ASSERT_FALSE(serialOf({year, month, last + 1})) << year << '-' << month;
    }
  }
  EXPECT_EQ(serial, lastSerial + 1);
}

TEST(SerialDate, TimeOfDayIsRoundedAndCarried) {
  struct Case {
    double serial;
    const char *text, *milliseconds;
  };
  const Case cases[] = {
      {45351.75, "2024-02-29 18:00:00", "29 18:00:0.000"},
      {45351.999999999, "2024-03-01 00:00:00", "1 0:00:0.000"},
      {45351.999995, "2024-03-01 00:00:00", "29 23:59:59.568"},
      {59.9999999999, "1900-03-01 00:00:00", "1 0:00:0.000"},
      {2958465.9999999995, "9999-12-31 23:59:59", "31 23:59:59.999"},
      {45351 + 0.6 / 86400, "2024-02-29 00:00:01", "29 0:00:0.600"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(textOfSerial(c.serial, DateOrder::yearMonthDay), c.text) << c.serial;
    const auto date = dateOf(c.serial, TimeStep::millisecond);
    ASSERT_TRUE(date);
    char text[64];
    std::snprintf(text, sizeof text, "%d %d:%02d:%.3f", date->day, date->hour, date->minute,
                  date->second);
    EXPECT_EQ(std::string(text), c.milliseconds) << c.serial;
  }
  for (const double none : {0.99, -5.0, 60.0, 60.999, 2958466.0, 1e300, std::nan("")})
    EXPECT_FALSE(dateOf(none, TimeStep::second)) << none;
  // Whatever the second, the day stays.
  EXPECT_LT(*serialOf({1900, 2, 28, 23, 59, std::nextafter(60.0, 0)}), 60);
}

TEST(SerialDate, TextsGoodAndBad) {
  struct Case {
    const char* text;
    double serial;  // 0 for a text that is no date
  };
  const Case cases[] = {
      {"2024-02-29", 45351},
      {"29.02.2024", 45351},
      {"2/29/2024", 45351},
      {"  1.3.1900 ", 61},
      {"2024-2-9 7:05", 45331 + 425.0 / 1440},
      {"2/29/2024T18:00:12.5", 45351 + 64812.5 / 86400},
      {"9999-12-31 23:59:59.999", 2958465 + 86399.999 / 86400},
      {"2024-02-29x", 0},
      {"2024-02-30", 0},
      {"2100-02-29", 0},
      {"1900-02-29", 0},
      {"1899-12-31", 0},
      {"10000-01-01", 0},
      {"24-02-29", 0},
      {"2024-002-29", 0},
      {"2024-02", 0},
      {"2024-02.29", 0},
      {"29/02/2024", 0},  // the month comes first
      {"2024-02-29 18", 0},
      {"2024-02-29  18:00", 0},
      {"2024-02-29 24:00", 0},
      {"2024-02-29 18:60", 0},
      {"2024-02-29 18:0", 0},
      {"2024-02-29 23:59:60", 0},
      {"2024-02-29 18:00:00.", 0},
      {"2024-02-29 18:00:00,5", 0},
      {"-2024-02-29", 0},
      {"45351", 0},
      {"", 0},
      {"99999999999999999999-1-1", 0},
  };
  for (const Case& c : cases) {
    const auto serial = serialOfText(c.text);
    EXPECT_EQ(serial.has_value(), c.serial != 0) << c.text;
    EXPECT_NEAR(serial.value_or(0), c.serial, 1e-11) << c.text;
  }
}

}  // namespace
}  // namespace vexa
