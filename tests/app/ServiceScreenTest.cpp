// Services as programs, and the real ticker on a real X server.
#include "app/bus/TickerClient.h"
#include "tests/app/FeedDocument.h"
#include "tests/app/LogFile.h"
#include "tests/app/Program.h"
#include "tests/app/XServer.h"
#include "tests/app/bus/PrivateBus.h"
#include "tests/support/HttpServer.h"

#include <QtCore/QBuffer>
#include <QtGui/QImage>

#include <gtest/gtest.h>

#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using zq::testing::HttpServer;

namespace {
constexpr int Width = 640;
constexpr int Height = 400;
constexpr QRgb Red = 0xff0000;

class ServiceScreen : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateBus::isInstalled() || !XServer::isInstalled())
      GTEST_SKIP() << "dbus-daemon or Xvfb is not installed";
    screen.emplace(Width, Height);
    ASSERT_FALSE(screen->display().isEmpty()) << "Xvfb does not start";
    QImage image(60, 48, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    ASSERT_TRUE(buffer.open(QIODevice::WriteOnly) && image.save(&buffer, "png"));
    server.route("/red.png", 200, bytes);
    server.route("/feed", 200, rss({{"1", "First", "red.png"}}),
                 {{"Content-Type", "application/rss+xml"}});
  }
  void startBus(PrivateBus::Activation activation = PrivateBus::Activation::None) {
    bus.emplace(activation, own(screen->environment()));
    ASSERT_TRUE(bus->isRunning());
    client.emplace(bus->address());
    client->setStartsTicker(false);
  }
  void startTicker() {
    ticker.emplace(QStringList{u"run"_s, u"--speed"_s, u"300"_s, u"--color"_s, u"red"_s,
                               u"--font"_s, u"DejaVu Sans Bold 18"_s},
                   bus->environment(own(screen->environment())));
    ASSERT_TRUE(waitUntil([this] { return client->hasTicker(); }));
  }
  void startService(const QStringList& arguments) {
    program.emplace(QStringList{u"service"_s} + arguments,
                    bus->environment(own(plainEnvironment())));
  }
  void startFeed(const QStringList& options = {}) {
    startService(QStringList{u"feed"_s, u"--continuous"_s} + options +
                 QStringList{server.url("/feed").toString()});
  }

  // Whether red is in the lowest rows, where the strip is.
  bool isRedInSight() const {
    const QImage shot = screen->screenshot();
    for (int y = Height - 24; y < Height; ++y)
      for (int x = 0; x < Width; ++x)
        if ((shot.pixel(x, y) & 0xffffff) == Red)
          return true;
    return false;
  }

  // The user's cache and settings are folders of this test.
  QProcessEnvironment own(QProcessEnvironment environment) const {
    environment.insert(u"XDG_CACHE_HOME"_s, folder.filePath(u"cache"_s));
    environment.insert(u"XDG_CONFIG_HOME"_s, folder.filePath(u"config"_s));
    return environment;
  }

  QTemporaryDir folder;
  HttpServer server;
  std::optional<XServer> screen;
  std::optional<PrivateBus> bus;
  std::optional<TickerClient> client;
  std::optional<RunningProgram> ticker;
  std::optional<RunningProgram> program;
};
} // namespace

TEST_F(ServiceScreen, ShowsAFeedAgainWhenTheTickerIsKilledAndStarted) {
  startBus();
  startTicker();
  EXPECT_FALSE(isRedInSight());
  startFeed();
  ASSERT_TRUE(waitUntil([this] { return isRedInSight(); }));
  ticker->interrupt(SIGKILL);
  ticker->awaitStatus();
  ASSERT_TRUE(waitUntil([this] { return !isRedInSight(); }));
  startTicker();
  EXPECT_TRUE(waitUntil([this] { return isRedInSight(); }));
  program->interrupt(SIGTERM);
  EXPECT_EQ(program->awaitStatus(), 0);
  EXPECT_TRUE(waitUntil([this] { return !isRedInSight(); })) << "it takes its signs back";
  EXPECT_TRUE(ticker->isRunning());
  EXPECT_EQ(ticker->process().readAllStandardError(), "");
}

TEST_F(ServiceScreen, ShowsAFeedAgainWhenTheBusComesBack) {
  startBus();
  startTicker();
  startFeed({u"--keep"_s});
  ASSERT_TRUE(waitUntil([this] { return isRedInSight(); }));
  bus->stop();
  bus->start();
  ASSERT_TRUE(waitUntil([this] {
    return program->process().readAllStandardError().contains("the ticker is there\n");
  }));
  EXPECT_TRUE(waitUntil([this] { return isRedInSight(); }));
  EXPECT_TRUE(program->isRunning());
}

TEST_F(ServiceScreen, ShowsLinesInTheColorOfTheTicker) {
  startBus();
  startTicker();
  LogFile log;
  log.write("A first line\n");
  startService({u"tail"_s, log.path()});
  ASSERT_TRUE(waitUntil([this] { return isRedInSight(); }));
  ASSERT_TRUE(waitUntil([this] { return !isRedInSight(); })) << "once";
  log.write("A second line\n");
  EXPECT_TRUE(waitUntil([this] { return isRedInSight(); }));
}

TEST_F(ServiceScreen, ShowsWhatHappensToFiles) {
  startBus();
  startTicker();
  LogFile log;
  log.write("a");
  startService({u"watch"_s, log.path()});
  // A write before the watch begins is not told; this goes on until one is.
  EXPECT_TRUE(waitUntil([&] {
    log.write("a");
    return isRedInSight();
  }));
}

TEST_F(ServiceScreen, StartsTheTickerWhereItIsToldTo) {
  startBus(PrivateBus::Activation::Ticker);
  startFeed({u"--start"_s});
  EXPECT_TRUE(waitUntil([this] { return isRedInSight(); }));
  client->quit();
  EXPECT_TRUE(waitUntil([this] {
    return program->process().readAllStandardError() ==
           "zqticker: the ticker has gone, waiting for it\n";
  }));
  EXPECT_FALSE(client->hasTicker()) << "it is not started a second time";
}
