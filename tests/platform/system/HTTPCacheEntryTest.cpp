#include "zqticker/platform/system/HTTPCacheEntry_p.h"

#include <gtest/gtest.h>

#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

constexpr qint64 part = HTTPCacheEntry::partLength;
const QUrl address(u"https://example.org/a"_s);
const HTTPStoredResponse response{200, {{u"ETag"_s, u"\"é\""_s}, {u"X"_s, QString()}}, 12, 34};

// Bytes of which no two parts are the same.
QByteArray bodyOf(qint64 length) {
  QByteArray body(length, '\0');
  for (qint64 i = 0; i < length; ++i)
    body[i] = char((i >> 8) ^ i);
  return body;
}

class HTTPCacheEntryTest : public ::testing::Test {
 protected:
  QTemporaryDir folder_;
  std::shared_ptr<HTTPCacheStore> store_ =
      std::make_shared<HTTPCacheStore>(folder_.path(), 32 * part);

  bool write(const QByteArray& body, qint64 piece = 10'000, const QUrl& url = address) {
    HTTPCacheWriter writer(store_, url, response);
    for (qint64 i = 0; i < body.size(); i += piece) {
      if (!writer.append(QByteArrayView(body).sliced(i, std::min(piece, body.size() - i))))
        return false;
    }
    return writer.finish();
  }

  // The stored body; nothing when there is none or it is damaged.
  std::optional<QByteArray> read() {
    const auto reader = HTTPCacheReader::open(store_, address);
    if (!reader)
      return std::nullopt;
    EXPECT_EQ(reader->response(), response);
    auto check = HTTPCacheReader::Check::More;
    while (check == HTTPCacheReader::Check::More)
      check = reader->checkNextPart();
    if (check == HTTPCacheReader::Check::Damaged)
      return std::nullopt;
    QByteArray body;
    while (const auto next = reader->readNextPart()) {
      EXPECT_LE(next->size(), part);
      if (next->isEmpty()) {
        EXPECT_EQ(body.size(), reader->bodyLength());
        return body;
      }
      body += *next;
    }
    return std::nullopt;
  }

  QStringList files() {
    QStringList found;
    QDirIterator iterator(folder_.path(), QDir::Files, QDirIterator::Subdirectories);
    while (iterator.hasNext())
      found.append(iterator.next());
    return found;
  }

  // The files of full parts; heads and last parts are smaller.
  QStringList partFiles() {
    QStringList found = files();
    found.removeIf([](const QString& file) { return QFileInfo(file).size() < part; });
    return found;
  }
};

} // namespace

TEST_F(HTTPCacheEntryTest, ReadsBodiesOfEveryLengthAroundThePartsBorders) {
  for (const qint64 length :
       {qint64(0), qint64(1), part - 1, part, part + 1, 2 * part, 2 * part + 1, 4 * part}) {
    const QByteArray body = bodyOf(length);
    ASSERT_TRUE(write(body)) << length;
    EXPECT_TRUE(read() == body) << length;
  }
}

TEST_F(HTTPCacheEntryTest, APieceMayBeLargerThanAPart) {
  const QByteArray body = bodyOf(3 * part + 5);
  ASSERT_TRUE(write(body, body.size()));
  EXPECT_TRUE(read() == body);
}

TEST_F(HTTPCacheEntryTest, ASmallBodyIsOneFileALargeOneAFileForEachPartAndOneMore) {
  write(bodyOf(part));
  EXPECT_EQ(files().size(), 1);
  write(bodyOf(3 * part));
  EXPECT_EQ(files().size(), 4);
}

TEST_F(HTTPCacheEntryTest, ANewEntryLeavesNothingOfTheOneBefore) {
  write(bodyOf(3 * part));
  write("small");
  EXPECT_EQ(files().size(), 1);
  EXPECT_EQ(read(), "small");
}

TEST_F(HTTPCacheEntryTest, AnUnfinishedBodyIsNotKeptAndLeavesTheEntryBefore) {
  write("before");
  {
    HTTPCacheWriter writer(store_, address, response);
    EXPECT_TRUE(writer.append(bodyOf(2 * part + 1)));
    EXPECT_EQ(files().size(), 3);
  }
  EXPECT_EQ(files().size(), 1);
  EXPECT_EQ(read(), "before");
}

