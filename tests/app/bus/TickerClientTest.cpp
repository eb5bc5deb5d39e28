#include "app/bus/TickerClient.h"

#include "app/bus/bus_names.h"
#include "tests/app/bus/BusTicker.h"

#include <gtest/gtest.h>

#include <QtCore/QStringList>

#include <atomic>
#include <functional>
#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
// What a client says about the ticker.
class Appearances {
 public:
  explicit Appearances(TickerClient& client) {
    QObject::connect(&client, &TickerClient::tickerAppeared, [this] { seen.append(u"there"_s); });
    QObject::connect(&client, &TickerClient::tickerVanished, [this] { seen.append(u"gone"_s); });
  }
  QStringList seen;
};

// Runs `call` on a thread with its own client, which waits there for its replies.
void onAnotherThread(const QString& address, const std::function<void(TickerClient&)>& call) {
  std::atomic<bool> hasEnded = false;
  std::thread thread([&] {
    TickerClient client(address);
    call(client);
    hasEnded = true;
  });
  waitUntil([&] { return hasEnded.load(); });
  thread.join();
}
} // namespace

TEST(TickerClient, HasNoBusWithoutAnAddress) {
  TickerClient client(std::nullopt);
  EXPECT_FALSE(client.hasBus());
  EXPECT_FALSE(client.hasTicker());
  const BusReply reply = client.displayMessage({{u"text"_s, u"Hello"_s}});
  EXPECT_FALSE(reply.ok);
  EXPECT_EQ(reply.errorName, NoBusErrorName);
  EXPECT_EQ(reply.errorMessage, u"no session bus"_s);
  EXPECT_TRUE(reply.isUnreachable());
  int replies = 0;
  client.displayMessage({}, [&](const BusReply& late) {
    EXPECT_EQ(late.errorName, NoBusErrorName);
    ++replies;
  });
  EXPECT_EQ(replies, 0) << "callbacks come from the event loop";
  EXPECT_TRUE(waitUntil([&] { return replies == 1; }));
}

TEST(TickerClient, SaysWhereNoTickerRuns) {
  if (!PrivateBus::isInstalled())
    GTEST_SKIP() << "dbus-daemon is not installed";
  const PrivateBus bus;
  TickerClient client(bus.address());
  EXPECT_TRUE(client.hasBus());
  EXPECT_FALSE(client.hasTicker());
  for (const BusReply& reply : {client.displayMessage({}), client.quit()}) {
    EXPECT_FALSE(reply.ok);
    EXPECT_EQ(reply.errorMessage, u"no ticker is running"_s);
    EXPECT_TRUE(reply.isUnreachable());
  }
}

TEST_F(BusTicker, IsCalledByClientsThatWaitOnAnotherThread) {
  int pipe[2];
  ASSERT_EQ(::pipe(pipe), 0);
  ASSERT_EQ(::write(pipe[1], "a line\n", 7), 7);
  onAnotherThread(bus_->address(), [&](TickerClient& client) {
    EXPECT_TRUE(client.hasTicker());
    EXPECT_EQ(client.displayMessage({{u"identifier"_s, u"m"_s}}).identifier, u"m"_s);
    EXPECT_EQ(client.displaySign("archive", {{u"priority"_s, 1.5}}).identifier, u"made"_s);
    EXPECT_TRUE(client.removeSign(u"there"_s).removed);
    EXPECT_TRUE(client.arrangeSigns({u"a"_s, u"b"_s}).ok);
    EXPECT_TRUE(client.run({u"--text"_s, u"x y"_s, u"--stdin"_s}, u"/tmp"_s, pipe[0]).ok);
    EXPECT_TRUE(client.showQueue().ok);
    EXPECT_TRUE(client.showSettings().ok);
    const BusReply wrong = client.run({u"--wrong"_s}, u"/"_s);
    EXPECT_EQ(wrong.errorName, FailedErrorName);
    EXPECT_EQ(wrong.errorMessage, u"--wrong: unknown option"_s);
    EXPECT_FALSE(wrong.isUnreachable());
    EXPECT_TRUE(client.quit().ok);
  });
  ::close(pipe[0]);
  ::close(pipe[1]);
  EXPECT_EQ(receiver_.messages.size(), 1u);
  EXPECT_EQ(receiver_.signs.size(), 1u);
  EXPECT_EQ(receiver_.arranged, (QStringList{u"a"_s, u"b"_s}));
  EXPECT_EQ(receiver_.arguments, (QStringList{u"--text"_s, u"x y"_s, u"--stdin"_s}));
  EXPECT_EQ(receiver_.folder, u"/tmp"_s);
  EXPECT_TRUE(receiver_.hadInput);
  EXPECT_EQ(receiver_.input, "a line\n");
  EXPECT_EQ(receiver_.queueCount, 1);
  EXPECT_EQ(receiver_.settingsCount, 1);
  EXPECT_TRUE(waitUntil([&] { return receiver_.quitCount == 1; }));
}

