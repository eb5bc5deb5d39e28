// The commands that ask the running ticker, over a bus of their own.
#include "tests/app/Program.h"
#include "tests/app/bus/BusTicker.h"

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
using TickerCommands = BusTicker;

Outcome runOnBus(const QStringList& arguments, const PrivateBus& bus) {
  RunningProgram program(arguments, bus.environment());
  const int status = program.awaitStatus();
  return {status, program.process().readAllStandardOutput(),
          program.process().readAllStandardError()};
}
} // namespace

TEST_F(TickerCommands, EndTheTicker) {
  const Outcome outcome = runOnBus({u"quit"_s}, *bus_);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(receiver_.quitCount, 1);
}

TEST_F(TickerCommands, OpenTheSettingsOfTheTicker) {
  if (!XServer::isInstalled())
    GTEST_SKIP() << "Xvfb is not installed";
  const XServer server(300, 200);
  ASSERT_FALSE(server.display().isEmpty());
  RunningProgram program({u"settings"_s}, bus_->environment(server.environment()));
  EXPECT_EQ(program.awaitStatus(), 0);
  EXPECT_EQ(program.process().readAllStandardError(), "");
  EXPECT_EQ(receiver_.settingsCount, 1);
}

TEST(TickerCommandsAlone, OpenAWindowInTheTickerThatRunsAndEndIt) {
  if (!PrivateBus::isInstalled() || !XServer::isInstalled())
    GTEST_SKIP() << "dbus-daemon or Xvfb is not installed";
  const PrivateBus bus;
  ASSERT_TRUE(bus.isRunning());
  const XServer server(800, 600);
  ASSERT_FALSE(server.display().isEmpty());
  RunningProgram ticker({u"run"_s, u"--stdin"_s}, bus.environment(server.environment()));
  zq::app::TickerClient client(bus.address());
  ASSERT_TRUE(waitUntil([&] { return client.hasTicker(); }));
  const auto middle = [&] { return server.screenshot().copy(200, 100, 400, 400); };
  const QImage before = middle();
  RunningProgram settings({u"settings"_s}, bus.environment(server.environment()));
  EXPECT_EQ(settings.awaitStatus(), 0);
  EXPECT_EQ(settings.process().readAllStandardError(), "");
  EXPECT_TRUE(waitUntil([&] { return middle() != before; }));
  EXPECT_EQ(runOnBus({u"quit"_s}, bus).status, 0);
  EXPECT_EQ(ticker.awaitStatus(), 0);
}

TEST(TickerCommandsAlone, SayThatNoTickerRuns) {
  if (!PrivateBus::isInstalled())
    GTEST_SKIP() << "dbus-daemon is not installed";
  const PrivateBus bus;
  ASSERT_TRUE(bus.isRunning());
  const Outcome outcome = runOnBus({u"quit"_s}, bus);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "zqticker: quit: no ticker is running\n");
  EXPECT_EQ(runZqticker({u"quit"_s}).errors,
            "zqticker: quit: no session bus, so no running ticker can be asked\n");
}
