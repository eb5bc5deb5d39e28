#include "app/commands/completion_values.h"

#include <QtCore/QRegularExpression>
#include <QtGui/QColor>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// All words of which names consist.
QStringList wordsOfNames() {
  QStringList words;
  for (const Command& command : allCommands())
    words += command.name().split(u' ');
  words.removeDuplicates();
  return words;
}

CompletedValue valueNamed(const QString& name) {
  if (name == "FILE"_L1 || name == "PATH"_L1 || name == "PNG"_L1)
    return {ValueKind::File};
  if (name == "FOLDER"_L1)
    return {ValueKind::Folder};
  if (name == "COLOR"_L1)
    return {ValueKind::Words, QColor::colorNames()};
  if (name == "COMMAND"_L1)
    return {ValueKind::Words, wordsOfNames()};
  return {};
}
} // namespace

CompletedValue completedValue(const OptionSpec& spec, qsizetype index) {
  return spec.words.empty() ? valueNamed(spec.values[index])
                            : CompletedValue{ValueKind::Words, wordsOf(spec.words)};
}

CompletedValue completedOperand(const QString& name) {
  return valueNamed(name);
}

QString shortHelp(const OptionSpec& spec) {
  static const QRegularExpression end(u"[.;:]( |$)"_s);
  return spec.help.left(spec.help.indexOf(end));
}

QStringList firstWords() {
  QStringList words;
  for (const Command& command : allCommands())
    words.append(command.name().section(u' ', 0, 0));
  words.removeDuplicates();
  return words;
}

QStringList secondWords(const QString& first) {
  QStringList words;
  for (const Command* command : commandsNamed(first))
    if (command->name() != first)
      words.append(command->name().section(u' ', 1));
  return words;
}

QString quotedForShell(const QString& text) {
  return u'\'' + QString(text).replace(u"'"_s, u"'\\''"_s) + u'\'';
}

} // namespace zq::app
