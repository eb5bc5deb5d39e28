#include "app/intake/LineReader.h"

#include <gtest/gtest.h>

#include <QtCore/QEventLoop>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryFile>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using zq::app::LineReader;
using zq::app::readLines;

namespace {
class Pipe {
 public:
  Pipe() {
    int ends[2];
    if (::pipe(ends) == 0) {
      readEnd = ends[0];
      writeEnd_ = ends[1];
    }
  }
  ~Pipe() {
    closeWriter();
    ::close(readEnd);
  }

  void write(const QByteArray& bytes) {
    ASSERT_EQ(::write(writeEnd_, bytes.constData(), static_cast<std::size_t>(bytes.size())),
              bytes.size());
  }
  void closeWriter() {
    if (writeEnd_ >= 0)
      ::close(writeEnd_);
    writeEnd_ = -1;
  }

  int readEnd = -1;

 private:
  int writeEnd_ = -1;
};

// Runs the event loop until `reader` has told something.
template <class Signal>
void waitFor(LineReader& reader, Signal signal) {
  QEventLoop loop;
  QObject::connect(&reader, signal, &loop, &QEventLoop::quit);
  loop.exec();
}
} // namespace

TEST(LineReader, GivesOutLinesAsTheyArrive) {
  Pipe pipe;
  QStringList lines;
  LineReader reader(pipe.readEnd, [&](const QString& line) { lines.append(line); });
  pipe.write("one\n");
  waitFor(reader, &LineReader::received);
  EXPECT_EQ(lines, QStringList{u"one"_s});
  EXPECT_FALSE(reader.hasEnded());
  pipe.write("two\nthr");
  waitFor(reader, &LineReader::received);
  EXPECT_EQ(lines, (QStringList{u"one"_s, u"two"_s}));
  pipe.closeWriter();
  waitFor(reader, &LineReader::ended);
  EXPECT_EQ(lines, (QStringList{u"one"_s, u"two"_s, u"thr"_s}));
  EXPECT_TRUE(reader.hasEnded());
}

TEST(LineReader, ReadsPlainFiles) {
  QTemporaryFile file;
  ASSERT_TRUE(file.open());
  for (int i = 0; i < 50'000; ++i)
    file.write(QByteArray::number(i) + '\n');
  ASSERT_TRUE(file.seek(0));
  int count = 0;
  LineReader reader(file.handle(), [&](const QString& line) {
    EXPECT_EQ(line, QString::number(count));
    ++count;
  });
  waitFor(reader, &LineReader::ended);
  EXPECT_EQ(count, 50'000);
}

TEST(LineReader, ReadsOnAfterAPause) {
  QTemporaryFile file;
  ASSERT_TRUE(file.open());
  file.write(QByteArray(300'000, 'x') + '\n');
  ASSERT_TRUE(file.seek(0));
  qsizetype size = 0;
  LineReader reader(file.handle(), [&](const QString& line) { size = line.size(); });
  reader.setUnhurried(true);
  waitFor(reader, &LineReader::ended);
  EXPECT_EQ(size, 300'000);
}

TEST(LineReader, LeavesTheDescriptorsFlagsAlone) {
  Pipe pipe;
  const int before = ::fcntl(pipe.readEnd, F_GETFL);
  const LineReader reader(pipe.readEnd, [](const QString&) {});
  EXPECT_EQ(::fcntl(pipe.readEnd, F_GETFL), before);
}

TEST(LineReader, EndsAtADescriptorThatCannotBeRead) {
  QTemporaryFile file;
  ASSERT_TRUE(file.open());
  const int writeOnly = ::open(qPrintable(file.fileName()), O_WRONLY);
  ASSERT_GE(writeOnly, 0);
  LineReader reader(writeOnly, [](const QString&) { FAIL(); });
  waitFor(reader, &LineReader::ended);
  ::close(writeOnly);
}

TEST(ReadLines, ReadsToTheEnd) {
  Pipe pipe;
  pipe.write("one\ntwo");
  pipe.closeWriter();
  QStringList lines;
  readLines(
      pipe.readEnd, [&](const QString& line) { lines.append(line); }, [] { return false; }, -1);
  EXPECT_EQ(lines, (QStringList{u"one"_s, u"two"_s}));
}

TEST(ReadLines, StopsWhenThereAreEnough) {
  Pipe pipe;
  pipe.write("one\n");
  QStringList lines;
  readLines(
      pipe.readEnd, [&](const QString& line) { lines.append(line); },
      [&] { return !lines.isEmpty(); }, -1);
  EXPECT_EQ(lines, QStringList{u"one"_s}) << "the writer is still there";
}

TEST(ReadLines, GivesUpWhenNothingComes) {
  Pipe pipe;
  pipe.write("one\nhal");
  QStringList lines;
  readLines(
      pipe.readEnd, [&](const QString& line) { lines.append(line); }, [] { return false; }, 0);
  EXPECT_EQ(lines, (QStringList{u"one"_s, u"hal"_s}));
}
