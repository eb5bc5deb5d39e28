// Signs that are removed, replaced or dropped, and the end of sending.
#include "tests/app/SignsToATicker.h"
#include "tests/support/waiting.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace zq::app;
using namespace zq::platform;
using namespace zq::app::testing;
using zq::testing::waitFor;

TEST_F(SignsToATicker, AreRemovedWithoutHavingBeenSent) {
  add(u"a"_s);
  add(u"b"_s);
  sender->remove(u"a"_s);
  link.appear();
  EXPECT_EQ(link.takeAll(), "show b");
}

TEST_F(SignsToATicker, AreRemovedBeforeOthersAreShown) {
  link.appear();
  arrange({u"x"_s, u"y"_s});
  link.takeAll();
  add(u"a"_s);
  add(u"b"_s);
  sender->remove(u"x"_s);
  link.answer(Kind::TooMuch);
  ASSERT_TRUE(waitFor([&] { return link.openCalls() == 1; }));
  EXPECT_EQ(link.takeAll(), "remove x, show a, show b") << "it makes room";
}

TEST_F(SignsToATicker, AreRemovedAfterTheyWereUnderWay) {
  link.appear();
  add(u"a"_s, -1);
  sender->remove(u"a"_s);
  add(u"b"_s);
  EXPECT_EQ(link.takeAll(), "show a, remove a, show b");
  link.vanish();
  link.appear();
  EXPECT_EQ(link.takeAll(), "");
}

TEST_F(SignsToATicker, AreRemovedAgainWhereTheRemovalWasLost) {
  link.appear();
  add(u"a"_s, -1);
  link.takeAll();
  sender->remove(u"a"_s);
  link.answer(Kind::Lost);
  ASSERT_TRUE(waitFor([&] { return link.openCalls() == 1; }));
  EXPECT_EQ(link.takeAll(), "remove a");
}

TEST_F(SignsToATicker, AreSentOnceAsTheyAreLast) {
  add(u"a"_s, -1);
  add(u"b"_s, -1);
  sender->replace(sign(u"a"_s, -1, u"new"_s), {});
  link.appear();
  ASSERT_EQ(link.takeAll(), "show a, show b");
  EXPECT_EQ(textOf(link.calls().front()), u"new"_s);
}

TEST_F(SignsToATicker, AreSentAgainWhenTheyChange) {
  link.appear();
  arrange({u"x"_s, u"y"_s});
  link.takeAll();
  sender->replace(sign(u"x"_s, -1, u"new"_s), {});
  ASSERT_EQ(link.takeAll(), "show x");
  EXPECT_EQ(textOf(link.calls().back()), u"new"_s);
  EXPECT_EQ(link.calls().back().origin.value(u"arranged"_s), true);
}

TEST_F(SignsToATicker, AreSentAgainWhenTheyChangeUnderWay) {
  link.appear();
  add(u"a"_s);
  sender->replace(sign(u"a"_s, 1, u"new"_s), {});
  ASSERT_EQ(link.takeAll(), "show a, show a");
  EXPECT_EQ(textOf(link.calls().back()), u"new"_s);
}

TEST_F(SignsToATicker, AreNotShownAnewByAChangeWhereTheirShowingsAreCounted) {
  link.appear();
  add(u"a"_s, 2, Order::Arranged);
  link.takeAll();
  sender->replace(sign(u"a"_s, 2, u"new"_s), {});
  EXPECT_EQ(link.openCalls(), 0u);
  link.vanish();
  link.appear();
  ASSERT_EQ(link.takeAll(), "show a");
  EXPECT_EQ(textOf(link.calls().back()), u"new"_s) << "the next ticker has it as it is";
}

TEST_F(SignsToATicker, AreNotReplacedWhereThereAreNone) {
  link.appear();
  sender->replace(sign(u"a"_s), {});
  add(u"b"_s);
  link.takeAll();
  sender->replace(sign(u"b"_s), {});
  EXPECT_EQ(link.calls().size(), 1u);
}

TEST_F(SignsToATicker, AreTheNewestWhereTooManyWait) {
  SendLimits limits;
  limits.mostSigns = 3;
  make(limits);
  for (const QString& identifier : {u"a"_s, u"b"_s})
    add(identifier);
  EXPECT_FALSE(sender->isFull());
  for (const QString& identifier : {u"c"_s, u"d"_s, u"e"_s})
    add(identifier);
  EXPECT_TRUE(sender->isFull());
  EXPECT_EQ(sender->droppedCount(), 2u);
  link.appear();
  EXPECT_EQ(link.takeAll(), "show c, show d, show e");
  EXPECT_FALSE(sender->isFull());
}

