#include "app/queue/sign_files.h"

#include "app/commands/failures.h"
#include "app/intake/SilencedStandardError.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQImageTickerSign.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <new>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
constexpr qsizetype MostNameCharacters = 60;
constexpr qsizetype LookedAtBytes = 512;

QString tr(const char* text) {
  return QCoreApplication::translate("QueueWindow", text);
}

// The sign that `value` is; a sign of the base class has no look of its own.
Ref<ZQTickerSign> signOf(const Any& value, const QString& name) {
  const Ref<ZQTickerSign> sign = objectOf<ZQTickerSign>(value);
  if (std::dynamic_pointer_cast<ZQImageTickerSign>(sign) ||
      std::dynamic_pointer_cast<ZQComboTickerSign>(sign))
    return sign;
  throw RunTimeError(tr("%1: holds something that is no sign").arg(name));
}
} // namespace

bool beginsAsArchive(const QByteArray& bytes) {
  if (bytes.startsWith("bplist"))
    return true;
  const QByteArray start = bytes.left(LookedAtBytes).trimmed();
  return start.startsWith('<') && start.contains("<plist");
}

std::vector<Ref<ZQTickerSign>> signsOfArchive(const QByteArray& bytes, const QString& name) {
  try {
    const SilencedStandardError silence;
    const Any root = KeyedUnarchiver::unarchiveObjectWithData(bytes);
    if (root.metaType() != QMetaType::fromType<QVariantList>())
      return {signOf(root, name)};
    const QVariantList list = root.toList();
    if (list.size() > MostSignsInFile)
      throw RunTimeError(tr("%1: more than %2 signs").arg(name).arg(MostSignsInFile));
    std::vector<Ref<ZQTickerSign>> signs;
    for (const Any& value : list)
      signs.push_back(signOf(value, name));
    return signs;
  } catch (const Exception& exception) {
    throw RunTimeError(name + u": "_s + exception.reason().simplified());
  } catch (const std::bad_alloc&) {
    throw RunTimeError(tr("%1: too large").arg(name));
  }
}

QString shownName(const QString& path) {
  return quotedForMessage(QFileInfo(path).fileName()).left(MostNameCharacters);
}

QByteArray readPlainFile(const QString& path, qint64 mostBytes) {
  const QString name = shownName(path);
  const QFileInfo info(path);
  if (info.isDir())
    throw RunTimeError(tr("%1: is a folder").arg(name));
  if (info.exists() && !info.isFile())
    throw RunTimeError(tr("%1: is no plain file").arg(name));
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
    throw RunTimeError(tr("%1: cannot be read: %2").arg(name, file.errorString()));
  const QByteArray bytes = file.read(mostBytes + 1);
  if (file.error() != QFileDevice::NoError)
    throw RunTimeError(tr("%1: cannot be read: %2").arg(name, file.errorString()));
  if (bytes.size() > mostBytes)
    throw RunTimeError(tr("%1: larger than %2 MiB").arg(name).arg(mostBytes >> 20));
  return bytes;
}

std::vector<Ref<ZQTickerSign>> readSigns(const QString& path) {
  return signsOfArchive(readPlainFile(path, MostSignBytes), shownName(path));
}

void writeSigns(const QString& path, const std::vector<Ref<ZQTickerSign>>& signs) {
  const QString name = shownName(path);
  QVariantList list;
  for (const Ref<ZQTickerSign>& sign : signs)
    list.append(any(sign));
  QByteArray bytes;
  try {
    bytes = KeyedArchiver::archivedDataWithRootObject(Any(list));
  } catch (const Exception& exception) {
    throw RunTimeError(name + u": "_s + exception.reason().simplified());
  }
  if (bytes.size() > MostSignBytes)
    throw RunTimeError(
        tr("%1: the signs take more than %2 MiB").arg(name).arg(MostSignBytes >> 20));
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
    throw RunTimeError(tr("%1: cannot be written: %2").arg(name, file.errorString()));
}

} // namespace zq::app
