// Time zones.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

#include <memory>
#include <optional>

namespace zq::platform {

// How far the clocks of a region are from UTC, at every moment: a value that is cheap to copy.
//
// Regions are those of the system's time-zone database ($TZDIR, else /usr/share/zoneinfo), read
// when a region is first asked for. Before the first change of a region its clocks show local mean
// time; after the last one the rule of its last year goes on for ever. "UTC" and fixed distances
// from it need no database.
//
// Thread: any.
class ZQTICKER_EXPORT TimeZone {
 public:
  // UTC.
  TimeZone();

  // The zone of that name: a region such as "Europe/Berlin", "UTC", or a fixed distance such as
  // "GMT+05:30" or "GMT-8" of less than a day. Upper and lower case count. Nothing for a zone that
  // does not exist.
  // Operation: + timeZoneWithName:
  static std::optional<TimeZone> timeZoneWithName(const QString& name);

  // The process's default. At first that of the environment: $TZ with a name, the path of a file of
  // the database, or a rule such as "CET-1CEST,M3.5.0,M10.5.0/3"; UTC where $TZ is empty or means
  // nothing. Without $TZ it is the zone of /etc/localtime, UTC where there is none.
  static TimeZone defaultTimeZone();
  // Nothing makes it that of the environment as it is now.
  static void setDefaultTimeZone(const std::optional<TimeZone>& timeZone);

  // The name as it was asked for, of a fixed distance "GMT+05:30"; of the environment's zone the
  // region's, or the rule. "localtime" where the zone of /etc/localtime has no name.
  const QString& name() const;

  // Seconds to add to UTC at `moment`, in seconds since 1970.
  int offsetAt(qint64 moment) const;
  // The same at a time on the zone's clocks. Of a time that they skip it is the distance before the
  // change, of one that they show twice that after it.
  int offsetOfLocal(qint64 localTime) const;

  // Zones of one name are equal.
  friend bool operator==(const TimeZone& a, const TimeZone& b) {
    return a.record_ == b.record_ || a.name() == b.name();
  }

 private:
  // Name and rules.
  struct Record;

  explicit TimeZone(std::shared_ptr<const Record> record) : record_(std::move(record)) {}
  static TimeZone ofEnvironment();

  std::shared_ptr<const Record> record_;
};

} // namespace zq::platform
