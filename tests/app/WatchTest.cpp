// The command `watch` as a user meets it.
#include "tests/app/Program.h"
#include "tests/support/waiting.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <utility>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;
using namespace zq::testing;

namespace {
constexpr char Ready[] = "{\"ready\": true}";

class Watch : public ::testing::Test {
 protected:
  QString path(const QString& name) const { return folder_.filePath(name); }
  QByteArray nativePath(const QString& name) const { return QFile::encodeName(path(name)); }
  QString write(const QString& name, const QByteArray& bytes) const {
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
    file.write(bytes);
    return file.fileName();
  }
  void append(const QString& name, const QByteArray& bytes) const {
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Append)) << name.toStdString();
    file.write(bytes);
  }
  // As editors save: a new file takes the place of the old one.
  void save(const QString& name, const QByteArray& bytes) const {
    write(u"new"_s, bytes);
    ASSERT_EQ(::rename(nativePath(u"new"_s).constData(), nativePath(name).constData()), 0);
  }

  Outcome run(const QStringList& arguments) const {
    return runZqticker(QStringList{u"watch"_s} + arguments);
  }
  void startPlain(const QStringList& arguments) {
    lines_.clear();
    rest_.clear();
    program_ =
        std::make_unique<RunningProgram>(QStringList{u"watch"_s} + arguments, plainEnvironment());
  }
  // Returns when everything is watched; the line that says so is taken away.
  void start(const QStringList& arguments) {
    startPlain(QStringList{u"--json"_s} + arguments);
    ASSERT_TRUE(waitFor([&] { return !lines().isEmpty(); }));
    ASSERT_EQ(lines_.takeFirst(), Ready);
  }
  const QByteArrayList& lines() {
    rest_ += program_->process().readAllStandardOutput();
    QByteArrayList complete = rest_.split('\n');
    rest_ = complete.takeLast();
    lines_ += complete;
    return lines_;
  }
  // "WrittenTo f" for each line of JSON.
  QStringList reports() {
    QStringList result;
    for (const QByteArray& line : lines()) {
      QJsonParseError error;
      const QJsonObject report = QJsonDocument::fromJson(line, &error).object();
      EXPECT_EQ(error.error, QJsonParseError::NoError) << line.constData();
      QString word = report[u"notification"_s].toString();
      word.remove("VXKQueueFile"_L1).remove("Notification"_L1);
      result.append(word + u' ' +
                    QDir(folder_.path()).relativeFilePath(report[u"path"_s].toString()));
    }
    return result;
  }
  bool hears(const QString& report) {
    return waitFor([&] { return reports().contains(report); });
  }
  void expectEnd(int signal) {
    program_->interrupt(signal);
    EXPECT_EQ(program_->awaitStatus(), 0);
    EXPECT_EQ(program_->process().readAllStandardError(), "");
  }

  QTemporaryDir folder_;
  std::unique_ptr<RunningProgram> program_;
  QByteArrayList lines_;
  QByteArray rest_;
};

// A program whose standard output is a pipe that is read by hand.
class PipedProgram {
 public:
  PipedProgram(const QString& pipe, const QStringList& arguments) {
    EXPECT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    reader_ = ::open(QFile::encodeName(pipe).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    process_.setProcessEnvironment(plainEnvironment());
    process_.setStandardOutputFile(pipe);
    process_.start(QStringLiteral(ZQTICKER_PROGRAM), arguments);
    EXPECT_TRUE(process_.waitForStarted());
  }
  ~PipedProgram() {
    closeReader();
    if (process_.state() != QProcess::NotRunning) {
      process_.kill();
      process_.waitForFinished();
    }
  }

  int reader() const { return reader_; }
  QProcess& process() { return process_; }
  int waitingBytes() const {
    int count = 0;
    ::ioctl(reader_, FIONREAD, &count);
    return count;
  }
  QByteArray read() const {
    QByteArray bytes(1 << 16, Qt::Uninitialized);
    bytes.truncate(std::max<ssize_t>(::read(reader_, bytes.data(), std::size_t(bytes.size())), 0));
    return bytes;
  }
  void closeReader() {
    if (reader_ >= 0)
      ::close(std::exchange(reader_, -1));
  }
  int awaitStatus() {
    const bool hasEnded = waitFor([&] { return process_.state() == QProcess::NotRunning; });
    return hasEnded && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
  }

 private:
  int reader_ = -1;
  QProcess process_;
};
} // namespace

