// The strip as assistive technology sees it.
#include "app/access/StripVoice.h"

#include "app/access/AccessibleStrip.h"
#include "tests/app/interaction/HandledStrip.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtGui/QAccessible>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
std::vector<std::string> told;

void note(QAccessibleEvent* event) {
  if (event->type() != QAccessible::ObjectShow || !event->accessibleInterface())
    return;
  if (event->accessibleInterface()->role() == QAccessible::Notification)
    told.push_back(event->accessibleInterface()->text(QAccessible::Name).toStdString());
}

class Voice : public HandledStrip {
 protected:
  Voice() {
    told.clear();
    // The platform without a screen has no assistive technology, and takes no events.
    voice = std::make_unique<StripVoice>(strip, display, opener, note);
    QAccessible::setActive(true);
  }
  ~Voice() override {
    voice.reset();
    QAccessible::setActive(false);
  }

  void addText(const QString& text, std::int64_t loopCount = ZQEndlessLoopCount,
               const QString& location = {}) {
    const auto sign = ZQTextTickerSign::make(text);
    sign->setLoopCount(loopCount);
    sign->setContinuousScrolling(true);
    if (!location.isEmpty()) {
      sign->setActionType(OpenLocation);
      sign->setActionString(location);
    }
    add(sign);
  }
  QAccessibleInterface* accessible() { return QAccessible::queryAccessibleInterface(&strip); }

  std::unique_ptr<StripVoice> voice;
};
} // namespace

TEST_F(Voice, NamesTheStripAndWhatIsInSight) {
  addText(u"Good morning"_s);
  show();
  QAccessibleInterface* ticker = accessible();
  ASSERT_NE(ticker, nullptr);
  EXPECT_EQ(ticker->role(), QAccessible::Animation);
  EXPECT_EQ(ticker->text(QAccessible::Name), u"Ticker"_s);
  EXPECT_TRUE(ticker->text(QAccessible::Value).startsWith(u"Good morning"_s));
  EXPECT_EQ(ticker->text(QAccessible::Description), ticker->text(QAccessible::Value));
  EXPECT_TRUE(ticker->state().marqueed);
  EXPECT_TRUE(ticker->state().animated);
  display.setPaged(true, strip.time());
  EXPECT_FALSE(ticker->state().marqueed);
  EXPECT_FALSE(ticker->state().animated);
}

TEST_F(Voice, HasTheSignsInSightAsChildren) {
  addText(u"Good morning"_s);
  show();
  QAccessibleInterface* ticker = accessible();
  ASSERT_GE(ticker->childCount(), 1);
  QAccessibleInterface* sign = ticker->child(0);
  ASSERT_NE(sign, nullptr);
  EXPECT_TRUE(sign->isValid());
  EXPECT_EQ(sign->role(), QAccessible::Notification);
  EXPECT_EQ(sign->text(QAccessible::Name), u"Good morning"_s);
  EXPECT_EQ(sign->parent(), ticker);
  EXPECT_EQ(ticker->indexOfChild(sign), 0);
  EXPECT_EQ(ticker->child(0), sign) << "the same object for the same showing";
  const QRect area = sign->rect();
  EXPECT_TRUE(ticker->rect().contains(area));
  EXPECT_EQ(ticker->childAt(area.center().x(), area.center().y()), sign);
  EXPECT_EQ(ticker->child(ticker->childCount()), nullptr);
  EXPECT_EQ(ticker->child(-1), nullptr);
}

TEST_F(Voice, PressesASignThatLeadsSomewhere) {
  addText(u"News of today"_s, ZQEndlessLoopCount, u"https://example.org/news"_s);
  show();
  QAccessibleActionInterface* actions = accessible()->child(0)->actionInterface();
  ASSERT_NE(actions, nullptr);
  ASSERT_EQ(actions->actionNames(), QStringList{QAccessibleActionInterface::pressAction()});
  actions->doAction(QAccessibleActionInterface::pressAction());
  ASSERT_EQ(opened.size(), 1u);
  EXPECT_EQ(opened.front(), QUrl(u"https://example.org/news"_s));
}

TEST_F(Voice, HasNoActionForASignThatLeadsNowhere) {
  addText(u"Good morning"_s);
  show();
  EXPECT_TRUE(accessible()->child(0)->actionInterface()->actionNames().isEmpty());
}

TEST_F(Voice, TellsEachSignOnceHoweverOftenItIsShown) {
  display.setSpeed(2000, strip.time());
  addText(u"Good morning"_s);
  show();
  const std::uint64_t first = display.strip().lastRun();
  ASSERT_TRUE(waitUntil([&] { return display.strip().lastRun() > first + 20; }));
  EXPECT_EQ(told, std::vector<std::string>{"Good morning"});
}

TEST_F(Voice, TellsTheNewestOfAFloodAndFew) {
  display.setPaged(true, 0);
  display.setSpeed(100'000, strip.time());
  strip.show();
  for (int i = 0; i < 1000; ++i)
    display.addLine(u"x%1"_s.arg(i), strip.time());
  strip.resize(40'000, 24);
  strip.displayChanged();
  ASSERT_TRUE(waitUntil([&] { return display.strip().lastRun() == 1000 && !told.empty(); }));
  EXPECT_LE(told.size(), 2u);
  EXPECT_TRUE(waitUntil([&] { return told.back() == "x999"; }));
}

TEST_F(Voice, ForgetsShowingsThatHaveLeft) {
  addText(u"Good morning"_s, 1);
  show();
  QAccessibleInterface* sign = accessible()->child(0);
  ASSERT_NE(sign, nullptr);
  const QAccessible::Id id = QAccessible::uniqueId(sign);
  display.setSpeed(5000, strip.time());
  ASSERT_TRUE(waitUntil([&] {
    strip.displayChanged();
    return display.strip().runs().empty();
  }));
  addText(u"next"_s);
  EXPECT_TRUE(waitUntil([&] { return QAccessible::accessibleInterface(id) == nullptr; }));
}

TEST_F(Voice, IsSilentWhileNothingListens) {
  QAccessible::setActive(false);
  addText(u"Good morning"_s);
  show();
  EXPECT_TRUE(told.empty());
  QAccessible::setActive(true);
  EXPECT_TRUE(told.empty()) << "what is there already is no news";
  addText(u"Good evening"_s);
  EXPECT_TRUE(waitUntil([&] { return !told.empty(); }));
  EXPECT_EQ(told.front(), "Good evening");
}

TEST_F(Voice, CutsTextsThatNobodyListensTo) {
  addText(QString(10'000, u'x'));
  show();
  const QString name = accessible()->child(0)->text(QAccessible::Name);
  EXPECT_EQ(name.size(), StripVoice::LongestText);
  EXPECT_TRUE(name.endsWith(QChar(u'\u2026')));
}
