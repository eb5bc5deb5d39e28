#include "app/services/path_steps.h"

#include <QtCore/QByteArrayList>
#include <QtCore/QFile>

#include <climits>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr int MostLinks = 40; // as the kernel has it

QByteArray below(const QByteArray& folder, const QByteArray& name) {
  return folder.endsWith('/') ? QByteArray(folder + name) : QByteArray(folder + '/' + name);
}

QByteArray startOf(const QByteArray& path) {
  return path.startsWith('/') ? "/"_ba : "."_ba;
}

QByteArray targetOf(const QByteArray& link) {
  QByteArray target(PATH_MAX, Qt::Uninitialized);
  const ssize_t length =
      ::readlink(link.constData(), target.data(), static_cast<std::size_t>(target.size()));
  target.truncate(std::max<ssize_t>(length, 0));
  return target;
}

void add(QStringList& folders, const QByteArray& folder) {
  const QString name = QFile::decodeName(folder);
  if (!folders.contains(name))
    folders.append(name);
}
} // namespace

PathSteps stepsOf(const QString& path) {
  PathSteps steps;
  const QByteArray start = QFile::encodeName(path);
  QByteArrayList left = start.split('/');
  QByteArray place = startOf(start);
  int links = 0;
  while (!left.isEmpty()) {
    const QByteArray name = left.takeFirst();
    if (name.isEmpty() || name == ".")
      continue;
    const QByteArray entry = below(place, name);
    if (name == "..") {
      place = entry;
      continue;
    }
    struct stat found {};
    if (::lstat(entry.constData(), &found) != 0) {
      add(steps.deciding, place);
      return steps;
    }
    if (S_ISLNK(found.st_mode)) {
      add(steps.deciding, place);
      const QByteArray target = targetOf(entry);
      if (target.isEmpty() || ++links > MostLinks)
        return steps;
      if (target.startsWith('/'))
        place = startOf(target);
      left = target.split('/') + left;
      continue;
    }
    if (!left.isEmpty()) {
      if (!S_ISDIR(found.st_mode)) {
        add(steps.deciding, place);
        return steps;
      }
      add(steps.passed, entry);
    }
    place = entry;
  }
  steps.place = QFile::decodeName(place);
  return steps;
}

QString folderOf(const QString& place) {
  const qsizetype slash = place.lastIndexOf(u'/');
  return slash > 0 ? place.left(slash) : slash == 0 ? u"/"_s : u"."_s;
}

} // namespace zq::app
