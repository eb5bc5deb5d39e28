// What the process shares with the desktop that it runs on.
#pragma once

#include "zqticker/platform/system/NotificationCenter.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QObject>
#include <QtCore/QString>

namespace zq::platform {

// Thread: any.
class ZQTICKER_EXPORT Workspace : public QObject {
  Q_OBJECT

 public:
  // The one workspace, never destroyed.
  static Workspace& sharedWorkspace();

  // Where those that watch files post.
  NotificationCenter& notificationCenter() { return notificationCenter_; }

  // Says that something changed at `path`: emits fileSystemChanged on this thread. The desktop
  // itself needs no telling, it watches files by its own means.
  void noteFileSystemChanged(const QString& path);

 Q_SIGNALS:
  // A change has been noted. Comes on the thread that noted it, by a direct connection.
  void fileSystemChanged(const QString& path);

 private:
  Workspace();
  ~Workspace() override;

  NotificationCenter notificationCenter_;
};

} // namespace zq::platform
