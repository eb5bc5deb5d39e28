#include "app/services/SignSender.h"

#include "app/services/FeedSigns.h"
#include "app/services/FileSigns.h"
#include "app/services/LineSigns.h"
#include "tests/app/FakeTickerLink.h"
#include "tests/support/LogWatch.h"
#include "tests/support/waiting.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/signs/ZQComboTickerSign.h"

#include <gtest/gtest.h>

#include <optional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace zq::app;
using namespace zq::platform;
using zq::app::testing::FakeTickerLink;
using zq::testing::expectLog;
using zq::testing::runPostedEvents;
using zq::testing::waitFor;

namespace {
const QString Sender = u"org.zqticker.service.test:1"_s;
using Kind = TickerReply::Kind;
using Order = SignReceiver::Order;

class SignsToATicker : public ::testing::Test {
 protected:
  SignsToATicker() { make({}); }

  void make(SendLimits limits) {
    limits.shortestPause = 1ms;
    limits.longestPause = 1ms;
    sender.emplace(link, Sender, limits);
    QObject::connect(&*sender, &SignSender::finished, &link, [this] { ++finishCount; });
  }

  Ref<ZQTickerSign> sign(const QString& identifier, std::int64_t loopCount = 1,
                         const QString& text = u"text"_s) {
    const Ref<ZQTickerSign> made = sender->makeTextSign(text);
    made->setIdentifier(identifier);
    made->setLoopCount(loopCount);
    return made;
  }
  void add(const QString& identifier, std::int64_t loopCount = 1, Order order = Order::Arrival) {
    sender->add(sign(identifier, loopCount), {}, order);
  }
  void arrange(const QStringList& identifiers) {
    for (const QString& identifier : identifiers)
      add(identifier, -1, Order::Arranged);
    sender->arrange(identifiers);
  }
  static QString textOf(const FakeTickerLink::Call& call) {
    const auto combo = std::dynamic_pointer_cast<ZQComboTickerSign>(call.sign());
    return combo ? combo->text().toString() : u"no combo sign"_s;
  }

  FakeTickerLink link{Sender};
  std::optional<SignSender> sender;
  int finishCount = 0;
};
} // namespace

TEST_F(SignsToATicker, TravelByValueWithTheirOrigin) {
  link.appear();
  SignOrigin origin;
  origin.senderName = u"A feed"_s;
  sender->add(sign(u"a"_s, 3, u"A title"_s), origin, Order::Arranged);
  ASSERT_EQ(link.calls().size(), 1u);
  const FakeTickerLink::Call& call = link.calls().front();
  EXPECT_EQ(textOf(call), u"A title"_s);
  EXPECT_EQ(call.sign()->loopCount(), 3);
  EXPECT_EQ(call.sign()->identifier(), QString(Sender + u" a"_s));
  EXPECT_EQ(call.origin,
            (QVariantMap{
                {u"senderID"_s, Sender}, {u"senderName"_s, u"A feed"_s}, {u"arranged"_s, true}}));
}

TEST_F(SignsToATicker, AreNotArrangedWhereTheyComeInTheOrderOfArrival) {
  link.appear();
  add(u"a"_s);
  EXPECT_EQ(link.calls().front().origin,
            (QVariantMap{{u"senderID"_s, Sender}, {u"senderName"_s, QString()}}));
}

TEST_F(SignsToATicker, GoOneAfterTheOther) {
  link.appear();
  add(u"a"_s);
  add(u"b"_s);
  add(u"c"_s);
  EXPECT_EQ(link.openCalls(), 1u);
  EXPECT_EQ(link.takeAll(), "show a, show b, show c");
}

TEST_F(SignsToATicker, WaitForIt) {
  add(u"a"_s);
  arrange({u"x"_s, u"y"_s});
  add(u"b"_s);
  EXPECT_EQ(link.calls().size(), 0u);
  link.appear();
  EXPECT_EQ(link.takeAll(), "show x, show y, show a, show b, arrange x y");
}

TEST_F(SignsToATicker, ComeAgainWhenItHasHadEnoughAndAreNotOvertaken) {
  link.appear();
  add(u"a"_s);
  add(u"b"_s);
  for (int i = 0; i < 5; ++i) {
    link.answer(Kind::TooMuch);
    EXPECT_EQ(link.openCalls(), 0u) << "not at once";
    ASSERT_TRUE(waitFor([&] { return link.openCalls() == 1; }));
    EXPECT_EQ(link.calls().back().text, "show a");
  }
  EXPECT_EQ(link.takeAll(), "show a, show b");
}

