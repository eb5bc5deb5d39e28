// CalendarDate (ZQAdditions).
#include "zqticker/foundation_additions/calendar_additions.h"

#include "tests/support/CalendarSettings.h"
#include "zqticker/foundation_additions/calendar_additions_p.h"
#include "zqticker/platform/calendar/CalendarDate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace zq;
using namespace zq::platform;
using zq::testing::CalendarSettings;
using zq::testing::zoneNamed;

namespace {

constexpr double SecondsPerDay = 86'400;
constexpr const char* Zones[] = {"UTC", "America/New_York", "Europe/Berlin", "Asia/Kathmandu",
                                 "Pacific/Apia"};

CalendarDate dateIn(const char* zone, qint64 year, qint64 month, qint64 day, qint64 hour = 0,
                    qint64 minute = 0, qint64 second = 0) {
  return CalendarDate::dateWithYear(year, month, day, hour, minute, second, zoneNamed(zone));
}

// Midnight in the default time zone.
CalendarDate midnight(qint64 year, qint64 month, qint64 day) {
  return CalendarDate::dateWithYear(year, month, day, 0, 0, 0, std::nullopt);
}

} // namespace

TEST(CalendarDateAdditions, StartADayAtMidnight) {
  for (const char* zone : Zones) {
    const CalendarSettings settings(zone);
    const CalendarDate start = startOfDay(dateIn(zone, 2009, 2, 28, 13, 14, 15));
    EXPECT_EQ(start, midnight(2009, 2, 28)) << zone;
    EXPECT_EQ(start.timeZone(), zoneNamed(zone));
    EXPECT_EQ(startOfDay(start), start);
  }
}

TEST(CalendarDateAdditions, StartTheDayOfTheOwnZoneInTheDefaultZone) {
  const CalendarSettings settings("Etc/GMT+12");
  const CalendarDate start =
      startOfDay(CalendarDate(Date(475'927'200), zoneNamed("America/St_Johns")));
  EXPECT_EQ(start.timeIntervalSinceReferenceDate(), 475'934'400);
  EXPECT_EQ(start.timeZone(), zoneNamed("Etc/GMT+12"));
}

TEST(CalendarDateAdditions, StartTheNextDayAfterTheLastOfAMonth) {
  for (const char* zone : Zones) {
    const CalendarSettings settings(zone);
    EXPECT_EQ(startOfNextDay(dateIn(zone, 2009, 2, 28, 12)), midnight(2009, 3, 1));
    EXPECT_EQ(startOfNextDay(dateIn(zone, 2008, 2, 28, 12)), midnight(2008, 2, 29));
    EXPECT_EQ(startOfNextDay(dateIn(zone, 2009, 12, 31, 23, 59, 59)), midnight(2010, 1, 1));
  }
}

TEST(CalendarDateAdditions, StartTheNextDayAtMidnightOnADayOfTwentyThreeHours) {
  const CalendarSettings settings("Europe/Berlin");
  const CalendarDate day = dateIn("Europe/Berlin", 2009, 3, 29, 12);
  EXPECT_EQ(startOfNextDay(day).timeIntervalSinceReferenceDate() -
                startOfDay(day).timeIntervalSinceReferenceDate(),
            23 * 3600);
}

TEST(CalendarDateAdditions, StartTheDayThatComesAfterOneLeftOut) {
  const CalendarSettings settings("Pacific/Apia");
  // There was no 30 December 2011: its midnight is that of the 31st.
  EXPECT_EQ(startOfNextDay(dateIn("Pacific/Apia", 2011, 12, 29, 12)), midnight(2011, 12, 31));
}

TEST(CalendarDateAdditions, StartMonths) {
  for (const char* zone : Zones) {
    const CalendarSettings settings(zone);
    for (const int day : {1, 15, 31}) {
      EXPECT_EQ(startOfMonth(dateIn(zone, 2009, 12, day, 23, 59)), midnight(2009, 12, 1));
      EXPECT_EQ(startOfNextMonth(dateIn(zone, 2009, 12, day, 23, 59)), midnight(2010, 1, 1));
    }
    EXPECT_EQ(startOfNextMonth(dateIn(zone, 2009, 1, 31)), midnight(2009, 2, 1));
  }
}

