// The program's commands as a user meets them: standard output, standard error, exit status, files.
#include "tests/app/Program.h"
#include "tests/app/XServer.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/archiving/KeyedUnarchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/AttributedString.h"
#include "zqticker/signs/ZQComboTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"
#include "zqticker/version.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QtEndian>
#include <QtGui/QImage>

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;
using namespace zq::platform;

namespace {
class Program : public ::testing::Test {
 protected:
  QString path(const QString& name) const { return folder_.filePath(name); }

  QString write(const QString& name, const QByteArray& bytes) const {
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return file.fileName();
  }
  QString picture(const QString& name, int width, int height, QColor color = Qt::red) const {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    EXPECT_TRUE(image.save(path(name)));
    return path(name);
  }
  QByteArray read(const QString& name) const {
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
  Outcome render(const QStringList& arguments, const QByteArray& input = {}) const {
    return runZqticker(QStringList{u"render"_s, u"--output"_s, path(u"out.png"_s)} + arguments,
                       input);
  }
  QStringList entries() const {
    return QDir(folder_.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden);
  }

  // One line that names the program, and nothing written.
  void expectFailure(const Outcome& outcome, int status, const QByteArray& line) const {
    EXPECT_EQ(outcome.status, status) << line.constData();
    EXPECT_EQ(outcome.errors, "zqticker: " + line + "\n");
    EXPECT_EQ(outcome.output, "");
    EXPECT_FALSE(QFile::exists(path(u"out.png"_s)));
  }

  QTemporaryDir folder_;
};

QByteArray pngOfSize(quint32 width, quint32 height) {
  QByteArray header(13, 0);
  qToBigEndian(width, header.data());
  qToBigEndian(height, header.data() + 4);
  header[8] = 8;
  header[9] = 2;
  QByteArray bytes("\x89PNG\r\n\x1a\n");
  const auto addChunk = [&](const QByteArray& name, const QByteArray& contents) {
    QByteArray number(4, 0);
    qToBigEndian(static_cast<quint32>(contents.size()), number.data());
    bytes += number;
    const QByteArray named = name + contents;
    quint32 sum = 0xffffffff;
    for (const char c : named) {
      sum ^= static_cast<uchar>(c);
      for (int bit = 0; bit < 8; ++bit)
        sum = (sum >> 1) ^ (sum & 1 ? 0xedb88320u : 0);
    }
    qToBigEndian(~sum, number.data());
    bytes += named + number;
  };
  addChunk("IHDR", header);
  addChunk("IDAT", qCompress(QByteArray(100, 0)).mid(4));
  addChunk("IEND", "");
  return bytes;
}
} // namespace

TEST_F(Program, PrintsItsVersion) {
  const Outcome outcome = runZqticker({u"--version"_s});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "zqticker " + QByteArray(ZQTICKER_VERSION) + "\n");
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(Program, PrintsTheHelpOfEveryCommandWithExamples) {
  for (const QStringList& arguments : {QStringList{u"--help"_s},
                                       {u"-h"_s},
                                       {u"help"_s},
                                       {u"run"_s, u"--help"_s},
                                       {u"render"_s, u"--help"_s},
                                       {u"sign"_s, u"--help"_s},
                                       {u"help"_s, u"render"_s},
                                       {u"archive"_s, u"--help"_s},
                                       {u"run"_s, u"--text"_s, u"a"_s, u"--help"_s}}) {
    const Outcome outcome = runZqticker(arguments);
    const std::string asked = arguments.join(u' ').toStdString();
    EXPECT_EQ(outcome.status, 0) << asked;
    EXPECT_TRUE(outcome.output.startsWith("Usage: zqticker ")) << asked;
    EXPECT_TRUE(outcome.output.contains("xample")) << asked;
    EXPECT_EQ(outcome.errors, "") << asked;
  }
}

TEST_F(Program, RefusesWrongCommandLines) {
  expectFailure(runZqticker({u"dance"_s}), 2, "dance: unknown command (see zqticker --help)");
  expectFailure(runZqticker({u"help"_s, u"dance"_s}), 2,
                "dance: unknown command (see zqticker --help)");
  expectFailure(runZqticker({u"--dance"_s}), 2,
                "--dance: unknown option (see zqticker run --help)");
  expectFailure(
      runZqticker({}), 2,
      "nothing to show: give --text, --image, --combo, --sign, --clock, --feed, --tail, --stdin "
      "or, with run, --watch (see zqticker "
      "run --help)");
  expectFailure(render({u"--text"_s, u"a"_s, u"--speed"_s, u"fast"_s}), 2,
                "--speed fast: not a number");
}

TEST_F(Program, RefusesPicturesThatItCannotRead) {
  const auto refuse = [&](const QString& file, const QByteArray& reason) {
    expectFailure(render({u"--image"_s, file}), 1, "--image " + file.toUtf8() + ": " + reason);
    expectFailure(render({u"--text"_s, u"a"_s, u"--combo"_s, file, u"b"_s}), 1,
                  "--combo " + file.toUtf8() + " b: " + reason);
  };
  const QByteArray broken = "not a picture that can be read, or too large a one";
  refuse(path(u"nosuch.png"_s), "cannot read: No such file or directory");
  refuse(folder_.path(), "cannot read: Is a directory");
  refuse(write(u"empty.png"_s, {}), "the file is empty");
  refuse(write(u"text.png"_s, "no picture"), broken);
  refuse(write(u"none.png"_s, pngOfSize(0, 0)), broken);
  refuse(write(u"huge.png"_s, pngOfSize(100'000, 100'000)), broken);
  picture(u"whole.png"_s, 100, 100);
  refuse(write(u"half.png"_s, read(u"whole.png"_s).chopped(60)), broken);
  refuse(u"/dev/zero"_s, "larger than 256 MiB");
}

TEST_F(Program, RefusesSignsThatItCannotRead) {
  const auto refuse = [&](const QString& file, const QByteArray& reason) {
    const Outcome outcome = render({u"--sign"_s, file});
    EXPECT_EQ(outcome.status, 1);
    const QByteArray start = "zqticker: --sign " + file.toUtf8() + ": " + reason;
    EXPECT_TRUE(outcome.errors.startsWith(start)) << outcome.errors.constData();
    EXPECT_EQ(outcome.errors.count('\n'), 1);
    EXPECT_FALSE(QFile::exists(path(u"out.png"_s)));
  };
  refuse(path(u"nosuch.sign"_s), "cannot read: No such file or directory");
  refuse(write(u"text.sign"_s, "no archive"), "");
  refuse(write(u"empty.sign"_s, {}), "");
  refuse(write(u"string.sign"_s, KeyedArchiver::archivedDataWithRootObject(Any(u"text"_s))),
         "holds a value that is no sign, not a sign that can be shown");
  refuse(write(u"font.sign"_s,
               KeyedArchiver::archivedDataWithRootObject(Font::fontWithName(u"Sans"_s, 12))),
         "holds an object of class Font, not a sign that can be shown");
  refuse(write(u"base.sign"_s,
               KeyedArchiver::archivedDataWithRootObject(std::make_shared<ZQTickerSign>())),
         "holds an object of class ZQTickerSign, not a sign that can be shown");
  const QByteArray whole =
      KeyedArchiver::archivedDataWithRootObject(ZQTextTickerSign::make(u"text"_s));
  refuse(write(u"half.sign"_s, whole.left(whole.size() / 2)), "");
}

TEST_F(Program, RefusesArchivesOfHostileShape) {
  const QByteArray head =
      "<plist><dict><key>$version</key><integer>100000</integer><key>$archiver</key>"
      "<string>NSKeyedArchiver</string><key>$top</key><dict><key>root</key><dict><key>CF$UID</key>"
      "<integer>1</integer></dict></dict><key>$objects</key><array><string>$null</string>";
  const auto uid = [](int number) -> QByteArray {
    return "<dict><key>CF$UID</key><integer>" + QByteArray::number(number) + "</integer></dict>";
  };
  const auto classNamed = [](const QByteArray& name) -> QByteArray {
    return "<dict><key>$classname</key><string>" + name +
           "</string><key>$classes</key><array>"
           "<string>" +
           name + "</string></array></dict>";
  };
  const QByteArray tail = "</array></dict></plist>";
  const QByteArray combo = "<dict><key>$class</key>" + uid(2) + "<key>ZQText</key>";

  // The sign as its own text; a text nested five thousand lists deep; a class that nobody knows.
  const QByteArray cyclic =
      head + combo + uid(1) + "</dict>" + classNamed("ZQComboTickerSign") + tail;
  QByteArray deep =
      head + combo + uid(4) + "</dict>" + classNamed("ZQComboTickerSign") + classNamed("NSArray");
  for (int i = 0; i < 5000; ++i)
    deep += "<dict><key>$class</key>" + uid(3) + "<key>NS.objects</key><array>" + uid(5 + i) +
            "</array></dict>";
  deep += "<string>x</string>" + tail;
  const QByteArray unknown = head + combo + uid(1) + "</dict>" + classNamed("XYNoSuchClass") + tail;
  for (const QByteArray& archive : {cyclic, deep, unknown}) {
    const QString file = write(u"hostile.sign"_s, archive);
    const Outcome outcome = render({u"--sign"_s, file});
    EXPECT_EQ(outcome.status, 1);
    const QByteArray start = "zqticker: --sign " + file.toUtf8() + ": ";
    EXPECT_TRUE(outcome.errors.startsWith(start));
    EXPECT_EQ(outcome.errors.count('\n'), 1) << outcome.errors.constData();
    EXPECT_LT(outcome.errors.size(), 1000);
  }
}

TEST_F(Program, RefusesUnknownFonts) {
  expectFailure(render({u"--text"_s, u"a"_s, u"--font"_s, u"No Such Font 12"_s}), 1,
                "--font No Such Font 12: unknown font");
  expectFailure(render({u"--text"_s, u"a"_s, u"--font"_s, u"DejaVu Sans 0"_s}), 2,
                "--font DejaVu Sans 0: the size must be above 0 and at most 10000");
  expectFailure(runZqticker({u"sign"_s, u"--text"_s, u"a"_s, u"--font"_s, u"No Such Font"_s,
                             u"--output"_s, path(u"out.png"_s)}),
                1, "--font No Such Font: unknown font");
}

TEST_F(Program, RefusesPlacesWhereItCannotWrite) {
  expectFailure(
      runZqticker({u"render"_s, u"--text"_s, u"a"_s, u"--output"_s, path(u"nosuch/out.png"_s)}), 1,
      "--output " + path(u"nosuch/out.png"_s).toUtf8() +
          ": cannot write out.png: No such file or directory");
  expectFailure(
      runZqticker({u"sign"_s, u"--text"_s, u"a"_s, u"--output"_s, path(u"nosuch/a.sign"_s)}), 1,
      "--output " + path(u"nosuch/a.sign"_s).toUtf8() +
          ": cannot write: No such file or directory");
  write(u"file"_s, "x");
  const Outcome outcome =
      runZqticker({u"render"_s, u"--text"_s, u"a"_s, u"--output"_s, path(u"file/frames"_s)});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "zqticker: --output " + path(u"file/frames"_s).toUtf8() +
                                ": cannot make the folder " + path(u"file/frames"_s).toUtf8() +
                                "\n");
}

