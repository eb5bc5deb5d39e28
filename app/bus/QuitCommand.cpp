#include "app/bus/QuitCommand.h"

#include "app/bus/TickerClient.h"
#include "app/commands/failures.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
const OptionTable& quitTable() {
  static const OptionTable table = [] {
    OptionTable made;
    made.command = u"quit"_s;
    made.brief = u"end the running ticker"_s;
    made.summary = u"Ends the running ticker, with whatever it shows."_s;
    made.options = {{u"help"_s, {}, u"Print this text."_s}};
    made.exitStatus =
        u"0, 1 where no ticker runs or there is no session bus, 2 for a wrong command line."_s;
    return made;
  }();
  return table;
}

int quitCommand(const QStringList& arguments) {
  parseOptions(quitTable(), arguments);
  TickerClient client;
  if (!client.hasBus())
    throw RunTimeError(u"quit: no session bus, so no running ticker can be asked"_s);
  const BusReply reply = client.quit();
  if (reply.isUnreachable())
    throw RunTimeError(u"quit: no ticker is running"_s);
  if (!reply.ok)
    throw RunTimeError(u"quit: "_s + reply.errorMessage);
  return Success;
}
} // namespace

const std::vector<Command>& quitCommands() {
  static const std::vector<Command> commands{
      {&quitTable(), CommandGroup::Ticker, Application::Core, quitCommand}};
  return commands;
}

} // namespace zq::app
