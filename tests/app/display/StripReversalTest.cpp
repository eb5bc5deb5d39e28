// Strips that go the other way.
#include "app/display/Strip.h"
#include "tests/app/FakeItem.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>
#include <string>
#include <vector>

using zq::app::LoopRule;
using zq::app::Strip;
using zq::app::testing::fake;
using zq::app::testing::FakeItem;
using zq::app::testing::nameOf;

namespace {
constexpr double Speed = 10;
constexpr double Extent = 100;

std::shared_ptr<FakeItem> withGap(const char* name, double length, double gap, LoopRule rule = {}) {
  const auto item = fake(name, length, rule);
  item->itsGap = gap;
  return item;
}

// Where what is shown stands, from the end of the strip at which the first signs left: also after a
// reversal, of which the caller knows.
std::map<std::string, std::pair<double, double>> places(const Strip& strip, bool isReversed) {
  std::map<std::string, std::pair<double, double>> places;
  for (const Strip::Run& run : strip.runs()) {
    const double lead = strip.extent() - (strip.travel() - run.start);
    const double start = isReversed ? strip.extent() - lead - run.shown : lead;
    places[nameOf(run.item()) + std::to_string(run.number)] = {start, start + run.shown};
  }
  return places;
}

std::string names(const Strip& strip) {
  std::string names;
  for (const Strip::Run& run : strip.runs())
    names += nameOf(run.item());
  return names;
}
} // namespace

TEST(StripReversal, MovesNothing) {
  Strip strip(Extent, Speed);
  strip.queue().append(withGap("a", 30, 5));
  strip.queue().append(withGap("b", 40, 10));
  strip.queue().append(withGap("c", 50, 2));
  strip.advanceTo(10.5); // 5 points of a have left, 35 of c have entered
  const auto before = places(strip, false);
  ASSERT_EQ(before.size(), 3u);
  strip.reverse(10.5);
  EXPECT_EQ(places(strip, true), before);
  EXPECT_EQ(names(strip), "cba");
  strip.reverse(10.5);
  EXPECT_EQ(places(strip, false), before);
  EXPECT_EQ(names(strip), "abc");
}

TEST(StripReversal, LetsEverythingGoTheOtherWay) {
  Strip strip(Extent, Speed);
  strip.queue().append(withGap("a", 30, 5));
  strip.queue().append(withGap("b", 40, 10));
  strip.advanceTo(6);
  const auto before = places(strip, false);
  strip.reverse(6);
  strip.advanceTo(7);
  for (const auto& [name, place] : places(strip, true))
    EXPECT_NEAR(place.first, before.at(name).first + Speed, 1e-9) << name;
}

TEST(StripReversal, BringsBackWhatHasBegunToLeaveAndThenWhatWaits) {
  Strip strip(Extent, Speed);
  for (const char* name : {"a", "b", "c"})
    strip.queue().append(fake(name, 40));
  strip.advanceTo(11); // a has begun to leave, c to enter
  strip.queue().append(fake("d", 40));
  strip.reverse(11);
  EXPECT_EQ(names(strip), "cba");
  strip.advanceTo(11.9);
  EXPECT_EQ(names(strip), "cba") << "a has not come back wholly";
  strip.advanceTo(12.1);
  EXPECT_EQ(names(strip), "cbad");
  EXPECT_NEAR(strip.runs().back().start, strip.runs()[2].end(), 1e-9);
}

TEST(StripReversal, KeepsGapsBetweenSigns) {
  Strip strip(Extent, Speed);
  strip.queue().append(withGap("a", 30, 5));
  strip.queue().append(withGap("b", 40, 20));
  strip.advanceTo(10.2);
  strip.reverse(10.2);
  ASSERT_EQ(names(strip), "ba");
  EXPECT_DOUBLE_EQ(strip.runs()[1].start - strip.runs()[0].shownEnd(), 5);
  EXPECT_DOUBLE_EQ(strip.runs()[1].length, 30) << "with the gap of its own behind it";
  strip.queue().append(withGap("c", 10, 3));
  strip.advanceTo(12.5);
  ASSERT_EQ(strip.runs().size(), 3u);
  EXPECT_DOUBLE_EQ(strip.runs()[2].start - strip.runs()[1].shownEnd(), 5);
}

