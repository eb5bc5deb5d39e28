#include "app/commands/WatchCommand.h"

#include "app/commands/LineOutput.h"
#include "app/commands/failures.h"
#include "app/commands/interrupts.h"
#include "app/commands/output_files.h"
#include "app/commands/watch_lines.h"
#include "app/services/FolderWatch.h"
#include "app/services/PathWatch.h"
#include "zqticker/platform/system/KernelEventQueue.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSet>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>

using namespace Qt::StringLiterals;

namespace zq::app {

using namespace platform;

namespace {
OptionTable makeWatchTable() {
  OptionTable table;
  table.command = u"watch"_s;
  table.brief = u"print what happens to files, as it happens"_s;
  table.summary = u"Prints a line for each thing that happens to files and folders, until it is "
                  u"interrupted."_s;
  table.operands = {u"PATH"_s};
  table.repeatsLastOperand = true;
  table.options = {
      {u"json"_s, {}, u"Print JSON, one object on a line."_s},
      {u"all-flags"_s, {}, u"Watch for everything."_s},
      {u"mask"_s,
       {u"HEX"_s},
       u"Watch for the sum of: 1 deleted, 2 written, 4 grown, 8 attributes, 10 links, 20 renamed, "
       u"40 revoked. By default 2b: deleted, written, attributes and renamed."_s},
      {u"folders"_s,
       {},
       u"Watch folders with their files: any change inside one, of a file's contents too, is one "
       u"\"written\" of the folder for each burst of changes."_s},
      {u"help"_s, {}, u"Print this text."_s},
  };
  table.notes = {
      u"A line is a word, a tab and the path as it was given. Words: written (contents; of a "
      u"folder: an entry came, went or was renamed), deleted, renamed (it has left the path), "
      u"attributes (mode, owner or times), grown, links (the number of names; of a folder: of its "
      u"subfolders) and revoked (its file system was unmounted). Several things that happen before "
      u"they can be told may be one line. A backslash, control characters and line separators in a "
      u"path are written as in JSON: \\\\, \\n, \\t, \\u001b."_s,
      u"With --json the first line is {\"ready\": true}, when everything is watched. Lines like "
      u"{\"time\": NANOSECONDS, \"notification\": NAME, \"path\": PATH} follow. The time, since "
      u"1970 in UTC, is that at which the report arrived. Names are "
      u"VXKQueueFileRenamedNotification, VXKQueueFileWrittenToNotification, "
      u"VXKQueueFileDeletedNotification, VXKQueueFileAttributesChangedNotification, "
      u"VXKQueueFileSizeIncreasedNotification, VXKQueueFileLinkCountChangedNotification and "
      u"VXKQueueFileAccessRevocationNotification."_s,
      u"A path is followed. When the file is replaced, as editors do to save, or is deleted or "
      u"renamed and there is one again later, that one is watched; its coming is told as written. "
      u"Symbolic links are followed. A path at which there is nothing to watch at the start is an "
      u"error, and nothing is watched then. With --folders a folder that is renamed is watched "
      u"until there is another at its path."_s,
      u"The command ends on Ctrl+C and as soon as nobody reads its output any more."_s};
  table.exitStatus =
      u"0 when it was ended, 1 where a path cannot be watched or a line cannot be written, 2 for a "
      u"wrong command line."_s;
  table.examples = {u"zqticker watch notes.txt /etc/hosts"_s,
                    u"What happens to two files."_s,
                    u"zqticker watch --folders --json Downloads"_s,
                    u"Whatever changes in a folder, for a script."_s,
                    u"zqticker watch --mask 2 page.html | while read -r line; do make; done"_s,
                    u"Makes anew what depends on a file, each time that it has been saved."_s};
  return table;
}

const OptionTable& watchTable() {
  static const OptionTable table = makeWatchTable();
  return table;
}

constexpr std::uint32_t EveryEvent = 0x7F;

struct WatchOptions {
  bool json = false;
  bool folders = false;
  std::uint32_t mask = PathWatch::DefaultMask;
  QStringList paths;
};

std::uint32_t maskOf(const ParsedOption& option) {
  const QString& text = option.values.first();
  const QString digits = text.startsWith("0x"_L1, Qt::CaseInsensitive) ? text.sliced(2) : text;
  const bool isHexadecimal =
      !digits.isEmpty() && std::all_of(digits.begin(), digits.end(), [](QChar digit) {
        return u"0123456789abcdefABCDEF"_s.contains(digit);
      });
  if (!isHexadecimal)
    throw UsageError(option.text() + u": not a hexadecimal number"_s);
  bool isInRange = false;
  const uint mask = digits.toUInt(&isInRange, 16);
  if (!isInRange || mask == 0 || (mask & ~EveryEvent) != 0)
    throw UsageError(option.text() + u": must be between 1 and 7f"_s);
  return mask;
}

WatchOptions readOptions(const QStringList& arguments) {
  WatchOptions options;
  QString maskOption;
  QSet<QString> seen;
  for (const ParsedOption& option : parseOptions(watchTable(), arguments)) {
    if (option.isOperand()) {
      // One that is named twice is one path.
      const QString& path = option.values.first();
      if (!seen.contains(path))
        options.paths.append(path);
      seen.insert(path);
      continue;
    }
    if (option.name == "json"_L1)
      options.json = true;
    else if (option.name == "folders"_L1)
      options.folders = true;
    if (option.name != "mask"_L1 && option.name != "all-flags"_L1)
      continue;
    if (!maskOption.isEmpty())
      throw UsageError(maskOption + u": cannot stand with --"_s + option.name);
    maskOption = u"--"_s + option.name;
    options.mask = option.name == "mask"_L1 ? maskOf(option) : EveryEvent;
  }
  if (options.folders && !maskOption.isEmpty())
    throw UsageError(maskOption + u": cannot stand with --folders"_s);
  return options;
}

QString textOf(int error, const QString& path) {
  if (error == ENOSPC)
    return u"the kernel's limit of watches is reached"_s;
  if (error == EMFILE)
    return u"the kernel's limit of event queues, or of open files, is reached"_s;
  // What the system's names are read into where they are not UTF-8.
  if (error == ENOENT && path.contains(QChar::ReplacementCharacter))
    return u"no such file, or its name is not UTF-8"_s;
  return QString::fromLocal8Bit(std::strerror(error));
}

// Prints what is reported.
class Printer {
 public:
  Printer(LineOutput& output, const WatchOptions& options)
      : output_(output), isJson_(options.json), toldEvents_(options.mask) {}

