// The program with feeds: on a real X server, and without a display.
#include "tests/app/FeedDocument.h"
#include "tests/app/Program.h"
#include "tests/app/XServer.h"
#include "tests/support/HttpServer.h"

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>

#include <gtest/gtest.h>

#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;
using zq::testing::HttpLatch;
using zq::testing::HttpReply;
using zq::testing::HttpRequest;
using zq::testing::HttpServer;

namespace {
constexpr int Width = 640;
constexpr int Height = 400;
constexpr QRgb Red = 0xff0000;
constexpr QRgb Blue = 0x0000ff;

QByteArray png(QColor color) {
  QImage image(60, 48, QImage::Format_RGB32);
  image.fill(color);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  EXPECT_TRUE(image.save(&buffer, "png"));
  return bytes;
}

int firstColumn(const QImage& image, int y, QRgb color) {
  for (int x = 0; x < image.width(); ++x)
    if ((image.pixel(x, y) & 0xffffff) == color)
      return x;
  return -1;
}

class FeedProgram : public ::testing::Test {
 protected:
  void SetUp() override {
    server.route("/red.png", 200, png(Qt::red));
    server.route("/blue.png", 200, png(Qt::blue));
    publish({{"1", "First item", "red.png"}, {"2", "Second item"}});
  }

  void publish(const std::vector<WrittenItem>& items) {
    server.route("/feed", 200, rss(items), {{"Content-Type", "application/rss+xml"}});
  }
  QString url(const QByteArray& path = "/feed") const { return server.url(path).toString(); }

  // The user's cache is a folder of this test.
  QProcessEnvironment with(QProcessEnvironment environment) const {
    environment.insert(u"XDG_CACHE_HOME"_s, folder.filePath(u"cache"_s));
    return environment;
  }
  Outcome render(const QStringList& arguments) const {
    return runZqticker(QStringList{u"render"_s, u"--output"_s, output()} + arguments, {},
                       with(plainEnvironment()));
  }
  QString output() const { return folder.filePath(u"out.png"_s); }

  HttpServer server;
  QTemporaryDir folder;
};

class FeedScreen : public FeedProgram {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled())
      GTEST_SKIP() << "Xvfb is not installed";
    screen.emplace(Width, Height);
    ASSERT_FALSE(screen->display().isEmpty()) << "Xvfb does not start";
    FeedProgram::SetUp();
  }

  int column(QRgb color) { return firstColumn(screen->screenshot(), Height - 12, color); }
  bool isInSight(QRgb color) { return column(color) >= 0; }
  QProcessEnvironment environment() const { return with(screen->environment()); }

  std::optional<XServer> screen;
};
} // namespace

TEST_F(FeedScreen, ScrollsItemsWithTheirPictures) {
  RunningProgram program({u"--feed"_s, url(), u"--speed"_s, u"200"_s}, environment());
  int first = -1;
  ASSERT_TRUE(waitUntil([&] { return (first = column(Red)) >= 0; }));
  EXPECT_TRUE(waitUntil([&] {
    const int now = column(Red);
    return now >= 0 && now < first - 20;
  })) << "moves to the left";
  program.interrupt(SIGINT);
  EXPECT_EQ(program.awaitStatus(), 0);
  EXPECT_EQ(program.process().readAllStandardError(), "");
  EXPECT_EQ(program.process().readAllStandardOutput(), "");
}

TEST_F(FeedScreen, ShowsAnItemThatIsPublishedMeanwhile) {
  RunningProgram program({u"--feed"_s, url(), u"--feed-interval"_s, u"0.005"_s, u"--speed"_s,
                          u"300"_s, u"--continuous"_s},
                         environment());
  ASSERT_TRUE(waitUntil([&] { return isInSight(Red); }));
  publish({{"3", "New item", "blue.png"}, {"1", "First item", "red.png"}, {"2", "Second item"}});
  EXPECT_TRUE(waitUntil([&] { return isInSight(Blue); }));
  EXPECT_TRUE(waitUntil([&] { return isInSight(Red); })) << "the others stay";
  publish({{"3", "New item", "blue.png"}, {"2", "Second item"}});
  EXPECT_TRUE(waitUntil([&] { return !isInSight(Red) && isInSight(Blue); }));
  program.interrupt(SIGINT);
  EXPECT_EQ(program.awaitStatus(), 0);
  EXPECT_EQ(program.process().readAllStandardError(), "");
}

TEST_F(FeedScreen, GoesOnWhenTheServerStops) {
  RunningProgram program(
      {u"--feed"_s, url(), u"--feed-interval"_s, u"0.005"_s, u"--speed"_s, u"300"_s},
      environment());
  ASSERT_TRUE(waitUntil([&] { return isInSight(Red); }));
  server.stop();
  QByteArray errors;
  ASSERT_TRUE(waitUntil([&] {
    errors += program.process().readAllStandardError();
    return errors.endsWith('\n');
  }));
  EXPECT_TRUE(errors.startsWith(QByteArray("zqticker: feed " + url().toUtf8() + ": ")))
      << errors.constData();
  EXPECT_EQ(errors.count('\n'), 1);
  for (int round = 0; round < 2; ++round) {
    EXPECT_TRUE(waitUntil([&] { return !isInSight(Red); }));
    EXPECT_TRUE(waitUntil([&] { return isInSight(Red); }));
  }
  EXPECT_EQ(program.process().readAllStandardError(), "") << "told once";
  publish({{"3", "New item", "blue.png"}});
  server.start();
  EXPECT_TRUE(waitUntil([&] { return isInSight(Blue); }));
  EXPECT_EQ(program.process().readAllStandardError(),
            "zqticker: feed " + url().toUtf8() + ": is back\n");
}

