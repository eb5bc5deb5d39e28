#include "app/services/TailReader.h"

#include "tests/app/LogFile.h"

#include <QtCore/QDir>

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using zq::app::testing::LogFile;

namespace {
class Tail : public ::testing::Test {
 protected:
  void start(TailLimits limits = {}) {
    reader.emplace(
        log.bytes(), [this](const QString& line) { lines += line + u'|'; }, limits);
    reader->start();
  }
  // What has been given out since the last call, a bar behind each line.
  std::string given() { return std::exchange(lines, {}).toStdString(); }
  std::string read() {
    while (reader->readSome()) {
    }
    return given();
  }
  std::string append(const QByteArray& bytes) {
    log.write(bytes);
    return read();
  }
  std::string problem() const { return reader->problem().text.toStdString(); }

  // Descriptors that this process holds of files in the log's folder.
  int openFiles() const {
    int count = 0;
    const QDir descriptors(u"/proc/self/fd"_s);
    for (const QString& entry : descriptors.entryList(QDir::AllEntries | QDir::System))
      count += QFile::symLinkTarget(descriptors.filePath(entry)).startsWith(log.folder()) ? 1 : 0;
    return count;
  }

  LogFile log;
  QString lines;
  std::optional<TailReader> reader;
};
} // namespace

TEST_F(Tail, ShowsTheLastLineAtTheStart) {
  log.write("one\ntwo\n");
  start();
  EXPECT_EQ(given(), "two|");
  EXPECT_EQ(read(), "");
}

TEST_F(Tail, GivesOutEveryLineThatIsAppended) {
  log.write("one\n");
  start();
  EXPECT_EQ(given(), "one|");
  EXPECT_EQ(append("two\nthree\n"), "two|three|");
  EXPECT_EQ(append("four\n"), "four|");
  EXPECT_EQ(read(), "");
}

TEST_F(Tail, TakesALineWhenItsEndIsThere) {
  log.write("one\n");
  start();
  given();
  EXPECT_EQ(append("tw"), "");
  EXPECT_EQ(append("o"), "");
  EXPECT_EQ(append("\nth"), "two|");
  EXPECT_EQ(append("ree\n"), "three|");
}

TEST_F(Tail, ShowsALastLineWithoutAnEndAtTheStart) {
  log.write("one\ntw");
  start();
  EXPECT_EQ(given(), "tw|");
  EXPECT_EQ(append("o"), "");
  EXPECT_EQ(append("\nthree\n"), "two|three|") << "a longer line is another one";
}

TEST_F(Tail, ShowsALastLineWithoutAnEndOnlyOnce) {
  log.write("one\ntwo");
  start();
  EXPECT_EQ(given(), "two|");
  EXPECT_EQ(append("\n"), "");
  EXPECT_EQ(append("two\n"), "two|") << "this is the next one";
}

TEST_F(Tail, PassesOverBlankLinesForTheLastOne) {
  log.write("one\n\n  \r\n\n");
  start();
  EXPECT_EQ(given(), "one|");
  EXPECT_EQ(append("\n \ntwo\n"), "two|");
}

TEST_F(Tail, BeginsWithNothingInAnEmptyFile) {
  log.write("");
  start();
  EXPECT_EQ(given(), "");
  EXPECT_EQ(problem(), "");
  EXPECT_EQ(append("one\ntwo\n"), "one|two|");
}

TEST_F(Tail, TakesAllOfAFileThatComesLater) {
  start();
  EXPECT_TRUE(reader->problem().isMissing());
  EXPECT_EQ(problem(), "cannot read: No such file or directory");
  EXPECT_EQ(read(), "");
  EXPECT_EQ(append("one\ntwo\n"), "one|two|");
  EXPECT_EQ(problem(), "");
}

TEST_F(Tail, ReadsARenamedFileToItsEndBeforeTheNewOne) {
  log.write("one\n");
  start();
  given();
  log.write("two\n");
  log.rename();
  log.write("three\n");
  log.open();
  EXPECT_EQ(append("four\nfive\n"), "two|three|four|five|");
  EXPECT_EQ(append("six\n"), "six|");
}

