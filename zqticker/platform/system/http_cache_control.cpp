#include "zqticker/platform/system/http_cache_control_p.h"

#include "zqticker/platform/system/http_fields_p.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

constexpr qint64 mostSeconds = qint64(1) << 31;

QStringView withoutQuotes(QStringView text) {
  return text.size() >= 2 && text.startsWith(u'"') && text.endsWith(u'"')
             ? text.sliced(1, text.size() - 2)
             : text;
}

// A second, different number makes the directive say nothing that can be trusted.
void readSeconds(std::optional<qint64>& seconds, QStringView argument) {
  const qint64 read = httpDeltaSeconds(withoutQuotes(argument)).value_or(0);
  seconds = seconds && *seconds != read ? 0 : read;
}

} // namespace

std::optional<qint64> httpDeltaSeconds(QStringView text) {
  const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
  if (text.isEmpty() || !std::all_of(text.begin(), text.end(), isDigit))
    return std::nullopt;
  qint64 seconds = 0;
  for (const QChar c : text)
    seconds = std::min(seconds * 10 + (c.unicode() - u'0'), mostSeconds);
  return seconds;
}

HTTPCacheControl httpCacheControl(const HTTPHeaderFields& fields) {
  HTTPCacheControl control;
  const auto value = valueOfField(fields, u"cache-control");
  if (!value) {
    const QString pragma = valueOfField(fields, u"pragma").value_or(QString());
    for (const QStringView element : httpListElements(pragma))
      control.noCache |= isHTTPFieldName(element, "no-cache"_L1);
    return control;
  }
  for (const QStringView element : httpListElements(*value)) {
    const qsizetype equals = element.indexOf(u'=');
    const QStringView name = (equals < 0 ? element : element.first(equals)).trimmed();
    const QStringView argument = equals < 0 ? QStringView() : element.sliced(equals + 1).trimmed();
    if (isHTTPFieldName(name, "no-store"_L1))
      control.noStore = true;
    else if (isHTTPFieldName(name, "no-cache"_L1))
      control.noCache = true;
    else if (isHTTPFieldName(name, "must-revalidate"_L1))
      control.mustRevalidate = true;
    else if (isHTTPFieldName(name, "max-age"_L1))
      readSeconds(control.maxAge, argument);
    else if (isHTTPFieldName(name, "stale-if-error"_L1))
      readSeconds(control.staleIfError, argument);
  }
  return control;
}

} // namespace zq::platform