TEST_F(Watch, SaysInJsonWhenEverythingIsWatchedAndThenWhatHappens) {
  const auto now = [] {
    return qint64(
        std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count());
  };
  const QString file = write(u"f"_s, "a");
  startPlain({u"--json"_s, file});
  ASSERT_TRUE(waitFor([&] { return !lines().isEmpty(); }));
  EXPECT_EQ(lines_, QByteArrayList{Ready});
  const qint64 before = now();
  append(u"f"_s, "b");
  ASSERT_TRUE(waitFor([&] { return lines().size() == 2; }));
  const QRegularExpression form(
      u"^\\{\"time\": (\\d+), \"notification\": \"VXKQueueFileWrittenToNotification\", "
      u"\"path\": \"%1\"\\}$"_s.arg(QRegularExpression::escape(file)));
  const auto match = form.match(QString::fromUtf8(lines_[1]));
  ASSERT_TRUE(match.hasMatch()) << lines_[1].constData();
  EXPECT_GE(match.captured(1).toLongLong(), before);
  EXPECT_LE(match.captured(1).toLongLong(), now());
}

TEST_F(Watch, PrintsAWordATabAndThePath) {
  const QString file = write(u"f"_s, "a");
  startPlain({file});
  // Nothing says that it is watched by now.
  ASSERT_TRUE(waitFor([&] {
    append(u"f"_s, "b");
    return !lines().isEmpty();
  }));
  EXPECT_EQ(lines_.first(), QByteArray("written\t" + file.toUtf8()));
  expectEnd(SIGINT);
}

TEST_F(Watch, HasAWordForEverything) {
  const QString file = write(u"f"_s, "a");
  startPlain({u"--all-flags"_s, file});
  ASSERT_TRUE(waitFor([&] {
    append(u"f"_s, "b");
    return !lines().isEmpty();
  }));
  const auto hearsWord = [&](const QByteArray& word) {
    return waitFor([&] { return lines().contains(word + '\t' + file.toUtf8()); });
  };
  EXPECT_TRUE(hearsWord("written"));
  EXPECT_TRUE(hearsWord("grown"));
  ASSERT_EQ(::chmod(nativePath(u"f"_s).constData(), 0600), 0);
  EXPECT_TRUE(hearsWord("attributes"));
  ASSERT_EQ(::link(nativePath(u"f"_s).constData(), nativePath(u"g"_s).constData()), 0);
  EXPECT_TRUE(hearsWord("links"));
  ASSERT_EQ(::rename(nativePath(u"f"_s).constData(), nativePath(u"h"_s).constData()), 0);
  EXPECT_TRUE(hearsWord("renamed"));
  lines_.clear();
  write(u"f"_s, "new");
  EXPECT_TRUE(hearsWord("written"));
  ASSERT_TRUE(QFile::remove(file));
  EXPECT_TRUE(hearsWord("deleted"));
}

TEST_F(Watch, KeepsOddNamesOnOneLine) {
  const QString odd = u"a\nb\tc\\d\"e\u001b[1m\u0085ä\U0001F600"_s;
  const QString file = write(odd, "a");
  start({file});
  append(odd, "b");
  ASSERT_TRUE(waitFor([&] { return !lines().isEmpty(); }));
  EXPECT_EQ(QJsonDocument::fromJson(lines_.first()).object()[u"path"_s].toString(), file);
  startPlain({file});
  ASSERT_TRUE(waitFor([&] {
    append(odd, "b");
    return !lines().isEmpty();
  }));
  EXPECT_EQ(lines_.first(), "written\t" + folder_.path().toUtf8() +
                                "/a\\nb\\tc\\\\d\"e\\u001b[1m\\u0085ä\U0001F600");
}

TEST_F(Watch, TellsThePathAsItWasGiven) {
  write(u"f"_s, "a");
  const QString spelled = folder_.path() + u"/.//f"_s;
  start({spelled});
  append(u"f"_s, "b");
  ASSERT_TRUE(waitFor([&] { return !lines().isEmpty(); }));
  EXPECT_EQ(QJsonDocument::fromJson(lines_.first()).object()[u"path"_s].toString(), spelled);
}

TEST_F(Watch, TakesAPathThatLooksLikeAnOptionAfterTwoDashes) {
  const Outcome outcome = run({u"--"_s, u"--json"_s});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "zqticker: --json: cannot watch: No such file or directory\n");
}

