// Delegates and observers that remove, destroy, replace and raise while a watcher reports to them.
#include "WatcherBackends.h"

#include "tests/support/LogWatch.h"

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {
const QString& Written = VXFileWatcherWriteNotification;
const QString Error = u"zqticker.watching: Error in VXKQueue watcherThread: too far"_s;
} // namespace

template <class Backend>
using VXKQueueDelegateThread = WatcherTest<Backend>;
TYPED_TEST_SUITE(VXKQueueDelegateThread, Backends, BackendNames);

TYPED_TEST(VXKQueueDelegateThread, MayRemoveThePathThatItHearsOf) {
  const QString path = this->add(u"a"_s);
  const QString last = this->add(u"last"_s);
  this->recorder.then = [&] {
    this->recorder.then = nullptr;
    this->watcher->removePath(path);
    this->write(path);
    this->write(last);
  };
  this->write(path);
  ASSERT_TRUE(this->recorder.hears(2));
  EXPECT_EQ(this->recorder.heard, (Reports{{Written, path}, {Written, last}}));
}

TYPED_TEST(VXKQueueDelegateThread, MayLetTheWatcherGoThatWaitsForIt) {
  const std::weak_ptr<VXKQueue> watching = this->watcher;
  this->recorder.then = [&] {
    this->watcher.reset();
    // Kept until the call has returned.
    EXPECT_FALSE(watching.expired());
  };
  this->write(this->add(u"a"_s));
  ASSERT_TRUE(this->recorder.hears(1));
  EXPECT_TRUE(waitFor([&] { return watching.expired(); }));
  EXPECT_TRUE(this->endsItsThread());
}

TYPED_TEST(VXKQueueDelegateThread, MaySetAnotherDelegate) {
  Recorder other;
  const Observer observer(this->watcher);
  this->recorder.then = [&] { this->watcher->setDelegate(&other); };
  const QString path = this->add(u"a"_s);
  this->write(path);
  ASSERT_TRUE(this->recorder.hears(1));
  this->write(path);
  ASSERT_TRUE(other.hears(1));
  EXPECT_EQ(this->recorder.heard.size(), 1u);
  EXPECT_TRUE(observer.heard().empty());
}

// Whether there is a delegate counts when it has been called.
TYPED_TEST(VXKQueueDelegateThread, ThatTakesItselfBackHasTheNotificationPosted) {
  const Observer observer(this->watcher);
  this->recorder.then = [&] { this->watcher->setDelegate(nullptr); };
  const QString path = this->add(u"a"_s);
  this->write(path);
  ASSERT_TRUE(observer.hears(1));
  EXPECT_EQ(this->recorder.heard, (Reports{{Written, path}}));
  EXPECT_EQ(observer.heard(), (Reports{{Written, path}}));
}

TYPED_TEST(VXKQueueDelegateThread, CountsAsNoneOnceItHasGone) {
  const Observer observer(this->watcher);
  const QString path = this->add(u"a"_s);
  {
    Recorder passing;
    this->watcher->setDelegate(&passing);
  }
  EXPECT_EQ(this->watcher->delegate(), nullptr);
  this->write(path);
  ASSERT_TRUE(observer.hears(1));
  EXPECT_EQ(observer.heard(), (Reports{{Written, path}}));
}

TYPED_TEST(VXKQueueDelegateThread, MayGoWhileItIsCalled) {
  const Observer observer(this->watcher);
  auto passing = std::make_unique<Recorder>();
  passing->then = [&] { passing.reset(); };
  this->watcher->setDelegate(passing.get());
  const QString path = this->add(u"a"_s);
  this->write(path);
  ASSERT_TRUE(observer.hears(1));
  EXPECT_FALSE(passing);
}

