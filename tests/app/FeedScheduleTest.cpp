#include "app/services/FeedSchedule.h"

#include <QtCore/QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using zq::app::FeedSchedule;
using zq::app::pollInterval;
using zq::app::PollOutcome;

namespace {
using Kind = PollOutcome::Kind;
using Duration = FeedSchedule::Duration;

FeedSchedule schedule(Duration interval, double random = 0) {
  return FeedSchedule(interval, [random] { return random; });
}
} // namespace

TEST(FeedSchedule, WaitsTheLongestOfWhatIsAskedFor) {
  const struct {
    const char* what;
    PollOutcome outcome;
    Duration wait;
  } cases[] = {
      {"nothing but the interval", {Kind::Succeeded, {}, {}, {}}, 30min},
      {"a shorter time to live", {Kind::Succeeded, 5min, {}, {}}, 30min},
      {"a longer time to live", {Kind::Succeeded, 60min, {}, {}}, 60min},
      {"a fresh answer", {Kind::Succeeded, 60min, 70min, {}}, 70min},
      {"a server that wants quiet", {Kind::Succeeded, 60min, 70min, 80min}, 80min},
      {"a feed that would sleep for ever", {Kind::Succeeded, 1000h, {}, {}}, 24h},
      {"an answer that is fresh for ever", {Kind::Succeeded, {}, 100000h, {}}, 24h},
  };
  for (const auto& example : cases)
    EXPECT_EQ(schedule(30min).waitAfter(example.outcome), example.wait) << example.what;
}

TEST(FeedSchedule, SpreadsPollsOverATenthMore) {
  EXPECT_EQ(schedule(30min, 0.5).waitAfter({}), 30min + 90s);
  EXPECT_EQ(schedule(30min, 1).waitAfter({}), 33min);
}

TEST(FeedSchedule, BacksOffFromFailures) {
  FeedSchedule plan = schedule(30min);
  const Duration waits[] = {30s,   1min,  2min,   4min,   8min, 16min,
                            32min, 64min, 128min, 256min, 6h,   6h};
  for (const Duration wait : waits)
    EXPECT_EQ(plan.waitAfter({Kind::Failed, {}, {}, {}}), wait);
  EXPECT_EQ(plan.failures(), 12);
  EXPECT_EQ(plan.waitAfter({}), 30min);
  EXPECT_EQ(plan.failures(), 0);
  EXPECT_EQ(plan.waitAfter({Kind::Failed, {}, {}, {}}), 30s) << "begins anew";
}

TEST(FeedSchedule, BacksOffFromAShortInterval) {
  FeedSchedule plan = schedule(2s);
  EXPECT_EQ(plan.waitAfter({Kind::Failed, {}, {}, {}}), 2s);
  EXPECT_EQ(plan.waitAfter({Kind::Failed, {}, {}, {}}), 4s);
}

TEST(FeedSchedule, ComesBackEarlierAtRandomButNeverThanHalf) {
  FeedSchedule plan = schedule(30min, 1);
  EXPECT_EQ(plan.waitAfter({Kind::Failed, {}, {}, {}}), 15s);
  EXPECT_EQ(plan.waitAfter({Kind::Failed, {}, {}, {}}), 30s);
}

TEST(FeedSchedule, LeavesAServerAloneAsLongAsItAsks) {
  EXPECT_EQ(schedule(30min).waitAfter({Kind::Failed, {}, {}, 10min}), 10min);
  EXPECT_EQ(schedule(30min, 1).waitAfter({Kind::Failed, {}, {}, 10min}), 11min) << "never less";
  EXPECT_EQ(schedule(30min).waitAfter({Kind::Failed, {}, {}, 5s}), 30s) << "but backs off itself";
  EXPECT_EQ(schedule(30min).waitAfter({Kind::Failed, {}, {}, 1000h}), 24h);
}

TEST(FeedSchedule, DoesNotWaitForWhatAFailedAnswerSaysOfItsAge) {
  EXPECT_EQ(schedule(30min).waitAfter({Kind::Failed, 10h, 10h, {}}), 30s);
}

TEST(FeedSchedule, IsOverForAFeedThatHasGone) {
  EXPECT_EQ(schedule(30min).waitAfter({Kind::Gone, {}, {}, 10min}), std::nullopt);
}

TEST(FeedSchedule, AsksServersOfOthersNoMoreThanEveryFiveMinutes) {
  EXPECT_EQ(pollInterval(QUrl(u"https://example.org/feed"_s), std::nullopt), 30min);
  EXPECT_EQ(pollInterval(QUrl(u"http://127.0.0.1/feed"_s), std::nullopt), 30min);
  for (const QString& feed : {u"https://example.org/feed"_s, u"http://127.example.org/feed"_s,
                              u"http://notlocalhost/feed"_s, u"http://192.168.0.1/feed"_s})
    EXPECT_EQ(pollInterval(QUrl(feed), 0.5), 5min) << feed.toStdString();
  for (const QString& feed :
       {u"http://localhost:8080/feed"_s, u"http://LOCALHOST/"_s, u"http://news.localhost/"_s,
        u"http://127.0.0.1:8080/feed"_s, u"http://127.1/feed"_s, u"http://[::1]:80/feed"_s,
        u"file:///tmp/feed.xml"_s, u"data:,feed"_s})
    EXPECT_EQ(pollInterval(QUrl(feed), 0.5), 30s) << feed.toStdString();
  EXPECT_EQ(pollInterval(QUrl(u"https://example.org/feed"_s), 90), 90min);
}
