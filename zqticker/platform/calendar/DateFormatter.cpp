#include "zqticker/platform/calendar/DateFormatter.h"

#include "zqticker/platform/calendar/LocaleRecord_p.h"
#include "zqticker/platform/calendar/icu_making_p.h"
#include "zqticker/platform/calendar/other_calendars_p.h"
#include "zqticker/platform/calendar/zone_database_p.h"

#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
// Formats are dear to make: each thread keeps those that it used last, unless they are long.
constexpr std::size_t MostKeptFormats = 16;
constexpr qsizetype LongestKeptPattern = 1024;

icu::Locale localeWithCalendar(const Locale& locale, const QString& calendarIdentifier) {
  icu::Locale result = locale.record().texts;
  UErrorCode status = U_ZERO_ERROR;
  result.setKeywordValue("calendar", calendarIdentifier.toLatin1().constData(), status);
  return result;
}

icu::DateFormat::EStyle icuStyle(DateFormatterStyle style) {
  switch (style) {
  case DateFormatterStyle::Short:
    return icu::DateFormat::kShort;
  case DateFormatterStyle::Medium:
    return icu::DateFormat::kMedium;
  case DateFormatterStyle::Long:
    return icu::DateFormat::kLong;
  case DateFormatterStyle::Full:
    return icu::DateFormat::kFull;
  case DateFormatterStyle::None:
    break;
  }
  return icu::DateFormat::kNone;
}

QString textOf(const icu::UnicodeString& text) {
  return QString(reinterpret_cast<const QChar*>(text.getBuffer()), text.length());
}

// Whether a pattern tells the time zone.
bool tellsZone(const QString& pattern) {
  bool isLiteral = false;
  for (const QChar c : pattern) {
    if (c == u'\'')
      isLiteral = !isLiteral;
    else if (!isLiteral && u"zZvVOXx"_s.contains(c))
      return true;
  }
  return false;
}

// The seconds and the thousandths of `interval`, which is in reach.
struct Instant {
  qint64 seconds; // since 1970
  int milliseconds;

  explicit Instant(double interval) {
    const double whole = std::floor(interval);
    seconds = static_cast<qint64>(whole) + static_cast<qint64>(TimeIntervalSince1970);
    // 0.29 is a little less than 290 thousandths.
    const double microseconds = std::round((interval - whole) * 1e6);
    milliseconds = std::min(static_cast<int>(microseconds / 1000), 999);
  }
  UDate icuDate() const { return static_cast<double>(seconds) * 1000 + milliseconds; }
};

// A format of ICU and the calendar that it writes. The clocks are those of our own database.
class Format {
 public:
  Format(const QString& pattern, const Locale& locale, const Calendar& calendar,
         const TimeZone& zone)
      : pattern_(pattern), locale_(locale), calendarIdentifier_(calendar.calendarIdentifier()),
        weeks_(calendar.locale()), zone_(zone) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString text(false, reinterpret_cast<const char16_t*>(pattern.utf16()),
                                  static_cast<int32_t>(pattern.size()));
    std::unique_lock making(icuMakingMutex());
    format_ = std::make_unique<icu::SimpleDateFormat>(
        text, localeWithCalendar(locale, calendarIdentifier_), status);
    std::unique_ptr<icu::TimeZone> icuZone;
    if (tellsZone(pattern)) {
      zoneOfName_.reset(
          icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(zone.name().toStdString())));
      icuZone.reset(zoneOfName_->clone());
    }
    making.unlock();
    icuCalendar_ = makeCalendar(calendarIdentifier_, weeks_.record().texts, std::move(icuZone));
    if (U_FAILURE(status))
      icuCalendar_.reset();
  }

  bool isFor(const QString& pattern, const Locale& locale, const Calendar& calendar,
             const TimeZone& zone) const {
    return pattern_ == pattern && locale_ == locale && zone_ == zone &&
           calendarIdentifier_ == calendar.calendarIdentifier() && weeks_ == calendar.locale();
  }
  bool isKept() const { return pattern_.size() <= LongestKeptPattern; }

  std::optional<QString> write(const Instant& instant) {
    if (!icuCalendar_)
      return std::nullopt;
    UErrorCode status = U_ZERO_ERROR;
    const int32_t offset = zone_.offsetAt(instant.seconds) * 1000;
    if (zoneOfName_) {
      setClocks(instant, offset, status);
      icuCalendar_->setTime(instant.icuDate(), status);
    } else {
      icuCalendar_->setTime(instant.icuDate() + offset, status);
    }
    icu::UnicodeString text;
    format_->format(*icuCalendar_, text, nullptr, status);
    return U_SUCCESS(status) ? std::optional(textOf(text)) : std::nullopt;
  }

 private:
  // ICU's own database may be of another year than the system's, and has no rules of $TZ. Where the
  // two differ a zone of the right distance from UTC stands in, under the same name.
  void setClocks(const Instant& instant, int32_t offset, UErrorCode& status) {
    int32_t raw = 0;
    int32_t daylight = 0;
    zoneOfName_->getOffset(instant.icuDate(), false, raw, daylight, status);
    const bool isRight = raw + daylight == offset;
    if (isRight && standIn_) {
      icuCalendar_->setTimeZone(*zoneOfName_);
      standIn_.reset();
    } else if (!isRight && standIn_ != offset) {
      icuCalendar_->adoptTimeZone(new icu::SimpleTimeZone(offset, nameOfStandIn(offset)));
      standIn_ = offset;
    }
  }

  icu::UnicodeString nameOfStandIn(int32_t offset) const {
    icu::UnicodeString name;
    if (*zoneOfName_ != icu::TimeZone::getUnknown())
      return zoneOfName_->getID(name);
    return icu::UnicodeString::fromUTF8(fixedZoneName(offset / 1000).toStdString());
  }

  QString pattern_;
  Locale locale_;
  QString calendarIdentifier_;
  Locale weeks_;
  TimeZone zone_;
  std::unique_ptr<icu::SimpleDateFormat> format_;
  // Null where the pattern does not tell the zone: then the calendar is in UTC, and what it takes
  // for UTC is the time on the zone's clocks.
  std::unique_ptr<icu::TimeZone> zoneOfName_;
  std::unique_ptr<icu::Calendar> icuCalendar_; // null where the format cannot be made
  std::optional<int32_t> standIn_;
};

