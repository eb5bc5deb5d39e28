#include "app/commands/OptionTable.h"

#include "app/commands/failures.h"
#include "app/commands/nearest_word.h"

#include <QtCore/QSet>
#include <QtGui/QColor>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qsizetype HelpColumn = 30;
constexpr qsizetype LineWidth = 88;

QString usageOf(const OptionSpec& spec) {
  const QString values = spec.values.join(u' ');
  return QString(u"--"_s + spec.name + (spec.values.isEmpty() ? u""_s : u" "_s) +
                 (spec.isValueOptional ? QString(u'[' + values + u']') : values));
}

// `text` broken at spaces into lines that stand `indent` characters in; the first line does not.
QString wrapped(const QString& text, qsizetype indent) {
  QString result;
  qsizetype column = indent;
  for (const QString& word : text.split(u' ')) {
    if (column > indent && column + word.size() + 1 > LineWidth) {
      result += u'\n' + QString(indent, u' ');
      column = indent;
    }
    if (column > indent) {
      result += u' ';
      ++column;
    }
    result += word;
    column += word.size();
  }
  return result;
}

// A name and what is said of it, in two columns.
QString lineOf(const QString& name, const QString& text) {
  const QString start = u"  "_s + name;
  const qsizetype gap = HelpColumn - start.size();
  return start + (gap < 2 ? QString(u'\n' + QString(HelpColumn, u' ')) : QString(gap, u' ')) +
         wrapped(text, HelpColumn) + u'\n';
}

QString listOf(const QString& title, const std::vector<NamedText>& entries) {
  if (entries.empty())
    return {};
  QString text = u'\n' + title + u'\n';
  for (const NamedText& entry : entries)
    text += lineOf(entry.name, entry.text);
  return text;
}

const OptionSpec& findSpec(const OptionTable& table, const QString& name, const QString& argument) {
  const auto found = std::find_if(table.options.begin(), table.options.end(),
                                  [&](const OptionSpec& spec) { return spec.name == name; });
  if (found == table.options.end()) {
    QStringList names;
    for (const OptionSpec& spec : table.options)
      names.append(spec.name);
    throw UsageError(quotedForMessage(argument) + u": unknown option"_s +
                     suggestion(name, names, u"--"_s) +
                     u" (see zqticker %1 --help)"_s.arg(table.command));
  }
  return *found;
}
} // namespace

QStringList wordsOf(const std::vector<AllowedWord>& words) {
  QStringList list;
  for (const AllowedWord& each : words)
    list.append(each.word);
  return list;
}

QString OptionSpec::fullHelp() const {
  if (words.empty())
    return help;
  QStringList choices;
  for (const AllowedWord& each : words)
    choices.append(each.meaning.isEmpty() ? each.word
                                          : QString(each.word + u" ("_s + each.meaning + u')'));
  const QString last = choices.takeLast();
  const QString start = help.endsWith(u'.') ? help.chopped(1) : help;
  return start + u": "_s + choices.join(u", ") + (choices.isEmpty() ? u""_s : u" or "_s) + last +
         u'.';
}

QString ParsedOption::text() const {
  if (isOperand())
    return quotedForMessage(values.join(u' '));
  return quotedForMessage(dashes + name + (values.isEmpty() ? u""_s : u" "_s) + values.join(u' '));
}