TEST_F(HTTPCacheEntryTest, ABodyOfMoreThanAnEighthOfTheStoreIsGivenUp) {
  EXPECT_TRUE(HTTPCacheWriter::accepts(*store_, -1));
  EXPECT_TRUE(HTTPCacheWriter::accepts(*store_, 4 * part));
  EXPECT_FALSE(HTTPCacheWriter::accepts(*store_, 4 * part + 1));
  HTTPCacheWriter writer(store_, address, response);
  EXPECT_TRUE(writer.append(bodyOf(4 * part)));
  EXPECT_FALSE(writer.append("x"));
  EXPECT_TRUE(files().isEmpty());
  EXPECT_FALSE(writer.append("x"));
  EXPECT_FALSE(writer.finish());
  EXPECT_EQ(read(), std::nullopt);
}

TEST_F(HTTPCacheEntryTest, AMissingOrDamagedPartIsFoundBeforeTheBodyIsRead) {
  for (const bool scribble : {false, true}) {
    write(bodyOf(3 * part));
    ASSERT_EQ(partFiles().size(), 3);
    QFile file(partFiles().value(1));
    if (scribble) {
      ASSERT_TRUE(file.open(QFile::ReadWrite));
      file.seek(file.size() - 100);
      file.write("#");
      file.close();
    } else {
      ASSERT_TRUE(file.remove());
    }
    const auto reader = HTTPCacheReader::open(store_, address);
    ASSERT_TRUE(reader);
    auto check = HTTPCacheReader::Check::More;
    while (check == HTTPCacheReader::Check::More)
      check = reader->checkNextPart();
    EXPECT_EQ(check, HTTPCacheReader::Check::Damaged);
    EXPECT_TRUE(files().isEmpty()); // what is left of it is of no use
  }
}

TEST_F(HTTPCacheEntryTest, PartsOfTwoVersionsNeverMix) {
  write(bodyOf(3 * part));
  const auto reader = HTTPCacheReader::open(store_, address);
  ASSERT_TRUE(reader);
  ASSERT_TRUE(reader->readNextPart());
  write(QByteArray(3 * part, 'n'));
  EXPECT_EQ(reader->readNextPart(), std::nullopt);
}

TEST_F(HTTPCacheEntryTest, ARefreshedHeadKeepsItsBody) {
  for (const qint64 length : {qint64(5), 2 * part + 5}) {
    const QByteArray body = bodyOf(length);
    write(body);
    const auto files = partFiles();
    HTTPStoredResponse news = response;
    news.responseTime = 99;
    HTTPCacheReader::open(store_, address)->refresh(news);
    const auto reader = HTTPCacheReader::open(store_, address);
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->response(), news);
    EXPECT_EQ(partFiles(), files);
    EXPECT_TRUE(reader->readNextPart() == body.first(std::min(length, part)));
  }
}

TEST_F(HTTPCacheEntryTest, RemovalTakesThePartsToo) {
  write(bodyOf(3 * part));
  HTTPCacheEntry::remove(*store_, address);
  EXPECT_TRUE(files().isEmpty());
}

TEST_F(HTTPCacheEntryTest, AnEntryLargerThanTheStoreIsAMiss) {
  write(bodyOf(3 * part));
  store_ = std::make_shared<HTTPCacheStore>(folder_.path(), 2 * part);
  EXPECT_EQ(HTTPCacheReader::open(store_, address), nullptr);
}

TEST_F(HTTPCacheEntryTest, AHeadThatIsNoneIsAMiss) {
  HTTPCacheEntry entry;
  entry.response = response;
  entry.bodyLength = 3;
  const QByteArray whole = entry.encodedHead() + "abc";
  ASSERT_TRUE(HTTPCacheEntry::decoded(whole));
  for (qsizetype length = 0; length < whole.size(); ++length)
    EXPECT_FALSE(HTTPCacheEntry::decoded(whole.first(length))) << length;
  EXPECT_FALSE(HTTPCacheEntry::decoded(whole + 'd'));
  entry.bodyLength = -1;
  EXPECT_FALSE(HTTPCacheEntry::decoded(entry.encodedHead()));
  QByteArray foreign = whole;
  foreign[3] = '0';
  EXPECT_FALSE(HTTPCacheEntry::decoded(foreign));
  QByteArray countless = entry.encodedHead().first(4 + 4 + 8 + 8 + 8 + 4);
  countless += QByteArray::fromHex("ffffffff");
  EXPECT_FALSE(HTTPCacheEntry::decoded(countless));
}
