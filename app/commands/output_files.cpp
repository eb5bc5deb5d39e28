#include "app/commands/output_files.h"

#include "app/commands/failures.h"

#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <cstdio>
#include <cstring>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::app {

void writeOutputFile(const QString& option, const QString& path, const QByteArray& bytes) {
  const QFileInfo info(path);
  std::unique_ptr<QFileDevice> file;
  // A rename would put a plain file into the place of a device.
  if (info.exists() && !info.isFile() && !info.isDir())
    file = std::make_unique<QFile>(path);
  else
    file = std::make_unique<QSaveFile>(path);
  const auto finish = [&] {
    if (auto* saved = dynamic_cast<QSaveFile*>(file.get()))
      return saved->commit();
    return file->flush();
  };
  if (!file->open(QIODevice::WriteOnly) || file->write(bytes) != bytes.size() || !finish())
    throw RunTimeError(option + u' ' + quotedForMessage(path) + u": cannot write: "_s +
                       file->errorString());
}

void writeStandardOutput(const QByteArray& bytes) {
  const auto size = static_cast<std::size_t>(bytes.size());
  if (std::fwrite(bytes.constData(), 1, size, stdout) != size || std::fflush(stdout) != 0)
    throw RunTimeError(u"standard output: "_s + QString::fromLocal8Bit(std::strerror(errno)));
}

void requireStandardOutput() {
  if (::fcntl(STDOUT_FILENO, F_GETFD) == -1)
    throw RunTimeError(u"standard output: "_s + QString::fromLocal8Bit(std::strerror(errno)));
}

} // namespace zq::app
