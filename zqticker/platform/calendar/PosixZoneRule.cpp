#include "zqticker/platform/calendar/PosixZoneRule_p.h"

#include "zqticker/platform/calendar/gregorian_days_p.h"

namespace zq::platform {

namespace {
constexpr qint32 Hour = 3600;
constexpr int MostOffsetHours = 24;
// Times may lie some days off.
constexpr int MostTimeHours = 167;

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
} // namespace

// Reads a rule from its start to its end; every step answers nothing where it does not find what
// it looks for.
class PosixZoneRule::Reader {
 public:
  explicit Reader(QByteArrayView text) : rest_(text) {}

  bool isAtEnd() const { return rest_.isEmpty(); }

  bool skip(char c) {
    if (rest_.isEmpty() || rest_.front() != c)
      return false;
    rest_ = rest_.sliced(1);
    return true;
  }

  // Three letters or more, or anything within angle brackets.
  bool skipName() {
    qsizetype length = 0;
    if (skip('<')) {
      while (length < rest_.size() && rest_[length] != '>')
        ++length;
      rest_ = rest_.sliced(length);
      return length >= 3 && skip('>');
    }
    while (length < rest_.size() && isLetter(rest_[length]))
      ++length;
    rest_ = rest_.sliced(length);
    return length >= 3;
  }

  std::optional<int> number(int least, int most) {
    if (rest_.isEmpty() || !isDigit(rest_.front()))
      return std::nullopt;
    int value = 0;
    while (!rest_.isEmpty() && isDigit(rest_.front())) {
      value = value * 10 + (rest_.front() - '0');
      if (value > most)
        return std::nullopt;
      rest_ = rest_.sliced(1);
    }
    return value < least ? std::nullopt : std::optional(value);
  }

  // [+-]hours[:minutes[:seconds]]
  std::optional<qint32> time(int mostHours) {
    const bool isNegative = skip('-');
    if (!isNegative)
      skip('+');
    const std::optional<int> hours = number(0, mostHours);
    if (!hours)
      return std::nullopt;
    qint32 seconds = *hours * Hour;
    for (const int unit : {60, 1}) {
      if (!skip(':'))
        break;
      const std::optional<int> part = number(0, 59);
      if (!part)
        return std::nullopt;
      seconds += *part * unit;
    }
    return isNegative ? -seconds : seconds;
  }

  std::optional<Moment> moment() {
    Moment moment;
    std::optional<int> month, week, day;
    if (skip('M')) {
      moment.kind = Moment::Kind::Weekday;
      if (!(month = number(1, 12)) || !skip('.') || !(week = number(1, 5)) || !skip('.') ||
          !(day = number(0, 6)))
        return std::nullopt;
      moment.month = *month;
      moment.week = *week;
    } else {
      moment.kind = skip('J') ? Moment::Kind::JulianDay : Moment::Kind::DayOfYear;
      day = moment.kind == Moment::Kind::JulianDay ? number(1, 365) : number(0, 365);
      if (!day)
        return std::nullopt;
    }
    moment.day = *day;
    if (skip('/')) {
      const std::optional<qint32> seconds = time(MostTimeHours);
      if (!seconds)
        return std::nullopt;
      moment.time = *seconds;
    }
    return moment;
  }

 private:
  QByteArrayView rest_;
};

std::optional<PosixZoneRule> PosixZoneRule::parse(QByteArrayView text) {
  Reader reader(text);
  PosixZoneRule rule;
  if (!reader.skipName())
    return std::nullopt;
  // Offsets count westwards here.
  const std::optional<qint32> standard = reader.time(MostOffsetHours);
  if (!standard)
    return std::nullopt;
  rule.standard_ = -*standard;
  if (reader.isAtEnd())
    return rule;
  if (!reader.skipName())
    return std::nullopt;
  rule.hasDaylight_ = true;
  rule.daylight_ = rule.standard_ + Hour;
  bool hasDays = reader.skip(',');
  if (!hasDays && !reader.isAtEnd()) {
    const std::optional<qint32> daylight = reader.time(MostOffsetHours);
    if (!daylight)
      return std::nullopt;
    rule.daylight_ = -*daylight;
    hasDays = reader.skip(',');
  }
  if (!hasDays && !reader.isAtEnd())
    return std::nullopt;
  Reader usualDays(QByteArrayView("M3.2.0,M11.1.0"));
  Reader& given = hasDays ? reader : usualDays;
  const std::optional<Moment> start = given.moment();
  if (!start || !given.skip(','))
    return std::nullopt;
  const std::optional<Moment> end = given.moment();
  if (!end || !given.isAtEnd())
    return std::nullopt;
  rule.start_ = *start;
  rule.end_ = *end;
  return rule;
}

qint64 PosixZoneRule::Moment::inYear(qint64 year) const {
  qint64 days = 0;
  if (kind == Kind::Weekday) {
    days = daysToGregorianMonth(year, month);
    days += floorRemainder(day - weekdayOfDays(days), 7) + 7 * (week - 1);
    const qint64 next =
        month < 12 ? daysToGregorianMonth(year, month + 1) : daysToGregorianMonth(year + 1, 1);
    if (days >= next)
      days -= 7;
  } else {
    days = daysToGregorianMonth(year, 1) + day;
    if (kind == Kind::JulianDay)
      days -= isGregorianLeapYear(year) && day >= 60 ? 0 : 1;
  }
  return days * SecondsPerDay + time;
}

qint32 PosixZoneRule::offsetAt(qint64 seconds) const {
  if (!hasDaylight_)
    return standard_;
  const qint64 year = gregorianDay(floorQuotient(seconds + standard_, SecondsPerDay)).year;
  const qint64 start = start_.inYear(year) - standard_;
  const qint64 end = end_.inYear(year) - daylight_;
  // South of the equator the year begins and ends with daylight-saving time.
  const bool isDaylight =
      start < end ? start <= seconds && seconds < end : !(end <= seconds && seconds < start);
  return isDaylight ? daylight_ : standard_;
}

} // namespace zq::platform
