// The one workspace, and the changes that it is told.
#include "zqticker/platform/system/Workspace.h"

#include <gtest/gtest.h>

#include <QtCore/QObject>

#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::platform;

TEST(Workspace, IsOneWithOneNotificationCenter) {
  Workspace& workspace = Workspace::sharedWorkspace();
  EXPECT_EQ(&workspace, &Workspace::sharedWorkspace());
  EXPECT_EQ(&workspace.notificationCenter(), &Workspace::sharedWorkspace().notificationCenter());
}

TEST(Workspace, SaysWhereTheFileSystemChangedOnTheThreadThatNotesIt) {
  QString path;
  std::thread::id where;
  QObject context;
  QObject::connect(
      &Workspace::sharedWorkspace(), &Workspace::fileSystemChanged, &context,
      [&](const QString& changed) {
        path = changed;
        where = std::this_thread::get_id();
      },
      Qt::DirectConnection);
  std::thread thread([] { Workspace::sharedWorkspace().noteFileSystemChanged(u"/tmp/a"_s); });
  const std::thread::id noting = thread.get_id();
  thread.join();
  EXPECT_EQ(path, u"/tmp/a"_s);
  EXPECT_EQ(where, noting);
}
