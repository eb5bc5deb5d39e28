// Contact sheets as a user asks for them.
#include "tests/app/AppearanceCommand.h"
#include "tests/app/shipped_looks.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"

#include <QtGui/QImage>

using namespace zq::app::testing;
using namespace zq::platform;

namespace {

class AppearancePreview : public AppearanceCommand {
 protected:
  QString light() const { return fileOfLook("light"); }
};

} // namespace

TEST_F(AppearancePreview, WritesASheetForEachScale) {
  const Outcome outcome = run({u"preview"_s, light(), u"--output"_s, path(u"sheet.png"_s)});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output + outcome.errors, "");
  EXPECT_EQ(entries(), (QStringList{u"sheet.png"_s, u"sheet@2x.png"_s}));
  const QImage plain(path(u"sheet.png"_s));
  const QImage fine(path(u"sheet@2x.png"_s));
  EXPECT_GT(plain.width(), 600);
  EXPECT_LT(plain.width(), 1400) << "it fits on a screen";
  EXPECT_LT(plain.height(), 1000);
  EXPECT_EQ(fine.size(), plain.size() * 2);
  EXPECT_FALSE(plain.hasAlphaChannel());
}

TEST_F(AppearancePreview, WritesOneSheetWhereAScaleIsAskedFor) {
  ASSERT_EQ(run({u"preview"_s, light(), u"--output"_s, path(u"both.png"_s)}).status, 0);
  for (const auto& [scale, name] :
       {std::pair{u"1"_s, u"both.png"_s}, std::pair{u"2"_s, u"both@2x.png"_s}}) {
    const Outcome outcome = run({u"preview"_s, light(), u"--scale"_s, scale, u"--output"_s,
                                 path(u"picture of any name"_s)});
    EXPECT_EQ(outcome.status, 0) << outcome.errors.constData();
    EXPECT_EQ(contentsOf(path(u"picture of any name"_s)), contentsOf(path(name)));
  }
  EXPECT_EQ(entries().size(), 3);
}

TEST_F(AppearancePreview, KnowsPngFilesByTheirEndingInAnyCase) {
  EXPECT_EQ(run({u"preview"_s, light(), u"--output"_s, path(u"a.b.PNG"_s)}).status, 0);
  EXPECT_EQ(entries(), (QStringList{u"a.b.PNG"_s, u"a.b@2x.PNG"_s}));
}

TEST_F(AppearancePreview, HasTheBackgroundThatIsAskedFor) {
  const auto corner = [&](const QStringList& more) {
    EXPECT_EQ(run(QStringList{u"preview"_s, light(), u"--scale"_s, u"1"_s, u"--output"_s,
                              path(u"sheet.png"_s)} +
                  more)
                  .status,
              0);
    return QImage(path(u"sheet.png"_s)).pixelColor(0, 0);
  };
  EXPECT_GT(corner({}).lightness(), 200) << "light buttons";
  EXPECT_EQ(corner({u"--background"_s, u"#102030"_s}), QColor(0x10, 0x20, 0x30));
  EXPECT_EQ(corner({u"--background"_s, u"#80000000"_s}), QColor(0x7f, 0x7f, 0x7f))
      << "in front of white";
}

TEST_F(AppearancePreview, IsTheSameWhateverTheDesktopIs) {
  const QStringList arguments{u"preview"_s, light(), u"--scale"_s, u"1"_s, u"--output"_s};
  ASSERT_EQ(run(arguments + QStringList{path(u"plain.png"_s)}).status, 0);
  QProcessEnvironment environment = plainEnvironment();
  environment.insert(u"DISPLAY"_s, u":no-such-display"_s);
  environment.insert(u"QT_SCALE_FACTOR"_s, u"3"_s);
  environment.insert(u"QT_FONT_DPI"_s, u"192"_s);
  ASSERT_EQ(
      runZqticker(QStringList{u"appearance"_s} + arguments + QStringList{path(u"other.png"_s)}, {},
                  environment)
          .status,
      0);
  EXPECT_EQ(contentsOf(path(u"plain.png"_s)), contentsOf(path(u"other.png"_s)));
}

