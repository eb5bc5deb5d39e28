#include "zqticker/platform/calendar/PosixZoneRule_p.h"

#include "zqticker/platform/calendar/gregorian_days_p.h"

#include <gtest/gtest.h>

using zq::platform::PosixZoneRule;

namespace {

qint64 moment(qint64 year, int month, int day, int hour = 0, int minute = 0) {
  return (zq::platform::daysToGregorianMonth(year, month) + day - 1) * 86'400 + hour * 3600 +
         minute * 60;
}

qint32 offset(const char* rule, qint64 seconds) {
  return PosixZoneRule::parse(rule).value().offsetAt(seconds);
}

} // namespace

TEST(PosixZoneRule, CountsWestwards) {
  EXPECT_EQ(offset("UTC0", 0), 0);
  EXPECT_EQ(offset("EST5", 0), -18'000);
  EXPECT_EQ(offset("<+0545>-5:45", 0), 20'700);
  EXPECT_EQ(offset("LMT-0:53:28", 0), 3208);
  EXPECT_EQ(offset("AAA+24", 0), -86'400);
}

TEST(PosixZoneRule, HasDaylightTimeBetweenTwoWeekdays) {
  const char* const berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
  EXPECT_EQ(offset(berlin, moment(2009, 3, 29, 0, 59)), 3600);
  EXPECT_EQ(offset(berlin, moment(2009, 3, 29, 1, 0)), 7200);
  EXPECT_EQ(offset(berlin, moment(2009, 10, 25, 0, 59)), 7200);
  EXPECT_EQ(offset(berlin, moment(2009, 10, 25, 1, 0)), 3600);
  EXPECT_EQ(offset(berlin, moment(2'000'009, 7, 1)), 7200);
}

TEST(PosixZoneRule, HasDaylightTimeOverNewYearInTheSouth) {
  const char* const sydney = "AEST-10AEDT,M10.1.0,M4.1.0/3";
  EXPECT_EQ(offset(sydney, moment(2009, 1, 1)), 39'600);
  EXPECT_EQ(offset(sydney, moment(2009, 4, 4, 15, 59)), 39'600);
  EXPECT_EQ(offset(sydney, moment(2009, 4, 4, 16, 0)), 36'000);
  EXPECT_EQ(offset(sydney, moment(2009, 10, 3, 15, 59)), 36'000);
  EXPECT_EQ(offset(sydney, moment(2009, 10, 3, 16, 0)), 39'600);
  EXPECT_EQ(offset(sydney, moment(2009, 12, 31, 23, 59)), 39'600);
}

TEST(PosixZoneRule, TakesHalfHoursAndTimesBeyondTheDay) {
  EXPECT_EQ(offset("<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", moment(2009, 1, 1)), 39'600);
  // Saturday before the fourth Sunday of March at 22:00.
  const char* const nuuk = "<-02>2<-01>,M3.5.0/-1,M10.5.0/0";
  EXPECT_EQ(offset(nuuk, moment(2024, 3, 31, 0, 59)), -7200);
  EXPECT_EQ(offset(nuuk, moment(2024, 3, 31, 1, 0)), -3600);
}

TEST(PosixZoneRule, TakesDaysOfTheYear) {
  // 1 March is day 60 where 29 February does not count, else 59 or 60 counted from 0.
  EXPECT_EQ(offset("AAA0BBB,J60/0,J300/0", moment(2008, 2, 29, 23, 59)), 0);
  EXPECT_EQ(offset("AAA0BBB,J60/0,J300/0", moment(2008, 3, 1)), 3600);
  EXPECT_EQ(offset("AAA0BBB,J60/0,J300/0", moment(2009, 2, 28, 23, 59)), 0);
  EXPECT_EQ(offset("AAA0BBB,J60/0,J300/0", moment(2009, 3, 1)), 3600);
  EXPECT_EQ(offset("AAA0BBB,J59/0,J300/0", moment(2008, 2, 28)), 3600);
  EXPECT_EQ(offset("AAA0BBB,59/0,300/0", moment(2008, 2, 28, 23, 59)), 0);
  EXPECT_EQ(offset("AAA0BBB,59/0,300/0", moment(2008, 2, 29)), 3600);
  EXPECT_EQ(offset("AAA0BBB,59/0,300/0", moment(2009, 3, 1)), 3600);
}

TEST(PosixZoneRule, KeepsDaylightTimeAllYear) {
  const char* const rule = "XXX3EDT4,0/0,J365/23";
  for (int month = 1; month <= 12; ++month)
    EXPECT_EQ(offset(rule, moment(2009, month, 1)), -14'400) << month;
  EXPECT_EQ(offset(rule, moment(2009, 1, 1, 3, 30)), -14'400);
  EXPECT_EQ(offset(rule, moment(2010, 1, 1, 2, 59)), -14'400);
}

TEST(PosixZoneRule, KnowsTheUsualDaysWhereNoneAreGiven) {
  EXPECT_EQ(offset("EST5EDT", moment(2009, 3, 8, 6, 59)), -18'000);
  EXPECT_EQ(offset("EST5EDT", moment(2009, 3, 8, 7, 0)), -14'400);
  EXPECT_EQ(offset("EST5EDT", moment(2009, 11, 1, 5, 59)), -14'400);
  EXPECT_EQ(offset("EST5EDT", moment(2009, 11, 1, 6, 0)), -18'000);
}

TEST(PosixZoneRule, RefusesWhatIsNone) {
  for (const char* text : {"",
                           "CET",
                           "1",
                           "CE-1",
                           "CET-1CEST,",
                           "CET-1CEST,M3.5.0",
                           "CET-1CEST,M3.5.0,",
                           "CET-1CEST,M13.5.0,M10.5.0",
                           "CET-1CEST,M3.6.0,M10.5.0",
                           "CET-1CEST,M3.5.7,M10.5.0",
                           "CET-1CEST,M0.5.0,M10.5.0",
                           "CET-1CEST,J0,J300",
                           "CET-1CEST,J366,J300",
                           "CET-1CEST,366,1",
                           "CET-25",
                           "CET-1:60",
                           "CET-1CEST,M3.5.0,M10.5.0/168",
                           "CET-1CEST,M3.5.0,M10.5.0x",
                           "<+01-1",
                           "<>-1",
                           "CET-1 ",
                           "CET-1CEST,M3.5.0/,M10.5.0",
                           "CET99999999999999999999",
                           "Europe/Berlin",
                           "CET-1CE",
                           "CET-1CEST-2;M3.5.0,M10.5.0"})
    EXPECT_FALSE(PosixZoneRule::parse(text)) << text;
}
