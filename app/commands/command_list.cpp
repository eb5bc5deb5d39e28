// Every command of the program: one line for each room.
#include "app/access/StripControlCommands.h"
#include "app/bus/QuitCommand.h"
#include "app/commands/AppearanceCommand.h"
#include "app/commands/ArchiveCommand.h"
#include "app/commands/Command.h"
#include "app/commands/FeedCommand.h"
#include "app/commands/FetchCommand.h"
#include "app/commands/HelpCommand.h"
#include "app/commands/PostCommand.h"
#include "app/commands/ServiceCommand.h"
#include "app/commands/WatchCommand.h"
#include "app/commands/strip_commands.h"
#include "app/queue/QueueCommand.h"
#include "app/settings/SettingsCommand.h"
#include "app/trace/TraceCommand.h"

#include <algorithm>

namespace zq::app {

namespace {
using Room = const std::vector<Command>& (*)();
// clang-format off
constexpr Room Rooms[] = {
    stripCommands,
    settingsCommands,
    stripControlCommands,
    quitCommands,
    postCommands,
    serviceCommands,
    archiveCommands,
    appearanceCommands,
    fetchCommands,
    feedCommands,
    watchCommands,
    queueCommands,
    traceCommands,
    helpCommands,
};
// clang-format on
} // namespace

const std::vector<Command>& allCommands() {
  static const std::vector<Command> commands = [] {
    std::vector<Command> all;
    for (const Room room : Rooms)
      all.insert(all.end(), room().begin(), room().end());
    std::stable_sort(all.begin(), all.end(),
                     [](const Command& a, const Command& b) { return a.group < b.group; });
    return all;
  }();
  return commands;
}

} // namespace zq::app