TYPED_TEST(VXKQueueDelegateThread, MayGoWhileTheThreadWaitsToCallIt) {
  const Observer observer(this->watcher);
  auto passing = std::make_unique<Recorder>();
  this->watcher->setDelegate(passing.get());
  const QString path = this->add(u"a"_s);
  // Most often it gets as far as waiting; where it is slower, it finds no delegate.
  this->holdThread(path);
  for (int yields = 0; yields < 1000; ++yields)
    std::this_thread::yield();
  passing.reset();
  ASSERT_TRUE(observer.hears(1));
  EXPECT_EQ(observer.heard(), (Reports{{Written, path}}));
}

TYPED_TEST(VXKQueueDelegateThread, MayRaiseAnExceptionOfThePlatformWhichIsLogged) {
  expectLog(Error);
  this->recorder.then = [&] {
    this->recorder.then = nullptr;
    throw RangeException(u"too far"_s);
  };
  const QString path = this->add(u"a"_s);
  const QString last = this->add(u"last"_s);
  this->write(path);
  this->backend.setMode(path); // merged or not, it may be dropped with the rest of the event
  this->write(last);
  ASSERT_TRUE(waitFor(
      [&] { return !this->recorder.heard.empty() && this->recorder.heard.back().path == last; }));
  EXPECT_EQ(this->recorder.heard.front(), (Report{Written, path}));
}

TYPED_TEST(VXKQueueDelegateThread, ThatRaisesLosesTheOtherReportsOfTheSameEvent) {
  expectLog(Error);
  const QString held = this->add(u"held"_s);
  const QString path = this->add(u"a"_s);
  const QString last = this->add(u"last"_s);
  this->recorder.then = [&] {
    if (this->recorder.heard.size() == 2)
      throw RangeException(u"too far"_s);
  };
  this->holdThread(held);
  this->write(path);
  this->backend.setMode(path);
  this->write(last);
  ASSERT_TRUE(this->recorder.hears(3));
  EXPECT_EQ(this->recorder.heard, (Reports{{Written, held}, {Written, path}, {Written, last}}));
}

TYPED_TEST(VXKQueueDelegateThread, ThatRaisesAnythingElseEndsTheThreadWithoutAWord) {
  const QString path = this->add(u"a"_s);
  this->recorder.then = [] { throw std::runtime_error("none of the platform's"); };
  this->write(path);
  ASSERT_TRUE(this->endsItsThread());
  EXPECT_EQ(this->watcher->queueFD(), -1);
  // The watcher itself lives on, but cannot watch any more.
  this->add(u"b"_s);
  EXPECT_EQ(this->watcher->description(),
            u"VXKQueue { watchedPaths = (\n    %1\n), alwaysNotify = NO }"_s.arg(
                path == u"a"_s ? path : u'"' + path + u'"'));
  this->watcher->removePath(path);
  EXPECT_THROW(this->watcher->removePath(path), RangeException);
}

TYPED_TEST(VXKQueueDelegateThread, ThatRaisedSomethingElseLeavesNothingToBeClosed) {
  this->add(u"a"_s);
  this->recorder.then = [] { throw 7; };
  this->write(this->add(u"b"_s));
  ASSERT_TRUE(this->endsItsThread());
  this->watcher.reset(); // with paths that its queue has taken along: no line of log
}

TYPED_TEST(VXKQueueDelegateThread, AnObserverMayRaiseAnExceptionOfThePlatformWhichIsLogged) {
  expectLog(Error);
  this->watcher->setDelegate(nullptr);
  std::atomic<int> calls = 0;
  const Observer observer(this->watcher, [&] {
    if (++calls == 1)
      throw RangeException(u"too far"_s);
  });
  const QString path = this->add(u"a"_s);
  const QString last = this->add(u"last"_s);
  this->write(path);
  this->write(last);
  ASSERT_TRUE(observer.hears(1));
  EXPECT_EQ(observer.heard(), (Reports{{Written, last}}));
}

TYPED_TEST(VXKQueueDelegateThread, AnObserverThatRaisesAnythingElseEndsTheThreadWithoutAWord) {
  this->watcher->setDelegate(nullptr);
  const Observer observer(this->watcher, [] { throw std::runtime_error("unknown"); });
  this->write(this->add(u"a"_s));
  EXPECT_TRUE(this->endsItsThread());
}
