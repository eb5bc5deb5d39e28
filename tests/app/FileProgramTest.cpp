// The program with files: on a real X server, and without a display.
#include "tests/app/LogFile.h"
#include "tests/app/Program.h"
#include "tests/app/XServer.h"

#include <QtCore/QDir>
#include <QtGui/QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <map>
#include <optional>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;

namespace {
constexpr int Width = 640;
constexpr int Height = 400;
constexpr int StripHeight = 24;
constexpr QRgb White = 0xffffff;

class FileProgram : public ::testing::Test {
 protected:
  Outcome render(const QStringList& arguments) const {
    return runZqticker(QStringList{u"render"_s, u"--output"_s, output()} + arguments);
  }
  QString output() const { return log.folder() + u"/out.png"_s; }

  // The text as the strip shows it, without the white around it.
  QImage picture(const QString& text) const {
    EXPECT_EQ(
        render({u"--text"_s, text, u"--size"_s, u"%1x%2"_s.arg(Width).arg(StripHeight)}).status, 0);
    const QImage image = QImage(output()).convertToFormat(QImage::Format_RGB32);
    QFile::remove(output());
    int first = Width;
    int last = -1;
    for (int x = 0; x < image.width(); ++x)
      for (int y = 0; y < image.height(); ++y)
        if ((image.pixel(x, y) & White) != White) {
          first = std::min(first, x);
          last = std::max(last, x);
        }
    return image.copy(first, 0, last - first + 1, image.height());
  }

  LogFile log;
};

// Where `part` stands in `strip`, from the left.
std::vector<int> placesOf(const QImage& part, const QImage& strip) {
  std::vector<int> places;
  const auto stands = [&](int left) {
    for (int y = 0; y < part.height(); ++y)
      for (int x = 0; x < part.width(); ++x)
        if ((part.pixel(x, y) & White) != (strip.pixel(left + x, y) & White))
          return false;
    return true;
  };
  for (int left = 0; left + part.width() <= strip.width(); ++left)
    if (stands(left))
      places.push_back(left);
  return places;
}

class FileScreen : public FileProgram {
 protected:
  void SetUp() override {
    if (!XServer::isInstalled())
      GTEST_SKIP() << "Xvfb is not installed";
    screen.emplace(Width, Height);
    ASSERT_FALSE(screen->display().isEmpty()) << "Xvfb does not start";
  }

  void learn(const QStringList& texts) {
    for (const QString& text : texts)
      pictures[text] = picture(text);
  }
  void run(const QStringList& arguments) {
    program.emplace(QStringList{u"--speed"_s, u"300"_s} + arguments, screen->environment());
    ASSERT_TRUE(waitUntil([&] { return isBlank(look()); })) << "the strip is there";
  }

  // The strip now; notes which of the texts have come into sight.
  QImage look() {
    const QImage strip = screen->screenshot().copy(0, Height - StripHeight, Width, StripHeight);
    std::map<int, QString> entered; // from left to right, as they came
    for (const auto& [text, part] : pictures) {
      const std::vector<int> places = placesOf(part, strip);
      const int last = last_.contains(text) ? last_[text] : Width;
      for (const int place : places)
        if (!last_.contains(text) || place > last)
          entered[place] = text;
      if (!places.empty())
        last_[text] = places.back();
    }
    for (const auto& [place, text] : entered)
      seen += text + u' ';
    return strip;
  }
  static bool isBlank(const QImage& strip) {
    QImage white(strip.size(), strip.format());
    white.fill(Qt::white);
    return !strip.isNull() && strip == white;
  }
  bool awaitSight(const QString& text) {
    return waitUntil([&] {
      look();
      return seen.contains(text);
    });
  }
  // Looks on until nothing moves in sight any more.
  bool awaitBlank() {
    return waitUntil([&] { return isBlank(look()); });
  }
  void end() {
    EXPECT_TRUE(program->isRunning());
    program->interrupt(SIGINT);
    EXPECT_EQ(program->awaitStatus(), 0);
    EXPECT_EQ(program->process().readAllStandardError(), "");
    EXPECT_EQ(program->process().readAllStandardOutput(), "");
  }

  std::optional<XServer> screen;
  std::optional<RunningProgram> program;
  std::map<QString, QImage> pictures;
  QString seen; // in the order in which they came into sight

 private:
  std::map<QString, int> last_; // where each was seen last
};
} // namespace

TEST_F(FileScreen, ShowsEveryLineOfALogThatIsRenamed) {
  learn({u"alpha"_s, u"bravo"_s, u"charlie"_s, u"delta"_s, u"echo"_s, u"foxtrot"_s});
  log.write("before\nalpha\n");
  run({u"--tail"_s, log.path()});
  ASSERT_TRUE(awaitSight(u"alpha"_s));
  log.write("bravo\n");
  log.rename(1);
  log.write("charlie\n");
  log.open();
  log.write("delta\n");
  ASSERT_TRUE(awaitSight(u"delta"_s));
  log.rename(2);
  log.open();
  log.write("echo\nfoxtrot\n");
  ASSERT_TRUE(awaitSight(u"foxtrot"_s));
  EXPECT_TRUE(awaitBlank());
  EXPECT_EQ(seen.toStdString(), "alpha bravo charlie delta echo foxtrot ");
  end();
}

