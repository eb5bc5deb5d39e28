// Languages and customs of the people that dates are written for.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QString>

#include <memory>
#include <optional>

namespace zq::platform {

// A locale, known by its identifier: a value that is cheap to copy. What it knows comes from ICU
// and does not depend on the C library's locale.
//
// Thread: any.
class ZQTICKER_EXPORT Locale {
 public:
  // What is known about a locale.
  struct Record;

  // The user's.
  Locale();

  // The locale of that identifier, such as "de_DE", "de-DE" or "th_TH@calendar=buddhist"; of a
  // region that is not known it is the language's own. A language that is not known, or nothing at
  // all, has only numbers and no words: months are "M01" to "M12".
  // Operation: initWithLocaleIdentifier:
  explicit Locale(const QString& identifier);

  // The user's locale. At first that of the environment: the first of $LC_ALL, $LC_TIME and $LANG
  // that is not empty, without its character set; "en_US_POSIX" where that is none, "C", "POSIX" or
  // a language that is not known.
  static Locale currentLocale();
  // Nothing makes it that of the environment as it is now.
  static void setCurrentLocale(const std::optional<Locale>& locale);

  // In the usual form: "de_DE".
  const QString& localeIdentifier() const;
  // The identifier of the calendar in use there: "gregorian", in Thailand "buddhist".
  const QString& calendarIdentifier() const;

  const Record& record() const { return *record_; }

  // Locales of one identifier are equal.
  friend bool operator==(const Locale& a, const Locale& b) {
    return a.record_ == b.record_ || a.localeIdentifier() == b.localeIdentifier();
  }

 private:
  explicit Locale(std::shared_ptr<const Record> record) : record_(std::move(record)) {}
  static Locale ofEnvironment();

  std::shared_ptr<const Record> record_;
};

} // namespace zq::platform
