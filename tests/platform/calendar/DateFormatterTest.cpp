#include "zqticker/platform/calendar/DateFormatter.h"

#include "tests/support/CalendarSettings.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::CalendarSettings;
using zq::testing::EnvironmentVariable;
using zq::testing::zoneNamed;

namespace {

constexpr double Noon28February2009 = 257'515'200;

DateFormatter formatter(const QString& format, const char* locale = "en_US",
                        const char* zone = "UTC") {
  DateFormatter result;
  result.setDateFormat(format);
  result.setLocale(Locale(QString::fromLatin1(locale)));
  result.setTimeZone(zoneNamed(zone));
  return result;
}

std::optional<QString> text(const QString& format, double seconds, const char* locale = "en_US",
                            const char* zone = "UTC") {
  return formatter(format, locale, zone).stringFromDate(Date(seconds));
}

} // namespace

TEST(DateFormatter, WritesByAUnicodePattern) {
  EXPECT_EQ(text(u"yyyy-MM-dd HH:mm:ss"_s, Noon28February2009), u"2009-02-28 12:00:00"_s);
  EXPECT_EQ(text(u"EEEE 'x' MMMM"_s, Noon28February2009, "de_DE"), u"Samstag x Februar"_s);
  EXPECT_EQ(text(u"EEEE"_s, Noon28February2009, "tr_TR"), u"Cumartesi"_s);
  EXPECT_EQ(text(u"\U0001F600 HH %"_s, Noon28February2009), u"\U0001F600 12 %"_s);
  EXPECT_EQ(text(u"''"_s, 0), u"'"_s);
  EXPECT_EQ(text(u""_s, 0), u""_s);
  EXPECT_EQ(text(QString(QChar(0xd800)), 0), QString(QChar(0xd800)));
}

TEST(DateFormatter, WritesTheClocksOfItsTimeZone) {
  EXPECT_EQ(text(u"HH:mm ZZ"_s, Noon28February2009, "en_US", "Asia/Kathmandu"), u"17:45 +0545"_s);
  EXPECT_EQ(text(u"HH:mm zzzz"_s, Noon28February2009, "en_US", "America/New_York"),
            u"07:00 Eastern Standard Time"_s);
  const CalendarSettings settings("Asia/Tokyo");
  DateFormatter byDefault = formatter(u"HH"_s);
  byDefault.setTimeZone(std::nullopt);
  EXPECT_EQ(byDefault.stringFromDate(Date(0)), u"09"_s);
  TimeZone::setDefaultTimeZone(zoneNamed("UTC"));
  EXPECT_EQ(byDefault.stringFromDate(Date(0)), u"00"_s);
}

