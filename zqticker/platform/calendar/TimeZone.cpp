#include "zqticker/platform/calendar/TimeZone.h"

#include "zqticker/platform/calendar/ZoneRules_p.h"
#include "zqticker/platform/calendar/zone_database_p.h"

#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>

#include <mutex>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
constexpr int Minute = 60;
constexpr int Hour = 3600;

struct DefaultZone {
  std::mutex mutex;
  std::optional<TimeZone> zone;
};
DefaultZone& defaultZone() {
  static DefaultZone zone;
  return zone;
}

// Seconds east of UTC that a name such as "GMT+05:30" stands for.
std::optional<int> fixedOffset(const QString& name) {
  static const QRegularExpression form(u"^GMT([+-])([01]?[0-9]|2[0-3])(?::?([0-5][0-9]))?$"_s);
  const QRegularExpressionMatch match = form.match(name);
  if (!match.hasMatch() || name.endsWith(u'\n'))
    return std::nullopt;
  const int seconds = match.capturedView(2).toInt() * Hour + match.capturedView(3).toInt() * Minute;
  return match.capturedView(1) == u"-" ? -seconds : seconds;
}
} // namespace

struct TimeZone::Record {
  QString name;
  std::shared_ptr<const ZoneRules> rules;

  static TimeZone zone(const QString& name, std::shared_ptr<const ZoneRules> rules) {
    return TimeZone(std::make_shared<const Record>(Record{name, std::move(rules)}));
  }
};

TimeZone::TimeZone() {
  static const TimeZone utc = Record::zone(u"UTC"_s, std::make_shared<const ZoneRules>(0));
  *this = utc;
}

std::optional<TimeZone> TimeZone::timeZoneWithName(const QString& name) {
  if (name == "UTC"_L1)
    return TimeZone();
  if (auto rules = rulesOfRegion(name))
    return Record::zone(name, std::move(rules));
  if (const std::optional<int> offset = fixedOffset(name))
    return Record::zone(fixedZoneName(*offset), std::make_shared<const ZoneRules>(*offset));
  return std::nullopt;
}

TimeZone TimeZone::ofEnvironment() {
  if (qEnvironmentVariableIsSet("TZ")) {
    QString text = qEnvironmentVariable("TZ");
    if (text.startsWith(u':'))
      text.remove(0, 1);
    const bool isPath = text.startsWith(u'/');
    const QString region = isPath ? regionOfPath(text) : text;
    if (const std::optional<TimeZone> zone = timeZoneWithName(region))
      return *zone;
    if (auto rules = isPath ? rulesOfFile(text) : nullptr)
      return Record::zone(text, std::move(rules));
    if (const auto rule = PosixZoneRule::parse(text.toLatin1()))
      return Record::zone(text, std::make_shared<const ZoneRules>(*rule));
    return TimeZone();
  }
  const QString file = u"/etc/localtime"_s;
  for (const QString& target :
       {QFileInfo(file).symLinkTarget(), QFileInfo(file).canonicalFilePath()})
    if (const std::optional<TimeZone> zone = timeZoneWithName(regionOfPath(target)))
      return *zone;
  if (auto rules = rulesOfFile(file))
    return Record::zone(u"localtime"_s, std::move(rules));
  return TimeZone();
}

TimeZone TimeZone::defaultTimeZone() {
  DefaultZone& shared = defaultZone();
  const std::lock_guard lock(shared.mutex);
  if (!shared.zone)
    shared.zone = ofEnvironment();
  return *shared.zone;
}

void TimeZone::setDefaultTimeZone(const std::optional<TimeZone>& timeZone) {
  DefaultZone& shared = defaultZone();
  const std::lock_guard lock(shared.mutex);
  shared.zone = timeZone;
}

const QString& TimeZone::name() const {
  return record_->name;
}

int TimeZone::offsetAt(qint64 moment) const {
  return record_->rules->offsetAt(moment);
}

int TimeZone::offsetOfLocal(qint64 localTime) const {
  return record_->rules->offsetOfLocal(localTime);
}

} // namespace zq::platform
