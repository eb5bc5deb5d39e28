#include "app/sight/ScreenSavers.h"

#include "app/bus/BusListener.h"
#include "app/sight/SessionSight.h"
#include "tests/app/XServer.h"
#include "tests/app/bus/PrivateBus.h"
#include "tests/app/sight/FakeServices.h"

#include <QtCore/QTemporaryDir>
#include <QtDBus/QDBusConnectionInterface>

#include <memory>
#include <optional>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
class ScreenSaver : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateBus::isInstalled())
      GTEST_SKIP() << "dbus-daemon is not installed";
    bus_.emplace();
  }

  std::optional<PrivateBus> bus_;
};
} // namespace

TEST_F(ScreenSaver, TakesTheScreenOutOfSightWhileItIsActive) {
  for (const QString& desktop :
       {u"freedesktop"_s, u"gnome"_s, u"cinnamon"_s, u"mate"_s, u"xfce"_s}) {
    FakeScreenSaver saver(bus_->address(), desktop, false);
    SessionSight sight(bus_->address(), std::nullopt);
    EXPECT_TRUE(sight.isInSight());
    // Asked, it is heard as well.
    ASSERT_TRUE(waitUntil([&] { return saver.questions() > 0; })) << desktop.toStdString();
    saver.setActive(true);
    ASSERT_TRUE(waitUntil([&] { return !sight.isInSight(); })) << desktop.toStdString();
    saver.setActive(false);
    ASSERT_TRUE(waitUntil([&] { return sight.isInSight(); })) << desktop.toStdString();
  }
}

TEST_F(ScreenSaver, IsAskedForWhatWasBefore) {
  FakeScreenSaver saver(bus_->address(), u"gnome"_s, true);
  SessionSight sight(bus_->address(), std::nullopt);
  EXPECT_TRUE(waitUntil([&] { return !sight.isInSight(); }));
}

TEST_F(ScreenSaver, MayComeLaterAndCoversNothingWhenItHasGone) {
  SessionSight sight(bus_->address(), std::nullopt);
  auto saver = std::make_unique<FakeScreenSaver>(bus_->address(), u"mate"_s, true);
  ASSERT_TRUE(waitUntil([&] { return !sight.isInSight(); }));
  saver.reset();
  EXPECT_TRUE(waitUntil([&] { return sight.isInSight(); }));
}

TEST_F(ScreenSaver, IsOneOfSeveral) {
  FakeScreenSaver first(bus_->address(), u"freedesktop"_s, true);
  FakeScreenSaver second(bus_->address(), u"gnome"_s, true);
  BusListener listener(bus_->address());
  ScreenSavers savers(listener);
  int changes = 0;
  QObject::connect(&savers, &ScreenSavers::changed, [&] { ++changes; });
  listener.open();
  ASSERT_TRUE(waitUntil([&] { return changes == 2; }));
  first.setActive(false);
  ASSERT_TRUE(waitUntil([&] { return changes == 3; }));
  EXPECT_TRUE(savers.isActive()) << "the other one still is";
  second.setActive(false);
  EXPECT_TRUE(waitUntil([&] { return !savers.isActive(); }));
}

TEST_F(ScreenSaver, IsHeardAgainAfterTheBusHasRestarted) {
  auto saver = std::make_unique<FakeScreenSaver>(bus_->address(), u"gnome"_s, true);
  SessionSight sight(bus_->address(), std::nullopt);
  ASSERT_TRUE(waitUntil([&] { return !sight.isInSight(); }));
  bus_->stop();
  EXPECT_TRUE(waitUntil([&] { return sight.isInSight(); })) << "nobody tells any more";
  saver.reset();
  bus_->start();
  saver = std::make_unique<FakeScreenSaver>(bus_->address(), u"gnome"_s, true);
  EXPECT_TRUE(waitUntil([&] { return !sight.isInSight(); }));
}

