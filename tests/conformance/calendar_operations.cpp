// Dates that carry a time zone, and Gregorian calendars.
#include "tests/conformance/Operations.h"

#include "zqticker/foundation_additions/calendar_additions.h"
#include "zqticker/platform/calendar/Calendar.h"
#include "zqticker/platform/calendar/CalendarDate.h"

using namespace Qt::StringLiterals;

namespace zq::conformance {

using namespace platform;

namespace {
CalendarDate calendarDateOf(const CaseValue& value) {
  const CaseValue& description = memberOf(value, u"calendarDate");
  return CalendarDate(Date(numberOf(memberOf(description, u"instant"))),
                      timeZoneOf(memberOf(description, u"timeZone")));
}

Date dateOf(const CaseValue& value) {
  return value.find(u"calendarDate") ? calendarDateOf(value)
                                     : Date(numberOf(memberOf(value, u"date")));
}

Calendar calendarOf(const CaseValue& value) {
  const CaseValue& description = memberOf(value, u"calendar");
  auto calendar = Calendar::calendarWithIdentifier(stringOf(memberOf(description, u"identifier")));
  if (!calendar)
    throw CaseError("unknown calendar " + description.json().toStdString());
  calendar->setTimeZone(timeZoneOf(memberOf(description, u"timeZone")));
  return *calendar;
}

CaseValue resultOf(const DateComponents& components) {
  CaseValue::Map fields;
  const auto add = [&fields](const QString& name, const std::optional<qint64>& field) {
    if (field)
      fields.emplace_back(name, *field);
  };
  add(u"era"_s, components.era);
  add(u"year"_s, components.year);
  add(u"month"_s, components.month);
  add(u"day"_s, components.day);
  add(u"hour"_s, components.hour);
  add(u"minute"_s, components.minute);
  add(u"second"_s, components.second);
  return tagged(u"components"_s, std::move(fields));
}

template <class Function>
Operation onCalendarDate(Function function) {
  return [function](const Case& each) {
    const CalendarDate date = calendarDateOf(each.receiver);
    if constexpr (std::is_same_v<decltype(function(date)), CalendarDate>)
      return Outcome{.value = conformance::resultOf(function(date))};
    else
      return Outcome{.value = function(date)};
  };
}

template <class Function>
Operation onCalendarAndDate(Function function) {
  return [function](const Case& each) {
    return Outcome{.value =
                       resultOf(function(calendarOf(each.receiver), dateOf(each.argument(0))))};
  };
}

Outcome ofNumbers(const Case& each, bool hasTime) {
  const auto number = [&each](std::size_t index) { return integerOf(each.argument(index)); };
  const Calendar calendar = calendarOf(each.receiver);
  const auto date = hasTime ? dateFromYear(calendar, number(0), number(1), number(2), number(3),
                                           number(4), number(5))
                            : dateFromYear(calendar, number(0), number(1), number(2));
  return {.value = date ? conformance::resultOf(*date) : CaseValue()};
}
} // namespace

void addCalendarDateOperations(Operations& operations) {
  operations[u"dateByRemovingTimeFromDate:"_s] = [](const Case& each) {
    return Outcome{.value =
                       conformance::resultOf(dateByRemovingTimeFromDate(dateOf(each.argument(0))))};
  };
  operations[u"startOfDay"_s] = onCalendarDate(startOfDay);
  operations[u"startOfNextDay"_s] = onCalendarDate(startOfNextDay);
  operations[u"startOfMonth"_s] = onCalendarDate(startOfMonth);
  operations[u"startOfNextMonth"_s] = onCalendarDate(startOfNextMonth);
  operations[u"equalToDay:"_s] = [](const Case& each) {
    return Outcome{.value =
                       equalToDay(calendarDateOf(each.receiver), calendarDateOf(each.argument(0)))};
  };
  operations[u"isToday"_s] = onCalendarDate(isToday);
  operations[u"isYesterday"_s] = onCalendarDate(isYesterday);
  operations[u"minuteOfDay"_s] = onCalendarDate(minuteOfDay);
}

void addGregorianOperations(Operations& operations) {
  operations[u"gregorianCalendar"_s] = [](const Case&) {
    const Calendar calendar = gregorianCalendar();
    return Outcome{.value = tagged(u"calendar"_s,
                                   CaseValue::Map{{u"identifier"_s, calendar.calendarIdentifier()},
                                                  {u"timeZone"_s, calendar.timeZone().name()}})};
  };
  operations[u"dateFromYear:month:day:"_s] = [](const Case& each) {
    return ofNumbers(each, false);
  };
  operations[u"dateFromYear:month:day:hour:minute:second:"_s] = [](const Case& each) {
    return ofNumbers(each, true);
  };
  operations[u"gregorianDateComponentsForDate:"_s] =
      onCalendarAndDate(gregorianDateComponentsForDate);
  operations[u"gregorianTimeComponentsForDate:"_s] =
      onCalendarAndDate(gregorianTimeComponentsForDate);
  operations[u"gregorianDateAndTimeComponentsForDate:"_s] =
      onCalendarAndDate(gregorianDateAndTimeComponentsForDate);
}

} // namespace zq::conformance
