// A strip whose own connection to the X server, beside that of Qt, is lost.
#include "tests/app/Probe.h"
#include "tests/app/x11/StripOnDesk.h"

#include <gtest/gtest.h>

#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int Width = 1000;
constexpr int Height = 400;
const QRect Docked(0, 376, Width, 24);

class LostConnection : public StripOnDesk {
 protected:
  LostConnection() : StripOnDesk(QSize(Width, Height)) {}

  void start(const QStringList& more = {}) {
    ticker_.emplace(QStringLiteral(ZQTICKER_TICKER_PROBE), strip(more), *server_);
  }
  bool loses() {
    ticker_->tell(u"lose"_s);
    return waitUntil([&] { return ticker_->hasSaid(u"lost"_s); });
  }

  std::optional<Probe> ticker_;
};
} // namespace

TEST_F(LostConnection, LeavesRoomForPanelsThatComeLater) {
  start();
  ASSERT_TRUE(stripIsAt(Docked));
  ASSERT_TRUE(loses());
  ASSERT_NO_FATAL_FAILURE(startPanel(40));
  EXPECT_TRUE(stripIsAt(Docked.translated(0, -40)));
  ticker_->forget();
  ASSERT_TRUE(loses()) << "once more";
  endOther();
  EXPECT_TRUE(stripIsAt(Docked));
}

TEST_F(LostConnection, KnowsScreensThatWentAndCameBackUnseen) {
  desk_->setMonitor(u"LEFT"_s, QRect(0, 0, 600, Height), u"screen"_s);
  desk_->setMonitor(u"RIGHT"_s, QRect(600, 0, 400, Height), u"none"_s);
  start({u"--screen"_s, u"RIGHT"_s});
  ASSERT_TRUE(stripIsAt(QRect(600, 376, 400, 24)));
  ASSERT_TRUE(loses());
  ticker_->interrupt(SIGSTOP);
  desk_->removeMonitor(u"RIGHT"_s);
  desk_->setMonitor(u"RIGHT"_s, QRect(600, 0, 200, 300), u"none"_s);
  ticker_->interrupt(SIGCONT);
  EXPECT_TRUE(stripIsAt(QRect(600, 276, 200, 24)));
}

TEST_F(LostConnection, DoesNotLeaveAStripStandingThatWasCovered) {
  start();
  ASSERT_TRUE(waitUntil([&] { return ticker_->hasSaid(u"in"_s); }));
  Probe cover(QStringLiteral(ZQTICKER_SIGHT_PROBE),
              {u"cover"_s, u"0"_s, u"370"_s, QString::number(Width), u"30"_s}, *server_);
  ASSERT_TRUE(waitUntil([&] { return ticker_->hasSaid(u"out"_s); }));
  ticker_->forget();
  ASSERT_TRUE(loses());
  EXPECT_TRUE(waitUntil([&] { return ticker_->hasSaid(u"in"_s); }));
}
