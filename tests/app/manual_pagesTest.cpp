// Manual pages, read as man reads them.
#include "app/commands/manual_pages.h"

#include "app/commands/ManualPage.h"
#include "tests/app/Program.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
constexpr int PatienceMilliseconds = 100'000;

bool isInstalled(const QString& program) {
  return !QStandardPaths::findExecutable(program).isEmpty();
}

struct Shown {
  QString text;
  QByteArray warnings;
};

// What `program` makes of a page on its standard input.
Shown shownBy(const QString& program, const QStringList& arguments, const QByteArray& page) {
  QProcess process;
  QProcessEnvironment environment = plainEnvironment();
  environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
  environment.insert(u"MANWIDTH"_s, u"80"_s);
  environment.insert(u"MANPAGER"_s, u"cat"_s);
  process.setProcessEnvironment(environment);
  process.start(program, arguments);
  process.write(page);
  process.closeWriteChannel();
  EXPECT_TRUE(process.waitForFinished(PatienceMilliseconds)) << program.toStdString();
  EXPECT_EQ(process.exitCode(), 0) << program.toStdString();
  return {QString::fromUtf8(process.readAllStandardOutput()), process.readAllStandardError()};
}

Shown shownByGroff(const QByteArray& page) {
  return shownBy(u"groff"_s, {u"-man"_s, u"-ww"_s, u"-Tutf8"_s, u"-P-cbou"_s}, page);
}

// Without what typesetting changes: where lines break, and typographic letters.
QString plain(QString text) {
  text.replace(QChar(0x2212), u'-').replace(QChar(0x2010), u'-').remove(u'`');
  return text.simplified();
}

std::vector<std::pair<QString, QByteArray>> allPages() {
  std::vector<std::pair<QString, QByteArray>> pages{{u"zqticker"_s, programManualPage()}};
  for (const Command& command : allCommands())
    pages.emplace_back(manualPageName(command), manualPage(command));
  return pages;
}
} // namespace

TEST(ManualPages, AreSetWithoutAWarning) {
  if (!isInstalled(u"groff"_s))
    GTEST_SKIP() << "groff is not installed";
  for (const auto& [name, page] : allPages())
    EXPECT_EQ(shownByGroff(page).warnings, "") << name.toStdString();
  EXPECT_NE(shownByGroff(".TH A 1\n.SH NAME\n.NOSUCH\n").warnings, "") << "would tell";
}

TEST(ManualPages, AreShownByManWithoutAWarning) {
  if (!isInstalled(u"man"_s))
    GTEST_SKIP() << "man is not installed";
  for (const auto& [name, page] : allPages()) {
    const Shown shown = shownBy(u"man"_s, {u"--warnings"_s, u"-l"_s, u"-"_s}, page);
    EXPECT_EQ(shown.warnings, "") << name.toStdString();
    EXPECT_TRUE(shown.text.contains(u"NAME"_s)) << name.toStdString();
  }
}

TEST(ManualPages, PassTheLintOfMandoc) {
  if (!isInstalled(u"mandoc"_s))
    GTEST_SKIP() << "mandoc is not installed";
  for (const auto& [name, page] : allPages()) {
    QProcess process;
    process.start(u"mandoc"_s, {u"-Tlint"_s, u"-Wwarning"_s});
    process.write(page);
    process.closeWriteChannel();
    ASSERT_TRUE(process.waitForFinished(PatienceMilliseconds));
    for (const QByteArray& line : process.readAllStandardOutput().split('\n'))
      // Pages are the same whenever they are made.
      EXPECT_TRUE(line.isEmpty() || line.contains("missing date"))
          << name.toStdString() << line.constData();
  }
}

TEST(ManualPages, SayAllThatHelpSays) {
  if (!isInstalled(u"groff"_s))
    GTEST_SKIP() << "groff is not installed";
  for (const Command& command : allCommands()) {
    const OptionTable& table = *command.table;
    const QString text = plain(shownByGroff(manualPage(command)).text);
    const auto expectText = [&](const QString& part) {
      EXPECT_TRUE(text.contains(plain(part)))
          << table.command.toStdString() << ": " << part.toStdString();
    };
    expectText(u"NAME "_s + manualPageName(command) + u" - "_s + table.brief + u" SYNOPSIS"_s);
    expectText(table.summary);
    for (const OptionSpec& spec : table.options) {
      const QString values = spec.values.join(u' ');
      const QString shownValues = spec.isValueOptional ? QString(u'[' + values + u']') : values;
      expectText(u"--"_s + spec.name + u' ' + shownValues + u' ' + spec.fullHelp());
    }
    for (const QString& note : table.notes)
      expectText(note);
    for (const QString& example : table.examples)
      expectText(example);
    for (const auto& entries : {table.keys, table.environment, table.files})
      for (const NamedText& entry : entries)
        expectText(entry.name + u' ' + entry.text);
    expectText(u"EXIT STATUS 0"_s);
    expectText(table.exitStatus);
    EXPECT_FALSE(text.contains(u"Exit status"_s)) << "has a section";
    expectText(u"SEE ALSO zqticker(1)"_s);
  }
}

