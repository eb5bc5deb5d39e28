// Date (NSCalendarDateCompatibility).
#include "zqticker/foundation_additions/calendar_additions.h"

#include "tests/support/CalendarSettings.h"
#include "zqticker/platform/calendar/Calendar.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using namespace zq;
using namespace zq::platform;
using zq::testing::CalendarSettings;
using zq::testing::zoneNamed;

namespace {

Date utcDate(qint64 year, qint64 month, qint64 day, qint64 hour = 0, qint64 minute = 0,
             qint64 second = 0) {
  return dateWithYear(year, month, day, hour, minute, second, TimeZone()).value();
}

Date later(const Date& date, double seconds) {
  return Date(date.timeIntervalSinceReferenceDate() + seconds);
}

} // namespace

TEST(DateCompatibility, MakesDatesInTheTimeZoneThatIsGiven) {
  const CalendarSettings settings("Asia/Tokyo", "en_US");
  EXPECT_EQ(dateWithYear(2009, 25, 1, 0, 0, 0, zoneNamed("Etc/GMT+5")), Date(315'550'800));
  EXPECT_EQ(dateWithYear(2009, 1, 32, -24, -60, -60, zoneNamed("Asia/Tokyo")), Date(255'016'740));
  EXPECT_EQ(dateWithYear(2001, 1, 1, 9, 0, 0, std::nullopt), Date(0));
  EXPECT_EQ(Calendar::currentCalendar().timeZone(), zoneNamed("Asia/Tokyo"));
}

TEST(DateCompatibility, AddsToEveryField) {
  const CalendarSettings settings("UTC", "en_US");
  const Date date = utcDate(2009, 3, 28, 12);
  EXPECT_EQ(dateByAddingYears(date, 1, 0, 0, 0, 0, 0), utcDate(2010, 3, 28, 12));
  EXPECT_EQ(dateByAddingYears(date, 0, 1, 0, 0, 0, 0), utcDate(2009, 4, 28, 12));
  EXPECT_EQ(dateByAddingYears(date, 0, 0, 1, 0, 0, 0), utcDate(2009, 3, 29, 12));
  EXPECT_EQ(dateByAddingYears(date, 0, 0, 0, 1, 0, 0), utcDate(2009, 3, 28, 13));
  EXPECT_EQ(dateByAddingYears(date, 0, 0, 0, 0, 1, 0), utcDate(2009, 3, 28, 12, 1));
  EXPECT_EQ(dateByAddingYears(date, 0, 0, 0, 0, 0, 1), utcDate(2009, 3, 28, 12, 0, 1));
  EXPECT_EQ(dateByAddingYears(date, -1, -3, -28, -12, -1, -1), utcDate(2007, 11, 29, 23, 58, 59));
}

TEST(DateCompatibility, CarriesOverTheEndOfAMonth) {
  const CalendarSettings settings("UTC", "en_US");
  EXPECT_EQ(dateByAddingYears(utcDate(2009, 1, 31, 12), 0, 1, 0, 0, 0, 0), utcDate(2009, 3, 3, 12));
  EXPECT_EQ(dateByAddingYears(utcDate(2008, 1, 31), 0, 1, 0, 0, 0, 0), utcDate(2008, 3, 2));
  EXPECT_EQ(dateByAddingYears(utcDate(2008, 2, 29), 1, 0, 0, 0, 0, 0), utcDate(2009, 3, 1));
}

TEST(DateCompatibility, DropsTheFractionOfASecond) {
  const CalendarSettings settings("UTC", "en_US");
  const Date noon = utcDate(2009, 1, 31, 12);
  EXPECT_EQ(dateByAddingYears(later(noon, 0.75), 0, 0, 0, 0, 0, 0), noon);
  EXPECT_EQ(dateByAddingYears(Date(-0.25), 1, 0, 0, 0, 0, 0), Date(31'535'999));
}

// The fields know no era: the day before the Common Era is read as one at the end of its first
// year.
TEST(DateCompatibility, MovesADateBeforeTheCommonEraIntoIt) {
  const CalendarSettings settings("UTC", "en_US");
  EXPECT_EQ(dateByAddingYears(utcDate(0, 12, 31), 0, 0, 0, 0, 0, 0), utcDate(1, 12, 31));
}

TEST(DateCompatibility, AddsOnTheClocksOfTheDefaultZone) {
  const CalendarSettings settings("Europe/Berlin", "en_US");
  const Date noon = dateWithYear(2009, 3, 28, 12, 0, 0, std::nullopt).value();
  EXPECT_EQ(dateByAddingYears(noon, 0, 0, 1, 0, 0, 0), later(noon, 23 * 3600));
}

