// Subscriptions in the event loop of this thread.
#include "FolderProbe.h"

#include "tests/support/LogWatch.h"
#include "tests/support/waiting.h"
#include "zqticker/platform/objects/Exception.h"

#include <QtCore/QEventLoop>

#include <cerrno>
#include <memory>
#include <stdexcept>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

bool isCalled(const Subscriber& subscriber, int times) {
  return waitFor([&] { return subscriber.calls >= times; }) && subscriber.calls == times;
}

} // namespace

TEST(DirectorySubscription, CallsBackFromTheEventLoop) {
  const FolderProbe probe;
  Subscriber subscriber;
  ASSERT_EQ(subscriber.subscribe(probe.path()), 0);
  ASSERT_NE(subscriber.handle, nullptr);
  probe.write("watched/a");
  EXPECT_EQ(subscriber.calls, 0);
  EXPECT_TRUE(isCalled(subscriber, 1));
}

TEST(DirectorySubscription, TellsABurstByOneCall) {
  const FolderProbe probe;
  Subscriber subscriber;
  ASSERT_EQ(subscriber.subscribe(probe.path()), 0);
  for (int i = 0; i < 50; ++i)
    probe.write("watched/file" + QByteArray::number(i));
  EXPECT_TRUE(isCalled(subscriber, 1));
  probe.write("watched/marker");
  EXPECT_TRUE(isCalled(subscriber, 2));
}

TEST(DirectorySubscription, CallsEachSubscriberOfTheSameFolder) {
  const FolderProbe probe;
  std::vector<Subscriber> subscribers(3);
  for (Subscriber& each : subscribers)
    ASSERT_EQ(each.subscribe(probe.path()), 0);
  probe.write("watched/a");
  for (const Subscriber& each : subscribers)
    EXPECT_TRUE(isCalled(each, 1));
}

TEST(DirectorySubscription, TakesOneDescriptorForManyFolders) {
  const FolderProbe probe;
  Subscriber first; // the thread's descriptor
  ASSERT_EQ(first.subscribe(probe.path()), 0);
  const int before = ::dup(0);
  ::close(before);
  std::vector<Subscriber> subscribers(300); // more than a user has instances
  for (std::size_t i = 0; i < subscribers.size(); ++i) {
    const QByteArray name = "other/" + QByteArray::number(qlonglong(i));
    probe.mkdir(name);
    ASSERT_EQ(subscribers[i].subscribe(probe.path(name)), 0);
  }
  const int after = ::dup(0);
  ::close(after);
  EXPECT_EQ(after, before);
  probe.write("other/299/a");
  EXPECT_TRUE(isCalled(subscribers.back(), 1));
  EXPECT_EQ(subscribers.front().calls, 0);
}

TEST(DirectorySubscription, EndsInsideItsOwnCallback) {
  const FolderProbe probe;
  Subscriber ending;
  Subscriber other;
  ASSERT_EQ(ending.subscribe(probe.path()), 0);
  ASSERT_EQ(other.subscribe(probe.path()), 0);
  ending.then = [&] { EXPECT_EQ(ending.unsubscribe(), 0); };
  probe.write("watched/a");
  EXPECT_TRUE(isCalled(other, 1));
  probe.write("watched/a");
  EXPECT_TRUE(isCalled(other, 2));
  EXPECT_EQ(ending.calls, 1);
}

TEST(DirectorySubscription, IsNotCalledOnceAnotherCallbackHasEndedIt) {
  const FolderProbe probe;
  Subscriber first;
  auto second = std::make_unique<Subscriber>();
  Subscriber third;
  ASSERT_EQ(first.subscribe(probe.path()), 0);
  ASSERT_EQ(second->subscribe(probe.path()), 0);
  ASSERT_EQ(third.subscribe(probe.path()), 0);
  first.then = [&] {
    EXPECT_TRUE(!second || second->calls == 0);
    second.reset();
  };
  probe.write("watched/a");
  EXPECT_TRUE(isCalled(third, 1));
  EXPECT_EQ(first.calls, 1);
}

TEST(DirectorySubscription, IsMadeInsideACallback) {
  const FolderProbe probe;
  Subscriber first;
  Subscriber second;
  ASSERT_EQ(first.subscribe(probe.path()), 0);
  first.then = [&] {
    if (!second.handle)
      second.subscribe(probe.path("other"));
  };
  probe.write("watched/a");
  EXPECT_TRUE(isCalled(first, 1));
  probe.write("other/a");
  EXPECT_TRUE(isCalled(second, 1));
}

TEST(DirectorySubscription, CallsBackInAnEventLoopThatACallbackRuns) {
  const FolderProbe probe;
  Subscriber first;
  Subscriber second;
  Subscriber other;
  ASSERT_EQ(first.subscribe(probe.path()), 0);
  ASSERT_EQ(second.subscribe(probe.path()), 0);
  ASSERT_EQ(other.subscribe(probe.path("other")), 0);
  first.then = [&] {
    first.then = nullptr;
    EXPECT_TRUE(isCalled(second, 1));
    probe.write("other/a");
    EXPECT_TRUE(isCalled(other, 1));
    probe.write("watched/a");
    EXPECT_TRUE(isCalled(first, 2));
  };
  probe.write("watched/a");
  EXPECT_TRUE(isCalled(first, 2));
  EXPECT_TRUE(isCalled(second, 2));
}