TEST_F(Tail, GoesOnWithARenamedFileUntilTheNewOneIsWrittenTo) {
  log.write("one\n");
  start();
  given();
  log.rename();
  EXPECT_EQ(append("two\n"), "two|") << "there is no new one yet";
  QFile next(log.path());
  ASSERT_TRUE(next.open(QIODevice::WriteOnly));
  EXPECT_EQ(append("three\n"), "three|") << "the writer has not been told yet";
  EXPECT_EQ(append("four\n"), "four|");
  log.open();
  EXPECT_EQ(append("five\n"), "five|");
}

TEST_F(Tail, KnowsAFileAgainThatGetsItsNameBack) {
  log.write("one\n");
  start();
  given();
  log.rename();
  EXPECT_EQ(append("two\n"), "two|");
  ASSERT_TRUE(QFile::rename(log.path(1), log.path()));
  EXPECT_EQ(append("three\n"), "three|");
}

TEST_F(Tail, EndsTheLastLineOfAFileThatIsLeft) {
  log.write("one\n");
  start();
  given();
  EXPECT_EQ(append("two"), "");
  log.rename();
  log.open();
  EXPECT_EQ(append("three\n"), "two|three|");
}

TEST_F(Tail, FollowsADeletionAndANewFile) {
  log.write("one\n");
  start();
  given();
  log.write("two\n");
  log.remove();
  EXPECT_EQ(read(), "two|");
  EXPECT_EQ(openFiles(), 1) << "the test's own: the room on the disk is given back";
  log.open();
  EXPECT_EQ(append("three\n"), "three|");
}

TEST_F(Tail, FollowsAFileThatIsPutOverTheOldOne) {
  log.write("one\n");
  start();
  given();
  log.write("two\n");
  log.replace("three\nfour\n");
  EXPECT_EQ(read(), "two|three|four|");
  EXPECT_EQ(openFiles(), 1);
}

TEST_F(Tail, FollowsALinkThatIsLedElsewhere) {
  const auto lead = [&](const QString& target) {
    QFile::remove(log.path());
    ASSERT_TRUE(QFile::link(target, log.path()));
  };
  QFile first(log.folder() + u"/first"_s);
  QFile second(log.folder() + u"/second"_s);
  ASSERT_TRUE(first.open(QIODevice::WriteOnly) && second.open(QIODevice::WriteOnly));
  first.write("one\n");
  first.flush();
  lead(first.fileName());
  start();
  EXPECT_EQ(given(), "one|");
  second.write("two\n");
  second.flush();
  lead(second.fileName());
  EXPECT_EQ(read(), "two|");
}

TEST_F(Tail, StartsAgainInAFileThatIsEmptied) {
  log.write("one\ntwo\n");
  start();
  given();
  log.copyAndEmpty();
  EXPECT_EQ(read(), "");
  EXPECT_EQ(append("three\n"), "three|");
}

TEST_F(Tail, SeesThatAFileWasEmptiedAlthoughItHasGrownSince) {
  log.write("one\ntwo\n");
  start();
  given();
  log.copyAndEmpty();
  EXPECT_EQ(append("three\nfour\nfive\n"), "three|four|five|");
}

TEST_F(Tail, SeesThatAFileWasEmptiedAlthoughItIsAsLongAgain) {
  log.write("one\n");
  start();
  given();
  log.copyAndEmpty();
  EXPECT_EQ(append("two\n"), "two|");
}

TEST_F(Tail, SeesThatAFileWasEmptiedAlthoughItsLastLineIsTheSame) {
  log.write("one\n");
  start();
  given();
  EXPECT_EQ(append("two\n"), "two|");
  log.copyAndEmpty();
  EXPECT_EQ(append("six\ntwo\n"), "six|two|");
}

TEST_F(Tail, EndsTheLastLineOfAFileThatIsEmptied) {
  log.write("one\n");
  start();
  given();
  EXPECT_EQ(append("tw"), "");
  log.copyAndEmpty();
  EXPECT_EQ(append("three\n"), "tw|three|");
}

