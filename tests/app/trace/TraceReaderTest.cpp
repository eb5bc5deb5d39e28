#include "app/trace/TraceReader.h"

#include "app/commands/failures.h"

#include <QtCore/QBuffer>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
const QByteArray Header = QByteArray(TraceHeader.data(), qsizetype(TraceHeader.size())) + '\n';
const QByteArray First = "10.0,9.99,600,0,0.0,1,60,begin\n";

// What is said of a file with these bytes; empty where it can be read.
QString complaintAbout(const QByteArray& bytes) {
  QBuffer buffer;
  buffer.setData(bytes);
  buffer.open(QIODevice::ReadOnly);
  TraceReport report;
  try {
    readTrace(buffer, u"FILE"_s, report);
  } catch (const CommandFailure& failure) {
    EXPECT_EQ(failure.status(), RunTimeFailure);
    return failure.message();
  }
  return {};
}
} // namespace

TEST(TraceReader, ReadsBackWhatWasWritten) {
  const TraceRow row{1234.123456789, 1234.1, 18446744073709551615u, -9007199254740993, -0.123456,
                     1.3333333333,   137.5,  TraceKind::Glide};
  char line[LongestTraceLine];
  const std::string_view text(line, static_cast<std::size_t>(writeTraceRow(row, line) - line));
  EXPECT_TRUE(text.ends_with(",glide\n"));
  TraceRow read;
  ASSERT_EQ(readTraceRow(text.substr(0, text.size() - 1), read), QString());
  EXPECT_DOUBLE_EQ(read.time, row.time);
  EXPECT_DOUBLE_EQ(read.drawn, row.drawn);
  EXPECT_EQ(read.blank, row.blank);
  EXPECT_EQ(read.offset, row.offset);
  EXPECT_DOUBLE_EQ(read.ideal, row.ideal);
  EXPECT_EQ(read.scale, row.scale);
  EXPECT_EQ(read.speed, row.speed);
  EXPECT_EQ(read.kind, row.kind);
}

TEST(TraceReader, HasRoomForTheLongestLine) {
  constexpr double Longest = -std::numeric_limits<double>::max();
  constexpr double Smallest = -std::numeric_limits<double>::denorm_min();
  for (const double value : {Longest, Smallest, -999'999'999'999'999.9}) {
    const TraceRow row{value,
                       value,
                       std::numeric_limits<std::uint64_t>::max(),
                       std::numeric_limits<std::int64_t>::min(),
                       value,
                       value,
                       value,
                       TraceKind::Change};
    char line[2 * LongestTraceLine];
    EXPECT_LE(writeTraceRow(row, line) - line, static_cast<std::ptrdiff_t>(LongestTraceLine));
  }
}

TEST(TraceReader, ReadsATrace) {
  EXPECT_EQ(complaintAbout(Header + First), QString());
  EXPECT_EQ(complaintAbout(Header + First + "10.5,10.4,630,30,30.0,1,60,run\n"), QString());
}

TEST(TraceReader, SaysWhatIsNoTrace) {
  const QString noTrace = u"FILE: not a trace: its first line is not "
                          u"time,drawn,blank,offset,ideal,scale,speed,kind"_s;
  EXPECT_EQ(complaintAbout({}), noTrace);
  EXPECT_EQ(complaintAbout(Header.chopped(1)), noTrace) << "without a line end";
  EXPECT_EQ(complaintAbout("time,offset\n1,2\n"), noTrace);
  QByteArray binary;
  for (int i = 0; i < 1'000'000; ++i)
    binary.append(static_cast<char>(i * 7 + i / 256));
  EXPECT_EQ(complaintAbout(binary), noTrace);
  EXPECT_EQ(complaintAbout(QByteArray(3'000'000, '\0')), noTrace);
  EXPECT_EQ(complaintAbout(Header), u"FILE: there is no frame in it"_s);
}