TEST(DirectorySubscription, LogsWhatACallbackRaisesAndGoesOn) {
  const FolderProbe probe;
  Subscriber subscriber;
  ASSERT_EQ(subscriber.subscribe(probe.path()), 0);
  expectLog(u"zqticker.watching: Error in the callback of a folder's subscription: too far"_s);
  subscriber.then = [] { throw RangeException(u"too far"_s); };
  probe.write("watched/a");
  EXPECT_TRUE(isCalled(subscriber, 1));
  expectLog(u"zqticker.watching: Error in the callback of a folder's subscription: other"_s);
  subscriber.then = [] { throw std::runtime_error("other"); };
  probe.write("watched/a");
  EXPECT_TRUE(isCalled(subscriber, 2));
  expectLog(u"zqticker.watching: Error in the callback of a folder's subscription"_s);
  subscriber.then = [] { throw 1; };
  probe.write("watched/a");
  EXPECT_TRUE(isCalled(subscriber, 3));
}

TEST(DirectorySubscription, IsNotCalledForWhatHappenedBeforeItsEnd) {
  const FolderProbe probe;
  Subscriber ended;
  Subscriber marker;
  ASSERT_EQ(ended.subscribe(probe.path()), 0);
  ASSERT_EQ(marker.subscribe(probe.path()), 0);
  probe.write("watched/a");
  runPostedEvents(); // read, not told
  EXPECT_EQ(ended.unsubscribe(), 0);
  EXPECT_TRUE(isCalled(marker, 1));
  EXPECT_EQ(ended.calls, 0);
}

TEST(DirectorySubscription, EndsOnce) {
  const FolderProbe probe;
  Subscriber subscriber;
  ASSERT_EQ(subscriber.subscribe(probe.path()), 0);
  DirectorySubscription* const handle = subscriber.handle;
  EXPECT_EQ(subscriber.unsubscribe(), 0);
  EXPECT_EQ(unsubscribe(handle), EINVAL);
  EXPECT_EQ(unsubscribe(nullptr), EINVAL);
}

TEST(DirectorySubscription, EndsAfterItsFolder) {
  const FolderProbe probe;
  Subscriber subscriber;
  ASSERT_EQ(subscriber.subscribe(probe.path()), 0);
  probe.removeAll("watched");
  EXPECT_TRUE(isCalled(subscriber, 1));
  EXPECT_EQ(subscriber.unsubscribe(), 0);
}

TEST(DirectorySubscription, FollowsSymbolicLinks) {
  const FolderProbe probe;
  ASSERT_EQ(::symlink("watched", probe.path("link").constData()), 0);
  Subscriber subscriber;
  ASSERT_EQ(subscriber.subscribe(probe.path("link")), 0);
  probe.write("watched/a");
  EXPECT_TRUE(isCalled(subscriber, 1));
}

TEST(DirectorySubscription, TakesNamesOfAnyBytes) {
  const FolderProbe probe;
  for (const QByteArray name : {"line\nbreak", "\xff\xfe", " ", "ümlaut"}) {
    probe.mkdir(name);
    Subscriber subscriber;
    ASSERT_EQ(subscriber.subscribe(probe.path(name)), 0);
    probe.write(name + "/a");
    EXPECT_TRUE(isCalled(subscriber, 1)) << name.constData();
    probe.unlink(name + "/a");
    probe.rmdir(name);
  }
}

TEST(DirectorySubscription, RefusesWhatIsNoFolder) {
  const FolderProbe probe;
  ASSERT_EQ(::mkfifo(probe.path("fifo").constData(), 0600), 0);
  ASSERT_EQ(::symlink("nowhere", probe.path("dangling").constData()), 0);
  struct {
    QByteArray path;
    int status;
  } const rows[] = {
      {"", ENOENT},
      {probe.path("missing"), ENOENT},
      {probe.path("dangling"), ENOENT},
      {probe.path(QByteArray("watched\0more", 12)), ENOENT},
      {probe.path("out"), ENOTDIR},
      {probe.path("out/below"), ENOTDIR},
      {probe.path("fifo"), ENOTDIR},
      {"/dev/null", ENOTDIR},
      {probe.path(QByteArray(256, 'x')), ENAMETOOLONG},
      {QByteArray(2048, 'x').replace("x", "/x"), ENAMETOOLONG},
  };
  for (const auto& row : rows) {
    Subscriber subscriber;
    EXPECT_EQ(subscriber.subscribe(row.path), row.status) << row.path.left(200).constData();
    EXPECT_EQ(subscriber.handle, nullptr);
  }
}

TEST(DirectorySubscription, RefusesAFolderThatMustNotBeRead) {
  const FolderProbe probe;
  ASSERT_EQ(::chmod(probe.path("").constData(), 0755), 0);
  ASSERT_EQ(::chmod(probe.path("other").constData(), 0300), 0);
  constexpr uid_t Nobody = 65534;
  const bool isRoot = ::geteuid() == 0;
  ASSERT_TRUE(!isRoot || ::seteuid(Nobody) == 0);
  Subscriber subscriber;
  const int status = subscriber.subscribe(probe.path("other"));
  ASSERT_TRUE(!isRoot || ::seteuid(0) == 0);
  EXPECT_EQ(status, EACCES);
}

TEST(DirectorySubscription, RefusesArgumentsThatItCannotTake) {
  const FolderProbe probe;
  Subscriber subscriber;
  EXPECT_EQ(subscribeByPath(probe.path(), nullptr, nullptr, 0, &subscriber.handle), EINVAL);
  EXPECT_EQ(subscribeByPath(probe.path(), Subscriber::callBack, &subscriber, 0, nullptr), EINVAL);
  EXPECT_EQ(subscribeByPath(probe.path(), Subscriber::callBack, &subscriber, 1, &subscriber.handle),
            EINVAL);
  EXPECT_EQ(subscriber.handle, nullptr);
}