TEST_F(Tail, LosesNoLineAndDoublesNoneThroughManyRotations) {
  log.write("start\n");
  start();
  given();
  std::string expected;
  std::string all;
  for (int i = 0; i < 3000; ++i) {
    const QByteArray line = QByteArray::number(i) + QByteArray(i % 90, '.');
    log.write(line + '\n');
    expected += line.toStdString() + '|';
    // Behind by some lines at most times, and by more than a file now and then.
    if (i % 7 == 0 && i % 400 > 100)
      reader->readSome();
    if (i % 40 == 39) {
      reader->readSome();
      log.rename(i);
      if (i % 80 == 79)
        log.open();
    }
    if (i % 80 == 45)
      log.open();
  }
  all += read();
  EXPECT_EQ(all, expected);
}

TEST_F(Tail, KeepsFewFilesOpenHoweverOftenEmptyOnesAreRotated) {
  log.write("one\n");
  start();
  given();
  for (int i = 0; i < 100; ++i) {
    log.rename(i);
    log.open();
    EXPECT_EQ(read(), "");
  }
  EXPECT_LT(openFiles(), 20);
  EXPECT_EQ(append("two\n"), "two|");
  EXPECT_EQ(openFiles(), 2);
}

TEST_F(Tail, FindsTheLastLineOfALargeFileFromItsEnd) {
  log.write("one\n");
  ASSERT_EQ(::truncate(log.bytes().constData(), qint64(3) << 30), 0);
  log.write("\nlast\n");
  start();
  EXPECT_EQ(given(), "last|");
  EXPECT_EQ(append("next\n"), "next|");
}

TEST_F(Tail, FindsNoLastLineBehindAnEndlessHole) {
  log.write("one\n");
  ASSERT_EQ(::truncate(log.bytes().constData(), qint64(3) << 30), 0);
  start();
  EXPECT_EQ(given(), "");
  EXPECT_EQ(append("next\n"), "next|");
}

TEST_F(Tail, DoesNotSeeZeroBytes) {
  // Emptied below a program that goes on at its old place.
  log.write("one\n");
  start();
  given();
  QFile other(log.path());
  ASSERT_TRUE(other.open(QIODevice::ReadWrite) && other.resize(0));
  EXPECT_EQ(read(), "");
  ASSERT_TRUE(other.seek(4'000'000) && other.write("two\n") == 4 && other.flush());
  EXPECT_EQ(read(), "two|");
  EXPECT_EQ(append(QByteArray("th\0ree\n", 7)), "three|");
}