TEST_F(Program, RendersOnePicture) {
  const Outcome outcome =
      render({u"--image"_s, picture(u"red.png"_s, 16, 16), u"--size"_s, u"200x24"_s});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output + outcome.errors, "");
  const QImage image(path(u"out.png"_s));
  ASSERT_EQ(image.size(), QSize(200, 24));
  EXPECT_EQ(image.pixel(0, 4), qRgb(255, 0, 0)) << "the sign has reached the far edge";
  EXPECT_EQ(image.pixel(15, 19), qRgb(255, 0, 0));
  EXPECT_EQ(image.pixel(16, 12), qRgb(255, 255, 255));
  EXPECT_EQ(image.pixel(0, 3), qRgb(255, 255, 255));
  EXPECT_EQ(image.pixel(0, 20), qRgb(255, 255, 255));
}

TEST_F(Program, RendersTheSameBytesEveryTime) {
  const QString red = picture(u"red.png"_s, 16, 16);
  for (const QString& direction : {u"left"_s, u"right"_s, u"up"_s, u"down"_s}) {
    QByteArray first;
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(render({u"--text"_s, u"Hello, Ägypten"_s, u"--combo"_s, red, u"नमस्ते"_s,
                        u"--direction"_s, direction, u"--size"_s, u"200x100"_s, u"--frames"_s,
                        u"20"_s, u"--fps"_s, u"10"_s, u"--scale"_s, u"1.5"_s, u"--start"_s, u"1"_s})
                    .status,
                0);
      const QByteArray bytes = read(u"out.png"_s);
      ASSERT_FALSE(bytes.isEmpty());
      if (i == 0)
        first = bytes;
      EXPECT_EQ(bytes, first);
    }
  }
}

