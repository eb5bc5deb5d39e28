// NSCalendar_ZQGregorian: Calendar (ZQGregorian).
#include "zqticker/foundation_additions/calendar_additions.h"

#include "tests/support/CalendarSettings.h"
#include "zqticker/platform/calendar/Calendar.h"
#include "zqticker/platform/objects/AssertionHandler.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using namespace zq;
using namespace zq::platform;
using zq::testing::CalendarSettings;
using zq::testing::zoneNamed;

namespace {

Calendar calendarIn(const char* zone, const QString& identifier = GregorianCalendar) {
  Calendar calendar = Calendar::calendarWithIdentifier(identifier).value();
  calendar.setTimeZone(zoneNamed(zone));
  return calendar;
}

} // namespace

TEST(GregorianCalendar, IsNewInTheDefaultTimeZone) {
  const CalendarSettings settings("America/New_York", "th_TH");
  EXPECT_EQ(gregorianCalendar().calendarIdentifier(), u"gregorian");
  EXPECT_EQ(gregorianCalendar().timeZone(), zoneNamed("America/New_York"));
}

TEST(GregorianCalendar, MakesDatesOfNumbers) {
  EXPECT_EQ(dateFromYear(calendarIn("UTC"), 2008, 2, 29), Date(225'936'000));
  EXPECT_EQ(dateFromYear(calendarIn("UTC"), 2009, -1, 1), Date(247'190'400));
  EXPECT_EQ(dateFromYear(calendarIn("Asia/Tokyo"), 2009, 1, 32, 12, 0, 0), Date(255'150'000));
  EXPECT_EQ(dateFromYear(calendarIn("Asia/Tokyo"), 2009, -1, 1, -1, 0, 0), Date(247'154'400));
  EXPECT_EQ(dateFromYear(calendarIn("Asia/Tokyo"), 2009, -12, 15, 0, 0, 60), Date(219'337'260));
  EXPECT_EQ(dateFromYear(calendarIn("Europe/Berlin"), 2009, 6, 15),
            dateFromYear(calendarIn("UTC"), 2009, 6, 14, 22, 0, 0));
}

TEST(GregorianCalendar, SplitsDatesIntoTheAskedFieldsOnly) {
  const Calendar kathmandu = calendarIn("Asia/Kathmandu");
  const Date date(257'515'200.5);
  DateComponents expected;
  expected.year = 2009;
  expected.month = 2;
  expected.day = 28;
  EXPECT_EQ(gregorianDateComponentsForDate(kathmandu, date), expected);
  expected.hour = 17;
  expected.minute = 45;
  expected.second = 0;
  EXPECT_EQ(gregorianDateAndTimeComponentsForDate(kathmandu, date), expected);
  expected.year = expected.month = expected.day = std::nullopt;
  EXPECT_EQ(gregorianTimeComponentsForDate(kathmandu, date), expected);
}

// Only making a date asks which calendar it is.
TEST(GregorianCalendar, SplitsDatesInWhicheverCalendarItIsGiven) {
  EXPECT_EQ(gregorianDateComponentsForDate(calendarIn("UTC", u"buddhist"_s), Date(0)).year, 2544);
}

TEST(GregorianCalendar, IsExpectedWhereADateIsMade) {
  for (const QString& identifier : {u"buddhist"_s, u"hebrew"_s, u"islamic"_s, u"iso8601"_s}) {
    const Calendar calendar = calendarIn("UTC", identifier);
    EXPECT_THROW(dateFromYear(calendar, 2009, 6, 15, 1, 2, 3), InternalInconsistencyException);
    try {
      dateFromYear(calendar, 2009, 6, 15);
      ADD_FAILURE() << identifier.toStdString();
    } catch (const InternalInconsistencyException& exception) {
      EXPECT_EQ(exception.message(), u"gregorian calendar expected!");
      EXPECT_EQ(exception.file(), u"NSCalendar_ZQGregorian");
      EXPECT_EQ(exception.line(), 28);
    }
  }
}

TEST(GregorianCalendar, LetsAHandlerGoOnWithAnother) {
  class Handler : public AssertionHandler {
   public:
    void handleFailure(const QString&, const QString&, int) override { ++failures; }
    int failures = 0;
  };
  Handler handler;
  AssertionHandler* const before = AssertionHandler::setCurrentHandler(&handler);
  const std::optional<Date> date = dateFromYear(calendarIn("UTC", u"buddhist"_s), 2544, 1, 1);
  AssertionHandler::setCurrentHandler(before);
  EXPECT_EQ(handler.failures, 1);
  EXPECT_EQ(date, Date(0));
}

TEST(GregorianCalendar, MakesNothingOutOfItsReach) {
  constexpr qint64 Most = std::numeric_limits<qint64>::max();
  EXPECT_TRUE(dateFromYear(calendarIn("UTC"), 5'000'000, 1, 1));
  EXPECT_TRUE(dateFromYear(calendarIn("UTC"), -5'000'000, 1, 1));
  EXPECT_FALSE(dateFromYear(calendarIn("UTC"), Most, 1, 1));
  EXPECT_FALSE(dateFromYear(calendarIn("UTC"), 2009, 1, 1, Most, Most, Most));
  EXPECT_EQ(gregorianDateAndTimeComponentsForDate(calendarIn("UTC"),
                                                  Date(std::numeric_limits<double>::infinity())),
            DateComponents());
}
