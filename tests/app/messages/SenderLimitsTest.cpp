#include "app/intake/SenderLimits.h"
#include "app/intake/FloodLog.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
constexpr qsizetype Small = 100;

QString reason(const std::optional<SenderLimits::Refusal>& refusal) {
  return refusal ? refusal->reason : QString();
}

// How many of `count` messages pass at `time`.
int passing(SenderLimits& limits, const SenderKey& sender, int count, double time,
            qsizetype bytes = Small) {
  int passed = 0;
  for (int i = 0; i < count; ++i)
    passed += !limits.refusal(sender, bytes, time);
  return passed;
}

const SenderKey News{u"news"_s, u":1.7"_s};
} // namespace

TEST(SenderLimits, LetABurstPassAndThenTheRate) {
  SenderLimits limits;
  EXPECT_EQ(passing(limits, News, 10'000, 5), int(OneSender.messages.burst));
  EXPECT_EQ(passing(limits, News, 10'000, 6), int(OneSender.messages.rate));
  EXPECT_EQ(passing(limits, News, 10'000, 6.125), int(OneSender.messages.rate / 8));
  EXPECT_EQ(passing(limits, News, 10'000, 1000), int(OneSender.messages.burst));
}

TEST(SenderLimits, SumUpToTheRateOverALongTime) {
  SenderLimits limits;
  int passed = 0;
  for (int i = 0; i < 10'000; ++i)
    passed += passing(limits, News, 10, 100 + i / 1000.0);
  EXPECT_NEAR(passed, OneSender.messages.burst + OneSender.messages.rate * 10, 1);
}

TEST(SenderLimits, CountBytes) {
  SenderLimits limits;
  constexpr qsizetype Large = 16 << 20;
  EXPECT_EQ(passing(limits, News, 10, 5, Large), 2);
  EXPECT_EQ(reason(limits.refusal(News, Large, 5)), u"more than 4 MiB a second from one sender"_s);
  EXPECT_EQ(reason(limits.refusal(News, Small, 5 + 1)), QString());
  EXPECT_EQ(passing(limits, News, 10, 5 + 5, Large), 1);
}

TEST(SenderLimits, TakeNothingForWhatIsRefused) {
  SenderLimits limits;
  EXPECT_EQ(passing(limits, News, 100'000, 5), int(OneSender.messages.burst));
  const SenderKey same{u"weather"_s, News.connection};
  EXPECT_EQ(passing(limits, same, 1000, 5), int(OneSender.messages.burst))
      << "refused messages do not count against the connection";
}

TEST(SenderLimits, HoldSendersTogetherThatShareAConnection) {
  SenderLimits limits;
  int passed = 0;
  for (int i = 0; i < 10'000; ++i)
    passed += passing(limits, {QString::number(i), u":1.7"_s}, 1, 5);
  EXPECT_EQ(passed, int(OneConnection.messages.burst));
  const auto refusal = limits.refusal({u"new"_s, u":1.7"_s}, Small, 5);
  EXPECT_EQ(reason(refusal), u"more than 100 messages a second from one program"_s);
  EXPECT_EQ(refusal->scope, SenderLimits::Scope::Connection);
}

TEST(SenderLimits, HoldOneSenderTogetherOverManyConnections) {
  SenderLimits limits;
  int passed = 0;
  for (int i = 0; i < 10'000; ++i)
    passed += passing(limits, {u"news"_s, u":1.%1"_s.arg(i)}, 1, 5);
  EXPECT_EQ(passed, int(OneSender.messages.burst));
}

TEST(SenderLimits, CountSendersWithoutANameAsOne) {
  SenderLimits limits;
  int passed = 0;
  for (int i = 0; i < 10'000; ++i)
    passed += passing(limits, {QString(), u":1.%1"_s.arg(i)}, 1, 5);
  EXPECT_EQ(passed, int(OneSender.messages.burst));
}

TEST(SenderLimits, HoldAllTogetherUnderAnyNamesWithBoundedMemory) {
  SenderLimits limits;
  int passed = 0;
  for (int i = 0; i < 100'000; ++i) {
    passed += passing(limits, {u"sender %1"_s.arg(i), u":1.%1"_s.arg(i)}, 1, 5);
    ASSERT_LE(limits.knownCount(), 2 * SenderLimits::MostKnown);
  }
  // Senders beyond those that are told apart share what one sender has.
  EXPECT_EQ(passed, int(SenderLimits::MostKnown + OneSender.messages.burst));
  EXPECT_EQ(passing(limits, {u"sender 0"_s, u":1.0"_s}, 10, 5), 10) << "known ones go on";
  for (int i = 0; i < 5000; ++i)
    passed += passing(limits, {u"late %1"_s.arg(i), u":2.%1"_s.arg(i)}, 1, 1000);
  EXPECT_LE(limits.knownCount(), 2 * SenderLimits::MostKnown);
  EXPECT_EQ(passing(limits, {u"sender 1"_s, u":1.1"_s}, 1, 2000), 1);
}

TEST(SenderLimits, HoldAllTogetherAcrossKnownSenders) {
  SenderLimits limits;
  int passed = 0;
  for (int i = 0; i < 100; ++i)
    passed += passing(limits, {QString::number(i), u":1.%1"_s.arg(i)}, 100, 5);
  EXPECT_EQ(passed, int(AllSenders.messages.burst));
  EXPECT_EQ(reason(limits.refusal({u"0"_s, u":1.0"_s}, Small, 5)),
            u"more than 200 messages a second from all senders"_s);
  EXPECT_EQ(reason(limits.refusal({u"stranger"_s, u":9.9"_s}, Small, 5)),
            u"more than 200 messages a second from all senders"_s);
}

TEST(SenderLimits, RefuseAMessageThatIsTooLargeWhateverIsLeft) {
  SenderLimits limits;
  EXPECT_EQ(reason(limits.refusal(News, LargestMessage + 1, 5)),
            u"a message of more than 20 MiB"_s);
  EXPECT_EQ(reason(limits.refusal(News, LargestMessage, 5)), QString());
}

TEST(SenderLimits, CountPixels) {
  SenderLimits limits;
  constexpr qint64 Large = 16'000'000;
  const auto passing = [&](int count, double time) {
    int passed = 0;
    for (int i = 0; i < count; ++i)
      passed += !limits.workRefusal(News, Large, time);
    return passed;
  };
  EXPECT_EQ(passing(10, 5), 4);
  EXPECT_EQ(reason(limits.workRefusal(News, Large, 5)),
            u"more than 8 million pixels a second to decode from one sender"_s);
  EXPECT_EQ(passing(10, 5 + 4), 2);
  EXPECT_EQ(reason(limits.workRefusal({u"weather"_s, u":1.8"_s}, Large, 5 + 4)), QString());
  EXPECT_EQ(reason(limits.refusal(News, Small, 5 + 4)), QString());
}

TEST(SenderLimits, StandAClockThatStepsBack) {
  SenderLimits limits;
  EXPECT_EQ(passing(limits, News, 1000, 100), int(OneSender.messages.burst));
  EXPECT_EQ(passing(limits, News, 1000, 50), 0);
  EXPECT_EQ(passing(limits, News, 1000, 101), int(OneSender.messages.rate));
}

TEST(FloodLog, TellsTheFirstEventAndCountsTheOthers) {
  FloodLog log;
  EXPECT_EQ(log.note(u"refused from a"_s, u"too fast"_s, 10), u"refused from a: too fast"_s);
  for (int i = 0; i < 50'000; ++i)
    ASSERT_EQ(log.note(u"refused from a"_s, u"too fast"_s, 10 + i / 1000.0), QString());
  EXPECT_EQ(log.note(u"refused from b"_s, u"too large"_s, 60), u"refused from b: too large"_s);
  EXPECT_TRUE(log.takeDue(69).isEmpty());
  EXPECT_EQ(log.takeDue(69.999), QStringList{u"refused from a: 50001 in all"_s});
  EXPECT_TRUE(log.takeDue(70).isEmpty()) << "one event was told as it came";
  EXPECT_TRUE(std::isinf(log.nextDue()));
}

TEST(FloodLog, TellsACountEachMinute) {
  FloodLog log;
  QStringList lines;
  for (int second = 0; second <= 130; ++second) {
    for (int i = 0; i < 10; ++i)
      log.note(u"a"_s, u"b"_s, second);
    lines += log.takeDue(second);
  }
  EXPECT_EQ(lines, (QStringList{u"a: 609 in the last minute"_s, u"a: 600 in the last minute"_s}));
  EXPECT_EQ(log.takeDue(140), QStringList{u"a: 1310 in all"_s});
}

TEST(FloodLog, SaysWhenTheNextLineIsDue) {
  FloodLog log;
  EXPECT_TRUE(std::isinf(log.nextDue()));
  log.note(u"a"_s, u"b"_s, 10);
  EXPECT_EQ(log.nextDue(), 10 + FloodLog::QuietTime);
  for (int i = 11; i < 69; ++i)
    log.note(u"a"_s, u"b"_s, i);
  EXPECT_EQ(log.nextDue(), 10 + FloodLog::ReportInterval);
}

TEST(FloodLog, BeginsAnewAfterAFlood) {
  FloodLog log;
  EXPECT_NE(log.note(u"a"_s, u"b"_s, 10), QString());
  EXPECT_EQ(log.note(u"a"_s, u"b"_s, 11), QString());
  log.takeDue(30);
  EXPECT_EQ(log.note(u"a"_s, u"b"_s, 31), u"a: b"_s);
}

TEST(FloodLog, TellsAFewFloodsApart) {
  FloodLog log;
  int lines = 0;
  for (int i = 0; i < 10'000; ++i)
    lines += !log.note(QString::number(i), u"b"_s, 10).isEmpty();
  EXPECT_EQ(lines, FloodLog::MostFloods + 1);
  EXPECT_EQ(log.takeDue(100), QStringList{u"messages refused from further senders: 9984 in all"_s});
}
