// What a clock shows, and when it shows something else.
#pragma once

#include "zqticker/platform/calendar/Date.h"

#include <QtCore/QString>

#include <optional>

namespace zq::app {

// The present moment written by a pattern in percent style, such as "%H:%M", in the language, the
// calendar and the time zone of the user.
class ClockText {
 public:
  // Nothing for a pattern by which no date can be written, or that leaves nothing to see.
  static std::optional<ClockText> make(const QString& percentPattern);

  QString textAt(const platform::Date& date) const;

  // The next moment at which the text may be another one: the beginning of a second where the text
  // tells seconds, else of a minute.
  platform::Date nextChangeAfter(const platform::Date& date) const;

 private:
  explicit ClockText(const QString& percentPattern);

  QString pattern_; // a Unicode date pattern
  bool hasSeconds_ = false;
};

} // namespace zq::app
