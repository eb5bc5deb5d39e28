#include "zqticker/platform/system/FileSource_p.h"

#include "zqticker/platform/system/url_errors.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QFile>
#include <QtCore/QMimeDatabase>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
constexpr qsizetype PieceBytes = qsizetype(256) << 10;
} // namespace

FileSource::FileSource(const QUrl& url, URLSourceClient& client)
    : url_(url), path_(QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1())),
      client_(client) {
  QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

FileSource::~FileSource() {
  if (descriptor_ >= 0)
    close(descriptor_);
}

bool FileSource::event(QEvent* event) {
  if (event->type() != QEvent::User)
    return QObject::event(event);
  if (descriptor_ < 0 ? open() : readPiece())
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
  return true;
}

bool FileSource::open() {
  const QString host = url_.host();
  if (!host.isEmpty() && host.compare("localhost"_L1, Qt::CaseInsensitive) != 0) {
    fail(BadURL, "a file of another host: "_L1 + host);
    return false;
  }
  if (path_.isEmpty() || path_.contains('\0')) {
    fail(BadURL, u"a file address without a usable path"_s);
    return false;
  }
  // Looked at before it is opened: opening alone has effects on some devices and pipes.
  struct stat status {};
  if (stat(path_.constData(), &status) < 0) {
    failWithErrno(errno);
    return false;
  }
  if (!S_ISREG(status.st_mode)) {
    failForKind(status.st_mode);
    return false;
  }
  descriptor_ = ::open(path_.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor_ < 0 || fstat(descriptor_, &status) < 0) {
    failWithErrno(errno);
    return false;
  }
  // Another may stand there by now.
  if (!S_ISREG(status.st_mode)) {
    failForKind(status.st_mode);
    return false;
  }
  const QString name = QFile::decodeName(path_);
  const QString type = QMimeDatabase().mimeTypeForFile(name, QMimeDatabase::MatchExtension).name();
  client_.sourceReceivedResponse(URLResponse::make(url_, type, status.st_size));
  buffer_ = QByteArray(PieceBytes, Qt::Uninitialized);
  return true;
}

bool FileSource::readPiece() {
  ssize_t count = 0;
  do {
    count = read(descriptor_, buffer_.data(), std::size_t(buffer_.size()));
  } while (count < 0 && errno == EINTR);
  if (count < 0) {
    failWithErrno(errno);
    return false;
  }
  if (count == 0) {
    client_.sourceFinished();
    return false;
  }
  return client_.sourceReceivedData(QByteArrayView(buffer_).first(count));
}

void FileSource::fail(int code, const QString& text) {
  failSource(client_, code, text, url_);
}

void FileSource::failForKind(mode_t mode) {
  const QString name = QFile::decodeName(path_);
  if (S_ISDIR(mode))
    fail(FileIsDirectory, "a folder, not a file: "_L1 + name);
  else
    fail(CannotOpenFile, "not a regular file: "_L1 + name);
}

void FileSource::failWithErrno(int error) {
  const QString name = QFile::decodeName(path_);
  switch (error) {
  case ENOENT:
  case ENOTDIR:
    return fail(FileDoesNotExist, "no such file: "_L1 + name);
  case EACCES:
  case EPERM:
    return fail(NoPermissionsToReadFile, "no permission to read "_L1 + name);
  default:
    return fail(CannotOpenFile, u"could not read %1: %2"_s.arg(
                                    name, QString::fromLocal8Bit(std::strerror(error)).toLower()));
  }
}

} // namespace zq::platform
