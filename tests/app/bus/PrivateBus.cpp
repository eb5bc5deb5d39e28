#include "tests/app/bus/PrivateBus.h"

#include <QtCore/QFile>
#include <QtCore/QStandardPaths>

#include <csignal>

#include <sys/prctl.h>

using namespace Qt::StringLiterals;

namespace zq::app::testing {

namespace {
constexpr int StartMilliseconds = 20'000;

// As a session's bus is set up, with limits that nothing here reaches.
QString configuration(const QString& address, const QString& services) {
  return uR"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
  "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>%1</listen>
  <auth>EXTERNAL</auth>
  %2
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  <limit name="max_incoming_bytes">1000000000</limit>
  <limit name="max_outgoing_bytes">1000000000</limit>
  <limit name="max_message_size">1000000000</limit>
  <limit name="service_start_timeout">120000</limit>
  <limit name="max_completed_connections">100000</limit>
  <limit name="max_connections_per_user">100000</limit>
  <limit name="max_replies_per_connection">50000</limit>
</busconfig>
)"_s.arg(address, services);
}
} // namespace

PrivateBus::PrivateBus(Activation activation, const QProcessEnvironment& environment)
    : PrivateBus(activation == Activation::Ticker
                     ? QStringLiteral(ZQTICKER_BINARY_DIR "/share/dbus-1/services")
                     : QString(),
                 environment) {}

PrivateBus::PrivateBus(const QString& serviceFolder, const QProcessEnvironment& environment)
    : environment_(environment) {
  environment_.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, address());
  const QString services =
      serviceFolder.isEmpty() ? QString() : u"<servicedir>%1</servicedir>"_s.arg(serviceFolder);
  QFile file(folder_.filePath(u"bus.conf"_s));
  if (file.open(QIODevice::WriteOnly))
    file.write(configuration(address(), services).toUtf8());
  file.close();
  start();
}

PrivateBus::~PrivateBus() {
  stop();
}

bool PrivateBus::isInstalled() {
  return !QStandardPaths::findExecutable(u"dbus-daemon"_s).isEmpty();
}

QString PrivateBus::address() const {
  return u"unix:path="_s + folder_.filePath(u"bus"_s);
}

QProcessEnvironment PrivateBus::environment(QProcessEnvironment environment) const {
  environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, address());
  return environment;
}

void PrivateBus::start() {
  daemon_.setProcessEnvironment(environment_);
  daemon_.setStandardErrorFile(QProcess::nullDevice());
  daemon_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
  daemon_.start(u"dbus-daemon"_s, {u"--nofork"_s, u"--nopidfile"_s, u"--print-address"_s,
                                   u"--config-file="_s + folder_.filePath(u"bus.conf"_s)});
  // The daemon says its address when it is ready.
  while (isRunning() || daemon_.state() == QProcess::Starting)
    if (daemon_.canReadLine() || !daemon_.waitForReadyRead(StartMilliseconds))
      break;
  daemon_.readLine();
}

void PrivateBus::stop() {
  daemon_.kill();
  daemon_.waitForFinished();
  QFile::remove(folder_.filePath(u"bus"_s));
}

} // namespace zq::app::testing
