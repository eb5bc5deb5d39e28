// A folder of its own and an event queue for a test, and what the queue tells at once.
#pragma once

#include "zqticker/platform/system/KernelEventQueue.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <map>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace zq::testing {

constexpr std::uint32_t AllEvents = 0x7F;

using FlagsByDescriptor = std::map<int, std::uint32_t>;

class QueueProbe {
 public:
  QueueProbe() : queue(platform::KernelEventQueue::make()) {}

  QByteArray path(const char* name) const { return QFile::encodeName(folder_.path()) + '/' + name; }
  QByteArray file(const char* name, const QByteArray& contents = "first") const {
    write(name, contents, O_CREAT | O_TRUNC);
    return path(name);
  }
  QByteArray folder(const char* name) const {
    EXPECT_EQ(::mkdir(path(name).constData(), 0755), 0);
    return path(name);
  }
  void write(const char* name, const QByteArray& contents, int flags = 0) const {
    const int file = ::open(path(name).constData(), O_WRONLY | O_CLOEXEC | flags, 0644);
    EXPECT_GE(file, 0);
    EXPECT_EQ(::write(file, contents.constData(), std::size_t(contents.size())), contents.size());
    ::close(file);
  }
  void append(const char* name, const QByteArray& contents) const {
    write(name, contents, O_APPEND);
  }
  void rename(const char* from, const char* to) const {
    EXPECT_EQ(::rename(path(from).constData(), path(to).constData()), 0);
  }
  void link(const char* from, const char* to) const {
    EXPECT_EQ(::link(path(from).constData(), path(to).constData()), 0);
  }
  void unlink(const char* name) const { EXPECT_EQ(::unlink(path(name).constData()), 0); }
  void rmdir(const char* name) const { EXPECT_EQ(::rmdir(path(name).constData()), 0); }

  int watch(const QByteArray& where, std::uint32_t mask = AllEvents,
            const QString& userData = {}) const {
    const int descriptor = queue->openForEvents(where);
    EXPECT_GE(descriptor, 0);
    EXPECT_EQ(queue->add(descriptor, mask, userData), 0);
    return descriptor;
  }

  // All that is pending now, without waiting.
  std::vector<platform::KernelEvent> events() const {
    std::vector<platform::KernelEvent> found;
    for (;;) {
      const auto answer = queue->wait(std::chrono::nanoseconds(0));
      const auto* event = std::get_if<platform::KernelEvent>(&answer);
      if (!event)
        return found;
      found.push_back(*event);
    }
  }
  FlagsByDescriptor flagsByDescriptor() const {
    FlagsByDescriptor found;
    for (const auto& event : events())
      found[event.descriptor] |= event.flags;
    return found;
  }
  // The flags of the one event that is pending; 0 for none, all bits for several.
  std::uint32_t flags() const {
    const auto found = events();
    if (found.size() > 1)
      return 0xFFFFFFFF;
    return found.empty() ? 0 : found.front().flags;
  }

  platform::Ref<platform::KernelEventQueue> queue;

 private:
  QTemporaryDir folder_;
};

} // namespace zq::testing
