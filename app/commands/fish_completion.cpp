#include "app/commands/completion_values.h"
#include "app/commands/shell_completion.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
QString quoted(QString text) {
  text.replace(u"\\"_s, u"\\\\"_s);
  return u'\'' + text.replace(u"'"_s, u"\\'"_s) + u'\'';
}

QString quotedNames(const QStringList& names) {
  QStringList texts;
  for (const QString& name : names)
    texts.append(quoted(name));
  return texts.join(u' ');
}

// What the value is completed by, as options of `complete`: "-rF".
QString valueText(const CompletedValue& value) {
  switch (value.kind) {
  case ValueKind::File:
    return u" -rF"_s;
  case ValueKind::Folder:
    return u" -xa '(__fish_complete_directories)'"_s;
  case ValueKind::Words:
    return u" -xa "_s + quoted(value.words.join(u' '));
  case ValueKind::Text:
    break;
  }
  return u" -x"_s;
}

QString linesOf(const Command& command) {
  const QString start =
      u"complete -c zqticker -n "_s + quoted(u"__zqticker_is "_s + command.name());
  QString text;
  for (const OptionSpec& spec : command.table->options) {
    text += start + u" -l "_s + spec.name;
    if (!spec.values.isEmpty() && !spec.isValueOptional)
      text += valueText(completedValue(spec, 0));
    text += u" -d "_s + quoted(shortHelp(spec)) + u'\n';
  }
  for (const QString& operand : command.table->operands) {
    const CompletedValue value = completedOperand(operand);
    if (value.kind == ValueKind::File || value.kind == ValueKind::Folder)
      text += start + u" -F\n"_s;
    else if (value.kind == ValueKind::Words)
      text += start + u" -a "_s + quoted(value.words.join(u' ')) + u'\n';
  }
  return text;
}
} // namespace

QByteArray fishCompletion() {
  QStringList pairs;
  QStringList singles;
  for (const Command& command : allCommands())
    (command.name().contains(u' ') ? pairs : singles).append(command.name());
  QString text =
      u"# Completion of zqticker's command lines for fish.\n\n"
      u"function __zqticker_command --description 'The command that the line names'\n"
      u"    set -l words (commandline -opc)\n"
      u"    set -e words[1]\n"
      u"    if test (count $words) -eq 0\n"
      u"        string match -q -- '-*' (commandline -ct); and echo run\n"
      u"        return\n"
      u"    end\n"
      u"    switch \"$words[1] $words[2]\"\n"
      u"        case '-*'\n"
      u"            echo run\n"
      u"            return\n"
      u"        case "_s +
      quotedNames(pairs) +
      u"\n"
      u"            echo \"$words[1] $words[2]\"\n"
      u"            return\n"
      u"    end\n"
      u"    switch $words[1]\n"
      u"        case "_s +
      quotedNames(singles) +
      u"\n"
      u"            echo $words[1]\n"
      u"    end\n"
      u"end\n\n"
      u"function __zqticker_is\n"
      u"    test \"$(__zqticker_command)\" = \"$argv\"\n"
      u"end\n\n"
      u"# Whether the words before the present one are these.\n"
      u"function __zqticker_follows\n"
      u"    set -l words (commandline -opc)\n"
      u"    set -e words[1]\n"
      u"    test \"$words\" = \"$argv\"\n"
      u"end\n\n"
      u"complete -c zqticker -f\n"
      u"complete -c zqticker -n __zqticker_follows -l version -d 'Print the version'\n"_s;
  for (const QString& first : firstWords()) {
    const auto commands = commandsNamed(first);
    const bool isCommand = commands.front()->name() == first;
    text += u"complete -c zqticker -n __zqticker_follows -a "_s + first + u" -d "_s +
            quoted(isCommand ? commands.front()->table->brief : secondWords(first).join(u", ")) +
            u'\n';
    for (const Command* command : commands)
      if (command->name() != first)
        text += u"complete -c zqticker -n "_s + quoted(u"__zqticker_follows "_s + first) +
                u" -a "_s + command->name().section(u' ', 1) + u" -d "_s +
                quoted(command->table->brief) + u'\n';
  }
  for (const Command& command : allCommands())
    text += u'\n' + linesOf(command);
  return text.toUtf8();
}

} // namespace zq::app
