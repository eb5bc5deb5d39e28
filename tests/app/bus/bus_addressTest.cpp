#include "app/bus/bus_address.h"

#include "tests/support/environment.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using zq::testing::ScopedVariable;

namespace {
// A folder with a socket called "bus", which nobody listens on.
class RuntimeFolder {
 public:
  explicit RuntimeFolder(const QString& name) : path_(folder_.filePath(name)) {
    QDir().mkpath(path_);
    socket_ = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray file = QFile::encodeName(path_) + "/bus";
    qstrncpy(address.sun_path, file.constData(), sizeof address.sun_path);
    EXPECT_EQ(::bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  }
  ~RuntimeFolder() { ::close(socket_); }
  RuntimeFolder(const RuntimeFolder&) = delete;

  QString path() const { return path_; }

 private:
  QTemporaryDir folder_;
  QString path_;
  int socket_ = -1;
};

// The variable is not set, until the end.
class UnsetVariable : public ScopedVariable {
 public:
  explicit UnsetVariable(const char* name) : ScopedVariable(name, "") { qunsetenv(name); }
};
} // namespace

TEST(BusAddress, IsWhatTheEnvironmentSays) {
  const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/somewhere");
  EXPECT_EQ(sessionBusAddress(), u"unix:path=/somewhere"_s);
  EXPECT_FALSE(isSessionBusSwitchedOff());
}

TEST(BusAddress, CanBeSwitchedOff) {
  for (const char* value : {"", "disabled:"}) {
    const RuntimeFolder folder(u"runtime"_s);
    const ScopedVariable runtime("XDG_RUNTIME_DIR", folder.path().toLocal8Bit());
    const ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", value);
    EXPECT_FALSE(sessionBusAddress());
    EXPECT_TRUE(isSessionBusSwitchedOff());
  }
}

TEST(BusAddress, IsTheSocketOfTheUserWhereTheEnvironmentSaysNothing) {
  const UnsetVariable address("DBUS_SESSION_BUS_ADDRESS");
  const RuntimeFolder folder(u"run time,1"_s);
  const ScopedVariable runtime("XDG_RUNTIME_DIR", folder.path().toLocal8Bit());
  QString escaped = folder.path();
  escaped.replace(u"run time,1"_s, u"run%20time%2C1"_s);
  EXPECT_EQ(sessionBusAddress(), QString(u"unix:path="_s + escaped + u"/bus"_s));
  EXPECT_FALSE(isSessionBusSwitchedOff());
}

TEST(BusAddress, IsMissingWhereNothingIsThere) {
  const UnsetVariable address("DBUS_SESSION_BUS_ADDRESS");
  QTemporaryDir folder;
  const ScopedVariable runtime("XDG_RUNTIME_DIR", folder.path().toLocal8Bit());
  EXPECT_FALSE(sessionBusAddress());
  QFile file(folder.filePath(u"bus"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  EXPECT_FALSE(sessionBusAddress()) << "a plain file";
  const UnsetVariable none("XDG_RUNTIME_DIR");
  EXPECT_FALSE(sessionBusAddress());
}
