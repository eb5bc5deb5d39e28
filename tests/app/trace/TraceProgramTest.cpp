// The program's traces, of a strip on a real X server.
#include "app/trace/TraceReader.h"

#include "tests/app/Program.h"
#include "tests/app/XServer.h"
#include "tests/app/x11/ServerBlanks.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
constexpr std::uint64_t ManyBlanks = 90;

class Trace : public ::testing::Test {
 protected:
  QString path() const { return folder_.filePath(u"trace.csv"_s); }
  QString check() const {
    const Outcome outcome = runZqticker({u"trace"_s, u"check"_s, path()});
    return QString::fromUtf8(outcome.errors);
  }

  QTemporaryDir folder_;
};

// A strip that is traced.
class TraceOnScreen : public Trace {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled())
      GTEST_SKIP() << "Xvfb is not installed";
    server_.emplace(640, 400);
    ASSERT_FALSE(server_->display().isEmpty()) << "Xvfb does not start";
  }

  void start(const QStringList& arguments) {
    program_.emplace(QStringList{u"--text"_s, u"A strip that is traced, from end to end"_s,
                                 u"--background"_s, u"#123456"_s, u"--continuous"_s, u"--trace"_s,
                                 path()} +
                         arguments,
                     server_->environment());
    ASSERT_TRUE(
        waitUntil([&] { return (server_->screenshot().pixel(2, 398) & 0xffffff) == 0x123456; }));
  }
  std::uint64_t blank() const { return nextBlankOf(server_->display()).value_or(0); }
  void waitForBlanks(std::uint64_t count) {
    const std::uint64_t goal = blank() + count;
    ASSERT_TRUE(waitUntil([&] { return blank() >= goal; }));
  }
  void stop() {
    program_->interrupt(SIGTERM);
    EXPECT_EQ(program_->awaitStatus(), 0);
    EXPECT_EQ(program_->process().readAllStandardError(), "");
  }
  std::vector<TraceRow> rows() const {
    QFile file(path());
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << "not there at the end";
    file.readLine();
    std::vector<TraceRow> all;
    while (!file.atEnd()) {
      const QByteArray line = file.readLine().chopped(1);
      EXPECT_EQ(readTraceRow({line.constData(), static_cast<std::size_t>(line.size())},
                             all.emplace_back()),
                QString());
    }
    return all;
  }

  std::optional<XServer> server_;
  std::optional<RunningProgram> program_;
};
} // namespace

TEST_F(TraceOnScreen, ShowsEvenMotionByTheServersBlanks) {
  const std::uint64_t before = blank();
  start({u"--speed"_s, u"60"_s});
  waitForBlanks(ManyBlanks);
  EXPECT_FALSE(QFile::exists(path())) << "not before it is whole";
  stop();
  const std::uint64_t after = blank();
  std::size_t ticks = 0;
  for (const TraceRow& row : rows()) {
    if (row.kind == TraceKind::Change)
      continue;
    ++ticks;
    EXPECT_GT(row.blank, before) << "the server's own count";
    EXPECT_LE(row.blank, after + 1);
  }
  EXPECT_GT(ticks, 3u);
  EXPECT_EQ(check(), u""_s);
  EXPECT_EQ(QDir(folder_.path()).entryList(QDir::Files), QStringList{u"trace.csv"_s});
}

TEST_F(TraceOnScreen, ShowsEvenMotionAtOtherSpeedsAndScales) {
  QProcessEnvironment environment = server_->environment();
  environment.insert(u"QT_SCALE_FACTOR"_s, u"1.5"_s);
  program_.emplace(QStringList{u"--text"_s, u"A strip"_s, u"--speed"_s, u"137.5"_s, u"--trace"_s,
                               path(), u"--background"_s, u"#123456"_s},
                   environment);
  ASSERT_TRUE(
      waitUntil([&] { return (server_->screenshot().pixel(2, 398) & 0xffffff) == 0x123456; }));
  waitForBlanks(ManyBlanks);
  stop();
  for (const TraceRow& row : rows())
    EXPECT_EQ(row.scale, 1.5);
  EXPECT_EQ(check(), u""_s);
}

