// What can be opened for events, and what cannot.
#include "QueueProbe.h"

#include <cerrno>
#include <sys/fsuid.h>
#include <sys/socket.h>
#include <sys/un.h>

using namespace zq::platform;
using namespace zq::testing;

namespace {

int errorOf(const QueueProbe& probe, const QByteArray& path) {
  errno = 0;
  return probe.queue->openForEvents(path) == -1 ? errno : 0;
}

} // namespace

TEST(KernelEventQueuePath, RefusesWhatIsNotThere) {
  QueueProbe probe;
  EXPECT_EQ(errorOf(probe, probe.path("missing")), ENOENT);
  EXPECT_EQ(errorOf(probe, QByteArray()), ENOENT);
  EXPECT_EQ(errorOf(probe, ""), ENOENT);
  EXPECT_EQ(errorOf(probe, probe.file("a") + "/b"), ENOTDIR);
  EXPECT_EQ(errorOf(probe, probe.path("a") + QByteArray("\0b", 2)), ENOENT);
}

TEST(KernelEventQueuePath, RefusesALinkToNothingAndALoop) {
  QueueProbe probe;
  ASSERT_EQ(::symlink("missing", probe.path("dangling").constData()), 0);
  ASSERT_EQ(::symlink("loop", probe.path("loop").constData()), 0);
  EXPECT_EQ(errorOf(probe, probe.path("dangling")), ENOENT);
  EXPECT_EQ(errorOf(probe, probe.path("loop")), ELOOP);
}

TEST(KernelEventQueuePath, RefusesWhatIsTooLong) {
  QueueProbe probe;
  EXPECT_EQ(errorOf(probe, "/" + QByteArray(4095, 'a')), ENAMETOOLONG);
  EXPECT_EQ(errorOf(probe, probe.path(QByteArray(256, 'a').constData())), ENAMETOOLONG);
}

TEST(KernelEventQueuePath, TakesAPathOf4095Bytes) {
  QueueProbe probe;
  probe.file("a");
  const QByteArray folder = probe.path("");
  QByteArray path = folder;
  while (path.size() < 4094)
    path += path.size() == 4093 ? "/" : "./";
  path += "a";
  ASSERT_EQ(path.size(), 4095);
  probe.watch(path);
  probe.append("a", "more");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeExtend);
}

TEST(KernelEventQueuePath, RefusesWhatMayNotBeRead) {
  QueueProbe probe;
  const QByteArray path = probe.file("a");
  ASSERT_EQ(::chmod(path.constData(), 0), 0);
  const bool privileged = ::geteuid() == 0;
  if (privileged) {
    ASSERT_EQ(::chmod(probe.path("").constData(), 0755), 0);
    ::setfsuid(65534);
  }
  const int error = errorOf(probe, path);
  if (privileged)
    ::setfsuid(0);
  EXPECT_EQ(error, EACCES);
}

TEST(KernelEventQueuePath, TakesNewlinesAndInvalidText) {
  QueueProbe probe;
  for (const char* name : {"two\nlines", "\xFF\xFE", " ", "(deleted)", "a (deleted)"}) {
    const int descriptor = probe.watch(probe.file(name));
    probe.append(name, "more");
    EXPECT_EQ(probe.flags(), VnodeWrite | VnodeExtend) << name;
    EXPECT_EQ(probe.queue->closeDescriptor(descriptor), 0);
    probe.unlink(name);
  }
}

TEST(KernelEventQueuePath, FollowsSymbolicLinks) {
  QueueProbe probe;
  probe.folder("f");
  probe.file("f/a");
  ASSERT_EQ(::symlink("f/a", probe.path("link").constData()), 0);
  probe.watch(probe.path("link"));
  probe.append("f/a", "more");
  EXPECT_EQ(probe.flags(), VnodeWrite | VnodeExtend);
  probe.unlink("link");
  EXPECT_EQ(probe.flags(), 0U);
  const int holder = ::open(probe.path("f/a").constData(), O_RDONLY | O_CLOEXEC);
  probe.unlink("f/a");
  EXPECT_EQ(probe.flags(), VnodeDelete);
  ::close(holder);
}

TEST(KernelEventQueuePath, DoesNotBlockOnAFifo) {
  QueueProbe probe;
  const QByteArray path = probe.path("fifo");
  ASSERT_EQ(::mkfifo(path.constData(), 0600), 0);
  probe.watch(path);
  ASSERT_EQ(::chmod(path.constData(), 0640), 0);
  EXPECT_EQ(probe.flags(), VnodeAttrib);
  probe.unlink("fifo");
  EXPECT_EQ(probe.flags(), VnodeDelete);
}

TEST(KernelEventQueuePath, TakesASocketAndADevice) {
  QueueProbe probe;
  // The address of a socket is short.
  ASSERT_EQ(::chdir(probe.path("").constData()), 0);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{AF_UNIX, "socket"};
  ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(::chdir("/"), 0);
  probe.watch(probe.path("socket"));
  probe.unlink("socket");
  EXPECT_EQ(probe.flags(), VnodeDelete);
  ::close(socket);
  EXPECT_EQ(errorOf(probe, "/dev/null"), 0);
}
