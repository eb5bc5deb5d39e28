// A second volume in memory, where the tests run as an administrator.
#pragma once

#include <QtCore/QByteArray>

#include <cerrno>

#include <sys/mount.h>

namespace zq::testing {

// Mounted on a folder that exists, until the end.
class TestVolume {
 public:
  explicit TestVolume(const QByteArray& folder)
      : folder_(folder),
        isMounted_(::mount("tmpfs", folder.constData(), "tmpfs", 0, "size=1m") == 0) {}
  ~TestVolume() {
    if (isMounted_)
      ::umount2(folder_.constData(), MNT_DETACH);
  }
  TestVolume(const TestVolume&) = delete;
  TestVolume& operator=(const TestVolume&) = delete;

  // False where mounting is not allowed.
  bool isMounted() const { return isMounted_; }
  bool makeReadOnly() {
    return ::mount("tmpfs", folder_.constData(), "tmpfs", MS_REMOUNT | MS_RDONLY, "") == 0;
  }

 private:
  QByteArray folder_;
  bool isMounted_;
};

} // namespace zq::testing
