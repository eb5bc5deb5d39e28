#include "app/bus/bus_address.h"

#include <QtCore/QFile>
#include <QtCore/QUrl>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr char AddressVariable[] = "DBUS_SESSION_BUS_ADDRESS";
} // namespace

bool isSessionBusSwitchedOff() {
  if (!qEnvironmentVariableIsSet(AddressVariable))
    return false;
  const QByteArray address = qgetenv(AddressVariable);
  return address.isEmpty() || address == "disabled:";
}

std::optional<QString> sessionBusAddress() {
  if (isSessionBusSwitchedOff())
    return std::nullopt;
  if (qEnvironmentVariableIsSet(AddressVariable))
    return QString::fromLocal8Bit(qgetenv(AddressVariable));
  const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
  const QByteArray socket = folder + "/bus";
  struct stat status {};
  if (folder.isEmpty() || ::stat(socket.constData(), &status) != 0 || !S_ISSOCK(status.st_mode))
    return std::nullopt;
  // What an address may hold unescaped, besides letters and digits: - _ / . \ *
  return QString(u"unix:path="_s + QString::fromLatin1(socket.toPercentEncoding("/\\*", "~")));
}

QString systemBusAddress() {
  const QByteArray address = qgetenv("DBUS_SYSTEM_BUS_ADDRESS");
  return address.isEmpty() ? u"unix:path=/var/run/dbus/system_bus_socket"_s
                           : QString::fromLocal8Bit(address);
}

} // namespace zq::app
