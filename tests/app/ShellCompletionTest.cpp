// Completion as shells do it, with the scripts that the program prints.
#include "app/commands/Command.h"
#include "app/commands/shell_completion.h"
#include "tests/app/Program.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <ostream>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::app;
using namespace zq::app::testing;

namespace {
constexpr int PatienceMilliseconds = 100'000;

const QString TestFolder = QStringLiteral(ZQTICKER_SOURCE_DIR "/tests/app/");
const QString FilesOfReadline = u"compopt -o default"_s;
const QString FoldersOfReadline = u"compopt -o dirnames"_s;

bool isInstalled(const QString& program) {
  return !QStandardPaths::findExecutable(program).isEmpty();
}

// What a shell offers, printed readably.
struct Matches {
  Matches(const QStringList& list) : words(list) {}
  friend bool operator==(const Matches& a, const Matches& b) { return a.words == b.words; }
  friend void PrintTo(const Matches& matches, std::ostream* out) {
    *out << matches.words.join(u' ').toStdString();
  }
  QStringList words;
};

class ShellCompletion : public ::testing::Test {
 protected:
  QString write(const QString& name, const QByteArray& bytes) const {
    QFile file(folder_.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return file.fileName();
  }

  // What a program prints; what it writes to standard error counts as a failure.
  QByteArray outputOf(const QString& program, const QStringList& arguments) const {
    QProcess process;
    QProcessEnvironment environment = plainEnvironment();
    environment.insert(u"HOME"_s, folder_.path());
    for (const QString& name : {u"XDG_CONFIG_HOME"_s, u"XDG_DATA_HOME"_s, u"ZDOTDIR"_s})
      environment.remove(name);
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    environment.insert(u"TERM"_s, u"dumb"_s);
    if (!wordBreaks_.isNull())
      environment.insert(u"WORDBREAKS"_s, wordBreaks_);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder_.path());
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(PatienceMilliseconds)) << program.toStdString();
    EXPECT_EQ(process.readAllStandardError(), "") << arguments.join(u' ').toStdString();
    return process.readAllStandardOutput();
  }

  QStringList linesOf(const QString& program, const QStringList& arguments) const {
    QStringList lines =
        QString::fromUtf8(outputOf(program, arguments)).split(u'\n', Qt::SkipEmptyParts);
    lines.sort();
    return lines;
  }

  // Of words as bash parts them; the last one is being completed.
  Matches bash(const QStringList& words) const {
    return linesOf(u"bash"_s,
                   QStringList{u"--norc"_s, TestFolder + u"complete.bash"_s,
                               write(u"zqticker.bash"_s, bashCompletion()), u"zqticker"_s} +
                       words);
  }

  Matches fish(const QString& line) const {
    const QString script = write(u"zqticker.fish"_s, fishCompletion());
    QStringList words;
    for (const QString& match :
         linesOf(u"fish"_s,
                 {u"--no-config"_s, u"-c"_s, u"source %1; complete -C '%2'"_s.arg(script, line)}))
      words.append(match.section(u'\t', 0, 0));
    return words;
  }

  // Of several lines, in one shell; for each its matches.
  std::vector<Matches> zsh(const QStringList& lines) const {
    write(u"_zqticker"_s, zshCompletion());
    const QByteArray output =
        outputOf(u"zsh"_s, QStringList{u"-f"_s, TestFolder + u"complete.zsh"_s, folder_.path(),
                                       folder_.filePath(u"matches"_s)} +
                               lines);
    std::vector<Matches> matches;
    for (const QString& line : QString::fromUtf8(output).split(u'\n').first(lines.size()))
      matches.emplace_back(line.split(u' ', Qt::SkipEmptyParts));
    return matches;
  }

  QTemporaryDir folder_;
  QString wordBreaks_; // of bash, where they are others than usual
};

QStringList optionsOf(const QString& command) {
  QStringList options;
  for (const OptionSpec& spec : commandsNamed(command).front()->table->options)
    options.append(u"--"_s + spec.name);
  options.sort();
  return options;
}

QStringList firstWordsAnd(QStringList words) {
  for (const Command& command : allCommands())
    words.append(command.name().section(u' ', 0, 0));
  words.removeDuplicates();
  words.sort();
  return words;
}
} // namespace