TEST(StripReversal, LetsNothingReturnOfWhichOnlyTheGapIsLeft) {
  Strip strip(Extent, Speed);
  const auto a = withGap("a", 30, 10);
  strip.queue().append(a);
  strip.queue().append(withGap("b", 30, 10));
  strip.advanceTo(12.5); // a's 20 points have left at 12, its gap leaves at 13
  ASSERT_EQ(names(strip), "ab");
  strip.reverse(12.5);
  EXPECT_EQ(names(strip), "b");
  EXPECT_EQ(a->left, 1);
}

TEST(StripReversal, ShowsAgainWhatHadNotWhollyEntered) {
  Strip strip(Extent, Speed);
  const auto whole = fake("a", 120);
  const auto cut = fake("b", 40);
  strip.queue().append(whole);
  strip.queue().append(cut);
  strip.queue().append(fake("c", 20));
  strip.advanceTo(13); // 30 points of a have left, 10 of b have entered
  strip.reverse(13);
  strip.advanceTo(13.9);
  EXPECT_EQ(names(strip), "ba");
  EXPECT_EQ(strip.queue().size(), 1u);
  strip.advanceTo(14.1); // b has left where it entered
  EXPECT_EQ(names(strip), "a");
  EXPECT_TRUE(cut->isQueued);
  EXPECT_EQ(strip.queue().size(), 2u);
  strip.advanceTo(16.1); // a has come back
  EXPECT_EQ(names(strip), "ab") << "before c, in its turn";
  strip.advanceTo(20.1);
  EXPECT_EQ(names(strip), "abc");
  strip.advanceTo(60);
  EXPECT_TRUE(strip.isFinished()) << "each was shown once";
  EXPECT_EQ(cut->entered, 2);
  EXPECT_EQ(whole->entered, 1);
}

TEST(StripReversal, CountsAShowingOnceHoweverOftenItTurns) {
  Strip strip(Extent, Speed);
  const auto twice = fake("a", 40, {2, 0, true});
  strip.queue().append(twice);
  std::set<std::uint64_t> seen;
  double time = 2;
  for (int i = 0; i < 1000; ++i) {
    strip.advanceTo(time += 0.1);
    for (const Strip::Run& run : strip.runs())
      if (run.isSeen())
        seen.insert(run.number);
    if (i < 400 && i % 9 == 0)
      strip.reverse(time);
  }
  EXPECT_TRUE(strip.isFinished());
  EXPECT_EQ(seen.size(), 2u);
}

TEST(StripReversal, LetsASignGoOnThatTurnsTwice) {
  Strip strip(Extent, Speed);
  const auto item = fake("a", 40);
  strip.queue().append(item);
  strip.advanceTo(2);
  strip.reverse(2);
  strip.reverse(3); // half of what had entered has left
  strip.advanceTo(6.1);
  EXPECT_TRUE(strip.runs().front().isSeen());
  strip.advanceTo(20);
  EXPECT_TRUE(strip.isFinished());
  EXPECT_EQ(item->entered, 1);
}

TEST(StripReversal, ShowsALongSignAgainOfWhichTheEndHadNotEntered) {
  Strip strip(Extent, Speed);
  const auto item = fake("long", 300);
  strip.queue().append(item);
  strip.advanceTo(20);
  strip.reverse(20);
  strip.advanceTo(41); // its start left at 40 where it had entered
  EXPECT_EQ(item->entered, 2);
  strip.advanceTo(100);
  EXPECT_TRUE(strip.isFinished());
  EXPECT_EQ(item->entered, 2);
}

TEST(StripReversal, TakesASuccessorForASignThatWasCut) {
  Strip strip(Extent, Speed);
  const auto old = fake("old", 40, {3, 0, true});
  const auto entry = strip.queue().append(old);
  strip.queue().append(fake("other", 10));
  strip.advanceTo(2);
  const auto young = fake("new", 40, {3, 0, true});
  const auto successor = strip.queue().replace(entry, young);
  ASSERT_TRUE(successor);
  strip.reverse(2);
  strip.advanceTo(100);
  EXPECT_TRUE(strip.isFinished());
  EXPECT_EQ(old->entered, 1);
  EXPECT_FALSE(old->isQueued);
  EXPECT_EQ(young->entered, 3) << "the one that was cut does not count";
}

