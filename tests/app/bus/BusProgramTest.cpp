// The program on a bus and a screen: started by the bus, a second time, and without a bus.
#include "app/bus/TickerClient.h"
#include "app/bus/bus_names.h"
#include "tests/app/Program.h"
#include "tests/app/XServer.h"
#include "tests/app/bus/PrivateBus.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <list>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
constexpr int Width = 640;
constexpr int Height = 400;
constexpr int StripHeight = 24;

class BusProgram : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled() || !PrivateBus::isInstalled())
      GTEST_SKIP() << "Xvfb or dbus-daemon is not installed";
    server_.emplace(Width, Height);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
    bus_.emplace(PrivateBus::Activation::Ticker, server_->environment());
    ASSERT_TRUE(bus_->isRunning());
    client_.emplace(bus_->address());
    client_->setStartsTicker(false);
  }
  void TearDown() override {
    // One that the bus has started ends too.
    if (client_ && client_->hasTicker())
      client_->quit();
  }

  QProcessEnvironment environment() const { return bus_->environment(server_->environment()); }

  // A picture as high as the strip, in the folder of the test.
  QString picture(const QString& name, QColor color) {
    QImage image(2 * StripHeight, StripHeight, QImage::Format_RGB32);
    image.fill(color);
    EXPECT_TRUE(image.save(folder_.filePath(name)));
    return folder_.filePath(name);
  }
  QByteArray png(QColor color) {
    QFile file(picture(u"sent.png"_s, color));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  // Whether the color is seen on the strip, now or soon.
  bool isSeen(QColor color) {
    return waitUntil([&] {
      const QImage screen = server_->screenshot();
      for (int y = Height - StripHeight; y < Height; ++y)
        for (int x = 0; x < Width; ++x)
          if ((screen.pixel(x, y) & 0xffffff) == (color.rgb() & 0xffffff))
            return true;
      return false;
    });
  }
  // Whether black text is seen on the white strip, now or soon.
  bool isTextSeen() {
    return waitUntil([&] {
      const QImage screen = server_->screenshot();
      bool hasInk = false;
      for (int x = 0; x < Width; ++x) {
        if ((screen.pixel(x, Height - 1) & 0xffffff) != 0xffffff)
          return false;
        hasInk = hasInk || (screen.pixel(x, Height - StripHeight / 2) & 0xffffff) == 0;
      }
      return hasInk;
    });
  }
  bool waitForTicker() {
    return waitUntil([&] { return client_->hasTicker(); });
  }

  // `zqticker run` to its end, in the folder of the test.
  Outcome runAgain(const QStringList& arguments, const QByteArray& input = {}) {
    return runCommand(u"run"_s, arguments, input);
  }
  Outcome runCommand(const QString& command, const QStringList& arguments = {},
                     const QByteArray& input = {}) {
    QProcess process;
    process.setProcessEnvironment(environment());
    process.setWorkingDirectory(folder_.path());
    process.start(QStringLiteral(ZQTICKER_PROGRAM), QStringList{command} + arguments);
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(waitUntil([&] { return process.state() == QProcess::NotRunning; }));
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput(), process.readAllStandardError()};
  }

  QTemporaryDir folder_;
  std::optional<XServer> server_;
  std::optional<PrivateBus> bus_;
  std::optional<TickerClient> client_;
};
} // namespace

TEST_F(BusProgram, IsStartedByAMessage) {
  EXPECT_FALSE(client_->hasTicker());
  client_->setStartsTicker(true);
  const BusReply reply =
      client_->displayMessage({{u"image"_s, png(Qt::red)}, {u"identifier"_s, u"news"_s}});
  EXPECT_TRUE(reply.ok) << reply.errorMessage.toStdString();
  EXPECT_EQ(reply.identifier, u"news"_s);
  EXPECT_TRUE(isSeen(Qt::red));
  EXPECT_TRUE(client_->quit().ok);
  EXPECT_TRUE(waitUntil([&] { return !client_->hasTicker(); }));
}

TEST_F(BusProgram, IsStartedAndToldByAStranger) {
  if (!XServer::hasProgram(u"gdbus"_s))
    GTEST_SKIP() << "gdbus is not installed";
  QProcess gdbus;
  gdbus.setProcessEnvironment(bus_->environment());
  gdbus.start(u"gdbus"_s,
              {u"call"_s, u"--session"_s, u"--dest"_s, TickerBusName, u"--object-path"_s,
               TickerObjectPath, u"--method"_s, u"org.zqticker.Ticker1.DisplayMessage"_s,
               u"{'text': <'Hello from far away'>, 'identifier': <'g'>, 'loopCount': <-1>}"_s});
  ASSERT_TRUE(waitUntil([&] { return gdbus.state() == QProcess::NotRunning; }));
  EXPECT_EQ(gdbus.readAllStandardOutput(), "('g',)\n");
  EXPECT_TRUE(isTextSeen());
}