TEST_F(ShellCompletion, OfBashKnowsCommandsAndTheirOptions) {
  EXPECT_EQ(bash({u""_s}), firstWordsAnd({u"--help"_s, u"--version"_s}));
  EXPECT_EQ(bash({u"fe"_s}), (QStringList{u"feed"_s, u"fetch"_s}));
  EXPECT_EQ(bash({u"feed"_s, u""_s}), QStringList{u"check"_s});
  EXPECT_EQ(bash({u"appearance"_s, u"p"_s}), QStringList{u"preview"_s});
  for (const Command& command : allCommands())
    EXPECT_EQ(bash(command.name().split(u' ') + QStringList{u"--"_s}), optionsOf(command.name()))
        << command.name().toStdString();
  EXPECT_EQ(bash({u"nosuch"_s, u""_s}), QStringList());
  EXPECT_EQ(bash({u"--dir"_s}), QStringList{u"--direction"_s}) << "run is meant";
  EXPECT_EQ(bash({u"--ver"_s}), QStringList{u"--version"_s});
  EXPECT_EQ(bash({u"--text"_s, u"a"_s, u"--ver"_s}), QStringList());
}

TEST_F(ShellCompletion, OfBashTellsOptionsFromTheirValues) {
  EXPECT_EQ(bash({u"--text"_s, u"--image"_s, u"--dir"_s}), QStringList{u"--direction"_s});
  EXPECT_EQ(bash({u"--combo"_s, u"a"_s, u"b"_s, u"--comb"_s}), QStringList{u"--combo"_s});
  EXPECT_EQ(bash({u"--combo"_s, u"a"_s, u"--comb"_s}), QStringList()) << "its text";
  EXPECT_EQ(bash({u"--combo"_s, u"="_s, u"a"_s, u"--comb"_s}), QStringList()) << "its text";
  EXPECT_EQ(bash({u"--clock"_s, u"--dir"_s}), QStringList{u"--direction"_s});
  EXPECT_EQ(bash({u"--clock"_s, u"%H"_s, u"--dir"_s}), QStringList{u"--direction"_s});
  EXPECT_EQ(bash({u"--direction"_s, u"vertical"_s, u"--dir"_s}), QStringList()) << "given already";
  EXPECT_EQ(bash({u"--text"_s, u"a"_s, u"--tex"_s}), QStringList{u"--text"_s});
}

TEST_F(ShellCompletion, OfBashKnowsValues) {
  const QStringList all{u"down"_s, u"horizontal"_s, u"left"_s, u"right"_s, u"up"_s, u"vertical"_s};
  EXPECT_EQ(bash({u"--direction"_s, u""_s}), all);
  EXPECT_EQ(bash({u"render"_s, u"--direction"_s, u"v"_s}), QStringList{u"vertical"_s});
  EXPECT_EQ(bash({u"--direction"_s, u"="_s}), all);
  EXPECT_EQ(bash({u"--direction"_s, u"="_s, u"v"_s}), QStringList{u"vertical"_s});
  EXPECT_EQ(bash({u"--color"_s, u"nav"_s}), (QStringList{u"navajowhite"_s, u"navy"_s}));
  EXPECT_EQ(bash({u"--image"_s, u""_s}), QStringList{FilesOfReadline});
  EXPECT_EQ(bash({u"--combo"_s, u"="_s, u"ph"_s}), QStringList{FilesOfReadline});
  EXPECT_EQ(bash({u"--text"_s, u""_s}), QStringList());
  EXPECT_EQ(bash({u"help"_s, u"--documents"_s, u""_s}), QStringList{FoldersOfReadline});
}

TEST_F(ShellCompletion, OfBashKeepsTheOptionInWordsThatDoNotBreakAtEqualsSigns) {
  wordBreaks_ = u" \t\n"_s;
  EXPECT_EQ(bash({u"--direction=v"_s}), QStringList{u"--direction=vertical"_s});
  EXPECT_EQ(bash({u"--direction=vertical"_s, u"--dir"_s}), QStringList());
}