TEST(StripReversal, DoesNotShowAgainWhatWasTakenOut) {
  Strip strip(Extent, Speed);
  const auto item = fake("a", 40, {3});
  const auto entry = strip.queue().append(item);
  strip.advanceTo(2);
  strip.withdraw(entry);
  strip.reverse(2);
  strip.advanceTo(100);
  EXPECT_TRUE(strip.isFinished());
  EXPECT_EQ(item->entered, 1);
  EXPECT_FALSE(item->isQueued);
}

TEST(StripReversal, PutsLinesBackToo) {
  Strip strip(Extent, Speed);
  strip.queue().setLimits(2, 1000);
  strip.queue().append(fake("x", 120));
  strip.queue().appendDroppable(fake("a", 40), 10);
  strip.advanceTo(13);
  strip.reverse(13);
  strip.queue().appendDroppable(fake("b", 40), 10);
  strip.advanceTo(14.5);
  EXPECT_EQ(names(strip), "x");
  EXPECT_EQ(strip.queue().droppableSize(), 2u);
  strip.advanceTo(20.5);
  EXPECT_EQ(names(strip), "xab");
  EXPECT_EQ(strip.queue().droppableSize(), 0u);
  EXPECT_EQ(strip.queue().dropped(), 0u);
}

TEST(StripReversal, LeavesWhatHasLeftToStepsBack) {
  Strip strip(Extent, Speed);
  for (const char* name : {"a", "b", "c", "d", "e"})
    strip.queue().append(fake(name, 50));
  strip.advanceTo(21); // a and b have left, c has begun to; 10 points of e have entered
  ASSERT_EQ(names(strip), "cde");
  strip.reverse(21);
  EXPECT_EQ(names(strip), "edc");
  double time = 25;
  strip.advanceTo(time);
  EXPECT_EQ(names(strip), "dce") << "e had not wholly entered, and comes again behind c";
  for (const char* expected : {"d", "b", "a"}) {
    ASSERT_TRUE(strip.stepBack(time));
    strip.advanceTo(time += Strip::StepSeconds);
    EXPECT_NEAR(strip.runs().front().start + Extent,
                strip.motion().travelAt(strip.motion().lowestBetween(0, time)), 1e-9);
    EXPECT_EQ(nameOf(strip.runs().front().item()), expected);
  }
  EXPECT_FALSE(strip.stepBack(time)) << "the first one";
  EXPECT_EQ(names(strip), "abdce");
  ASSERT_TRUE(strip.stepForward(time));
  strip.advanceTo(time += Strip::StepSeconds);
  EXPECT_EQ(names(strip).substr(0, 2), "bd");
  EXPECT_NEAR(strip.runs().front().start + Extent, strip.travel(), 1e-9);
}

TEST(StripReversal, TurnsAStepThatIsUnderWay) {
  Strip strip(Extent, Speed);
  for (const char* name : {"a", "b", "c", "d"})
    strip.queue().append(fake(name, 30));
  strip.advanceTo(11);
  ASSERT_TRUE(strip.stepForward(11));
  strip.advanceTo(11.1);
  const auto before = places(strip, false);
  strip.reverse(11.1);
  EXPECT_EQ(places(strip, true), before) << "without a jump";
  strip.advanceTo(11.1 + Strip::StepSeconds);
  // The next start is at the edge at which signs leave now.
  bool isAtEdge = false;
  for (const Strip::Run& run : strip.runs())
    isAtEdge |= std::abs(run.start + Extent - strip.travel()) < 1e-6;
  EXPECT_TRUE(isAtEdge);
  for (const auto& [name, place] : places(strip, true))
    if (before.count(name)) {
      EXPECT_GT(place.first, before.at(name).first) << name << ": the other way";
    }
}

TEST(StripReversal, IsForPausedAndEmptyStripsToo) {
  Strip strip(Extent, 0);
  strip.reverse(1);
  strip.queue().append(fake("a", 40));
  strip.setSpeed(Speed, 1);
  strip.advanceTo(3);
  ASSERT_EQ(names(strip), "a");
  EXPECT_NEAR(strip.travel() - strip.runs().front().start, 20, 1e-9);
  strip.setSpeed(0, 3);
  const auto before = places(strip, false);
  strip.reverse(50);
  strip.advanceTo(60);
  EXPECT_EQ(places(strip, true), before);
}