TEST_F(BusProgram, WaitsHiddenForMessages) {
  RunningProgram program({u"run"_s, u"--no-window"_s}, environment());
  ASSERT_TRUE(waitForTicker());
  EXPECT_TRUE(program.isRunning());
  ASSERT_TRUE(client_->displayMessage({{u"image"_s, png(Qt::red)}}).ok);
  EXPECT_TRUE(isSeen(Qt::red));
  program.interrupt(SIGTERM);
  EXPECT_EQ(program.awaitStatus(), 0);
  EXPECT_EQ(program.process().readAllStandardError(), "");
}

TEST_F(BusProgram, RefusesWhatIsWrongAndGoesOn) {
  RunningProgram program({}, environment());
  ASSERT_TRUE(waitForTicker());
  const BusReply message = client_->displayMessage({{u"text"_s, 1}});
  EXPECT_EQ(message.errorName, InvalidMessageErrorName);
  EXPECT_TRUE(message.errorMessage.startsWith(u"text: "_s)) << message.errorMessage.toStdString();
  EXPECT_EQ(client_->displaySign("no archive").errorName, InvalidSignErrorName);
  EXPECT_FALSE(client_->removeSign(u"nothing"_s).removed);
  EXPECT_TRUE(client_->displayMessage({{u"text"_s, u"Hello"_s}}).ok);
  EXPECT_TRUE(program.isRunning());
}

TEST_F(BusProgram, TakesSignsOutAgain) {
  RunningProgram program({}, environment());
  ASSERT_TRUE(waitForTicker());
  ASSERT_TRUE(client_
                  ->displayMessage({{u"image"_s, png(Qt::red)},
                                    {u"identifier"_s, u"a"_s},
                                    {u"loopCount"_s, ZQEndlessLoopCount}})
                  .ok);
  EXPECT_TRUE(client_->removeSign(u"a"_s).removed);
  EXPECT_FALSE(client_->removeSign(u"a"_s).removed);
}

