#include "app/services/response_hints.h"

#include <QtCore/QLocale>
#include <QtCore/QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

using std::chrono::seconds;

namespace {
constexpr qint64 LongestSeconds = qint64(10) * 365 * 86'400;
constexpr int YearsAhead = 50;

seconds limited(qint64 count) {
  return seconds(std::clamp<qint64>(count, 0, LongestSeconds));
}

// Digits alone; a number too large to be read is a long time, not a wrong one.
std::optional<seconds> secondsOf(const QString& text) {
  const QString trimmed = text.trimmed();
  const bool isNumber =
      !trimmed.isEmpty() &&
      std::all_of(trimmed.begin(), trimmed.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
  if (!isNumber)
    return std::nullopt;
  bool fits = false;
  const qint64 count = trimmed.toLongLong(&fits);
  return limited(fits ? count : LongestSeconds);
}

// The directives of Cache-Control as far as they matter here.
struct CacheControl {
  bool mustNotServe = false;
  std::optional<seconds> maxAge;
};

CacheControl cacheControlOf(const QString& text) {
  CacheControl result;
  for (const QString& part : text.split(u',')) {
    const QString name = part.section(u'=', 0, 0).trimmed().toLower();
    QString value = part.section(u'=', 1).trimmed();
    if (value.size() >= 2 && value.startsWith(u'"') && value.endsWith(u'"'))
      value = value.sliced(1, value.size() - 2);
    if (name == "no-cache"_L1 || name == "no-store"_L1)
      result.mustNotServe = true;
    else if (name == "max-age"_L1 && !result.maxAge)
      result.maxAge = secondsOf(value);
  }
  return result;
}
} // namespace

// The name of the day says nothing that the date does not.
QDateTime headerDate(const QString& text, const QDateTime& now) {
  QString unnamed = text.simplified();
  unnamed = unnamed.sliced(unnamed.indexOf(u' ') + 1);
  for (const QString& format :
       {u"dd MMM yyyy hh:mm:ss 'GMT'"_s, u"dd-MMM-yy hh:mm:ss 'GMT'"_s, u"MMM d hh:mm:ss yyyy"_s}) {
    QDateTime date = QLocale::c().toDateTime(unnamed, format);
    if (!date.isValid())
      continue;
    date = QDateTime(date.date(), date.time(), Qt::UTC);
    // Two digits are read as of the last century.
    if (format.contains("-yy "_L1) && date.addYears(100) <= now.addYears(YearsAhead))
      date = date.addYears(100);
    return date;
  }
  return QDateTime();
}

ResponseHints responseHints(const HeaderLookup& header, const QDateTime& now) {
  ResponseHints hints;
  const auto dateOf = [&](QStringView name) {
    return headerDate(header(name).value_or(QString()), now);
  };
  if (const std::optional<QString> wait = header(u"Retry-After")) {
    hints.retryAfter = secondsOf(*wait);
    if (const QDateTime until = headerDate(*wait, now); until.isValid())
      hints.retryAfter = limited(now.secsTo(until));
  }
  const CacheControl control = cacheControlOf(header(u"Cache-Control").value_or(QString()));
  if (control.mustNotServe)
    return hints;
  const QDateTime date = dateOf(u"Date");
  std::optional<seconds> lifetime = control.maxAge;
  if (const QDateTime expires = dateOf(u"Expires"); !lifetime && expires.isValid())
    lifetime = limited((date.isValid() ? date : now).secsTo(expires));
  if (!lifetime)
    return hints;
  const seconds stated = secondsOf(header(u"Age").value_or(QString())).value_or(seconds(0));
  const seconds measured = date.isValid() ? limited(date.secsTo(now)) : seconds(0);
  const seconds left = *lifetime - std::max(stated, measured);
  if (left > seconds(0))
    hints.freshFor = left;
  return hints;
}

} // namespace zq::app
