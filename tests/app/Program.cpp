#include "tests/app/Program.h"

#include "tests/app/XServer.h"

#include <QtCore/QFile>

#include <csignal>

#include <sys/types.h>

using namespace Qt::StringLiterals;

namespace zq::app::testing {

namespace {
constexpr int PatienceMilliseconds = 100'000;
} // namespace

QProcessEnvironment plainEnvironment() {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const QString& name : environment.keys())
    if (name.startsWith("QT_"_L1) || name == "DISPLAY"_L1 || name == "WAYLAND_DISPLAY"_L1 ||
        name.endsWith("_proxy"_L1, Qt::CaseInsensitive))
      environment.remove(name);
  return environment;
}

Outcome runZqticker(const QStringList& arguments, const QByteArray& input,
                    const QProcessEnvironment& environment) {
  QProcess process;
  process.setProcessEnvironment(environment);
  process.start(QStringLiteral(ZQTICKER_PROGRAM), arguments);
  process.write(input);
  process.closeWriteChannel();
  Outcome outcome;
  if (!process.waitForFinished(PatienceMilliseconds)) {
    process.kill();
    process.waitForFinished();
    return outcome;
  }
  if (process.exitStatus() == QProcess::NormalExit)
    outcome.status = process.exitCode();
  outcome.output = process.readAllStandardOutput();
  outcome.errors = process.readAllStandardError();
  return outcome;
}

RunningProgram::RunningProgram(const QStringList& arguments,
                               const QProcessEnvironment& environment) {
  process_.setProcessEnvironment(environment);
  process_.start(QStringLiteral(ZQTICKER_PROGRAM), arguments);
  process_.waitForStarted();
}

RunningProgram::~RunningProgram() {
  if (!isRunning())
    return;
  process_.kill();
  process_.waitForFinished();
}

void RunningProgram::interrupt(int signal) {
  ::kill(static_cast<pid_t>(process_.processId()), signal);
}

int RunningProgram::awaitStatus() {
  const bool hasEnded = waitUntil([this] { return !isRunning(); });
  return hasEnded && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

qint64 RunningProgram::kilobytes(const QByteArray& field) const {
  QFile status(u"/proc/%1/status"_s.arg(process_.processId()));
  if (!status.open(QIODevice::ReadOnly))
    return 0;
  const QByteArray start = field + ':';
  for (const QByteArray& line : status.readAll().split('\n'))
    if (line.startsWith(start))
      return line.mid(start.size()).trimmed().split(' ').first().toLongLong();
  return 0;
}

} // namespace zq::app::testing
