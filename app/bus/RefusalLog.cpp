#include "app/bus/RefusalLog.h"

#include "app/commands/failures.h"
#include "app/display/FrameClock.h"

#include <QtCore/QLoggingCategory>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
Q_LOGGING_CATEGORY(busLog, "zqticker.bus")
} // namespace

void RefusalLog::note(const QString& sender, const QString& reason) {
  const double time = FrameClock::now();
  QStringList lines = floods_.takeDue(time);
  lines.append(floods_.note(u"messages not shown from "_s + quotedForMessage(sender),
                            quotedForMessage(reason), time));
  for (const QString& line : lines)
    if (!line.isEmpty())
      qCWarning(busLog, "%s", qUtf8Printable(line));
}

} // namespace zq::app
