// What a response says about being kept: its Cache-Control field.
#pragma once

#include "zqticker/platform/system/http_field_lists_p.h"

namespace zq::platform {

// The directives of a response that concern a cache of one user. Those that speak to shared caches
// only (s-maxage, private, public, proxy-revalidate) have no place here.
struct HTTPCacheControl {
  bool noStore = false;
  // Must be confirmed by the server before each use. Also set by no-cache with field names: the
  // whole response is confirmed then, which is always allowed.
  bool noCache = false;
  bool mustRevalidate = false;
  // Seconds, at most 2³¹. A number that cannot be read, or two that differ, give 0: stale.
  std::optional<qint64> maxAge;
  // Seconds after the end of freshness during which a failure may be answered from the cache.
  std::optional<qint64> staleIfError;
};

// Read from every Cache-Control field of `fields`. Where there is none, "Pragma: no-cache" counts
// as no-cache, as servers of old mean it.
HTTPCacheControl httpCacheControl(const HTTPHeaderFields& fields);

// A number of seconds as HTTP writes it: digits only, larger ones than 2³¹ give 2³¹. Nothing for
// any other text.
std::optional<qint64> httpDeltaSeconds(QStringView text);

} // namespace zq::platform