TEST(StripReversal, KeepsThePageOfAPagedStrip) {
  Strip strip(Extent, Speed);
  std::vector<std::shared_ptr<FakeItem>> items;
  for (const char* name : {"a", "b", "c", "d", "e"}) {
    items.push_back(fake(name, 40));
    strip.queue().append(items.back());
  }
  strip.setPaged(true, 0);
  strip.advanceTo(1);
  ASSERT_EQ(names(strip), "abc") << "half of c";
  const auto before = places(strip, false);
  strip.reverse(1);
  EXPECT_EQ(places(strip, true), before);
  std::string last = names(strip);
  std::string pages = last;
  for (double time = 1; !strip.isFinished() && time < 1000; time += 0.1) {
    strip.advanceTo(time);
    const std::string page = names(strip);
    if (!page.empty() && page != last)
      pages += " " + page;
    last = page;
  }
  EXPECT_TRUE(strip.isFinished());
  // c begins the next page, since its end had not been seen; e did not fit onto that wholly.
  EXPECT_EQ(pages, "cba cde e");
  for (const auto& item : items)
    EXPECT_EQ(item->entered, item->name == "c" ? 2 : 1) << item->name;
}

TEST(StripReversal, KeepsDelaysAndRounds) {
  Strip strip(Extent, Speed);
  const auto item = fake("a", 20, {2, 5});
  strip.queue().append(item);
  strip.advanceTo(6);
  strip.reverse(6); // a's start is at 60; it leaves where it entered at 6 + 6
  strip.advanceTo(11.9);
  EXPECT_EQ(names(strip), "a");
  strip.advanceTo(12.1);
  EXPECT_EQ(names(strip), "");
  EXPECT_NEAR(strip.nextEntryTime(), 17, 1e-9) << "5 seconds after it has left";
}

TEST(StripExtent, KeepsWhatIsShownFromEitherEdge) {
  for (const auto edge : {Strip::Edge::Entering, Strip::Edge::Leaving}) {
    Strip strip(Extent, Speed);
    strip.queue().append(fake("a", 30));
    strip.queue().append(fake("b", 30));
    strip.advanceTo(8);
    const auto distance = [&] {
      const double entered = strip.travel() - strip.runs().front().start;
      return edge == Strip::Edge::Entering ? entered : strip.extent() - entered;
    };
    const double before = distance();
    for (const double extent : {150.0, 90.0, 10.0, 100.0}) {
      strip.setExtent(extent, 8, edge);
      if (edge == Strip::Edge::Leaving || extent > 80) {
        ASSERT_EQ(names(strip), "ab") << extent;
        EXPECT_NEAR(distance(), before, 1e-9) << extent;
      } else {
        break;
      }
    }
    if (edge == Strip::Edge::Leaving) {
      strip.setExtent(10, 8, edge);
      strip.advanceTo(50);
      EXPECT_TRUE(strip.isFinished()) << "what stands beyond the edge enters again and passes";
    }
  }
}

TEST(StripLengths, KeepTheMiddleOfALongSignInPlace) {
  Strip strip(Extent, Speed);
  strip.queue().append(fake("long", 1000));
  strip.advanceTo(45); // its 400th point is in the middle
  strip.remeasure(Extent / 2, [](const Strip::Run&) { return 1500.0; });
  EXPECT_NEAR(strip.travel() - Extent / 2 - strip.runs().front().start, 600, 1e-9);
}

TEST(StripLengths, KeepWhatIsBeforeAndBehindTogether) {
  Strip strip(Extent, Speed);
  for (const char* name : {"a", "b", "c", "d", "e"})
    strip.queue().append(fake(name, 24));
  strip.advanceTo(10);
  strip.remeasure(Extent / 2, [](const Strip::Run&) { return 12.0; });
  ASSERT_EQ(names(strip), "abcde");
  for (std::size_t i = 1; i < 5; ++i)
    EXPECT_NEAR(strip.runs()[i].start, strip.runs()[i - 1].end(), 1e-9);
  // c had 2 of 24 points before the middle.
  EXPECT_NEAR(strip.travel() - Extent / 2 - strip.runs()[2].start, 1, 1e-9);
}
