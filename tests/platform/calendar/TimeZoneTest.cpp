#include "zqticker/platform/calendar/TimeZone.h"

#include "tests/support/CalendarSettings.h"
#include "zqticker/platform/calendar/gregorian_days_p.h"

#include <gtest/gtest.h>

#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimeZone>

#include <unicode/basictz.h>

#include <random>

using namespace Qt::StringLiterals;
using zq::platform::TimeZone;
using zq::testing::CalendarSettings;
using zq::testing::EnvironmentVariable;
using zq::testing::zoneNamed;

namespace {

constexpr qint64 Summer2009 = 1'245'024'000; // 15 June
constexpr qint64 Winter2009 = 1'260'835'200; // 15 December

qint64 startOfYear(qint64 year) {
  return zq::platform::daysToGregorianMonth(year, 1) * 86'400;
}

} // namespace

TEST(TimeZone, IsUTCWhereNothingIsSaid) {
  EXPECT_EQ(TimeZone().name(), u"UTC");
  EXPECT_EQ(TimeZone().offsetAt(Summer2009), 0);
  EXPECT_EQ(TimeZone(), zoneNamed("UTC"));
}

TEST(TimeZone, KnowsRegionsAndTheirSummers) {
  const TimeZone berlin = zoneNamed("Europe/Berlin");
  EXPECT_EQ(berlin.name(), u"Europe/Berlin");
  EXPECT_EQ(berlin.offsetAt(Summer2009), 7200);
  EXPECT_EQ(berlin.offsetAt(Winter2009), 3600);
  EXPECT_EQ(zoneNamed("Asia/Kathmandu").offsetAt(Summer2009), 20'700);
  EXPECT_EQ(zoneNamed("Etc/GMT+12").offsetAt(Summer2009), -43'200);
  EXPECT_EQ(zoneNamed("America/New_York").offsetAt(Winter2009), -18'000);
}

TEST(TimeZone, ShowsLocalMeanTimeBeforeTheFirstChange) {
  EXPECT_EQ(zoneNamed("Europe/Berlin").offsetAt(startOfYear(1800)), 3208);
  EXPECT_EQ(zoneNamed("America/New_York").offsetAt(startOfYear(-5'000'000)), -17'762);
}

TEST(TimeZone, KeepsItsRuleForEver) {
  const TimeZone berlin = zoneNamed("Europe/Berlin");
  for (const qint64 year : {2037LL, 2038LL, 2100LL, 9999LL, 5'000'000LL}) {
    EXPECT_EQ(berlin.offsetAt(startOfYear(year)), 3600) << year;
    EXPECT_EQ(berlin.offsetAt(startOfYear(year) + 182 * 86'400), 7200) << year;
  }
}

TEST(TimeZone, AgreesWithTheSystemInEveryRegion) {
  std::mt19937_64 random(20'090'615);
  std::uniform_int_distribution<qint64> moments(startOfYear(1900), startOfYear(2400));
  int regions = 0;
  for (const QByteArray& name : QTimeZone::availableTimeZoneIds()) {
    const std::optional<TimeZone> zone = TimeZone::timeZoneWithName(QString::fromLatin1(name));
    if (!zone || zone->name().startsWith("GMT"_L1))
      continue;
    ++regions;
    const QTimeZone expected(name);
    for (int count = 0; count < 40; ++count) {
      const qint64 moment = moments(random);
      ASSERT_EQ(zone->offsetAt(moment),
                expected.offsetFromUtc(QDateTime::fromSecsSinceEpoch(moment, Qt::UTC)))
          << name.constData() << ' ' << moment;
    }
  }
  EXPECT_GT(regions, 300);
}

// What a calendar of ICU does with a time that is skipped or comes twice.
TEST(TimeZone, ResolvesTimesOnTheClockAsICUDoes) {
  for (const char* name : {"America/New_York", "Europe/Berlin", "Australia/Lord_Howe",
                           "Pacific/Apia", "Asia/Kathmandu", "America/St_Johns"}) {
    const TimeZone zone = zoneNamed(name);
    const std::unique_ptr<icu::TimeZone> icuZone(icu::TimeZone::createTimeZone(name));
    const auto* const expected = dynamic_cast<const icu::BasicTimeZone*>(icuZone.get());
    ASSERT_TRUE(expected);
    // Every quarter of an hour around each change from 1990 to 2020.
    UDate moment = double(startOfYear(1990)) * 1000;
    icu::TimeZoneTransition change;
    while (expected->getNextTransition(moment, false, change) &&
           change.getTime() < double(startOfYear(2020)) * 1000) {
      moment = change.getTime();
      for (int quarter = -120; quarter <= 120; ++quarter) {
        const qint64 local =
            qint64(moment / 1000) + zone.offsetAt(qint64(moment / 1000)) + quarter * 900;
        int32_t raw = 0;
        int32_t summer = 0;
        UErrorCode status = U_ZERO_ERROR;
        expected->getOffsetFromLocal(double(local) * 1000, UCAL_TZ_LOCAL_FORMER,
                                     UCAL_TZ_LOCAL_LATTER, raw, summer, status);
        ASSERT_EQ(zone.offsetOfLocal(local) * 1000, raw + summer) << name << ' ' << local;
      }
    }
  }
}

TEST(TimeZone, MayBeAFixedDistance) {
  EXPECT_EQ(zoneNamed("GMT+05:30").offsetAt(0), 19'800);
  EXPECT_EQ(zoneNamed("GMT-0800").offsetAt(0), -28'800);
  EXPECT_EQ(zoneNamed("GMT-8").name(), u"GMT-08:00");
  EXPECT_EQ(zoneNamed("GMT+23:59").offsetOfLocal(0), 86'340);
}

TEST(TimeZone, IsNothingWhereThereIsNoSuchZone) {
  for (const QString& name :
       {u""_s, u"Nowhere/Land"_s, u"europe/berlin"_s, u"Europe"_s, u"Europe/Berlin "_s,
        u"../zoneinfo/Europe/Berlin"_s, u"/usr/share/zoneinfo/Europe/Berlin"_s, u"right/UTC"_s,
        u"zone.tab"_s, u"GMT+24"_s, u"GMT+5:60"_s, u"GMT+5\n"_s, u"UTC+3"_s, QString(100'000, u'A'),
        u"Europe/Berl\u0131n"_s, QString(QChar(0xd800)),
        QString(u"Europe/Berlin"_s + QChar(u'\0'))})
    EXPECT_FALSE(TimeZone::timeZoneWithName(name)) << name.left(40).toStdString();
}

TEST(TimeZone, EqualsTheZoneOfTheSameName) {
  EXPECT_EQ(zoneNamed("GMT+05:30"), zoneNamed("GMT+0530"));
  EXPECT_NE(zoneNamed("Europe/Berlin"), zoneNamed("Europe/Paris"));
}

TEST(DefaultTimeZone, IsTheOneThatTheEnvironmentNames) {
  const std::pair<const char*, const char*> zones[] = {
      {"Asia/Tokyo", "Asia/Tokyo"},
      {":Asia/Tokyo", "Asia/Tokyo"},
      {"/usr/share/zoneinfo/Asia/Tokyo", "Asia/Tokyo"},
      {"/elsewhere/zoneinfo/posix/Asia/Tokyo", "Asia/Tokyo"},
      {"", "UTC"},
      {"Nowhere/Land", "UTC"},
      {"/nowhere", "UTC"},
  };
  for (const auto& [variable, name] : zones) {
    const EnvironmentVariable environment("TZ", variable);
    EXPECT_EQ(TimeZone::defaultTimeZone().name(), QString::fromLatin1(name)) << variable;
  }
}

TEST(DefaultTimeZone, MayBeARuleOfTheEnvironment) {
  const EnvironmentVariable environment("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
  const TimeZone zone = TimeZone::defaultTimeZone();
  EXPECT_EQ(zone.name(), u"CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(zone.offsetAt(Summer2009), 7200);
  EXPECT_EQ(zone.offsetAt(Winter2009), 3600);
}

TEST(DefaultTimeZone, MayBeAFileThatTheEnvironmentNames) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"clock"_s);
  ASSERT_TRUE(QFile::copy(u"/usr/share/zoneinfo/Asia/Tokyo"_s, path));
  const EnvironmentVariable environment("TZ", path.toUtf8());
  EXPECT_EQ(TimeZone::defaultTimeZone().offsetAt(0), 32'400);
  EXPECT_EQ(TimeZone::defaultTimeZone().name(), path);
}

TEST(DefaultTimeZone, IsTheMachinesWithoutAVariable) {
  const EnvironmentVariable environment("TZ", std::nullopt);
  const qint64 now = QDateTime::currentSecsSinceEpoch();
  tm local{};
  const time_t moment = now;
  tzset();
  localtime_r(&moment, &local);
  EXPECT_EQ(TimeZone::defaultTimeZone().offsetAt(now), local.tm_gmtoff);
}

TEST(DefaultTimeZone, IsWhatWasSetUntilItIsTakenBack) {
  const EnvironmentVariable environment("TZ", "Asia/Tokyo");
  {
    const CalendarSettings settings("Europe/Berlin");
    EXPECT_EQ(TimeZone::defaultTimeZone(), zoneNamed("Europe/Berlin"));
  }
  EXPECT_EQ(TimeZone::defaultTimeZone(), zoneNamed("Asia/Tokyo"));
}
