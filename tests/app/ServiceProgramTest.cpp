// The services as programs, on a bus with a ticker that only remembers what it is asked for.
#include "app/bus/TickerService.h"
#include "tests/app/FeedDocument.h"
#include "tests/app/LogFile.h"
#include "tests/app/Program.h"
#include "tests/app/XServer.h"
#include "tests/app/bus/FakeReceiver.h"
#include "tests/app/bus/PrivateBus.h"
#include "tests/support/HttpServer.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/signs/ZQComboTickerSign.h"

#include <QtCore/QBuffer>
#include <QtGui/QImage>

#include <gtest/gtest.h>

#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using zq::platform::KeyedUnarchiver;
using zq::platform::Ref;
using zq::testing::HttpServer;

namespace {
// Has enough after every second sign, for one try.
class BusyReceiver : public FakeReceiver {
 public:
  ArrivingSign displaySign(const QByteArray& archive, const QVariantMap& origin,
                           const BusSender& sender) override {
    if (++tryCount % 3 == 0)
      throw BusFailure(BusFailure::Kind::TooMuch, u"too much"_s);
    return FakeReceiver::displaySign(archive, origin, sender);
  }
  int tryCount = 0;
};

class ServicePrograms : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateBus::isInstalled())
      GTEST_SKIP() << "dbus-daemon is not installed";
    bus.emplace();
    ASSERT_TRUE(bus->isRunning());
  }

  void startTicker() { startTicker(receiver.emplace()); }
  void startTicker(FakeReceiver& itsReceiver) {
    ticker.emplace(bus->address());
    ticker->setReceiver(&itsReceiver);
    ASSERT_EQ(ticker->start(), TickerService::Start::IsOwner);
  }
  void stopTicker() {
    ticker.reset();
    receiver.reset();
  }

  // The user's cache is a folder of this test.
  QProcessEnvironment environment() const {
    QProcessEnvironment result = bus->environment();
    result.insert(u"XDG_CACHE_HOME"_s, folder.filePath(u"cache"_s));
    return result;
  }
  void startService(const QStringList& arguments) {
    program.emplace(QStringList{u"service"_s} + arguments, environment());
  }
  // The exit status.
  int endService(int signal = SIGTERM) {
    program->interrupt(signal);
    return program->awaitStatus();
  }
  QByteArray errors() {
    told += program->process().readAllStandardError();
    return told;
  }

  static Ref<ZQComboTickerSign> signOf(const FakeReceiver::Shown& shown) {
    return KeyedUnarchiver::unarchiveObjectOfClass<ZQComboTickerSign>(shown.archive);
  }
  static QString textsOf(const FakeReceiver& its) {
    QStringList texts;
    for (const FakeReceiver::Shown& shown : its.signs)
      texts.append(signOf(shown)->text().toString());
    return texts.join(u'|');
  }
  static QStringList identifiersOf(const FakeReceiver& its) {
    QStringList identifiers;
    for (const FakeReceiver::Shown& shown : its.signs)
      identifiers.append(signOf(shown)->identifier().value());
    return identifiers;
  }

  QTemporaryDir folder;
  std::optional<PrivateBus> bus;
  std::optional<FakeReceiver> receiver;
  std::optional<TickerService> ticker;
  std::optional<RunningProgram> program;
  QByteArray told;
};

class FeedServiceProgram : public ServicePrograms {
 protected:
  void SetUp() override {
    ServicePrograms::SetUp();
    QImage image(60, 48, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    ASSERT_TRUE(buffer.open(QIODevice::WriteOnly) && image.save(&buffer, "png"));
    server.route("/red.png", 200, bytes);
    publish({{"1", "First", "red.png"}, {"2", "Second"}});
  }
  void publish(const std::vector<WrittenItem>& items) {
    server.route("/feed", 200, rss(items), {{"Content-Type", "application/rss+xml"}});
  }
  void startFeeds(const QStringList& options = {}) {
    startService(QStringList{u"feed"_s} + options +
                 QStringList{u"--feed-interval"_s, u"0.005"_s, server.url("/feed").toString()});
  }
  bool awaitArrangement(qsizetype count) {
    return waitUntil([&] { return receiver->arranged.size() == count; });
  }

  HttpServer server;
};
} // namespace

TEST_F(FeedServiceProgram, SendsItemsByValue) {
  startTicker();
  startFeeds();
  ASSERT_TRUE(awaitArrangement(2));
  ASSERT_EQ(textsOf(*receiver), u"First|Second"_s);
  const Ref<ZQComboTickerSign> first = signOf(receiver->signs[0]);
  ASSERT_NE(first->image(), nullptr);
  EXPECT_EQ(first->image()->size(), QSizeF(60, 48));
  EXPECT_EQ(first->loopCount(), -1);
  EXPECT_EQ(first->actionString(), u"http://example.org/1"_s);
  const QVariantMap& origin = receiver->signs[0].dictionary;
  EXPECT_TRUE(origin.value(u"senderID"_s).toString().startsWith(u"org.zqticker.service.feed:"));
  EXPECT_EQ(origin.value(u"senderName"_s), u"Feed"_s);
  EXPECT_EQ(origin.value(u"arranged"_s), true);
  EXPECT_EQ(receiver->arranged, identifiersOf(*receiver));
  EXPECT_EQ(errors(), "");
}

