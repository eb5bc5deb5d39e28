// Many events of a kind in few lines of a log.
#pragma once

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <limits>

namespace zq::app {

// Gathers events that may come by thousands, a flood for each subject: the first one is told as it
// comes, the others are counted, and the count is told each minute and when no more have come for
// a while. A flood of one event is told once.
//
// At most MostFloods are told apart; events of further subjects count as one flood.
//
// Times are those of a monotonic clock, in seconds. Thread: one.
class FloodLog {
 public:
  static constexpr qsizetype MostFloods = 16;
  static constexpr double ReportInterval = 60;
  static constexpr double QuietTime = 10; // ends a flood

  // Takes an event of `subject` ("messages refused from news") at `time`. The line that is to be
  // logged: "subject: detail" where this begins a flood, else empty.
  QString note(const QString& subject, const QString& detail, double time);

  // The lines that are due at `time`: "subject: 12345 in the last minute", "subject: 20000 in all".
  QStringList takeDue(double time);
  // When the next line may be due; infinite for never.
  double nextDue() const;

 private:
  struct Flood {
    qint64 count = 0;
    qint64 reported = 0;
    double last = 0;
    double nextReport = 0;
  };

  QHash<QString, Flood> floods_;
};

} // namespace zq::app
