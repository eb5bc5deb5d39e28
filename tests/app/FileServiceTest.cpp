// The file service with real files.
#include "app/services/FileService.h"

#include "app/display/SignItem.h"
#include "app/display/TickerDisplay.h"
#include "app/services/DisplayReceiver.h"
#include "app/services/FileSigns.h"
#include "tests/app/LogFile.h"
#include "tests/support/LogWatch.h"
#include "tests/support/waiting.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/signs/ZQTickerSign.h"
#include "zqticker/watching/file_watcher.h"

#include <QtCore/QDir>

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace zq::app;
using zq::app::testing::LogFile;
using zq::testing::expectLog;
using zq::testing::waitFor;

namespace {
// Only what the watcher reports is seen.
constexpr std::chrono::milliseconds Never = 24h;

class Files : public ::testing::Test {
 protected:
  std::string start(const FileOptions& options, std::chrono::milliseconds lookInterval = Never,
                    MissingFiles missing = MissingFiles::AreAwaited) {
    service.emplace(
        options,
        FileReceivers{[this](const QString& line, const QString&) { lines += line + u'|'; },
                      [this](const FileReport& report) { take(report); }, nullptr},
        lookInterval);
    const std::optional<FileFailure> failure = service->start(missing);
    if (!failure)
      return "well";
    return QString(failure->option + u' ' + QDir(log.folder()).relativeFilePath(failure->path) +
                   u": "_s + failure->reason)
        .toStdString();
  }
  std::string watch(const QString& path) { return start({{path}, {}}); }
  std::string tail(std::chrono::milliseconds lookInterval = Never) {
    return start({{}, {log.path()}}, lookInterval);
  }

  // A report that repeats the one before is left out: one change may be several to the kernel.
  void take(const FileReport& report) {
    const QString text = reportText(report) + u'|';
    if (!reports.endsWith(text))
      reports += text;
  }
  bool awaitLines(const std::string& text) {
    return waitFor([&] { return lines.toStdString() == text; });
  }
  bool awaitReports(const std::string& text) {
    return waitFor([&] { return reports.toStdString() == text; });
  }

  LogFile log;
  QString lines;
  QString reports;
  std::optional<FileService> service;
};
} // namespace

TEST_F(Files, GiveOutTheirLastLineAndWhatIsAppended) {
  log.write("zero\none\n");
  ASSERT_EQ(tail(), "well");
  EXPECT_EQ(lines, u"one|"_s) << "at once";
  log.write("two\nthree\nfo");
  EXPECT_TRUE(awaitLines("one|two|three|"));
  log.write("ur\n");
  EXPECT_TRUE(awaitLines("one|two|three|four|"));
}

TEST_F(Files, SayWhichOfThemALineIsFrom) {
  LogFile other(u"other"_s);
  log.write("one\n");
  other.write("two\n");
  QStringList given;
  service.emplace(FileOptions{{}, {log.path(), other.path()}},
                  FileReceivers{[&](const QString& line, const QString& path) {
                                  given.append(line + u' ' + path);
                                },
                                nullptr, nullptr},
                  Never);
  EXPECT_EQ(service->start(), std::nullopt);
  EXPECT_EQ(given, (QStringList{u"one "_s + log.path(), u"two "_s + other.path()}));
}

TEST_F(Files, AreFollowedThroughRenaming) {
  log.write("one\n");
  tail();
  std::string expected = "one|";
  for (int i = 1; i <= 5; ++i) {
    log.write("before\n");
    log.rename(i);
    log.open();
    log.write("after\n");
    expected += "before|after|";
    EXPECT_TRUE(awaitLines(expected)) << lines.toStdString();
  }
}

TEST_F(Files, AreFollowedThroughCopyingAndEmptying) {
  log.write("one\n");
  tail();
  std::string expected = "one|";
  for (int i = 1; i <= 5; ++i) {
    log.write("before\n");
    expected += "before|";
    ASSERT_TRUE(awaitLines(expected)) << lines.toStdString();
    log.copyAndEmpty();
    log.write("after\n");
    expected += "after|";
    EXPECT_TRUE(awaitLines(expected)) << lines.toStdString();
  }
}

TEST_F(Files, AreFollowedThroughDeletion) {
  log.write("one\n");
  tail();
  log.remove();
  log.open();
  log.write("two\n");
  EXPECT_TRUE(awaitLines("one|two|"));
  log.replace("three\nfour\n");
  EXPECT_TRUE(awaitLines("one|two|three|four|"));
}

TEST_F(Files, AreLookedAtWithoutAReport) {
  log.write("one\n");
  tail(5ms);
  log.rename();
  QFile next(log.path());
  ASSERT_TRUE(next.open(QIODevice::WriteOnly));
  log.write("two\n");
  EXPECT_TRUE(awaitLines("one|two|")) << "nobody watches the renamed file";
}