TEST(ManualPages, OfTheProgramListsEveryCommandUnderItsGroup) {
  const QByteArray page = programManualPage();
  for (const Command& command : allCommands()) {
    EXPECT_TRUE(
        page.contains(QByteArray(".BR " + roffText(manualPageName(command)).toLatin1() + " (1)")));
    EXPECT_TRUE(
        page.contains(QByteArray("\n\\fB" + roffText(command.name()).toLatin1() + "\\fR\n")));
  }
  for (const OptionSpec& spec : commandsNamed(u"run"_s).front()->table->options)
    if (spec.name != "help"_L1) {
      EXPECT_FALSE(page.contains(QByteArray("\\-\\-" + spec.name.toLatin1() + "\\fR")))
          << "has its own page";
    }
}

TEST(ManualPages, AreAscii) {
  for (const auto& [name, page] : allPages())
    for (const char letter : page)
      ASSERT_TRUE(letter == '\n' || (letter >= 0x20 && letter < 0x7f)) << name.toStdString();
}

TEST(ManualPage, EscapesWhatRoffWouldTake) {
  EXPECT_EQ(roffText(u"a\\nb"_s), u"a\\enb"_s);
  EXPECT_EQ(roffText(u"--speed"_s), u"\\-\\-speed"_s);
  EXPECT_EQ(roffText(u"'\"`^~"_s), u"\\(aq\\(dq\\(ga\\(ha\\(ti"_s);
  EXPECT_EQ(roffText(u"24° … \U0001F600"_s), u"24\\[u00B0] \\[u2026] \\[u1F600]"_s);
  EXPECT_EQ(roffText(u"a\tb\n"_s), u"a b "_s);

  ManualPage page(u"zqticker-x"_s);
  page.section(u"Notes"_s);
  page.paragraph(u".TH is no request, 'tis a text. `run` is bold; one ` is itself."_s);
  page.paragraph(u"`run`."_s);
  page.example(u".hidden"_s, u".dot"_s);
  EXPECT_TRUE(page.bytes().endsWith(".SH \"NOTES\"\n"
                                    "\\&.TH is no request, \\(aqtis a text.\n"
                                    "\\(garun\\(ga is bold; one \\(ga is itself.\n"
                                    ".PP\n\\fBrun\\fR.\n"
                                    ".PP\n\\&.dot\n.RS 4\n.PP\n.nf\n\\&.hidden\n.fi\n.RE\n"))
      << page.bytes().constData();
}

TEST(ManualPage, BreaksLongTextsAtSpacesWhereverTheyStand) {
  ManualPage page(u"x"_s);
  page.section(u"Notes"_s);
  page.paragraph(QString(u".x"_s).leftJustified(76, u'x') + u" .y 'z"_s);
  EXPECT_TRUE(page.bytes().endsWith("x\n\\&.y \\(aqz\n")) << page.bytes().constData();
}

TEST(ManualPages, ArePrintedAndWrittenByTheProgram) {
  EXPECT_EQ(runZqticker({u"help"_s, u"--man"_s}).output, programManualPage());
  const auto feedCheck = commandsNamed(u"feed check"_s);
  ASSERT_EQ(feedCheck.size(), 1U);
  EXPECT_EQ(runZqticker({u"help"_s, u"--man"_s, u"feed"_s, u"check"_s}).output,
            manualPage(*feedCheck.front()));

  QTemporaryDir folder;
  const QString root = folder.filePath(u"share"_s);
  ASSERT_EQ(runZqticker({u"help"_s, u"--documents"_s, root}).status, 0);
  QStringList expected;
  for (const auto& [name, page] : allPages()) {
    expected.append(name + u".1"_s);
    QFile file(root + u"/man/man1/"_s + expected.last());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    EXPECT_EQ(file.readAll(), page);
  }
  expected.sort();
  EXPECT_EQ(QDir(root + u"/man/man1"_s).entryList(QDir::Files, QDir::Name), expected);
  for (const QString& script :
       {u"bash-completion/completions/zqticker"_s, u"zsh/site-functions/_zqticker"_s,
        u"fish/vendor_completions.d/zqticker.fish"_s})
    EXPECT_TRUE(QFile::exists(root + u'/' + script)) << script.toStdString();
}

TEST(ManualPages, AreNotWrittenWhereThatIsNotPossible) {
  QTemporaryDir folder;
  QFile file(folder.filePath(u"file"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  const Outcome outcome = runZqticker({u"help"_s, u"--documents"_s, file.fileName()});
  EXPECT_EQ(outcome.status, 1);
  const QByteArray start =
      "zqticker: --documents " + file.fileName().toUtf8() + ": cannot make the folder ";
  EXPECT_TRUE(outcome.errors.startsWith(start)) << outcome.errors.constData();
  EXPECT_EQ(outcome.errors.count('\n'), 1);
}

TEST(HelpCommand, RefusesWhatCannotStandTogether) {
  const auto errors = [](const QStringList& arguments) {
    const Outcome outcome = runZqticker(QStringList{u"help"_s} + arguments);
    EXPECT_EQ(outcome.status, 2);
    return outcome.errors;
  };
  EXPECT_EQ(errors({u"--man"_s, u"--completion"_s, u"zsh"_s}),
            "zqticker: --man: cannot stand with --completion\n");
  EXPECT_EQ(errors({u"--completion"_s, u"zsh"_s, u"run"_s}),
            "zqticker: --completion: cannot stand with a command\n");
  EXPECT_EQ(errors({u"--documents"_s, u""_s}), "zqticker: --documents: the folder name is empty\n");
  EXPECT_EQ(errors({u"--man"_s, u"rnu"_s}),
            "zqticker: rnu: unknown command; did you mean run? (see zqticker --help)\n");
}