TEST(CalendarDateAdditions, StartTheMonthOfTheOwnZoneInTheDefaultZone) {
  const CalendarSettings settings("UTC");
  const CalendarDate lastOfJune = dateIn("Pacific/Apia", 2009, 6, 30, 23);
  const CalendarDate firstOfJuly = dateIn("Asia/Kathmandu", 2009, 7, 1, 1);
  EXPECT_EQ(startOfMonth(lastOfJune), midnight(2009, 6, 1));
  EXPECT_EQ(startOfMonth(firstOfJuly), midnight(2009, 7, 1));
  EXPECT_EQ(startOfMonth(firstOfJuly).timeZone(), zoneNamed("UTC"));
}

TEST(CalendarDateAdditions, RemoveTheTimeInTheDefaultZone) {
  const CalendarSettings settings("Asia/Kathmandu");
  // 19:00 UTC on the 28th is 00:45 on the 29th there.
  const CalendarDate date = dateIn("UTC", 2008, 2, 28, 19);
  EXPECT_EQ(dateByRemovingTimeFromDate(date), midnight(2008, 2, 29));
  EXPECT_EQ(dateByRemovingTimeFromDate(Date(-0.25)), midnight(2001, 1, 1));
  EXPECT_EQ(dateByRemovingTimeFromDate(date).timeZone(), zoneNamed("Asia/Kathmandu"));
}

TEST(CalendarDateAdditions, TellEqualDaysEachInItsOwnZone) {
  const Date evening(266'801'400);
  EXPECT_FALSE(equalToDay(CalendarDate(evening, zoneNamed("UTC")),
                          CalendarDate(evening, zoneNamed("Europe/Berlin"))));
  EXPECT_TRUE(equalToDay(dateIn("Pacific/Apia", 2009, 6, 15, 1),
                         dateIn("America/New_York", 2009, 6, 15, 23)));
  const CalendarDate date = dateIn("UTC", 2009, 6, 15);
  EXPECT_FALSE(equalToDay(date, dateIn("UTC", 2009, 6, 16)));
  EXPECT_FALSE(equalToDay(date, dateIn("UTC", 2009, 7, 15)));
  EXPECT_FALSE(equalToDay(date, dateIn("UTC", 2010, 6, 15)));
}

TEST(CalendarDateAdditions, KnowTodayByTheDefaultZone) {
  for (const char* zone : Zones) {
    const CalendarSettings settings(zone);
    const CalendarDate now = dateIn(zone, 2009, 6, 15, 12);
    EXPECT_TRUE(isTodayAt(dateIn(zone, 2009, 6, 15), now));
    EXPECT_TRUE(isTodayAt(dateIn(zone, 2009, 6, 15, 23, 59, 59), now));
    EXPECT_FALSE(isTodayAt(dateIn(zone, 2009, 6, 14, 23, 59, 59), now));
    EXPECT_FALSE(isTodayAt(dateIn(zone, 2009, 6, 16), now));
    EXPECT_FALSE(isTodayAt(dateIn(zone, 2008, 6, 15), now));
  }
}

TEST(CalendarDateAdditions, KnowTodayByTheSystemsClock) {
  // Midnight may pass in between: then the day is another one on a second look.
  const CalendarDate now = CalendarDate::date();
  EXPECT_TRUE(isToday(now) || isYesterday(now));
  const CalendarDate dayBefore(Date(now.timeIntervalSinceReferenceDate() - SecondsPerDay));
  EXPECT_TRUE(isYesterday(dayBefore) || !isToday(now));
  EXPECT_FALSE(
      isToday(CalendarDate(Date(now.timeIntervalSinceReferenceDate() - 3 * SecondsPerDay))));
  EXPECT_FALSE(
      isYesterday(CalendarDate(Date(now.timeIntervalSinceReferenceDate() - 4 * SecondsPerDay))));
}

