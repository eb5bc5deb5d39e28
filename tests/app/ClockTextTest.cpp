#include "app/services/ClockText.h"

#include "tests/support/CalendarSettings.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using zq::app::ClockText;
using zq::platform::Date;
using zq::testing::CalendarSettings;

namespace {

constexpr double Noon28February2009 = 257'515'200;

QString text(const QString& pattern, double seconds = Noon28February2009) {
  return ClockText::make(pattern).value().textAt(Date(seconds));
}

double nextChange(const QString& pattern, double seconds) {
  return ClockText::make(pattern)
      .value()
      .nextChangeAfter(Date(seconds))
      .timeIntervalSinceReferenceDate();
}

} // namespace

TEST(ClockText, IsWrittenForTheUser) {
  const CalendarSettings settings("Asia/Kathmandu", "de_DE");
  EXPECT_EQ(text(u"%A, %H:%M:%S"_s), u"Samstag, 17:45:00"_s);
  EXPECT_EQ(text(u"%x um %H Uhr"_s), u"28. Februar 2009 um 17 Uhr"_s);
  EXPECT_EQ(text(u"it''s %H"_s), u"it's 17"_s);
}

TEST(ClockText, IsOneLine) {
  EXPECT_EQ(text(u"%H\n%M\t\x1b[1m!"_s), u"12 00 !"_s);
}

TEST(ClockText, ChangesWithTheSecondsItTells) {
  for (const QString& pattern : {u"%S"_s, u"%H:%M:%S"_s, u"%X"_s, u"%F"_s}) {
    EXPECT_EQ(nextChange(pattern, 59.25), 60) << pattern.toStdString();
    EXPECT_EQ(nextChange(pattern, 60), 61);
    EXPECT_EQ(nextChange(pattern, -0.5), 0);
  }
}

TEST(ClockText, ChangesWithTheMinuteOtherwise) {
  for (const QString& pattern : {u"%H:%M"_s, u"%A"_s, u"Stand am %d."_s, u"SAs"_s}) {
    EXPECT_EQ(nextChange(pattern, 59.25), 60) << pattern.toStdString();
    EXPECT_EQ(nextChange(pattern, 60), 120);
    EXPECT_EQ(nextChange(pattern, -0.5), 0);
  }
}

TEST(ClockText, IsNothingWhereThereIsNothingToSee) {
  for (const QString& pattern : {u""_s, u" "_s, u"\n"_s, u"%"_s, u"%q"_s, u"%c"_s, u"o'clock"_s})
    EXPECT_FALSE(ClockText::make(pattern)) << pattern.toStdString();
}