TEST_F(SignsToATicker, AreSpreadOverTime) {
  double now = 5;
  SendLimits limits;
  limits.burst = 2;
  limits.rate = 100;
  sender.emplace(link, Sender, limits, [&] { return now; });
  link.appear();
  for (const QString& identifier : {u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s})
    add(identifier);
  EXPECT_EQ(link.takeAll(), "show a, show b");
  now += 0.015;
  ASSERT_TRUE(waitFor([&] { return link.openCalls() > 0; }));
  EXPECT_EQ(link.takeAll(), "show c");
  now += 100;
  ASSERT_TRUE(waitFor([&] { return link.openCalls() > 0; }));
  add(u"f"_s);
  EXPECT_EQ(link.takeAll(), "show d, show e") << "a long rest allows a burst, and no more";
}

TEST_F(SignsToATicker, ThatAreTooLargeAreNotSent) {
  link.appear();
  expectLog(u"a sign cannot be sent: larger than 8 MiB"_s);
  sender->add(sign(u"a"_s, 1, QString(9 << 20, u'ä')), {}, Order::Arrival);
  EXPECT_EQ(link.calls().size(), 0u);
}

TEST_F(SignsToATicker, ComeAgainWhenNobodyAnswers) {
  link.appear();
  add(u"a"_s);
  link.answer(Kind::Lost);
  ASSERT_TRUE(waitFor([&] { return link.openCalls() == 1; }));
  EXPECT_EQ(link.takeAll(), "show a");
}

TEST_F(SignsToATicker, GoWhenItRefusesThemForGood) {
  link.appear();
  for (const QString& identifier : {u"a"_s, u"b"_s, u"c"_s})
    add(identifier);
  expectLog(u"the ticker refuses a sign: no such class"_s);
  link.answer(Kind::Refused, u"no such class"_s);
  link.answer(Kind::Refused, u"no such class"_s); // told once
  expectLog(u"the ticker refuses a sign: no picture"_s);
  link.answer(Kind::Refused, u"no picture"_s);
  EXPECT_EQ(link.openCalls(), 0u);
  EXPECT_EQ(link.calls().size(), 3u);
}

namespace {
// A sign that cannot be archived.
class RawSign : public ZQTickerSign {
 public:
  void encodeWithCoder(Coder&) override { throw Exception(u"it is raw"_s); }
};
} // namespace

TEST_F(SignsToATicker, GoWhereTheyCannotBeArchived) {
  link.appear();
  const auto raw = std::make_shared<RawSign>();
  raw->setIdentifier(u"raw"_s);
  expectLog(u"a sign cannot be sent: it is raw"_s);
  sender->add(raw, {}, Order::Arrival);
  add(u"b"_s);
  EXPECT_EQ(link.takeAll(), "show b");
  EXPECT_FALSE(sender->hasWaiting(u"raw"_s));
}

TEST_F(SignsToATicker, ComeToTheNextOneWhereTheyAreShownWithoutEnd) {
  link.appear();
  arrange({u"x"_s, u"y"_s});
  add(u"endless"_s, -1);
  add(u"once"_s);
  link.takeAll();
  link.vanish();
  add(u"new"_s);
  link.appear();
  EXPECT_EQ(link.takeAll(), "show x, show y, show endless, show new, arrange x y");
}

TEST_F(SignsToATicker, ComeToATickerThatFollowsWithoutAWord) {
  link.appear();
  arrange({u"x"_s});
  link.takeAll();
  Q_EMIT link.appeared();
  EXPECT_EQ(link.takeAll(), "show x, arrange x");
}

TEST_F(SignsToATicker, ComeToTheNextOneInTheirLastOrder) {
  link.appear();
  arrange({u"x"_s, u"y"_s, u"z"_s});
  sender->arrange({u"z"_s, u"x"_s, u"y"_s});
  link.takeAll();
  link.vanish();
  link.appear();
  EXPECT_EQ(link.takeAll(), "show z, show x, show y, arrange z x y");
}

TEST_F(SignsToATicker, ComeAgainWhenItVanishesBeforeItAnswers) {
  link.appear();
  add(u"a"_s);
  add(u"b"_s);
  link.vanish();
  EXPECT_EQ(link.forgetOpenCalls(), "show a");
  link.appear();
  EXPECT_EQ(link.takeAll(), "show a, show b");
}

