#include "tests/support/CalendarSettings.h"
#include "zqticker/platform/calendar/Calendar.h"
#include "zqticker/platform/calendar/CalendarDate.h"
#include "zqticker/platform/calendar/DateFormatter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::CalendarSettings;
using zq::testing::zoneNamed;

TEST(CalendarThreads, ReckonAndWriteWhileAnotherThreadChangesTheSettings) {
  const CalendarSettings settings("UTC", "en_US");
  std::atomic<bool> isOver = false;
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int number = 0; number < 3; ++number)
    threads.emplace_back([&wrong] {
      const TimeZone kathmandu = zoneNamed("Asia/Kathmandu");
      for (int round = 0; round < 300; ++round) {
        DateFormatter formatter;
        formatter.setDateFormat(u"HH:mm"_s);
        formatter.setTimeZone(kathmandu);
        formatter.setLocale(Locale(u"en_US"_s));
        formatter.setCalendar(Calendar::calendarWithIdentifier(GregorianCalendar));
        wrong += formatter.stringFromDate(Date(0)) != u"05:45"_s;
        Calendar hebrew = Calendar::calendarWithIdentifier(u"hebrew"_s).value();
        hebrew.setTimeZone(kathmandu);
        wrong += hebrew.components(YearCalendarUnit, Date(0)).year != 5761;
        const int hour = CalendarDate(Date(0)).hourOfDay();
        wrong += hour != 0 && hour != 9;
      }
    });
  std::thread changing([&isOver] {
    while (!isOver) {
      TimeZone::setDefaultTimeZone(zoneNamed("Asia/Tokyo"));
      Locale::setCurrentLocale(Locale(u"de_DE"_s));
      TimeZone::setDefaultTimeZone(zoneNamed("UTC"));
      Locale::setCurrentLocale(Locale(u"en_US"_s));
    }
  });
  for (std::thread& thread : threads)
    thread.join();
  isOver = true;
  changing.join();
  EXPECT_EQ(wrong, 0);
}
