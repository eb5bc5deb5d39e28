#include "benchmarks/watching_candidates.h"
#include "benchmarks/watching_programs.h"
#include "zqticker/watching/VXKQueue.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileSystemWatcher>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

void WatchedPaths::append(const std::string& path) {
  names.append(QFile::decodeName(path.c_str()));
  encoded.push_back(path);
}

int watchedNumber(QStringView path) {
  int number = 0;
  for (qsizetype at = path.lastIndexOf(u'w') + 1; at < path.size() && path[at].isDigit(); ++at)
    number = number * 10 + path[at].digitValue();
  return number;
}

namespace {

class KQueueWatching final : public Watching, private VXFileWatcherDelegate {
 public:
  explicit KQueueWatching(Report report) : Watching(std::move(report)), watcher_(VXKQueue::make()) {
    if (watcher_)
      watcher_->setDelegate(this);
  }

  bool add(const PathRange& range) override {
    for (int i = range.first; watcher_ && i < range.end; ++i)
      watcher_->addPath(range.paths.names.at(i));
    return watcher_ != nullptr;
  }
  void remove(const PathRange& range) override {
    for (int i = range.first; i < range.end; ++i)
      watcher_->removePath(range.paths.names.at(i));
  }

 private:
  void watcherReceivedNotification(VXFileWatcher& watcher, const QString& notification,
                                   const QString& path) override {
    report_(watchedNumber(path));
    if (addsAgain_ && (notification == VXFileWatcherDeleteNotification ||
                       notification == VXFileWatcherRenameNotification)) {
      watcher.removePath(path);
      watcher.addPath(path);
    }
  }

  const zq::platform::Ref<VXKQueue> watcher_;
};

class QtWatching final : public Watching {
 public:
  explicit QtWatching(Report report) : Watching(std::move(report)) {
    const auto changed = [this](const QString& path) {
      report_(watchedNumber(path));
      if (addsAgain_ && !watcher_.files().contains(path))
        watcher_.addPath(path);
    };
    QObject::connect(&watcher_, &QFileSystemWatcher::fileChanged, &watcher_, changed);
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_, changed);
  }

  bool add(const PathRange& range) override { return watcher_.addPaths(names(range)).isEmpty(); }
  void remove(const PathRange& range) override { watcher_.removePaths(names(range)); }

 private:
  static QStringList names(const PathRange& range) {
    return range.paths.names.mid(range.first, range.end - range.first);
  }

  QFileSystemWatcher watcher_;
};

// A thread that reads events and does nothing else.
class BareWatching : public Watching {
 public:
  explicit BareWatching(Report report)
      : Watching(std::move(report)), instance_(::inotify_init1(IN_CLOEXEC)) {
    // A blocking read ends by an event only.
    char path[] = "/tmp/watching_benchmark.XXXXXX";
    end_ = ::mkostemp(path, O_CLOEXEC);
    endWatch_ = ::inotify_add_watch(instance_, path, IN_MODIFY);
    ::unlink(path);
    thread_ = std::thread([this] {
      watch();
      hasEnded_ = true;
    });
  }
  ~BareWatching() override {
    end([] {});
    thread_.join();
    ::close(end_);
    ::close(instance_);
  }

  bool add(const PathRange& range) override {
    const std::lock_guard lock(mutex_);
    paths_ = &range.paths;
    for (int i = range.first; i < range.end; ++i)
      if (!add(i))
        return false;
    return true;
  }
  void remove(const PathRange& range) override {
    const std::lock_guard lock(mutex_);
    for (int i = range.first; i < range.end; ++i)
      ::inotify_rm_watch(instance_, watches_[std::size_t(i)]);
  }

 protected:
  virtual void report(int number) { report_(number); }

  // Ends the thread; calls `wait` until it has ended.
  template <class F>
  void end(F&& wait) {
    // Not by one write: a full queue of events takes no more.
    while (!hasEnded_ && ::write(end_, "", 1) == 1) {
      wait();
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

 private:
  // With the mutex held.
  bool add(int number) {
    const std::uint32_t mask = paths_->areFolders
                                   ? IN_CREATE | IN_DELETE | IN_MOVE
                                   : IN_MODIFY | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;
    const int watch =
        ::inotify_add_watch(instance_, paths_->encoded[std::size_t(number)].c_str(), mask);
    if (watch < 0)
      return false;
    set(watches_, number, watch);
    set(numbers_, watch, number);
    return true;
  }

  static void set(std::vector<int>& values, int index, int value) {
    if (values.size() <= std::size_t(index))
      values.resize(std::size_t(index) + 1);
    values[std::size_t(index)] = value;
  }

  void watch() {
    alignas(inotify_event) std::array<char, 64 * 1024> buffer;
    for (;;) {
      const ssize_t length = ::read(instance_, buffer.data(), buffer.size());
      if (length <= 0)
        return;
      for (const char* at = buffer.data(); at < buffer.data() + length;) {
        const auto& event = *reinterpret_cast<const inotify_event*>(at);
        at += sizeof(inotify_event) + event.len;
        if (event.wd == endWatch_)
          return;
        if (!(event.mask & (IN_IGNORED | IN_Q_OVERFLOW)))
          handle(event);
      }
    }
  }

  void handle(const inotify_event& event) {
    int number = 0;
    {
      const std::lock_guard lock(mutex_);
      number = numbers_[std::size_t(event.wd)];
      if (addsAgain_ && (event.mask & (IN_DELETE_SELF | IN_MOVE_SELF)))
        add(number);
    }
    report(number);
  }

  // Constant while the thread runs.
  const int instance_;
  int end_;
  int endWatch_;
  std::thread thread_;
  std::atomic<bool> hasEnded_ = false;

  std::mutex mutex_;
  // Protected by it.
  const WatchedPaths* paths_ = nullptr;
  std::vector<int> watches_; // by number
  std::vector<int> numbers_; // by watch
};

// The same, and Qt's blocking queued call to the main thread for each event.
class BareMainWatching final : public BareWatching {
 public:
  using BareWatching::BareWatching;
  ~BareMainWatching() override {
    isEnding_ = true;
    end([] { QCoreApplication::processEvents(); });
  }

 private:
  void report(int number) override {
    if (!isEnding_)
      QMetaObject::invokeMethod(
          QCoreApplication::instance(), [this, number] { report_(number); },
          Qt::BlockingQueuedConnection);
  }

  std::atomic<bool> isEnding_ = false;
};

} // namespace

std::unique_ptr<Watching> Watching::make(const std::string& candidate, Report report) {
  if (candidate == "KQueue")
    return std::make_unique<KQueueWatching>(std::move(report));
  if (candidate == "QtWatcher")
    return std::make_unique<QtWatching>(std::move(report));
  if (candidate == "Bare")
    return std::make_unique<BareWatching>(std::move(report));
  if (candidate == "BareMain")
    return std::make_unique<BareMainWatching>(std::move(report));
  return makeProgramWatching(candidate, std::move(report));
}