TEST_F(Watch, TellsEachOfFiveSavesByReplacement) {
  start({write(u"f"_s, "0")});
  for (int i = 1; i <= 5; ++i) {
    save(u"f"_s, QByteArray::number(i));
    ASSERT_TRUE(hears(u"WrittenTo f"_s)) << i;
    EXPECT_EQ(reports(), (QStringList{u"Deleted f"_s, u"WrittenTo f"_s})) << i;
    lines_.clear();
  }
}

TEST_F(Watch, TellsSavesToThoseWhoAskForWritesOnly) {
  start({u"--mask"_s, u"2"_s, write(u"f"_s, "0")});
  for (int i = 1; i <= 5; ++i) {
    save(u"f"_s, QByteArray::number(i));
    ASSERT_TRUE(hears(u"WrittenTo f"_s)) << i;
    EXPECT_EQ(reports(), QStringList{u"WrittenTo f"_s}) << i;
    lines_.clear();
  }
}

TEST_F(Watch, GoesOnWithAFileThatIsMadeAnew) {
  const QString file = write(u"f"_s, "0");
  start({file});
  ASSERT_TRUE(QFile::remove(file));
  ASSERT_TRUE(hears(u"Deleted f"_s));
  EXPECT_EQ(reports(), QStringList{u"Deleted f"_s});
  write(u"f"_s, "1");
  ASSERT_TRUE(hears(u"WrittenTo f"_s));
  lines_.clear();
  append(u"f"_s, "2");
  EXPECT_TRUE(hears(u"WrittenTo f"_s));
}

TEST_F(Watch, WatchesForTheMaskAlone) {
  for (const QString& mask : {u"10"_s, u"0x10"_s, u"0X0010"_s}) {
    const QString file = write(u"f"_s, "a");
    start({u"--mask"_s, mask, file});
    append(u"f"_s, "b");
    ASSERT_EQ(::chmod(nativePath(u"f"_s).constData(), 0640), 0);
    ASSERT_EQ(::link(nativePath(u"f"_s).constData(), nativePath(u"g"_s).constData()), 0);
    ASSERT_TRUE(hears(u"LinkCountChanged f"_s));
    EXPECT_EQ(reports(), QStringList{u"LinkCountChanged f"_s});
    expectEnd(SIGTERM);
    ASSERT_TRUE(QFile::remove(path(u"g"_s)));
  }
}

TEST_F(Watch, DoesNotWatchForGrowthByItself) {
  start({write(u"f"_s, "a"), write(u"fence"_s, "a")});
  append(u"f"_s, "b");
  ASSERT_TRUE(hears(u"WrittenTo f"_s));
  append(u"fence"_s, "b");
  ASSERT_TRUE(hears(u"WrittenTo fence"_s));
  EXPECT_EQ(reports(), (QStringList{u"WrittenTo f"_s, u"WrittenTo fence"_s}));
}

TEST_F(Watch, TellsOnceOfAPathThatIsNamedTwice) {
  const QString file = write(u"f"_s, "a");
  start({file, file, write(u"fence"_s, "a")});
  append(u"f"_s, "b");
  ASSERT_TRUE(hears(u"WrittenTo f"_s));
  append(u"fence"_s, "b");
  ASSERT_TRUE(hears(u"WrittenTo fence"_s));
  EXPECT_EQ(reports().count(u"WrittenTo f"_s), 1);
}

TEST_F(Watch, WatchesNothingWhereOnePathCannotBe) {
  const QString there = write(u"there"_s, "a");
  const Outcome outcome = run({u"--json"_s, path(u"one"_s), there, path(u"there/two"_s), u""_s});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.errors,
            QByteArray("zqticker: " + path(u"one"_s).toUtf8() +
                       ": cannot watch: No such file or directory\nzqticker: " + there.toUtf8() +
                       "/two: cannot watch: Not a directory\n"
                       "zqticker: \"\": cannot watch: No such file or directory\n"));
}

TEST_F(Watch, SaysThatANameIsNotUtf8) {
  QProcess shell;
  shell.start(u"sh"_s, {u"-c"_s, u"\"$0\" watch \"$(printf 'a\\377')\""_s,
                        QStringLiteral(ZQTICKER_PROGRAM)});
  ASSERT_TRUE(shell.waitForFinished());
  EXPECT_EQ(shell.exitCode(), 1);
  EXPECT_EQ(shell.readAllStandardError(),
            "zqticker: a\uFFFD: cannot watch: no such file, or its name is not UTF-8\n");
}

