// The rules of an HTTP cache that serves one user (RFC 9111), as functions of what was received.
// Times are seconds since 1970 on this machine's clock.
#pragma once

#include "zqticker/platform/system/http_field_lists_p.h"

namespace zq::platform {

// A response to a GET request as it is kept: what it said, and when it was asked for and came.
struct HTTPStoredResponse {
  int statusCode = 0;
  HTTPHeaderFields headerFields;
  qint64 requestTime = 0;
  qint64 responseTime = 0;

  friend bool operator==(const HTTPStoredResponse&, const HTTPStoredResponse&) = default;
};

// The longest time, in seconds, for which a response without a stated lifetime counts as fresh.
// Short, since a ticker shows news, and asking whether something has changed costs little.
inline constexpr qint64 longestHeuristicLifetime = 60;

// Whether `response` may be kept at all:
// - 200, 203, 204, 300, 301 and 308 always;
// - 302, 303 and 307 when they state a lifetime;
// - 404, 405, 410, 414 and 501 when they are fresh for some time: an error that nobody
//   asked us to remember is not remembered;
// never with no-store, nor with "Vary: *".
// Other names in Vary make no difference: every request for an address carries the same fields.
bool isStorable(const HTTPStoredResponse& response);

// Seconds from its origin for which `response` is fresh: max-age; else Expires less Date, 0 when
// Expires cannot be read; else a tenth of the time since Last-Modified, at most
// longestHeuristicLifetime; else 0. A missing or unreadable Date counts as the time of arrival.
qint64 freshnessLifetime(const HTTPStoredResponse& response);

// Seconds since the origin of `response`: the larger of what Date and Age tell, and the time in
// the cache. Nothing when the clock stands before the arrival, so that the age is unknown.
std::optional<qint64> currentAge(const HTTPStoredResponse& response, qint64 now);

// Whether `response` may be used without asking the server.
bool isFresh(const HTTPStoredResponse& response, qint64 now);

// Whether `response` may stand in when the server cannot be reached: stale-if-error allows it, and
// neither no-cache nor must-revalidate forbids it.
bool mayServeOnError(const HTTPStoredResponse& response, qint64 now);

// The fields that make a request conditional on `response` having changed: If-None-Match for
// ETag, If-Modified-Since for Last-Modified. Empty without a validator.
HTTPHeaderFields conditionalFields(const HTTPStoredResponse& response);

// The fields of a received message that are kept with its decoded body: without those that belong
// to the connection or to the transfer, without Set-Cookie (cookies are not kept), and, where the
// body was compressed, without Content-Encoding and Content-Length.
HTTPHeaderFields fieldsToStore(const HTTPHeaderFields& received);

// Whether a 304 with `received` speaks of `response`: its ETag, where it has one, is the same.
bool confirms(const HTTPStoredResponse& response, const HTTPHeaderFields& received);

// `response` after a 304: each field that came replaces those of its name, except fields that
// describe the stored body itself; times are those of the 304.
HTTPStoredResponse refreshed(const HTTPStoredResponse& response,
                             const HTTPStoredResponse& received);

} // namespace zq::platform
