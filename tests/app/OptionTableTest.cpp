#include "app/commands/OptionTable.h"

#include "app/commands/HelpCommand.h"
#include "app/commands/StripOptions.h"
#include "app/commands/failures.h"
#include "app/commands/strip_commands.h"
#include "app/display/TickerDisplay.h"
#include "app/intake/LineSplitter.h"

#include <QtCore/QLocale>
#include <QtCore/QProcess>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
const OptionTable& table() {
  static const OptionTable options{u"test"_s,
                                   u"Tests."_s,
                                   {{u"one"_s, {u"A"_s}, u"One value."_s, true},
                                    {u"two"_s, {u"A"_s, u"B"_s}, u"Two values."_s, true},
                                    {u"flag"_s, {}, u"No value."_s},
                                    {u"once"_s, {u"A"_s}, u"Only once."_s}},
                                   {},
                                   {}};
  return options;
}

const OptionTable& tableWithOperands() {
  static const OptionTable options{
      u"test"_s, u"Tests."_s, {{u"flag"_s, {}, u"No value."_s}, {u"help"_s, {}, u"Help."_s}},
      {},        {},          {u"FROM"_s, u"TO"_s}};
  return options;
}

QString parsed(const QStringList& arguments, const OptionTable& options = table()) {
  QString text;
  for (const ParsedOption& option : parseOptions(options, arguments))
    text += option.name + u'(' + option.values.join(u',') + u')';
  return text;
}

QString failureOf(const QStringList& arguments, const OptionTable& options = table()) {
  try {
    parseOptions(options, arguments);
  } catch (const UsageError& error) {
    EXPECT_EQ(error.status(), UsageFailure);
    return error.message();
  }
  return u"none"_s;
}
} // namespace

TEST(OptionTable, KeepsTheOrder) {
  EXPECT_EQ(parsed({u"--one"_s, u"1"_s, u"--two"_s, u"2"_s, u"3"_s, u"--one"_s, u"4"_s}),
            u"one(1)two(2,3)one(4)"_s);
}

TEST(OptionTable, TakesAnOptionalValueUnlessItBeginsWithADash) {
  const OptionTable options{
      u"test"_s,
      u"Tests."_s,
      {{u"may"_s, {u"A"_s}, u"One value or none."_s, true, true}, {u"flag"_s, {}, u"No value."_s}},
      {},
      {}};
  EXPECT_EQ(parsed({u"--may"_s}, options), u"may()"_s);
  EXPECT_EQ(parsed({u"--may"_s, u"1"_s, u"--may"_s, u"--flag"_s}, options), u"may(1)may()flag()"_s);
  EXPECT_EQ(parsed({u"--may=-1"_s, u"--may="_s}, options), u"may(-1)may()"_s);
  EXPECT_EQ(parsed({u"--may"_s, u""_s}, options), u"may()"_s);
  EXPECT_EQ(failureOf({u"--may"_s, u"1"_s, u"2"_s}, options),
            u"2: unexpected argument (see zqticker test --help)"_s);
  EXPECT_TRUE(helpText(options).contains(u"--may [A]"_s));
}

TEST(OptionTable, TakesValuesAfterAnEqualsSign) {
  EXPECT_EQ(parsed({u"--one=a=b"_s, u"--two=x"_s, u"y"_s, u"--one="_s}),
            u"one(a=b)two(x,y)one()"_s);
}

TEST(OptionTable, TakesAnyArgumentAsAValue) {
  EXPECT_EQ(parsed({u"--one"_s, u"--flag"_s, u"--flag"_s}), u"one(--flag)flag()"_s);
}

TEST(OptionTable, RefusesWhatItDoesNotKnow) {
  EXPECT_EQ(failureOf({u"--three"_s, u"1"_s}),
            u"--three: unknown option (see zqticker test --help)"_s);
  EXPECT_EQ(failureOf({u"file"_s}), u"file: unexpected argument (see zqticker test --help)"_s);
  EXPECT_EQ(failureOf({u"--"_s}), u"--: unexpected argument (see zqticker test --help)"_s);
  EXPECT_EQ(failureOf({u"-x"_s}), u"-x: unexpected argument (see zqticker test --help)"_s);
}

TEST(OptionTable, TakesOperandsAmongOptions) {
  EXPECT_EQ(parsed({u"a"_s, u"--flag"_s, u"-"_s}, tableWithOperands()), u"(a)flag()(-)"_s);
}

TEST(OptionTable, TakesEverythingAfterTwoDashesAsOperands) {
  EXPECT_EQ(parsed({u"--flag"_s, u"--"_s, u"--flag"_s, u"-x"_s}, tableWithOperands()),
            u"flag()(--flag)(-x)"_s);
}

