#include "app/commands/service_tables.h"

#include "app/commands/strip_values.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// The options that all services have, after those of the service.
void addCommonOptions(OptionTable& table, const QString& usualCount) {
  table.options.push_back({u"loop"_s,
                           {u"COUNT"_s},
                           u"How often each sign is shown: 1 or more, or forever; "_s + usualCount +
                               u" by default."_s});
  table.options.push_back(delayOption());
  table.options.push_back(continuousOption());
  table.options.push_back(
      {u"start"_s, {}, u"Let the session bus start the ticker now, where none is running."_s});
  table.options.push_back(
      {u"keep"_s,
       {},
       u"Leave the signs that are shown forever on the ticker when the service ends."_s});
  table.options.push_back({u"help"_s, {}, u"Print this text."_s});
}

const QString TickerNote =
    u"The ticker is the one on the session bus. While there is none the service waits for it, and "
    u"when it ends and comes again, or the bus does, the service goes on: a new ticker gets what "
    u"is shown forever and what no ticker has taken yet. Except with --start no ticker is "
    u"started. At most 40 signs a second are sent, 150 at once; a ticker keeps 500 of one service. "
    u"One that has enough for the moment is asked again after a pause, of a quarter of a second at "
    u"first and ten seconds at last. Texts have the font and the color of the ticker."_s;

const QString ArrivalNote =
    u"While the ticker takes nothing the newest 1,000 signs wait, with at most 16,000,000 "
    u"characters together."_s;

const QString EndNote =
    u"The service ends on Ctrl+C, SIGTERM and SIGHUP. It takes back the signs that are shown "
    u"forever then, unless --keep is given; others are shown as often as they are to be. A "
    u"service with the same arguments takes the place of the one before: its signs are not shown "
    u"twice."_s;

const QString ExitStatus =
    u"0 when it was ended, 1 for what cannot be read or done, such as without a session bus, 2 for "
    u"a wrong command line."_s;

OptionTable makeFeedTable() {
  OptionTable table;
  table.command = u"service feed"_s;
  table.brief = u"send the items of feeds to the ticker"_s;
  table.summary = u"Sends the items of feeds (RSS, Atom or JSON Feed) to the running ticker and "
                  u"keeps them up to date, in a program of its own."_s;
  table.operands = {u"URL"_s};
  table.repeatsLastOperand = true;
  table.options = {
      {u"feed-items"_s, {u"COUNT"_s}, u"The most items of each feed; 10 by default."_s},
      {u"feed-interval"_s,
       {u"MINUTES"_s},
       u"How long to wait before a feed is asked again; 30 by default, at least 5 but for servers "
       u"on this machine."_s},
      {u"picture-height"_s,
       {u"PIXELS"_s},
       u"How high a picture may be, and a quarter of how wide; larger ones are scaled down. 128 by "
       u"default. Twice the height of the strip suits every screen."_s},
  };
  addCommonOptions(table, u"forever"_s);
  table.notes = {
      u"Feeds are read as by `run --feed`, see zqticker run --help; several take turns. Items with "
      u"a counted --loop are shown as they were when they were sent, those that are shown forever "
      u"change with the feed."_s,
      TickerNote, EndNote};
  table.exitStatus = ExitStatus;
  table.examples = {u"zqticker service feed https://example.org/news.xml"_s,
                    u"The newest items of a feed, beside what the ticker shows already."_s,
                    u"zqticker service feed --start --continuous https://example.org/news.xml "
                    u"https://example.net/atom"_s,
                    u"Two feeds by turns, on a ticker that is started where none runs."_s};
  return table;
}

OptionTable makeWatchTable() {
  OptionTable table;
  table.command = u"service watch"_s;
  table.brief = u"tell the ticker what happens to files"_s;
  table.summary = u"Tells the running ticker what happens to files and folders, in a program of "
                  u"its own."_s;
  table.operands = {u"PATH"_s};
  table.repeatsLastOperand = true;
  addCommonOptions(table, u"once"_s);
  table.notes = {u"What is told is that of `run --watch`, see zqticker run --help. Each PATH must "
                 u"exist when the service starts. What waits to be told is not told twice."_s,
                 TickerNote, ArrivalNote, EndNote};
  table.exitStatus = ExitStatus;
  table.examples = {u"zqticker service watch /etc/hosts Downloads"_s,
                    u"Each change of a file and of a folder's contents."_s};
  return table;
}

OptionTable makeTailTable() {
  OptionTable table;
  table.command = u"service tail"_s;
  table.brief = u"send the lines that files grow by to the ticker"_s;
  table.summary = u"Sends the last line of each text file, and each line that is appended to it, "
                  u"to the running ticker, in a program of its own."_s;
  table.operands = {u"FILE"_s};
  table.repeatsLastOperand = true;
  addCommonOptions(table, u"once"_s);
  table.notes = {u"Files are read as by `run --tail`, see zqticker run --help: also when they are "
                 u"rotated as logs are. One that is not there is waited for."_s,
                 TickerNote, ArrivalNote, EndNote};
  table.exitStatus = ExitStatus;
  table.examples = {u"zqticker service tail /var/log/syslog"_s, u"Every new line of a log."_s};
  return table;
}
} // namespace

const OptionTable& feedServiceTable() {
  static const OptionTable table = makeFeedTable();
  return table;
}

const OptionTable& watchServiceTable() {
  static const OptionTable table = makeWatchTable();
  return table;
}

const OptionTable& tailServiceTable() {
  static const OptionTable table = makeTailTable();
  return table;
}

} // namespace zq::app
