#include "app/services/TailFile.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// Enough to tell one line of a log from another.
constexpr qsizetype PassedBytes = 512;

TailProblem problemOf(int error) {
  return {error, u"cannot read: "_s + qt_error_string(error)};
}

// What stands in the way of following a file of this mode.
TailProblem problemOfMode(mode_t mode) {
  if (S_ISREG(mode))
    return {};
  if (S_ISDIR(mode))
    return {EISDIR, u"a folder, not a text file"_s};
  if (S_ISFIFO(mode))
    return {EINVAL, u"a pipe, not a text file"_s};
  return {EINVAL, S_ISSOCK(mode) ? u"a socket, not a text file"_s : u"a device, not a text file"_s};
}
} // namespace

bool TailProblem::isMissing() const {
  return error == ENOENT;
}

std::optional<TailFile::Identity> TailFile::identityAt(const QByteArray& path) {
  struct stat status {};
  if (::stat(path.constData(), &status) != 0)
    return std::nullopt;
  return Identity{status.st_dev, status.st_ino};
}

std::unique_ptr<TailFile> TailFile::open(const QByteArray& path, TailProblem& problem) {
  // To open a pipe would tell its writer that somebody reads.
  struct stat status {};
  if (::stat(path.constData(), &status) != 0) {
    problem = problemOf(errno);
    return nullptr;
  }
  problem = problemOfMode(status.st_mode);
  if (!problem.isNone())
    return nullptr;
  const int descriptor = ::open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) {
    problem = problemOf(errno);
    return nullptr;
  }
  // Another may stand there by now.
  problem = ::fstat(descriptor, &status) == 0 ? problemOfMode(status.st_mode) : problemOf(errno);
  if (!problem.isNone()) {
    ::close(descriptor);
    return nullptr;
  }
  return std::unique_ptr<TailFile>(
      new TailFile(descriptor, Identity{status.st_dev, status.st_ino}));
}

TailFile::TailFile(int descriptor, const Identity& identity)
    : descriptor_(descriptor), identity_(identity) {}

TailFile::~TailFile() {
  ::close(descriptor_);
}

qint64 TailFile::size() const {
  struct stat status {};
  return ::fstat(descriptor_, &status) == 0 ? status.st_size : 0;
}

bool TailFile::isDeleted() const {
  struct stat status {};
  return ::fstat(descriptor_, &status) == 0 && status.st_nlink == 0;
}

void TailFile::moveTo(qint64 place) {
  place_ = place;
  const qint64 count = std::min<qint64>(place, PassedBytes);
  setPassed(bytesAt(place - count, count).value_or(QByteArray()));
}

QByteArray TailFile::read(qint64 most) {
  // Files that have no size, as those of the kernel, have no end either.
  const qint64 count = std::min(most, size() - place_);
  if (count <= 0)
    return {};
  const QByteArray bytes = bytesAt(place_, count).value_or(QByteArray());
  place_ += bytes.size();
  setPassed(bytes.size() >= PassedBytes ? bytes : QByteArray(passed_ + bytes));
  return bytes;
}

std::optional<QByteArray> TailFile::bytesAt(qint64 place, qint64 count) const {
  QByteArray bytes(count, Qt::Uninitialized);
  qsizetype filled = 0;
  while (filled < bytes.size()) {
    const ssize_t part = ::pread(descriptor_, bytes.data() + filled,
                                 static_cast<std::size_t>(bytes.size() - filled), place + filled);
    if (part < 0 && errno == EINTR)
      continue;
    if (part < 0)
      return std::nullopt;
    if (part == 0)
      break;
    filled += part;
  }
  bytes.truncate(filled);
  return bytes;
}

bool TailFile::isAnotherText() const {
  const std::optional<QByteArray> found = bytesAt(place_ - passed_.size(), passed_.size());
  return found && *found != passed_;
}

void TailFile::setPassed(const QByteArray& bytes) {
  passed_ = bytes.last(std::min(bytes.size(), PassedBytes));
}

} // namespace zq::app