TEST_F(ShellCompletion, OfBashKnowsOperands) {
  EXPECT_EQ(bash({u"archive"_s, u"a"_s, u"--json"_s, u"b"_s}), QStringList{FilesOfReadline});
  EXPECT_EQ(bash({u"archive"_s, u"--"_s, u"--json"_s, u"--"_s}), QStringList{FilesOfReadline});
  EXPECT_EQ(bash({u"appearance"_s, u"show"_s, u"a"_s, u""_s}), QStringList()) << "one is enough";
  EXPECT_EQ(bash({u"run"_s, u""_s}), QStringList());
  EXPECT_EQ(bash({u"help"_s, u"feed"_s, u"ch"_s}), QStringList{u"check"_s});
}

TEST_F(ShellCompletion, OfZshKnowsCommandsOptionsAndValues) {
  if (!isInstalled(u"zsh"_s))
    GTEST_SKIP() << "zsh is not installed";
  write(u"photo.png"_s, {});
  std::vector<std::pair<QString, Matches>> expected{
      {u"zqticker "_s, firstWordsAnd({})},
      {u"zqticker feed "_s, QStringList{u"check"_s}},
      {u"zqticker --dir"_s, QStringList{u"--direction"_s}},
      {u"zqticker --text a --dir"_s, QStringList{u"--direction"_s}},
      {u"zqticker --clock --te"_s, QStringList{u"--text"_s}},
      {u"zqticker render --direction=v"_s, QStringList{u"vertical"_s}},
      {u"zqticker fetch --policy cache-o"_s, QStringList{u"cache-only"_s}},
      {u"zqticker --image ph"_s, QStringList{u"photo.png"_s}},
      {u"zqticker archive ph"_s, QStringList{u"photo.png"_s}},
      {u"zqticker run ph"_s, QStringList()}};
  for (const Command& command : allCommands())
    expected.emplace_back(u"zqticker "_s + command.name() + u" --"_s, optionsOf(command.name()));
  QStringList lines;
  for (const auto& [line, matches] : expected)
    lines.append(line);
  const std::vector<Matches> matches = zsh(lines);
  ASSERT_EQ(matches.size(), expected.size());
  for (std::size_t i = 0; i < matches.size(); ++i)
    EXPECT_EQ(matches[i], expected[i].second) << expected[i].first.toStdString();
}

TEST_F(ShellCompletion, OfFishKnowsCommandsOptionsAndValues) {
  if (!isInstalled(u"fish"_s))
    GTEST_SKIP() << "fish is not installed";
  write(u"photo.png"_s, {});
  EXPECT_EQ(fish(u"zqticker "_s), firstWordsAnd({}));
  EXPECT_EQ(fish(u"zqticker feed "_s), QStringList{u"check"_s});
  for (const Command& command : allCommands())
    EXPECT_EQ(fish(u"zqticker "_s + command.name() + u" --"_s), optionsOf(command.name()))
        << command.name().toStdString();
  EXPECT_EQ(fish(u"zqticker --dir"_s), QStringList{u"--direction"_s});
  EXPECT_EQ(fish(u"zqticker --ver"_s), QStringList{u"--version"_s});
  EXPECT_EQ(fish(u"zqticker render --direction v"_s), QStringList{u"vertical"_s});
  EXPECT_EQ(fish(u"zqticker render --direction=v"_s), QStringList{u"--direction=vertical"_s});
  EXPECT_EQ(fish(u"zqticker --image ph"_s), QStringList{u"photo.png"_s});
  EXPECT_EQ(fish(u"zqticker archive ph"_s), QStringList{u"photo.png"_s});
  EXPECT_EQ(fish(u"zqticker run ph"_s), QStringList());
}

TEST_F(ShellCompletion, IsPrintedByTheProgram) {
  EXPECT_EQ(runZqticker({u"help"_s, u"--completion"_s, u"bash"_s}).output, bashCompletion());
  EXPECT_EQ(runZqticker({u"help"_s, u"--completion=zsh"_s}).output, zshCompletion());
  EXPECT_EQ(runZqticker({u"help"_s, u"--completion"_s, u"fish"_s}).output, fishCompletion());
  const Outcome unknown = runZqticker({u"help"_s, u"--completion"_s, u"csh"_s});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_EQ(unknown.errors, "zqticker: --completion csh: must be bash or zsh or fish\n");
}