TEST_F(TraceOnScreen, GoesOnWhereItStoodAfterTheProgramWasStopped) {
  start({u"--speed"_s, u"60"_s});
  waitForBlanks(ManyBlanks);
  program_->interrupt(SIGSTOP);
  const std::uint64_t stopped = blank();
  waitForBlanks(3 * ManyBlanks);
  const std::uint64_t resumed = blank();
  program_->interrupt(SIGCONT);
  waitForBlanks(ManyBlanks);
  stop();
  const std::vector<TraceRow> all = rows();
  const auto after = std::find_if(all.begin(), all.end(),
                                  [&](const TraceRow& row) { return row.blank >= resumed; });
  ASSERT_TRUE(after != all.end() && after != all.begin());
  EXPECT_LE((after - 1)->blank, stopped + 1) << "nothing while it was stopped";
  EXPECT_EQ(after->kind, TraceKind::Lost);
  EXPECT_LE(after->offset - (after - 1)->offset, 2) << "no jump";
  for (auto row = after + 1; row != all.end(); ++row)
    EXPECT_GT(row->blank, (row - 1)->blank) << "no burst";
  EXPECT_EQ(check(), u""_s);
}

TEST_F(TraceOnScreen, IsRefusedWhereItsFolderIsMissing) {
  const QString missing = folder_.filePath(u"no/trace.csv"_s);
  const Outcome outcome =
      runZqticker({u"--text"_s, u"Hello"_s, u"--trace"_s, missing}, {}, server_->environment());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.errors.startsWith("zqticker: --trace ")) << outcome.errors.constData();
  EXPECT_EQ(outcome.errors.count('\n'), 1);
}

TEST_F(TraceOnScreen, TellsOnceThatADiskIsFull) {
  if (!QFile::exists(u"/dev/full"_s))
    GTEST_SKIP() << "there is no /dev/full";
  const Outcome outcome = runZqticker({u"--text"_s, u"Hello"_s, u"--loop"_s, u"1"_s, u"--speed"_s,
                                       u"20000"_s, u"--trace"_s, u"/dev/full"_s},
                                      {}, server_->environment());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "zqticker: --trace /dev/full: cannot write: No space left on device\n");
}

TEST_F(Trace, IsNotWrittenWithoutADisplay) {
  const Outcome outcome = runZqticker({u"--text"_s, u"Hello"_s, u"--trace"_s, path()});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors.count('\n'), 1) << outcome.errors.constData();
  EXPECT_TRUE(outcome.errors.contains("--trace")) << outcome.errors.constData();
  EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(Trace, NeedsAFileName) {
  EXPECT_EQ(runZqticker({u"--text"_s, u"Hello"_s, u"--trace"_s}).status, 2);
  EXPECT_EQ(runZqticker({u"--text"_s, u"Hello"_s, u"--trace"_s, u""_s}).status, 2);
}

TEST_F(Trace, CheckTellsFiguresAndTheFirstFault) {
  QFile file(path());
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("time,drawn,blank,offset,ideal,scale,speed,kind\n"
             "10.0,9.9,600,0,0,1,60,begin\n"
             "10.1,10.0,606,6,6,1,60,run\n");
  file.flush();
  Outcome outcome = runZqticker({u"trace"_s, u"check"_s, path()});
  EXPECT_EQ(outcome.status, 0) << outcome.errors.constData();
  EXPECT_TRUE(outcome.output.startsWith("frames: 2 in 0.100 s\n")) << outcome.output.constData();
  EXPECT_TRUE(outcome.output.contains("\nlate frames: 1 (5 blanks without a frame)\n"));
  EXPECT_EQ(outcome.errors, "");
  file.write("10.2,10.1,612,13,12,1,60,run\n");
  file.close();
  outcome = runZqticker({u"trace"_s, u"check"_s, path()});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.output.contains("\nworst position error: 1.0000 px (line 4)\n"));
  EXPECT_EQ(outcome.errors,
            "zqticker: " + path().toUtf8() + ": line 4: 1.000 pixels from the ideal line\n");
}

TEST_F(Trace, CheckRefusesWhatIsNoTraceInOneLine) {
  for (const QString& wrong : {folder_.filePath(u"missing.csv"_s), folder_.path(), u""_s,
                               QStringLiteral(ZQTICKER_PROGRAM), u"/dev/null"_s}) {
    const Outcome outcome = runZqticker({u"trace"_s, u"check"_s, wrong});
    EXPECT_EQ(outcome.status, 1) << wrong.toStdString();
    EXPECT_EQ(outcome.errors.count('\n'), 1) << outcome.errors.constData();
    EXPECT_EQ(outcome.output, "");
  }
  EXPECT_EQ(runZqticker({u"trace"_s, u"check"_s}).status, 2);
  EXPECT_EQ(runZqticker({u"trace"_s}).status, 2);
}
