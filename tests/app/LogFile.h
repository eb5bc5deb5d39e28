// A text file to which a test writes as programs do.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace zq::app::testing {

// A log in a folder of its own. Like logging programs it is kept open while it is written to, so
// that what is written goes into the same file after a rename, until it is opened anew.
class LogFile {
 public:
  explicit LogFile(const QString& name = QStringLiteral("log")) : name_(name) {}

  QString path() const { return folder_.filePath(name_); }
  QByteArray bytes() const { return QFile::encodeName(path()); }
  // Of a rotated log.
  QString path(int generation) const { return path() + QStringLiteral(".%1").arg(generation); }
  QString folder() const { return folder_.path(); }

  // Opens the file at the path, which is made where there is none; written to at its end.
  void open() {
    file_.close();
    file_.setFileName(path());
    ASSERT_TRUE(file_.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered));
  }
  void write(const QByteArray& bytes) {
    if (!file_.isOpen())
      open();
    ASSERT_EQ(file_.write(bytes), bytes.size());
  }
  // Gives the file the name of a generation.
  void rename(int generation = 1) const { ASSERT_TRUE(QFile::rename(path(), path(generation))); }
  void remove() const { ASSERT_TRUE(QFile::remove(path())); }
  void copyAndEmpty() {
    QFile::remove(path(1));
    ASSERT_TRUE(QFile::copy(path(), path(1)));
    ASSERT_TRUE(file_.resize(0));
  }
  // Another file with these contents takes the place of this one.
  void replace(const QByteArray& contents) {
    QFile fresh(path() + QStringLiteral("~"));
    ASSERT_TRUE(fresh.open(QIODevice::WriteOnly) && fresh.write(contents) == contents.size());
    fresh.close();
    file_.close();
    ASSERT_EQ(std::rename(QFile::encodeName(fresh.fileName()).constData(), bytes().constData()), 0);
  }

 private:
  QTemporaryDir folder_;
  QString name_;
  QFile file_;
};

} // namespace zq::app::testing
