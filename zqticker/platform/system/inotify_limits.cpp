#include "zqticker/platform/system/inotify_limits_p.h"

#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>

#include <cerrno>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zq::platform {
namespace {

Q_LOGGING_CATEGORY(log, "zqticker.watching")

void logSetting(const char* name, const char* enough) {
  QFile file(u"/proc/sys/"_s + QString::fromLatin1(name).replace(u'.', u'/'));
  const QByteArray limit =
      file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray("unknown");
  qCWarning(log,
            "The kernel refuses to watch more files: the limit %s is %s. Raise it with "
            "\"sysctl %s=%s\".",
            name, limit.constData(), name, enough);
}

// An instance is refused with the same error for want of instances and of descriptors.
bool isOutOfDescriptors() {
  const int file = ::open("/", O_PATH | O_CLOEXEC);
  if (file >= 0)
    ::close(file);
  return file < 0;
}

void logOpenFiles() {
  rlimit limit{};
  ::getrlimit(RLIMIT_NOFILE, &limit);
  qCWarning(log,
            "The kernel refuses to watch more files: the limit of open files is %llu. Raise it "
            "with \"ulimit -n 4096\".",
            static_cast<unsigned long long>(limit.rlim_cur));
}

} // namespace

bool logInotifyLimit(int error) {
  switch (error) {
  case ENOSPC:
    logSetting("fs.inotify.max_user_watches", "1048576");
    return true;
  case ENFILE:
    logSetting("fs.file-max", "1048576");
    return true;
  case EMFILE:
    if (isOutOfDescriptors())
      logOpenFiles();
    else
      logSetting("fs.inotify.max_user_instances", "1024");
    return true;
  default:
    return false;
  }
}

} // namespace zq::platform
