#include "app/commands/HelpCommand.h"

#include "app/commands/failures.h"
#include "app/commands/manual_pages.h"
#include "app/commands/nearest_word.h"
#include "app/commands/output_files.h"
#include "app/commands/shell_completion.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

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
  table.options = {
      {u"man"_s, {}, u"Print the manual page instead, in roff."_s},
      {u"completion"_s,
       {u"SHELL"_s},
       u"Print the script by which a shell completes command lines."_s,
       false,
       false,
       {{u"bash"_s, {}}, {u"zsh"_s, {}}, {u"fish"_s, {}}}},
      {u"documents"_s,
       {u"FOLDER"_s},
       u"Write all manual pages and completion scripts into a folder laid out like /usr/share."_s},
      {u"help"_s, {}, u"Print this text."_s},
  };
  table.notes = {u"\"zqticker COMMAND --help\" prints the same."_s};
  table.exitStatus =
      u"0, 1 where a file or folder cannot be written, 2 for a wrong command line or "
      u"where there is no such command."_s;
  table.examples = {u"zqticker help feed check"_s,
                    u"All about the command that reads feeds."_s,
                    u"zqticker help --man run | man -l -"_s,
                    u"The manual page of `run`, installed or not."_s,
                    u"source <(zqticker help --completion bash)"_s,
                    u"Completion in this shell, installed or not."_s};
  return table;
}

// Those that helpOf tells of.
std::vector<const Command*> requireCommands(const QString& name) {
  auto commands = commandsNamed(name);
  if (!commands.empty())
    return commands;
  QStringList names;
  for (const Command& command : allCommands())
    names.append(command.name());
  throw UsageError(quotedForMessage(name) + u": unknown command"_s + suggestion(name, names) +
                   u" (see zqticker --help)"_s);
}

const OptionTable& helpTable() {
  static const OptionTable table = makeHelpTable();
  return table;
}

QByteArray completionFor(const QString& shell) {
  if (shell == "bash"_L1)
    return bashCompletion();
  return shell == "zsh"_L1 ? zshCompletion() : fishCompletion();
}

QByteArray pagesOf(const QString& name) {
  if (name.isEmpty())
    return programManualPage();
  QByteArray pages;
  for (const Command* command : requireCommands(name))
    pages += manualPage(*command);
  return pages;
}

void writeDocuments(const QString& folder) {
  const QDir root(folder);
  std::vector<OutputFile> files{
      {u"man/man1/zqticker.1"_s, programManualPage()},
      {u"bash-completion/completions/zqticker"_s, bashCompletion()},
      {u"zsh/site-functions/_zqticker"_s, zshCompletion()},
      {u"fish/vendor_completions.d/zqticker.fish"_s, fishCompletion()},
  };
  for (const Command& command : allCommands())
    files.push_back({u"man/man1/"_s + manualPageName(command) + u".1"_s, manualPage(command)});
  for (OutputFile& file : files) {
    file.path = root.filePath(file.path);
    const QString parent = QFileInfo(file.path).path();
    if (!QDir().mkpath(parent))
      throw RunTimeError(u"--documents "_s + quotedForMessage(folder) +
                         u": cannot make the folder "_s + quotedForMessage(parent));
  }
  writeOutputFiles(u"--documents"_s, files);
}

int helpCommand(const QStringList& arguments) {
  QStringList words;
  QString shell;
  QString folder;
  bool isManual = false;
  QStringList given;
  for (const ParsedOption& option : parseOptions(helpTable(), arguments)) {
    if (option.isOperand()) {
      words.append(option.values.first());
      continue;
    }
    given.append(u"--"_s + option.name);
    if (option.name == "man"_L1)
      isManual = true;
    else if (option.name == "completion"_L1)
      shell = wordOf(option);
    else
      folder = option.values.first();
  }
  if (given.size() > 1)
    throw UsageError(given[0] + u": cannot stand with "_s + given[1]);
  if (!words.isEmpty() && !given.isEmpty() && !isManual)
    throw UsageError(given[0] + u": cannot stand with a command"_s);
  const QString name = words.join(u' ');
  if (given.contains(u"--documents"_s)) {
    if (folder.isEmpty())
      throw UsageError(u"--documents: the folder name is empty"_s);
    writeDocuments(folder);
  } else if (!shell.isEmpty()) {
    writeStandardOutput(completionFor(shell));
  } else if (isManual) {
    writeStandardOutput(pagesOf(name));
  } else {
    writeStandardOutput((name.isEmpty() ? programHelp() : helpOf(name)).toUtf8());
  }
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
  for (const Command* command : requireCommands(name))
    texts.append(helpText(*command->table));
  return texts.join(u'\n');
}

const std::vector<Command>& helpCommands() {
  static const std::vector<Command> commands{
      {&helpTable(), CommandGroup::Program, Application::None, helpCommand}};
  return commands;
}

} // namespace zq::app