TEST_F(FeedScreen, StaysWithoutAnythingToShow) {
  publish({});
  RunningProgram program({u"--feed"_s, url(), u"--feed-interval"_s, u"0.005"_s, u"--text"_s,
                          u"Hello"_s, u"--loop"_s, u"1"_s, u"--speed"_s, u"20000"_s},
                         environment());
  ASSERT_TRUE(waitUntil([&] { return server.requestCount("/feed") >= 3; }));
  EXPECT_TRUE(program.isRunning());
  publish({{"1", "First item", "red.png"}});
  ASSERT_TRUE(waitUntil([&] { return server.requestCount("/red.png") == 1; }));
  const int asked = server.requestCount("/feed");
  ASSERT_TRUE(waitUntil([&] { return server.requestCount("/feed") >= asked + 3; }));
  EXPECT_TRUE(program.isRunning());
}

TEST_F(FeedProgram, RendersFeeds) {
  const Outcome outcome = render({u"--feed"_s, url(), u"--size"_s, u"400x24"_s});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  const QImage image(output());
  EXPECT_EQ(firstColumn(image, 12, Red), 0);
  EXPECT_EQ(image.pixel(29, 0) & 0xffffff, Red) << "as high as the strip";
  EXPECT_EQ(image.pixel(30, 12) & 0xffffff, 0xffffffu);
}

TEST_F(FeedProgram, AsksOnlyForWhatHasChangedSinceItsLastRun) {
  server.route("/feed", [](const HttpRequest& request, HttpReply& reply) {
    if (request.header("If-None-Match") == "\"1\"")
      return reply.send(304, {}, {{"ETag", "\"1\""}});
    reply.send(200, rss({{"1", "First item", "red.png"}}), {{"ETag", "\"1\""}});
  });
  server.route("/red.png", 200, png(Qt::red), {{"Cache-Control", "max-age=3600"}});
  for (int run = 0; run < 2; ++run) {
    QFile::remove(output());
    EXPECT_EQ(render({u"--feed"_s, url()}).status, 0);
    EXPECT_EQ(firstColumn(QImage(output()), 12, Red), 0);
  }
  EXPECT_EQ(server.requests().back().header("If-None-Match"), "\"1\"");
  EXPECT_EQ(server.requestCount("/feed"), 2);
  EXPECT_EQ(server.requestCount("/red.png"), 1);
  EXPECT_TRUE(QDir(folder.filePath(u"cache/zqticker/urls"_s)).exists());
}

TEST_F(FeedProgram, RendersNoMoreItemsThanAskedFor) {
  publish({{"2", "Second item"}, {"1", "First item", "red.png"}});
  EXPECT_EQ(render({u"--feed"_s, url(), u"--feed-items"_s, u"1"_s}).status, 0);
  EXPECT_EQ(firstColumn(QImage(output()), 12, Red), -1);
  EXPECT_EQ(server.requestCount("/red.png"), 0);
}

TEST_F(FeedProgram, RendersNothingOfAFeedThatItCannotRead) {
  server.route("/error", 500, rss({{"1", "First item"}}));
  const Outcome outcome = render({u"--text"_s, u"Hello"_s, u"--feed"_s, url("/error")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "zqticker: --feed " + url("/error").toUtf8() +
                                ": the server answers with status 500\n");
  EXPECT_FALSE(QFile::exists(output()));
}

TEST_F(FeedProgram, IsInterruptedWhileItWaitsForAFeed) {
  HttpLatch never;
  server.route("/slow", [never](const HttpRequest&, HttpReply& reply) { reply.wait(never); });
  RunningProgram program({u"render"_s, u"--feed"_s, url("/slow"), u"--output"_s, output()},
                         with(plainEnvironment()));
  ASSERT_TRUE(waitUntil([&] { return server.requestCount("/slow") == 1; }));
  program.interrupt(SIGINT);
  EXPECT_EQ(program.awaitStatus(), 1);
  EXPECT_EQ(program.process().readAllStandardError(), "zqticker: --feed: interrupted\n");
  EXPECT_FALSE(QFile::exists(output()));
}

TEST_F(FeedProgram, RendersWhatItCanWithoutADisplay) {
  server.route("/error", 500, "");
  QProcessEnvironment environment = with(plainEnvironment());
  environment.insert(u"TMPDIR"_s, folder.path());
  const Outcome outcome =
      runZqticker({u"--feed"_s, url("/error"), u"--feed"_s, url()}, {}, environment);
  EXPECT_EQ(outcome.status, 0);
  const QList<QByteArray> lines = outcome.errors.split('\n');
  ASSERT_EQ(lines.size(), 3) << outcome.errors.constData();
  EXPECT_EQ(lines[0],
            "zqticker: feed " + url("/error").toUtf8() + ": the server answers with status 500");
  const QByteArray start = "zqticker: no display: rendered 100 frames into ";
  ASSERT_TRUE(lines[1].startsWith(start)) << lines[1].constData();
  const QDir frames(QString::fromUtf8(lines[1].sliced(start.size())));
  EXPECT_GE(firstColumn(QImage(frames.filePath(u"frame-000050.png"_s)), 12, Red), 0);
}