TEST_F(Program, RendersTheSameOnEveryDesktop) {
  const QStringList arguments{u"render"_s, u"--text"_s, u"Hello"_s, u"--output"_s,
                              path(u"out.png"_s)};
  ASSERT_EQ(runZqticker(arguments).status, 0);
  const QByteArray plain = read(u"out.png"_s);
  QProcessEnvironment other = plainEnvironment();
  other.insert(u"QT_SCALE_FACTOR"_s, u"2"_s);
  other.insert(u"QT_FONT_DPI"_s, u"192"_s);
  other.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
  other.insert(u"DISPLAY"_s, u":nowhere"_s);
  other.insert(u"LC_ALL"_s, u"C"_s);
  ASSERT_EQ(runZqticker(arguments, {}, other).status, 0);
  EXPECT_EQ(read(u"out.png"_s), plain);
}

TEST_F(Program, RendersFramesIntoAFolder) {
  const QString red = picture(u"red.png"_s, 16, 24);
  const Outcome outcome =
      runZqticker({u"render"_s, u"--image"_s, red, u"--size"_s, u"200x24"_s, u"--frames"_s, u"12"_s,
                   u"--fps"_s, u"10"_s, u"--speed"_s, u"50"_s, u"--output"_s, path(u"a/frames"_s)});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "") << "no progress where there is no terminal";
  const QDir frames(path(u"a/frames"_s));
  EXPECT_EQ(frames.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 12);
  for (int i = 0; i < 12; ++i) {
    const QImage image(frames.filePath(u"frame-%1.png"_s.arg(i + 1, 6, 10, QLatin1Char('0'))));
    ASSERT_EQ(image.size(), QSize(200, 24)) << i;
    // 5 points a frame.
    const int lead = 200 - 5 * i;
    if (i > 0) {
      EXPECT_EQ(image.pixel(lead, 12), qRgb(255, 0, 0)) << i;
    }
    EXPECT_EQ(image.pixel(lead - 1, 12), qRgb(255, 255, 255)) << i;
  }
}

