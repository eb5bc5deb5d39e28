// What can be watched and under which path it is reported, on real files.
#include "Files.h"
#include "WatcherProbe.h"

#include <sys/socket.h>
#include <sys/un.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {
const QString& Written = VXFileWatcherWriteNotification;

class VXKQueuePath : public ::testing::Test {
 protected:
  VXKQueuePath() { watcher->setDelegate(&recorder); }

  bool watches(const QString& path) const {
    watcher->addPath(path);
    try {
      watcher->removePath(path);
    } catch (const RangeException&) {
      return false;
    }
    return true;
  }

  // `path` spelled in so many bytes.
  static QString padded(const QString& folder, const QString& name, qsizetype bytes) {
    QString path = folder + u'/';
    qsizetype missing = bytes - Files::encoded(path + name).size();
    if (missing % 2)
      path += u'/', --missing;
    for (; missing > 0; missing -= 2)
      path += u"./"_s;
    return path + name;
  }

  Files files;
  Recorder recorder;
  Ref<VXKQueue> watcher = VXKQueue::make();
};
using VXKQueuePathThread = VXKQueuePath;
} // namespace

TEST_F(VXKQueuePath, ThatIsMissingOrDanglingIsNotWatched) {
  EXPECT_FALSE(watches(QString()));
  EXPECT_FALSE(watches(files.path(u"missing"_s)));
  EXPECT_FALSE(watches(files.make(u"file"_s) + u"/below"_s));
  ASSERT_EQ(::symlink("nowhere", Files::encoded(files.path(u"dangling"_s)).constData()), 0);
  EXPECT_FALSE(watches(files.path(u"dangling"_s)));
  ASSERT_EQ(::symlink("loop", Files::encoded(files.path(u"loop"_s)).constData()), 0);
  EXPECT_FALSE(watches(files.path(u"loop"_s)));
}

TEST_F(VXKQueuePath, MayHaveAnyNameThatTheSystemAllows) {
  EXPECT_TRUE(watches(files.make(u"with\nnewline"_s)));
  EXPECT_TRUE(watches(files.make(u" \"\\*?"_s)));
  EXPECT_TRUE(watches(files.make(u"\u00fcml\u00e4ut \U0001F600"_s)));
  EXPECT_TRUE(watches(files.make(QString(255, u'n'))));
}

TEST_F(VXKQueuePath, MayBeAsLongAsTheSystemAllows) {
  files.make(u"a"_s);
  const QString longest = padded(files.folder(), u"a"_s, 4095);
  ASSERT_EQ(Files::encoded(longest).size(), 4095);
  EXPECT_TRUE(watches(longest));
  EXPECT_FALSE(watches(padded(files.folder(), u"a"_s, 4096)));
  EXPECT_FALSE(watches(files.path(QString(256, u'n'))));
}

