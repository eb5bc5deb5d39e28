// Plain dates.
#include "tests/conformance/Operations.h"

#include "zqticker/foundation_additions/calendar_additions.h"
#include "zqticker/platform/calendar/CalendarDate.h"
#include "zqticker/platform/calendar/Locale.h"

using namespace Qt::StringLiterals;

namespace zq::conformance {

using namespace platform;

namespace {
Date receiverOf(const Case& each) {
  return Date(numberOf(memberOf(each.receiver, u"date")));
}

CaseValue resultOf(const std::optional<Date>& date) {
  return date ? conformance::resultOf(*date) : CaseValue();
}

template <class Function>
Operation onDate(Function function) {
  return [function](const Case& each) { return Outcome{.value = function(receiverOf(each))}; };
}

Outcome ofNumbers(const Case& each) {
  const auto number = [&each](std::size_t index) { return integerOf(each.argument(index)); };
  const CaseValue& zone = each.argument(6);
  return {
      .value = resultOf(dateWithYear(
          number(0), number(1), number(2), number(3), number(4), number(5),
          zone.isNull() ? std::nullopt : std::optional(timeZoneOf(memberOf(zone, u"timeZone")))))};
}

Outcome adding(const Case& each) {
  const auto number = [&each](std::size_t index) { return integerOf(each.argument(index)); };
  return {.value = resultOf(dateByAddingYears(receiverOf(each), number(0), number(1), number(2),
                                              number(3), number(4), number(5)))};
}

Outcome describing(const Case& each) {
  const CaseValue& locale = each.argument(1);
  return {.value = conformance::resultOf(descriptionWithCalendarFormat(
              receiverOf(each), stringOf(each.argument(0)),
              locale.isNull() ? std::nullopt
                              : std::optional(Locale(stringOf(memberOf(locale, u"locale"))))))};
}
} // namespace

void addDateOperations(Operations& operations) {
  operations[u"dateWithYear:month:day:hour:minute:second:timeZone:"_s] = ofNumbers;
  operations[u"dateByAddingYears:months:days:hours:minutes:seconds:"_s] = adding;
  operations[u"dayOfCommonEra"_s] = onDate(dayOfCommonEra);
  operations[u"yearOfCommonEra"_s] = onDate(yearOfCommonEra);
  operations[u"monthOfYear"_s] = onDate(monthOfYear);
  operations[u"dayOfMonth"_s] = onDate(dayOfMonth);
  operations[u"hourOfDay"_s] = onDate(hourOfDay);
  operations[u"minuteOfHour"_s] = onDate(minuteOfHour);
  operations[u"secondOfMinute"_s] = onDate(secondOfMinute);
  operations[u"timeZone"_s] = [](const Case& each) {
    return Outcome{.value = tagged(u"timeZone"_s, timeZone(receiverOf(each)).name())};
  };
  operations[u"descriptionWithCalendarFormat:locale:"_s] = describing;
}

} // namespace zq::conformance
