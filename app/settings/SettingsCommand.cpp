#include "app/settings/SettingsCommand.h"

#include "app/bus/TickerClient.h"
#include "app/commands/OutputValue.h"
#include "app/commands/failures.h"
#include "app/commands/interrupts.h"
#include "app/commands/output_files.h"
#include "app/commands/sign_loading.h"
#include "app/settings/SettingsStore.h"
#include "app/settings/SettingsWindow.h"
#include "app/settings/setting_table.h"

#include <QtCore/QJsonArray>
#include <QtWidgets/QApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
const QString ApplyNote =
    u"A ticker that is running takes the change at once, but for what its own command line says."_s;

// A paragraph for each setting.
QStringList settingNotes() {
  QStringList notes;
  for (const SettingSpec& spec : settingTable())
    notes.append(spec.name + u' ' + spec.values + u": "_s + spec.help);
  return notes;
}

const OptionTable& windowTable() {
  static const OptionTable table = [] {
    OptionTable made;
    made.command = u"settings"_s;
    made.brief = u"open the settings window"_s;
    made.summary = u"Opens the settings window, in the ticker where one runs."_s;
    made.options = {{u"help"_s, {}, u"Print this text."_s}};
    made.notes = {ApplyNote};
    made.exitStatus = u"0, 1 where there is no display, 2 for a wrong command line."_s;
    return made;
  }();
  return table;
}

OptionTable tableOf(const QString& action, const QString& brief, const QString& summary,
                    const QStringList& operands = {}) {
  OptionTable table;
  table.command = u"settings "_s + action;
  table.brief = brief;
  table.summary = summary;
  table.operands = operands;
  table.repeatsLastOperand = operands.contains(u"VALUE"_s);
  table.options = {{u"help"_s, {}, u"Print this text."_s}};
  table.exitStatus =
      u"0, 1 where settings cannot be read or written, 2 for a wrong command line."_s;
  return table;
}

const OptionTable& listTable() {
  static const OptionTable table = [] {
    OptionTable made =
        tableOf(u"list"_s, u"print all settings"_s, u"Prints all settings with their values."_s);
    made.options.insert(
        made.options.begin(),
        {u"json"_s, {}, u"Print them as JSON, null for what is left to the program."_s});
    made.notes = settingNotes();
    made.notes += {
        u"The file is JSON and may be changed by hand: numbers and texts as they are written here, "
        u"true or false for on and off, a list of texts for feeds. Other members of it are left as "
        u"they are. A value that is wrong is left out, a file that is no JSON object is kept under "
        u"another name; both are told in a line."_s,
        u"The options of `run` come before settings, for that run."_s};
    made.files = {{u"$XDG_CONFIG_HOME/zqticker/settings.json"_s,
                   u"The settings; ~/.config where the variable is not set."_s},
                  {u"$XDG_CONFIG_HOME/autostart/org.zqticker.Ticker.desktop"_s,
                   u"What starts the ticker with the session. Lines of your own in it stay."_s}};
    return made;
  }();
  return table;
}

const OptionTable& getTable() {
  static const OptionTable table = [] {
    OptionTable made =
        tableOf(u"get"_s, u"print a setting"_s, u"Prints the value of a setting."_s, {u"NAME"_s});
    made.notes = {u"One line, of feeds one for each. The names are in zqticker settings list "
                  u"--help."_s};
    return made;
  }();
  return table;
}

const OptionTable& setTable() {
  static const OptionTable table = [] {
    OptionTable made =
        tableOf(u"set"_s, u"change a setting"_s, u"Changes a setting."_s, {u"NAME"_s, u"VALUE"_s});
    made.notes = {u"The names and their values are in zqticker settings list --help. feeds takes "
                  u"all addresses at once, the others take one value."_s,
                  ApplyNote};
    made.examples = {u"zqticker settings set speed 90"_s, u"A faster strip, now and later."_s,
                     u"zqticker settings set feeds https://example.org/news.xml "
                     u"https://example.net/atom"_s,
                     u"What a ticker shows that is told nothing else."_s};
    return made;
  }();
  return table;
}

const OptionTable& resetTable() {
  static const OptionTable table = [] {
    OptionTable made = tableOf(
        u"reset"_s, u"give settings their defaults"_s,
        u"Gives the settings of these names their defaults, without a name all."_s, {u"NAME"_s});
    made.repeatsLastOperand = true;
    made.operandsAreOptional = true;
    made.notes = {ApplyNote};
    return made;
  }();
  return table;
}

