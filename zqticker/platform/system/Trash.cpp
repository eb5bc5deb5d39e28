#include "zqticker/platform/system/Trash_p.h"

#include "zqticker/platform/system/system_folders_p.h"

#include <QtCore/QDateTime>
#include <QtCore/QFile>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
constexpr mode_t PrivateFolder = 0700;
constexpr mode_t PrivateFile = 0600;
constexpr char InfoSuffix[] = ".trashinfo";
// The longest name of a file, less the suffix and a number.
constexpr qsizetype MaximumStemSize = 255 - 10 - 12;

// What is to go: its folder without links, and its name in there.
struct Item {
  QByteArray folder;
  QByteArray name;
  dev_t device = 0;
  QByteArray path() const { return (folder == "/" ? QByteArray() : folder) + "/" + name; }
};

std::optional<Item> itemAt(QByteArray path) {
  while (path.size() > 1 && path.endsWith('/'))
    path.chop(1);
  struct stat status;
  if (::lstat(path.constData(), &status) != 0)
    return std::nullopt;
  const qsizetype slash = path.lastIndexOf('/');
  Item item;
  item.name = path.mid(slash + 1);
  if (item.name.isEmpty() || item.name == "." || item.name == "..") {
    errno = EINVAL;
    return std::nullopt;
  }
  const QByteArray folder = slash < 0 ? QByteArray(".") : path.first(std::max<qsizetype>(slash, 1));
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(folder.constData(), nullptr),
                                                         &std::free);
  if (!real || ::stat(real.get(), &status) != 0)
    return std::nullopt;
  item.folder = real.get();
  item.device = status.st_dev;
  return item;
}

bool makeFolder(const QByteArray& path) {
  return ::mkdir(path.constData(), PrivateFolder) == 0 || errno == EEXIST;
}

bool makeFolders(const QByteArray& path) {
  for (qsizetype slash = path.indexOf('/', 1); slash > 0; slash = path.indexOf('/', slash + 1))
    if (!makeFolder(path.first(slash)))
      return false;
  return makeFolder(path);
}

// Whether the path is a folder itself, no link to one, and the user's own.
bool isOwnFolder(const QByteArray& path) {
  struct stat status;
  if (::lstat(path.constData(), &status) != 0)
    return false;
  if (S_ISDIR(status.st_mode) && status.st_uid == ::geteuid())
    return true;
  errno = EACCES;
  return false;
}

// The top folder of the volume that `folder` lies on.
QByteArray topFolder(QByteArray folder, dev_t device) {
  while (folder != "/") {
    const QByteArray parent = folder.first(std::max<qsizetype>(folder.lastIndexOf('/'), 1));
    struct stat status;
    if (::stat(parent.constData(), &status) != 0 || status.st_dev != device)
      break;
    folder = parent;
  }
  return folder;
}

QByteArray infoText(const QByteArray& path) {
  return "[Trash Info]\nPath=" + trashInfoPath(path) + "\nDeletionDate=" +
         QDateTime::currentDateTime().toString(u"yyyy-MM-ddTHH:mm:ss"_s).toLatin1() + '\n';
}

// Makes a file that was not there. 0, or the errno.
int writeNew(const QByteArray& path, const QByteArray& contents) {
  const int file = ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, PrivateFile);
  if (file < 0)
    return errno;
  errno = EIO;
  const bool isWritten = ::write(file, contents.constData(), contents.size()) == contents.size();
  const int problem = isWritten ? 0 : errno;
  if (::close(file) != 0 || problem) {
    const int closing = problem ? problem : errno;
    ::unlink(path.constData());
    return closing;
  }
  return 0;
}

// Moves what must not replace anything. 0, or the errno.
int renameToNew(const QByteArray& from, const QByteArray& to) {
  if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
    return 0;
  if (errno != EINVAL && errno != ENOSYS)
    return errno;
  // Not every file system knows that; the file in "info" has taken the name all the same.
  struct stat status;
  if (::lstat(to.constData(), &status) == 0)
    return EEXIST;
  return ::rename(from.constData(), to.constData()) == 0 ? 0 : errno;
}

// The name, or with a number from 2 on before its extension.
QByteArray numbered(const QByteArray& name, int number) {
  QByteArray stem = name;
  QByteArray extension;
  const qsizetype point = name.lastIndexOf('.');
  if (point > 0) {
    stem = name.first(point);
    extension = name.sliced(point);
  }
  if (stem.size() + extension.size() > MaximumStemSize) {
    stem = name.first(std::min(MaximumStemSize, name.size()));
    extension.clear();
    // Not in the middle of a character.
    while (!stem.isEmpty() && (uchar(name[stem.size()]) & 0xC0) == 0x80)
      stem.chop(1);
  }
  return (number < 2 ? stem : QByteArray(stem + '.' + QByteArray::number(number))) + extension;
}

// Puts the item into that trash, under the path that its "info" is to state. 0, or the errno.
int put(const QByteArray& trash, const Item& item, const QByteArray& statedPath) {
  const QByteArray files = trash + "/files/";
  const QByteArray info = trash + "/info/";
  if (!makeFolder(files.chopped(1)) || !makeFolder(info.chopped(1)))
    return errno;
  for (int number = 1;; ++number) {
    const QByteArray name = numbered(item.name, number);
    const QByteArray infoFile = info + name + InfoSuffix;
    int problem = writeNew(infoFile, infoText(statedPath));
    if (problem == EEXIST)
      continue;
    if (problem)
      return problem;
    problem = renameToNew(item.path(), files + name);
    if (!problem)
      return 0;
    ::unlink(infoFile.constData());
    if (problem != EEXIST)
      return problem;
  }
}

int putIntoHomeTrash(const Item& item) {
  const QByteArray trash = QFile::encodeName(userDataFolder()) + "/Trash";
  if (!makeFolders(trash))
    return errno;
  struct stat status;
  if (::stat(trash.constData(), &status) != 0)
    return errno;
  return status.st_dev == item.device ? put(trash, item, item.path()) : EXDEV;
}

// The trash that an administrator has prepared for all users of a volume, or empty.
QByteArray sharedTrash(const QByteArray& top) {
  const QByteArray shared = top + "/.Trash";
  struct stat status;
  if (::lstat(shared.constData(), &status) != 0 || !S_ISDIR(status.st_mode) ||
      !(status.st_mode & S_ISVTX))
    return {};
  const QByteArray own = shared + '/' + QByteArray::number(::geteuid());
  return makeFolder(own) && isOwnFolder(own) ? own : QByteArray();
}

int putIntoVolumeTrash(const Item& item) {
  QByteArray top = topFolder(item.folder, item.device);
  if (top == "/")
    top.clear();
  const QByteArray statedPath = item.path().sliced(top.size() + 1);
  if (const QByteArray shared = sharedTrash(top); !shared.isEmpty())
    if (const int problem = put(shared, item, statedPath); !problem)
      return 0;
  const QByteArray own = top + "/.Trash-" + QByteArray::number(::geteuid());
  if (!makeFolder(own) || !isOwnFolder(own))
    return errno;
  return put(own, item, statedPath);
}
} // namespace

QByteArray trashInfoPath(const QByteArray& path) {
  return path.toPercentEncoding("/!*'()");
}

int moveToTrash(const QByteArray& path) {
  const std::optional<Item> item = itemAt(path);
  if (!item)
    return errno;
  const int problem = putIntoHomeTrash(*item);
  return problem == EXDEV ? putIntoVolumeTrash(*item) : problem;
}

} // namespace zq::platform
