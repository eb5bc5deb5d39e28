#include "app/commands/manual_pages.h"

#include "app/commands/HelpCommand.h"
#include "app/commands/ManualPage.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
const QString ProgramName = u"zqticker"_s;
const QString UsualExitStatus =
    u"0 when all went well, 1 for what cannot be read or done, 2 for a wrong command line."_s;

QString bold(const QString& text) {
  return u"\\fB"_s + roffText(text) + u"\\fR"_s;
}

QString italic(const QString& text) {
  return u"\\fI"_s + roffText(text) + u"\\fR"_s;
}

// Values as they stand behind an option.
QString tagOf(const OptionSpec& spec) {
  QStringList values;
  for (const QString& value : spec.values)
    values.append(italic(value));
  const QString all = values.join(u' ');
  return bold(u"--"_s + spec.name) + (values.isEmpty() ? u""_s : u" "_s) +
         (spec.isValueOptional ? QString(u'[' + all + u']') : all);
}

QString synopsisOf(const OptionTable& table) {
  QString synopsis =
      bold(ProgramName + u' ' + table.command) + u" ["_s + italic(u"OPTION"_s) + u"]..."_s;
  for (const QString& operand : table.operands)
    synopsis += table.operandsAreOptional ? QString(u" ["_s + italic(operand) + u']')
                                          : QString(u' ' + italic(operand));
  return synopsis + (table.repeatsLastOperand ? u"..."_s : u""_s);
}

void addName(ManualPage& page, const QString& name, const QString& brief) {
  page.section(u"Name"_s);
  page.roffLine(roffText(name) + u" \\- "_s + roffText(brief));
}

// The program's page, and those of the commands that stand near this one.
QStringList neighbours(const Command& command) {
  QStringList names{ProgramName};
  for (const Command& each : allCommands())
    if (&each != &command && each.group == command.group)
      names.append(manualPageName(each));
  return names;
}

// The entries that the commands have, each name once.
std::vector<NamedText> gathered(std::vector<NamedText> OptionTable::*entries) {
  std::vector<NamedText> all;
  for (const Command& command : allCommands())
    for (const NamedText& entry : command.table->*entries)
      if (std::none_of(all.begin(), all.end(),
                       [&](const NamedText& other) { return other.name == entry.name; }))
        all.push_back(entry);
  return all;
}
} // namespace

QString manualPageName(const Command& command) {
  return ProgramName + u'-' + QString(command.name()).replace(u' ', u'-');
}

QByteArray manualPage(const Command& command) {
  const OptionTable& table = *command.table;
  const QString name = manualPageName(command);
  ManualPage page(name);
  addName(page, name, table.brief);
  page.section(u"Synopsis"_s);
  page.roffLine(synopsisOf(table));
  page.section(u"Description"_s);
  page.paragraph(table.summary);
  page.section(u"Options"_s);
  for (const OptionSpec& spec : table.options)
    page.entry(tagOf(spec), spec.fullHelp());

  page.list(u"Keys"_s, table.keys);
  if (!table.notes.isEmpty())
    page.section(u"Notes"_s);
  for (const QString& note : table.notes)
    page.paragraph(note);
  if (!table.examples.isEmpty())
    page.section(u"Examples"_s);
  for (qsizetype i = 0; i + 1 < table.examples.size(); i += 2)
    page.example(table.examples[i], table.examples[i + 1]);
  page.section(u"Exit status"_s);
  page.paragraph(table.exitStatus.isEmpty() ? UsualExitStatus : table.exitStatus);
  page.list(u"Environment"_s, table.environment);
  page.list(u"Files"_s, table.files);
  page.seeAlso(neighbours(command));
  return page.bytes();
}

QByteArray programManualPage() {
  ManualPage page(ProgramName);
  addName(page, ProgramName, u"desktop ticker: texts and pictures that scroll over a strip"_s);
  page.section(u"Synopsis"_s);
  page.roffLine(bold(ProgramName) + u" ["_s + italic(u"COMMAND"_s) + u"] ["_s +
                italic(u"OPTION"_s) + u"]... ["_s + italic(u"ARGUMENT"_s) + u"]..."_s);
  page.section(u"Description"_s);
  page.paragraph(u"Scrolls texts, pictures, feeds, the time and the news of files over a strip at "
                 u"the edge of the screen. Each command has a page of its own. Where no command is "
                 u"named, `run` is meant, with its options."_s);
  page.section(u"Commands"_s);
  QStringList names;
  std::optional<CommandGroup> group;
  for (const Command& command : allCommands()) {
    if (command.group != group)
      page.subsection(titleOf(command.group));
    group = command.group;
    names.append(manualPageName(command));
    const QString brief = command.table->brief;
    page.entry(bold(command.name()),
               brief.left(1).toUpper() + brief.sliced(1) + u". See "_s + names.last() + u"(1)."_s);
  }
  page.section(u"Options"_s);
  page.entry(bold(u"--help"_s), u"Print the list of commands and the options of `run`; behind a "
                                u"command, all about that."_s);
  page.entry(bold(u"--version"_s), u"Print the version."_s);
  page.section(u"Exit status"_s);
  page.paragraph(UsualExitStatus);
  page.list(u"Environment"_s, gathered(&OptionTable::environment));
  page.list(u"Files"_s, gathered(&OptionTable::files));
  page.seeAlso(names);
  return page.bytes();
}

} // namespace zq::app
