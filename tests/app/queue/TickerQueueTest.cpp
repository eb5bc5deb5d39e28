// The window's queue over a ticker, and the command that opens the window.
#include "app/queue/TickerQueue.h"

#include "app/bus/TickerService.h"
#include "app/queue/QueueWindow.h"
#include "app/ticker/Ticker.h"
#include "tests/app/Program.h"
#include "tests/app/XServer.h"
#include "tests/app/bus/FakeReceiver.h"
#include "tests/app/bus/PrivateBus.h"
#include "tests/app/queue/FakeQueue.h"
#include "tests/support/LogWatch.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
class QueueOfATicker : public ::testing::Test {
 protected:
  Strip::Entry add(const QString& text, std::int64_t loops = 1,
                   const Strip::Entry& before = nullptr) {
    const auto sign = queue.makeTextSign(text);
    sign->setLoopCount(loops);
    return queue.add(sign, SignOrigin(), before);
  }
  // Those that wait, since the first one enters the strip at once.
  QStringList waiting() {
    QStringList texts;
    for (const QueuedSign& row : queue.rows())
      if (!row.isOnStrip)
        texts.append(row.text);
    return texts;
  }
  QueuedSign rowOf(const Strip::Entry& entry) {
    for (const QueuedSign& row : queue.rows())
      if (row.entry == entry)
        return row;
    return QueuedSign();
  }

  static RunOptions options() {
    RunOptions options;
    options.showsControlBar = false;
    options.strip.speed = 1;
    return options;
  }

  Ticker ticker{options()};
  TickerQueue queue{ticker};
};
} // namespace

TEST_F(QueueOfATicker, AddsMovesAndRemovesWhatWaits) {
  add(u"runs"_s);
  ticker.display().advanceTo(ticker.time());
  add(u"a"_s);
  const Strip::Entry b = add(u"b"_s);
  EXPECT_EQ(waiting(), (QStringList{u"a"_s, u"b"_s}));
  const Strip::Entry c = add(u"c"_s, 1, b);
  EXPECT_EQ(waiting(), (QStringList{u"a"_s, u"c"_s, u"b"_s}));
  const std::uint64_t revision = queue.revision();
  EXPECT_TRUE(queue.move(c, nullptr));
  EXPECT_NE(queue.revision(), revision);
  EXPECT_EQ(waiting(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
  EXPECT_TRUE(queue.remove(b));
  EXPECT_FALSE(queue.remove(b));
  EXPECT_FALSE(queue.remove(nullptr));
  EXPECT_FALSE(queue.move(b, nullptr));
  EXPECT_FALSE(queue.move(c, c));
  EXPECT_EQ(waiting(), (QStringList{u"a"_s, u"c"_s}));
}

TEST_F(QueueOfATicker, LetsASignTakeThePlaceOfOneWithItsIdentifier) {
  add(u"runs"_s);
  ticker.display().advanceTo(ticker.time());
  const auto old = queue.makeTextSign(u"old"_s);
  old->setIdentifier(u"same"_s);
  queue.add(old, SignOrigin(), nullptr);
  add(u"after"_s);
  const auto sign = queue.makeTextSign(u"new"_s);
  sign->setIdentifier(u"same"_s);
  const Strip::Entry entry = queue.add(sign, SignOrigin(), nullptr);
  EXPECT_EQ(waiting(), (QStringList{u"new"_s, u"after"_s}));
  EXPECT_EQ(rowOf(entry).sign, sign);
}

TEST_F(QueueOfATicker, ChangesASignInItsPlace) {
  const Strip::Entry runs = add(u"runs"_s, 5);
  ticker.display().advanceTo(ticker.time());
  ASSERT_TRUE(rowOf(runs).isOnStrip);
  ASSERT_EQ(rowOf(runs).loopsLeft, 4);
  add(u"after"_s);
  const auto sign = queue.makeTextSign(u"changed"_s);
  const Strip::Entry changed = queue.replace(runs, sign, 7);
  EXPECT_EQ(rowOf(changed).sign, sign);
  EXPECT_EQ(rowOf(changed).loopsLeft, 7) << "the showing that has begun counts";
  const auto endless = queue.makeTextSign(u"endless"_s);
  EXPECT_TRUE(queue.replace(changed, endless, -1));
  EXPECT_EQ(endless->loopCount(), ZQEndlessLoopCount);
  EXPECT_FALSE(queue.replace(nullptr, endless, 1));
}

TEST_F(QueueOfATicker, TellsWhatFitsTheStrip) {
  EXPECT_EQ(queue.pictureRoom(), QSizeF(0, ticker.display().size().height()));
}

TEST_F(QueueOfATicker, IsShownByAWindow) {
  zq::testing::allowLog(u"propagateSizeHints"_s);
  add(u"line"_s);
  QueueWindow window(queue, QString());
  window.show();
  EXPECT_EQ(window.model().rowCount(), 1);
  window.editor().addText(u"more"_s, 2);
  EXPECT_EQ(window.model().rowCount(), 2);
  const QString edited = u"edited"_s;
  const QModelIndex index = window.model().index(1, QueueModel::TextColumn);
  EXPECT_TRUE(window.model().setData(index, edited, Qt::EditRole));
  EXPECT_EQ(window.model().queueRow(1).text, edited);
  EXPECT_EQ(window.model().queueRow(1).loopsLeft, 2);
}

TEST(QueueCommand, SaysThatThereIsNoBus) {
  const Outcome outcome = runZqticker({u"queue"_s});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "zqticker: queue: no session bus, so no running ticker can be asked\n");
}

TEST(QueueCommand, SaysThatNoTickerRuns) {
  if (!PrivateBus::isInstalled())
    GTEST_SKIP() << "dbus-daemon is not installed";
  const PrivateBus bus(PrivateBus::Activation::Ticker);
  const Outcome outcome = runZqticker({u"queue"_s}, {}, bus.environment());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "zqticker: queue: no ticker is running\n")
      << "none is started, to show an empty window";
}

TEST(QueueCommand, AsksTheRunningTicker) {
  if (!PrivateBus::isInstalled())
    GTEST_SKIP() << "dbus-daemon is not installed";
  const PrivateBus bus;
  TickerService service(bus.address());
  FakeReceiver receiver;
  service.setReceiver(&receiver);
  ASSERT_EQ(service.start(), TickerService::Start::IsOwner);
  RunningProgram program({u"queue"_s}, bus.environment());
  EXPECT_EQ(program.awaitStatus(), 0);
  EXPECT_EQ(receiver.queueCount, 1);
  EXPECT_EQ(program.process().readAllStandardError(), "");
}

TEST(QueueCommand, TakesNothing) {
  EXPECT_EQ(runZqticker({u"queue"_s, u"more"_s}).status, 2);
  EXPECT_EQ(runZqticker({u"queue"_s, u"--help"_s}).status, 0);
}
