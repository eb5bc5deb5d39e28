// What the tests of the command `appearance` share.
#pragma once

#include "tests/app/Program.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace zq::app::testing {

using namespace Qt::StringLiterals;

// Runs the command in a folder of its own.
class AppearanceCommand : public ::testing::Test {
 protected:
  QString path(const QString& name) const { return folder_.filePath(name); }
  QString write(const QString& name, const QByteArray& bytes) const {
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return path(name);
  }
  static QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
  }
  QStringList entries() const {
    return QDir(folder_.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden);
  }
  static Outcome run(const QStringList& arguments) {
    return runZqticker(QStringList{u"appearance"_s} + arguments);
  }
  static void expectFailure(const Outcome& outcome, int status, const QByteArray& start) {
    EXPECT_EQ(outcome.status, status);
    EXPECT_TRUE(outcome.errors.startsWith(QByteArray("zqticker: " + start)))
        << outcome.errors.constData();
    EXPECT_EQ(outcome.errors.count('\n'), 1) << outcome.errors.constData();
    EXPECT_EQ(outcome.output, "");
  }

  QTemporaryDir folder_;
};

// A file of tests/rollover/golden.
inline QByteArray golden(const QString& name) {
  QFile file(QStringLiteral(ZQTICKER_SOURCE_DIR "/tests/rollover/golden/") + name);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
  return file.readAll();
}

} // namespace zq::app::testing