TEST(OptionTable, RefusesAMissingOrASurplusOperand) {
  EXPECT_EQ(failureOf({u"a"_s}, tableWithOperands()), u"TO: missing (see zqticker test --help)"_s);
  EXPECT_EQ(failureOf({u"a"_s, u"b"_s, u"c"_s}, tableWithOperands()),
            u"c: unexpected argument (see zqticker test --help)"_s);
  EXPECT_EQ(failureOf({u"-x"_s, u"b"_s}, tableWithOperands()),
            u"-x: unexpected argument (see zqticker test --help)"_s);
}

TEST(OptionTable, TakesTheLastOperandAsOftenAsItStands) {
  OptionTable repeating = tableWithOperands();
  repeating.repeatsLastOperand = true;
  EXPECT_EQ(parsed({u"a"_s, u"b"_s, u"--flag"_s, u"c"_s, u"d"_s}, repeating),
            u"(a)(b)flag()(c)(d)"_s);
  EXPECT_EQ(failureOf({u"a"_s}, repeating), u"TO: missing (see zqticker test --help)"_s);
  EXPECT_TRUE(helpText(repeating).startsWith("Usage: zqticker test [OPTION]... FROM TO...\n"_L1));
  OptionTable withoutOperands = table();
  withoutOperands.repeatsLastOperand = true;
  EXPECT_EQ(failureOf({u"a"_s}, withoutOperands),
            u"a: unexpected argument (see zqticker test --help)"_s);
}

TEST(OptionTable, AsksForNoOperandBesideHelp) {
  EXPECT_EQ(parsed({u"--help"_s}, tableWithOperands()), u"help()"_s);
}

TEST(OptionTable, ShowsOperandsInTheUsageLine) {
  EXPECT_TRUE(
      helpText(tableWithOperands()).startsWith("Usage: zqticker test [OPTION]... FROM TO\n"_L1));
}

TEST(OptionTable, RefusesAMissingOrASurplusValue) {
  EXPECT_EQ(failureOf({u"--one"_s}), u"--one: needs A"_s);
  EXPECT_EQ(failureOf({u"--two"_s, u"1"_s}), u"--two: needs A and B"_s);
  EXPECT_EQ(failureOf({u"--flag=1"_s}), u"--flag: takes no value"_s);
}

TEST(OptionTable, RefusesToTakeASingleOptionTwice) {
  EXPECT_EQ(failureOf({u"--once"_s, u"1"_s, u"--once"_s, u"2"_s}), u"--once: given twice"_s);
}

TEST(OptionTable, ReadsNumbersOnlyWhole) {
  const auto number = [](const QString& text) { return numberOf({u"n"_s, {text}}, -1, 100); };
  EXPECT_EQ(number(u"1.5"_s), 1.5);
  EXPECT_EQ(number(u"1e1"_s), 10);
  for (const QString& bad :
       {u""_s, u"1.5x"_s, u"nan"_s, u"inf"_s, u"1e999"_s, u"-2"_s, u"101"_s, u"1,5"_s})
    EXPECT_THROW(number(bad), UsageError) << bad.toStdString();
  EXPECT_THROW(integerOf({u"n"_s, {u"1.5"_s}}, 0, 9), UsageError);
  EXPECT_THROW(integerOf({u"n"_s, {u"99999999999999999999"_s}}, 0, 9), UsageError);
  EXPECT_EQ(integerOf({u"n"_s, {u"9"_s}}, 0, 9), 9);
}

TEST(OptionTable, StatesAllowedWordsOnce) {
  const OptionTable options{u"test"_s,
                            u"Tests."_s,
                            {{u"edge"_s,
                              {u"EDGE"_s},
                              u"Where it stands."_s,
                              false,
                              false,
                              {{u"top"_s, {}}, {u"left"_s, {}}, {u"bottom"_s, u"the default"_s}}}},
                            {},
                            {}};
  EXPECT_TRUE(helpText(options).contains(
      u"--edge EDGE                 Where it stands: top, left or bottom (the default).\n"_s));
  EXPECT_EQ(wordOf(parseOptions(options, {u"--edge=left"_s}).front()), u"left"_s);
  try {
    wordOf(parseOptions(options, {u"--edge"_s, u"right"_s}).front());
    ADD_FAILURE();
  } catch (const UsageError& error) {
    EXPECT_EQ(error.message(), u"--edge right: must be top or left or bottom"_s);
  }
}

TEST(OptionTable, LetsOptionalOperandsBeLeftOut) {
  OptionTable options = tableWithOperands();
  options.operandsAreOptional = true;
  EXPECT_EQ(parsed({}, options), u""_s);
  EXPECT_EQ(parsed({u"a"_s}, options), u"(a)"_s);
  EXPECT_TRUE(helpText(options).startsWith("Usage: zqticker test [OPTION]... [FROM] [TO]\n"_L1));
}

