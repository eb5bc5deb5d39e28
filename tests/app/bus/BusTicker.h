// A ticker on a bus of its own, as other programs see it.
#pragma once

#include "app/bus/TickerClient.h"
#include "app/bus/TickerService.h"
#include "tests/app/Program.h"
#include "tests/app/XServer.h"
#include "tests/app/bus/FakeReceiver.h"
#include "tests/app/bus/PrivateBus.h"

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>

#include <gtest/gtest.h>

#include <optional>

namespace zq::app::testing {

class BusTicker : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateBus::isInstalled())
      GTEST_SKIP() << "dbus-daemon is not installed";
    bus_.emplace();
    ASSERT_TRUE(bus_->isRunning());
    service_.emplace(bus_->address());
    service_->setReceiver(&receiver_);
    ASSERT_EQ(service_->start(), TickerService::Start::IsOwner);
    client_.emplace(bus_->address());
  }
  void TearDown() override {
    if (stranger_)
      QDBusConnection::disconnectFromBus(stranger_->name());
  }

  // The reply to a call of the client that is given its callback.
  template <typename Call>
  BusReply reply(Call call) {
    std::optional<BusReply> result;
    call([&](const BusReply& one) { result = one; });
    EXPECT_TRUE(waitUntil([&] { return result.has_value(); }));
    return result.value_or(BusReply());
  }
  BusReply display(const QVariantMap& message) {
    return reply([&](auto callback) { client_->displayMessage(message, callback); });
  }

  // A connection that is not the client's.
  QDBusConnection connection() {
    if (!stranger_)
      stranger_ = QDBusConnection::connectToBus(bus_->address(), QStringLiteral("stranger"));
    return *stranger_;
  }
  // The reply to any message, or its error.
  QDBusMessage send(const QDBusMessage& call) {
    const QDBusPendingCall pending = connection().asyncCall(call);
    EXPECT_TRUE(waitUntil([&] { return pending.isFinished(); }));
    return pending.reply();
  }

  // What a program on the bus writes, its errors included, and its status.
  Outcome runTool(const QString& tool, const QStringList& arguments) {
    QProcess process;
    process.setProcessEnvironment(bus_->environment());
    process.start(tool, arguments);
    EXPECT_TRUE(waitUntil([&] { return process.state() == QProcess::NotRunning; }));
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
  }

  FakeReceiver receiver_;
  std::optional<PrivateBus> bus_;
  std::optional<TickerService> service_;
  std::optional<TickerClient> client_;
  std::optional<QDBusConnection> stranger_;
};

} // namespace zq::app::testing
