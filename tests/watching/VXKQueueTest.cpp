// What a watcher reports, to whom and in which order.
#include "WatcherProbe.h"

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

TEST(VXKQueueThread, TellsItsDelegateOfAWriteOnceAndOnTheMainThread) {
  const Files files;
  const QString path = files.make(u"a"_s);
  const QString last = files.make(u"last"_s);
  Recorder recorder;
  const auto watcher = VXKQueue::make();
  watcher->setDelegate(&recorder);
  watcher->addPath(path);
  watcher->addPath(last);
  files.write(u"a"_s, "other");
  ASSERT_TRUE(recorder.hears(1));
  files.write(u"last"_s, "other");
  ASSERT_TRUE(recorder.hears(2));
  EXPECT_EQ(recorder.heard, (Reports{{VXFileWatcherWriteNotification, path},
                                     {VXFileWatcherWriteNotification, last}}));
  EXPECT_EQ(recorder.lastWatcher, watcher.get());
}

TEST(VXKQueueThread, PostsANotificationWithoutADelegate) {
  const Files files;
  const QString path = files.make(u"a"_s);
  const auto watcher = VXKQueue::make();
  const Observer observer(watcher);
  watcher->addPath(path);
  files.write(u"a"_s, "other");
  ASSERT_TRUE(observer.hears(1));
  EXPECT_EQ(observer.heard(), (Reports{{VXFileWatcherWriteNotification, path}}));
}

TEST(VXKQueueThread, ReportsNothingOfAPathThatWasRemoved) {
  const Files files;
  const QString path = files.make(u"a"_s);
  const QString last = files.make(u"last"_s);
  Recorder recorder;
  const auto watcher = VXKQueue::make();
  watcher->setDelegate(&recorder);
  watcher->addPath(path);
  watcher->addPath(last);
  watcher->removePath(path);
  files.write(u"a"_s, "other");
  files.write(u"last"_s, "other");
  ASSERT_TRUE(recorder.hears(1));
  EXPECT_EQ(recorder.heard, (Reports{{VXFileWatcherWriteNotification, last}}));
  EXPECT_THROW(watcher->removePath(path), RangeException);
}

TEST(VXKQueue, DescribesItselfByItsPathsAndWhetherItAlwaysNotifies) {
  const Files files;
  const auto watcher = VXKQueue::make();
  EXPECT_EQ(watcher->description(), u"VXKQueue { watchedPaths = (\n), alwaysNotify = NO }"_s);
  const QString path = files.make(u"a"_s);
  watcher->addPath(path);
  watcher->addPath(path);
  watcher->addPath(files.path(u"missing"_s));
  watcher->setAlwaysNotify(true);
  EXPECT_EQ(
      watcher->description(),
      u"VXKQueue { watchedPaths = (\n    \"%1\",\n    \"%1\"\n), alwaysNotify = YES }"_s.arg(path));
}
