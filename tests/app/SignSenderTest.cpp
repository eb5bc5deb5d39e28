
#include "app/services/FeedSigns.h"
#include "app/services/FileSigns.h"
#include "app/services/LineSigns.h"
#include "tests/app/SignsToATicker.h"
#include "tests/support/LogWatch.h"
#include "tests/support/waiting.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/signs/ZQComboTickerSign.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::platform;
using namespace zq::app::testing;
using zq::testing::expectLog;
using zq::testing::waitFor;

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
