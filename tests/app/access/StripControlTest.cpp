// Pausing, hiding and focusing the running strip from elsewhere.
#include "app/display/StripWidget.h"
#include "app/ticker/Ticker.h"
#include "tests/app/Program.h"
#include "tests/app/XServer.h"
#include "tests/app/bus/BusTicker.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtGui/QAction>
#include <QtGui/QWindow>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
const QStringList Commands{u"pause"_s, u"resume"_s, u"hide"_s, u"show"_s, u"focus"_s};

using StripControlCommands = BusTicker;

class StripControl : public ::testing::Test {
 protected:
  StripControl() {
    // The platform without a screen says so of every window that stays on top.
    zq::testing::allowLog(u"does not support raise()"_s);
    zq::testing::allowLog(u"does not support propagateSizeHints()"_s);
  }

  static RunOptions options() {
    RunOptions options;
    options.showsControlBar = false;
    return options;
  }
  void showText(std::int64_t loopCount = ZQEndlessLoopCount) {
    const auto sign = ZQTextTickerSign::make(u"Hello"_s);
    sign->setLoopCount(loopCount);
    ticker.show(sign);
  }
  // Once what is queued has had its effect.
  bool settles() {
    bool isDone = false;
    const auto change =
        QObject::connect(&ticker, &Ticker::changed, &ticker, [&] { isDone = true; });
    ticker.displayChanged();
    const bool settled = waitUntil([&] { return isDone; });
    QObject::disconnect(change);
    return settled;
  }
  bool isShown() { return ticker.widget().isVisible(); }

  Ticker ticker{options()};
};
} // namespace

TEST_F(StripControlCommands, AskTheTicker) {
  for (const QString& command : Commands) {
    RunningProgram program({command}, bus_->environment());
    EXPECT_EQ(program.awaitStatus(), 0) << command.toStdString();
    EXPECT_EQ(program.process().readAllStandardError(), "");
  }
  EXPECT_EQ(receiver_.asked, Commands);
}

TEST(StripControlCommandsAlone, SayInOneLineThatNoTickerRunsAndStartNone) {
  if (!PrivateBus::isInstalled())
    GTEST_SKIP() << "dbus-daemon is not installed";
  const PrivateBus bus(PrivateBus::Activation::Ticker);
  ASSERT_TRUE(bus.isRunning());
  for (const QString& command : Commands) {
    RunningProgram program({command}, bus.environment());
    EXPECT_EQ(program.awaitStatus(), 1) << command.toStdString();
    EXPECT_EQ(program.process().readAllStandardError().toStdString(),
              "zqticker: " + command.toStdString() + ": no ticker is running\n");
  }
  EXPECT_FALSE(TickerClient(bus.address()).hasTicker());
}

TEST(StripControlCommandsAlone, SayInOneLineThatThereIsNoBus) {
  for (const QString& command : Commands) {
    const Outcome outcome = runZqticker({command});
    EXPECT_EQ(outcome.status, 1) << command.toStdString();
    EXPECT_EQ(outcome.errors.toStdString(),
              "zqticker: " + command.toStdString() +
                  ": no session bus, so no running ticker can be asked\n");
    EXPECT_EQ(runZqticker({command, u"now"_s}).status, 2);
  }
}

TEST_F(StripControl, PausesAsTheMenuDoes) {
  showText();
  ticker.setPaused(true);
  EXPECT_TRUE(ticker.widget().menu().pause().isChecked());
  EXPECT_TRUE(ticker.display().isPaused());
  ticker.setPaused(true);
  EXPECT_TRUE(ticker.display().isPaused());
  ticker.setPaused(false);
  EXPECT_FALSE(ticker.widget().menu().pause().isChecked());
  EXPECT_FALSE(ticker.display().isPaused());
}

TEST_F(StripControl, StaysHiddenWhateverComes) {
  showText();
  ASSERT_TRUE(waitUntil([&] { return isShown(); }));
  ticker.hideStrip();
  EXPECT_FALSE(isShown());
  showText();
  ASSERT_TRUE(settles());
  EXPECT_FALSE(isShown());
  EXPECT_EQ(ticker.display().queuedSigns(ticker.time()).size(), 2u) << "nothing is lost";
  ticker.showStrip();
  EXPECT_TRUE(isShown());
}

TEST_F(StripControl, StandsStillWhileItIsHidden) {
  showText();
  ASSERT_TRUE(waitUntil([&] { return ticker.display().isMoving(); }));
  ticker.hideStrip();
  EXPECT_FALSE(ticker.widget().player().clock().isRunning());
  const double then = ticker.time();
  const double travel = ticker.display().strip().travel();
  EXPECT_TRUE(settles());
  EXPECT_EQ(ticker.time(), then);
  EXPECT_EQ(ticker.display().strip().travel(), travel);
  ticker.showStrip();
  EXPECT_TRUE(waitUntil([&] { return ticker.display().strip().travel() > travel; }));
}

TEST_F(StripControl, DoesNotFinishWhileWhatIsToBeShownIsHidden) {
  int finishedCount = 0;
  QObject::connect(&ticker, &Ticker::finished, &ticker, [&] { ++finishedCount; });
  ticker.hideStrip();
  showText(1);
  ASSERT_TRUE(settles());
  EXPECT_EQ(finishedCount, 0);
  ticker.display().setSpeed(10'000, ticker.time());
  ticker.showStrip();
  EXPECT_TRUE(waitUntil([&] { return finishedCount > 0; }));
}

TEST_F(StripControl, ShowsAgainOnlyWhatHasSomethingToShow) {
  ticker.hideStrip();
  ticker.showStrip();
  EXPECT_FALSE(isShown());
}

TEST_F(StripControl, TakesNoFocusWhereThereIsNothingToShow) {
  EXPECT_FALSE(ticker.focusStrip());
  EXPECT_FALSE(isShown());
}

TEST_F(StripControl, ComesBackForTheFocus) {
  showText();
  ticker.hideStrip();
  EXPECT_TRUE(ticker.focusStrip());
  EXPECT_TRUE(isShown());
  EXPECT_FALSE(ticker.isStripHidden());
}

TEST_F(StripControl, AcceptsTheFocusOnlyWhenAsked) {
  showText();
  ASSERT_TRUE(waitUntil([&] { return isShown(); }));
  const auto accepts = [&] {
    return !ticker.widget().windowHandle()->flags().testFlag(Qt::WindowDoesNotAcceptFocus);
  };
  EXPECT_FALSE(accepts());
  EXPECT_TRUE(ticker.focusStrip());
  EXPECT_TRUE(waitUntil([&] { return ticker.widget().keyboard().isTaken(); }));
  EXPECT_TRUE(accepts());
  ticker.hideStrip();
  EXPECT_TRUE(waitUntil([&] { return !ticker.widget().keyboard().isTaken(); }));
  EXPECT_FALSE(accepts());
}
