// What a display has queued: its list, who sent it, and its changes.
#include "tests/app/DisplayFrames.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
constexpr int Endless = -1;

Ref<ZQImageTickerSign> named(const QString& identifier, int loops = 1) {
  const auto sign = picture(20, 24, Qt::red);
  sign->setIdentifier(identifier);
  sign->setTextRepresentation(identifier);
  sign->setLoopCount(loops);
  sign->setContinuousScrolling(true);
  return sign;
}

SignOrigin from(const QString& sender, double priority = 0) {
  SignOrigin origin;
  origin.senderIdentifier = sender;
  origin.priority = priority;
  return origin;
}

// The texts of the rows; "!" behind those on the strip, "+" behind those that wait.
QString rows(TickerDisplay& display, double time) {
  QString text;
  for (const QueuedSign& sign : display.queuedSigns(time))
    text += sign.text + (sign.isOnStrip ? u"!"_s : QString()) + (sign.isWaiting ? u"+ "_s : u" "_s);
  return text;
}
} // namespace

TEST(TickerDisplayQueue, ListsWhatIsOnTheStripAndThenWhatWaits) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  for (const QString& name : {u"a"_s, u"b"_s, u"c"_s})
    display.addSign(named(name), 0);
  display.addSign(named(u"urgent"_s), 0, from(u"x"_s, 1));
  EXPECT_EQ(rows(display, 0), u"urgent+ a+ b+ c+ "_s);
  EXPECT_EQ(rows(display, 40 / Speed), u"urgent! a! b+ c+ "_s);
  EXPECT_EQ(rows(display, 130 / Speed), u"a! b! c! "_s);
  EXPECT_EQ(rows(display, 100), QString());
}

TEST(TickerDisplayQueue, ListsASignThatIsShownAndWaitsOnce) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(named(u"a"_s, Endless), 0);
  display.addSign(named(u"b"_s, 3), 0);
  display.advanceTo(1000 / Speed);
  ASSERT_EQ(display.strip().runs().size(), 4u);
  EXPECT_EQ(rows(display, 1000 / Speed), u"a!+ "_s);
}

TEST(TickerDisplayQueue, CountsTheShowingsThatAreLeft) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  for (const int loops : {-1, 0, 1, 3})
    display.addSign(named(QString::number(loops), loops), 0);
  const auto left = [&](double time) {
    std::vector<std::int64_t> counts;
    for (const QueuedSign& sign : display.queuedSigns(time))
      counts.push_back(sign.loopsLeft);
    return counts;
  };
  EXPECT_EQ(left(0), (std::vector<std::int64_t>{-1, 1, 1, 3}));
  EXPECT_EQ(left(60 / Speed), (std::vector<std::int64_t>{-1, 0, 1, 3}));
  EXPECT_EQ(left(120 / Speed), (std::vector<std::int64_t>{-1, 0, 0, 2}));
}

TEST(TickerDisplayQueue, ListsLinesWithASignOnlyOnTheStrip) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addLine(u"first"_s, 0);
  display.addLine(u"second"_s, 0);
  const std::vector<QueuedSign> signs = display.queuedSigns(0.1);
  ASSERT_EQ(signs.size(), 2u);
  EXPECT_EQ(signs[0].text, u"first"_s);
  EXPECT_NE(signs[0].sign, nullptr);
  EXPECT_EQ(signs[1].text, u"second"_s);
  EXPECT_EQ(signs[1].sign, nullptr);
  EXPECT_EQ(signs[1].loopsLeft, 1);
}

TEST(TickerDisplayQueue, TellsWhatSignsSay) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(display.makeTextSign(u"text"_s), 0);
  display.addSign(ZQComboTickerSign::make(u"plain combo"_s, nullptr), 0);
  display.addSign(ZQComboTickerSign::make(any(AttributedString::make(u"combo"_s)), nullptr), 0);
  display.addSign(picture(20, 24, Qt::red), 0);
  display.addSign(named(u"a red square"_s), 0);
  QStringList texts;
  for (const QueuedSign& sign : display.queuedSigns(0))
    texts.append(sign.text);
  EXPECT_EQ(texts,
            (QStringList{u"text"_s, u"plain combo"_s, u"combo"_s, QString(), u"a red square"_s}));
}

