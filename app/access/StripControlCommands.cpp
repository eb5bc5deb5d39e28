#include "app/access/StripControlCommands.h"

#include "app/bus/ticker_request.h"
#include "app/commands/failures.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
OptionTable makeTable(const QString& command, const QString& brief, const QString& summary) {
  OptionTable table;
  table.command = command;
  table.brief = brief;
  table.summary = summary;
  table.options = {{u"help"_s, {}, u"Print this text."_s}};
  table.notes = {u"A desktop can bind the command to a key; the program's desktop entry has it as "
                 u"an action, too."_s};
  table.exitStatus = u"0, 1 where no ticker runs or there is no session bus, 2 for a wrong command "
                     u"line."_s;
  return table;
}

const OptionTable& pauseTable() {
  static const OptionTable table =
      makeTable(u"pause"_s, u"let the running ticker stand still"_s,
                u"Lets the strip of the running ticker stand still, as Pause in its menu does, "
                u"until `zqticker resume`."_s);
  return table;
}

const OptionTable& resumeTable() {
  static const OptionTable table =
      makeTable(u"resume"_s, u"let it go on"_s,
                u"Lets the strip of the running ticker go on where it was paused."_s);
  return table;
}

const OptionTable& hideTable() {
  static const OptionTable table =
      makeTable(u"hide"_s, u"take the strip off the screen"_s,
                u"Takes the strip of the running ticker off the screen until `zqticker show`. It "
                u"stands still "
                u"meanwhile; what comes is queued and does not bring it back."_s);
  return table;
}

const OptionTable& showTable() {
  static const OptionTable table =
      makeTable(u"show"_s, u"bring the strip back"_s,
                u"Brings the hidden strip of the running ticker back where it stood, with what it "
                u"showed."_s);
  return table;
}

const OptionTable& focusTable() {
  static const OptionTable table = [] {
    OptionTable made = makeTable(
        u"focus"_s, u"give the strip the keyboard"_s,
        u"Gives the strip of the running ticker the keyboard focus, which it never takes by "
        u"itself; a hidden strip comes back for it. Escape gives the focus back to the window that "
        u"had it."_s);
    made.exitStatus = u"0, 1 where no ticker runs, its strip has nothing to show or there is no "
                      u"session bus, 2 for a wrong command line."_s;
    return made;
  }();
  return table;
}

template <const OptionTable& (*Table)(), BusReply (TickerClient::*Request)()>
int askCommand(const QStringList& arguments) {
  parseOptions(Table(), arguments);
  askRunningTicker(Table().command, Request);
  return Success;
}

template <const OptionTable& (*Table)(), BusReply (TickerClient::*Request)()>
Command commandOf() {
  return {&Table(), CommandGroup::Ticker, Application::Core, askCommand<Table, Request>};
}
} // namespace

const std::vector<Command>& stripControlCommands() {
  static const std::vector<Command> commands{
      commandOf<pauseTable, &TickerClient::pause>(),
      commandOf<resumeTable, &TickerClient::resume>(), commandOf<hideTable, &TickerClient::hide>(),
      commandOf<showTable, &TickerClient::show>(), commandOf<focusTable, &TickerClient::focus>()};
  return commands;
}

} // namespace zq::app
