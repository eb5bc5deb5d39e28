#include "zqticker/platform/system/http_dates_p.h"

#include <gtest/gtest.h>

#include <QtCore/QLocale>
#include <QtCore/QString>

using namespace Qt::StringLiterals;
using zq::platform::secondsOfHTTPDate;

namespace {

constexpr qint64 november1994 = 784'111'777; // 06 Nov 1994 08:49:37 UTC
constexpr qint64 in2026 = 1'790'000'000;

} // namespace

TEST(HTTPDates, AreReadInAllThreeFormats) {
  EXPECT_EQ(secondsOfHTTPDate(u"Sun, 06 Nov 1994 08:49:37 GMT", in2026), november1994);
  EXPECT_EQ(secondsOfHTTPDate(u"Sunday, 06-Nov-94 08:49:37 GMT", in2026), november1994);
  EXPECT_EQ(secondsOfHTTPDate(u"Sun Nov  6 08:49:37 1994", in2026), november1994);
}

TEST(HTTPDates, AreReadBeforeAndLongAfter1970) {
  EXPECT_EQ(secondsOfHTTPDate(u"Thu, 01 Jan 1970 00:00:00 GMT", in2026), 0);
  EXPECT_EQ(secondsOfHTTPDate(u"Wed, 31 Dec 1969 23:59:59 GMT", in2026), -1);
  EXPECT_EQ(secondsOfHTTPDate(u"Tue, 29 Feb 2028 12:00:00 GMT", in2026), 1'835'438'400);
  EXPECT_EQ(secondsOfHTTPDate(u"Fri, 31 Dec 9999 23:59:59 GMT", in2026), 253'402'300'799);
}

TEST(HTTPDates, ALeapSecondIsTheFirstOfTheNextMinute) {
  EXPECT_EQ(secondsOfHTTPDate(u"Sat, 31 Dec 2016 23:59:60 GMT", in2026), 1'483'228'800);
}

TEST(HTTPDates, TwoDigitsOfAYearLieAtMostFiftyYearsAhead) {
  EXPECT_EQ(secondsOfHTTPDate(u"Friday, 01-Jan-76 00:00:00 GMT", in2026), 3'345'062'400); // 2076
  EXPECT_EQ(secondsOfHTTPDate(u"Saturday, 01-Jan-77 00:00:00 GMT", in2026), 220'924'800); // 1977
}

TEST(HTTPDates, DoNotDependOnTheLocale) {
  const QLocale before;
  QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
  EXPECT_EQ(secondsOfHTTPDate(u"Sun, 06 Nov 1994 08:49:37 GMT", in2026), november1994);
  QLocale::setDefault(before);
}

TEST(HTTPDates, AreForgivenTheirCaseAndTheirSpaces) {
  EXPECT_EQ(secondsOfHTTPDate(u" sun,  6 NOV 1994  08:49:37 utc ", in2026), november1994);
}

TEST(HTTPDates, OtherTextsAreNoDates) {
  for (const auto& text :
       {u""_s, u"0"_s, u"-1"_s, u"tomorrow"_s, u"Sun, 06 Nov 1994 08:49:37"_s,
        u"Sun, 06 Nov 1994 08:49:37 PST"_s, u"Sun, 06 Nov 1994 08:49:37 +0100"_s,
        u"Sun, 31 Feb 1994 08:49:37 GMT"_s, u"Sun, 06 Nov 1994 24:00:00 GMT"_s,
        u"Sun, 06 Nov 1994 08:60:00 GMT"_s, u"Sun, 06 Nov 1994 8:49:37 GMT"_s,
        u"Sun, 06 Nov 94 08:49:37 GMT"_s, u"Sun, 06 Now 1994 08:49:37 GMT"_s,
        u"Sunday, 06-Nov-1994 08:49:37 GMT"_s, u"Sun, +6 Nov 1994 08:49:37 GMT"_s,
        u"Sun, 0\u0666 Nov 1994 08:49:37 GMT"_s, u"1994-11-06T08:49:37Z"_s})
    EXPECT_EQ(secondsOfHTTPDate(text, in2026), std::nullopt) << text.toStdString();
}