TEST_F(Program, RendersASingleFrameIntoAFolderLikeASinglePicture) {
  const QStringList arguments{u"render"_s, u"--text"_s, u"Hello"_s, u"--output"_s};
  ASSERT_EQ(runZqticker(arguments + QStringList{path(u"out.png"_s)}).status, 0);
  ASSERT_EQ(runZqticker(arguments + QStringList{path(u"frames"_s)}).status, 0);
  EXPECT_EQ(read(u"frames/frame-000001.png"_s), read(u"out.png"_s));
}

TEST_F(Program, RendersFramesBelowOneAnother) {
  EXPECT_EQ(render({u"--image"_s, picture(u"red.png"_s, 16, 24), u"--size"_s, u"200x24"_s,
                    u"--frames"_s, u"3"_s, u"--fps"_s, u"1"_s, u"--speed"_s, u"50"_s})
                .status,
            0);
  const QImage image(path(u"out.png"_s));
  ASSERT_EQ(image.size(), QSize(200, 72));
  EXPECT_EQ(image.pixel(199, 12), qRgb(255, 255, 255)) << "begins outside";
  EXPECT_EQ(image.pixel(150, 36), qRgb(255, 0, 0));
  EXPECT_EQ(image.pixel(100, 60), qRgb(255, 0, 0));
  EXPECT_TRUE(QFile::remove(path(u"out.png"_s)));
  expectFailure(runZqticker({u"render"_s, u"--text"_s, u"a"_s, u"--frames"_s, u"1000000"_s,
                             u"--output"_s, path(u"sheet.png"_s)}),
                1,
                "--output " + path(u"sheet.png"_s).toUtf8() +
                    ": 1000000 frames of 800 x 24 pixels are too large for one picture; give a "
                    "folder");
}

