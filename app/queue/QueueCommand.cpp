#include "app/queue/QueueCommand.h"

#include "app/bus/ticker_request.h"
#include "app/commands/failures.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
OptionTable makeQueueTable() {
  OptionTable table;
  table.command = u"queue"_s;
  table.brief = u"open the window that shows what is queued"_s;
  table.summary = u"Opens the queue window of the running ticker: what is on the strip and what "
                  u"waits, to be added to, edited, moved, removed, saved and loaded."_s;
  table.options = {{u"help"_s, {}, u"Print this text."_s}};
  table.notes = {
      u"Text, pictures, links and files can be dropped on the window's table: a text and a text "
      u"file give a sign for each line, a file of signs gives its signs, and a link is opened by a "
      u"click on its sign."_s,
      u"Keys: Enter or F2 edits, Delete removes, Ctrl+Z brings back, Ctrl or Alt with Up or Down "
      u"moves, Ctrl+O and Ctrl+S load and save, Ctrl+W or Escape closes. The ticker goes on "
      u"without the window."_s,
  };
  table.exitStatus = u"0, 1 where no ticker runs or there is no session bus, 2 for a wrong command "
                     u"line."_s;
  return table;
}

const OptionTable& queueTable() {
  static const OptionTable table = makeQueueTable();
  return table;
}

int queueCommand(const QStringList& arguments) {
  parseOptions(queueTable(), arguments);
  askRunningTicker(queueTable().command, &TickerClient::showQueue);
  return Success;
}
} // namespace

const std::vector<Command>& queueCommands() {
  static const std::vector<Command> commands{
      {&queueTable(), CommandGroup::Ticker, Application::Core, queueCommand}};
  return commands;
}

} // namespace zq::app