TEST_F(ScreenSaver, IsHeardItselfAndNobodyElse) {
  FakeScreenSaver saver(bus_->address(), u"gnome"_s, false);
  FakeScreenSaver other(bus_->address(), u"nobody"_s, false);
  BusListener listener(bus_->address());
  ScreenSavers savers(listener);
  int changes = 0;
  QObject::connect(&savers, &ScreenSavers::changed, [&] { ++changes; });
  listener.open();
  ASSERT_TRUE(waitUntil([&] { return saver.questions() > 0; }));
  // To its own connection, so that it is there without being listened to.
  for (const QString& name : other.connection().interface()->registeredServiceNames().value())
    if (name.startsWith(u':'))
      other.tellOne(name, u"/org/gnome/ScreenSaver"_s, u"org.gnome.ScreenSaver"_s,
                    u"ActiveChanged"_s, {true});
  // The bus answers in order.
  EXPECT_TRUE(other.connection().interface()->registeredServiceNames().isValid());
  saver.setActive(false);
  saver.setActive(true);
  ASSERT_TRUE(waitUntil([&] { return savers.isActive(); }));
  saver.setActive(false);
  ASSERT_TRUE(waitUntil([&] { return !savers.isActive(); }));
  EXPECT_EQ(changes, 2);
}

TEST_F(ScreenSaver, IsNotStartedByBeingAsked) {
  const QTemporaryDir folder;
  const QString sign = folder.filePath(u"started"_s);
  QFile service(folder.filePath(u"saver.service"_s));
  ASSERT_TRUE(service.open(QIODevice::WriteOnly));
  service.write(QString(u"[D-BUS Service]\nName=org.gnome.ScreenSaver\nExec=/bin/sh -c 'touch "_s +
                        sign + u"'\n"_s)
                    .toUtf8());
  service.close();
  PrivateBus bus(folder.path());
  FakeScreenSaver other(bus.address(), u"xfce"_s, true);
  SessionSight sight(bus.address(), std::nullopt);
  ASSERT_TRUE(waitUntil([&] { return !sight.isInSight(); })) << "the last one has answered";
  EXPECT_FALSE(QFile::exists(sign));
  // Whoever wants it started is served.
  QProcess call;
  call.setProcessEnvironment(bus.environment());
  call.start(u"dbus-send"_s, {u"--session"_s, u"--dest=org.gnome.ScreenSaver"_s, u"/"_s,
                              u"org.gnome.ScreenSaver.GetActive"_s});
  ASSERT_TRUE(call.waitForFinished());
  EXPECT_TRUE(waitUntil([&] { return QFile::exists(sign); }));
}

TEST(SessionSight, SeesTheScreenWhereNobodyTells) {
  SessionSight sight(std::nullopt, u"unix:path=/nosuch/bus"_s);
  EXPECT_TRUE(sight.isInSight());
}

TEST(SessionSight, DoesNotWaitForABusThatDoesNotAnswer) {
  const QTemporaryDir folder;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const QByteArray path = folder.filePath(u"bus"_s).toLocal8Bit();
  ASSERT_LT(path.size(), qsizetype(sizeof address.sun_path));
  std::copy(path.begin(), path.end(), address.sun_path);
  const int server = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(::bind(server, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(::listen(server, 5), 0);
  {
    SessionSight sight(QString(u"unix:path="_s + QString::fromLocal8Bit(path)), std::nullopt);
    EXPECT_TRUE(sight.isInSight());
    const int client = ::accept4(server, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    ASSERT_GE(client, 0);
    // It greets, and has not given up.
    char byte = 1;
    ASSERT_TRUE(waitUntil([&] { return ::recv(client, &byte, 1, 0) == 1; }));
    EXPECT_EQ(byte, 0);
    char rest[1000];
    ssize_t count = 0;
    while ((count = ::recv(client, rest, sizeof rest, 0)) > 0)
      continue;
    EXPECT_EQ(count, -1) << "still open";
    ::close(client);
  }
  ::close(server);
}
