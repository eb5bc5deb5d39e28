#include "zqticker/platform/calendar/Locale.h"

#include "zqticker/platform/calendar/LocaleRecord_p.h"
#include "zqticker/platform/calendar/icu_making_p.h"

#include <unicode/calendar.h>
#include <unicode/ures.h>

#include <mutex>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
struct CurrentLocale {
  std::mutex mutex;
  std::optional<Locale> locale;
};
CurrentLocale& userLocale() {
  static CurrentLocale locale;
  return locale;
}

// Whether ICU has anything in that language. What it has not it looks for in the process's default
// locale, which would let the environment show through.
bool hasTexts(const icu::Locale& locale) {
  if (*locale.getLanguage() == '\0')
    return false;
  UErrorCode status = U_ZERO_ERROR;
  ures_close(ures_open(nullptr, locale.getBaseName(), &status));
  return U_SUCCESS(status) && status != U_USING_DEFAULT_WARNING;
}

QString calendarOf(const icu::Locale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const std::lock_guard making(icuMakingMutex());
  const std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(locale, status));
  return U_SUCCESS(status) ? QString::fromLatin1(calendar->getType()) : u"gregorian"_s;
}

// "sr_RS.UTF-8@latin" as ICU writes it: "sr_Latn_RS".
QString identifierOfVariable(const QString& value) {
  const QString modifier = value.section(u'@', 1);
  QString identifier = value.section(u'@', 0, 0).section(u'.', 0, 0);
  const QString script = modifier == "latin"_L1      ? u"_Latn"_s
                         : modifier == "cyrillic"_L1 ? u"_Cyrl"_s
                                                     : QString();
  const qsizetype languageEnd = identifier.indexOf(u'_');
  return identifier.insert(languageEnd < 0 ? identifier.size() : languageEnd, script);
}
} // namespace

std::shared_ptr<const Locale::Record> Locale::Record::of(const QString& identifier) {
  auto record = std::make_shared<Record>();
  const icu::Locale canonical = icu::Locale::createCanonical(identifier.toUtf8().constData());
  record->isKnown = !canonical.isBogus() && hasTexts(canonical);
  record->identifier = canonical.isBogus() ? identifier : QString::fromUtf8(canonical.getName());
  record->texts = record->isKnown ? canonical : icu::Locale::getRoot();
  record->calendarIdentifier = calendarOf(canonical.isBogus() ? record->texts : canonical);
  return record;
}

Locale::Locale() : Locale(currentLocale()) {}

Locale::Locale(const QString& identifier) : record_(Record::of(identifier)) {}

Locale Locale::ofEnvironment() {
  for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
    const QString value = qEnvironmentVariable(variable);
    if (value.isEmpty())
      continue;
    const Locale locale(identifierOfVariable(value));
    if (locale.record().isKnown)
      return locale;
    break;
  }
  return Locale(u"en_US_POSIX"_s);
}

Locale Locale::currentLocale() {
  CurrentLocale& shared = userLocale();
  const std::lock_guard lock(shared.mutex);
  if (!shared.locale)
    shared.locale = ofEnvironment();
  return *shared.locale;
}

void Locale::setCurrentLocale(const std::optional<Locale>& locale) {
  CurrentLocale& shared = userLocale();
  const std::lock_guard lock(shared.mutex);
  shared.locale = locale;
}

const QString& Locale::localeIdentifier() const {
  return record_->identifier;
}

const QString& Locale::calendarIdentifier() const {
  return record_->calendarIdentifier;
}

} // namespace zq::platform
