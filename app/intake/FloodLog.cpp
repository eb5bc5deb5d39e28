#include "app/intake/FloodLog.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

QString FloodLog::note(const QString& subject, const QString& detail, double time) {
  const bool isOther = !floods_.contains(subject) && floods_.size() >= MostFloods;
  const QString name = isOther ? u"messages refused from further senders"_s : subject;
  Flood& flood = floods_[name];
  flood.last = time;
  if (++flood.count > 1)
    return QString();
  flood.reported = 1;
  flood.nextReport = time + ReportInterval;
  return name + u": "_s + detail;
}

QStringList FloodLog::takeDue(double time) {
  QStringList lines;
  for (auto pair = floods_.begin(); pair != floods_.end();) {
    Flood& flood = pair.value();
    if (time >= flood.last + QuietTime) {
      if (flood.count > 1)
        lines.append(u"%1: %2 in all"_s.arg(pair.key()).arg(flood.count));
      pair = floods_.erase(pair);
      continue;
    }
    if (time >= flood.nextReport) {
      lines.append(
          u"%1: %2 in the last minute"_s.arg(pair.key()).arg(flood.count - flood.reported));
      flood.reported = flood.count;
      flood.nextReport = time + ReportInterval;
    }
    ++pair;
  }
  return lines;
}

double FloodLog::nextDue() const {
  double due = std::numeric_limits<double>::infinity();
  for (const Flood& flood : floods_)
    due = std::min({due, flood.last + QuietTime, flood.nextReport});
  return due;
}

} // namespace zq::app