TEST_F(FileScreen, ShowsEveryLineOfALogThatIsCopiedAndEmptied) {
  learn({u"alpha"_s, u"bravo"_s, u"charlie"_s, u"delta"_s});
  log.write("alpha\n");
  run({u"--tail"_s, log.path()});
  ASSERT_TRUE(awaitSight(u"alpha"_s));
  log.copyAndEmpty();
  log.write("bravo\n");
  ASSERT_TRUE(awaitSight(u"bravo"_s));
  log.copyAndEmpty();
  log.write("charlie\ndelta\n");
  ASSERT_TRUE(awaitSight(u"delta"_s));
  EXPECT_TRUE(awaitBlank());
  EXPECT_EQ(seen.toStdString(), "alpha bravo charlie delta ");
  end();
}

TEST_F(FileScreen, TellsWhatHappensToAFile) {
  learn({u"log: written to"_s, u"log: replaced"_s, u"log: deleted"_s, u"log: appeared"_s});
  log.write("one\n");
  run({u"--watch"_s, log.path()});
  log.replace("two\n");
  ASSERT_TRUE(awaitSight(u"log: replaced"_s));
  log.write("three\n");
  ASSERT_TRUE(awaitSight(u"log: written to"_s));
  log.remove();
  ASSERT_TRUE(awaitSight(u"log: deleted"_s));
  log.open();
  ASSERT_TRUE(awaitSight(u"log: appeared"_s));
  EXPECT_TRUE(awaitBlank());
  end();
}

TEST_F(FileScreen, ShowsFilesBesideOtherThings) {
  learn({u"alpha"_s, u"bravo"_s, u"Hello"_s});
  log.write("alpha\n");
  run({u"--text"_s, u"Hello"_s, u"--loop"_s, u"1"_s, u"--tail"_s, log.path(), u"--watch"_s,
       log.folder()});
  ASSERT_TRUE(awaitSight(u"alpha"_s));
  log.write("bravo\n");
  ASSERT_TRUE(awaitSight(u"bravo"_s));
  EXPECT_TRUE(awaitBlank());
  EXPECT_EQ(seen.toStdString(), "Hello alpha bravo ");
  end();
}

TEST_F(FileScreen, WaitsForALogThatIsNotThere) {
  learn({u"alpha"_s});
  run({u"--tail"_s, log.path()});
  EXPECT_EQ(program->process().readAllStandardError(),
            "zqticker: tail " + log.bytes() +
                ": cannot read: No such file or directory; waiting "
                "for it\n");
  log.write("alpha\n");
  EXPECT_TRUE(awaitSight(u"alpha"_s));
  end();
}

TEST_F(FileScreen, ShowsNothingOfWhatItCannotFollow) {
  ASSERT_EQ(::mkfifo(log.bytes().constData(), 0600), 0);
  const auto failure = [&](const QString& option, const QString& path) {
    const Outcome outcome =
        runZqticker({u"--text"_s, u"Hello"_s, option, path}, {}, screen->environment());
    EXPECT_EQ(outcome.status, 1);
    return outcome.errors.toStdString();
  };
  const std::string path = log.path().toStdString();
  EXPECT_EQ(failure(u"--tail"_s, log.path()),
            "zqticker: --tail " + path + ": a pipe, not a text file\n");
  EXPECT_EQ(failure(u"--tail"_s, log.folder()),
            "zqticker: --tail " + log.folder().toStdString() + ": a folder, not a text file\n");
  EXPECT_EQ(failure(u"--watch"_s, log.path(1)),
            "zqticker: --watch " + path + ".1: cannot watch: No such file or directory\n");
}

TEST_F(FileProgram, RendersTheLastLine) {
  log.write("one\ntwo\n");
  const QImage two = picture(u"two"_s);
  const Outcome outcome = render({u"--tail"_s, log.path()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(placesOf(two, QImage(output())).size(), 1u);
}

TEST_F(FileProgram, RendersNothingOfAFileThatIsNotThere) {
  const Outcome outcome = render({u"--text"_s, u"Hello"_s, u"--tail"_s, log.path()});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors,
            "zqticker: --tail " + log.bytes() + ": cannot read: No such file or directory\n");
  EXPECT_FALSE(QFile::exists(output()));
}

TEST_F(FileProgram, RendersNoReports) {
  const Outcome outcome = render({u"--watch"_s, log.folder()});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.errors, "zqticker: --watch: unknown option (see zqticker render --help)\n");
}

TEST_F(FileProgram, RendersTheLastLineWithoutADisplay) {
  log.write("one\ntwo\n");
  QProcessEnvironment environment = plainEnvironment();
  environment.insert(u"TMPDIR"_s, log.folder());
  const Outcome outcome =
      runZqticker({u"--tail"_s, log.path(), u"--watch"_s, log.folder(), u"--speed"_s, u"200"_s}, {},
                  environment);
  EXPECT_EQ(outcome.status, 0);
  const QByteArray start = "zqticker: no display: rendered 100 frames into ";
  ASSERT_TRUE(outcome.errors.startsWith(start)) << outcome.errors.constData();
  const QDir frames(QString::fromUtf8(outcome.errors.sliced(start.size()).trimmed()));
  const QImage two = picture(u"two"_s);
  EXPECT_EQ(placesOf(two, QImage(frames.filePath(u"frame-000050.png"_s))).size(), 1u);
}
