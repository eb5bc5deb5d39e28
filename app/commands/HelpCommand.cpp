#include "app/commands/HelpCommand.h"

#include "app/commands/failures.h"
#include "app/commands/output_files.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qsizetype BriefColumn = 22;

OptionTable makeHelpTable() {
  OptionTable table;
  table.command = u"help"_s;
  table.brief = u"print this text, or that of a command"_s;
  table.summary = u"Prints what the program can do, or all about one command."_s;
  table.operands = {u"COMMAND"_s};
  table.repeatsLastOperand = true;
  table.operandsAreOptional = true;
  table.options = {{u"help"_s, {}, u"Print this text."_s}};
  table.notes = {u"\"zqticker COMMAND --help\" prints the same."_s};
  table.exitStatus = u"0, 2 where there is no such command."_s;
  table.examples = {u"zqticker help feed check"_s, u"All about the command that reads feeds."_s};
  return table;
}

const OptionTable& helpTable() {
  static const OptionTable table = makeHelpTable();
  return table;
}

int helpCommand(const QStringList& arguments) {
  QStringList names;
  for (const ParsedOption& option : parseOptions(helpTable(), arguments))
    names.append(option.values.first());
  writeStandardOutput((names.isEmpty() ? programHelp() : helpOf(names.join(u' '))).toUtf8());
  return Success;
}

QString listOfCommands() {
  QString text;
  std::optional<CommandGroup> group;
  for (const Command& command : allCommands()) {
    if (command.group != group) {
      group = command.group;
      text += titleOf(*group) + u":\n"_s;
    }
    text += u"  "_s + command.name().leftJustified(BriefColumn) + command.table->brief + u'\n';
  }
  return text;
}
} // namespace

QString titleOf(CommandGroup group) {
  switch (group) {
  case CommandGroup::Screen:
    return u"Strips"_s;
  case CommandGroup::Ticker:
    return u"The running ticker"_s;
  case CommandGroup::Signs:
    return u"Signs and looks"_s;
  case CommandGroup::Sources:
    return u"What a ticker reads"_s;
  case CommandGroup::Program:
    break;
  }
  return u"This program"_s;
}

QString programHelp() {
  return u"Usage: zqticker [COMMAND] [OPTION]...\n"
         u"A desktop ticker: texts and pictures that scroll over a strip.\n\n"_s +
         listOfCommands() +
         u"\n\"zqticker COMMAND --help\" tells more of each. \"zqticker --version\" prints the "
         u"version.\n\n"_s +
         helpOf(findCommand({}).command->name());
}

QString helpOf(const QString& name) {
  QStringList texts;
  for (const Command* command : commandsNamed(name))
    texts.append(helpText(*command->table));
  if (texts.isEmpty())
    throw UsageError(quotedForMessage(name) + u": unknown command (see zqticker --help)"_s);
  return texts.join(u'\n');
}

const std::vector<Command>& helpCommands() {
  static const std::vector<Command> commands{
      {&helpTable(), CommandGroup::Program, Application::None, helpCommand}};
  return commands;
}

} // namespace zq::app
