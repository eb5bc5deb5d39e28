// The menu of a running ticker.
#include "app/settings/SettingsStore.h"
#include "app/settings/run_settings.h"
#include "app/ticker/Ticker.h"
#include "tests/app/XServer.h"
#include "tests/support/LogWatch.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtGui/QAction>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using zq::app::testing::waitUntil;

namespace {
class TickerMenu : public ::testing::Test {
 protected:
  TickerMenu() {
    zq::testing::allowLog(u"does not support raise()"_s);
    zq::testing::allowLog(u"does not support propagateSizeHints()"_s);
  }

  void start(const QStringList& arguments = {}) {
    ticker = std::make_unique<Ticker>(
        readRunOptionsOver(store.settings(), arguments + QStringList{u"--no-control-bar"_s}));
    ticker->follow(store);
    const auto sign = ZQTextTickerSign::make(QString(u"Hello"_s).repeated(200));
    sign->setLoopCount(ZQEndlessLoopCount);
    sign->setContinuousScrolling(true);
    ticker->show(sign);
    ASSERT_TRUE(waitUntil([&] { return !ticker->display().strip().runs().empty(); }));
  }
  StripMenu& menu() { return ticker->widget().menu(); }
  TickerDisplay& display() { return ticker->display(); }
  // As a program that starts now would have it.
  Settings kept() { return SettingsStore::peek(store.path()); }
  double place() {
    const auto& runs = display().strip().runs();
    return runs.empty() ? -1 : display().placeOf(runs.front());
  }

  QTemporaryDir folder;
  SettingsStore store{folder.filePath(u"settings.json"_s), folder.filePath(u"autostart"_s)};
  std::unique_ptr<Ticker> ticker;
};
} // namespace

TEST_F(TickerMenu, ChangesTheSpeedAtOnceAndForGood) {
  start();
  ASSERT_TRUE(waitUntil([&] { return display().strip().travel() > 5; }));
  const double before = place();
  menu().faster().trigger();
  EXPECT_EQ(place(), before) << "nothing jumps";
  EXPECT_EQ(display().speed(), 75);
  EXPECT_EQ(kept().speed, 75);
  menu().slower().trigger();
  menu().slower().trigger();
  EXPECT_EQ(display().speed(), 48);
  EXPECT_EQ(kept().speed, 48);
  menu().usualSpeed().trigger();
  EXPECT_EQ(display().speed(), 60);
}

TEST_F(TickerMenu, LeavesTheSettingsAloneWhereTheCommandLineHasSpoken) {
  start({u"--speed"_s, u"100"_s, u"--direction"_s, u"right"_s});
  menu().faster().trigger();
  menu().directionAction(ScrollDirection::Left).trigger();
  EXPECT_EQ(display().speed(), 125);
  EXPECT_EQ(display().direction(), ScrollDirection::Left);
  EXPECT_EQ(kept(), Settings());
  store.change({{u"height"_s, {u"40"_s}}});
  EXPECT_EQ(display().speed(), 125) << "what was chosen stays";
  EXPECT_EQ(display().direction(), ScrollDirection::Left);
  menu().usualSpeed().trigger();
  EXPECT_EQ(display().speed(), 100);
}

TEST_F(TickerMenu, TakesTheSpeedOfTheSettingsForTheUsualOne) {
  store.change({{u"speed"_s, {u"80"_s}}});
  start();
  menu().faster().trigger();
  menu().usualSpeed().trigger();
  EXPECT_EQ(display().speed(), 80);
  store.change({{u"speed"_s, {u"30"_s}}});
  menu().slower().trigger();
  menu().usualSpeed().trigger();
  EXPECT_EQ(display().speed(), 30);
}

TEST_F(TickerMenu, ChangesTheSpeedOfAPausedStripForLater) {
  start();
  menu().pause().setChecked(true);
  menu().faster().trigger();
  EXPECT_EQ(display().strip().speed(), 0);
  menu().pause().setChecked(false);
  EXPECT_EQ(display().strip().speed(), 75);
}

TEST_F(TickerMenu, TurnsTheStripWithoutAJump) {
  start();
  ASSERT_TRUE(waitUntil([&] { return display().strip().travel() > 5; }));
  menu().pause().setChecked(true);
  const double before = place();
  menu().directionAction(ScrollDirection::Right).trigger();
  EXPECT_EQ(display().direction(), ScrollDirection::Right);
  EXPECT_NEAR(place(), before, 1e-6);
  EXPECT_EQ(kept().direction, ScrollDirection::Right);
  EXPECT_TRUE(menu().directionAction(ScrollDirection::Right).isChecked());
  EXPECT_FALSE(menu().directionAction(ScrollDirection::Left).isChecked());
  EXPECT_EQ(menu().forward().shortcut(), QKeySequence(Qt::Key_Left));
}

TEST_F(TickerMenu, StandsTheStripUpright) {
  start({u"--height"_s, u"40"_s, u"--position"_s, u"top"_s});
  const QRect lying = ticker->widget().geometry();
  EXPECT_EQ(lying.height(), 40);
  menu().directionAction(ScrollDirection::Up).trigger();
  EXPECT_GT(ticker->widget().height(), 400) << "the height was that of a lying strip";
  EXPECT_EQ(ticker->widget().width(), 240);
  menu().directionAction(ScrollDirection::Left).trigger();
  EXPECT_EQ(ticker->widget().geometry(), lying);
}

TEST_F(TickerMenu, FollowsADirectionOfTheSettings) {
  start();
  store.change({{u"direction"_s, {u"down"_s}}});
  EXPECT_TRUE(menu().directionAction(ScrollDirection::Down).isChecked());
}

TEST_F(TickerMenu, KeepsWhatWasChosenWhereItCannotBeWritten) {
  start();
  ASSERT_TRUE(QFile::remove(store.path()) || !QFile::exists(store.path()));
  ASSERT_TRUE(QDir().mkpath(store.path() + u"/in the way"_s));
  ::testing::internal::CaptureStderr();
  menu().faster().trigger();
  const std::string told = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(told.find("settings.json"), std::string::npos) << told;
  EXPECT_EQ(display().speed(), 75);
}

TEST_F(TickerMenu, HidesTheStrip) {
  start();
  menu().hideStrip().trigger();
  EXPECT_TRUE(ticker->isStripHidden());
  EXPECT_FALSE(ticker->widget().isVisible());
  ticker->showStrip();
  EXPECT_TRUE(ticker->widget().isVisible());
}