  void ready() {
    if (isJson_)
      output_.write(readyWatchLine());
  }

  void print(const QString& notification, const QString& path) {
    const auto time = std::chrono::system_clock::now().time_since_epoch();
    output_.write(
        isJson_ ? jsonWatchLine(std::chrono::duration_cast<std::chrono::nanoseconds>(time).count(),
                                notification, path)
                : plainWatchLine(notification, path));
  }

  // Other contents at a path are written ones, however they came there.
  void printAppearance(const QString& path) {
    if (toldEvents_ & VnodeWrite)
      print(VXFileWatcherWriteNotification, path);
  }

 private:
  LineOutput& output_;
  bool isJson_;
  std::uint32_t toldEvents_;
};

// Prints a line for each path that cannot be watched, and says whether there is one.
template <class ErrorOf>
bool anyFails(const QStringList& paths, const ErrorOf& errorOf) {
  bool fails = false;
  for (const QString& path : paths) {
    const int error = errorOf(path);
    if (error == 0)
      continue;
    printError(quotedForMessage(path.isEmpty() ? u"\"\""_s : path) + u": cannot watch: "_s +
               textOf(error, path));
    fails = true;
  }
  return fails;
}

int watchCommand(const QStringList& arguments) {
  const WatchOptions options = readOptions(arguments);
  Interrupts interrupts;
  LineOutput output(interrupts);
  Printer printer(output, options);
  QObject::connect(&interrupts, &Interrupts::interrupted, &output,
                   [] { QCoreApplication::quit(); });
  QObject::connect(&output, &LineOutput::ended, &output, [] { QCoreApplication::quit(); });

  const auto print = [&](const QString& notification, const QString& path) {
    printer.print(notification, path);
  };
  FolderWatch folders(print);
  PathWatch paths(print, [&](const QString& path) { printer.printAppearance(path); });
  const bool fails = anyFails(options.paths, [&](const QString& path) {
    return options.folders ? folders.addPath(path) : paths.addPath(path, options.mask);
  });
  if (fails)
    return RunTimeFailure;
  printer.ready();
  if (!output.hasEnded())
    QCoreApplication::exec();
  if (!output.failure().isEmpty())
    throw RunTimeError(u"standard output: "_s + output.failure());
  return Success;
}
} // namespace

const std::vector<Command>& watchCommands() {
  static const std::vector<Command> commands{
      {&watchTable(), CommandGroup::Sources, Application::Core, watchCommand,
       // Before the application opens descriptors of its own, one of which might take its place.
       [](const QStringList&) -> std::optional<int> {
         requireStandardOutput();
         return std::nullopt;
       }}};
  return commands;
}

} // namespace zq::app
