#include "app/trace/TraceCommand.h"

#include "app/commands/failures.h"
#include "app/commands/output_files.h"
#include "app/trace/TraceReader.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
OptionTable makeTraceCheckTable() {
  OptionTable table;
  table.command = u"trace check"_s;
  table.brief = u"tell how evenly a strip has moved"_s;
  table.summary = u"Reads what `run --trace` has written and prints how far frames were from the "
                  u"ideal line, which steps they made, and which were late."_s;
  table.operands = {u"FILE"_s};
  table.options = {{u"help"_s, {}, u"Print this text."_s}};
  table.notes = {
      u"A trace has a header and one line for each frame: its time in seconds (when it is expected "
      u"on the screen, on the monotonic clock), when it had been drawn, the number of the vertical "
      u"blank at that time, the offset in device pixels, the offset without rounding, device "
      u"pixels per point, points per second, and its kind: run for even motion, begin after a "
      u"rest, glide on the way to another place or speed, change where speed, direction, scale "
      u"or place were changed, as by a hand, redraw where the frame before was drawn once more, "
      u"lost where the program was kept from running and that time is left out. Offsets grow as "
      u"signs go forward, in every direction."_s,
      u"The ideal line moves by speed times scale in each second of the frames' own times; a "
      u"frame may be half a pixel from it. A frame is on time where it follows the one before by "
      u"one blank. Its step is doubled where it is more than the pace of the line around it "
      u"rounded up, and missing where it is less than that rounded down. A frame after blanks "
      u"without one is late: its larger step fits its time, and is no fault; it is counted."_s};
  table.exitStatus = u"0 where no frame is more than half a pixel off and no step of a frame on "
                     u"time is doubled or missing, 1 where one is (the first is told), and for "
                     u"what is no trace, 2 for a wrong command line."_s;
  table.examples = {u"zqticker --text \"Hello\" --trace motion.csv"_s,
                    u"Records until the program is quit."_s, u"zqticker trace check motion.csv"_s,
                    u"Tells how even it was."_s};
  return table;
}

const OptionTable& traceCheckTable() {
  static const OptionTable table = makeTraceCheckTable();
  return table;
}

int traceCheckCommand(const QStringList& arguments) {
  QString path;
  for (const ParsedOption& option : parseOptions(traceCheckTable(), arguments))
    if (option.isOperand())
      path = option.values.first();
  const QString name = quotedForMessage(path.isEmpty() ? u"\"\""_s : path);
  if (QFileInfo(path).isDir())
    throw RunTimeError(name + u": a folder"_s);
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
    throw RunTimeError(name + u": cannot read: "_s + file.errorString());
  TraceReport report;
  readTrace(file, name, report);
  writeStandardOutput(report.lines().join(u'\n').toUtf8() + '\n');
  if (!report.fault().isEmpty())
    throw RunTimeError(name + u": "_s + report.fault());
  return Success;
}
} // namespace

const std::vector<Command>& traceCommands() {
  static const std::vector<Command> commands{
      {&traceCheckTable(), CommandGroup::Program, Application::None, traceCheckCommand}};
  return commands;
}

} // namespace zq::app