std::vector<ParsedOption> parseOptions(const OptionTable& table, const QStringList& arguments) {
  std::vector<ParsedOption> parsed;
  QSet<QString> seen;
  qsizetype operandCount = 0;
  bool optionsEnded = false;
  for (qsizetype i = 0; i < arguments.size(); ++i) {
    const QString& argument = arguments[i];
    if (argument == "--"_L1 && !optionsEnded && !table.operands.isEmpty()) {
      optionsEnded = true;
      continue;
    }
    const bool isOperand = optionsEnded || argument == "-"_L1 || !argument.startsWith(u'-');
    if (isOperand || !argument.startsWith("--"_L1) || argument.size() == 2) {
      const bool isSurplus =
          operandCount >= table.operands.size() && !(table.repeatsLastOperand && operandCount > 0);
      if (!isOperand || isSurplus)
        throw UsageError(quotedForMessage(argument) +
                         u": unexpected argument (see zqticker %1 --help)"_s.arg(table.command));
      parsed.push_back({QString(), {argument}});
      ++operandCount;
      continue;
    }
    const qsizetype equals = argument.indexOf(u'=');
    const QString name = argument.sliced(2, (equals < 0 ? argument.size() : equals) - 2);
    const OptionSpec& spec = findSpec(table, name, argument);
    ParsedOption option{name, {}, &spec};
    if (equals >= 0) {
      if (spec.values.isEmpty())
        throw UsageError(u"--%1: takes no value"_s.arg(name));
      option.values.append(argument.sliced(equals + 1));
    }
    const bool isNextAValue = i + 1 < arguments.size() && !arguments[i + 1].startsWith(u'-');
    const bool isComplete = spec.isValueOptional && !isNextAValue;
    while (option.values.size() < spec.values.size() && !isComplete) {
      if (++i >= arguments.size())
        throw UsageError(u"--%1: needs %2"_s.arg(name, spec.values.join(u" and ")));
      option.values.append(arguments[i]);
    }
    if (!spec.repeatable && seen.contains(name))
      throw UsageError(u"--%1: given twice"_s.arg(name));
    seen.insert(name);
    parsed.push_back(option);
  }
  if (operandCount < table.operands.size() && !table.operandsAreOptional &&
      !seen.contains(u"help"_s))
    throw UsageError(
        u"%1: missing (see zqticker %2 --help)"_s.arg(table.operands[operandCount], table.command));
  return parsed;
}

QString helpText(const OptionTable& table) {
  QString usage = table.command + u" [OPTION]..."_s;
  for (const QString& operand : table.operands)
    usage +=
        table.operandsAreOptional ? QString(u" ["_s + operand + u']') : QString(u' ' + operand);
  if (table.repeatsLastOperand)
    usage += u"..."_s;
  QString text = u"Usage: zqticker %1\n%2\n\nOptions:\n"_s.arg(usage, wrapped(table.summary, 0));
  for (const OptionSpec& spec : table.options)
    text += lineOf(usageOf(spec), spec.fullHelp());
  for (const QString& note : table.notes)
    text += u'\n' + wrapped(note, 0) + u'\n';
  text += listOf(u"Keys:"_s, table.keys);
  text += listOf(u"Environment:"_s, table.environment) + listOf(u"Files:"_s, table.files);
  if (!table.exitStatus.isEmpty())
    text += u'\n' + wrapped(u"Exit status: "_s + table.exitStatus, 0) + u'\n';
  if (!table.examples.isEmpty())
    text += u"\nExamples:\n"_s;
  for (qsizetype i = 0; i + 1 < table.examples.size(); i += 2)
    text += u"  "_s + table.examples[i] + u"\n      "_s + wrapped(table.examples[i + 1], 6) + u'\n';
  return text;
}

double numberOf(const ParsedOption& option, double least, double most) {
  bool isNumber = false;
  const double number = option.values.first().toDouble(&isNumber);
  if (!isNumber || !std::isfinite(number))
    throw UsageError(option.text() + u": not a number"_s);
  constexpr int Digits = 10; // all that limits have
  if (number < least || number > most)
    throw UsageError(
        option.text() +
        u": must be between %1 and %2"_s.arg(least, 0, 'g', Digits).arg(most, 0, 'g', Digits));
  return number;
}

qint64 integerOf(const ParsedOption& option, qint64 least, qint64 most) {
  bool isNumber = false;
  const qint64 number = option.values.first().toLongLong(&isNumber);
  if (!isNumber)
    throw UsageError(option.text() + u": not a whole number"_s);
  if (number < least || number > most)
    throw UsageError(option.text() + u": must be between %1 and %2"_s.arg(least).arg(most));
  return number;
}

QString wordOf(const ParsedOption& option, const QStringList& allowed) {
  if (!allowed.contains(option.values.first()))
    throw UsageError(option.text() + u": must be "_s + allowed.join(u" or "));
  return option.values.first();
}

QString wordOf(const ParsedOption& option) {
  return wordOf(option, wordsOf(option.spec->words));
}

QColor colorOf(const ParsedOption& option) {
  const QColor color(option.values.first());
  if (!color.isValid())
    throw UsageError(option.text() +
                     u": not a color (write a name such as navy, or #rrggbb, or #aarrggbb)"_s);
  return color;
}

} // namespace zq::app
