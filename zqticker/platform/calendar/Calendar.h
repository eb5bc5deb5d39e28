// Calendars: dates to fields and back.
#pragma once

#include "zqticker/platform/calendar/Date.h"
#include "zqticker/platform/calendar/DateComponents.h"
#include "zqticker/platform/calendar/Locale.h"
#include "zqticker/platform/calendar/TimeZone.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

#include <optional>

namespace zq::platform {

ZQTICKER_EXPORT extern const QString GregorianCalendar; // "gregorian"

// A calendar of a time zone: a value that is cheap to copy and to make.
//
// The Gregorian calendar is reckoned backwards without end: 15 October 1582 follows the fourteenth,
// and no day is Julian. Years count in eras: 1 is the Common Era, 0 the one before, in which year 1
// is followed by year 1 of the other. It reaches 5,700,000 years before and after the reference
// date, the other calendars 100,000.
//
// Thread: any; one value from one thread at a time.
class ZQTICKER_EXPORT Calendar {
 public:
  // The calendar of that identifier, in the default time zone and for the user's locale:
  // "gregorian", "buddhist", "chinese", "coptic", "dangi", "ethiopic", "ethiopic-amete-alem",
  // "hebrew", "indian", "islamic" and its kinds, "iso8601", "japanese", "persian" or "roc". Nothing
  // for any other.
  // Operation: initWithCalendarIdentifier:
  static std::optional<Calendar> calendarWithIdentifier(const QString& identifier);

  // The user's: that of the current locale, in the default time zone, both as they are now.
  static Calendar currentCalendar();
  // The calendar in use where `locale` is, in the default time zone.
  static Calendar ofLocale(const Locale& locale);

  // Whether the Gregorian calendar reaches `date`.
  static bool reaches(const Date& date);

  const QString& calendarIdentifier() const { return identifier_; }

  const TimeZone& timeZone() const { return timeZone_; }
  // Nothing for the default time zone as it is now.
  void setTimeZone(const std::optional<TimeZone>& timeZone);

  // Whose weeks it has: a date formatter asks for them.
  const Locale& locale() const { return locale_; }
  void setLocale(const Locale& locale) { locale_ = locale; }

  // The date of the fields, in this time zone. Fields out of range carry over, into larger fields
  // and from them: 31 February is early March, hour -1 the last of the day before. A time that the
  // zone's clocks skip is as much later, of one that they show twice it is the second. Fields that
  // are not set: the era is the Common Era or the calendar's present one, year, month and day are
  // 1, the time is 0. Nothing for an era that the calendar has not, and for what is out of its
  // reach.
  std::optional<Date> dateFromComponents(const DateComponents& components) const;

  // The fields of `fromDate` in this time zone, those of `units` (bits of CalendarUnit) only. The
  // fraction of a second is cut off towards the past. No field is set for a date out of reach,
  // infinite or not a number.
  DateComponents components(unsigned units, const Date& fromDate) const;

  // The place, from 1 on, of the `unit` that `forDate` lies in among those of its `inUnit`. Units
  // are the day in its era, year or month; nothing for others, and for a date out of reach. Days of
  // the era before the Common Era count backwards from 0, its last day.
  // Operation: ordinalityOfUnit:inUnit:forDate:
  std::optional<qint64> ordinalityOfUnit(CalendarUnit unit, CalendarUnit inUnit,
                                         const Date& forDate) const;

  // The same calendar of the same zone and locale.
  friend bool operator==(const Calendar&, const Calendar&) = default;

 private:
  Calendar(const QString& identifier, const TimeZone& timeZone, const Locale& locale);
  std::optional<qint64> localSeconds(const Date& date) const;

  QString identifier_;
  TimeZone timeZone_;
  Locale locale_;
  bool isGregorian_; // in its days and years
};

} // namespace zq::platform
