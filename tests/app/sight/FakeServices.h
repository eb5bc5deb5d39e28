// Services that tell of the screen, on a bus of a test's own.
#pragma once

#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>
#include <QtDBus/QDBusVirtualObject>

#include <gtest/gtest.h>

namespace zq::app::testing {

// One service with a connection of its own. Goes from the bus with the object.
class FakeService : public QDBusVirtualObject {
 public:
  FakeService(const QString& address, const QString& service, const QString& path)
      : path_(path), name_(newName()), connection_(QDBusConnection::connectToBus(address, name_)) {
    EXPECT_TRUE(connection_.isConnected());
    EXPECT_TRUE(connection_.registerVirtualObject(
        path_, this, QDBusConnection::VirtualObjectRegisterOption::SubPath));
    EXPECT_TRUE(connection_.registerService(service));
  }
  ~FakeService() override {
    connection_.unregisterObject(path_);
    connection_ = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(name_);
  }

  QString introspect(const QString&) const override { return QString(); }

  const QDBusConnection& connection() const { return connection_; }

  void tell(const QString& path, const QString& interface, const QString& member,
            const QVariantList& arguments) {
    send(QDBusMessage::createSignal(path, interface, member), arguments);
  }
  // The same to the connection of that name and no other.
  void tellOne(const QString& name, const QString& path, const QString& interface,
               const QString& member, const QVariantList& arguments) {
    send(QDBusMessage::createTargetedSignal(name, path, interface, member), arguments);
  }

 protected:
  const QString path_;

 private:
  void send(QDBusMessage signal, const QVariantList& arguments) {
    signal.setArguments(arguments);
    EXPECT_TRUE(connection_.send(signal));
  }
  static QString newName() {
    static int count = 0;
    return QStringLiteral("fake-service-%1").arg(++count);
  }

  const QString name_;
  QDBusConnection connection_;
};

// A screen saver of a desktop, such as "gnome".
class FakeScreenSaver : public FakeService {
 public:
  FakeScreenSaver(const QString& address, const QString& desktop, bool isActive)
      : FakeService(address, QStringLiteral("org.%1.ScreenSaver").arg(desktop),
                    QStringLiteral("/org/%1/ScreenSaver").arg(desktop)),
        interface_(QStringLiteral("org.%1.ScreenSaver").arg(desktop)), isActive_(isActive) {}

  void setActive(bool isActive) {
    isActive_ = isActive;
    tell(path_, interface_, QStringLiteral("ActiveChanged"), {isActive});
  }
  int questions() const { return questions_; }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.member() != QStringLiteral("GetActive") || message.interface() != interface_)
      return false;
    ++questions_;
    connection.send(message.createReply(isActive_));
    return true;
  }

 private:
  const QString interface_;
  bool isActive_;
  int questions_ = 0;
};

// A login manager with one session, which processes belong to if it says so.
class FakeLoginManager : public FakeService {
 public:
  struct State {
    bool isLocked = false;
    bool isAsleep = false;
    bool knowsProcesses = true;
  };

  FakeLoginManager(const QString& address, State state)
      : FakeService(address, QStringLiteral("org.freedesktop.login1"),
                    QStringLiteral("/org/freedesktop/login1")),
        state_(state) {}

  QString sessionPath() const { return path_ + QStringLiteral("/session/_32"); }

  void tellLock() { tell(sessionPath(), SessionInterface, QStringLiteral("Lock"), {}); }
  void tellUnlock() { tell(sessionPath(), SessionInterface, QStringLiteral("Unlock"), {}); }
  void setLocked(bool isLocked) { tellLocked(sessionPath(), isLocked); }
  void setAnotherLocked(bool isLocked) {
    tellLocked(path_ + QStringLiteral("/session/_33"), isLocked);
  }
  // Tells that the lock is another one, and leaves it to be asked for.
  void changeLocked(bool isLocked) {
    state_.isLocked = isLocked;
    tell(sessionPath(), PropertiesInterface, QStringLiteral("PropertiesChanged"),
         {SessionInterface, QVariantMap(), QStringList{QStringLiteral("LockedHint")}});
  }
  void setAsleep(bool isAsleep) {
    tell(path_, ManagerInterface, QStringLiteral("PrepareForSleep"), {isAsleep});
  }
  // How often the state of the session was asked for.
  int questions() const { return questions_; }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    const QString first = message.arguments().value(0).toString();
    const QString second = message.arguments().value(1).toString();
    QVariant answer;
    if (message.member() == QStringLiteral("GetSessionByPID") && state_.knowsProcesses)
      answer = QVariant::fromValue(QDBusObjectPath(sessionPath()));
    else if (message.member() == QStringLiteral("GetSession") && first == QStringLiteral("auto"))
      answer = QVariant::fromValue(QDBusObjectPath(sessionPath()));
    else if (first == ManagerInterface && second == QStringLiteral("PreparingForSleep"))
      answer = QVariant::fromValue(QDBusVariant(state_.isAsleep));
    else if (first == SessionInterface && second == QStringLiteral("LockedHint") &&
             message.path() == sessionPath())
      answer = QVariant::fromValue(QDBusVariant(state_.isLocked));
    else
      return false;
    questions_ += first == SessionInterface;
    connection.send(message.createReply(answer));
    return true;
  }

 private:
  void tellLocked(const QString& path, bool isLocked) {
    tell(path, PropertiesInterface, QStringLiteral("PropertiesChanged"),
         {SessionInterface, QVariantMap{{QStringLiteral("LockedHint"), isLocked}}, QStringList()});
  }

  inline static const QString ManagerInterface = QStringLiteral("org.freedesktop.login1.Manager");
  inline static const QString SessionInterface = QStringLiteral("org.freedesktop.login1.Session");
  inline static const QString PropertiesInterface =
      QStringLiteral("org.freedesktop.DBus.Properties");
  State state_;
  int questions_ = 0;
};

} // namespace zq::app::testing
