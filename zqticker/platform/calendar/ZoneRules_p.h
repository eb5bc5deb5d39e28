// How far local time is from UTC, and when.
#pragma once

#include "zqticker/platform/calendar/PosixZoneRule_p.h"

#include <QtCore/QByteArrayView>

#include <optional>
#include <vector>

namespace zq::platform {

// The offsets of a time zone: a list of changes, then a rule without end. Immutable.
//
// Moments are seconds since 1970, offsets seconds to add to UTC.
class ZoneRules {
 public:
  // The same offset at all times.
  explicit ZoneRules(qint32 offset) : first_(offset) {}
  // A rule at all times.
  explicit ZoneRules(const PosixZoneRule& rule) : rule_(rule) {}
  // What a file of the time-zone database says (TZif of version 2 or later). Nothing for what is
  // no such file, or one that counts leap seconds.
  static std::optional<ZoneRules> read(QByteArrayView file);

  // The offset at a moment.
  qint32 offsetAt(qint64 seconds) const;
  // The offset at a time on the clock. Of a time that the clock skips it is that before the change,
  // of one that comes twice that after it.
  qint32 offsetOfLocal(qint64 localSeconds) const;

 private:
  struct Change {
    qint64 moment;
    qint32 offset; // from then on
  };

  qint32 first_ = 0; // before all changes
  std::vector<Change> changes_;
  std::optional<PosixZoneRule> rule_; // after all changes
};

} // namespace zq::platform
