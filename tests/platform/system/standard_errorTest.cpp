// Each test has the standard error of this process to itself.
#include "zqticker/platform/system/standard_error.h"

#include "tests/support/OrdinaryUser.h"
#include "tests/support/volumes.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
class StandardErrorTest : public ::testing::Test {
 protected:
  ~StandardErrorTest() override {
    ::dup2(before_, STDERR_FILENO);
    ::close(before_);
    std::clearerr(stderr);
  }
  QByteArray path(const QString& name) const { return QFile::encodeName(folder_.filePath(name)); }
  QByteArray contentsOf(const QString& name) const {
    QFile file(folder_.filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
  }

  QTemporaryDir folder_;
  int before_ = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 100);
};
} // namespace

TEST_F(StandardErrorTest, IsAppendedToTheFileAtOnce) {
  EXPECT_TRUE(reopenStandardError(path(u"log"_s)));
  std::fputs("stream ", stderr);
  ASSERT_EQ(::write(STDERR_FILENO, "descriptor\n", 11), 11);
  EXPECT_EQ(contentsOf(u"log"_s), "stream descriptor\n");
  EXPECT_TRUE(reopenStandardError(path(u"log"_s)));
  std::fputs("again", stderr);
  EXPECT_EQ(contentsOf(u"log"_s), "stream descriptor\nagain");
}

TEST_F(StandardErrorTest, StaysAsItWasWhereTheFileCannotBeOpened) {
  ASSERT_TRUE(reopenStandardError(path(u"log"_s)));
  EXPECT_FALSE(reopenStandardError(path(u"none/log"_s)));
  EXPECT_FALSE(reopenStandardError(path(u""_s)));
  EXPECT_FALSE(reopenStandardError(""));
  std::fputs("still here", stderr);
  EXPECT_EQ(contentsOf(u"log"_s), "still here");
}

TEST_F(StandardErrorTest, StaysAsItWasForAFolderWithoutThePermission) {
  ASSERT_TRUE(reopenStandardError(path(u"log"_s)));
  ASSERT_EQ(::chmod(path(u""_s).constData(), 0555), 0);
  {
    const zq::testing::OrdinaryUser user;
    ASSERT_TRUE(user.isReady());
    EXPECT_FALSE(reopenStandardError(path(u"other"_s)));
  }
  ::chmod(path(u""_s).constData(), 0700);
  std::fputs("still here", stderr);
  EXPECT_EQ(contentsOf(u"log"_s), "still here");
  EXPECT_EQ(contentsOf(u"other"_s), "missing");
}

TEST_F(StandardErrorTest, StaysAsItWasForAReadOnlyVolume) {
  ASSERT_TRUE(reopenStandardError(path(u"log"_s)));
  ASSERT_EQ(::mkdir(path(u"volume"_s).constData(), 0700), 0);
  zq::testing::TestVolume volume(path(u"volume"_s));
  if (!volume.isMounted() || !volume.makeReadOnly())
    GTEST_SKIP() << "no volume may be mounted here";
  EXPECT_FALSE(reopenStandardError(path(u"volume/log"_s)));
  std::fputs("still here", stderr);
  EXPECT_EQ(contentsOf(u"log"_s), "still here");
}

TEST_F(StandardErrorTest, LosesLinesOnAFullDisk) {
  EXPECT_TRUE(reopenStandardError("/dev/full"));
  EXPECT_EQ(std::fputs("lost", stderr), EOF);
  EXPECT_TRUE(reopenStandardError(path(u"log"_s)));
  EXPECT_GE(std::fputs("found", stderr), 0);
  EXPECT_EQ(contentsOf(u"log"_s), "found");
}
