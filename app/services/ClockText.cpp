#include "app/services/ClockText.h"

#include "app/intake/LineSplitter.h"
#include "zqticker/foundation_additions/ZQTimeFormatPatternConverter.h"
#include "zqticker/foundation_additions/calendar_additions.h"
#include "zqticker/platform/calendar/Locale.h"

#include <cmath>

namespace zq::app {

using platform::Date;

namespace {
constexpr double Minute = 60;

// Whether a Unicode date pattern has a field that is finer than a minute.
bool tellsSeconds(const QString& pattern) {
  bool isLiteral = false;
  for (const QChar c : pattern) {
    if (c == u'\'')
      isLiteral = !isLiteral;
    else if (!isLiteral && (c == u's' || c == u'S' || c == u'A'))
      return true;
  }
  return false;
}
} // namespace

ClockText::ClockText(const QString& percentPattern)
    : pattern_(ZQTimeFormatPatternConverter::make()->stringByReplacingOldTimeFormatPatternsInString(
          percentPattern)),
      hasSeconds_(tellsSeconds(pattern_)) {}

std::optional<ClockText> ClockText::make(const QString& percentPattern) {
  const ClockText text(percentPattern);
  return text.textAt(Date::date()).trimmed().isEmpty() ? std::nullopt : std::optional(text);
}

QString ClockText::textAt(const Date& date) const {
  return showableLine(
      descriptionWithCalendarFormat(date, pattern_, std::nullopt).value_or(QString()));
}

Date ClockText::nextChangeAfter(const Date& date) const {
  const double unit = hasSeconds_ ? 1 : Minute;
  return Date((std::floor(date.timeIntervalSinceReferenceDate() / unit) + 1) * unit);
}

} // namespace zq::app