TEST_F(Tail, FindsALastLineThatIsLongerThanOneRead) {
  const QByteArray line(400'000, 'x');
  log.write("one\n" + line + '\n');
  start();
  EXPECT_EQ(given(), line.toStdString() + '|');
}

TEST_F(Tail, CutsLongLines) {
  log.write("123456789012\n");
  start({10});
  EXPECT_EQ(given(), "123456789…|");
  EXPECT_EQ(append("1234567890\n12345678901\n"), "1234567890|123456789…|");
}

TEST_F(Tail, ShowsALongLineWithoutAnEndOnce) {
  log.write("one\n123456789012");
  start({10});
  EXPECT_EQ(given(), "123456789…|");
  EXPECT_EQ(append(QByteArray(100, 'x')), "");
  EXPECT_EQ(append("\ntwo\n"), "two|");
}

TEST_F(Tail, BeginsALineWhoseStartIsTooFarAwayWithAnEllipsis) {
  log.write(QByteArray(200'000, 'x') + "\u00e4 end\n");
  start({10'000});
  const std::string shown = given();
  EXPECT_EQ(shown.substr(0, 5), "…xx");
  EXPECT_EQ(append("two\n"), "two|");
}

TEST_F(Tail, BeginsWithAWholeCharacterWhereALineIsCutInFront) {
  // Of 33 bytes that are read the first is the middle of a character.
  log.write(QByteArray("ä").repeated(50) + 'x');
  start({10});
  EXPECT_EQ(given(), "…ääääääää…|");
}

TEST_F(Tail, ReadsCharactersThatComeInPieces) {
  log.write("one\n");
  start();
  given();
  EXPECT_EQ(append("\xc3"), "");
  EXPECT_EQ(append("\xa4\xf0\x9f"), "");
  EXPECT_EQ(append("\x98\x80\n"), "ä😀|");
}

TEST_F(Tail, ReplacesBytesThatAreNoText) {
  log.write("a\xff\x62\x1b[1mc\x07\r\n");
  start();
  EXPECT_EQ(given(), "a\uFFFDbc|");
  EXPECT_EQ(append("two\r\n"), "two|");
}

TEST_F(Tail, PassesOverWhatIsTooFarBack) {
  log.write("one\n");
  start({LongestLine, 100});
  given();
  EXPECT_EQ(append("two\n" + QByteArray(100, 'x') + "\nthree\n"), "three|");
  EXPECT_EQ(append("unended"), "");
  EXPECT_EQ(append("\n" + QByteArray(100, 'x') + "\nfour\n"), "four|");
  EXPECT_EQ(append(QByteArray(50, 'y') + "\nfour\n"), std::string(50, 'y') + "|four|");
}

TEST_F(Tail, GivesTimeToOthersInALongText) {
  log.write("one\n");
  start();
  given();
  log.write(QByteArray(1'000'000, '\n') + "two\n");
  int slices = 1;
  while (reader->readSome())
    ++slices;
  EXPECT_GT(slices, 10);
  EXPECT_EQ(given(), "two|");
}

TEST_F(Tail, RefusesAFolder) {
  ASSERT_TRUE(QDir().mkdir(log.path()));
  start();
  EXPECT_EQ(problem(), "a folder, not a text file");
  EXPECT_FALSE(reader->problem().isMissing());
}

TEST_F(Tail, RefusesADevice) {
  ASSERT_TRUE(QFile::link(u"/dev/zero"_s, log.path()));
  start();
  EXPECT_EQ(problem(), "a device, not a text file");
}

TEST_F(Tail, RefusesASocket) {
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const QByteArray path = log.bytes();
  ASSERT_LT(std::size_t(path.size()), sizeof address.sun_path);
  std::copy(path.begin(), path.end(), address.sun_path);
  ASSERT_EQ(::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  start();
  EXPECT_EQ(problem(), "a socket, not a text file");
  ::close(socket);
}

TEST_F(Tail, RefusesAPipeWithoutOpeningIt) {
  ASSERT_EQ(::mkfifo(log.bytes().constData(), 0600), 0);
  start();
  EXPECT_EQ(problem(), "a pipe, not a text file");
  EXPECT_FALSE(reader->readSome());
  EXPECT_EQ(openFiles(), 0);
}

TEST_F(Tail, RefusesWhatMayNotBeRead) {
  if (::geteuid() == 0)
    GTEST_SKIP() << "root reads everything";
  log.write("one\n");
  ASSERT_EQ(::chmod(log.bytes().constData(), 0), 0);
  start();
  EXPECT_EQ(problem(), "cannot read: Permission denied");
  EXPECT_FALSE(reader->problem().isMissing());
}

TEST_F(Tail, RefusesAWayThatLeadsThroughAFile) {
  log.write("one\n");
  TailReader inside(log.bytes() + "/file", [](const QString&) {});
  inside.start();
  EXPECT_EQ(inside.problem().text, u"cannot read: Not a directory"_s);
}

TEST_F(Tail, ReadsNothingOfFilesWithoutASize) {
  TailReader kernel("/proc/uptime", [this](const QString& line) { lines += line; });
  kernel.start();
  EXPECT_FALSE(kernel.readSome());
  EXPECT_EQ(given(), "");
}

TEST_F(Tail, ComesBackWhenAFileStandsAgainInThePlaceOfAFolder) {
  log.write("one\n");
  start();
  given();
  log.write("two\n");
  log.rename();
  ASSERT_TRUE(QDir().mkdir(log.path()));
  EXPECT_EQ(read(), "two|") << "the old one is read on";
  EXPECT_EQ(problem(), "a folder, not a text file");
  ASSERT_TRUE(QDir().rmdir(log.path()));
  log.open();
  EXPECT_EQ(append("three\n"), "three|");
  EXPECT_EQ(problem(), "");
}
