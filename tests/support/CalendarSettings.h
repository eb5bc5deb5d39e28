// The user's settings for dates, for the time of a test.
#pragma once

#include "zqticker/platform/calendar/Locale.h"
#include "zqticker/platform/calendar/TimeZone.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

namespace zq::testing {

// The zone of a name that exists.
inline platform::TimeZone zoneNamed(const char* name) {
  return platform::TimeZone::timeZoneWithName(QString::fromLatin1(name)).value();
}

// Sets the default time zone, and the user's locale where one is given, and puts both back to those
// of the environment.
class CalendarSettings {
 public:
  explicit CalendarSettings(const char* timeZone, const char* locale = nullptr) {
    platform::TimeZone::setDefaultTimeZone(zoneNamed(timeZone));
    if (locale)
      platform::Locale::setCurrentLocale(platform::Locale(QString::fromLatin1(locale)));
  }
  ~CalendarSettings() {
    platform::TimeZone::setDefaultTimeZone(std::nullopt);
    platform::Locale::setCurrentLocale(std::nullopt);
  }
  CalendarSettings(const CalendarSettings&) = delete;
  CalendarSettings& operator=(const CalendarSettings&) = delete;
};

// Sets a variable of the environment, or takes it away, and puts it back, with the settings that
// depend on it.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const std::optional<QByteArray>& value)
      : name_(name),
        before_(qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt) {
    set(value);
  }
  ~EnvironmentVariable() { set(before_); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  void set(const std::optional<QByteArray>& value) {
    if (value)
      qputenv(name_, *value);
    else
      qunsetenv(name_);
    platform::TimeZone::setDefaultTimeZone(std::nullopt);
    platform::Locale::setCurrentLocale(std::nullopt);
  }

  const char* name_;
  std::optional<QByteArray> before_;
};

} // namespace zq::testing