TEST_F(Watch, ReportsAFolderWithItsFiles) {
  ASSERT_TRUE(QDir().mkpath(path(u"d"_s)));
  write(u"d/f"_s, "a");
  start({u"--folders"_s, path(u"d"_s)});
  append(u"d/f"_s, "b");
  ASSERT_TRUE(hears(u"WrittenTo d"_s));
  lines_.clear();
  write(u"d/g"_s, "b");
  ASSERT_TRUE(hears(u"WrittenTo d"_s));
  expectEnd(SIGINT);
}

TEST_F(Watch, GoesOnWithAFolderThatTakesThePlace) {
  ASSERT_TRUE(QDir().mkpath(path(u"d"_s)));
  start({u"--folders"_s, path(u"d"_s)});
  ASSERT_TRUE(QDir().rmdir(path(u"d"_s)));
  ASSERT_TRUE(hears(u"WrittenTo d"_s));
  ASSERT_TRUE(QDir().mkpath(path(u"d"_s)));
  ASSERT_TRUE(waitFor([&] { return reports().size() == 2; }));
  write(u"d/f"_s, "a");
  ASSERT_TRUE(waitFor([&] { return reports().size() == 3; }));
  EXPECT_EQ(reports().count(u"WrittenTo d"_s), 3);
}

TEST_F(Watch, TakesOnlyFoldersAsFolders) {
  const QString file = write(u"f"_s, "a");
  const Outcome outcome = run({u"--folders"_s, file, path(u"missing"_s)});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.errors,
            QByteArray("zqticker: " + file.toUtf8() +
                       ": cannot watch: Not a directory\nzqticker: " + path(u"missing"_s).toUtf8() +
                       ": cannot watch: No such file or directory\n"));
}

TEST_F(Watch, EndsWhenInterrupted) {
  const QString file = write(u"f"_s, "a");
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    start({file});
    expectEnd(signal);
    EXPECT_EQ(lines(), QByteArrayList());
  }
}

TEST_F(Watch, EndsInTheMiddleOfABurst) {
  QStringList files;
  for (int i = 0; i < 200; ++i)
    files.append(write(u"f%1"_s.arg(i), "a"));
  start(files);
  for (int i = 0; i < 200; ++i)
    append(u"f%1"_s.arg(i), "b");
  expectEnd(SIGINT);
}

TEST_F(Watch, LosesNoLineToASlowReader) {
  constexpr int Count = 2000; // lines that a pipe cannot hold
  QStringList files;
  for (int i = 0; i < Count; ++i)
    files.append(write(u"file-with-a-name-of-some-length-%1"_s.arg(i), "a"));
  start(files);
  for (int i = 0; i < Count; ++i)
    append(u"file-with-a-name-of-some-length-%1"_s.arg(i), "b");
  ASSERT_TRUE(waitFor([&] { return lines().size() >= Count; }));
  QStringList expected;
  for (const QString& file : files)
    expected.append(u"WrittenTo "_s + QDir(folder_.path()).relativeFilePath(file));
  expected.sort();
  QStringList heard = reports();
  heard.sort();
  EXPECT_EQ(heard, expected);
}

TEST_F(Watch, EndsQuietlyAsSoonAsItsReaderHasGone) {
  PipedProgram program(path(u"pipe"_s), {u"watch"_s, u"--json"_s, write(u"f"_s, "a")});
  ASSERT_TRUE(waitFor([&] { return program.waitingBytes() > 0; }));
  EXPECT_EQ(program.read(), QByteArray(Ready) + '\n');
  program.closeReader();
  EXPECT_EQ(program.awaitStatus(), 0);
  EXPECT_EQ(program.process().readAllStandardError(), "");
}

TEST_F(Watch, EndsWhenItsReaderGoesBeforeTheFirstLine) {
  QProcess shell;
  shell.start(u"bash"_s, {u"-c"_s, u"\"$0\" watch --json \"$1\" | true; echo ${PIPESTATUS[0]}"_s,
                          QStringLiteral(ZQTICKER_PROGRAM), write(u"f"_s, "a")});
  ASSERT_TRUE(shell.waitForFinished());
  EXPECT_EQ(shell.readAllStandardOutput(), "0\n");
  EXPECT_EQ(shell.readAllStandardError(), "");
}

