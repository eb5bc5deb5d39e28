#include "app/bus/QuitCommand.h"

#include "app/bus/ticker_request.h"
#include "app/commands/failures.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
OptionTable makeQuitTable() {
  OptionTable table;
  table.command = u"quit"_s;
  table.brief = u"end the running ticker"_s;
  table.summary = u"Ends the running ticker, as Quit in its menu does. What is queued is gone with "
                  u"it, unless it was saved from the queue window."_s;
  table.options = {{u"help"_s, {}, u"Print this text."_s}};
  table.exitStatus = u"0, 1 where no ticker runs or there is no session bus, 2 for a wrong command "
                     u"line."_s;
  return table;
}

const OptionTable& quitTable() {
  static const OptionTable table = makeQuitTable();
  return table;
}

int quitCommand(const QStringList& arguments) {
  parseOptions(quitTable(), arguments);
  askRunningTicker(quitTable().command, &TickerClient::quit);
  return Success;
}
} // namespace

const std::vector<Command>& quitCommands() {
  static const std::vector<Command> commands{
      {&quitTable(), CommandGroup::Ticker, Application::Core, quitCommand}};
  return commands;
}

} // namespace zq::app
