#include "zqticker/platform/calendar/Calendar.h"

#include "tests/support/CalendarSettings.h"
#include "zqticker/platform/calendar/gregorian_days_p.h"

#include <gtest/gtest.h>

#include <QtCore/QDate>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::CalendarSettings;
using zq::testing::zoneNamed;

namespace {

constexpr unsigned AllUnits = EraCalendarUnit | YearCalendarUnit | MonthCalendarUnit |
                              DayCalendarUnit | HourCalendarUnit | MinuteCalendarUnit |
                              SecondCalendarUnit;
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double LastInReach = 1.8e14;

Calendar gregorianIn(const char* zone) {
  Calendar calendar = Calendar::calendarWithIdentifier(GregorianCalendar).value();
  calendar.setTimeZone(zoneNamed(zone));
  return calendar;
}

DateComponents fields(qint64 year, qint64 month, qint64 day, qint64 hour = 0, qint64 minute = 0,
                      qint64 second = 0) {
  return {{}, year, month, day, hour, minute, second};
}

double secondsOf(const Calendar& calendar, const DateComponents& components) {
  const std::optional<Date> date = calendar.dateFromComponents(components);
  return date ? date->timeIntervalSinceReferenceDate() : NotANumber;
}

double utcSeconds(qint64 year, qint64 month, qint64 day, qint64 hour = 0, qint64 minute = 0,
                  qint64 second = 0) {
  return secondsOf(gregorianIn("UTC"), fields(year, month, day, hour, minute, second));
}

} // namespace

TEST(GregorianDays, AgreeWithTheSystemsForFortyCenturies) {
  // From 1 January 1 on, before which QDate has no year 0.
  const QDate first(1, 1, 1);
  const qint64 start = QDate(1970, 1, 1).daysTo(first);
  for (qint64 day = 0; day < 4000 * 366; day += 13) {
    const QDate expected = first.addDays(day);
    const GregorianDay found = gregorianDay(start + day);
    ASSERT_EQ(QDate(static_cast<int>(found.year), found.month, found.day), expected);
    ASSERT_EQ(daysToGregorianMonth(expected.year(), expected.month()) + expected.day() - 1,
              start + day);
    ASSERT_EQ(weekdayOfDays(start + day), expected.dayOfWeek() % 7);
  }
}

TEST(GregorianDays, GoBackWithoutEnd) {
  for (const qint64 year :
       {-5'000'000LL, -400LL, -101LL, -100LL, -4LL, -1LL, 0LL, 1LL, 5'000'000LL})
    for (int month = 1; month <= 12; ++month) {
      const qint64 days = daysToGregorianMonth(year, month);
      const GregorianDay firstDay = gregorianDay(days);
      EXPECT_EQ(firstDay.year, year);
      EXPECT_EQ(firstDay.month, month);
      EXPECT_EQ(firstDay.day, 1);
      const GregorianDay before = gregorianDay(days - 1);
      EXPECT_EQ(before.month, month == 1 ? 12 : month - 1);
      EXPECT_EQ(before.year, month == 1 ? year - 1 : year);
    }
  EXPECT_EQ(gregorianDay(daysToGregorianMonth(0, 3) - 1).day, 29);
  EXPECT_EQ(gregorianDay(daysToGregorianMonth(-100, 3) - 1).day, 28);
  EXPECT_EQ(gregorianDay(daysToGregorianMonth(-400, 3) - 1).day, 29);
}

TEST(Calendar, CountsSecondsFromTheReferenceDate) {
  EXPECT_EQ(utcSeconds(2001, 1, 1), 0);
  EXPECT_EQ(utcSeconds(2008, 2, 29), 225'936'000);
  EXPECT_EQ(utcSeconds(1970, 1, 1), -TimeIntervalSince1970);
  EXPECT_EQ(utcSeconds(2009, 2, 28, 23, 59, 59), 257'558'399);
}

