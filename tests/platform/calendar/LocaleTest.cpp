#include "zqticker/platform/calendar/Locale.h"

#include "tests/support/CalendarSettings.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using zq::platform::Locale;
using zq::testing::CalendarSettings;
using zq::testing::EnvironmentVariable;

TEST(Locale, IsNamedInTheUsualForm) {
  EXPECT_EQ(Locale(u"de_DE"_s).localeIdentifier(), u"de_DE");
  EXPECT_EQ(Locale(u"de-DE"_s).localeIdentifier(), u"de_DE");
  EXPECT_EQ(Locale(u"DE_de"_s).localeIdentifier(), u"de_DE");
  EXPECT_EQ(Locale(u"de-DE"_s), Locale(u"de_DE"_s));
  EXPECT_NE(Locale(u"de_AT"_s), Locale(u"de_DE"_s));
}

TEST(Locale, KnowsItsCalendar) {
  EXPECT_EQ(Locale(u"de_DE"_s).calendarIdentifier(), u"gregorian");
  EXPECT_EQ(Locale(u"th_TH"_s).calendarIdentifier(), u"buddhist");
  EXPECT_EQ(Locale(u"fa_IR"_s).calendarIdentifier(), u"persian");
  EXPECT_EQ(Locale(u"de_DE@calendar=hebrew"_s).calendarIdentifier(), u"hebrew");
}

TEST(Locale, MayHaveAnIdentifierThatMeansNothing) {
  for (const QString& identifier :
       {u""_s, u"xx_YY"_s, u"!"_s, QString(100'000, u'a'), QString(QChar(0xd800))})
    EXPECT_EQ(Locale(identifier).calendarIdentifier(), u"gregorian")
        << identifier.left(9).toStdString();
}

TEST(CurrentLocale, IsTheFirstThatTheEnvironmentNames) {
  const EnvironmentVariable all("LC_ALL", std::nullopt);
  const EnvironmentVariable time("LC_TIME", std::nullopt);
  const EnvironmentVariable language("LANG", "fr_FR.UTF-8");
  EXPECT_EQ(Locale::currentLocale().localeIdentifier(), u"fr_FR");
  const EnvironmentVariable ofTime("LC_TIME", "tr_TR.UTF-8");
  EXPECT_EQ(Locale::currentLocale().localeIdentifier(), u"tr_TR");
  const EnvironmentVariable ofAll("LC_ALL", "de_DE");
  EXPECT_EQ(Locale::currentLocale().localeIdentifier(), u"de_DE");
  const EnvironmentVariable empty("LC_ALL", "");
  EXPECT_EQ(Locale::currentLocale().localeIdentifier(), u"tr_TR");
  EXPECT_EQ(Locale(), Locale::currentLocale());
}

TEST(CurrentLocale, ReadsTheNotationOfTheEnvironment) {
  const std::pair<const char*, const char*> locales[] = {
      {"C", "en_US_POSIX"},
      {"POSIX", "en_US_POSIX"},
      {"C.UTF-8", "en_US_POSIX"},
      {"de_DE@euro", "de_DE"},
      {"sr_RS.UTF-8@latin", "sr_Latn_RS"},
      {"xx_YY.UTF-8", "en_US_POSIX"},
      {"de_XX.UTF-8", "de_XX"},
      {"nonsense/\xff", "en_US_POSIX"},
  };
  for (const auto& [variable, identifier] : locales) {
    const EnvironmentVariable environment("LC_ALL", variable);
    EXPECT_EQ(Locale::currentLocale().localeIdentifier(), QString::fromLatin1(identifier))
        << variable;
  }
}

TEST(CurrentLocale, IsWhatWasSetUntilItIsTakenBack) {
  const EnvironmentVariable environment("LC_ALL", "tr_TR.UTF-8");
  {
    const CalendarSettings settings("UTC", "de_DE");
    EXPECT_EQ(Locale::currentLocale(), Locale(u"de_DE"_s));
  }
  EXPECT_EQ(Locale::currentLocale(), Locale(u"tr_TR"_s));
}
