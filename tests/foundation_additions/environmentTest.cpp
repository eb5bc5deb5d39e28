// What the runs of this program in other locales and time zones rely on.
#include "zqticker/platform/calendar/Locale.h"
#include "zqticker/platform/calendar/TimeZone.h"

#include <gtest/gtest.h>

#include <QtCore/QByteArray>

#include <clocale>

using zq::platform::Locale;
using zq::platform::TimeZone;

TEST(TestEnvironment, HasTheLocaleThatIsAskedFor) {
  const QByteArray asked = qgetenv("LC_ALL");
  EXPECT_EQ(asked,
            qEnvironmentVariable("ZQTICKER_TEST_LOCALE", QStringLiteral("C.UTF-8")).toUtf8());
  EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), asked.constData());
  EXPECT_STREQ(std::setlocale(LC_TIME, nullptr), asked.constData());
  const QString language = Locale::currentLocale().localeIdentifier().left(2);
  EXPECT_EQ(language,
            asked.startsWith('C') ? QStringLiteral("en") : QString::fromLatin1(asked).left(2));
}

TEST(TestEnvironment, HasTheTimeZoneThatIsAskedFor) {
  EXPECT_EQ(TimeZone::defaultTimeZone().name(),
            qEnvironmentVariable("ZQTICKER_TEST_TIME_ZONE", QStringLiteral("UTC")));
}
