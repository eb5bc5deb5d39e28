// What the headers of an answer say about the next request.
#pragma once

#include <QtCore/QDateTime>
#include <QtCore/QString>

#include <chrono>
#include <functional>
#include <optional>

namespace zq::app {

// A header field by name, whatever the case of its letters; nothing where it is missing.
using HeaderLookup = std::function<std::optional<QString>(QStringView name)>;

struct ResponseHints {
  // How much longer the answer counts as fresh: its max-age, else Expires, without the age that it
  // has already. Nothing where it does not say, where it must not be kept or where it is stale.
  std::optional<std::chrono::seconds> freshFor;
  // How long the server asks to be left alone.
  std::optional<std::chrono::seconds> retryAfter;
};

// Reads them as of `now`, which need not be in UTC. What cannot be read counts as missing, negative
// durations as none. Durations are cut at ten years.
ResponseHints responseHints(const HeaderLookup& header, const QDateTime& now);

// A date of a header in one of the three forms that are in use, in UTC; invalid for anything else.
// "Sun, 06 Nov 1994 08:49:37 GMT", "Sunday, 06-Nov-94 08:49:37 GMT", "Sun Nov  6 08:49:37 1994".
// A year of two digits that would lie more than 50 years after `now` is one of the last century.
QDateTime headerDate(const QString& text, const QDateTime& now);

} // namespace zq::app
