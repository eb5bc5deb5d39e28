#include "zqticker/platform/calendar/CalendarDate.h"

#include "tests/support/CalendarSettings.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

using namespace zq::platform;
using zq::testing::CalendarSettings;
using zq::testing::zoneNamed;

namespace {

CalendarDate dateIn(const char* zone, qint64 year, qint64 month, qint64 day, qint64 hour = 0,
                    qint64 minute = 0, qint64 second = 0) {
  return CalendarDate::dateWithYear(year, month, day, hour, minute, second, zoneNamed(zone));
}

} // namespace

TEST(Date, ComparesItsSecondsExactly) {
  EXPECT_EQ(Date(0.1 + 0.2), Date(0.1 + 0.2));
  EXPECT_NE(Date(0.1 + 0.2), Date(0.3));
  EXPECT_LT(Date(-1), Date(1));
  EXPECT_EQ(Date(), Date(0));
  const Date notANumber(std::numeric_limits<double>::quiet_NaN());
  EXPECT_NE(notANumber, notANumber);
}

TEST(Date, IsNowByTheSystemsClock) {
  const auto now = [] {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch())
               .count() -
           TimeIntervalSince1970;
  };
  const double before = now();
  const Date date = Date::date();
  EXPECT_LE(before, date.timeIntervalSinceReferenceDate());
  EXPECT_LE(date.timeIntervalSinceReferenceDate(), now());
}

TEST(CalendarDate, ReadsItsFieldsInItsTimeZone) {
  const CalendarDate date(Date(266'803'140.75), zoneNamed("Asia/Kathmandu"));
  EXPECT_EQ(date.yearOfCommonEra(), 2009);
  EXPECT_EQ(date.monthOfYear(), 6);
  EXPECT_EQ(date.dayOfMonth(), 16);
  EXPECT_EQ(date.hourOfDay(), 5);
  EXPECT_EQ(date.minuteOfHour(), 44);
  EXPECT_EQ(date.secondOfMinute(), 0);
  EXPECT_EQ(date.timeIntervalSinceReferenceDate(), 266'803'140.75);
}

TEST(CalendarDate, TakesTheDefaultTimeZoneWhereNoneIsGiven) {
  const CalendarSettings settings("Asia/Tokyo");
  EXPECT_EQ(CalendarDate(Date(0)).timeZone(), zoneNamed("Asia/Tokyo"));
  EXPECT_EQ(CalendarDate::date().timeZone(), zoneNamed("Asia/Tokyo"));
  EXPECT_EQ(CalendarDate::dateWithYear(2001, 1, 1, 9, 0, 0, std::nullopt), CalendarDate(Date(0)));
  EXPECT_EQ(CalendarDate::dateWithTimeIntervalSinceReferenceDate(5).hourOfDay(), 9);
}

TEST(CalendarDate, IsGregorianWhateverTheUsersCalendar) {
  const CalendarSettings settings("UTC", "th_TH");
  EXPECT_EQ(CalendarDate(Date(0)).yearOfCommonEra(), 2001);
}

TEST(CalendarDate, CountsYearsThroughZero) {
  EXPECT_EQ(dateIn("UTC", 0, 12, 31).yearOfCommonEra(), 0);
  EXPECT_EQ(dateIn("UTC", -43, 3, 15).yearOfCommonEra(), -43);
  EXPECT_EQ(dateIn("UTC", -5'000'000, 3, 15).yearOfCommonEra(), -5'000'000);
}

TEST(CalendarDate, AddsToItsFieldsInItsTimeZone) {
  // The day of the change in Berlin has 23 hours.
  const CalendarDate before = dateIn("Europe/Berlin", 2009, 3, 28, 12);
  const CalendarDate after = before.dateByAddingYears(0, 0, 1, 0, 0, 0);
  EXPECT_EQ(after.timeIntervalSinceReferenceDate() - before.timeIntervalSinceReferenceDate(),
            23 * 3600);
  EXPECT_EQ(after.timeZone(), zoneNamed("Europe/Berlin"));
  EXPECT_EQ(dateIn("UTC", 2009, 1, 31).dateByAddingYears(0, 1, 0, 0, 0, 0),
            dateIn("UTC", 2009, 3, 3));
  EXPECT_EQ(dateIn("UTC", 2009, 1, 31).dateByAddingYears(-1, 14, 1, -1, 61, -1),
            dateIn("UTC", 2009, 4, 1, 0, 0, 59));
}

TEST(CalendarDate, KeepsItsFractionWhenSomethingIsAdded) {
  EXPECT_EQ(CalendarDate(Date(0.75), TimeZone()).dateByAddingYears(0, 0, 0, 0, 0, 1),
            CalendarDate(Date(1.75), TimeZone()));
  EXPECT_EQ(CalendarDate(Date(-0.25), TimeZone()).dateByAddingYears(0, 0, 0, 0, 0, 1),
            CalendarDate(Date(0.75), TimeZone()));
}

TEST(CalendarDate, HasNoFieldsOutOfReach) {
  for (const double seconds :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), 1e18}) {
    const CalendarDate date(Date(seconds), zoneNamed("UTC"));
    EXPECT_EQ(date.yearOfCommonEra(), 0);
    EXPECT_EQ(date.monthOfYear(), 0);
    EXPECT_EQ(date.dayOfMonth(), 0);
    EXPECT_EQ(date.hourOfDay(), 0);
    EXPECT_EQ(date.minuteOfHour(), 0);
    EXPECT_EQ(date.secondOfMinute(), 0);
    EXPECT_TRUE(
        std::isnan(date.dateByAddingYears(0, 0, 1, 0, 0, 0).timeIntervalSinceReferenceDate()));
  }
  constexpr qint64 Most = std::numeric_limits<qint64>::max();
  EXPECT_TRUE(std::isnan(dateIn("UTC", Most, 1, 1).timeIntervalSinceReferenceDate()));
  EXPECT_TRUE(std::isnan(dateIn("UTC", 2009, 1, 1)
                             .dateByAddingYears(Most, Most, Most, Most, Most, Most)
                             .timeIntervalSinceReferenceDate()));
}