TEST(TickerDisplayQueue, KeepsAnOriginAsItCame) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(named(u"a"_s), 0, {u"org.mail"_s, u"Mail"_s, 2.5, true, 42});
  display.addSign(named(u"b"_s), 0);
  const std::vector<QueuedSign> signs = display.queuedSigns(0);
  ASSERT_EQ(signs.size(), 2u);
  EXPECT_EQ(signs[0].origin.senderIdentifier, u"org.mail"_s);
  EXPECT_EQ(signs[0].origin.senderName, u"Mail"_s);
  EXPECT_EQ(signs[0].origin.priority, 2.5);
  EXPECT_TRUE(signs[0].origin.fades);
  EXPECT_EQ(signs[0].origin.actionData, QVariant(42));
  EXPECT_FALSE(signs[1].origin.actionData.isValid());
}

TEST(TickerDisplayQueue, ReplacesASignInItsPlaceWhateverItsPriority) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(named(u"a"_s), 0, from(u"one"_s));
  display.addSign(named(u"b"_s), 0, from(u"two"_s));
  EXPECT_TRUE(display.replaceSign(named(u"b"_s), 0));
  EXPECT_EQ(display.queuedSigns(0)[1].origin.senderIdentifier, u"two"_s) << "as before";
  const TickerDisplay::Entry b = display.replaceSign(named(u"b"_s), 0, from(u"three"_s, 7));
  EXPECT_EQ(display.queuedSigns(0)[1].entry, b);
  EXPECT_FALSE(display.replaceSign(named(u"nobody"_s), 0));
  EXPECT_EQ(rows(display, 0), u"a+ b+ "_s);
  EXPECT_EQ(display.queuedSigns(0)[1].origin.senderIdentifier, u"three"_s);
  EXPECT_EQ(display.queuedSigns(0)[1].origin.priority, 7);
}

TEST(TickerDisplayQueue, ReplacesAnEntryAndKeepsItsOrigin) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  const TickerDisplay::Entry a = display.addSign(named(u"a"_s), 0, from(u"one"_s));
  display.addSign(named(u"b"_s), 0);
  const TickerDisplay::Entry successor = display.replaceEntry(a, named(u"A"_s), 0);
  EXPECT_EQ(display.queuedSigns(0)[0].entry, successor);
  EXPECT_FALSE(display.replaceEntry(a, named(u"late"_s), 0)) << "it does not wait any more";
  EXPECT_EQ(rows(display, 0), u"A+ b+ "_s);
  EXPECT_EQ(display.queuedSigns(0)[0].origin.senderIdentifier, u"one"_s);
  EXPECT_FALSE(display.hasWaitingSign(u"a"_s, 0));
  EXPECT_TRUE(display.removeSign(u"A"_s, 0));
}

TEST(TickerDisplayQueue, RemovesEntriesWithAndWithoutIdentifiers) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(picture(20, 24, Qt::red), 0);
  display.addLine(u"line"_s, 0);
  const TickerDisplay::Entry first = display.addSign(named(u"same"_s), 0);
  display.addSign(named(u"same"_s), 0);
  const std::vector<QueuedSign> signs = display.queuedSigns(0);
  EXPECT_TRUE(display.removeEntry(signs[0].entry, 0));
  EXPECT_TRUE(display.removeEntry(signs[1].entry, 0));
  EXPECT_TRUE(display.removeEntry(first, 0));
  EXPECT_FALSE(display.removeEntry(first, 0));
  EXPECT_EQ(rows(display, 0), u"same+ "_s);
  EXPECT_TRUE(display.removeSign(u"same"_s, 0)) << "the other one is still known";
}

TEST(TickerDisplayQueue, MovesEntries) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  for (const QString& name : {u"a"_s, u"b"_s, u"c"_s})
    display.addSign(named(name), 0);
  display.addLine(u"line"_s, 0);
  const std::vector<QueuedSign> signs = display.queuedSigns(0);
  EXPECT_TRUE(display.moveEntry(signs[3].entry, signs[1].entry, 0));
  EXPECT_TRUE(display.moveEntry(signs[0].entry, nullptr, 0));
  EXPECT_EQ(rows(display, 0), u"line+ b+ c+ a+ "_s);
  display.advanceTo(10);
  EXPECT_FALSE(display.moveEntry(signs[1].entry, nullptr, 10)) << "it has gone";
}