TEST(Calendar, CarriesFieldsThatAreOutOfRange) {
  EXPECT_EQ(utcSeconds(2009, 13, 1), utcSeconds(2010, 1, 1));
  EXPECT_EQ(utcSeconds(2009, 0, 1), utcSeconds(2008, 12, 1));
  EXPECT_EQ(utcSeconds(2009, -12, 15), utcSeconds(2007, 12, 15));
  EXPECT_EQ(utcSeconds(2009, 1, 32), utcSeconds(2009, 2, 1));
  EXPECT_EQ(utcSeconds(2009, 2, 31), utcSeconds(2009, 3, 3));
  EXPECT_EQ(utcSeconds(2009, 3, 0), utcSeconds(2009, 2, 28));
  EXPECT_EQ(utcSeconds(2009, 3, 1, -1), utcSeconds(2009, 2, 28, 23));
  EXPECT_EQ(utcSeconds(2009, 1, 1, 48, 120, 3600), utcSeconds(2009, 1, 3, 3));
  EXPECT_EQ(utcSeconds(2009, 1, 1, 0, 0, -1), utcSeconds(2008, 12, 31, 23, 59, 59));
  // More than 32 bits.
  EXPECT_EQ(utcSeconds(2001, 1, 1, 0, 0, 10'000'000'000), 1e10);
}

TEST(Calendar, HasNoJulianDays) {
  EXPECT_EQ(utcSeconds(1582, 10, 15) - utcSeconds(1582, 10, 14), 86'400);
  EXPECT_EQ(utcSeconds(1582, 10, 4, 0, 0, -1), -13'198'550'401);
  const DateComponents day = gregorianIn("UTC").components(AllUnits, Date(-13'198'550'401));
  EXPECT_EQ(day, (DateComponents{1, 1582, 10, 3, 23, 59, 59}));
  EXPECT_EQ(utcSeconds(1500, 3, 1) - utcSeconds(1500, 2, 28), 86'400); // 1500 is no leap year
}

TEST(Calendar, SetsTheFieldsThatAreAskedForAndNoOthers) {
  const Calendar calendar = gregorianIn("UTC");
  const Date date(257'515'200.75);
  EXPECT_EQ(calendar.components(AllUnits, date), (DateComponents{1, 2009, 2, 28, 12, 0, 0}));
  EXPECT_EQ(calendar.components(0, date), DateComponents());
  DateComponents minute;
  minute.minute = 0;
  EXPECT_EQ(calendar.components(MinuteCalendarUnit, date), minute);
  DateComponents era;
  era.era = 1;
  EXPECT_EQ(calendar.components(EraCalendarUnit, date), era);
}

TEST(Calendar, CutsFractionsOffTowardsThePast) {
  const Calendar calendar = gregorianIn("UTC");
  EXPECT_EQ(calendar.components(AllUnits, Date(-0.5)),
            (DateComponents{1, 2000, 12, 31, 23, 59, 59}));
  EXPECT_EQ(calendar.components(AllUnits, Date(0.999'999)),
            (DateComponents{1, 2001, 1, 1, 0, 0, 0}));
}

TEST(Calendar, TakesFieldsThatAreNotSetForTheFirst) {
  const Calendar calendar = gregorianIn("UTC");
  EXPECT_EQ(secondsOf(calendar, {}), utcSeconds(1, 1, 1));
  DateComponents year;
  year.year = 2001;
  EXPECT_EQ(secondsOf(calendar, year), 0);
}

TEST(Calendar, CountsYearsInEras) {
  const Calendar calendar = gregorianIn("UTC");
  const Date lastDayBefore(utcSeconds(1, 1, 1) - 1);
  EXPECT_EQ(calendar.components(AllUnits, lastDayBefore),
            (DateComponents{0, 1, 12, 31, 23, 59, 59}));
  EXPECT_EQ(calendar.dateFromComponents(calendar.components(AllUnits, lastDayBefore)),
            lastDayBefore);
  EXPECT_EQ(utcSeconds(0, 12, 31, 23, 59, 59), utcSeconds(1, 1, 1) - 1);
  EXPECT_EQ(secondsOf(calendar, {0, 44, 3, 15, {}, {}, {}}), utcSeconds(-43, 3, 15));
  EXPECT_FALSE(calendar.dateFromComponents({2, 1, 1, 1, {}, {}, {}}));
  EXPECT_FALSE(calendar.dateFromComponents({-1, 1, 1, 1, {}, {}, {}}));
}

TEST(Calendar, ReachesMillionsOfYears) {
  const Calendar calendar = gregorianIn("Europe/Berlin");
  for (const qint64 year : {-5'000'000LL, 5'000'000LL}) {
    const std::optional<Date> date = calendar.dateFromComponents(fields(year, 7, 15, 12, 30, 1));
    ASSERT_TRUE(date);
    const DateComponents back = calendar.components(AllUnits, *date);
    EXPECT_EQ(back.era, year > 0);
    EXPECT_EQ(back.year, year > 0 ? year : 1 - year);
    EXPECT_EQ(back.month, 7);
    EXPECT_EQ(back.day, 15);
    EXPECT_EQ(back.hour, 12);
    EXPECT_EQ(back.minute, 30);
    EXPECT_EQ(back.second, 1);
  }
  EXPECT_EQ(utcSeconds(5'000'000, 1, 1), 157'722'592'780'800 - TimeIntervalSince1970);
}

TEST(Calendar, AnswersNothingOutOfItsReach) {
  const Calendar calendar = gregorianIn("UTC");
  for (const double seconds :
       {NotANumber, Infinity, -Infinity, 1e300, -1e300, std::nextafter(LastInReach, Infinity),
        -std::nextafter(LastInReach, Infinity)}) {
    EXPECT_EQ(calendar.components(AllUnits, Date(seconds)), DateComponents()) << seconds;
    EXPECT_FALSE(calendar.ordinalityOfUnit(DayCalendarUnit, EraCalendarUnit, Date(seconds)));
    EXPECT_FALSE(Calendar::reaches(Date(seconds)));
  }
  for (const double seconds : {LastInReach, -LastInReach})
    EXPECT_TRUE(calendar.components(AllUnits, Date(seconds)).year);
  constexpr qint64 Most = std::numeric_limits<qint64>::max();
  constexpr qint64 Least = std::numeric_limits<qint64>::min();
  for (const qint64 number : {Most, Least, Most / 86'400, 6'000'000'000'000LL}) {
    EXPECT_FALSE(calendar.dateFromComponents(fields(number, 1, 1)));
    EXPECT_FALSE(calendar.dateFromComponents(fields(2009, number, 1)));
    EXPECT_FALSE(calendar.dateFromComponents(fields(2009, 1, number)));
    EXPECT_FALSE(calendar.dateFromComponents(fields(2009, 1, 1, number)));
    EXPECT_FALSE(calendar.dateFromComponents(fields(2009, 1, 1, 0, number)) && number > 1e16);
  }
  EXPECT_FALSE(calendar.dateFromComponents(fields(2009, 1, 1, 0, 0, Most)));
  EXPECT_FALSE(calendar.dateFromComponents(fields(6'000'000, 1, 1)));
}

TEST(Calendar, ReadsFieldsInItsTimeZone) {
  EXPECT_EQ(gregorianIn("Asia/Kathmandu").components(AllUnits, Date(257'515'200)),
            (DateComponents{1, 2009, 2, 28, 17, 45, 0}));
  EXPECT_EQ(gregorianIn("America/New_York").components(AllUnits, Date(0)),
            (DateComponents{1, 2000, 12, 31, 19, 0, 0}));
  EXPECT_EQ(secondsOf(gregorianIn("Asia/Tokyo"), fields(2009, 1, 32, 12)), 255'150'000);
}

// 29 March 2009 in Berlin: 02:00 to 03:00 is left out.
TEST(Calendar, MovesATimeThatTheClocksSkip) {
  const Calendar berlin = gregorianIn("Europe/Berlin");
  EXPECT_EQ(secondsOf(berlin, fields(2009, 3, 29, 2, 30)), utcSeconds(2009, 3, 29, 1, 30));
  EXPECT_EQ(secondsOf(berlin, fields(2009, 3, 29, 1, 59, 59)), utcSeconds(2009, 3, 29, 0, 59, 59));
  EXPECT_EQ(secondsOf(berlin, fields(2009, 3, 29, 3)), utcSeconds(2009, 3, 29, 1));
  EXPECT_EQ(berlin.components(HourCalendarUnit, Date(utcSeconds(2009, 3, 29, 1, 30))).hour, 3);
}

// 25 October 2009 in Berlin: 02:00 to 03:00 comes twice.
TEST(Calendar, TakesTheSecondOfTwoEqualTimes) {
  const Calendar berlin = gregorianIn("Europe/Berlin");
  EXPECT_EQ(secondsOf(berlin, fields(2009, 10, 25, 2, 30)), utcSeconds(2009, 10, 25, 1, 30));
  EXPECT_EQ(secondsOf(berlin, fields(2009, 10, 25, 1, 59)), utcSeconds(2009, 10, 24, 23, 59));
  EXPECT_EQ(secondsOf(berlin, fields(2009, 10, 25, 3)), utcSeconds(2009, 10, 25, 2));
}

// 30 December 2011 does not exist in Apia.
TEST(Calendar, MovesADayThatARegionLeftOut) {
  const Calendar apia = gregorianIn("Pacific/Apia");
  const std::optional<Date> date = apia.dateFromComponents(fields(2011, 12, 30, 12));
  ASSERT_TRUE(date);
  EXPECT_EQ(apia.components(AllUnits, *date), (DateComponents{1, 2011, 12, 31, 12, 0, 0}));
}

TEST(Calendar, CountsDaysInLargerUnits) {
  const Calendar calendar = gregorianIn("UTC");
  const auto place = [&](CalendarUnit larger, double seconds) {
    return calendar.ordinalityOfUnit(DayCalendarUnit, larger, Date(seconds));
  };
  EXPECT_EQ(place(EraCalendarUnit, utcSeconds(1, 1, 1)), 1);
  EXPECT_EQ(place(EraCalendarUnit, 259'981'200), 733'495);
  EXPECT_EQ(place(EraCalendarUnit, utcSeconds(1, 1, 1) - 1), 0);
  EXPECT_EQ(place(EraCalendarUnit, utcSeconds(0, 12, 30)), -1);
  EXPECT_EQ(place(YearCalendarUnit, utcSeconds(2008, 12, 31)), 366);
  EXPECT_EQ(place(YearCalendarUnit, utcSeconds(2009, 1, 1)), 1);
  EXPECT_EQ(place(MonthCalendarUnit, utcSeconds(2009, 6, 15)), 15);
  EXPECT_FALSE(place(DayCalendarUnit, 0));
  EXPECT_FALSE(calendar.ordinalityOfUnit(YearCalendarUnit, EraCalendarUnit, Date(0)));
}

TEST(Calendar, IsMadeByIdentifier) {
  for (const QString& identifier :
       {u"gregorian"_s, u"buddhist"_s, u"hebrew"_s, u"islamic"_s, u"iso8601"_s, u"japanese"_s})
    EXPECT_EQ(Calendar::calendarWithIdentifier(identifier).value().calendarIdentifier(),
              identifier);
  for (const QString& identifier : {u""_s, u"Gregorian"_s, u"julian"_s, u"gregorian "_s})
    EXPECT_FALSE(Calendar::calendarWithIdentifier(identifier)) << identifier.toStdString();
}

TEST(Calendar, HasTheSettingsOfTheMomentAtWhichItIsMade) {
  const CalendarSettings settings("Asia/Tokyo", "th_TH");
  const Calendar tokyo = Calendar::calendarWithIdentifier(GregorianCalendar).value();
  EXPECT_EQ(Calendar::currentCalendar().calendarIdentifier(), u"buddhist");
  EXPECT_EQ(Calendar::currentCalendar().timeZone(), zoneNamed("Asia/Tokyo"));
  TimeZone::setDefaultTimeZone(zoneNamed("Europe/Berlin"));
  EXPECT_EQ(tokyo.timeZone(), zoneNamed("Asia/Tokyo"));
  EXPECT_EQ(Calendar::currentCalendar().timeZone(), zoneNamed("Europe/Berlin"));
  Calendar changed = tokyo;
  changed.setTimeZone(std::nullopt);
  EXPECT_EQ(changed.timeZone(), zoneNamed("Europe/Berlin"));
  EXPECT_NE(changed, tokyo);
  EXPECT_EQ(Calendar::ofLocale(Locale(u"de_DE"_s)).calendarIdentifier(), GregorianCalendar);
}