TEST(DateCompatibility, ReadsFieldsInTheDefaultZone) {
  const CalendarSettings settings("Asia/Kathmandu", "en_US");
  const Date date = later(utcDate(2009, 2, 28, 20, 30, 7), 0.9);
  EXPECT_EQ(yearOfCommonEra(date), 2009);
  EXPECT_EQ(monthOfYear(date), 3);
  EXPECT_EQ(dayOfMonth(date), 1);
  EXPECT_EQ(hourOfDay(date), 2);
  EXPECT_EQ(minuteOfHour(date), 15);
  EXPECT_EQ(secondOfMinute(date), 7);
  EXPECT_EQ(dayOfCommonEra(date), 733'467);
  EXPECT_EQ(timeZone(date), zoneNamed("Asia/Kathmandu"));
}

TEST(DateCompatibility, CountsDaysFromTheFirstOfTheEra) {
  const CalendarSettings settings("UTC", "en_US");
  EXPECT_EQ(dayOfCommonEra(utcDate(1, 1, 1)), 1);
  EXPECT_EQ(dayOfCommonEra(Date(-13'220'387'572)), 577'472);
  EXPECT_EQ(dayOfCommonEra(Date(0)), 730'486);
}

TEST(DateCompatibility, ReadsFieldsInTheUsersCalendar) {
  const CalendarSettings settings("UTC", "th_TH");
  EXPECT_EQ(yearOfCommonEra(Date(0)), 2544);
  EXPECT_EQ(dateWithYear(2544, 1, 1, 0, 0, 0, TimeZone()), Date(0));
  EXPECT_EQ(dateByAddingYears(Date(0), 1, 0, 0, 0, 0, 0), Date(31'536'000));
}

TEST(DateCompatibility, DescribesByAUnicodePattern) {
  const CalendarSettings settings("America/New_York", "de_DE");
  const Date date(376'056'000.125);
  EXPECT_EQ(descriptionWithCalendarFormat(date, u"MM/dd/yy HH:mm"_s, Locale(u"en_US"_s)),
            u"12/01/12 07:00"_s);
  EXPECT_EQ(descriptionWithCalendarFormat(date, u"EEEE"_s, Locale(u"fr_FR"_s)), u"samedi"_s);
  EXPECT_EQ(descriptionWithCalendarFormat(date, u"EEEE"_s, std::nullopt), u"Samstag"_s);
  EXPECT_EQ(descriptionWithCalendarFormat(date, u""_s, std::nullopt), u""_s);
}

// A percent pattern is no pattern here: letters are fields, "%" is text.
TEST(DateCompatibility, ConvertsNoPercentPattern) {
  const CalendarSettings settings("UTC", "en_US");
  EXPECT_EQ(descriptionWithCalendarFormat(Date(0), u"%d"_s, std::nullopt), u"%1"_s);
  EXPECT_EQ(descriptionWithCalendarFormat(Date(0), u"%b"_s, std::nullopt), u"%AM"_s);
  EXPECT_EQ(descriptionWithCalendarFormat(Date(0), u"%o"_s, std::nullopt), std::nullopt);
}

TEST(DateCompatibility, ReachesMillionsOfYears) {
  const CalendarSettings settings("UTC", "en_US");
  const Date date = utcDate(5'000'000, 7, 15, 12);
  EXPECT_EQ(yearOfCommonEra(date), 5'000'000);
  EXPECT_EQ(dateByAddingYears(date, 0, 6, 0, 0, 0, 0), utcDate(5'000'001, 1, 15, 12));
  EXPECT_EQ(yearOfCommonEra(utcDate(-5'000'000, 1, 1)), 5'000'001);
  EXPECT_EQ(descriptionWithCalendarFormat(date, u"y"_s, std::nullopt), u"5000000"_s);
}

TEST(DateCompatibility, AnswersNothingForADateOutOfReach) {
  constexpr qint64 Most = std::numeric_limits<qint64>::max();
  for (const double seconds :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), 1e300}) {
    const Date date(seconds);
    EXPECT_EQ(yearOfCommonEra(date), 0);
    EXPECT_EQ(monthOfYear(date), 0);
    EXPECT_EQ(dayOfMonth(date), 0);
    EXPECT_EQ(hourOfDay(date), 0);
    EXPECT_EQ(minuteOfHour(date), 0);
    EXPECT_EQ(secondOfMinute(date), 0);
    EXPECT_EQ(dayOfCommonEra(date), 0);
    EXPECT_FALSE(dateByAddingYears(date, 0, 0, 0, 0, 0, 0));
    EXPECT_FALSE(descriptionWithCalendarFormat(date, u"y"_s, std::nullopt));
  }
  EXPECT_FALSE(dateByAddingYears(Date(0), Most, 0, 0, 0, 0, 0));
  EXPECT_FALSE(dateByAddingYears(Date(0), 0, Most, 0, 0, 0, 0));
  EXPECT_FALSE(dateByAddingYears(Date(0), 0, 0, 0, 0, 0, Most));
  EXPECT_FALSE(dateWithYear(Most, 1, 1, 0, 0, 0, std::nullopt));
}
