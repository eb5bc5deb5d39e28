// The same changes of files on each kind of event queue.
#pragma once

#include "FakeEventQueue.h"
#include "Files.h"
#include "WatcherProbe.h"

#include "zqticker/watching/file_watcher.h"

#include <QtCore/QStringList>

#include <atomic>
#include <thread>

namespace zq::testing {

// Real files, watched by the kernel.
class LinuxBackend {
 public:
  QString make(const QString& name) const { return files_.make(name); }
  void write(const QString& path) const { Files::write(path, "FIRST"); }
  void append(const QString& path) const { Files::write(path, "more", O_APPEND); }
  void setMode(const QString& path) const { Files::setMode(path, 0600); }
  // What is reported of it when all is asked for.
  QStringList changeInManyWays(const QString& path) const {
    append(path);
    setMode(path);
    Files::link(path, path + QStringLiteral(".link"));
    Files::rename(path, path + QStringLiteral(".renamed"));
    return {VXFileWatcherRenameNotification, VXFileWatcherWriteNotification,
            VXFileWatcherAttributeChangeNotification, VXFileWatcherSizeIncreaseNotification,
            VXFileWatcherLinkCountChangeNotification};
  }

  platform::Ref<platform::KernelEventQueue> queue = platform::KernelEventQueue::make();

 private:
  Files files_;
};

// Files that exist in the queue only.
class FakeBackend {
 public:
  QString make(const QString& name) const {
    fake->makeFile(QFile::encodeName(name));
    return name;
  }
  void write(const QString& path) const { fake->deliver(path, platform::VnodeWrite); }
  void append(const QString& path) const {
    fake->deliver(path, platform::VnodeWrite | platform::VnodeExtend);
  }
  void setMode(const QString& path) const { fake->deliver(path, platform::VnodeAttrib); }
  QStringList changeInManyWays(const QString& path) const {
    fake->deliver(path, 0xFFFFFFFF);
    return {VXFileWatcherRenameNotification,          VXFileWatcherWriteNotification,
            VXFileWatcherDeleteNotification,          VXFileWatcherAttributeChangeNotification,
            VXFileWatcherSizeIncreaseNotification,    VXFileWatcherLinkCountChangeNotification,
            VXFileWatcherAccessRevocationNotification};
  }

  platform::Ref<FakeEventQueue> fake = std::make_shared<FakeEventQueue>();
  platform::Ref<platform::KernelEventQueue> queue = fake;
};

// A watcher and its delegate over either.
template <class Backend>
class WatcherTest : public ::testing::Test {
 protected:
  WatcherTest() { watcher->setDelegate(&recorder); }

  void write(const QString& path) const { backend.write(path); }
  QString add(const QString& name) const {
    const QString path = backend.make(name);
    watcher->addPath(path);
    return path;
  }
  // Has a write to `path` reported, and returns when the thread is about to wait for this one's
  // loop with it: what happens next is one event of each path.
  void holdThread(const QString& path) const {
    std::atomic<bool> isReporting = false;
    const auto connection =
        QObject::connect(&platform::Workspace::sharedWorkspace(),
                         &platform::Workspace::fileSystemChanged, [&] { isReporting = true; });
    showConnection();
    write(path);
    while (!isReporting)
      std::this_thread::yield();
    QObject::disconnect(connection);
  }
  // Takes the lock that the thread takes with its next event: the thread sanitizer cannot see the
  // locks of Qt's connections.
  void showConnection() const { EXPECT_GE(watcher->queueFD(), 0); }
  // Whether the thread has closed the queue, which is the last that it does.
  bool endsItsThread() const {
    return waitFor([&] { return backend.queue->descriptor() == -1; });
  }

  Backend backend;
  Recorder recorder;
  platform::Ref<VXKQueue> watcher = VXKQueue::make(backend.queue);
};

using Backends = ::testing::Types<LinuxBackend, FakeBackend>;
struct BackendNames {
  template <class Backend>
  static std::string GetName(int) {
    return std::is_same_v<Backend, LinuxBackend> ? "Linux" : "Fake";
  }
};

} // namespace zq::testing
