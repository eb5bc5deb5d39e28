// What is known about a locale.
#pragma once

#include "zqticker/platform/calendar/Locale.h"

#include <unicode/locid.h>

namespace zq::platform {

struct Locale::Record {
  QString identifier;
  QString calendarIdentifier;
  // The one whose texts are used.
  icu::Locale texts;
  bool isKnown = false;

  static std::shared_ptr<const Record> of(const QString& identifier);
};

} // namespace zq::platform
