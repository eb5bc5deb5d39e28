#include "app/commands/HelpCommand.h"
#include "app/commands/completion_values.h"
#include "app/commands/shell_completion.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// `text` where brackets, colons and backslashes mean something.
QString escaped(QString text) {
  for (const QString& special : {u"\\"_s, u"["_s, u"]"_s, u":"_s})
    text.replace(special, u'\\' + special);
  return text;
}

// ":FILE:_files".
QString valueText(const QString& name, const CompletedValue& value) {
  const QString start = u':' + escaped(name) + u':';
  switch (value.kind) {
  case ValueKind::File:
    return start + u"_files"_s;
  case ValueKind::Folder:
    return start + u"_files -/"_s;
  case ValueKind::Words:
    return start + u'(' + value.words.join(u' ') + u')';
  case ValueKind::Text:
    break;
  }
  return start + u' ';
}

QString optionText(const OptionSpec& spec) {
  QString text = (spec.repeatable ? u"*--"_s : u"--"_s) + spec.name +
                 (spec.values.isEmpty() ? u"["_s : u"=["_s) + escaped(shortHelp(spec)) + u']';
  if (spec.isValueOptional)
    text += u':';
  for (qsizetype i = 0; i < spec.values.size(); ++i)
    text += valueText(spec.values[i], completedValue(spec, i));
  return text;
}

QStringList argumentTexts(const OptionTable& table) {
  QStringList texts;
  for (const OptionSpec& spec : table.options)
    texts.append(optionText(spec));
  for (qsizetype i = 0; i < table.operands.size(); ++i) {
    const bool isRepeated = table.repeatsLastOperand && i + 1 == table.operands.size();
    const QString start = isRepeated ? u"*"_s : table.operandsAreOptional ? u":"_s : u""_s;
    texts.append(start + valueText(table.operands[i], completedOperand(table.operands[i])));
  }
  return texts;
}

QString patternOf(const QStringList& names) {
  QStringList quoted;
  for (const QString& name : names)
    quoted.append(quotedForShell(name));
  return u'(' + quoted.join(u'|') + u')';
}

// Lines of a list: 'run:scroll signs over the screen'.
QString describedWords(const QString& first) {
  QString text;
  QStringList seen;
  for (const Command& command : allCommands()) {
    const bool isBelow = command.name().startsWith(first + u' ');
    if (!first.isEmpty() && !isBelow)
      continue;
    const QString word =
        command.name().section(u' ', first.isEmpty() ? 0 : 1, first.isEmpty() ? 0 : -1);
    if (seen.contains(word))
      continue;
    seen.append(word);
    const QString brief =
        word == command.name() || isBelow ? command.table->brief : secondWords(word).join(u", ");
    text += u"      "_s + quotedForShell(escaped(word) + u':' + brief) + u'\n';
  }
  return text;
}
} // namespace

QByteArray zshCompletion() {
  QStringList pairs;
  QStringList singles;
  for (const Command& command : allCommands())
    (command.name().contains(u' ') ? pairs : singles).append(command.name());
  QString text = u"#compdef zqticker\n"
                 u"# Completion of zqticker's command lines for zsh.\n\n"
                 u"_zqticker() {\n"
                 u"  local command=''\n"
                 u"  integer length=0\n"
                 u"  local -a commands\n"
                 u"  if [[ $words[2] == -* ]]; then\n"
                 u"    command=run\n"
                 u"  else\n"
                 u"    case \"$words[2] $words[3]\" in\n      "_s +
                 patternOf(pairs) +
                 u" (( CURRENT <= 3 )) || { command=\"$words[2] $words[3]\"; length=2 } ;;\n"
                 u"    esac\n"
                 u"    if [[ -z $command ]] && (( CURRENT > 2 )); then\n"
                 u"      case $words[2] in\n        "_s +
                 patternOf(singles) +
                 u" command=$words[2]; length=1 ;;\n"
                 u"      esac\n"
                 u"    fi\n"
                 u"  fi\n\n"
                 u"  if (( CURRENT == 2 )) && [[ -z $command ]]; then\n"
                 u"    commands=(\n"_s +
                 describedWords({}) +
                 u"    )\n"
                 u"    _describe command commands\n"
                 u"    return\n"
                 u"  fi\n"
                 u"  if (( CURRENT == 3 )) && [[ $words[3] != -* ]]; then\n"
                 u"    case $words[2] in\n"_s;
  for (const QString& first : firstWords())
    if (!secondWords(first).isEmpty())
      text += u"    ("_s + quotedForShell(first) + u") commands=(\n"_s + describedWords(first) +
              u"    ) ;;\n"_s;
  text += u"    esac\n"
          u"    (( $#commands )) && _describe command commands && return\n"
          u"  fi\n\n"
          u"  words=(\"$words[1]\" \"${(@)words[length + 2, -1]}\")\n"
          u"  (( CURRENT -= length ))\n"
          u"  case $command in\n"_s;
  for (const Command& command : allCommands()) {
    text += u"  ("_s + quotedForShell(command.name()) + u")\n    _arguments -S"_s;
    for (const QString& argument : argumentTexts(*command.table))
      text += u" \\\n      "_s + quotedForShell(argument);
    text += u"\n    ;;\n"_s;
  }
  return (text + u"  esac\n}\n\n_zqticker \"$@\"\n"_s).toUtf8();
}

} // namespace zq::app
