// What a look amounts to that is newer than the note which has led to it.
#include "zqticker/platform/system/InodeChanges_p.h"

#include "zqticker/platform/system/InotifyEventQueue_p.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace zq::platform;

namespace {
// A watched file whose notes are made by the test.
class NotedFile {
 public:
  NotedFile() : path_(QFile::encodeName(folder_.filePath(u"a"_qs))) {
    append("first");
    const int file = ::open(path_.constData(), O_PATH | O_CLOEXEC);
    inode_ = table_.watch(file);
    ::close(file);
    inode_->firstRegistration = &registration_;
  }
  ~NotedFile() {
    inode_.reset();
    ::close(instance_);
  }

  const char* path() const { return path_.constData(); }
  void append(const char* text) {
    QFile file(QFile::decodeName(path_));
    EXPECT_TRUE(file.open(QIODevice::Append) && file.write(text) > 0);
  }
  void chmod(mode_t mode) { EXPECT_EQ(::chmod(path(), mode), 0); }
  void link() { EXPECT_EQ(::link(path(), QByteArray(path_ + ".link").constData()), 0); }

  std::uint32_t evaluate(std::uint32_t note) {
    table_.note(*inode_, note);
    return changes_.evaluate(*inode_, [] {});
  }
  std::uint32_t compareContents() { return changes_.compareContents(*inode_); }

 private:
  QTemporaryDir folder_;
  QByteArray path_;
  int instance_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  InodeTable table_{instance_, InotifyCalls()};
  InodeChanges changes_{table_};
  Registration registration_;
  std::shared_ptr<Inode> inode_;
};
} // namespace

TEST(InodeChanges, TellsOfAttributesAndALinkThatTheLookForAWriteHasFound) {
  NotedFile file;
  file.append("more");
  file.chmod(0600);
  file.link();
  EXPECT_EQ(file.evaluate(SeenWritten), VnodeWrite | VnodeExtend);
  EXPECT_EQ(file.evaluate(SeenAttributes), VnodeAttrib | VnodeLink);
}

TEST(InodeChanges, TellsOfALinkThatTheLookForStoresHasFound) {
  NotedFile file;
  file.append("more");
  file.link();
  EXPECT_EQ(file.compareContents(), VnodeWrite | VnodeExtend);
  EXPECT_EQ(file.evaluate(SeenAttributes), VnodeLink);
}

TEST(InodeChanges, TellsGrowthOnce) {
  NotedFile file;
  file.append("more");
  EXPECT_EQ(file.evaluate(SeenWritten), VnodeWrite | VnodeExtend);
  EXPECT_EQ(file.evaluate(SeenWritten), VnodeWrite);
  EXPECT_EQ(file.compareContents(), 0u);
}