TEST_F(AppearancePreview, DrawsForeignFilesWhateverTheyHold) {
  for (const auto& name : {u"complete.button"_s, u"complete.xml.button"_s, u"without-keys.button"_s,
                           u"unknown-numbers.button"_s, u"not-a-number.button"_s}) {
    SCOPED_TRACE(name.toStdString());
    const QString file = write(name, golden(name));
    const Outcome outcome = run({u"preview"_s, file, u"--output"_s, path(u"sheet.png"_s)});
    EXPECT_EQ(outcome.status, 0) << outcome.errors.constData();
    EXPECT_EQ(outcome.errors, "");
    EXPECT_FALSE(QImage(path(u"sheet.png"_s)).isNull());
  }
}

TEST_F(AppearancePreview, RefusesFilesThatHoldNoAppearance) {
  const QString output = write(u"sheet.png"_s, "before");
  const auto refuse = [&](const QByteArray& contents, const QByteArray& reason) {
    const QString file = write(u"bad.button"_s, contents);
    expectFailure(run({u"preview"_s, file, u"--output"_s, output}), 1,
                  file.toUtf8() + ": " + reason);
  };
  refuse("", "");
  refuse("no archive", "");
  refuse(golden(u"complete.button"_s).chopped(100), "");
  refuse(golden(u"broken-root-is-a-color.button"_s),
         "root: expected ZQRollOverButtonAppearance, found NSColor");
  refuse(golden(u"broken-color-of-unknown-space.button"_s),
         "root.zq_frameColor.NSColorSpace: unknown colour space 42");
  refuse(KeyedArchiver::archivedDataWithRootObject(Any()), "holds nothing, not an appearance");
  expectFailure(run({u"preview"_s, path(u"nosuch"_s), u"--output"_s, output}), 1,
                path(u"nosuch"_s).toUtf8() + ": cannot read: No such file or directory");
  EXPECT_EQ(contentsOf(output), "before");
  EXPECT_EQ(entries(), (QStringList{u"bad.button"_s, u"sheet.png"_s}));
}

TEST_F(AppearancePreview, RefusesPlacesWhereItCannotWrite) {
  expectFailure(run({u"preview"_s, light(), u"--output"_s, path(u"no/sheet.png"_s)}), 1,
                "--output " + path(u"no/sheet.png"_s).toUtf8() +
                    ": cannot write: No such file or directory");
}

TEST_F(AppearancePreview, WritesNeitherSheetWhereOneCannotBeWritten) {
  const QString output = write(u"sheet.png"_s, "before");
  ASSERT_TRUE(QDir().mkpath(path(u"sheet@2x.png"_s)));
  expectFailure(run({u"preview"_s, light(), u"--output"_s, output}), 1,
                "--output " + path(u"sheet@2x.png"_s).toUtf8() + ": cannot write: ");
  EXPECT_EQ(contentsOf(output), "before");
  EXPECT_EQ(entries(), (QStringList{u"sheet.png"_s, u"sheet@2x.png"_s}));
}

TEST_F(AppearancePreview, RefusesWrongCommandLines) {
  const QString output = path(u"sheet.png"_s);
  expectFailure(run({u"preview"_s}), 2, "FILE: missing (see zqticker appearance preview --help)");
  expectFailure(run({u"preview"_s, u""_s, u"--output"_s, output}), 2, "the file name is empty");
  expectFailure(run({u"preview"_s, light()}), 2, "--output: missing; say which file to write");
  for (const auto& name : {u"sheet"_s, u"sheet.jpg"_s, u".png"_s, u"png"_s})
    expectFailure(run({u"preview"_s, light(), u"--output"_s, path(name)}), 2,
                  "--output " + path(name).toUtf8() +
                      ": must end with .png where --scale is left out");
  for (const auto& scale : {u"0"_s, u"5"_s, u"-1"_s})
    expectFailure(run({u"preview"_s, light(), u"--output"_s, output, u"--scale"_s, scale}), 2,
                  "--scale " + scale.toUtf8() + ": must be between 1 and 4");
  expectFailure(run({u"preview"_s, light(), u"--output"_s, output, u"--scale"_s, u"1.5"_s}), 2,
                "--scale 1.5: not a whole number");
  expectFailure(run({u"preview"_s, light(), u"--output"_s, output, u"--background"_s, u"wite"_s}),
                2, "--background wite: not a color (write a name such as navy");
  EXPECT_EQ(entries(), QStringList());
}
