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

std::unique_ptr<QFileDevice> outputFileAt(const QString& path) {
  const QFileInfo info(path);
  // A rename would put a plain file into the place of a device.
  if (info.exists() && !info.isFile() && !info.isDir())
    return std::make_unique<QFile>(path);
  return std::make_unique<QSaveFile>(path);
}

bool finishOutputFile(QFileDevice& file) {
  if (auto* saved = dynamic_cast<QSaveFile*>(&file))
    return saved->commit();
  return file.flush();
}

void writeOutputFile(const QString& option, const QString& path, const QByteArray& bytes) {
  writeOutputFiles(option, {{path, bytes}});
}

void writeOutputFiles(const QString& option, const std::vector<OutputFile>& files) {
  std::vector<std::unique_ptr<QFileDevice>> written;
  const auto require = [&](bool isDone, std::size_t i) {
    if (!isDone)
      throw RunTimeError(option + u' ' + quotedForMessage(files[i].path) + u": cannot write: "_s +
                         written[i]->errorString());
  };
  for (std::size_t i = 0; i < files.size(); ++i) {
    const OutputFile& file = files[i];
    written.push_back(outputFileAt(file.path));
    require(written[i]->open(QIODevice::WriteOnly) &&
                written[i]->write(file.bytes) == file.bytes.size() && written[i]->flush(),
            i);
  }
  for (std::size_t i = 0; i < files.size(); ++i)
    require(finishOutputFile(*written[i]), i);
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
