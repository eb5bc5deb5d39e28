// Many paths, many threads, many writes.
#include "Files.h"
#include "WatcherProbe.h"

#include <QtCore/QHash>

#include <array>
#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {
const QString& Written = VXFileWatcherWriteNotification;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// A sanitizer slows each of them down by ten and more, and is interested in their kinds only.
constexpr int Writes = 50'000;
constexpr int Paths = 2'000;
constexpr int Rounds = 200;
#else
constexpr int Writes = 1'000'000;
constexpr int Paths = 10'000;
constexpr int Rounds = 1'000;
#endif

std::int64_t numberIn(int file) {
  std::int64_t number = -1;
  EXPECT_EQ(::pread(file, &number, sizeof number, 0), ssize_t(sizeof number));
  return number;
}

// Hears of numbers written to files, and reads each when it hears of it.
class NumberReader : public VXFileWatcherDelegate {
 public:
  void add(const QString& path, int file) { files_.insert(path, {file, 0}); }
  void watcherReceivedNotification(VXFileWatcher&, const QString& notification,
                                   const QString& path) override {
    EXPECT_EQ(notification, Written);
    Entry& entry = files_[path];
    entry.number = numberIn(entry.file);
    ++reports;
  }
  std::int64_t number(const QString& path) const { return files_.value(path).number; }

  int reports = 0;

 private:
  struct Entry {
    int file = -1;
    std::int64_t number = 0;
  };
  QHash<QString, Entry> files_;
};
} // namespace

// After the last write to each file a report of it comes, whatever the kernel's queue has lost.
TEST(VXKQueueThread, LosesNoLastWriteInAStorm) {
  constexpr int FilesInAll = 256;
  constexpr int Threads = 4;
  const Files files;
  NumberReader reader;
  const auto watcher = VXKQueue::make();
  watcher->setDelegate(&reader);
  std::array<QString, FilesInAll> paths;
  std::array<int, FilesInAll> descriptors;
  for (std::size_t i = 0; i < FilesInAll; ++i) {
    paths[i] = files.make(QString::number(i), QByteArray(sizeof(std::int64_t), '\0'));
    descriptors[i] = ::open(Files::encoded(paths[i]).constData(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(descriptors[i], 0);
    reader.add(paths[i], descriptors[i]);
    watcher->addPath(paths[i]);
  }
  // Each file is written by one thread, in turn with the others of that thread.
  std::atomic<int> ended = 0;
  std::array<std::thread, Threads> threads;
  for (std::size_t thread = 0; thread < Threads; ++thread)
    threads[thread] = std::thread([&, thread] {
      std::size_t i = thread;
      for (std::int64_t number = 1; number <= Writes / Threads; ++number) {
        EXPECT_EQ(::pwrite(descriptors[i], &number, sizeof number, 0), ssize_t(sizeof number));
        i = (i + Threads) % FilesInAll;
      }
      ++ended;
    });
  EXPECT_TRUE(waitFor([&] { return ended == Threads; }, std::chrono::seconds(90)));
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_TRUE(waitFor([&] {
    for (std::size_t i = 0; i < FilesInAll; ++i)
      if (reader.number(paths[i]) != numberIn(descriptors[i]))
        return false;
    return true;
  }));
  EXPECT_GE(reader.reports, FilesInAll);
  for (const int descriptor : descriptors)
    ::close(descriptor);
}

TEST(VXKQueueThread, WatchesThousandsOfPathsEachForItself) {
  const Files files;
  Recorder recorder;
  const auto watcher = VXKQueue::make();
  watcher->setDelegate(&recorder);
  QStringList paths;
  for (int i = 0; i < Paths; ++i) {
    paths.append(files.make(QString::number(i)));
    watcher->addPath(paths.back());
  }
  // Every tenth is not watched any more, the first and the last among them.
  Reports expected;
  for (int i = 0; i < Paths; ++i)
    if (i % 10 == 0 || i == Paths - 1)
      watcher->removePath(paths.at(i));
    else
      expected.push_back({Written, paths.at(i)});
  for (const QString& path : paths)
    Files::write(path, "FIRST");
  ASSERT_TRUE(recorder.hears(expected.size()));
  // As many reports as files: each wrote once, and no one else hears of it.
  EXPECT_EQ(recorder.heard, expected);
  for (const Report& report : expected)
    watcher->removePath(report.path);
  EXPECT_EQ(watcher->description(), u"VXKQueue { watchedPaths = (\n), alwaysNotify = NO }"_s);
}

TEST(VXKQueueThread, IsUsedByManyThreadsAtOnce) {
  const Files files;
  const QString shared = files.make(u"shared"_s);
  Recorder recorder;
  Recorder other;
  const auto watcher = VXKQueue::make();
  watcher->setDelegate(&recorder);
  std::atomic<int> ended = 0;
  const auto run = [&](auto work) {
    return std::thread([&, work] {
      for (int i = 0; i < Rounds; ++i)
        work(i);
      ++ended;
    });
  };
  const auto addAndRemove = [&](const QString& path) {
    return [&watcher = *watcher, path](int) {
      watcher.addPath(path);
      Files::write(path, "FIRST");
      watcher.removePath(path);
    };
  };
  std::array<std::thread, 5> threads{
      run(addAndRemove(shared)), run(addAndRemove(shared)), run(addAndRemove(files.make(u"own"_s))),
      run([&](int) { EXPECT_TRUE(watcher->description().startsWith(u"VXKQueue {"_s)); }),
      run([&](int i) {
        watcher->setDelegate(i % 3 == 0 ? &recorder : i % 3 == 1 ? &other : nullptr);
        watcher->setAlwaysNotify(i % 2);
        EXPECT_GE(watcher->queueFD(), 0);
      })};
  EXPECT_TRUE(waitFor([&] { return ended == int(threads.size()); }, std::chrono::seconds(60)));
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(watcher->description().count(u'\n'), 1);
}
