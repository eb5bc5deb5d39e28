#include "app/services/FileService.h"

#include "app/services/PathWatch.h"
#include "app/services/TailFollower.h"
#include "zqticker/watching/file_watcher.h"

#include <QtCore/QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zq::app {

namespace {
// An editor that renames a file before it writes a new one does so at once.
constexpr std::chrono::milliseconds ReplacementTime = 100ms;

bool isAboutLeaving(const QString& notification) {
  return notification == VXFileWatcherRenameNotification ||
         notification == VXFileWatcherDeleteNotification;
}
} // namespace

FileService::FileService(const FileOptions& options, FileReceivers receivers,
                         std::chrono::milliseconds lookInterval)
    : options_(options), receivers_(std::move(receivers)) {
  for (const QString& path : options_.tailed) {
    tails_.push_back(std::make_unique<TailFollower>(
        path, [this, path](const QString& line) { receivers_.line(line, path); },
        receivers_.isFull));
    connect(tails_.back().get(), &TailFollower::received, this, &FileService::received);
    connect(&look_, &QTimer::timeout, tails_.back().get(), &TailFollower::look);
  }
  look_.setInterval(lookInterval);
}

FileService::~FileService() = default;

std::optional<FileFailure> FileService::start(MissingFiles missing) {
  watch_ = std::make_unique<PathWatch>(
      [this](const QString& notification, const QString& path) { takeReport(notification, path); },
      [this](const QString& path) { takeAppearance(path); });
  for (const QString& path : options_.watched)
    if (const int error = watch_->addPath(path))
      return FileFailure{u"--watch"_s, path, u"cannot watch: "_s + qt_error_string(error)};
  for (const auto& tail : tails_) {
    // Before the file is read, so that nothing comes between. Without a watch it is looked at only.
    watch_->addPath(tail->path());
    tail->start();
    const TailProblem& problem = tail->problem();
    if (!problem.isNone() && (missing == MissingFiles::Fail || !problem.isMissing()))
      return FileFailure{u"--tail"_s, tail->path(), problem.text};
    tail->tellProblem();
  }
  if (!tails_.empty())
    look_.start();
  return std::nullopt;
}

void FileService::takeReport(const QString& notification, const QString& path) {
  lookAt(path);
  if (!options_.watched.contains(path))
    return;
  if (!isAboutLeaving(notification)) {
    const bool isFolder = QFileInfo(path).isDir();
    tell(path, wordsFor(notification, isFolder ? WatchedKind::Folder : WatchedKind::File));
    return;
  }
  QStringList& words = left_[path];
  if (words.isEmpty())
    QTimer::singleShot(ReplacementTime, this, [this, path] { tellWhatLeft(path); });
  words.append(wordsFor(notification, WatchedKind::File));
}

void FileService::takeAppearance(const QString& path) {
  lookAt(path);
  if (options_.watched.contains(path))
    tell(path, left_.remove(path) ? u"replaced"_s : u"appeared"_s);
}

void FileService::tellWhatLeft(const QString& path) {
  for (const QString& words : left_.take(path))
    tell(path, words);
}

void FileService::tell(const QString& path, const QString& what) {
  receivers_.report({path, what});
  Q_EMIT received();
}

void FileService::lookAt(const QString& path) {
  for (const auto& tail : tails_)
    if (tail->path() == path)
      tail->look();
}

} // namespace zq::app