TEST_F(BusTicker, RunsWithoutStandardInputOnAnotherThread) {
  onAnotherThread(bus_->address(), [&](TickerClient& client) {
    EXPECT_TRUE(client.run({u"--text"_s, u"x"_s}, u"/"_s).ok);
  });
  EXPECT_EQ(receiver_.arguments, (QStringList{u"--text"_s, u"x"_s}));
  EXPECT_FALSE(receiver_.hadInput);
}

TEST_F(BusTicker, TellsClientsWhenItAppearsAndVanishes) {
  service_.reset();
  Appearances appearances(*client_);
  client_->watch();
  EXPECT_FALSE(client_->hasTicker());
  service_.emplace(bus_->address());
  ASSERT_EQ(service_->start(), TickerService::Start::IsOwner);
  ASSERT_TRUE(waitUntil([&] { return appearances.seen == QStringList{u"there"_s}; }));
  EXPECT_TRUE(client_->hasTicker());
  service_.reset();
  ASSERT_TRUE(waitUntil([&] { return appearances.seen == QStringList{u"there"_s, u"gone"_s}; }));
  EXPECT_FALSE(client_->hasTicker());
}

TEST_F(BusTicker, TellsClientsThatItIsThereAlready) {
  Appearances appearances(*client_);
  client_->watch();
  client_->watch();
  EXPECT_TRUE(appearances.seen.isEmpty());
  ASSERT_TRUE(waitUntil([&] { return appearances.seen == QStringList{u"there"_s}; }));
}

TEST_F(BusTicker, TellsClientsOfARestartOfTheBus) {
  Appearances appearances(*client_);
  client_->watch();
  ASSERT_TRUE(waitUntil([&] { return appearances.seen.size() == 1; }));
  std::optional<BusReply> lost;
  receiver_.beforeMessage = [&] { bus_->stop(); };
  client_->displayMessage({}, [&](const BusReply& one) { lost = one; });
  ASSERT_TRUE(waitUntil([&] { return lost.has_value(); })) << "a call ends with its bus";
  EXPECT_FALSE(lost->ok);
  ASSERT_TRUE(waitUntil([&] { return appearances.seen.size() == 2; }));
  receiver_.beforeMessage = [] {};
  bus_->start();
  ASSERT_TRUE(waitUntil([&] { return appearances.seen.size() == 3; }));
  EXPECT_EQ(appearances.seen, (QStringList{u"there"_s, u"gone"_s, u"there"_s}));
  EXPECT_TRUE(display({}).ok);
}

TEST_F(BusTicker, TellsClientsOfItsReturnAlsoWhereTheyCallBeforeIt) {
  Appearances appearances(*client_);
  client_->watch();
  ASSERT_TRUE(waitUntil([&] { return appearances.seen.size() == 1; }));
  bus_->stop();
  ASSERT_TRUE(waitUntil([&] { return appearances.seen.size() == 2; }));
  bus_->start();
  EXPECT_TRUE(client_->displayMessage({}).isUnreachable());
  ASSERT_TRUE(waitUntil([&] { return appearances.seen.size() == 3; }));
  EXPECT_EQ(appearances.seen, (QStringList{u"there"_s, u"gone"_s, u"there"_s}));
}

TEST_F(BusTicker, LeavesCallbacksOfAClientThatHasGone) {
  int replies = 0;
  client_->displayMessage({}, [&](const BusReply&) { ++replies; });
  client_.emplace(bus_->address());
  EXPECT_TRUE(display({}).ok);
  EXPECT_TRUE(display({}).ok);
  EXPECT_EQ(replies, 0);
}

TEST_F(BusTicker, MayBeAskedNoMoreInACallback) {
  // The client goes within its own callback.
  bool hasReply = false;
  client_->displayMessage({}, [&](const BusReply&) {
    hasReply = true;
    client_.reset();
  });
  EXPECT_TRUE(waitUntil([&] { return hasReply; }));
  EXPECT_FALSE(client_);
}