QStringList operandsOf(const OptionTable& table, const QStringList& arguments) {
  QStringList operands;
  for (const ParsedOption& option : parseOptions(table, arguments))
    if (option.isOperand())
      operands.append(option.values.first());
  return operands;
}

OutputValue outputOf(const QJsonValue& value) {
  if (value.isArray()) {
    OutputValue list = OutputValue::list();
    for (const QJsonValue& element : value.toArray())
      list.append(outputOf(element));
    return list;
  }
  if (value.isBool())
    return OutputValue::boolean(value.toBool());
  if (value.isDouble()) {
    const double number = value.toDouble();
    const auto whole = static_cast<qint64>(number);
    return static_cast<double>(whole) == number ? OutputValue::integer(whole)
                                                : OutputValue::real(number);
  }
  return value.isString() ? OutputValue::string(value.toString()) : OutputValue();
}

// In the ticker that runs, so that there is one window; else in this program.
int openWindow(const QStringList& arguments) {
  parseOptions(windowTable(), arguments);
  TickerClient client;
  client.setStartsTicker(false);
  if (client.hasTicker()) {
    const BusReply reply = client.showSettings();
    if (!reply.ok)
      throw RunTimeError(u"the ticker does not open its settings: "_s + reply.errorMessage);
    return Success;
  }
  const Interrupts interrupts;
  QObject::connect(&interrupts, &Interrupts::interrupted, qApp, &QCoreApplication::quit);
  SettingsStore store;
  SettingsWindow window(store);
  window.showInFront();
  QApplication::setQuitOnLastWindowClosed(true);
  QCoreApplication::exec();
  return Success;
}

int refuseWindow(const QStringList& arguments, const QString& reason) {
  parseOptions(windowTable(), arguments);
  throw RunTimeError(reason +
                     u": the settings window needs one (see zqticker settings set --help)"_s);
}

int list(const QStringList& arguments) {
  const auto given = parseOptions(listTable(), arguments);
  const SettingsStore store;
  if (!given.empty()) {
    OutputValue value = OutputValue::map();
    for (const SettingSpec& spec : settingTable())
      value.insert(spec.name, outputOf(jsonOfSetting(spec, store.settings())));
    writeStandardOutput(value.json().toUtf8() + '\n');
    return Success;
  }
  qsizetype longest = 0;
  for (const SettingSpec& spec : settingTable())
    longest = std::max(longest, spec.name.size());
  QString text;
  for (const SettingSpec& spec : settingTable()) {
    const QStringList values = spec.valuesOf(store.settings());
    const QString margin(longest + 2, u' ');
    text += spec.name.leftJustified(margin.size()) + values.join(u'\n' + margin);
    text = text.trimmed() + u'\n';
  }
  writeStandardOutput(text.toUtf8());
  return Success;
}

int get(const QStringList& arguments) {
  const SettingSpec& spec = settingNamed(operandsOf(getTable(), arguments).value(0));
  const SettingsStore store;
  QString text;
  for (const QString& value : spec.valuesOf(store.settings()))
    text += value + u'\n';
  writeStandardOutput(text.toUtf8());
  return Success;
}

int set(const QStringList& arguments) {
  const QStringList operands = operandsOf(setTable(), arguments);
  const SettingSpec& spec = settingNamed(operands.first());
  const QStringList values = operands.sliced(1);
  Settings checked;
  setSetting(checked, spec, values);
  // The size that a font without one would have makes no difference.
  if (checked.font)
    findFont(*checked.font, 1);
  SettingsStore().change({{spec.name, values}});
  return Success;
}

int reset(const QStringList& arguments) {
  SettingsStore().reset(arguments.isEmpty() ? QStringList() : operandsOf(resetTable(), arguments));
  return Success;
}
} // namespace

const std::vector<Command>& settingsCommands() {
  static const std::vector<Command> commands{
      {&windowTable(), CommandGroup::Ticker, Application::Display, openWindow, nullptr,
       refuseWindow},
      {&listTable(), CommandGroup::Ticker, Application::Core, list},
      {&getTable(), CommandGroup::Ticker, Application::Core, get},
      // Looks for the font.
      {&setTable(), CommandGroup::Ticker, Application::OffscreenGui, set},
      {&resetTable(), CommandGroup::Ticker, Application::Core, reset}};
  return commands;
}

} // namespace zq::app
