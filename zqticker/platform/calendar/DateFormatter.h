// Dates as text.
#pragma once

#include "zqticker/platform/calendar/Calendar.h"
#include "zqticker/platform/calendar/Date.h"
#include "zqticker/platform/calendar/Locale.h"
#include "zqticker/platform/calendar/TimeZone.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

#include <optional>

namespace zq::platform {

// How much of a date, or of a time, a locale's own pattern shows.
enum class DateFormatterStyle { None = 0, Short = 1, Medium = 2, Long = 3, Full = 4 };

// Writes dates by a Unicode date pattern ("yyyy-MM-dd HH:mm"), or in one of a locale's own styles:
// a value. Text between apostrophes stands for itself, letters that are no fields are an error.
// Days before 15 October 1582 are Gregorian.
//
// Thread: any; one value from one thread at a time.
class ZQTICKER_EXPORT DateFormatter {
 public:
  // No style, for the user's locale as it is now.
  DateFormatter();

  // The pattern: the one that was set, else that of the styles; empty for no style at all.
  QString dateFormat() const;
  void setDateFormat(const QString& format) { format_ = format; }

  // Styles count as long as no pattern is set: setting one forgets the pattern.
  DateFormatterStyle dateStyle() const { return dateStyle_; }
  void setDateStyle(DateFormatterStyle style);
  DateFormatterStyle timeStyle() const { return timeStyle_; }
  void setTimeStyle(DateFormatterStyle style);

  const Locale& locale() const { return locale_; }
  // Nothing for the user's as it is now.
  void setLocale(const std::optional<Locale>& locale);

  // The calendar whose fields are written, with its locale's weeks. By default the locale's.
  Calendar calendar() const;
  // Takes identifier and locale; the time zone stays. Nothing for the locale's.
  void setCalendar(const std::optional<Calendar>& calendar) { calendar_ = calendar; }

  // By default that which is the process's default when a date is written.
  TimeZone timeZone() const;
  void setTimeZone(const std::optional<TimeZone>& timeZone) { timeZone_ = timeZone; }

  // The text of `fromDate`. Fractions of a second are cut off; they count to the microsecond.
  // Nothing for a pattern with a letter that is no field, and for a date that is infinite, not a
  // number or out of the Gregorian calendar's reach.
  // Operation: stringFromDate:
  std::optional<QString> stringFromDate(const Date& fromDate) const;

 private:
  std::optional<QString> format_;
  DateFormatterStyle dateStyle_ = DateFormatterStyle::None;
  DateFormatterStyle timeStyle_ = DateFormatterStyle::None;
  Locale locale_;
  std::optional<Calendar> calendar_;
  std::optional<TimeZone> timeZone_;
};

} // namespace zq::platform
