// A folder of its own for a test, and a subscriber that counts.
#pragma once

#include "zqticker/platform/system/DirectorySubscription.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace zq::testing {

// Contains "watched" with a file "a" and a folder "sub" with a file "b"; beside it a file "out" and
// an empty folder "other".
class FolderProbe {
 public:
  FolderProbe() {
    for (const char* name : {"watched", "watched/sub", "other"})
      EXPECT_EQ(::mkdir(path(name).constData(), 0755), 0);
    for (const char* name : {"watched/a", "watched/sub/b", "out"})
      write(name);
  }

  QByteArray path(const QByteArray& name = "watched") const {
    return QFile::encodeName(folder_.path()) + '/' + name;
  }
  void write(const QByteArray& name, int flags = O_CREAT) const {
    const int file = ::open(path(name).constData(), O_WRONLY | O_CLOEXEC | flags, 0644);
    EXPECT_GE(file, 0) << name.constData();
    EXPECT_EQ(::write(file, "text", 4), 4);
    ::close(file);
  }
  void rename(const QByteArray& from, const QByteArray& to) const {
    EXPECT_EQ(::rename(path(from).constData(), path(to).constData()), 0);
  }
  void unlink(const QByteArray& name) const { EXPECT_EQ(::unlink(path(name).constData()), 0); }
  void mkdir(const QByteArray& name) const { EXPECT_EQ(::mkdir(path(name).constData(), 0755), 0); }
  void rmdir(const QByteArray& name) const { EXPECT_EQ(::rmdir(path(name).constData()), 0); }
  void chmod(const QByteArray& name) const { EXPECT_EQ(::chmod(path(name).constData(), 0700), 0); }
  void removeAll(const QByteArray& name) const {
    EXPECT_TRUE(QDir(QFile::decodeName(path(name))).removeRecursively());
  }

 private:
  QTemporaryDir folder_;
};

// Counts its calls; `then` is run by each.
struct Subscriber {
  static void callBack(std::uint32_t message, std::uint32_t flags, void* reference,
                       platform::DirectorySubscription* handle) {
    EXPECT_EQ(message, platform::DirectoryModifiedMessage);
    EXPECT_EQ(flags, 0U);
    auto& subscriber = *static_cast<Subscriber*>(reference);
    EXPECT_EQ(handle, subscriber.handle);
    ++subscriber.calls;
    // A copy, for the subscriber may be destroyed meanwhile.
    if (const auto call = subscriber.then)
      call();
  }

  std::int32_t subscribe(const QByteArray& path) {
    return platform::subscribeByPath(path, callBack, this, 0, &handle);
  }
  std::int32_t unsubscribe() { return platform::unsubscribe(std::exchange(handle, nullptr)); }
  ~Subscriber() {
    if (handle)
      platform::unsubscribe(handle);
  }

  platform::DirectorySubscription* handle = nullptr;
  int calls = 0;
  std::function<void()> then{};
};

} // namespace zq::testing
