#include "app/services/ClockService.h"

#include "tests/app/XServer.h"
#include "tests/support/CalendarSettings.h"

#include <QtCore/QStringList>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using zq::app::testing::waitUntil;
using zq::platform::Date;
using zq::testing::CalendarSettings;

namespace {

const ClockText& seconds() {
  static const ClockText text = ClockText::make(u"%S"_s).value();
  return text;
}

} // namespace

TEST(WallClockTimer, TellsAMomentThatHasPassedFromTheEventLoop) {
  int told = 0;
  WallClockTimer timer([&] { ++told; });
  timer.startAt(Date(0));
  EXPECT_EQ(told, 0);
  EXPECT_TRUE(waitUntil([&] { return told > 0; }));
}

TEST(WallClockTimer, TellsAMomentWhenTheClockHasReachedIt) {
  Date toldAt;
  WallClockTimer timer([&] { toldAt = Date::date(); });
  const Date moment(Date::date().timeIntervalSinceReferenceDate() + 0.05);
  timer.startAt(moment);
  ASSERT_TRUE(waitUntil([&] { return toldAt != Date(); }));
  EXPECT_GE(toldAt.timeIntervalSinceReferenceDate(),
            moment.timeIntervalSinceReferenceDate() - 1e-6);
}

TEST(WallClockTimer, TellsOnlyTheMomentItWasGivenLast) {
  int told = 0;
  WallClockTimer timer([&] { ++told; });
  timer.startAt(Date(0));
  timer.startAt(Date(Date::date().timeIntervalSinceReferenceDate() + 86'400));
  // A timer that was started later marks the end.
  bool isOver = false;
  WallClockTimer marker([&] { isOver = true; });
  marker.startAt(Date(0));
  ASSERT_TRUE(waitUntil([&] { return isOver; }));
  EXPECT_EQ(told, 0);
}

TEST(ClockService, GivesOutATextOnceUntilItChanges) {
  const CalendarSettings settings("UTC", "en_US");
  // Every look comes three quarters of a second after the one before.
  double now = 0;
  int looks = 0;
  QStringList texts;
  ClockService service(
      seconds(),
      [&](const QString& text) {
        texts.append(text);
        return texts.size() < 3;
      },
      [&] {
        ++looks;
        return Date(std::exchange(now, now + 0.75));
      });
  service.start();
  EXPECT_TRUE(texts.isEmpty()) << "the present text is known";
  ASSERT_TRUE(waitUntil([&] { return texts.size() == 3; }));
  EXPECT_EQ(texts, QStringList({u"01"_s, u"02"_s, u"03"_s}));
  EXPECT_EQ(looks, 5); // at 0, 0.75, 1.5, 2.25 and 3
}

TEST(ClockService, EndsWhenNobodyTakesItsText) {
  double now = 0;
  int given = 0;
  ClockService service(
      seconds(),
      [&](const QString&) {
        ++given;
        return false;
      },
      [&] { return Date(now++); });
  service.start();
  ASSERT_TRUE(waitUntil([&] { return given > 0; }));
  bool isOver = false;
  WallClockTimer marker([&] { isOver = true; });
  marker.startAt(Date(0));
  ASSERT_TRUE(waitUntil([&] { return isOver; }));
  EXPECT_EQ(given, 1);
}

TEST(ClockService, FollowsTheSystemsClock) {
  QStringList texts;
  ClockService service(seconds(), [&](const QString& text) {
    texts.append(text);
    return true;
  });
  service.start();
  ASSERT_TRUE(waitUntil([&] { return texts.size() >= 2; }));
  EXPECT_NE(texts[0], texts[1]);
}