TEST_F(FeedServiceProgram, ScalesPicturesDown) {
  startTicker();
  startFeeds({u"--picture-height"_s, u"24"_s});
  ASSERT_TRUE(awaitArrangement(2));
  EXPECT_EQ(signOf(receiver->signs[0])->image()->size(), QSizeF(30, 24));
}

TEST_F(FeedServiceProgram, KeepsTheTickerUpToDate) {
  startTicker();
  startFeeds();
  ASSERT_TRUE(awaitArrangement(2));
  const QStringList before = identifiersOf(*receiver);
  publish({{"3", "Third"}, {"2", "Changed"}});
  ASSERT_TRUE(waitUntil([&] { return receiver->arranged.value(0) != before[0]; }));
  EXPECT_EQ(receiver->removed, QStringList(before[0]));
  EXPECT_EQ(textsOf(*receiver), u"First|Second|Third|Changed"_s);
  EXPECT_EQ(identifiersOf(*receiver)[3], before[1]);
}

TEST_F(FeedServiceProgram, WaitsForTheTicker) {
  startFeeds();
  ASSERT_TRUE(waitUntil([&] { return server.requestCount("/feed") >= 2; }));
  startTicker();
  ASSERT_TRUE(awaitArrangement(2));
  EXPECT_EQ(textsOf(*receiver), u"First|Second"_s);
  EXPECT_EQ(errors(), "zqticker: no ticker is running, waiting for it\n"
                      "zqticker: the ticker is there\n");
}

TEST_F(FeedServiceProgram, SurvivesTheTicker) {
  startTicker();
  startFeeds();
  ASSERT_TRUE(awaitArrangement(2));
  const QStringList before = identifiersOf(*receiver);
  stopTicker();
  ASSERT_TRUE(waitUntil([&] { return errors().endsWith("has gone, waiting for it\n"); }));
  startTicker();
  ASSERT_TRUE(awaitArrangement(2));
  EXPECT_EQ(identifiersOf(*receiver), before);
  EXPECT_EQ(textsOf(*receiver), u"First|Second"_s);
}

TEST_F(FeedServiceProgram, SurvivesTheBus) {
  startTicker();
  startFeeds();
  ASSERT_TRUE(awaitArrangement(2));
  stopTicker();
  bus->stop();
  ASSERT_TRUE(waitUntil([&] { return errors().endsWith("has gone, waiting for it\n"); }));
  bus->start();
  startTicker();
  ASSERT_TRUE(awaitArrangement(2));
  EXPECT_EQ(textsOf(*receiver), u"First|Second"_s);
}

TEST_F(FeedServiceProgram, TakesItsSignsBackAtItsEnd) {
  startTicker();
  startFeeds();
  ASSERT_TRUE(awaitArrangement(2));
  EXPECT_EQ(endService(SIGINT), 0);
  EXPECT_TRUE(waitUntil([&] { return receiver->removed.size() == 2; }));
  EXPECT_EQ(receiver->removed, identifiersOf(*receiver));
  EXPECT_EQ(errors(), "");
}

TEST_F(FeedServiceProgram, LeavesItsSignsWhereItIsTold) {
  startTicker();
  startFeeds({u"--keep"_s});
  ASSERT_TRUE(awaitArrangement(2));
  EXPECT_EQ(endService(), 0);
  // What comes after anything that the service may have sent.
  startFeeds();
  ASSERT_TRUE(waitUntil([&] { return receiver->signs.size() == 4; }));
  EXPECT_EQ(receiver->removed, QStringList());
  const QStringList identifiers = identifiersOf(*receiver);
  EXPECT_EQ(identifiers.first(2), identifiers.last(2)) << "they take the places of the others";
}

TEST_F(FeedServiceProgram, EndsWithoutATicker) {
  startFeeds();
  ASSERT_TRUE(waitUntil([&] { return server.requestCount("/feed") >= 1; }));
  EXPECT_EQ(endService(), 0);
}

TEST_F(ServicePrograms, SendLinesInTheirOrderToATickerThatIsBusy) {
  BusyReceiver busy;
  startTicker(busy);
  LogFile log(u"server.log"_s);
  log.write("old\nlast\n");
  startService({u"tail"_s, log.path()});
  ASSERT_TRUE(waitUntil([&] { return busy.signs.size() == 1; }));
  QStringList lines{u"last"_s};
  for (int i = 0; i < 12; ++i) {
    log.write("line " + QByteArray::number(i) + '\n');
    lines.append(u"line %1"_s.arg(i));
  }
  ASSERT_TRUE(waitUntil([&] { return qsizetype(busy.signs.size()) >= lines.size(); }));
  EXPECT_EQ(textsOf(busy), lines.join(u'|'));
  EXPECT_EQ(signOf(busy.signs[0])->loopCount(), 1);
  EXPECT_EQ(busy.signs[0].dictionary.value(u"senderName"_s), u"server.log"_s);
  EXPECT_FALSE(busy.signs[0].dictionary.contains(u"arranged"_s));
  EXPECT_EQ(endService(), 0);
  EXPECT_EQ(busy.removed, QStringList()) << "they are shown as often as they are to be";
  EXPECT_EQ(errors(), "");
  ticker.reset();
}

