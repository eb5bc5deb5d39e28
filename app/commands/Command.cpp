#include "app/commands/Command.h"

#include "app/commands/failures.h"
#include "app/commands/nearest_word.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
const QString UsualCommand = u"run"_s;
constexpr qsizetype LongestName = 2; // words

const Command* exactCommand(const QString& name) {
  const auto& commands = allCommands();
  const auto found = std::find_if(commands.begin(), commands.end(),
                                  [&](const Command& command) { return command.name() == name; });
  return found == commands.end() ? nullptr : &*found;
}

// "show", "make" or "preview", in quotation marks.
QString alternatives(const QString& first) {
  QStringList words;
  for (const Command* command : commandsNamed(first))
    words.append(u'"' + command->name().section(u' ', 1) + u'"');
  const QString last = words.takeLast();
  return words.isEmpty() ? last : QString(words.join(u", ") + u" or "_s + last);
}
} // namespace

CommandLine findCommand(const QStringList& arguments) {
  if (arguments.isEmpty() || arguments.first().startsWith(u'-'))
    return {exactCommand(UsualCommand), arguments};
  for (qsizetype words = std::min(LongestName, arguments.size()); words > 0; --words)
    if (const Command* command = exactCommand(arguments.first(words).join(u' ')))
      return {command, arguments.sliced(words)};
  const QString& first = arguments.first();
  if (!commandsNamed(first).empty())
    throw UsageError(u"%1: needs %2 (see zqticker %1 --help)"_s.arg(first, alternatives(first)));
  QStringList words;
  for (const Command& command : allCommands())
    words.append(command.name().section(u' ', 0, 0));
  throw UsageError(quotedForMessage(first) + u": unknown command"_s + suggestion(first, words) +
                   u" (see zqticker --help)"_s);
}

std::vector<const Command*> commandsNamed(const QString& name) {
  std::vector<const Command*> commands;
  for (const Command& command : allCommands())
    if (command.name() == name || command.name().startsWith(name + u' '))
      commands.push_back(&command);
  return commands;
}

} // namespace zq::app