TEST_F(SignsToATicker, AreNotTakenByALateAnswer) {
  link.appear();
  add(u"a"_s);
  link.vanish();
  link.answer(Kind::Taken);
  link.appear();
  EXPECT_EQ(link.takeAll(), "show a");
}

TEST_F(SignsToATicker, AreNotHeldBackByThePauseOfTheOneBefore) {
  SendLimits limits;
  sender.emplace(link, Sender, limits);
  link.appear();
  add(u"a"_s);
  link.answer(Kind::TooMuch);
  link.vanish();
  link.appear();
  EXPECT_EQ(link.takeAll(), "show a");
}

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

TEST_F(SignsToATicker, HaveIdentifiersOfBoundedLength) {
  link.appear();
  const QString longOne(100'000, u'x');
  add(longOne + u'a', -1);
  add(longOne + u'b', -1);
  link.takeAll();
  const QString first = link.calls()[0].sign()->identifier().value();
  EXPECT_TRUE(first.startsWith(Sender));
  EXPECT_LT(first.size(), 1000);
  EXPECT_NE(first, link.calls()[1].sign()->identifier());
  sender->remove(longOne + u'a');
  EXPECT_EQ(link.takeAll(), "remove " + first.sliced(Sender.size() + 1).toStdString());
}

namespace {
ShownItem item(const QString& identifier, const QString& title) {
  return {identifier, title, QUrl(u"https://example.org/"_s + identifier), nullptr, u"News"_s};
}
} // namespace

TEST_F(SignsToATicker, FollowTheItemsOfAFeed) {
  link.appear();
  FeedSigns signs(*sender, {-1, 0, true});
  signs.show({item(u"a"_s, u"A"_s), item(u"b"_s, u"B"_s)});
  EXPECT_EQ(link.takeAll(), "show a, show b, arrange a b");
  const FakeTickerLink::Call& call = link.calls().front();
  EXPECT_EQ(textOf(call), u"A"_s);
  EXPECT_EQ(call.sign()->actionString(), u"https://example.org/a"_s);
  EXPECT_EQ(call.origin.value(u"senderName"_s), u"News"_s);
  signs.show({item(u"c"_s, u"C"_s), item(u"b"_s, u"changed"_s)});
  EXPECT_EQ(link.takeAll(), "remove a, show c, show b, arrange c b");
}

TEST_F(SignsToATicker, CarryThePicturesOfAFeed) {
  link.appear();
  QImage red(20, 10, QImage::Format_RGB32);
  red.fill(Qt::red);
  FeedSigns signs(*sender, {-1, 0, true});
  ShownItem shown = item(u"a"_s, u"A"_s);
  shown.picture = Image::fromQImage(red);
  signs.show({shown});
  const auto combo = std::dynamic_pointer_cast<ZQComboTickerSign>(link.calls().front().sign());
  ASSERT_NE(combo, nullptr);
  ASSERT_NE(combo->image(), nullptr);
  EXPECT_EQ(combo->image()->size(), QSizeF(20, 10));
}

TEST_F(SignsToATicker, OfReportsAreOneWhileTheyAreUnderWay) {
  link.appear();
  FileSigns signs(*sender, {1, 0, false});
  for (int i = 0; i < 100; ++i) {
    signs.show({u"/a/log"_s, u"written to"_s});
    signs.show({u"/a/log"_s, u"deleted"_s});
  }
  EXPECT_EQ(link.takeAll(), "show watch /a/log: written to, show watch /a/log: deleted");
  EXPECT_EQ(link.calls().front().origin.value(u"senderName"_s), u"log"_s);
  signs.show({u"/a/log"_s, u"deleted"_s});
  EXPECT_EQ(link.takeAll(), "show watch /a/log: deleted") << "the ticker knows whether it waits";
}

TEST_F(SignsToATicker, OfLinesKeepTheirOrderAndAreToldApart) {
  link.appear();
  LineSigns lines(*sender, {1, 0, false});
  LineSigns others(*sender, {1, 0, false});
  for (int i = 0; i < 3; ++i) {
    lines.show(QString::number(i), u"/a/log"_s);
    others.show(u"x"_s, u"/b/log"_s);
  }
  link.takeAll();
  QString texts;
  QSet<QString> identifiers;
  for (const FakeTickerLink::Call& call : link.calls()) {
    texts += textOf(call);
    identifiers.insert(call.sign()->identifier().value());
  }
  EXPECT_EQ(texts, u"0x1x2x"_s);
  EXPECT_EQ(identifiers.size(), 6);
  EXPECT_EQ(link.calls().front().origin.value(u"senderName"_s), u"log"_s);
}