TEST_F(Watch, EndsWhenInterruptedWhileAPipeIsFull) {
  QStringList files;
  for (int i = 0; i < 200; ++i)
    files.append(write(u"f%1"_s.arg(i), "a"));
  PipedProgram program(path(u"pipe"_s), QStringList{u"watch"_s, u"--json"_s} + files);
  constexpr int Page = 4096; // a pipe of two counts as full when the second has been begun
  ASSERT_EQ(::fcntl(program.reader(), F_SETPIPE_SZ, 2 * Page), 2 * Page);
  ASSERT_TRUE(waitFor([&] { return program.waitingBytes() > 0; }));
  for (int i = 0; i < 200; ++i)
    append(u"f%1"_s.arg(i), "b");
  ASSERT_TRUE(waitFor([&] { return program.waitingBytes() > Page; }));
  ::kill(static_cast<pid_t>(program.process().processId()), SIGINT);
  EXPECT_EQ(program.awaitStatus(), 0);
}

TEST_F(Watch, FailsWhereNothingCanBeWritten) {
  QProcess process;
  process.setStandardOutputFile(u"/dev/full"_s);
  process.start(QStringLiteral(ZQTICKER_PROGRAM), {u"watch"_s, write(u"f"_s, "a")});
  ASSERT_TRUE(process.waitForStarted());
  ASSERT_TRUE(waitFor([&] {
    append(u"f"_s, "b");
    return process.state() == QProcess::NotRunning;
  }));
  EXPECT_EQ(process.exitCode(), 1);
  EXPECT_EQ(process.readAllStandardError(), "zqticker: standard output: No space left on device\n");
}

TEST_F(Watch, FailsWithoutAStandardOutput) {
  QProcess shell;
  shell.start(u"sh"_s, {u"-c"_s, u"exec \"$0\" watch \"$1\" >&-"_s,
                        QStringLiteral(ZQTICKER_PROGRAM), write(u"f"_s, "a")});
  ASSERT_TRUE(shell.waitForFinished());
  EXPECT_EQ(shell.exitCode(), 1);
  EXPECT_EQ(shell.readAllStandardError(), "zqticker: standard output: Bad file descriptor\n");
}

TEST_F(Watch, RefusesWrongCommandLines) {
  const auto expectUsage = [&](const QStringList& arguments, const QByteArray& line) {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors, "zqticker: " + line + "\n");
    EXPECT_EQ(outcome.output, "");
  };
  const QString file = write(u"f"_s, "a");
  expectUsage({}, "PATH: missing (see zqticker watch --help)");
  expectUsage({u"--json"_s}, "PATH: missing (see zqticker watch --help)");
  expectUsage({u"--jsn"_s, file},
              "--jsn: unknown option; did you mean --json? (see zqticker watch --help)");
  expectUsage({u"--yaml"_s, file}, "--yaml: unknown option (see zqticker watch --help)");
  for (const QByteArray mask : {"zz", "", "0x", "-1", "+2", " 2", "2 ", "2h"})
    expectUsage({u"--mask"_s, QString::fromLatin1(mask), file},
                "--mask " + mask + ": not a hexadecimal number");
  for (const QByteArray mask : {"0", "80", "ff", "100000002", "0xfffffffffffffffff"})
    expectUsage({u"--mask"_s, QString::fromLatin1(mask), file},
                "--mask " + mask + ": must be between 1 and 7f");
  expectUsage({u"--mask"_s, u"2"_s, u"--all-flags"_s, file},
              "--mask: cannot stand with --all-flags");
  expectUsage({u"--all-flags"_s, u"--mask"_s, u"2"_s, file},
              "--all-flags: cannot stand with --mask");
  expectUsage({u"--folders"_s, u"--mask"_s, u"2"_s, file}, "--mask: cannot stand with --folders");
  expectUsage({u"--all-flags"_s, u"--folders"_s, file}, "--all-flags: cannot stand with --folders");
}

TEST_F(Watch, ExplainsItself) {
  const Outcome outcome = run({u"--help"_s});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.output.startsWith("Usage: zqticker watch [OPTION]... PATH...\n"));
  for (const char* word : {"--json", "--all-flags", "--mask HEX", "--folders", "{\"ready\": true}",
                           "\\n, \\t, \\u001b", "VXKQueueFileRenamedNotification"})
    EXPECT_TRUE(outcome.output.contains(word)) << word;
  EXPECT_EQ(runZqticker({u"help"_s, u"watch"_s}).output, outcome.output);
  EXPECT_TRUE(runZqticker({u"--help"_s}).output.contains("  watch     "));
}
