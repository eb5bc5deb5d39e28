// The ticker on a bus: what it makes of calls and notifications.
#include "app/bus/bus_names.h"
#include "app/bus/bus_values.h"
#include "app/bus/ticker_interface.h"
#include "tests/app/bus/BusTicker.h"
#include "tests/app/bus/interface_elements.h"
#include "tests/support/LogWatch.h"
#include "zqticker/version.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusSignature>
#include <QtDBus/QDBusVariant>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <stdexcept>
#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using zq::testing::expectLog;

namespace {
// A message of any shape to the ticker's object.
QDBusMessage tickerCall(const QString& method, const QVariantList& arguments,
                        const QString& interface = TickerInterface) {
  QDBusMessage call =
      QDBusMessage::createMethodCall(TickerBusName, TickerObjectPath, interface, method);
  call.setArguments(arguments);
  return call;
}

const QString Properties = u"org.freedesktop.DBus.Properties"_s;
const QString InvalidArgs = u"org.freedesktop.DBus.Error.InvalidArgs"_s;
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

TEST_F(BusTicker, TakesContainersApart) {
  const QVariantMap data{{u"list"_s, QVariantList{1, u"two"_s, QVariantList{3.0}}},
                         {u"map"_s, QVariantMap{{u"b"_s, QByteArray("bytes")}}},
                         {u"strings"_s, QStringList{u"x"_s, u"y"_s}},
                         {u"path"_s, QVariant::fromValue(QDBusObjectPath(u"/a/b"_s))},
                         {u"type"_s, QVariant::fromValue(QDBusSignature(u"a{sv}"_s))},
                         {u"small"_s, QVariant::fromValue(uchar(7))},
                         {u"large"_s, QVariant::fromValue(quint64(1) << 63)},
                         {u"standardInput"_s, QVariant::fromValue(QDBusUnixFileDescriptor(0))}};
  ASSERT_TRUE(display({{u"actionData"_s, data}}).ok);
  const QVariantMap read = receiver_.messages.at(0).dictionary.value(u"actionData"_s).toMap();
  EXPECT_EQ(read.value(u"list"_s), QVariant(QVariantList{1, u"two"_s, QVariantList{3.0}}));
  EXPECT_EQ(read.value(u"map"_s), QVariant(QVariantMap{{u"b"_s, QByteArray("bytes")}}));
  EXPECT_EQ(read.value(u"strings"_s), QVariant(QStringList{u"x"_s, u"y"_s}));
  EXPECT_EQ(read.value(u"path"_s), QVariant(u"/a/b"_s));
  EXPECT_EQ(read.value(u"type"_s), QVariant(u"a{sv}"_s));
  EXPECT_EQ(read.value(u"small"_s), QVariant::fromValue(uchar(7)));
  EXPECT_EQ(read.value(u"large"_s), QVariant::fromValue(quint64(1) << 63));
  EXPECT_TRUE(read.contains(u"standardInput"_s));
  EXPECT_FALSE(read.value(u"standardInput"_s).isValid());
}

TEST_F(BusTicker, RefusesWhatIsNestedTooDeep) {
  expectLog(u"containers nested more than 8 deep"_s);
  QVariant nested = u"core"_s;
  for (int i = 0; i < 20; ++i)
    nested = QVariantList{nested};
  const BusReply result = display({{u"actionData"_s, nested}});
  EXPECT_EQ(result.errorName, TooMuchErrorName);
  EXPECT_EQ(result.errorMessage, u"containers nested more than 8 deep"_s);
  EXPECT_TRUE(receiver_.messages.empty());
}

TEST_F(BusTicker, RefusesTooManyValues) {
  expectLog(u"more than 10000 values"_s);
  QVariantList many(20'000, QVariant(1));
  EXPECT_EQ(display({{u"actionData"_s, many}}).errorMessage, u"more than 10000 values"_s);
  QStringList strings(20'000, u"s"_s);
  EXPECT_EQ(display({{u"actionData"_s, strings}}).errorMessage, u"more than 10000 values"_s);
  EXPECT_TRUE(receiver_.messages.empty());
}

TEST_F(BusTicker, RefusesAPictureOfFiftyMegabytes) {
  expectLog(u"more than 33554432 bytes"_s);
  const BusReply result = display({{u"image"_s, QByteArray(50 << 20, 'x')}});
  EXPECT_EQ(result.errorName, TooMuchErrorName);
  EXPECT_EQ(result.errorMessage, u"more than 33554432 bytes"_s);
  EXPECT_TRUE(display({{u"text"_s, u"next"_s}}).ok);
  EXPECT_EQ(receiver_.messages.size(), 1u);
}

TEST_F(BusTicker, RefusesArgumentsOfOtherTypes) {
  const struct {
    QString method;
    QVariantList arguments;
    QString complaint;
  } cases[] = {
      {u"DisplayMessage"_s, {3}, u"DisplayMessage takes (a{sv}), not (i)"_s},
      {u"DisplayMessage"_s, {}, u"DisplayMessage takes (a{sv}), not ()"_s},
      {u"DisplayMessage"_s, {QVariantMap(), 1}, u"DisplayMessage takes (a{sv}), not (a{sv}i)"_s},
      {u"DisplaySign"_s, {u"text"_s}, u"DisplaySign takes (ay), not (s)"_s},
      {u"DisplaySignFrom"_s, {QByteArray("a")}, u"DisplaySignFrom takes (aya{sv}), not (ay)"_s},
      {u"RemoveSign"_s, {1.5}, u"RemoveSign takes (s), not (d)"_s},
      {u"ArrangeSigns"_s, {u"a"_s}, u"ArrangeSigns takes (as), not (s)"_s},
      {u"Run"_s, {QStringList{u"a"_s}, u"/"_s}, u"Run takes (assah), not (ass)"_s},
      {u"Quit"_s, {true}, u"Quit takes (), not (b)"_s},
  };
  for (const auto& one : cases) {
    const QDBusMessage reply = send(tickerCall(one.method, one.arguments));
    EXPECT_EQ(reply.errorName(), InvalidArgs) << one.method.toStdString();
    EXPECT_EQ(reply.errorMessage(), one.complaint);
  }
  EXPECT_TRUE(receiver_.messages.empty());
  EXPECT_TRUE(receiver_.signs.empty());
  EXPECT_TRUE(receiver_.removed.empty());
  EXPECT_EQ(receiver_.quitCount, 0);
}

TEST_F(BusTicker, KnowsNoOtherMethodsAndInterfaces) {
  EXPECT_EQ(send(tickerCall(u"Explode"_s, {})).errorName(),
            u"org.freedesktop.DBus.Error.UnknownMethod"_s);
  EXPECT_EQ(send(tickerCall(u"Quit"_s, {}, u"org.example.Other"_s)).errorName(),
            u"org.freedesktop.DBus.Error.UnknownInterface"_s);
  EXPECT_EQ(receiver_.quitCount, 0);
  EXPECT_EQ(send(tickerCall(u"Quit"_s, {}, QString())).type(), QDBusMessage::ReplyMessage)
      << "an interface need not be named";
  EXPECT_TRUE(waitUntil([&] { return receiver_.quitCount == 1; }));
}

TEST_F(BusTicker, HasAVersionThatCanOnlyBeRead) {
  const QDBusMessage got =
      send(tickerCall(u"Get"_s, {QString(TickerInterface), u"Version"_s}, Properties));
  EXPECT_EQ(got.arguments().value(0).value<QDBusVariant>().variant(),
            QVariant(QStringLiteral(ZQTICKER_VERSION)));
  const QDBusMessage all = send(tickerCall(u"GetAll"_s, {QString(TickerInterface)}, Properties));
  EXPECT_EQ(plainValue(all.arguments().value(0)),
            QVariant(QVariantMap{{u"Version"_s, QStringLiteral(ZQTICKER_VERSION)}}));
  const QVariant value = QVariant::fromValue(QDBusVariant(u"9"_s));
  EXPECT_EQ(send(tickerCall(u"Set"_s, {QString(TickerInterface), u"Version"_s, value}, Properties))
                .errorName(),
            u"org.freedesktop.DBus.Error.PropertyReadOnly"_s);
  EXPECT_EQ(
      send(tickerCall(u"Get"_s, {QString(TickerInterface), u"Colour"_s}, Properties)).errorName(),
      u"org.freedesktop.DBus.Error.UnknownProperty"_s);
  EXPECT_EQ(send(tickerCall(u"Get"_s, {1}, Properties)).errorName(), InvalidArgs);
}

TEST_F(BusTicker, DescribesItselfAsTheShippedFileDoes) {
  QFile file(QStringLiteral(ZQTICKER_SOURCE_DIR "/app/bus/org.zqticker.Ticker1.xml"));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QDBusMessage reply =
      send(tickerCall(u"Introspect"_s, {}, u"org.freedesktop.DBus.Introspectable"_s));
  const QStringList shipped = interfaceElements(QString::fromUtf8(file.readAll()));
  EXPECT_GT(shipped.size(), 20);
  EXPECT_EQ(interfaceElements(reply.arguments().value(0).toString()), shipped);
}

TEST_F(BusTicker, DoesWhatItDescribes) {
  // Every method of the description, called as it says, is known.
  for (const QString& method : methodsOf(tickerInterface())) {
    const QDBusMessage reply = send(tickerCall(method, {1, 2, 3, 4, 5}));
    EXPECT_EQ(reply.errorName(), InvalidArgs) << method.toStdString();
  }
}

TEST_F(BusTicker, ShowsSignsFromArchives) {
  const QByteArray archive("archive\0bytes", 13);
  const BusReply from = reply([&](auto callback) {
    client_->displaySign(archive, {{u"priority"_s, 2}, {u"arranged"_s, true}}, callback);
  });
  EXPECT_EQ(from.identifier, u"made"_s);
  const QDBusMessage plain = send(tickerCall(u"DisplaySign"_s, {archive}));
  EXPECT_EQ(plain.arguments(), QVariantList{u"made"_s});
  ASSERT_EQ(receiver_.signs.size(), 2u);
  EXPECT_EQ(receiver_.signs[0].archive, archive);
  EXPECT_EQ(receiver_.signs[0].dictionary,
            (QVariantMap{{u"priority"_s, 2}, {u"arranged"_s, true}}));
  EXPECT_EQ(receiver_.signs[1].archive, archive);
  EXPECT_TRUE(receiver_.signs[1].dictionary.isEmpty());
}

TEST_F(BusTicker, RemovesAndArrangesSigns) {
  EXPECT_TRUE(reply([&](auto callback) { client_->removeSign(u"there"_s, callback); }).removed);
  const BusReply gone = reply([&](auto callback) { client_->removeSign(u"gone"_s, callback); });
  EXPECT_TRUE(gone.ok);
  EXPECT_FALSE(gone.removed);
  EXPECT_EQ(receiver_.removed, (QStringList{u"there"_s, u"gone"_s}));
  const QStringList order{u"b"_s, u"a"_s};
  EXPECT_TRUE(reply([&](auto callback) { client_->arrangeSigns(order, callback); }).ok);
  EXPECT_EQ(receiver_.arranged, order);
}

TEST_F(BusTicker, RepliesWithWhatTheReceiverRaises) {
  receiver_.beforeMessage = [] {
    throw BusFailure(BusFailure::Kind::InvalidMessage, u"loopCount: must be a whole number"_s);
  };
  BusReply result = display({{u"loopCount"_s, u"x"_s}});
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.errorName, InvalidMessageErrorName);
  EXPECT_EQ(result.errorMessage, u"loopCount: must be a whole number"_s);
  receiver_.beforeMessage = [] { throw std::runtime_error("no more paint"); };
  result = display({});
  EXPECT_EQ(result.errorName, FailedErrorName);
  EXPECT_EQ(result.errorMessage, u"no more paint"_s);
}

TEST_F(BusTicker, HearsTheNotificationFromAnyPathAndSender) {
  QDBusMessage broadcast =
      QDBusMessage::createSignal(u"/some/where"_s, TickerInterface, DisplayMessageSignal);
  broadcast.setArguments({QVariantMap{{u"text"_s, u"for all"_s}}});
  ASSERT_TRUE(connection().send(broadcast));
  QDBusMessage unicast = QDBusMessage::createTargetedSignal(TickerBusName, u"/else/where"_s,
                                                            TickerInterface, DisplayMessageSignal);
  unicast.setArguments({QVariantMap{{u"text"_s, u"for the ticker"_s}}});
  ASSERT_TRUE(connection().send(unicast));
  ASSERT_TRUE(waitUntil([&] { return receiver_.notifications.size() == 2; }));
  EXPECT_EQ(receiver_.notifications[0].dictionary.value(u"text"_s), QVariant(u"for all"_s));
  EXPECT_EQ(receiver_.notifications[0].sender.name, connection().baseService());
  EXPECT_EQ(receiver_.notifications[1].dictionary.value(u"text"_s), QVariant(u"for the ticker"_s));
}

TEST_F(BusTicker, PassesOverANotificationOfOtherTypes) {
  expectLog(u"DisplayMessageNotification takes (a{sv}), not (i)"_s);
  QDBusMessage wrong = QDBusMessage::createSignal(u"/"_s, TickerInterface, DisplayMessageSignal);
  wrong.setArguments({3});
  ASSERT_TRUE(connection().send(wrong));
  QDBusMessage right = QDBusMessage::createSignal(u"/"_s, TickerInterface, DisplayMessageSignal);
  right.setArguments({QVariantMap{}});
  ASSERT_TRUE(connection().send(right));
  EXPECT_TRUE(waitUntil([&] { return receiver_.notifications.size() == 1; }));
}

TEST_F(BusTicker, GivesANewReceiverWhatWaitsFromTheEventLoop) {
  service_->setReceiver(nullptr);
  connection().asyncCall(tickerCall(u"Quit"_s, {}));
  // The call before this one has been read when there is an answer.
  send(tickerCall(u"Get"_s, {QString(TickerInterface), u"Version"_s}, Properties));
  service_->setReceiver(&receiver_);
  EXPECT_EQ(receiver_.quitCount, 0) << "there may be no loop yet that could end";
  EXPECT_TRUE(waitUntil([&] { return receiver_.quitCount == 1; }));
}

TEST_F(BusTicker, GoesOnWhereASenderVanishesBeforeItsReply) {
  QProcess sender;
  receiver_.beforeMessage = [&] {
    sender.kill();
    sender.waitForFinished();
  };
  sender.setProcessEnvironment(bus_->environment());
  sender.start(u"dbus-send"_s,
               {u"--session"_s, u"--print-reply"_s, u"--dest="_s + TickerBusName, TickerObjectPath,
                u"org.zqticker.Ticker1.DisplayMessage"_s, u"dict:string:string:text,last"_s});
  ASSERT_TRUE(waitUntil([&] { return receiver_.messages.size() == 1; }));
  receiver_.beforeMessage = [] {};
  EXPECT_TRUE(display({{u"text"_s, u"next"_s}}).ok);
}

TEST_F(BusTicker, KeepsTheEventLoopGoingWhileManyMessagesWait) {
  // Each message takes its time; whatever else the loop has to do comes between them.
  int turns = 0;
  QTimer loop;
  QObject::connect(&loop, &QTimer::timeout, [&] { ++turns; });
  receiver_.beforeMessage = [] {
    const QDeadlineTimer busy(1, Qt::PreciseTimer);
    while (!busy.hasExpired())
      continue;
  };
  constexpr std::size_t Count = 400;
  service_->setReceiver(nullptr);
  for (std::size_t i = 0; i < Count; ++i)
    connection().asyncCall(tickerCall(u"DisplayMessage"_s, {QVariantMap{}}));
  send(tickerCall(u"Get"_s, {QString(TickerInterface), u"Version"_s}, Properties));
  loop.start(0);
  // However often it is told to hand out.
  for (int i = 0; i < 10; ++i)
    service_->setReceiver(&receiver_);
  EXPECT_TRUE(waitUntil([&] { return receiver_.messages.size() == Count; }));
  EXPECT_GT(turns, 50);
}

TEST_F(BusTicker, KeepsTheEventLoopGoingAndTheOrderWhileAnotherThreadDecodes) {
  std::promise<void> decoded;
  receiver_.decode = [done = decoded.get_future().share()] { done.wait(); };
  std::optional<BusReply> shown;
  client_->displayMessage({{u"identifier"_s, u"picture"_s}},
                          [&](const BusReply& one) { shown = one; });
  const QDBusPendingCall removal =
      connection().asyncCall(tickerCall(u"RemoveSign"_s, {u"there"_s}));
  // Both have been read when there is an answer; the loop goes on.
  send(tickerCall(u"Get"_s, {QString(TickerInterface), u"Version"_s}, Properties));
  int turns = 0;
  QTimer loop;
  QObject::connect(&loop, &QTimer::timeout, [&] { ++turns; });
  loop.start(0);
  EXPECT_TRUE(waitUntil([&] { return turns > 50; }));
  EXPECT_FALSE(shown);
  EXPECT_TRUE(receiver_.messages.empty());
  decoded.set_value();
  ASSERT_TRUE(waitUntil([&] { return shown && removal.isFinished(); }));
  EXPECT_TRUE(shown->ok);
  EXPECT_EQ(shown->identifier, u"picture"_s);
  EXPECT_EQ(receiver_.messages.size(), 1u);
  EXPECT_EQ(receiver_.removed, QStringList{u"there"_s});
}

TEST_F(BusTicker, AsksForNothingElseWhileAnotherThreadDecodes) {
  std::promise<void> decoded;
  receiver_.decode = [done = decoded.get_future().share()] { done.wait(); };
  std::thread::id shownBy;
  receiver_.beforeMessage = [&] {
    shownBy = std::this_thread::get_id();
    EXPECT_TRUE(receiver_.removed.empty());
  };
  // The same sender: its requests are read in their order.
  connection().asyncCall(tickerCall(u"DisplayMessage"_s, {QVariantMap{}}));
  connection().asyncCall(tickerCall(u"RemoveSign"_s, {u"there"_s}));
  send(tickerCall(u"Get"_s, {QString(TickerInterface), u"Version"_s}, Properties));
  decoded.set_value();
  EXPECT_TRUE(waitUntil([&] { return receiver_.removed.size() == 1; }));
  EXPECT_EQ(shownBy, std::this_thread::get_id());
}

TEST_F(BusTicker, RefusesASignWhoseReceiverGoesWhileAnotherThreadDecodes) {
  std::promise<void> begun;
  std::promise<void> decoded;
  receiver_.decode = [&, done = decoded.get_future().share()] {
    begun.set_value();
    done.wait();
  };
  const QDBusPendingCall call =
      connection().asyncCall(tickerCall(u"DisplayMessage"_s, {QVariantMap{}}));
  const std::future<void> hasBegun = begun.get_future();
  ASSERT_TRUE(waitUntil(
      [&] { return hasBegun.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
  service_->setReceiver(nullptr);
  ASSERT_TRUE(waitUntil([&] { return call.isFinished(); }));
  EXPECT_EQ(call.reply().errorMessage(), u"the ticker ends"_s);
  receiver_.decode = nullptr;
  service_->setReceiver(&receiver_);
  decoded.set_value();
  EXPECT_TRUE(display({{u"text"_s, u"next"_s}}).ok);
  EXPECT_EQ(receiver_.messages.size(), 1u);
}

TEST_F(BusTicker, EndsWhileAnotherThreadDecodes) {
  std::promise<void> begun;
  std::atomic<bool> isDecoded = false;
  receiver_.decode = [&] {
    begun.set_value();
    isDecoded = true;
  };
  connection().asyncCall(tickerCall(u"DisplayMessage"_s, {QVariantMap{}}));
  const std::future<void> hasBegun = begun.get_future();
  ASSERT_TRUE(waitUntil(
      [&] { return hasBegun.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
  service_.reset();
  EXPECT_TRUE(isDecoded) << "the thread is waited for";
}

TEST_F(BusTicker, GoesOnReadingAfterMuchHasWaited) {
  // More than the 63 MB at which the library beneath stops reading by default.
  constexpr std::size_t Senders = 3;
  constexpr qsizetype Large = 22 << 20;
  service_->setReceiver(nullptr);
  for (std::size_t i = 0; i < Senders; ++i) {
    const QString name = u"sender of much %1"_s.arg(i);
    QDBusConnection sender = QDBusConnection::connectToBus(bus_->address(), name);
    sender.asyncCall(
        tickerCall(u"DisplayMessage"_s, {QVariantMap{{u"image"_s, QByteArray(Large, 'x')}}}));
    // It has been read, and waits, when the next call is answered.
    const QDBusPendingCall next = sender.asyncCall(
        tickerCall(u"Get"_s, {QString(TickerInterface), u"Version"_s}, Properties));
    EXPECT_TRUE(waitUntil([&] { return next.isFinished(); }));
    QDBusConnection::disconnectFromBus(name);
  }
  service_->setReceiver(&receiver_);
  ASSERT_TRUE(waitUntil([&] { return receiver_.messages.size() == Senders; }));
  receiver_.messages.clear();
  EXPECT_TRUE(display({{u"text"_s, u"next"_s}}).ok);
}

TEST_F(BusTicker, LetsOthersThroughAFloodWhileAnotherThreadSendsIt) {
  expectLog(u"too many messages wait"_s); // once
  // The receiver takes nothing while the flood comes.
  service_->setReceiver(nullptr);
  std::thread flood([&] {
    for (int i = 0; i < 20'000; ++i)
      connection().send(tickerCall(u"DisplayMessage"_s, {QVariantMap{{u"text"_s, u"flood"_s}}}));
  });
  flood.join();
  // A further message of the same sender is refused, when all before it have been read.
  const QDBusMessage refused = send(tickerCall(u"DisplayMessage"_s, {QVariantMap{}}));
  EXPECT_EQ(refused.errorName(), TooMuchErrorName);
  EXPECT_EQ(refused.errorMessage(), u"too many messages wait"_s);
  std::optional<BusReply> other;
  client_->displayMessage({{u"identifier"_s, u"other"_s}},
                          [&](const BusReply& one) { other = one; });
  service_->setReceiver(&receiver_);
  ASSERT_TRUE(waitUntil([&] { return other.has_value(); }));
  EXPECT_EQ(other->identifier, u"other"_s);
  EXPECT_EQ(receiver_.messages.size(), BusInbox::OfSender.requests + 1);
}