TEST_F(SignsToATicker, AreNotDroppedUnderWay) {
  SendLimits limits;
  limits.mostSigns = 2;
  make(limits);
  link.appear();
  for (const QString& identifier : {u"a"_s, u"b"_s, u"c"_s})
    add(identifier);
  link.answer(Kind::TooMuch);
  ASSERT_TRUE(waitFor([&] { return link.openCalls() == 1; }));
  EXPECT_EQ(link.takeAll(), "show a, show c");
}

TEST_F(SignsToATicker, AreDroppedForTheirCharactersButNotTheLastOne) {
  SendLimits limits;
  limits.mostCharacters = 10;
  make(limits);
  sender->add(sign(u"a"_s, 1, QString(5, u'a')), {}, Order::Arrival);
  sender->add(sign(u"b"_s, 1, QString(5, u'b')), {}, Order::Arrival);
  EXPECT_EQ(sender->droppedCount(), 0u);
  sender->add(sign(u"c"_s, 1, QString(20, u'c')), {}, Order::Arrival);
  EXPECT_EQ(sender->droppedCount(), 2u);
  link.appear();
  EXPECT_EQ(link.takeAll(), "show c");
}

TEST_F(SignsToATicker, AreTakenBackWhenEndlessOnesBecomeTooMany) {
  SendLimits limits;
  limits.mostSigns = 2;
  make(limits);
  link.appear();
  for (const QString& identifier : {u"a"_s, u"b"_s}) {
    add(identifier, -1);
    link.takeAll();
  }
  add(u"c"_s, -1);
  EXPECT_EQ(link.takeAll(), "remove a, show c");
  link.vanish();
  link.appear();
  EXPECT_EQ(link.takeAll(), "show b, show c");
}

TEST_F(SignsToATicker, ArrangedOnesAreNotDropped) {
  SendLimits limits;
  limits.mostSigns = 1;
  make(limits);
  arrange({u"x"_s, u"y"_s});
  add(u"a"_s);
  add(u"b"_s);
  link.appear();
  EXPECT_EQ(link.takeAll(), "show x, show y, show b, arrange x y");
}

TEST_F(SignsToATicker, AreTakenBackAtTheEndWhereTheyAreShownWithoutEnd) {
  link.appear();
  arrange({u"x"_s, u"y"_s});
  add(u"once"_s);
  add(u"endless"_s, -1);
  link.takeAll();
  add(u"unsent"_s, -1);
  add(u"unsent too"_s, -1);
  sender->finish(EndlessSigns::AreTakenBack);
  EXPECT_EQ(finishCount, 0);
  EXPECT_EQ(link.takeAll(), "show unsent, remove x, remove y, remove endless, remove unsent");
  EXPECT_EQ(finishCount, 1);
  add(u"late"_s);
  EXPECT_EQ(link.openCalls(), 0u);
}

TEST_F(SignsToATicker, StayAtTheEndWhereTheyAreToStay) {
  link.appear();
  arrange({u"x"_s});
  link.takeAll();
  sender->finish(EndlessSigns::Stay);
  EXPECT_EQ(finishCount, 1);
  EXPECT_EQ(link.openCalls(), 0u);
}

TEST_F(SignsToATicker, AreGivenTheTimeThatTheirRemovalTakes) {
  SendLimits limits;
  limits.burst = 10;
  limits.rate = 100;
  sender.emplace(link, Sender, limits, [] { return 0.0; });
  link.appear();
  arrange({u"w"_s, u"x"_s, u"y"_s, u"z"_s});
  link.takeAll();
  EXPECT_EQ(sender->removalTime(), 0ms);
  sender->finish(EndlessSigns::AreTakenBack);
  EXPECT_EQ(link.openCalls(), 1u);
  EXPECT_EQ(sender->removalTime(), 30ms) << "for three more";
}

TEST_F(SignsToATicker, EndAtOnceWithoutIt) {
  link.appear();
  arrange({u"x"_s});
  link.takeAll();
  link.vanish();
  sender->finish(EndlessSigns::AreTakenBack);
  EXPECT_EQ(finishCount, 1);
}

TEST_F(SignsToATicker, EndWhenItVanishesMeanwhile) {
  link.appear();
  arrange({u"x"_s});
  link.takeAll();
  sender->finish(EndlessSigns::AreTakenBack);
  ASSERT_EQ(finishCount, 0);
  link.vanish();
  EXPECT_EQ(finishCount, 1);
}

TEST_F(SignsToATicker, MayEndUnderWay) {
  link.appear();
  add(u"a"_s);
  sender.reset();
  link.answer(Kind::Taken);
  link.vanish();
  link.appear();
  EXPECT_EQ(link.calls().size(), 1u);
}
