#include "app/queue/drop_contents.h"

#include "app/display/SignAction.h"
#include "app/queue/sign_files.h"
#include "tests/app/queue/FakeQueue.h"
#include "zqticker/platform/graphics/ImageRepresentation.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QMimeData>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
class DropContents : public ::testing::Test {
 protected:
  QString file(const QString& name, const QByteArray& bytes) {
    QFile made(folder.filePath(name));
    EXPECT_TRUE(made.open(QIODevice::WriteOnly));
    made.write(bytes);
    return made.fileName();
  }
  QString picture(const QString& name, QSize size) {
    QImage pixels(size, QImage::Format_RGB32);
    pixels.fill(Qt::red);
    EXPECT_TRUE(pixels.save(folder.filePath(name)));
    return folder.filePath(name);
  }
  void setFiles(const QStringList& paths) {
    QList<QUrl> urls;
    for (const QString& path : paths)
      urls.append(QUrl::fromLocalFile(path));
    contents.setUrls(urls);
  }
  void read(std::int64_t showings = 2) {
    const std::atomic<bool> isStopped = false;
    dropped =
        bringsFiles(contents)
            ? signsOfFiles(loadFiles(contents.urls(), pixelRoomFor(queue.pictureRoom()), isStopped),
                           queue, showings)
            : readDrop(contents, queue, showings);
  }
  QStringList texts() const {
    QStringList result;
    for (const auto& sign : dropped.signs)
      result.append(sign->description());
    return result;
  }

  QTemporaryDir folder;
  QMimeData contents;
  FakeQueue queue;
  DroppedSigns dropped;
};
} // namespace

TEST_F(DropContents, OfTextAreASignForEachLine) {
  contents.setText(u"  first\r\n\n \t\nsecond line\n"_s);
  EXPECT_FALSE(dropRefusal(contents));
  read();
  EXPECT_EQ(texts(), (QStringList{u"first"_s, u"second line"_s}));
  EXPECT_EQ(dropped.signs[0]->loopCount(), 2);
  read(-1);
  EXPECT_EQ(dropped.signs[0]->loopCount(), ZQEndlessLoopCount);
}

TEST_F(DropContents, OfALinkOpenItAndShowItsTitle) {
  const QUrl url(u"https://example.org/a?b=ü"_s);
  contents.setUrls({url});
  contents.setText(url.toString());
  read();
  ASSERT_EQ(dropped.signs.size(), 1u);
  EXPECT_EQ(texts(), QStringList{url.toDisplayString()});
  EXPECT_EQ(dropped.signs[0]->actionType(), OpenLocation);
  EXPECT_EQ(dropped.signs[0]->actionString(), u"https://example.org/a?b=%C3%BC"_s);
  contents.setData(u"_NETSCAPE_URL"_s, url.toString().toUtf8() + "\nThe title");
  read();
  EXPECT_EQ(texts(), QStringList{u"The title"_s});
  const QString browser = url.toString() + u"\nAnother title"_s;
  contents.setData(u"text/x-moz-url"_s, QByteArray(reinterpret_cast<const char*>(browser.utf16()),
                                                   browser.size() * qsizetype(sizeof(char16_t))));
  read();
  EXPECT_EQ(texts(), QStringList{u"Another title"_s});
}

TEST_F(DropContents, OfTextThatIsALinkOpenIt) {
  contents.setText(u"http://example.org/page\n"_s);
  read();
  ASSERT_EQ(dropped.signs.size(), 1u);
  EXPECT_EQ(dropped.signs[0]->actionType(), OpenLocation);
  contents.setText(u"javascript:alert(1)"_s);
  read();
  ASSERT_EQ(dropped.signs.size(), 1u);
  EXPECT_EQ(dropped.signs[0]->actionType(), NoAction);
}

TEST_F(DropContents, OfAnAddressThatIsNoneOfTheWebAreRefused) {
  contents.setUrls({QUrl(u"javascript:alert(1)"_s)});
  EXPECT_TRUE(dropRefusal(contents));
  read();
  EXPECT_TRUE(dropped.signs.empty());
  EXPECT_EQ(dropped.problems.size(), 1);
}

TEST_F(DropContents, OfAPictureFitTheStrip) {
  queue.room = QSizeF(0, 24);
  QImage pixels(200, 100, QImage::Format_RGB32);
  pixels.fill(Qt::red);
  contents.setImageData(pixels);
  contents.setText(u"not this"_s);
  EXPECT_FALSE(dropRefusal(contents));
  read();
  ASSERT_EQ(dropped.signs.size(), 1u);
  EXPECT_EQ(dropped.signs[0]->size(), QSizeF(48, 24));
  queue.room = QSizeF(0, 400);
  read();
  EXPECT_EQ(dropped.signs[0]->size(), QSizeF(200, 100)) << "never larger than it is";
  queue.room = QSizeF(50, 0);
  read();
  EXPECT_EQ(dropped.signs[0]->size(), QSizeF(50, 25));
}

