#include "zqticker/platform/system/http_freshness_p.h"

#include "zqticker/platform/system/http_cache_control_p.h"
#include "zqticker/platform/system/http_dates_p.h"
#include "zqticker/platform/system/http_fields_p.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

std::optional<qint64> dateField(const HTTPStoredResponse& response, QStringView name) {
  const auto text = valueOfField(response.headerFields, name);
  return text ? secondsOfHTTPDate(*text, response.responseTime) : std::nullopt;
}

// When the server made the response.
qint64 originTime(const HTTPStoredResponse& response) {
  return dateField(response, u"date").value_or(response.responseTime);
}

std::optional<qint64> statedLifetime(const HTTPStoredResponse& response,
                                     const HTTPCacheControl& control) {
  if (control.maxAge)
    return control.maxAge;
  if (!valueOfField(response.headerFields, u"expires"))
    return std::nullopt;
  const auto expires = dateField(response, u"expires");
  return expires ? std::max<qint64>(*expires - originTime(response), 0) : 0;
}

qint64 lifetime(const HTTPStoredResponse& response, const HTTPCacheControl& control) {
  if (const auto stated = statedLifetime(response, control))
    return *stated;
  const auto modified = dateField(response, u"last-modified");
  if (!modified)
    return 0;
  return std::clamp<qint64>((originTime(response) - *modified) / 10, 0, longestHeuristicLifetime);
}

bool variesAlways(const HTTPHeaderFields& fields) {
  const QString value = valueOfField(fields, u"vary").value_or(QString());
  return httpListElements(value).contains(u"*");
}

// The opaque part of an entity tag: W/"x" and "x" are the same representation to us.
QStringView weakTag(QStringView tag) {
  tag = tag.trimmed();
  return tag.startsWith("W/"_L1) ? tag.sliced(2) : tag;
}

// Fields of one hop, and those that its Connection field names.
HTTPHeaderFields withoutConnectionFields(const HTTPHeaderFields& fields) {
  HTTPHeaderFields kept =
      withoutHTTPFields(fields, {"connection"_L1, "keep-alive"_L1, "proxy-authenticate"_L1,
                                 "proxy-authentication-info"_L1, "proxy-connection"_L1, "te"_L1,
                                 "trailer"_L1, "transfer-encoding"_L1, "upgrade"_L1});
  const QString named = valueOfField(fields, u"connection").value_or(QString());
  for (const QStringView name : httpListElements(named)) {
    kept.removeIf([&](const auto& field) {
      return QStringView(field.first).compare(name, Qt::CaseInsensitive) == 0;
    });
  }
  return kept;
}

} // namespace

bool isStorable(const HTTPStoredResponse& response) {
  const HTTPCacheControl control = httpCacheControl(response.headerFields);
  if (control.noStore || variesAlways(response.headerFields))
    return false;
  switch (response.statusCode) {
  case 200:
  case 203:
  case 204:
  case 300:
  case 301:
  case 308:
    return true;
  case 302:
  case 303:
  case 307:
    return statedLifetime(response, control).has_value();
  case 404:
  case 405:
  case 410:
  case 414:
  case 501:
    return lifetime(response, control) > 0;
  default:
    return false;
  }
}

qint64 freshnessLifetime(const HTTPStoredResponse& response) {
  return lifetime(response, httpCacheControl(response.headerFields));
}

std::optional<qint64> currentAge(const HTTPStoredResponse& response, qint64 now) {
  if (now < response.responseTime)
    return std::nullopt;
  const qint64 apparentAge = std::max<qint64>(response.responseTime - originTime(response), 0);
  // Only the first Age counts where several came; one that cannot be read counts as none.
  const QString field = valueOfField(response.headerFields, u"age").value_or(QString());
  const QList<QStringView> ages = httpListElements(field);
  const qint64 statedAge = ages.isEmpty() ? 0 : httpDeltaSeconds(ages.first()).value_or(0);
  const qint64 delay = std::max<qint64>(response.responseTime - response.requestTime, 0);
  return std::max(apparentAge, statedAge + delay) + (now - response.responseTime);
}

bool isFresh(const HTTPStoredResponse& response, qint64 now) {
  const HTTPCacheControl control = httpCacheControl(response.headerFields);
  const auto age = currentAge(response, now);
  return !control.noCache && age && lifetime(response, control) > *age;
}

bool mayServeOnError(const HTTPStoredResponse& response, qint64 now) {
  const HTTPCacheControl control = httpCacheControl(response.headerFields);
  const auto age = currentAge(response, now);
  return control.staleIfError && !control.noCache && !control.mustRevalidate && age &&
         lifetime(response, control) + *control.staleIfError > *age;
}

HTTPHeaderFields conditionalFields(const HTTPStoredResponse& response) {
  HTTPHeaderFields fields;
  const auto add = [&](const QString& name, QStringView validator) {
    const QString value = valueOfField(response.headerFields, validator).value_or(QString());
    if (!value.trimmed().isEmpty())
      fields.append({name, value.trimmed()});
  };
  add(u"If-None-Match"_s, u"etag");
  add(u"If-Modified-Since"_s, u"last-modified");
  return fields;
}

HTTPHeaderFields fieldsToStore(const HTTPHeaderFields& received) {
  const HTTPHeaderFields kept =
      withoutHTTPFields(withoutConnectionFields(received), {"set-cookie"_L1, "set-cookie2"_L1});
  return isContentEncoded(kept)
             ? withoutHTTPFields(kept, {"content-encoding"_L1, "content-length"_L1})
             : kept;
}

bool confirms(const HTTPStoredResponse& response, const HTTPHeaderFields& received) {
  const auto tag = valueOfField(received, u"etag");
  if (!tag)
    return true;
  const QString stored = valueOfField(response.headerFields, u"etag").value_or(QString());
  return weakTag(*tag) == weakTag(stored);
}

HTTPStoredResponse refreshed(const HTTPStoredResponse& response,
                             const HTTPStoredResponse& received) {
  const HTTPHeaderFields news = withoutHTTPFields(
      fieldsToStore(received.headerFields),
      {"content-encoding"_L1, "content-length"_L1, "content-range"_L1, "content-type"_L1});
  HTTPStoredResponse result = response;
  result.requestTime = received.requestTime;
  result.responseTime = received.responseTime;
  for (const auto& field : news) {
    result.headerFields.removeIf(
        [&](const auto& old) { return old.first.compare(field.first, Qt::CaseInsensitive) == 0; });
  }
  // What the 304 does not say of its age counts from its arrival: the old texts would make the
  // response as old as it was before.
  result.headerFields = withoutHTTPFields(result.headerFields, {"age"_L1, "date"_L1});
  result.headerFields += news;
  return result;
}

} // namespace zq::platform
