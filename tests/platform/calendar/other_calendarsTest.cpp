#include "zqticker/platform/calendar/Calendar.h"

#include "tests/support/CalendarSettings.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::zoneNamed;

namespace {

constexpr unsigned DateUnits =
    EraCalendarUnit | YearCalendarUnit | MonthCalendarUnit | DayCalendarUnit;

Calendar calendarInUTC(const QString& identifier) {
  Calendar calendar = Calendar::calendarWithIdentifier(identifier).value();
  calendar.setTimeZone(TimeZone());
  return calendar;
}

Date gregorianDate(qint64 year, qint64 month, qint64 day) {
  return calendarInUTC(GregorianCalendar)
      .dateFromComponents({{}, year, month, day, {}, {}, {}})
      .value();
}

DateComponents day(qint64 era, qint64 year, qint64 month, qint64 dayOfMonth) {
  return {era, year, month, dayOfMonth, {}, {}, {}};
}

} // namespace

TEST(OtherCalendars, SplitDatesIntoTheirOwnFields) {
  const Date date = gregorianDate(2009, 6, 15);
  const std::pair<QString, DateComponents> expected[] = {
      {u"buddhist"_s, day(0, 2552, 6, 15)}, {u"roc"_s, day(1, 98, 6, 15)},
      {u"japanese"_s, day(235, 21, 6, 15)}, {u"hebrew"_s, day(0, 5769, 10, 23)},
      {u"coptic"_s, day(1, 1725, 10, 8)},   {u"persian"_s, day(0, 1388, 3, 25)},
      {u"iso8601"_s, day(1, 2009, 6, 15)},
  };
  for (const auto& [identifier, components] : expected)
    EXPECT_EQ(calendarInUTC(identifier).components(DateUnits, date), components)
        << identifier.toStdString();
}

TEST(OtherCalendars, MakeDatesOfTheirFields) {
  const Date date = gregorianDate(2009, 6, 15);
  for (const QString& identifier : {u"buddhist"_s, u"roc"_s, u"japanese"_s, u"hebrew"_s,
                                    u"coptic"_s, u"persian"_s, u"islamic-civil"_s, u"indian"_s}) {
    const Calendar calendar = calendarInUTC(identifier);
    EXPECT_EQ(calendar.dateFromComponents(calendar.components(DateUnits, date)), date)
        << identifier.toStdString();
  }
}

TEST(OtherCalendars, CarryFieldsThatAreOutOfRange) {
  const Calendar buddhist = calendarInUTC(u"buddhist"_s);
  EXPECT_EQ(buddhist.dateFromComponents({{}, 2552, 14, 31, {}, {}, {}}), gregorianDate(2010, 3, 3));
  EXPECT_EQ(buddhist.dateFromComponents({{}, 2552, 1, 1, -24, {}, {}}),
            gregorianDate(2008, 12, 31));
}

TEST(OtherCalendars, HaveNoJulianDaysWhereTheirDaysAreGregorian) {
  const Calendar buddhist = calendarInUTC(u"buddhist"_s);
  EXPECT_EQ(buddhist.components(DateUnits, gregorianDate(1582, 10, 14)), day(0, 2125, 10, 14));
  EXPECT_EQ(buddhist.dateFromComponents(day(0, 2125, 10, 14)), gregorianDate(1582, 10, 14));
}

TEST(OtherCalendars, CountDaysFromTheFirstOfTheEra) {
  const Calendar japanese = calendarInUTC(u"japanese"_s);
  // Heisei began on 8 January 1989.
  EXPECT_EQ(japanese.ordinalityOfUnit(DayCalendarUnit, EraCalendarUnit, gregorianDate(1989, 1, 8)),
            1);
  EXPECT_EQ(japanese.ordinalityOfUnit(DayCalendarUnit, EraCalendarUnit, gregorianDate(1990, 1, 8)),
            366);
  const Calendar hebrew = calendarInUTC(u"hebrew"_s);
  EXPECT_EQ(hebrew.ordinalityOfUnit(DayCalendarUnit, YearCalendarUnit, gregorianDate(2008, 9, 30)),
            1);
  EXPECT_EQ(hebrew.ordinalityOfUnit(DayCalendarUnit, MonthCalendarUnit, gregorianDate(2009, 6, 15)),
            23);
}

TEST(OtherCalendars, AnswerNothingOutOfTheirReach) {
  for (const QString& identifier : {u"buddhist"_s, u"hebrew"_s, u"islamic"_s, u"chinese"_s}) {
    const Calendar calendar = calendarInUTC(identifier);
    EXPECT_EQ(calendar.components(DateUnits, gregorianDate(5'000'000, 1, 1)), DateComponents());
    EXPECT_EQ(calendar.components(DateUnits, gregorianDate(-5'000'000, 1, 1)), DateComponents());
    for (const qint64 number : {5'000'000LL, -5'000'000LL, 1LL << 62, -(1LL << 62)}) {
      EXPECT_FALSE(calendar.dateFromComponents({{}, number, 1, 1, {}, {}, {}}));
      EXPECT_FALSE(calendar.dateFromComponents({{}, 1, number, 1, {}, {}, {}}));
      EXPECT_FALSE(calendar.dateFromComponents({number, 1, 1, 1, {}, {}, {}}));
    }
  }
}