TEST_F(Files, AreAwaited) {
  expectLog(u"zqticker.files: tail "_s + log.path() +
            u": cannot read: No such file or directory; waiting for it"_s);
  ASSERT_EQ(tail(), "well");
  log.write("one\ntwo\n");
  EXPECT_TRUE(awaitLines("one|two|"));
}

TEST_F(Files, AreAwaitedInAFolderThatIsNotThereYet) {
  const QString path = log.folder() + u"/a/b/log"_s;
  expectLog(u"tail "_s + path);
  ASSERT_EQ(start({{}, {path}}), "well");
  ASSERT_TRUE(QDir(log.folder()).mkpath(u"a/b"_s));
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("one\n") == 4 && file.flush());
  EXPECT_TRUE(awaitLines("one|"));
}

TEST_F(Files, AreToldOnceWhenTheyCannotBeReadAnyMore) {
  log.write("one\n");
  tail(5ms);
  expectLog(u"tail "_s + log.path() + u": a folder, not a text file; waiting for it"_s);
  log.rename();
  ASSERT_TRUE(QDir().mkdir(log.path()));
  log.write("two\n");
  EXPECT_TRUE(awaitLines("one|two|"));
  log.write("three\n");
  EXPECT_TRUE(awaitLines("one|two|three|"));
  ASSERT_TRUE(QDir().rmdir(log.path()));
  log.open();
  log.write("four\n");
  EXPECT_TRUE(awaitLines("one|two|three|four|"));
}

TEST_F(Files, ThatCannotBeFollowedAreRefused) {
  EXPECT_EQ(start({{}, {log.folder()}}), "--tail .: a folder, not a text file");
  ASSERT_EQ(::mkfifo(log.bytes().constData(), 0600), 0);
  EXPECT_EQ(tail(), "--tail log: a pipe, not a text file");
  EXPECT_EQ(start({{}, {log.path(1)}}, Never, MissingFiles::Fail),
            "--tail log.1: cannot read: No such file or directory");
}

