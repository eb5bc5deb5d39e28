// What the process shares with the desktop that it runs on.
#pragma once

#include "zqticker/platform/system/NotificationCenter.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

#include <vector>

namespace zq::platform {

// A version of the system, as 6.1.0. What is not known is 0.
struct SystemVersion {
  int majorNumber = 0;
  int minorNumber = 0;
  int bugFixNumber = 0;
};

// The keys of a running application: its identifier, a text, and the number of its first process.
constexpr char NSApplicationBundleIdentifier[] = "NSApplicationBundleIdentifier";
constexpr char NSApplicationProcessIdentifier[] = "NSApplicationProcessIdentifier";

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

  // The user's applications that run now, one dictionary each. An application is known by its
  // desktop file: "org.gnome.Calculator" for org.gnome.Calculator.desktop. Of each process it is,
  // in this order:
  //
  // - the one that the session's unit is named after, "app-gnome-org.gnome.Calculator-4711.scope",
  //   a service or a slice likewise;
  // - the desktop file that the process says it was launched from;
  // - those whose program is the one that it runs, or the script that its interpreter runs.
  //   Programs that run others, as shells and interpreters, stand for no application.
  //
  // Takes as long as it takes to look at all processes.
  std::vector<QVariantMap> launchedApplications() const;

  // Moves those of `names`, files or folders in `folder`, into the trash, and returns whether all
  // went. One that cannot go stays, and the others go all the same. A name with a slash, "." and
  // ".." name nothing there.
  bool recycleFiles(const QString& folder, const QStringList& names);

  // The version of the kernel, as uname tells it; where that begins with no number, VERSION_ID of
  // os-release.
  SystemVersion systemVersion() const;

 Q_SIGNALS:
  // A change has been noted. Comes on the thread that noted it, by a direct connection.
  void fileSystemChanged(const QString& path);

 private:
  Workspace();
  ~Workspace() override;

  NotificationCenter notificationCenter_;
};

} // namespace zq::platform
