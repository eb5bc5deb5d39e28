// The settings file and what may be wrong with it.
#include "app/settings/SettingsFile.h"

#include "app/commands/failures.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
class SettingsOnDisk : public ::testing::Test {
 protected:
  QString path() const { return folder_.filePath(u"a/settings.json"_s); }
  QDir folder() const { return QDir(folder_.filePath(u"a"_s)); }
  void write(const QByteArray& bytes) const {
    ASSERT_TRUE(QDir().mkpath(folder().path()));
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }
  static QByteArray contents(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
  }
  std::string failure(const SettingsFile& file) const {
    try {
      SettingsFile(file).change([](QJsonObject& object) { object.insert(u"speed"_s, 1); });
    } catch (const RunTimeError& error) {
      return error.message().toStdString();
    }
    return "none";
  }

  QTemporaryDir folder_;
};
} // namespace

TEST_F(SettingsOnDisk, AreNoneWithoutAFile) {
  const SettingsFile::Contents contents = SettingsFile(path()).read();
  EXPECT_TRUE(contents.object.isEmpty());
  EXPECT_EQ(contents.problem, QString());
  EXPECT_FALSE(folder().exists()) << "reading makes nothing";
}

TEST_F(SettingsOnDisk, KeepWhatIsNotChanged) {
  write(R"({"speed": 40, "of another version": {"a": [1, 2]}, "width": 3})");
  SettingsFile file(path());
  file.change([](QJsonObject& object) {
    object.insert(u"speed"_s, 50);
    object.remove(u"width"_s);
  });
  const QJsonObject object = file.read().object;
  EXPECT_EQ(object.keys(), (QStringList{u"of another version"_s, u"speed"_s}));
  EXPECT_EQ(object[u"speed"_s], QJsonValue(50));
  EXPECT_EQ(object[u"of another version"_s][u"a"_s][1], QJsonValue(2));
  EXPECT_EQ(folder().entryList(QDir::Files | QDir::Hidden), QStringList{u"settings.json"_s})
      << "neither a lock nor a temporary file stays";
}

TEST_F(SettingsOnDisk, MakeTheirFolder) {
  SettingsFile file(path());
  file.change([](QJsonObject& object) { object.insert(u"speed"_s, 50); });
  EXPECT_EQ(file.read().object[u"speed"_s], QJsonValue(50));
}

TEST_F(SettingsOnDisk, TellWhatIsBroken) {
  const auto problem = [&](const QByteArray& bytes) {
    write(bytes);
    const SettingsFile::Contents contents = SettingsFile(path()).read();
    EXPECT_TRUE(contents.isBroken);
    EXPECT_TRUE(contents.object.isEmpty());
    return contents.problem.toStdString();
  };
  EXPECT_EQ(problem("{\n\"speed\": 4,"), "line 2: not JSON: unterminated object");
  EXPECT_EQ(problem("[1]"), "not a JSON object");
  EXPECT_NE(problem(QByteArray("\0\xff\xfe", 3)), "");
  EXPECT_EQ(problem("{}" + QByteArray(SettingsFile::LargestFile, ' ')), "larger than 1 MiB");
}

TEST_F(SettingsOnDisk, KeepABrokenFileAside) {
  write("{broken");
  SettingsFile file(path());
  const QString aside = file.keepAside();
  EXPECT_TRUE(aside.startsWith(path() + u".broken-"_s)) << aside.toStdString();
  EXPECT_EQ(contents(aside), "{broken");
  EXPECT_FALSE(QFile::exists(path()));
  EXPECT_EQ(file.keepAside(), QString()) << "nothing is broken any more";
  write("{broken again");
  const QString other = file.keepAside();
  EXPECT_NE(other, aside);
  EXPECT_EQ(contents(aside), "{broken");
  EXPECT_EQ(contents(other), "{broken again");
}

TEST_F(SettingsOnDisk, ChangeABrokenFileOnlyOnceItIsAside) {
  write("{broken");
  SettingsFile file(path());
  file.change([](QJsonObject& object) {
    EXPECT_TRUE(object.isEmpty());
    object.insert(u"speed"_s, 50);
  });
  EXPECT_EQ(file.read().object.keys(), QStringList{u"speed"_s});
  const QStringList names = folder().entryList(QDir::Files);
  ASSERT_EQ(names.size(), 2);
  EXPECT_EQ(contents(folder().filePath(names[1])), "{broken");
}

TEST_F(SettingsOnDisk, AreNotReadFromWhatIsNoFile) {
  ASSERT_TRUE(QDir().mkpath(path()));
  EXPECT_EQ(SettingsFile(path()).read().problem, u"cannot read: not a file"_s);
  EXPECT_FALSE(SettingsFile(path()).read().isBroken);
  EXPECT_EQ(failure(SettingsFile(path())), path().toStdString() + ": cannot read: not a file");
  ASSERT_TRUE(QDir().rmdir(path()));
  ASSERT_EQ(::mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
  EXPECT_EQ(SettingsFile(path()).read().problem, u"cannot read: not a file"_s);
}

TEST_F(SettingsOnDisk, AreNotTakenAsEmptyWhereReadingFails) {
  ASSERT_TRUE(QDir().mkpath(folder().path()));
  // A file that can be opened, whose first byte cannot be read.
  ASSERT_TRUE(QFile::link(u"/proc/self/mem"_s, path()));
  EXPECT_TRUE(SettingsFile(path()).read().problem.startsWith(u"cannot read: "));
  EXPECT_NE(failure(SettingsFile(path())), "none");
  EXPECT_TRUE(QFileInfo(path()).isSymLink());
}

TEST_F(SettingsOnDisk, AreNotWrittenWhereTheirFolderIsAFile) {
  QFile file(folder_.filePath(u"a"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  EXPECT_EQ(failure(SettingsFile(path())),
            path().toStdString() + ": cannot write: the folder cannot be made");
}

TEST_F(SettingsOnDisk, FollowALinkToTheirFile) {
  ASSERT_TRUE(QDir().mkpath(folder().path()));
  const QString target = folder_.filePath(u"kept elsewhere.json"_s);
  QFile kept(target);
  ASSERT_TRUE(kept.open(QIODevice::WriteOnly));
  kept.write("{}");
  kept.close();
  ASSERT_TRUE(QFile::link(target, path()));
  SettingsFile file(path());
  file.change([](QJsonObject& object) { object.insert(u"speed"_s, 50); });
  EXPECT_TRUE(QFileInfo(path()).isSymLink());
  EXPECT_TRUE(contents(target).contains("speed"));
}

TEST_F(SettingsOnDisk, LoseNoKeyWhileAnotherThreadWrites) {
  constexpr int WriterCount = 4;
  constexpr int KeyCount = 20;
  std::vector<std::thread> writers;
  for (int writer = 0; writer < WriterCount; ++writer)
    writers.emplace_back([writer, path = path()] {
      SettingsFile file(path);
      for (int i = 0; i < KeyCount; ++i)
        file.change(
            [&](QJsonObject& object) { object.insert(u"%1 of %2"_s.arg(i).arg(writer), i); });
    });
  // Whoever reads meanwhile sees a whole file.
  for (int i = 0; i < KeyCount; ++i)
    EXPECT_EQ(SettingsFile(path()).read().problem, QString());
  for (std::thread& writer : writers)
    writer.join();
  EXPECT_EQ(SettingsFile(path()).read().object.size(), WriterCount * KeyCount);
}
