#include "app/queue/sign_files.h"

#include "app/commands/failures.h"
#include "tests/app/queue/FakeQueue.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/graphics/Color.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
class SignFiles : public ::testing::Test {
 protected:
  void write(const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }
  QString failure() {
    try {
      readSigns(path);
    } catch (const RunTimeError& error) {
      EXPECT_FALSE(error.message().contains(u'\n'));
      return error.message();
    }
    return QString();
  }

  QTemporaryDir folder;
  QString path = folder.filePath(u"queue.sign"_s);
};
} // namespace

TEST_F(SignFiles, GiveBackWhatWasWritten) {
  const auto text = ZQTextTickerSign::make(u"hello"_s);
  text->setLoopCount(4);
  text->setIdentifier(u"one"_s);
  writeSigns(path, {text, ZQComboTickerSign::make(u"both"_s, plainPicture({3, 2}, Qt::blue)),
                    ZQImageTickerSign::make(plainPicture({5, 6}, Qt::green))});
  const auto signs = readSigns(path);
  ASSERT_EQ(signs.size(), 3u);
  EXPECT_EQ(std::dynamic_pointer_cast<ZQTextTickerSign>(signs[0])->description(), u"hello"_s);
  EXPECT_EQ(signs[0]->loopCount(), 4);
  EXPECT_EQ(signs[0]->identifier(), u"one"_s);
  EXPECT_EQ(std::dynamic_pointer_cast<ZQComboTickerSign>(signs[1])->text(), Any(u"both"_s));
  EXPECT_EQ(signs[2]->size(), QSizeF(5, 6));
}

TEST_F(SignFiles, MayHoldASingleSignOrNone) {
  write(KeyedArchiver::archivedDataWithRootObject(ZQTextTickerSign::make(u"single"_s)));
  EXPECT_EQ(readSigns(path).size(), 1u);
  writeSigns(path, {});
  EXPECT_EQ(readSigns(path).size(), 0u);
}

TEST_F(SignFiles, AreRefusedInOneLineWhereTheyHoldAnythingElse) {
  write("no archive");
  EXPECT_TRUE(failure().startsWith(u"queue.sign: "));
  write(KeyedArchiver::archivedDataWithRootObject(Any(u"text"_s)));
  EXPECT_EQ(failure(), u"queue.sign: holds something that is no sign"_s);
  write(KeyedArchiver::archivedDataWithRootObject(
      Any(QVariantList{any(ZQTextTickerSign::make(u"good"_s)), u"text"_s})));
  EXPECT_EQ(failure(), u"queue.sign: holds something that is no sign"_s);
  write(KeyedArchiver::archivedDataWithRootObject(Any(QVariantList{any(Color::sRGB(1, 0, 0))})));
  EXPECT_EQ(failure(), u"queue.sign: holds something that is no sign"_s);
  write(KeyedArchiver::archivedDataWithRootObject(std::make_shared<ZQTickerSign>()));
  EXPECT_EQ(failure(), u"queue.sign: holds something that is no sign"_s);
  write("");
  EXPECT_FALSE(failure().isEmpty());
  QFile::remove(path);
  EXPECT_TRUE(failure().startsWith(u"queue.sign: cannot be read: "));
}

TEST_F(SignFiles, AreRefusedWhereTheyAreBroken) {
  writeSigns(path, {ZQTextTickerSign::make(u"hello"_s)});
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QByteArray whole = file.readAll();
  for (const qsizetype length : {whole.size() - 1, whole.size() / 2, qsizetype(9)}) {
    write(whole.left(length));
    EXPECT_TRUE(failure().startsWith(u"queue.sign: ")) << length;
  }
}

TEST_F(SignFiles, AreUnchangedWhereWritingFails) {
  writeSigns(path, {ZQTextTickerSign::make(u"before"_s)});
  EXPECT_THROW(writeSigns(folder.filePath(u"missing/queue.sign"_s), {}), RunTimeError);
  EXPECT_THROW(writeSigns(folder.path(), {}), RunTimeError) << "a folder";
  EXPECT_EQ(readSigns(path).size(), 1u);
  EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
            QStringList{u"queue.sign"_s});
}

TEST_F(SignFiles, AreKnownByHowTheyBegin) {
  EXPECT_TRUE(beginsAsArchive("bplist00 and more"));
  EXPECT_TRUE(beginsAsArchive("<?xml version=\"1.0\"?>\n<!DOCTYPE plist>\n<plist version=\"1\">"));
  EXPECT_FALSE(beginsAsArchive("<?xml version=\"1.0\"?><svg/>"));
  EXPECT_FALSE(beginsAsArchive("plain"));
}

TEST_F(SignFiles, ThatAreNoPlainFilesAreNotOpened) {
  EXPECT_THROW(readPlainFile(folder.path(), 10), RunTimeError);
  EXPECT_THROW(readPlainFile(u"/dev/zero"_s, 10), RunTimeError);
  write("12345");
  EXPECT_EQ(readPlainFile(path, 5), "12345");
  EXPECT_THROW(readPlainFile(path, 4), RunTimeError);
}