TEST(TickerDisplayQueue, CountsTheSignsOfASender) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  const TickerDisplay::Entry first = display.addSign(named(u"a"_s), 0, from(u"x"_s));
  display.addSign(named(u"b"_s, Endless), 0, from(u"x"_s));
  display.addSign(named(u"c"_s), 0, from(u"y"_s));
  display.addSign(named(u"d"_s), 0);
  display.addLine(u"line"_s, 0);
  EXPECT_EQ(display.signCountOf(u"x"_s), 2u);
  EXPECT_EQ(display.signCountOf(u"y"_s), 1u);
  EXPECT_EQ(display.signCountOf(QString()), 1u) << "lines are not counted";
  EXPECT_EQ(display.signCountOf(u"nobody"_s), 0u);
  display.replaceSign(named(u"c"_s), 0, from(u"x"_s));
  EXPECT_EQ(display.signCountOf(u"x"_s), 3u);
  EXPECT_EQ(display.signCountOf(u"y"_s), 0u);
  display.advanceTo(40 / Speed);
  display.removeSign(u"b"_s, 40 / Speed);
  EXPECT_EQ(display.signCountOf(u"x"_s), 3u) << "two are on the strip";
  display.advanceTo(100);
  EXPECT_EQ(display.signCountOf(u"x"_s), 0u);
  ASSERT_TRUE(display.stepBack(100));
  ASSERT_TRUE(display.stepBack(101));
  display.advanceTo(101.1);
  EXPECT_GT(display.signCountOf(u"x"_s) + display.signCountOf(QString()), 0u)
      << "back on the strip";
}

TEST(TickerDisplayQueue, LosesCountOfNoSignThatCannotBeShown) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  display.addSign(ZQImageTickerSign::make(), 0, from(u"x"_s));
  EXPECT_EQ(display.signCountOf(u"x"_s), 1u);
  display.advanceTo(1);
  EXPECT_EQ(display.signCountOf(u"x"_s), 0u);
}

TEST(TickerDisplayQueue, TellsOfChangesByItsRevision) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  std::uint64_t last = display.queueRevision();
  const auto hasChanged = [&] { return std::exchange(last, display.queueRevision()) != last; };
  display.addSign(named(u"a"_s, 2), 0);
  EXPECT_TRUE(hasChanged());
  const auto text = display.makeTextSign(u"text"_s);
  text->setIdentifier(u"t"_s);
  const TickerDisplay::Entry entry = display.addSign(text, 0);
  EXPECT_TRUE(hasChanged());
  display.changeText(u"t"_s, u"other"_s, 0);
  EXPECT_TRUE(hasChanged());
  display.moveEntry(entry, nullptr, 0);
  EXPECT_TRUE(hasChanged());
  display.removeEntry(entry, 0);
  EXPECT_TRUE(hasChanged());
  display.advanceTo(0.1);
  EXPECT_TRUE(hasChanged()) << "a enters";
  display.advanceTo(0.2);
  display.queuedSigns(0.25);
  EXPECT_FALSE(hasChanged()) << "it moves only";
  display.replaceSign(named(u"a"_s, 2), 0.25);
  EXPECT_TRUE(hasChanged());
  display.removeSign(u"a"_s, 0.25);
  EXPECT_TRUE(hasChanged());
  display.advanceTo(10);
  EXPECT_TRUE(hasChanged()) << "it has left";
  display.stepBack(10);
  EXPECT_TRUE(hasChanged()) << "it is on the strip again";
}

TEST(TickerDisplayQueue, LetsPrioritiesBeAnyNumber) {
  TickerDisplay display;
  setUp(display, QSizeF(96, 24));
  constexpr double Infinity = std::numeric_limits<double>::infinity();
  display.addSign(named(u"never"_s), 0, from(u"x"_s, -Infinity));
  display.addSign(named(u"plain"_s), 0, from(u"x"_s, std::numeric_limits<double>::quiet_NaN()));
  display.addLine(u"line"_s, 0);
  display.addSign(named(u"now"_s), 0, from(u"x"_s, Infinity));
  EXPECT_EQ(rows(display, 0), u"now+ plain+ line+ never+ "_s);
}