TEST_F(BusProgram, GivesTheMemoryOfALargePictureBack) {
  QProcessEnvironment environment = this->environment();
  // The address sanitizer would keep what is freed, to find who uses it still.
  environment.insert(u"ASAN_OPTIONS"_s,
                     environment.value(u"ASAN_OPTIONS"_s) + u":quarantine_size_mb=0"_s);
  RunningProgram program({}, environment);
  ASSERT_TRUE(waitForTicker());
  const qint64 before = program.kilobytes("VmRSS");
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(client_->displayMessage({{u"image"_s, QByteArray(50 << 20, 'x')}}).errorName,
              TooMuchErrorName);
  int replies = 0;
  for (int i = 0; i < 8; ++i)
    client_->displayMessage({{u"image"_s, QByteArray(50 << 20, 'x')}}, [&](const BusReply& reply) {
      EXPECT_EQ(reply.errorName, TooMuchErrorName);
      ++replies;
    });
  EXPECT_TRUE(waitUntil([&] { return replies == 8; })) << "a flood of them";
  EXPECT_TRUE(client_->displayMessage({{u"text"_s, u"Hello"_s}}).ok);
  EXPECT_TRUE(waitUntil([&] { return program.kilobytes("VmRSS") < before + 30'000; }))
      << before << " kB became " << program.kilobytes("VmRSS");
}

TEST_F(BusProgram, HandsOverToTheOneThatRuns) {
  RunningProgram first({u"--text"_s, u"Hello"_s}, environment());
  ASSERT_TRUE(waitForTicker());
  picture(u"red.png"_s, Qt::red);
  const Outcome second = runAgain({u"--image"_s, u"red.png"_s});
  EXPECT_EQ(second.status, 0);
  EXPECT_EQ(second.output, "");
  EXPECT_EQ(second.errors, "");
  EXPECT_TRUE(isSeen(Qt::red)) << "its paths begin in its own folder";
  EXPECT_TRUE(first.isRunning());
}

TEST_F(BusProgram, HandsOverItsStandardInput) {
  RunningProgram first({}, environment());
  ASSERT_TRUE(waitForTicker());
  const Outcome second = runAgain({u"--stdin"_s, u"--loop"_s, u"forever"_s}, "HHHHHHHHHHHHH\n");
  EXPECT_EQ(second.status, 0) << second.errors.toStdString();
  EXPECT_TRUE(isTextSeen());
}

TEST_F(BusProgram, SaysWhatTheOneThatRunsHasAgainstIt) {
  RunningProgram first({}, environment());
  ASSERT_TRUE(waitForTicker());
  const Outcome second = runAgain({u"--image"_s, u"missing.png"_s});
  EXPECT_EQ(second.status, 1);
  EXPECT_EQ(second.output, "");
  EXPECT_TRUE(second.errors.startsWith("zqticker: ")) << second.errors.toStdString();
  EXPECT_TRUE(second.errors.contains("missing.png")) << second.errors.toStdString();
  EXPECT_EQ(second.errors.count('\n'), 1);
  EXPECT_TRUE(first.isRunning());
}

TEST_F(BusProgram, MayBeSeparate) {
  RunningProgram first({}, environment());
  ASSERT_TRUE(waitForTicker());
  picture(u"red.png"_s, Qt::red);
  RunningProgram second({u"--separate"_s, u"--image"_s, folder_.filePath(u"red.png"_s)},
                        environment());
  EXPECT_TRUE(isSeen(Qt::red));
  first.interrupt(SIGTERM);
  EXPECT_EQ(first.awaitStatus(), 0);
  EXPECT_FALSE(client_->hasTicker());
  EXPECT_TRUE(second.isRunning());
  const Outcome nothing = runAgain({u"--separate"_s});
  EXPECT_EQ(nothing.status, 2) << "nobody could send it anything";
}

TEST_F(BusProgram, IsOneOfSeveralThatStartAtOnce) {
  std::list<RunningProgram> programs;
  for (int i = 0; i < 5; ++i)
    programs.emplace_back(QStringList{u"--text"_s, u"Hello %1"_s.arg(i)}, environment());
  const auto running = [&] {
    return std::count_if(programs.begin(), programs.end(),
                         [](const RunningProgram& program) { return program.isRunning(); });
  };
  ASSERT_TRUE(waitUntil([&] { return running() == 1; }));
  EXPECT_TRUE(client_->hasTicker());
  for (RunningProgram& program : programs)
    if (!program.isRunning()) {
      EXPECT_EQ(program.process().exitCode(), 0);
      EXPECT_EQ(program.process().readAllStandardError(), "");
    }
  EXPECT_TRUE(client_->quit().ok);
  EXPECT_TRUE(waitUntil([&] { return running() == 0; }));
}

TEST_F(BusProgram, EndsOnRequest) {
  EXPECT_EQ(runCommand(u"quit"_s).errors.toStdString(), "zqticker: quit: no ticker is running\n");
  RunningProgram first({u"run"_s, u"--no-window"_s}, environment());
  ASSERT_TRUE(waitForTicker());
  EXPECT_EQ(runCommand(u"quit"_s).status, 0);
  EXPECT_EQ(first.awaitStatus(), 0);
}

TEST_F(BusProgram, OpensTheQueueWhereItHasNothingToShow) {
  const auto hasWindow = [&] {
    QProcess search;
    search.setProcessEnvironment(environment());
    search.start(u"xdotool"_s, {u"search"_s, u"--onlyvisible"_s, u"--name"_s, u"Ticker Queue"_s});
    search.waitForFinished();
    return search.exitCode() == 0;
  };
  if (!XServer::hasProgram(u"xdotool"_s))
    GTEST_SKIP() << "xdotool is not installed";
  RunningProgram first({u"run"_s, u"--no-window"_s}, environment());
  ASSERT_TRUE(waitForTicker());
  EXPECT_FALSE(hasWindow());
  EXPECT_EQ(runAgain({}).status, 0);
  EXPECT_TRUE(waitUntil(hasWindow));
}

TEST_F(BusProgram, OutlivesTheBus) {
  RunningProgram program({}, environment());
  ASSERT_TRUE(waitForTicker());
  ASSERT_TRUE(
      client_->displayMessage({{u"image"_s, png(Qt::red)}, {u"loopCount"_s, ZQEndlessLoopCount}})
          .ok);
  bus_->stop();
  EXPECT_TRUE(isSeen(Qt::red)) << "the strip goes on";
  bus_->start();
  ASSERT_TRUE(waitForTicker());
  EXPECT_TRUE(client_->displayMessage({{u"image"_s, png(Qt::blue)}}).ok);
  EXPECT_TRUE(isSeen(Qt::blue));
  EXPECT_TRUE(program.isRunning());
  EXPECT_EQ(program.process().readAllStandardError(), "");
}

TEST_F(BusProgram, SaysOnceThatThereIsNoBus) {
  QProcessEnvironment alone = server_->environment();
  alone.remove(u"DBUS_SESSION_BUS_ADDRESS"_s);
  alone.remove(u"XDG_RUNTIME_DIR"_s);
  picture(u"red.png"_s, Qt::red);
  RunningProgram program({u"--image"_s, folder_.filePath(u"red.png"_s)}, alone);
  EXPECT_TRUE(isSeen(Qt::red)) << "everything else works";
  program.interrupt(SIGTERM);
  EXPECT_EQ(program.awaitStatus(), 0);
  EXPECT_EQ(program.process().readAllStandardError(),
            "zqticker: no session bus: messages from other programs cannot be received\n");
  const Outcome nothing = runZqticker({u"run"_s}, {}, alone);
  EXPECT_EQ(nothing.status, 2);
  EXPECT_TRUE(nothing.errors.startsWith("zqticker: nothing to show"));
}