TEST_F(DropContents, OfFilesAreWhatTheFilesHold) {
  const QString signs = folder.filePath(u"two.sign"_s);
  writeSigns(signs, {ZQTextTickerSign::make(u"x"_s), ZQTextTickerSign::make(u"y"_s)});
  setFiles({picture(u"p.png"_s, {10, 5}), file(u"lines.txt"_s, "one\ntwo\n"), signs,
            file(u"wide.txt"_s, QByteArray("\xff\xfe"
                                           "a\0b\0",
                                           6))});
  EXPECT_FALSE(dropRefusal(contents));
  read();
  EXPECT_EQ(dropped.problems, QStringList());
  ASSERT_EQ(dropped.signs.size(), 6u);
  EXPECT_EQ(dropped.signs[0]->size(), QSizeF(10, 5));
  EXPECT_EQ(texts().mid(1), (QStringList{u"one"_s, u"two"_s, u"x"_s, u"y"_s, u"ab"_s}));
}

TEST_F(DropContents, OfBrokenFilesAreNamedAndTheRestComes) {
  const QString whole = picture(u"p.png"_s, {100, 100});
  QFile read1(whole);
  ASSERT_TRUE(read1.open(QIODevice::ReadOnly));
  const QByteArray bytes = read1.readAll();
  setFiles({file(u"half.png"_s, bytes.left(bytes.size() / 2)), file(u"good.txt"_s, "good"),
            file(u"empty.txt"_s, ""), file(u"binary"_s, QByteArray("a\0b\xff", 4)),
            file(u"blank.txt"_s, " \n\n"), file(u"bad.sign"_s, "bplist00 no"),
            file(u"drawing.svg"_s, "<svg xmlns=\"http://www.w3.org/2000/svg\"/>"), folder.path(),
            folder.filePath(u"missing"_s)});
  read();
  EXPECT_EQ(texts(), QStringList{u"good"_s});
  ASSERT_EQ(dropped.problems.size(), 8);
  EXPECT_EQ(dropped.problems[0], u"half.png: not a picture that can be read"_s);
  EXPECT_EQ(dropped.problems[1], u"empty.txt: is empty"_s);
  EXPECT_EQ(dropped.problems[2], u"binary: neither a picture nor text nor signs"_s);
  EXPECT_EQ(dropped.problems[3], u"blank.txt: only blank"_s);
  EXPECT_TRUE(dropped.problems[4].startsWith(u"bad.sign: "));
  EXPECT_EQ(dropped.problems[5], u"drawing.svg: not a picture that can be read"_s);
  EXPECT_TRUE(dropped.problems[6].endsWith(u": is a folder"));
  EXPECT_TRUE(dropped.problems[7].startsWith(u"missing: cannot be read: "));
}

TEST_F(DropContents, ThatAreTooLargeAreRefused) {
  QList<QUrl> many;
  for (qsizetype i = 0; i <= MostDroppedAddresses; ++i)
    many.append(QUrl(u"https://example.org/%1"_s.arg(i)));
  contents.setUrls(many);
  EXPECT_EQ(dropRefusal(contents), u"Only 100 files can be dropped at once"_s);
  QFile large(folder.filePath(u"large"_s));
  ASSERT_TRUE(large.open(QIODevice::WriteOnly));
  ASSERT_TRUE(large.resize(MostDroppedFileBytes + 1));
  setFiles({large.fileName()});
  EXPECT_EQ(dropRefusal(contents), u"A file is larger than 32 MiB"_s);
  read();
  EXPECT_EQ(dropped.problems, QStringList{u"large: larger than 32 MiB"_s});

  contents.clear();
  contents.setText(QString(MostDroppedTextBytes + 1, u'x'));
  read();
  EXPECT_EQ(dropped.problems, QStringList{u"The text is too long"_s});
  contents.setText(u"line\n"_s.repeated(MostDroppedSigns + 1));
  read();
  EXPECT_TRUE(dropped.signs.empty()) << "all or none of a text";
  EXPECT_EQ(dropped.problems, QStringList{u"The text: more than 1000 lines"_s});
}

TEST_F(DropContents, OfLargePicturesKeepOnlyWhatAStripCanShow) {
  queue.room = QSizeF(0, 24);
  setFiles({picture(u"large.png"_s, {3000, 2000})});
  read();
  ASSERT_EQ(dropped.signs.size(), 1u);
  EXPECT_EQ(dropped.signs[0]->size(), QSizeF(36, 24));
  const auto image = std::dynamic_pointer_cast<ZQImageTickerSign>(dropped.signs[0])->image();
  EXPECT_EQ(image->representations().front()->bitmap().size(), QSize(768, 512));
  EXPECT_EQ(pixelRoomFor(QSizeF(0, 100)), QSize(16'384, 800));
  const std::atomic<bool> isStopped = true;
  EXPECT_TRUE(loadFiles(contents.urls(), {10, 10}, isStopped).empty());
}

TEST_F(DropContents, OfNothingThatCanBeShownAreRefusedWithoutAWord) {
  contents.setData(u"application/octet-stream"_s, "abc");
  EXPECT_EQ(dropRefusal(contents), QString());
  read();
  EXPECT_TRUE(dropped.signs.empty());
}