TEST_F(Program, LeavesOnlyWholeFramesWhereItIsInterrupted) {
  RunningProgram program({u"render"_s, u"--text"_s, u"Hello"_s, u"--frames"_s, u"1000000"_s,
                          u"--output"_s, path(u"frames"_s)},
                         plainEnvironment());
  ASSERT_TRUE(waitUntil([&] { return QFile::exists(path(u"frames/frame-000003.png"_s)); }));
  program.interrupt(SIGINT);
  EXPECT_EQ(program.awaitStatus(), 1);
  EXPECT_TRUE(program.process().readAllStandardError().contains(": interrupted after "));
  const QDir frames(path(u"frames"_s));
  for (const QString& name :
       frames.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
    EXPECT_FALSE(QImage(frames.filePath(name)).isNull()) << name.toStdString();
}

TEST_F(Program, ShowsProgressOnATerminal) {
  if (!XServer::hasProgram(u"script"_s))
    GTEST_SKIP() << "script is not installed";
  QProcess terminal;
  terminal.setProcessEnvironment(plainEnvironment());
  terminal.start(u"script"_s, {u"-qec"_s,
                               QStringLiteral(ZQTICKER_PROGRAM) +
                                   u" render --text a --frames 20 --output "_s + path(u"frames"_s),
                               u"/dev/null"_s});
  ASSERT_TRUE(terminal.waitForFinished());
  const QByteArray shown = terminal.readAllStandardOutput();
  EXPECT_TRUE(shown.contains("] 20/20")) << shown.constData();
  EXPECT_TRUE(shown.endsWith("\r\x1b[K")) << "and takes it away at the end";
}

TEST_F(Program, RefusesFramesThatAreTooLarge) {
  expectFailure(render({u"--text"_s, u"a"_s, u"--size"_s, u"16000x10000"_s, u"--scale"_s, u"16"_s}),
                1, "--size, --scale: frames of 256000 x 160000 pixels are too large");
}

TEST_F(Program, RendersFramesOfOnePixel) {
  EXPECT_EQ(render({u"--text"_s, u"a"_s, u"--size"_s, u"1x1"_s, u"--scale"_s, u"0.1"_s}).status, 0);
  EXPECT_EQ(QImage(path(u"out.png"_s)).size(), QSize(1, 1));
}

TEST_F(Program, TakesTransparentBackgrounds) {
  EXPECT_EQ(
      render({u"--text"_s, u"a"_s, u"--background"_s, u"#400000ff"_s, u"--start"_s, u"0"_s}).status,
      0);
  EXPECT_EQ(QImage(path(u"out.png"_s)).pixel(10, 10), qRgba(0, 0, 255, 64));
}

TEST_F(Program, RendersLinesOfStandardInput) {
  EXPECT_EQ(render({u"--stdin"_s, u"--size"_s, u"400x24"_s}, "one\ntwo\n").status, 0);
  const QByteArray lines = read(u"out.png"_s);
  EXPECT_EQ(render({u"--text"_s, u"one"_s, u"--text"_s, u"two"_s, u"--size"_s, u"400x24"_s}).status,
            0);
  EXPECT_EQ(lines, read(u"out.png"_s));
}

TEST_F(Program, SurvivesAnyBytesOnStandardInput) {
  QByteArray bytes;
  for (int i = 0; i < 65'536; ++i)
    bytes += static_cast<char>((i * 2654435761u) >> 13);
  bytes += QByteArray(3'000'000, 'x');
  const Outcome outcome =
      render({u"--stdin"_s, u"--frames"_s, u"3"_s, u"--fps"_s, u"0.1"_s}, bytes);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(Program, KeepsTheOrderOfTheCommandLine) {
  const QString red = picture(u"red.png"_s, 20, 24, Qt::red);
  const QString blue = picture(u"blue.png"_s, 20, 24, Qt::blue);
  EXPECT_EQ(
      render({u"--image"_s, blue, u"--image"_s, red, u"--image"_s, blue, u"--size"_s, u"200x24"_s})
          .status,
      0);
  const QImage image(path(u"out.png"_s));
  EXPECT_EQ(image.pixel(10, 12), qRgb(0, 0, 255));
  EXPECT_EQ(image.pixel(42, 12), qRgb(255, 0, 0));
  EXPECT_EQ(image.pixel(74, 12), qRgb(0, 0, 255));
}

TEST_F(Program, GivesTextTheFontAndTheColorAskedFor) {
  EXPECT_EQ(render({u"--text"_s, u"\u2588\u2588\u2588"_s, u"--color"_s, u"#00ff00"_s, u"--font"_s,
                    u"DejaVu Sans 20"_s, u"--width"_s, u"100"_s})
                .status,
            0);
  const QImage image(path(u"out.png"_s));
  const auto font = Font::fontWithName(u"DejaVu Sans"_s, 20);
  EXPECT_EQ(image.height(), std::ceil(font->lineHeight() / 0.8)) << "the strip follows the font";
  EXPECT_EQ(image.pixel(5, image.height() / 2), qRgb(0, 255, 0));
}

TEST_F(Program, ScalesTextToTheStripWhereAsked) {
  const auto inkHeight = [&](const QStringList& more) {
    EXPECT_EQ(render(QStringList{u"--text"_s, u"|"_s, u"--size"_s, u"100x60"_s, u"--font"_s,
                                 u"DejaVu Sans 10"_s} +
                     more)
                  .status,
              0);
    const QImage image(path(u"out.png"_s));
    int rows = 0;
    for (int y = 0; y < image.height(); ++y) {
      bool isInk = false;
      for (int x = 0; x < 40; ++x)
        isInk |= qGray(image.pixel(x, y)) < 128;
      rows += isInk;
    }
    return rows;
  };
  const int plain = inkHeight({});
  const double factor = 60 / Font::fontWithName(u"DejaVu Sans"_s, 10)->lineHeight();
  EXPECT_NEAR(inkHeight({u"--autoscale"_s}), plain * factor, factor + 1);
}

TEST_F(Program, ShowsSignsAsOftenAsTheirArchivesSay) {
  // A picture that crosses in 2.2 seconds, seen after one round, after two and after three.
  const auto isShownAt = [&](const QStringList& arguments, const QString& start) {
    EXPECT_EQ(render(arguments + QStringList{u"--size"_s, u"200x24"_s, u"--speed"_s, u"100"_s,
                                             u"--start"_s, start})
                  .status,
              0);
    const QImage image(path(u"out.png"_s));
    for (int x = 0; x < image.width(); ++x)
      if (image.pixel(x, 12) != qRgb(255, 255, 255))
        return true;
    return false;
  };
  const QString red = picture(u"red.png"_s, 8, 24);
  for (const QString& count : {QString(), u"2"_s, u"forever"_s}) {
    QStringList arguments{u"sign"_s, u"--image"_s, red, u"--output"_s, path(u"a.sign"_s)};
    if (!count.isEmpty())
      arguments += {u"--loop"_s, count};
    ASSERT_EQ(runZqticker(arguments).status, 0);
    const QStringList shown{u"--sign"_s, path(u"a.sign"_s)};
    EXPECT_TRUE(isShownAt(shown, u"1"_s));
    EXPECT_EQ(isShownAt(shown, u"3"_s), !count.isEmpty()) << count.toStdString();
    EXPECT_EQ(isShownAt(shown, u"5.5"_s), count == "forever"_L1) << count.toStdString();
  }
  EXPECT_TRUE(isShownAt({u"--sign"_s, path(u"a.sign"_s), u"--loop"_s, u"2"_s}, u"3"_s));
  EXPECT_FALSE(isShownAt({u"--sign"_s, path(u"a.sign"_s), u"--loop"_s, u"2"_s}, u"5.5"_s));
  EXPECT_TRUE(isShownAt({u"--image"_s, red}, u"21"_s)) << "for ever without --loop";
  EXPECT_FALSE(isShownAt({u"--image"_s, red, u"--delay"_s, u"10"_s}, u"5"_s));
  EXPECT_TRUE(isShownAt({u"--image"_s, red, u"--delay"_s, u"10"_s}, u"13.2"_s));
}

TEST_F(Program, WritesSignsThatReadBack) {
  const QString red = picture(u"red.png"_s, 10, 10);
  const auto written = [&](const QStringList& arguments) {
    const Outcome outcome =
        runZqticker(QStringList{u"sign"_s, u"--output"_s, path(u"a.sign"_s)} + arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.errors.constData();
    EXPECT_EQ(outcome.output + outcome.errors, "");
    return KeyedUnarchiver::unarchiveObjectWithData(read(u"a.sign"_s));
  };
  const auto text = objectOf<ZQTextTickerSign>(
      written({u"--text"_s, u"Grüße"_s, u"--font"_s, u"DejaVu Sans 18"_s, u"--color"_s, u"red"_s,
               u"--loop"_s, u"3"_s, u"--delay"_s, u"1.5"_s, u"--continuous"_s, u"--identifier"_s,
               u"id"_s, u"--action"_s, u"https://example.org/"_s}));
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(text->text()->string(), u"Grüße"_s);
  const auto font = objectOf<Font>(text->text()->attributeAtIndex(FontAttributeName, 0));
  ASSERT_NE(font, nullptr);
  EXPECT_EQ(font->fontName(), u"DejaVu Sans"_s);
  EXPECT_EQ(font->pointSize(), 18);
  const auto color =
      objectOf<Color>(text->text()->attributeAtIndex(ForegroundColorAttributeName, 0));
  ASSERT_NE(color, nullptr);
  EXPECT_EQ(color->qColor(), QColor(Qt::red));
  EXPECT_EQ(text->loopCount(), 3);
  EXPECT_EQ(text->loopDelay(), 1.5);
  EXPECT_TRUE(text->continuousScrolling());
  EXPECT_EQ(text->identifier(), u"id"_s);
  EXPECT_EQ(text->actionType(), 1);
  EXPECT_EQ(text->actionString(), u"https://example.org/"_s);

  const auto image = objectOf<ZQImageTickerSign>(written({u"--image"_s, red}));
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(objectOf<ZQTextTickerSign>(any(image)), nullptr);
  EXPECT_EQ(image->size(), QSizeF(10, 10));
  EXPECT_EQ(image->loopCount(), 0);

  const auto combo = objectOf<ZQComboTickerSign>(written({u"--image"_s, red, u"--text"_s, u"a"_s}));
  ASSERT_NE(combo, nullptr);
  EXPECT_EQ(combo->text().toString(), u"a"_s);
  ASSERT_NE(combo->image(), nullptr);
  EXPECT_EQ(entries(), (QStringList{u"a.sign"_s, u"red.png"_s})) << "nothing else is left";
}

TEST_F(Program, KeepsAnOldSignWhereWritingANewOneFails) {
  write(u"a.sign"_s, "old");
  EXPECT_EQ(runZqticker(
                {u"sign"_s, u"--image"_s, path(u"nosuch.png"_s), u"--output"_s, path(u"a.sign"_s)})
                .status,
            1);
  EXPECT_EQ(read(u"a.sign"_s), "old");
}

TEST_F(Program, RendersWhereThereIsNoDisplay) {
  QProcessEnvironment environment = plainEnvironment();
  environment.insert(u"TMPDIR"_s, folder_.path());
  QProcessEnvironment deaf = environment;
  deaf.insert(u"DISPLAY"_s, u":54321"_s);
  for (const QProcessEnvironment& each : {environment, deaf}) {
    const Outcome outcome = runZqticker({u"--text"_s, u"Hello"_s}, {}, each);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors.count('\n'), 1) << outcome.errors.constData();
    const bool isDeaf = each.contains(u"DISPLAY"_s);
    const QByteArray start = isDeaf ? "zqticker: display :54321 does not answer: rendered 100 "
                                      "frames into "
                                    : "zqticker: no display: rendered 100 frames into ";
    ASSERT_TRUE(outcome.errors.startsWith(start)) << outcome.errors.constData();
    const QString folder = QString::fromUtf8(outcome.errors.mid(start.size()).trimmed());
    EXPECT_TRUE(folder.startsWith(folder_.path()));
    EXPECT_EQ(QDir(folder).entryList(QDir::Files).size(), 100);
  }
}

TEST_F(Program, LeavesNoFolderBehindWhereItFailsWithoutADisplay) {
  QProcessEnvironment environment = plainEnvironment();
  environment.insert(u"TMPDIR"_s, folder_.path());
  const Outcome outcome = runZqticker({u"--image"_s, path(u"nosuch.png"_s)}, {}, environment);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(entries().filter(u"zqticker"_s), QStringList());
}

TEST_F(Program, RendersWhatAnEndlessStandardInputHasSaidSoFar) {
  QProcessEnvironment environment = plainEnvironment();
  environment.insert(u"TMPDIR"_s, folder_.path());
  QByteArray lines;
  for (int i = 0; i < 2000; ++i)
    lines += QByteArray::number(i) + '\n';
  RunningProgram program({u"--stdin"_s}, environment);
  // The writer stays.
  program.process().write(lines);
  EXPECT_EQ(program.awaitStatus(), 0);
}
