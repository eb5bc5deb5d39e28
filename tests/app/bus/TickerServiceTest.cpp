// The ticker on a bus, called by clients of its own and by others that know nothing of it.
#include "app/bus/TickerService.h"
#include "app/bus/TickerClient.h"
#include "app/bus/bus_names.h"
#include "tests/app/XServer.h"
#include "tests/app/bus/FakeReceiver.h"
#include "tests/app/bus/PrivateBus.h"
#include "tests/support/LogWatch.h"

#include <QtCore/QFile>
#include <QtCore/QXmlStreamReader>
#include <QtDBus/QDBusConnection>

#include <gtest/gtest.h>

#include <optional>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using zq::testing::expectLog;

namespace {

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

  // The reply to a call that is given its callback.
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

  // What a program writes, its errors included, and its status.
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
};

} // namespace

TEST_F(BusTicker, ReceivesAMessageWithPlainValues) {
  const BusReply result = display({{u"identifier"_s, u"a"_s},
                                   {u"text"_s, u"Grüße"_s},
                                   {u"loopCount"_s, 3},
                                   {u"loopDelay"_s, 0.5},
                                   {u"continuousScroling"_s, true},
                                   {u"image"_s, QByteArray("\0PNG", 4)}});
  EXPECT_TRUE(result.ok) << result.errorMessage.toStdString();
  EXPECT_EQ(result.identifier, u"a"_s);
  ASSERT_EQ(receiver_.messages.size(), 1u);
  const QVariantMap& message = receiver_.messages[0].dictionary;
  EXPECT_EQ(message.value(u"text"_s), QVariant(u"Grüße"_s));
  EXPECT_EQ(message.value(u"loopCount"_s), QVariant(3));
  EXPECT_EQ(message.value(u"loopDelay"_s), QVariant(0.5));
  EXPECT_EQ(message.value(u"continuousScroling"_s), QVariant(true));
  EXPECT_EQ(message.value(u"image"_s), QVariant(QByteArray("\0PNG", 4)));
  EXPECT_TRUE(receiver_.messages[0].sender.name.startsWith(u':'));
  EXPECT_GT(receiver_.messages[0].sender.bytes, 0);
}

TEST_F(BusTicker, AnswersGdbus) {
  if (!XServer::hasProgram(u"gdbus"_s))
    GTEST_SKIP() << "gdbus is not installed";
  const QStringList place{u"--session"_s, u"--dest"_s, TickerBusName, u"--object-path"_s,
                          TickerObjectPath};
  const Outcome called = runTool(
      u"gdbus"_s, QStringList{u"call"_s} + place +
                      QStringList{u"--method"_s, u"org.zqticker.Ticker1.DisplayMessage"_s,
                                  u"{'text': <'Hello'>, 'identifier': <'g'>, 'loopCount': <2>}"_s});
  EXPECT_EQ(called.status, 0) << called.errors.toStdString();
  EXPECT_EQ(called.output, "('g',)\n");
  ASSERT_EQ(receiver_.messages.size(), 1u);
  EXPECT_EQ(receiver_.messages[0].dictionary.value(u"loopCount"_s), QVariant(2));

  const Outcome described = runTool(u"gdbus"_s, QStringList{u"introspect"_s} + place);
  EXPECT_EQ(described.status, 0) << described.errors.toStdString();
  EXPECT_TRUE(described.output.contains("DisplayMessage(in  a{sv} message,"))
      << described.output.toStdString();
  EXPECT_TRUE(described.output.contains("readonly s Version = ")) << described.output.toStdString();
}
