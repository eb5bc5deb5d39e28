// Files that commands write.
#include "app/commands/output_files.h"

#include "app/commands/failures.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
QByteArray contentsOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}
} // namespace

TEST(OutputFile, HoldsTheBytesAndLeavesNothingElse) {
  const QTemporaryDir folder;
  writeOutputFile(u"--output"_s, folder.filePath(u"out"_s), "bytes");
  EXPECT_EQ(contentsOf(folder.filePath(u"out"_s)), "bytes");
  EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{u"out"_s});
}

TEST(OutputFile, ReplacesWhatWasThere) {
  const QTemporaryDir folder;
  writeOutputFile(u"--output"_s, folder.filePath(u"out"_s), "longer than the second");
  writeOutputFile(u"--output"_s, folder.filePath(u"out"_s), "second");
  EXPECT_EQ(contentsOf(folder.filePath(u"out"_s)), "second");
}

TEST(OutputFile, NamesWhatCannotBeWritten) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"missing/out"_s);
  try {
    writeOutputFile(u"--output"_s, path, "bytes");
    FAIL() << "nothing was raised";
  } catch (const RunTimeError& error) {
    EXPECT_TRUE(error.message().startsWith("--output "_L1 + path + ": cannot write: "_L1))
        << error.message().toStdString();
  }
}

TEST(OutputFile, IsNoFolder) {
  const QTemporaryDir folder;
  EXPECT_THROW(writeOutputFile(u"--output"_s, folder.path(), "bytes"), RunTimeError);
}

TEST(OutputFiles, AreAllThereOrNone) {
  const QTemporaryDir folder;
  const QString first = folder.filePath(u"first"_s);
  writeOutputFile(u"--output"_s, first, "before");
  const QString second = folder.filePath(u"missing/second"_s);
  try {
    writeOutputFiles(u"--output"_s, {{first, "one"}, {second, "two"}});
    FAIL() << "nothing was raised";
  } catch (const RunTimeError& error) {
    EXPECT_TRUE(error.message().startsWith("--output "_L1 + second + ": cannot write: "_L1))
        << error.message().toStdString();
  }
  EXPECT_EQ(contentsOf(first), "before");
  EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{u"first"_s});
  ASSERT_TRUE(QDir(folder.path()).mkdir(u"missing"_s));
  writeOutputFiles(u"--output"_s, {{first, "one"}, {second, "two"}});
  EXPECT_EQ(contentsOf(first), "one");
  EXPECT_EQ(contentsOf(second), "two");
}

TEST(OutputFile, GoesThroughAPipeThatIsThereAlready) {
  const QTemporaryDir folder;
  const QByteArray path = folder.filePath(u"pipe"_s).toLocal8Bit();
  ASSERT_EQ(::mkfifo(path.constData(), 0600), 0);
  const int reader = ::open(path.constData(), O_RDWR | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  writeOutputFile(u"--output"_s, QString::fromLocal8Bit(path), "bytes");
  char received[16];
  const ssize_t count = ::read(reader, received, sizeof received);
  ::close(reader);
  EXPECT_EQ(QByteArray(received, std::max<ssize_t>(count, 0)), "bytes");
}
