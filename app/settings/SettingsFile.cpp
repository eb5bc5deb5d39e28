#include "app/settings/SettingsFile.h"

#include "app/commands/JsonValue.h"
#include "app/commands/failures.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>
#include <QtCore/QLockFile>
#include <QtCore/QSaveFile>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// Others hold the lock for as long as a small file is written.
constexpr int PatienceMilliseconds = 10'000;
constexpr int MostNames = 100;

RunTimeError cannotWrite(const QString& path, const QString& reason) {
  return RunTimeError(quotedForMessage(path) + u": cannot write: "_s + reason);
}
} // namespace

// The right to change the file. Kept by a file beside it, since the file itself is replaced.
class SettingsFile::Lock {
 public:
  explicit Lock(const QString& path) : file_(path + u".lock"_s) {
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
      throw cannotWrite(path, u"the folder cannot be made"_s);
    if (file_.tryLock(PatienceMilliseconds))
      return;
    throw cannotWrite(path, file_.error() == QLockFile::LockFailedError
                                ? u"another program is changing it"_s
                                : u"the folder cannot be written to"_s);
  }

 private:
  QLockFile file_;
};

SettingsFile::Contents SettingsFile::read() const {
  Contents contents;
  const QFileInfo info(path_);
  if (!info.exists())
    return contents;
  // A pipe would keep its reader waiting.
  if (!info.isFile()) {
    contents.problem = u"cannot read: not a file"_s;
    return contents;
  }
  QFile file(path_);
  if (!file.open(QIODevice::ReadOnly)) {
    contents.problem = u"cannot read: "_s + file.errorString();
    return contents;
  }
  const QByteArray bytes = file.read(LargestFile + 1);
  if (file.error() != QFileDevice::NoError) {
    contents.problem = u"cannot read: "_s + file.errorString();
    return contents;
  }
  if (bytes.trimmed().isEmpty())
    return contents;
  try {
    if (bytes.size() > LargestFile)
      throw JsonError(u"larger than %1 MiB"_s.arg(LargestFile >> 20));
    const JsonValue json = JsonValue::parse(bytes);
    if (!json.value().isObject())
      throw JsonError(u"not a JSON object"_s);
    contents.object = json.value().toObject();
  } catch (const JsonError& error) {
    contents.problem = error.reason();
    contents.isBroken = true;
  }
  return contents;
}

void SettingsFile::change(const std::function<void(QJsonObject&)>& change) {
  const Lock lock(path_);
  Contents contents = read();
  if (!contents.problem.isEmpty() && !contents.isBroken)
    throw RunTimeError(quotedForMessage(path_) + u": "_s + contents.problem);
  if (contents.isBroken && renameBroken().isEmpty())
    throw cannotWrite(path_, u"the broken file cannot be kept aside"_s);
  const QJsonObject before = contents.object;
  change(contents.object);
  if (contents.object == before)
    return;
  QSaveFile file(path_);
  if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(contents.object).toJson()) < 0 ||
      !file.commit())
    throw cannotWrite(path_, file.errorString());
}

QString SettingsFile::keepAside() {
  try {
    const Lock lock(path_);
    return read().isBroken ? renameBroken() : QString();
  } catch (const RunTimeError&) {
    // A folder that cannot be written to: the caller tells that the file stays.
    return QString();
  }
}

QString SettingsFile::renameBroken() const {
  const QString name =
      path_ + u".broken-"_s + QDateTime::currentDateTimeUtc().toString(u"yyyyMMdd-hhmmss"_s);
  for (int i = 1; i <= MostNames; ++i) {
    const QString numbered = i == 1 ? name : QString(name + u'-' + QString::number(i));
    // Never over another file.
    if (QFile::rename(path_, numbered))
      return numbered;
    if (!QFileInfo::exists(numbered))
      break;
  }
  return QString();
}

} // namespace zq::app
