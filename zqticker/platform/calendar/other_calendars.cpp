#include "zqticker/platform/calendar/other_calendars_p.h"

#include "zqticker/platform/calendar/gregorian_days_p.h"
#include "zqticker/platform/calendar/icu_making_p.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

#include <unicode/gregocal.h>
#include <unicode/strenum.h>

#include <cmath>
#include <limits>

namespace zq::platform {

namespace {
constexpr double MillisecondsPerDay = 86'400'000;
// Some calendars search for their years: beyond these they would take long or be wrong.
constexpr qint64 LastYear = 100'000;
constexpr qint64 LastMonth = 13 * LastYear;
constexpr qint64 LastDay = 366 * LastYear;

QSet<QString> knownIdentifiers() {
  QSet<QString> identifiers;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::StringEnumeration> values(
      icu::Calendar::getKeywordValuesForLocale("calendar", icu::Locale::getRoot(), false, status));
  while (U_SUCCESS(status) && values) {
    const char* value = values->next(nullptr, status);
    if (!value)
      break;
    identifiers.insert(QString::fromLatin1(value));
  }
  return identifiers;
}

// The calendar of that identifier for this thread alone, in UTC.
icu::Calendar* calendarOfThread(const QString& identifier) {
  thread_local QHash<QString, std::shared_ptr<icu::Calendar>> calendars;
  std::shared_ptr<icu::Calendar>& calendar = calendars[identifier];
  if (!calendar)
    calendar = makeCalendar(identifier, icu::Locale::getRoot(), nullptr);
  return calendar.get();
}

icu::Calendar* calendarAtDay(const QString& identifier, qint64 days, UErrorCode& status) {
  if (!isWithin(days, LastDay))
    return nullptr;
  icu::Calendar* const calendar = calendarOfThread(identifier);
  if (calendar)
    calendar->setTime(static_cast<double>(days) * MillisecondsPerDay, status);
  return calendar;
}
} // namespace

bool isCalendarIdentifier(const QString& identifier) {
  static const QSet<QString> known = knownIdentifiers();
  return known.contains(identifier);
}

std::unique_ptr<icu::Calendar> makeCalendar(const QString& identifier, const icu::Locale& locale,
                                            std::unique_ptr<icu::TimeZone> zone) {
  const std::lock_guard making(icuMakingMutex());
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale withCalendar = locale;
  withCalendar.setKeywordValue("calendar", identifier.toLatin1().constData(), status);
  if (!zone)
    zone.reset(icu::TimeZone::getGMT()->clone());
  std::unique_ptr<icu::Calendar> calendar(
      icu::Calendar::createInstance(zone.release(), withCalendar, status));
  // Several calendars have the Gregorian one's days and, left alone, its Julian ones.
  if (auto* gregorian = dynamic_cast<icu::GregorianCalendar*>(calendar.get()))
    gregorian->setGregorianChange(std::numeric_limits<double>::lowest(), status);
  return U_SUCCESS(status) ? std::move(calendar) : nullptr;
}

std::optional<qint64> daysToMonth(const QString& identifier, std::optional<qint64> era, qint64 year,
                                  std::optional<qint64> month) {
  icu::Calendar* const calendar = calendarOfThread(identifier);
  if (!calendar || !isWithin(year, LastYear) || !isWithin(month.value_or(1), LastMonth) ||
      era.value_or(0) < 0 || era.value_or(0) > LastYear)
    return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  calendar->clear();
  if (era)
    calendar->set(UCAL_ERA, static_cast<int32_t>(*era));
  calendar->set(UCAL_YEAR, static_cast<int32_t>(year));
  if (month) {
    calendar->set(UCAL_MONTH, static_cast<int32_t>(*month - 1));
    calendar->set(UCAL_DATE, 1);
  }
  const double milliseconds = calendar->getTime(status);
  if (U_FAILURE(status))
    return std::nullopt;
  return static_cast<qint64>(std::floor(milliseconds / MillisecondsPerDay));
}

std::optional<CalendarDay> calendarDay(const QString& identifier, qint64 days) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Calendar* const calendar = calendarAtDay(identifier, days, status);
  if (!calendar)
    return std::nullopt;
  const CalendarDay day{calendar->get(UCAL_ERA, status), calendar->get(UCAL_YEAR, status),
                        calendar->get(UCAL_MONTH, status) + 1, calendar->get(UCAL_DATE, status)};
  return U_SUCCESS(status) ? std::optional(day) : std::nullopt;
}

std::optional<qint64> dayOfYear(const QString& identifier, qint64 days) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Calendar* const calendar = calendarAtDay(identifier, days, status);
  if (!calendar)
    return std::nullopt;
  const qint64 day = calendar->get(UCAL_DAY_OF_YEAR, status);
  return U_SUCCESS(status) ? std::optional(day) : std::nullopt;
}

} // namespace zq::platform
