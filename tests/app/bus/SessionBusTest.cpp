// Buses that go away and come back, and names that others have.
#include "app/bus/SessionBus.h"
#include "app/bus/bus_names.h"
#include "tests/app/bus/BusTicker.h"
#include "tests/support/LogWatch.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using zq::testing::expectLog;

TEST(SessionBus, NeverOpensWithoutAnAddress) {
  SessionBus bus(std::nullopt);
  EXPECT_FALSE(bus.open());
  EXPECT_FALSE(bus.isOpen());
  TickerService service(std::nullopt);
  EXPECT_EQ(service.start(), TickerService::Start::NoBus);
}

TEST(SessionBus, OpensWhenTheBusAppearsLater) {
  if (!PrivateBus::isInstalled())
    GTEST_SKIP() << "dbus-daemon is not installed";
  PrivateBus daemon;
  daemon.stop();
  SessionBus bus(daemon.address());
  int openings = 0;
  QObject::connect(&bus, &SessionBus::opened, [&] { ++openings; });
  EXPECT_FALSE(bus.open());
  daemon.start();
  EXPECT_TRUE(waitUntil([&] { return bus.isOpen(); }));
  EXPECT_EQ(openings, 1);
  EXPECT_TRUE(bus.open()) << "is open already";
  EXPECT_EQ(openings, 1);
}

TEST(SessionBus, OpensAnewAsOftenAsTheBusRestarts) {
  if (!PrivateBus::isInstalled())
    GTEST_SKIP() << "dbus-daemon is not installed";
  PrivateBus daemon;
  SessionBus bus(daemon.address());
  int openings = 0;
  int closings = 0;
  QObject::connect(&bus, &SessionBus::opened, [&] { ++openings; });
  QObject::connect(&bus, &SessionBus::closed, [&] { ++closings; });
  ASSERT_TRUE(bus.open());
  for (int i = 1; i <= 3; ++i) {
    const QString before = bus.connection().baseService();
    daemon.stop();
    ASSERT_TRUE(waitUntil([&] { return closings == i; }));
    EXPECT_FALSE(bus.isOpen());
    daemon.start();
    ASSERT_TRUE(waitUntil([&] { return openings == i; }));
    EXPECT_TRUE(bus.isOpen());
  }
}

TEST(SessionBus, TellsOfANewConnectionWhoeverAsksForItBefore) {
  if (!PrivateBus::isInstalled())
    GTEST_SKIP() << "dbus-daemon is not installed";
  PrivateBus daemon;
  SessionBus bus(daemon.address());
  QStringList seen;
  QObject::connect(&bus, &SessionBus::opened, [&] { seen.append(u"opened"_s); });
  QObject::connect(&bus, &SessionBus::closed, [&] {
    EXPECT_FALSE(bus.open()) << "the bus is there again, but nobody has been told yet";
    seen.append(u"closed"_s);
  });
  ASSERT_TRUE(bus.open());
  daemon.stop();
  daemon.start();
  // That it broke is known here before the event loop tells of it.
  while (bus.isOpen())
    continue;
  EXPECT_FALSE(bus.open());
  ASSERT_TRUE(waitUntil([&] { return bus.isOpen(); }));
  EXPECT_EQ(seen, (QStringList{u"closed"_s, u"opened"_s}));
}

TEST_F(BusTicker, IsReachableAgainAfterTheBusHasRestarted) {
  EXPECT_TRUE(service_->ownsName());
  bus_->stop();
  ASSERT_TRUE(waitUntil([&] { return !service_->ownsName(); }));
  bus_->start();
  ASSERT_TRUE(waitUntil([&] { return service_->ownsName(); }));
  TickerClient client(bus_->address());
  const BusReply shown = reply([&](auto callback) {
    client.displayMessage({{u"identifier"_s, u"again"_s}}, callback);
  });
  EXPECT_EQ(shown.identifier, u"again"_s);
  QDBusMessage broadcast =
      QDBusMessage::createSignal(u"/"_s, TickerInterface, DisplayMessageSignal);
  broadcast.setArguments({QVariantMap{}});
  connection().send(broadcast);
  EXPECT_TRUE(waitUntil([&] { return receiver_.notifications.size() == 1; }));
}

TEST_F(BusTicker, BecomesReachableWhenTheBusAppearsLater) {
  service_.reset();
  bus_->stop();
  service_.emplace(bus_->address());
  service_->setReceiver(&receiver_);
  EXPECT_EQ(service_->start(), TickerService::Start::NoBus);
  bus_->start();
  ASSERT_TRUE(waitUntil([&] { return service_->ownsName(); }));
}

TEST_F(BusTicker, OwnsTheNameAlone) {
  TickerService second(bus_->address());
  EXPECT_EQ(second.start(), TickerService::Start::IsTaken);
  EXPECT_FALSE(second.ownsName());
  service_.reset();
  EXPECT_EQ(second.start(), TickerService::Start::IsOwner);
  EXPECT_TRUE(second.ownsName());
}

TEST_F(BusTicker, WaitsForTheNameWhereAnotherHasItAfterARestart) {
  expectLog(u"another ticker receives messages"_s);
  bus_->stop();
  ASSERT_TRUE(waitUntil([&] { return !service_->ownsName(); }));
  bus_->start();
  FakeReceiver otherReceiver;
  auto other = std::make_unique<TickerService>(bus_->address());
  other->setReceiver(&otherReceiver);
  ASSERT_EQ(other->start(), TickerService::Start::IsOwner);
  // The first one comes back, and is told so.
  QDBusMessage question = QDBusMessage::createMethodCall(BusDaemonName, BusDaemonPath,
                                                         BusDaemonName, u"ListQueuedOwners"_s);
  question.setArguments({QString(TickerBusName)});
  ASSERT_TRUE(
      waitUntil([&] { return send(question).arguments().value(0).toStringList().size() == 2; }));
  EXPECT_FALSE(service_->ownsName());
  other.reset();
  ASSERT_TRUE(waitUntil([&] { return service_->ownsName(); }));
  TickerClient client(bus_->address());
  EXPECT_TRUE(reply([&](auto callback) { client.displayMessage({}, callback); }).ok);
  EXPECT_EQ(receiver_.messages.size(), 1u);
}
