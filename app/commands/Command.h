// The commands of the program: what each is called, what it takes, and what it needs to run. The
// command line, help, the manual pages and the completion of shells are made from them.
#pragma once

#include "app/commands/OptionTable.h"

#include <optional>
#include <vector>

namespace zq::app {

// Under which heading a command is listed; in this order.
enum class CommandGroup { Screen, Ticker, Signs, Sources, Program };

// What is made before a command runs, and lasts until it has run.
enum class Application {
  None,
  Core,             // a QCoreApplication
  OffscreenGui,     // a QGuiApplication that draws, but not on a display
  OffscreenWidgets, // the same with widgets
  Display           // a QApplication on the display; without one see runWithoutDisplay
};

// `arguments` are those after the command's name. All functions raise CommandFailure, and return
// the exit status where they return one.
struct Command {
  const OptionTable* table; // its `command` is the name: one word or two, as in "feed check"
  CommandGroup group;
  Application application;
  int (*run)(const QStringList& arguments);
  // Before the application is made; null where there is nothing to do. A status ends the program:
  // all has been done then.
  std::optional<int> (*prepare)(const QStringList& arguments) = nullptr;
  // Application::Display alone, and needed there: runs in place of `run`, in an OffscreenGui
  // application, where there is no display; `reason` says why ("no display").
  int (*runWithoutDisplay)(const QStringList& arguments, const QString& reason) = nullptr;

  const QString& name() const { return table->command; }
};

// All commands, by group.
const std::vector<Command>& allCommands();

// A command as a command line names it, and what follows its name.
struct CommandLine {
  const Command* command;
  QStringList arguments;
};

// What `arguments`, those of the program, ask for: the longest name that they begin with; `run`
// where they begin with an option or are none. UsageError where there is no such command; one that
// names the commands below, where "feed" alone is given.
CommandLine findCommand(const QStringList& arguments);

// The command with this name, and those whose names begin with it and a space. May be empty.
std::vector<const Command*> commandsNamed(const QString& name);

} // namespace zq::app