TEST(DateFormatter, WritesTheSameClocksWhetherOrNotItTellsTheZone) {
  for (const char* zone : {"Europe/Berlin", "Pacific/Apia", "America/New_York", "Asia/Kathmandu"})
    for (const char* locale : {"en_US", "th_TH", "en_US@calendar=chinese", "fa_IR"})
      // Every 31 hours for a year, and a time of 1799.
      for (double seconds = 3e8; seconds < 3.32e8; seconds += 31 * 3600) {
        const QString clocks = u"y-MM-dd e D HH:mm:ss.SSS"_s;
        const QString alone = text(clocks, seconds + 0.25, locale, zone).value();
        ASSERT_EQ(text(clocks + u" Z"_s, seconds + 0.25, locale, zone)->section(u' ', 0, 3), alone);
      }
  EXPECT_EQ(text(u"y-MM-dd HH:mm:ss"_s, -6'343'142'400, "en_US", "Europe/Berlin"),
            u"1799-12-30 00:53:28"_s);
  EXPECT_EQ(text(u"HH 'z'"_s, 0, "en_US", "Asia/Tokyo"), u"09 z"_s);
}

TEST(DateFormatter, FollowsTheSystemsDatabaseWhereICUKnowsOtherClocks) {
  // A name of Los Angeles to ICU, none of the database.
  const QTemporaryDir folder;
  ASSERT_TRUE(QFile::copy(u"/usr/share/zoneinfo/Europe/Berlin"_s, folder.filePath(u"PST"_s)));
  const EnvironmentVariable environment("TZDIR", folder.path().toUtf8());
  const DateFormatter berlin = formatter(u"HH:mm ZZ"_s, "en_US", "PST");
  EXPECT_EQ(berlin.stringFromDate(Date(0)), u"01:00 +0100"_s);
  EXPECT_EQ(berlin.stringFromDate(Date(266'803'200)), u"02:00 +0200"_s);
  EXPECT_EQ(berlin.stringFromDate(Date(0)), u"01:00 +0100"_s);
  EXPECT_EQ(text(u"HH:mm"_s, 266'803'200, "en_US", "PST"), u"02:00"_s);
}

TEST(DateFormatter, WritesTheClocksOfARuleOfTheEnvironment) {
  const EnvironmentVariable environment("TZ", "XXX-5:30");
  DateFormatter byDefault = formatter(u"HH:mm ZZZZ"_s);
  byDefault.setTimeZone(std::nullopt);
  EXPECT_EQ(byDefault.stringFromDate(Date(0)), u"05:30 GMT+05:30"_s);
}

TEST(DateFormatter, CutsFractionsOff) {
  EXPECT_EQ(text(u"ss.SSS"_s, 0.999'999'9), u"00.999"_s);
  EXPECT_EQ(text(u"ss.SSS"_s, -0.5), u"59.500"_s);
  EXPECT_EQ(text(u"ss.SSS"_s, 273'373'323.999), u"03.999"_s);
  EXPECT_EQ(text(u"ss.SSS"_s, 0.29), u"00.290"_s);
  EXPECT_EQ(text(u"ss.SS"_s, 255'312'429), u"09.00"_s);
}

TEST(DateFormatter, HasNoJulianDays) {
  EXPECT_EQ(text(u"yyyy-MM-dd"_s, -13'197'600'001), u"1582-10-14"_s);
  EXPECT_EQ(text(u"yyyy-MM-dd G"_s, -63'113'904'001), u"0001-12-31 BC"_s);
  EXPECT_EQ(text(u"y"_s, -13'197'600'001, "th_TH"), u"2125"_s);
}

TEST(DateFormatter, ReachesMillionsOfYears) {
  EXPECT_EQ(text(u"y-MM-dd"_s, 157'722'592'780'800 - TimeIntervalSince1970), u"5000000-01-01"_s);
  EXPECT_EQ(text(u"y G"_s, -157'846'927'219'200 - TimeIntervalSince1970), u"5000001 BC"_s);
}

TEST(DateFormatter, AnswersNothingForADateOutOfReach) {
  for (const double seconds :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), 1e18, -1e18})
    EXPECT_EQ(text(u"yyyy"_s, seconds), std::nullopt) << seconds;
}

TEST(DateFormatter, AnswersNothingForALetterThatIsNoField) {
  EXPECT_EQ(text(u"HH o'clock'"_s, 0), std::nullopt);
  EXPECT_EQ(text(u"HH 'o''clock'"_s, 0), u"00 o'clock"_s);
}

TEST(DateFormatter, WritesNoMoreZerosThanTenForAFieldWithoutEnd) {
  EXPECT_EQ(text(QString(10, u'y'), 0), u"0000002001"_s);
  EXPECT_EQ(text(QString(100 << 20, u'y'), 0), u"0000002001"_s);
}

TEST(DateFormatter, WritesLongLiterals) {
  QString literal;
  for (int count = 0; count < 1 << 20; ++count)
    literal += u"ab";
  EXPECT_EQ(text(u'\'' + literal + u"'HH"_s, 0), QString(literal + u"00"_s));
}

TEST(DateFormatter, HasThePatternOfAStyle) {
  const CalendarSettings settings("UTC", "de_DE");
  DateFormatter styled;
  EXPECT_EQ(styled.dateFormat(), QString());
  styled.setDateStyle(DateFormatterStyle::Long);
  EXPECT_EQ(styled.dateFormat(), u"d. MMMM y"_s);
  EXPECT_EQ(styled.stringFromDate(Date(Noon28February2009)), u"28. Februar 2009"_s);
  styled.setDateStyle(DateFormatterStyle::None);
  styled.setTimeStyle(DateFormatterStyle::Long);
  EXPECT_EQ(styled.dateFormat(), u"HH:mm:ss z"_s);
  styled.setTimeStyle(DateFormatterStyle::Short);
  EXPECT_EQ(styled.dateFormat(), u"HH:mm"_s);
  styled.setDateFormat(u"yy"_s);
  EXPECT_EQ(styled.dateFormat(), u"yy"_s);
  styled.setTimeStyle(DateFormatterStyle::Medium);
  EXPECT_EQ(styled.dateFormat(), u"HH:mm:ss"_s);
}

TEST(DateFormatter, WritesTheLocalesCalendarUnlessAnotherIsSet) {
  EXPECT_EQ(text(u"y"_s, 0, "th_TH"), u"2544"_s);
  DateFormatter gregorian = formatter(u"y"_s, "th_TH");
  gregorian.setCalendar(Calendar::calendarWithIdentifier(GregorianCalendar));
  EXPECT_EQ(gregorian.stringFromDate(Date(0)), u"2001"_s);
  gregorian.setCalendar(std::nullopt);
  EXPECT_EQ(gregorian.stringFromDate(Date(0)), u"2544"_s);
}

// 28 February 2009 is a Saturday.
TEST(DateFormatter, CountsWeekdaysFromTheFirstOfTheCalendarsWeek) {
  EXPECT_EQ(text(u"e"_s, Noon28February2009, "en_US"), u"7"_s);
  EXPECT_EQ(text(u"e"_s, Noon28February2009, "de_DE"), u"6"_s);
  DateFormatter german = formatter(u"e"_s, "en_US");
  german.setCalendar(Calendar::ofLocale(Locale(u"de_DE"_s)));
  EXPECT_EQ(german.stringFromDate(Date(Noon28February2009)), u"6"_s);
}

TEST(DateFormatter, HasNumbersInPlaceOfWordsForALanguageThatIsNotKnown) {
  for (const char* user : {"de_DE.UTF-8", "C", "tr_TR.UTF-8"}) {
    const EnvironmentVariable environment("LC_ALL", user);
    EXPECT_EQ(text(u"MMMM y"_s, 0, "xx_YY"), u"M01 2001"_s);
  }
}

TEST(DateFormatter, KeepsApartManyPatternsZonesAndLocales) {
  const QStringList formats{u"HH"_s, u"mm"_s, u"y"_s, u"EEEE"_s, u"MMMM"_s, u"dd"_s, u"D"_s};
  for (int round = 0; round < 3; ++round)
    for (const char* zone : {"UTC", "Asia/Kathmandu", "America/New_York"})
      for (const char* locale : {"en_US", "de_DE", "th_TH"}) {
        QStringList found;
        for (const QString& format : formats)
          found.append(text(format, 0, locale, zone).value());
        const bool isNewYork = *zone == 'A' && zone[1] == 'm';
        const bool isKathmandu = *zone == 'A' && zone[1] == 's';
        EXPECT_EQ(found[0], isNewYork ? u"19"_s : isKathmandu ? u"05"_s : u"00"_s);
        EXPECT_EQ(found[1], isKathmandu ? u"45"_s : u"00"_s);
        EXPECT_EQ(found[2],
                  QString::number((isNewYork ? 2000 : 2001) + (*locale == 't' ? 543 : 0)));
        EXPECT_EQ(found[5], isNewYork ? u"31"_s : u"01"_s);
      }
}