TEST(CalendarDateAdditions, KnowYesterday) {
  for (const char* zone : Zones) {
    const CalendarSettings settings(zone);
    const CalendarDate now = dateIn(zone, 2010, 1, 1, 12);
    EXPECT_TRUE(isYesterdayAt(dateIn(zone, 2009, 12, 31), now));
    EXPECT_TRUE(isYesterdayAt(dateIn(zone, 2009, 12, 31, 23, 59, 59), now));
    EXPECT_FALSE(isYesterdayAt(now, now));
    EXPECT_FALSE(isYesterdayAt(dateIn(zone, 2009, 12, 30, 23, 59, 59), now));
  }
}

// Yesterday lies 86,400 seconds back, whatever the clocks do.
TEST(CalendarDateAdditions, MissYesterdayAtTheEndsOfDaysOfOtherLengths) {
  const CalendarSettings settings("Europe/Berlin");
  // The 29th had 23 hours: half past midnight on the 30th, minus a day, is on the 28th.
  const CalendarDate afterShortDay = dateIn("Europe/Berlin", 2009, 3, 30, 0, 30);
  EXPECT_FALSE(isYesterdayAt(dateIn("Europe/Berlin", 2009, 3, 29, 12), afterShortDay));
  EXPECT_TRUE(isYesterdayAt(dateIn("Europe/Berlin", 2009, 3, 28, 12), afterShortDay));
  // The 25th had 25 hours: half an hour before its end a day ago was its beginning.
  const CalendarDate endOfLongDay = dateIn("Europe/Berlin", 2009, 10, 25, 23, 30);
  EXPECT_TRUE(isYesterdayAt(dateIn("Europe/Berlin", 2009, 10, 25, 12), endOfLongDay));
  EXPECT_FALSE(isYesterdayAt(dateIn("Europe/Berlin", 2009, 10, 24, 12), endOfLongDay));
}

TEST(CalendarDateAdditions, CountTheMinutesOnTheClock) {
  EXPECT_EQ(minuteOfDay(dateIn("UTC", 2009, 6, 15, 23, 59, 59)), 1439);
  EXPECT_EQ(minuteOfDay(dateIn("UTC", 2009, 6, 15)), 0);
  EXPECT_EQ(minuteOfDay(CalendarDate(Date(0), zoneNamed("Asia/Kathmandu"))), 345);
  // Three hours after midnight on a day that leaves one out.
  EXPECT_EQ(minuteOfDay(dateIn("Europe/Berlin", 2009, 3, 29, 4)), 240);
}

TEST(CalendarDateAdditions, ReachMillionsOfYears) {
  const CalendarSettings settings("Europe/Berlin");
  for (const qint64 year : {-5'000'000LL, 5'000'000LL}) {
    const CalendarDate date = dateIn("Europe/Berlin", year, 12, 31, 12, 30);
    EXPECT_EQ(startOfDay(date), midnight(year, 12, 31));
    EXPECT_EQ(startOfNextDay(date), midnight(year + 1, 1, 1));
    EXPECT_EQ(startOfMonth(date), midnight(year, 12, 1));
    EXPECT_EQ(startOfNextMonth(date), midnight(year + 1, 1, 1));
    EXPECT_EQ(minuteOfDay(date), 750);
    EXPECT_TRUE(equalToDay(date, startOfDay(date)));
  }
}

TEST(CalendarDateAdditions, KnowNoDayOfADateOutOfReach) {
  for (const double seconds :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), 1e300}) {
    const CalendarDate date = CalendarDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    for (const CalendarDate& made : {startOfDay(date), startOfNextDay(date), startOfMonth(date),
                                     startOfNextMonth(date), dateByRemovingTimeFromDate(date)})
      EXPECT_TRUE(std::isnan(made.timeIntervalSinceReferenceDate()));
    EXPECT_FALSE(equalToDay(date, date));
    EXPECT_FALSE(isToday(date));
    EXPECT_FALSE(isYesterday(date));
    EXPECT_EQ(minuteOfDay(date), 0);
  }
}