TEST_F(ServicePrograms, KeepLinesForTheTicker) {
  LogFile log;
  log.write("first\n");
  startService({u"tail"_s, log.path()});
  ASSERT_TRUE(waitUntil([&] { return errors().endsWith("waiting for it\n"); }));
  log.write("second\nthird\n");
  startTicker();
  ASSERT_TRUE(waitUntil([&] { return textsOf(*receiver).endsWith(u"third"_s); }));
  // The last line at the start may be any of the three.
  EXPECT_TRUE(u"first|second|third"_s.endsWith(textsOf(*receiver)));
  const QStringList before = identifiersOf(*receiver);
  stopTicker();
  log.write("fourth\n");
  startTicker();
  ASSERT_TRUE(waitUntil([&] { return !receiver->signs.empty(); }));
  EXPECT_EQ(textsOf(*receiver), u"fourth"_s) << "what was taken is not sent again";
  EXPECT_FALSE(before.contains(identifiersOf(*receiver)[0]));
}

TEST_F(ServicePrograms, TellWhatHappensToFiles) {
  startTicker();
  LogFile log(u"notes.txt"_s);
  log.write("a");
  startService({u"watch"_s, u"--loop"_s, u"2"_s, log.path()});
  // A write before the watch begins is not told; this goes on until one is.
  ASSERT_TRUE(waitUntil([&] {
    log.write("a");
    return !receiver->signs.empty();
  }));
  EXPECT_EQ(signOf(receiver->signs[0])->text().toString(), u"notes.txt: written to"_s);
  EXPECT_EQ(signOf(receiver->signs[0])->loopCount(), 2);
  EXPECT_EQ(receiver->signs[0].dictionary.value(u"senderName"_s), u"notes.txt"_s);
  log.remove();
  EXPECT_TRUE(waitUntil([&] { return textsOf(*receiver).endsWith(u"notes.txt: deleted"_s); }));
  EXPECT_EQ(endService(), 0);
}

TEST_F(ServicePrograms, FailWithoutABus) {
  const Outcome outcome = runZqticker({u"service"_s, u"tail"_s, u"log"_s});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "zqticker: no session bus: there is no way to a ticker\n");
}

TEST_F(ServicePrograms, FailWhereTheBusKnowsOfNoTickerToStart) {
  const Outcome outcome =
      runZqticker({u"service"_s, u"tail"_s, u"--start"_s, u"log"_s}, {}, environment());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors,
            "zqticker: --start: the session bus knows of no ticker that it could start\n");
}

TEST_F(ServicePrograms, FailWhereAPathCannotBeWatched) {
  startTicker();
  const QString path = folder.filePath(u"missing"_s);
  const Outcome outcome = runZqticker({u"service"_s, u"watch"_s, path}, {}, environment());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors,
            "zqticker: " + path.toUtf8() + ": cannot watch: No such file or directory\n");
}

TEST(ServiceCommands, RefuseWrongCommandLines) {
  const auto errorOf = [](const QStringList& arguments) {
    const Outcome outcome = runZqticker(QStringList{u"service"_s} + arguments);
    EXPECT_EQ(outcome.status, 2);
    return outcome.errors.toStdString();
  };
  EXPECT_EQ(errorOf({u"feed"_s}), "zqticker: URL: missing (see zqticker service feed --help)\n");
  EXPECT_EQ(errorOf({u"feed"_s, u"nonsense"_s}),
            "zqticker: nonsense: not an address (write https://..., http://... or file:///...)\n");
  EXPECT_EQ(errorOf({u"feed"_s, u"http://a/"_s, u"http://a/"_s}),
            "zqticker: http://a/: given twice\n");
  EXPECT_EQ(errorOf({u"tail"_s, u"a"_s, u"a"_s}), "zqticker: a: given twice\n");
  EXPECT_EQ(errorOf({u"watch"_s, u"--loop"_s, u"0"_s, u"a"_s}),
            "zqticker: --loop 0: must be a whole number from 1 on, or forever\n");
  EXPECT_EQ(errorOf({u"tail"_s, u"--speed"_s, u"10"_s, u"a"_s}),
            "zqticker: --speed: unknown option (see zqticker service tail --help)\n");
  EXPECT_EQ(errorOf({u"feed"_s, u"--picture-height"_s, u"4"_s, u"http://a/"_s}),
            "zqticker: --picture-height 4: must be between 8 and 1024\n");
}