TEST(OptionTable, TellsOfTheEnvironmentFilesAndTheExitStatus) {
  OptionTable options = table();
  options.environment = {{u"TZ"_s, u"The time zone."_s}};
  options.files = {{u"/etc/a"_s, u"A file."_s}};
  options.exitStatus = u"0."_s;
  EXPECT_TRUE(helpText(options).contains(
      u"\nEnvironment:\n  TZ                          The time zone.\n"
      u"\nFiles:\n  /etc/a                      A file.\n\nExit status: 0.\n"_s));
}

TEST(OptionTable, QuotesArgumentsOnOneLine) {
  EXPECT_EQ((ParsedOption{u"text"_s, {u"a\nb\x1b"_s}}).text(), u"--text a?b?"_s);
  EXPECT_LT((ParsedOption{u"text"_s, {QString(100'000, u'x')}}).text().size(), 300);
}

TEST(CommandTables, NameEveryOptionInTheirHelp) {
  for (const OptionTable* commands : {&runTable(), &renderTable(), &signTable()}) {
    const QString help = helpText(*commands);
    EXPECT_TRUE(help.startsWith(u"Usage: zqticker "_s + commands->command));
    for (const OptionSpec& spec : commands->options) {
      EXPECT_TRUE(help.contains(u"  --"_s + spec.name)) << spec.name.toStdString();
      EXPECT_FALSE(spec.help.isEmpty());
    }
    EXPECT_TRUE(help.contains(u"Examples:"_s));
    for (const QString& line : help.split(u'\n'))
      EXPECT_LE(line.size(), 130) << line.toStdString();
  }
}

TEST(Commands, AreFoundByTheLongestNameThatTheyBeginWith) {
  const auto found = [](const QStringList& arguments) {
    const CommandLine line = findCommand(arguments);
    return QString(line.command->name() + u'|' + line.arguments.join(u','));
  };
  EXPECT_EQ(found({}), u"run|"_s);
  EXPECT_EQ(found({u"--text"_s, u"render"_s}), u"run|--text,render"_s);
  EXPECT_EQ(found({u"run"_s, u"--text"_s, u"a"_s}), u"run|--text,a"_s);
  EXPECT_EQ(found({u"feed"_s, u"check"_s, u"check"_s}), u"feed check|check"_s);
  EXPECT_EQ(found({u"help"_s, u"feed"_s, u"check"_s}), u"help|feed,check"_s);
}

TEST(Commands, AreListedOnceEachWithAFewWords) {
  QStringList names;
  for (const Command& command : allCommands()) {
    const std::string name = command.name().toStdString();
    EXPECT_FALSE(names.contains(command.name())) << name;
    names.append(command.name());
    EXPECT_LE(command.name().count(u' '), 1) << name;
    EXPECT_FALSE(command.table->brief.isEmpty()) << name;
    EXPECT_FALSE(command.table->brief.endsWith(u'.')) << name;
    EXPECT_TRUE(programHelp().contains(
        QString(u"\n  "_s + command.name().leftJustified(22) + command.table->brief + u'\n')))
        << name;
    EXPECT_EQ(command.application == Application::Display, command.runWithoutDisplay != nullptr)
        << name;
  }
  EXPECT_TRUE(names.contains(u"run"_s));
}

TEST(CommandTables, StateTheLimitsOfLines) {
  const QLocale locale(QLocale::English);
  for (const OptionTable* commands : {&runTable(), &renderTable()}) {
    const QString help = helpText(*commands).simplified();
    EXPECT_TRUE(help.contains(
        u"At most %1 lines wait"_s.arg(locale.toString(qlonglong(TickerDisplay::MostLines)))));
    EXPECT_TRUE(help.contains(u"at most %1 characters"_s.arg(
        locale.toString(qlonglong(TickerDisplay::MostLineCharacters)))));
    EXPECT_TRUE(
        help.contains(u"more than %1 characters"_s.arg(locale.toString(qlonglong(LongestLine)))));
  }
}

TEST(CommandTables, HaveExamplesThatAreUnderstood) {
  for (const OptionTable* commands : {&runTable(), &renderTable(), &signTable()})
    for (qsizetype i = 0; i < commands->examples.size(); i += 2) {
      QString line = commands->examples[i];
      line.remove(0, line.indexOf("zqticker"_L1));
      QStringList words = QProcess::splitCommand(line);
      ASSERT_EQ(words.takeFirst(), u"zqticker"_s) << line.toStdString();
      QString command = u"run"_s;
      if (!words.first().startsWith(u'-'))
        command = words.takeFirst();
      if (command == "run"_L1)
        EXPECT_NO_THROW(readRunOptions(words)) << line.toStdString();
      else if (command == "render"_L1)
        EXPECT_NO_THROW(readRenderOptions(words)) << line.toStdString();
      else
        EXPECT_NO_THROW(readSignOptions(words)) << line.toStdString();
    }
}