// The thread's format for these, the last used one first.
Format& formatFor(const QString& pattern, const Locale& locale, const Calendar& calendar,
                  const TimeZone& zone) {
  thread_local std::vector<std::unique_ptr<Format>> formats;
  const auto found = std::find_if(formats.begin(), formats.end(), [&](const auto& format) {
    return format->isFor(pattern, locale, calendar, zone);
  });
  if (found != formats.end()) {
    std::rotate(formats.begin(), found, found + 1);
    return *formats.front();
  }
  if (!formats.empty() && (formats.size() >= MostKeptFormats || !formats.front()->isKept()))
    formats.erase(formats.front()->isKept() ? formats.end() - 1 : formats.begin());
  formats.insert(formats.begin(), std::make_unique<Format>(pattern, locale, calendar, zone));
  return *formats.front();
}
} // namespace

DateFormatter::DateFormatter() = default;

QString DateFormatter::dateFormat() const {
  if (format_)
    return *format_;
  if (dateStyle_ == DateFormatterStyle::None && timeStyle_ == DateFormatterStyle::None)
    return QString();
  const QString calendarIdentifier = calendar().calendarIdentifier();
  const std::lock_guard making(icuMakingMutex());
  const std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateTimeInstance(
      icuStyle(dateStyle_), icuStyle(timeStyle_), localeWithCalendar(locale_, calendarIdentifier)));
  icu::UnicodeString pattern;
  if (const auto* simple = dynamic_cast<const icu::SimpleDateFormat*>(format.get()))
    simple->toPattern(pattern);
  return textOf(pattern);
}

void DateFormatter::setDateStyle(DateFormatterStyle style) {
  format_.reset();
  dateStyle_ = style;
}

void DateFormatter::setTimeStyle(DateFormatterStyle style) {
  format_.reset();
  timeStyle_ = style;
}

void DateFormatter::setLocale(const std::optional<Locale>& locale) {
  locale_ = locale ? *locale : Locale::currentLocale();
}

Calendar DateFormatter::calendar() const {
  return calendar_ ? *calendar_ : Calendar::ofLocale(locale_);
}

TimeZone DateFormatter::timeZone() const {
  return timeZone_ ? *timeZone_ : TimeZone::defaultTimeZone();
}

std::optional<QString> DateFormatter::stringFromDate(const Date& fromDate) const {
  if (!Calendar::reaches(fromDate))
    return std::nullopt;
  const QString pattern = dateFormat();
  if (pattern.size() > std::numeric_limits<int32_t>::max())
    return std::nullopt;
  return formatFor(pattern, locale_, calendar(), timeZone())
      .write(Instant(fromDate.timeIntervalSinceReferenceDate()));
}

} // namespace zq::platform