TEST(TraceReader, NamesTheLineThatCannotBeRead) {
  const std::pair<QByteArray, QString> cases[] = {
      {"10.1,10.1,601,6,6.0,1,60\n", u"line 3: not eight fields"_s},
      {"\n", u"line 3: not eight fields"_s},
      {"10.1,10.1,601,6,6.0,1,60,run,\n", u"line 3: not eight fields"_s},
      {"nan,10.1,601,6,6.0,1,60,run\n", u"line 3: the time is no number"_s},
      {"inf,10.1,601,6,6.0,1,60,run\n", u"line 3: the time is no number"_s},
      {"1e999,10.1,601,6,6.0,1,60,run\n", u"line 3: the time is no number"_s},
      {"10.1x,10.1,601,6,6.0,1,60,run\n", u"line 3: the time is no number"_s},
      {",10.1,601,6,6.0,1,60,run\n", u"line 3: the time is no number"_s},
      {"10.1,,601,6,6.0,1,60,run\n", u"line 3: the time of drawing is no number"_s},
      {"10.1,10.1,-1,6,6.0,1,60,run\n", u"line 3: the blank is no number"_s},
      {"10.1,10.1,601,6.5,6.0,1,60,run\n", u"line 3: the offset is no whole number"_s},
      {"10.1,10.1,601,99999999999999999999,6.0,1,60,run\n",
       u"line 3: the offset is no whole number"_s},
      {"10.1,10.1,601,9223372036854775807,6.0,1,60,run\n", u"line 3: the offset is too large"_s},
      {"10.1,10.1,601,-9223372036854775808,6.0,1,60,run\n", u"line 3: the offset is too large"_s},
      {"10.1,10.1,601,6,-nan,1,60,run\n", u"line 3: the ideal offset is no number"_s},
      {"10.1,10.1,601,6,6.0,0,60,run\n", u"line 3: the scale is no number above 0"_s},
      {"10.1,10.1,601,6,6.0,nan,60,run\n", u"line 3: the scale is no number above 0"_s},
      {"10.1,10.1,601,6,6.0,1,fast,run\n", u"line 3: the speed is no number"_s},
      {"10.1,10.1,601,6,6.0,1,60,ru\n", u"line 3: an unknown kind of frame"_s},
      {"10.1,10.1,601,6,6.0,1,60,run\r\n", u"line 3: an unknown kind of frame"_s},
      {"9.0,9.0,601,6,6.0,1,60,run\n", u"line 3: the time runs backwards"_s},
      {"10.0,9.0,601,6,6.0,1,60,run\n", u"line 3: the time runs backwards"_s},
      {"10.1,10.1,600,6,6.0,1,60,run\n", u"line 3: the blank is not behind the one before"_s},
      {"10.1,10.1,601,6,6.0,1,60,ru", u"line 3: cut off"_s},
      {"1", u"line 3: cut off"_s},
      {QByteArray(100'000, '1'), u"line 3: too long"_s},
  };
  for (const auto& [line, complaint] : cases)
    EXPECT_EQ(complaintAbout(Header + First + line), u"FILE: "_s + complaint) << line.constData();
}

TEST(TraceReader, ReadsLinesAcrossTheBlocksOfAFile) {
  QByteArray bytes = Header + First;
  char line[LongestTraceLine];
  TraceRow row{10, 10, 600, 0, 0, 1, 60, TraceKind::Run};
  for (int i = 1; i <= 20'000; ++i) {
    row.time = row.drawn = 10 + i / 60.0;
    ++row.blank;
    row.offset = i;
    row.ideal = i;
    bytes.append(line, writeTraceRow(row, line) - line);
  }
  ASSERT_GT(bytes.size(), 1'000'000);
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  TraceReport report;
  readTrace(buffer, u"FILE"_s, report);
  EXPECT_EQ(report.frames(), 20'001u);
  EXPECT_EQ(report.fault(), QString());
}
