// Files to be watched and changed.
#pragma once

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zq::testing {

// A folder of its own.
class Files {
 public:
  QString path(const QString& name) const { return folder_.filePath(name); }
  // A text of its own: the thread sanitizer does not see how Qt counts the references to that of
  // the folder.
  QString folder() const { return QString(folder_.path().constData(), folder_.path().size()); }

  QString make(const QString& name, const QByteArray& contents = "first") const {
    write(path(name), contents, O_CREAT | O_TRUNC);
    return path(name);
  }

  // The rest by whole paths.

  static void write(const QString& path, const QByteArray& contents, int flags = 0) {
    const int file = ::open(encoded(path).constData(), O_WRONLY | O_CLOEXEC | flags, 0644);
    EXPECT_GE(file, 0);
    EXPECT_EQ(::write(file, contents.constData(), std::size_t(contents.size())), contents.size());
    ::close(file);
  }
  static void rename(const QString& from, const QString& to) {
    EXPECT_EQ(::rename(encoded(from).constData(), encoded(to).constData()), 0);
  }
  static void link(const QString& from, const QString& to) {
    EXPECT_EQ(::link(encoded(from).constData(), encoded(to).constData()), 0);
  }
  static void setMode(const QString& path, mode_t mode) {
    EXPECT_EQ(::chmod(encoded(path).constData(), mode), 0);
  }
  static QByteArray encoded(const QString& path) { return QFile::encodeName(path); }

 private:
  QTemporaryDir folder_;
};

} // namespace zq::testing
