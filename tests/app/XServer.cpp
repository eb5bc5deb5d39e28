#include "tests/app/XServer.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtCore/QTimer>
#include <QtCore/QtEndian>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::app::testing {

namespace {
constexpr int PatienceMilliseconds = 60'000;
constexpr int LookMilliseconds = 5;
constexpr int MostReads = 1000;
constexpr int StartMilliseconds = 20'000;

// Fields of the header of an X window dump, as 32-bit big-endian numbers.
enum DumpField { HeaderSize = 0, Width = 4, Height = 5, BytesPerLine = 12, Colors = 19 };
constexpr qsizetype DumpHeaderBytes = 100;
constexpr qsizetype BytesPerColor = 12;
} // namespace

bool waitUntil(const std::function<bool()>& condition) {
  const QDeadlineTimer deadline(PatienceMilliseconds);
  while (!condition()) {
    if (deadline.hasExpired())
      return false;
    QEventLoop loop;
    QTimer::singleShot(LookMilliseconds, &loop, &QEventLoop::quit);
    loop.exec();
  }
  return true;
}

bool XServer::hasProgram(const QString& name) {
  return !QStandardPaths::findExecutable(name).isEmpty();
}

bool XServer::isInstalled() {
  return hasProgram(u"Xvfb"_s);
}

XServer::XServer(int width, int height, Manager manager) {
  int ends[2];
  if (::pipe(ends) != 0)
    return;
  server_.setStandardErrorFile(QProcess::nullDevice());
  server_.setStandardOutputFile(QProcess::nullDevice());
  server_.start(u"Xvfb"_s, {u"-displayfd"_s, QString::number(ends[1]), u"-screen"_s, u"0"_s,
                            u"%1x%2x24"_s.arg(width).arg(height), u"-fbdir"_s, folder_.path(),
                            u"-nolisten"_s, u"tcp"_s, u"-noreset"_s});
  const bool isStarted = server_.waitForStarted(StartMilliseconds);
  ::close(ends[1]);
  QByteArray number;
  char byte = 0;
  // The server writes its number when it is ready.
  while (isStarted && ::read(ends[0], &byte, 1) == 1 && byte != '\n')
    number.append(byte);
  ::close(ends[0]);
  if (number.isEmpty())
    return;
  display_ = ':' + number;
  if (manager == Manager::Installed && hasProgram(u"openbox"_s))
    startManager();
}

void XServer::startManager() {
  windowManager_ = std::make_unique<QProcess>();
  windowManager_->setProcessEnvironment(environment());
  windowManager_->setStandardErrorFile(QProcess::nullDevice());
  windowManager_->setStandardOutputFile(QProcess::nullDevice());
  const QString sign = folder_.filePath(u"managed"_s);
  windowManager_->start(u"openbox"_s, {u"--sm-disable"_s, u"--startup"_s, u"touch "_s + sign});
  waitUntil([&] { return QFile::exists(sign); });
}

XServer::~XServer() {
  for (QProcess* process : {windowManager_.get(), &server_}) {
    if (!process || process->state() == QProcess::NotRunning)
      continue;
    process->terminate();
    if (!process->waitForFinished(StartMilliseconds)) {
      process->kill();
      process->waitForFinished();
    }
  }
}

QProcessEnvironment XServer::environment() const {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(u"DISPLAY"_s, QString::fromLatin1(display_));
  for (const QString& name :
       {u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s, u"QT_SCALE_FACTOR"_s, u"XDG_SESSION_TYPE"_s})
    environment.remove(name);
  return environment;
}

QByteArray XServer::framebuffer() const {
  QFile dump(folder_.filePath(u"Xvfb_screen0"_s));
  return dump.open(QIODevice::ReadOnly) ? dump.readAll() : QByteArray();
}

QImage XServer::screenshot() const {
  // The server draws while the file is read; what reads the same twice is whole.
  QByteArray bytes = framebuffer();
  for (int i = 0; i < MostReads; ++i) {
    const QByteArray again = framebuffer();
    if (again == bytes)
      break;
    bytes = again;
  }
  if (bytes.size() < DumpHeaderBytes)
    return QImage();
  const auto field = [&](DumpField index) {
    return static_cast<int>(qFromBigEndian<quint32>(bytes.constData() + 4 * index));
  };
  const qsizetype first = field(HeaderSize) + field(Colors) * BytesPerColor;
  if (bytes.size() < first + qsizetype(field(BytesPerLine)) * field(Height))
    return QImage();
  return QImage(reinterpret_cast<const uchar*>(bytes.constData()) + first, field(Width),
                field(Height), field(BytesPerLine), QImage::Format_RGB32)
      .copy();
}

} // namespace zq::app::testing