TEST_F(Files, AreReadOnWhileTheyAreAheadOfTheStrip) {
  log.write("one\n");
  int count = 0;
  service.emplace(
      FileOptions{{}, {log.path()}},
      FileReceivers{[&](const QString&, const QString&) { ++count; }, nullptr, [] { return true; }},
      Never);
  ASSERT_FALSE(service->start());
  log.write(QByteArray("line\n").repeated(50'000));
  EXPECT_TRUE(waitFor([&] { return count == 50'001; })) << count;
}

TEST_F(Files, TellWhenLinesHaveCome) {
  log.write("one\n");
  tail();
  int received = 0;
  QObject::connect(&*service, &FileService::received, [&] { ++received; });
  log.write("two\n");
  EXPECT_TRUE(waitFor([&] { return received > 0; }));
}

TEST_F(Files, TellWhatHappensToThem) {
  log.write("one\n");
  ASSERT_EQ(watch(log.path()), "well");
  log.write("two\n");
  EXPECT_TRUE(awaitReports("log: written to|"));
  ASSERT_EQ(::chmod(log.bytes().constData(), 0600), 0);
  EXPECT_TRUE(awaitReports("log: written to|log: attributes changed|")) << reports.toStdString();
  reports.clear();
  log.rename();
  EXPECT_TRUE(awaitReports("log: renamed|"));
  log.open();
  EXPECT_TRUE(awaitReports("log: renamed|log: appeared|"));
  log.remove();
  EXPECT_TRUE(awaitReports("log: renamed|log: appeared|log: deleted|")) << reports.toStdString();
}

TEST_F(Files, AreReplacedByASave) {
  log.write("one\n");
  watch(log.path());
  for (int i = 0; i < 5; ++i) {
    reports.clear();
    log.replace("two\n");
    EXPECT_TRUE(awaitReports("log: replaced|")) << reports.toStdString();
  }
}

TEST_F(Files, ThatAreFoldersTellThatTheirContentsChanged) {
  const QString folder = log.folder() + u"/some folder"_s;
  ASSERT_TRUE(QDir().mkdir(folder));
  ASSERT_EQ(watch(folder + u'/'), "well");
  ASSERT_TRUE(QFile(folder + u"/file"_s).open(QIODevice::WriteOnly));
  EXPECT_TRUE(awaitReports("some folder: contents changed|")) << reports.toStdString();
}

TEST_F(Files, MayBeWatchedAndFollowedAtOnce) {
  log.write("one\n");
  ASSERT_EQ(start({{log.path()}, {log.path()}}), "well");
  log.write("two\n");
  EXPECT_TRUE(awaitReports("log: written to|"));
  EXPECT_TRUE(awaitLines("one|two|"));
}

TEST_F(Files, ThatAreMissingCannotBeWatched) {
  EXPECT_EQ(watch(log.path()), "--watch log: cannot watch: No such file or directory");
}

TEST_F(Files, MayBeOfAnyKindWhenTheyAreWatched) {
  ASSERT_EQ(::mkfifo(log.bytes().constData(), 0600), 0);
  ASSERT_EQ(watch(log.path()), "well");
  ASSERT_EQ(::chmod(log.bytes().constData(), 0640), 0);
  EXPECT_TRUE(awaitReports("log: attributes changed|"));
}

TEST(FileReports, NameTheLastPartOfThePath) {
  const auto text = [](const QString& path) {
    return reportText({path, u"deleted"_s}).toStdString();
  };
  EXPECT_EQ(text(u"/var/log/syslog"_s), "syslog: deleted");
  EXPECT_EQ(text(u"/var/log/"_s), "log: deleted");
  EXPECT_EQ(text(u"notes.txt"_s), "notes.txt: deleted");
  EXPECT_EQ(text(u"/"_s), "/: deleted");
  EXPECT_EQ(text(u"."_s), QDir::current().dirName().toStdString() + ": deleted");
  EXPECT_EQ(text(u"a\nb\x1b[1m"_s), "a b: deleted");
}

TEST(FileReports, HaveWordsForEveryNotification) {
  const auto words = [](const QString& notification, WatchedKind kind = WatchedKind::File) {
    return wordsFor(notification, kind).toStdString();
  };
  EXPECT_EQ(words(VXFileWatcherRenameNotification), "renamed");
  EXPECT_EQ(words(VXFileWatcherWriteNotification), "written to");
  EXPECT_EQ(words(VXFileWatcherWriteNotification, WatchedKind::Folder), "contents changed");
  EXPECT_EQ(words(VXFileWatcherDeleteNotification), "deleted");
  EXPECT_EQ(words(VXFileWatcherAttributeChangeNotification), "attributes changed");
  EXPECT_EQ(words(VXFileWatcherSizeIncreaseNotification), "grew");
  EXPECT_EQ(words(VXFileWatcherLinkCountChangeNotification), "links changed");
  EXPECT_EQ(words(VXFileWatcherLinkCountChangeNotification, WatchedKind::Folder),
            "subfolders changed");
  EXPECT_EQ(words(VXFileWatcherAccessRevocationNotification), "no longer accessible");
}

namespace {
class SignsOfFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    display.setSize(QSizeF(300, 24), 0);
    display.setDefaultFont(zq::platform::Font::fontWithName(u"DejaVu Sans"_s, 12));
    display.setDefaultTextColor(zq::platform::Color::deviceRGB(0, 0, 0));
    display.setSpeed(100, 0);
  }

  TickerDisplay display;
  double now = 0;
  DisplayReceiver receiver{display, [this] { return now; }};
};
} // namespace

TEST_F(SignsOfFiles, WaitOncePerPathAndKind) {
  FileSigns signs(receiver, LoopRule());
  for (int i = 0; i < 100; ++i) {
    signs.show({u"/a/log"_s, u"written to"_s});
    signs.show({u"/b/log"_s, u"written to"_s});
    signs.show({u"/a/log"_s, u"deleted"_s});
  }
  EXPECT_EQ(display.waitingCount(), 3u);
}

TEST_F(SignsOfFiles, ComeAgainWhileOneIsOnTheStrip) {
  FileSigns signs(receiver, LoopRule());
  signs.show({u"/a/log"_s, u"written to"_s});
  display.advanceTo(0.1);
  EXPECT_EQ(display.waitingCount(), 0u) << "it is on the strip";
  now = 0.2;
  for (int i = 0; i < 100; ++i)
    signs.show({u"/a/log"_s, u"written to"_s});
  EXPECT_EQ(display.waitingCount(), 1u);
  const auto& item = static_cast<const SignItem&>(display.strip().runs().front().item());
  ASSERT_NE(item.sign(), nullptr);
  EXPECT_EQ(item.sign()->loopCount(), 1);
  display.advanceTo(60);
  EXPECT_TRUE(display.isFinished());
}

TEST_F(SignsOfFiles, GoRoundAsTheRuleSays) {
  FileSigns signs(receiver, {2, 1.5, true});
  signs.show({u"/a/log"_s, u"written to"_s});
  display.advanceTo(0.1);
  const auto& item = static_cast<const SignItem&>(display.strip().runs().front().item());
  EXPECT_EQ(item.sign()->loopCount(), 2);
  EXPECT_EQ(item.sign()->loopDelay(), 1.5);
  EXPECT_TRUE(item.sign()->continuousScrolling());
}
