#include "app/access/StripControlCommands.h"

#include "app/bus/ticker_request.h"
#include "app/commands/failures.h"

#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
struct Control {
  QString command;
  QString brief;
  QString summary;
  BusReply (TickerClient::*request)();
  QString refusal{}; // why the ticker may not do it; empty where it always does
};

const Control Controls[] = {
    {u"pause"_s, u"let the running ticker stand still"_s,
     u"Lets the strip of the running ticker stand still, as Pause in its menu does, until "
     u"`zqticker resume`."_s,
     &TickerClient::pause},
    {u"resume"_s, u"let it go on"_s,
     u"Lets the strip of the running ticker go on where it was paused."_s, &TickerClient::resume},
    {u"hide"_s, u"take the strip off the screen"_s,
     u"Takes the strip of the running ticker off the screen until `zqticker show`. It stands still "
     u"meanwhile; what comes is queued and does not bring it back."_s,
     &TickerClient::hide},
    {u"show"_s, u"bring the strip back"_s,
     u"Brings the hidden strip of the running ticker back where it stood, with what it showed."_s,
     &TickerClient::show},
    {u"focus"_s, u"give the strip the keyboard"_s,
     u"Gives the strip of the running ticker the keyboard focus, which it never takes by itself; a "
     u"hidden strip comes back for it. Escape gives the focus back to the window that had it."_s,
     &TickerClient::focus, u"its strip has nothing to show"_s},
};

OptionTable tableOf(const Control& control) {
  OptionTable table;
  table.command = control.command;
  table.brief = control.brief;
  table.summary = control.summary;
  table.options = {{u"help"_s, {}, u"Print this text."_s}};
  table.notes = {u"A desktop can bind the command to a key; the program's desktop entry has it as "
                 u"an action, too."_s};
  table.exitStatus = u"0, 1 where no ticker runs"_s +
                     (control.refusal.isEmpty() ? QString() : u", "_s + control.refusal) +
                     u" or there is no session bus, 2 for a wrong command line."_s;
  return table;
}

template <std::size_t Index>
Command commandOf() {
  static const OptionTable table = tableOf(Controls[Index]);
  const auto run = [](const QStringList& arguments) -> int {
    parseOptions(table, arguments);
    askRunningTicker(table.command, Controls[Index].request);
    return Success;
  };
  return {&table, CommandGroup::Ticker, Application::Core, run};
}

template <std::size_t... Indexes>
std::vector<Command> commandsOf(std::index_sequence<Indexes...>) {
  return {commandOf<Indexes>()...};
}
} // namespace

const std::vector<Command>& stripControlCommands() {
  static const std::vector<Command> commands =
      commandsOf(std::make_index_sequence<std::size(Controls)>());
  return commands;
}

} // namespace zq::app
