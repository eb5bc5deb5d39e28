#include "app/commands/WatchCommand.h"

#include "app/commands/LineOutput.h"
#include "app/commands/command_tables.h"
#include "app/commands/failures.h"
#include "app/commands/interrupts.h"
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
} // namespace

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

} // namespace zq::app
