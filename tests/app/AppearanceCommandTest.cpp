// The command `appearance` as a user meets it.
#include "tests/app/AppearanceCommand.h"
#include "zqticker/platform/archiving/KeyedArchiver.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/rollover/ZQRollOverButtonAppearance.h"

using namespace Qt::StringLiterals;
using namespace zq::app::testing;
using namespace zq::platform;

TEST_F(AppearanceCommand, WhatIsShownMakesTheSameAppearance) {
  for (const auto& name : {u"complete.button"_s, u"complete.xml.button"_s, u"without-keys.button"_s,
                           u"unknown-numbers.button"_s, u"not-a-number.button"_s}) {
    SCOPED_TRACE(name.toStdString());
    const Outcome shown = run({u"show"_s, write(u"foreign.button"_s, golden(name))});
    EXPECT_EQ(shown.status, 0) << shown.errors.constData();
    EXPECT_EQ(shown.errors, "");
    const QString json = write(u"look.json"_s, shown.output);
    const Outcome made = run({u"make"_s, json, u"--output"_s, path(u"own.button"_s)});
    EXPECT_EQ(made.status, 0) << made.errors.constData();
    EXPECT_EQ(made.output, "");
    EXPECT_EQ(run({u"show"_s, path(u"own.button"_s)}).output, shown.output);
  }
}

TEST_F(AppearanceCommand, MakesAFileThatProgramsRead) {
  const QString json =
      write(u"look.json"_s, R"({"controlColor": "#336699", "bezelStyle": 6, "bordered": true})");
  EXPECT_EQ(run({u"make"_s, u"--output"_s, path(u"out.button"_s), json}).status, 0);
  const auto read = ZQRollOverButtonAppearance::appearanceWithDataRepresentation(
      contentsOf(path(u"out.button"_s)));
  EXPECT_TRUE(read->controlColor()->isEqual(*Color::fromName(u"#336699"_s)));
  EXPECT_EQ(read->bezelStyle(), 6U);
  EXPECT_TRUE(read->isBordered());
  EXPECT_EQ(read->frameColor(), nullptr);
}

TEST_F(AppearanceCommand, AWrongDescriptionLeavesTheFileAsItWas) {
  const QString output = write(u"out.button"_s, "before");
  const QString json = write(u"look.json"_s, R"({"frameColor": "blue"})");
  expectFailure(run({u"make"_s, json, u"--output"_s, output}), 1,
                json.toUtf8() + ": frameColor: expected null, \"#rrggbb\"");
  EXPECT_EQ(contentsOf(output), "before");
  EXPECT_EQ(entries(), (QStringList{u"look.json"_s, u"out.button"_s}));
}

TEST_F(AppearanceCommand, NamesAPlaceWhereItCannotWrite) {
  const QString json = write(u"look.json"_s, "{}");
  expectFailure(run({u"make"_s, json, u"--output"_s, path(u"no/out.button"_s)}), 1,
                "--output " + path(u"no/out.button"_s).toUtf8() + ": cannot write: ");
}

TEST_F(AppearanceCommand, RefusesFilesThatHoldNoAppearance) {
  const auto refuse = [&](const QByteArray& contents, const QByteArray& reason) {
    const QString file = write(u"bad.button"_s, contents);
    expectFailure(run({u"show"_s, file}), 1, file.toUtf8() + ": " + reason);
  };
  refuse("", "");
  refuse("no archive", "");
  refuse(golden(u"complete.button"_s).chopped(100), "");
  refuse(golden(u"broken-root-is-a-color.button"_s),
         "root: expected ZQRollOverButtonAppearance, found NSColor");
  refuse(golden(u"broken-color-of-unknown-space.button"_s),
         "root.zq_frameColor.NSColorSpace: unknown colour space 42");
  refuse(KeyedArchiver::archivedDataWithRootObject(Any()), "holds nothing, not an appearance");
  expectFailure(run({u"show"_s, path(u"nosuch"_s)}), 1,
                path(u"nosuch"_s).toUtf8() + ": cannot read: No such file or directory");
  expectFailure(run({u"show"_s, folder_.path()}), 1,
                folder_.path().toUtf8() + ": cannot read: Is a directory");
}

TEST_F(AppearanceCommand, RefusesDescriptionsThatAreTooLarge) {
  const QString json = write(u"large.json"_s, QByteArray((16 << 20) + 1, ' '));
  expectFailure(run({u"make"_s, json, u"--output"_s, path(u"out"_s)}), 1,
                json.toUtf8() + ": larger than 16 MiB");
}

TEST_F(AppearanceCommand, RefusesWrongCommandLines) {
  const QByteArray needed = "appearance: needs \"show\", \"make\" or \"preview\" (see zqticker "
                            "appearance --help)";
  expectFailure(run({}), 2, needed);
  expectFailure(run({u"draw"_s}), 2, needed);
  expectFailure(run({u"show"_s}), 2, "FILE: missing (see zqticker appearance show --help)");
  expectFailure(run({u"show"_s, u"a"_s, u"b"_s}), 2, "b: unexpected argument");
  expectFailure(run({u"show"_s, u""_s}), 2, "the file name is empty");
  expectFailure(run({u"make"_s, u"a"_s}), 2, "--output: missing; say which file to write");
  expectFailure(run({u"show"_s, u"--output"_s, u"x"_s, u"a"_s}), 2, "--output: unknown option");
}

TEST_F(AppearanceCommand, PrintsItsHelp) {
  const QByteArray show = run({u"show"_s, u"--help"_s}).output;
  const QByteArray make = run({u"make"_s, u"-h"_s}).output;
  const QByteArray preview = run({u"preview"_s, u"--help"_s}).output;
  EXPECT_TRUE(show.startsWith("Usage: zqticker appearance show [OPTION]... FILE\n"));
  EXPECT_TRUE(make.startsWith("Usage: zqticker appearance make [OPTION]... FILE\n"));
  EXPECT_TRUE(preview.startsWith("Usage: zqticker appearance preview [OPTION]... FILE\n"));
  for (const QStringList& arguments :
       {QStringList{u"appearance"_s, u"--help"_s}, QStringList{u"help"_s, u"appearance"_s}})
    EXPECT_EQ(runZqticker(arguments).output, show + '\n' + make + '\n' + preview);
  EXPECT_EQ(runZqticker({u"help"_s, u"appearance"_s, u"make"_s}).output, make);
  EXPECT_EQ(runZqticker({u"help"_s, u"appearance"_s, u"preview"_s}).output, preview);
}