TEST_F(VXKQueuePath, MayLeadToAnythingWithoutWaitingForIt) {
  const QString fifo = files.path(u"fifo"_s);
  ASSERT_EQ(::mkfifo(Files::encoded(fifo).constData(), 0600), 0);
  EXPECT_TRUE(watches(fifo));

  const QString socketPath = files.path(u"socket"_s);
  const int listening = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const QByteArray name = Files::encoded(socketPath);
  ASSERT_LT(std::size_t(name.size()), sizeof address.sun_path);
  std::copy(name.begin(), name.end(), address.sun_path);
  ASSERT_EQ(::bind(listening, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  EXPECT_TRUE(watches(socketPath));
  ::close(listening);

  EXPECT_TRUE(watches(u"/dev/null"_s));
  EXPECT_TRUE(watches(files.folder()));
  EXPECT_TRUE(watches(u"/"_s));
}

TEST_F(VXKQueuePath, WithoutPermissionIsNotWatched) {
  const bool isRoot = ::geteuid() == 0;
  const QString secret = files.make(u"secret"_s);
  Files::setMode(secret, 0);
  Files::setMode(files.folder(), 0755);
  const QString closed = files.path(u"closed"_s);
  ASSERT_EQ(::mkdir(Files::encoded(closed).constData(), 0755), 0);
  files.make(u"closed/inside"_s);
  Files::setMode(closed, 0);
  constexpr uid_t Nobody = 65534;
  ASSERT_EQ(::seteuid(isRoot ? Nobody : ::geteuid()), 0);
  const bool watchesSecret = watches(secret);
  const bool watchesInside = watches(closed + u"/inside"_s);
  ASSERT_EQ(::seteuid(isRoot ? 0 : ::geteuid()), 0);
  EXPECT_FALSE(watchesSecret);
  EXPECT_FALSE(watchesInside);
  Files::setMode(closed, 0700);
}

TEST_F(VXKQueuePathThread, IsReportedAsItWasAdded) {
  const QString file = files.make(u"a\nb"_s);
  const QString spelled = padded(files.folder(), u"a\nb"_s, 300);
  const QString link = files.path(u"link"_s);
  ASSERT_EQ(::symlink("a\nb", Files::encoded(link).constData()), 0);
  watcher->addPath(spelled);
  watcher->addPath(link);
  watcher->addPath(file);
  Files::write(file, "FIRST");
  ASSERT_TRUE(recorder.hears(3));
  EXPECT_EQ(recorder.heard, (Reports{{Written, spelled}, {Written, link}, {Written, file}}));
  EXPECT_THROW(watcher->removePath(files.folder() + u"/./a\nb"_s), RangeException);
}

TEST_F(VXKQueuePathThread, IsReportedAsItWasAddedWhenItsFileHasAnotherName) {
  const QString path = files.make(u"a"_s);
  const QString renamed = files.path(u"b"_s);
  watcher->addPath(path);
  Files::rename(path, renamed);
  ASSERT_TRUE(recorder.hears(1));
  Files::write(renamed, "FIRST");
  ASSERT_TRUE(recorder.hears(2));
  ASSERT_EQ(::unlink(Files::encoded(renamed).constData()), 0);
  ASSERT_TRUE(recorder.hears(3));
  EXPECT_EQ(recorder.heard, (Reports{{VXFileWatcherRenameNotification, path},
                                     {Written, path},
                                     {VXFileWatcherDeleteNotification, path}}));
}

TEST_F(VXKQueuePathThread, OfAFolderIsReportedWhenItsEntriesChange) {
  watcher->addPath(files.folder());
  const QString path = files.make(u"a"_s);
  ASSERT_TRUE(recorder.hears(1));
  ASSERT_EQ(::unlink(Files::encoded(path).constData()), 0);
  ASSERT_TRUE(recorder.hears(2));
  EXPECT_EQ(recorder.heard, (Reports{{Written, files.folder()}, {Written, files.folder()}}));
}

// Editors write a new file and rename it over the old one.
TEST_F(VXKQueuePathThread, IsReportedForEachOfFiveSavesWhenItIsAddedAgainAfterEach) {
  const QString path = files.make(u"text"_s);
  const QString last = files.make(u"last"_s);
  int saves = 0;
  recorder.then = [&] {
    const Report report = recorder.heard.back();
    if (report.path == last)
      return;
    EXPECT_EQ(report.path, path);
    if (report.notification != VXFileWatcherDeleteNotification &&
        report.notification != VXFileWatcherRenameNotification)
      return;
    ++saves;
    watcher->removePath(path);
    watcher->addPath(path);
  };
  watcher->addPath(path);
  watcher->addPath(last);
  for (int i = 1; i <= 5; ++i) {
    Files::rename(files.make(u".text.new"_s, QByteArray::number(i)), path);
    ASSERT_TRUE(waitFor([&] { return saves >= i; }));
    EXPECT_EQ(saves, i);
  }
  // What is watched now is the latest file.
  Files::write(path, "6");
  Files::write(last, "FIRST");
  ASSERT_TRUE(waitFor([&] { return recorder.heard.back().path == last; }));
  EXPECT_EQ(saves, 5);
  EXPECT_EQ(recorder.heard.at(recorder.heard.size() - 2), (Report{Written, path}));
}
