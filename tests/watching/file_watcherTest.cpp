#include "zqticker/watching/file_watcher.h"

#include <gtest/gtest.h>

TEST(FileWatcher, ReportsUnderValuesThatDifferFromTheNames) {
  EXPECT_EQ(VXFileWatcherRenameNotification, "VXKQueueFileRenamedNotification");
  EXPECT_EQ(VXFileWatcherWriteNotification, "VXKQueueFileWrittenToNotification");
  EXPECT_EQ(VXFileWatcherDeleteNotification, "VXKQueueFileDeletedNotification");
  EXPECT_EQ(VXFileWatcherAttributeChangeNotification, "VXKQueueFileAttributesChangedNotification");
  EXPECT_EQ(VXFileWatcherSizeIncreaseNotification, "VXKQueueFileSizeIncreasedNotification");
  EXPECT_EQ(VXFileWatcherLinkCountChangeNotification, "VXKQueueFileLinkCountChangedNotification");
  EXPECT_EQ(VXFileWatcherAccessRevocationNotification, "VXKQueueFileAccessRevocationNotification");
}
