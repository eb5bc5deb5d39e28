#include "app/commands/file_following.h"

#include "app/commands/failures.h"
#include "app/commands/strip_setup.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
std::unique_ptr<FileService> follow(const FileOptions& files, const FileReceivers& receivers,
                                    MissingFiles missing) {
  if (files.isEmpty())
    return nullptr;
  auto service = std::make_unique<FileService>(files, receivers);
  if (const std::optional<FileFailure> failure = service->start(missing))
    throw RunTimeError(failure->option + u' ' + quotedForMessage(failure->path) + u": "_s +
                       failure->reason);
  return service;
}
} // namespace

std::unique_ptr<FileService> followFiles(const StripOptions& options,
                                         const FileReceivers& receivers) {
  return follow(options.files, receivers, MissingFiles::AreAwaited);
}

void takeLastLines(TickerDisplay& display, const StripOptions& options, MissingFiles missing) {
  const LoopRule rule = lineRuleOf(options);
  follow(options.files,
         {[&](const QString& line, const QString&) { display.addLine(line, 0, rule); },
          [](const FileReport&) {}, nullptr},
         missing);
}

} // namespace zq::app
