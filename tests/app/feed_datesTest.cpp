// Dates of feeds, right and wrong.
#include "app/services/feed_dates.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
// The moment as ISO 8601 with milliseconds; empty for none.
std::string read(const QString& text) {
  const std::optional<QDateTime> date = feedDate(text);
  if (!date)
    return {};
  EXPECT_EQ(date->timeSpec(), Qt::UTC);
  return date->toString(Qt::ISODateWithMs).toStdString();
}
} // namespace

TEST(FeedDate, ReadsRfc822WithOffsets) {
  EXPECT_EQ(read(u"Sat, 07 Sep 2002 00:00:01 GMT"_s), "2002-09-07T00:00:01.000Z");
  EXPECT_EQ(read(u"Sat, 7 Sep 2002 00:00:01 +0130"_s), "2002-09-06T22:30:01.000Z");
  EXPECT_EQ(read(u"Sat, 7 Sep 2002 00:00 -0330"_s), "2002-09-07T03:30:00.000Z");
  EXPECT_EQ(read(u"  Sat,7 Sep 2002\n 00:00:01   +01:00 "_s), "2002-09-06T23:00:01.000Z");
}

TEST(FeedDate, ReadsRfc822WithZonesByName) {
  EXPECT_EQ(read(u"07 Sep 2002 12:00:00 EST"_s), "2002-09-07T17:00:00.000Z");
  EXPECT_EQ(read(u"07 Sep 2002 12:00:00 PDT"_s), "2002-09-07T19:00:00.000Z");
  EXPECT_EQ(read(u"07 Sep 2002 12:00:00 CEST"_s), "2002-09-07T10:00:00.000Z");
  EXPECT_EQ(read(u"07 Sep 2002 12:00:00 UT"_s), "2002-09-07T12:00:00.000Z");
  EXPECT_EQ(read(u"07 Sep 2002 12:00:00 GMT+2"_s), "2002-09-07T10:00:00.000Z");
  EXPECT_EQ(read(u"07 Sep 2002 12:00:00 GMT-0500"_s), "2002-09-07T17:00:00.000Z");
  // Letters were defined with the wrong sign; they say nothing.
  EXPECT_EQ(read(u"07 Sep 2002 12:00:00 A"_s), "2002-09-07T12:00:00.000Z");
  EXPECT_EQ(read(u"07 Sep 2002 12:00:00 Z"_s), "2002-09-07T12:00:00.000Z");
}

TEST(FeedDate, ReadsRfc822WithLessThanItAsksFor) {
  EXPECT_EQ(read(u"7 Sep 02 10:00 GMT"_s), "2002-09-07T10:00:00.000Z");
  EXPECT_EQ(read(u"7 Sep 98 10:00 GMT"_s), "1998-09-07T10:00:00.000Z");
  EXPECT_EQ(read(u"7 Sep 102 10:00 GMT"_s), "2002-09-07T10:00:00.000Z");
  EXPECT_EQ(read(u"7 September 2002"_s), "2002-09-07T00:00:00.000Z");
  EXPECT_EQ(read(u"Sat Sep  7 10:20:30 2002"_s), "2002-09-07T10:20:30.000Z");
  EXPECT_EQ(read(u"Saturday, 07-SEP-2002 10:20:30 GMT"_s), "2002-09-07T10:20:30.000Z");
  EXPECT_EQ(read(u"Sep 7, 2002"_s), "2002-09-07T00:00:00.000Z");
}

TEST(FeedDate, ReadsRfc3339) {
  EXPECT_EQ(read(u"2003-12-13T18:30:02Z"_s), "2003-12-13T18:30:02.000Z");
  EXPECT_EQ(read(u"2003-12-13T18:30:02.25+01:00"_s), "2003-12-13T17:30:02.250Z");
  EXPECT_EQ(read(u"2003-12-13t18:30:02.123456789z"_s), "2003-12-13T18:30:02.123Z");
  EXPECT_EQ(read(u"2003-12-13T18:30:60Z"_s), "2003-12-13T18:30:59.000Z");
}

TEST(FeedDate, ReadsRfc3339WithLessThanItAsksFor) {
  EXPECT_EQ(read(u"2003-12-13 18:30:02"_s), "2003-12-13T18:30:02.000Z");
  EXPECT_EQ(read(u"2003-12-13 18:30:02 +0100"_s), "2003-12-13T17:30:02.000Z");
  EXPECT_EQ(read(u"2003-12-13 18:30:02 UTC"_s), "2003-12-13T18:30:02.000Z");
  EXPECT_EQ(read(u"2003-12-13T18:30+01"_s), "2003-12-13T17:30:00.000Z");
  EXPECT_EQ(read(u"2003-12-13"_s), "2003-12-13T00:00:00.000Z");
  EXPECT_EQ(read(u"2003-12"_s), "2003-12-01T00:00:00.000Z");
  EXPECT_EQ(read(u"2003"_s), "2003-01-01T00:00:00.000Z");
}

TEST(FeedDate, ReadsNothingElse) {
  for (const QString& text : {u""_s,
                              u"yesterday"_s,
                              u"2003-13-01"_s,
                              u"2003-02-30"_s,
                              u"31 Feb 2003"_s,
                              u"Sep 2002"_s,
                              u"7 Sep 2002 25:00"_s,
                              u"7 Sep 2002 10:61"_s,
                              u"2003-12-13T18:30:02."_s,
                              u"2003-12-13T18:30:02+1:2:3"_s,
                              u"2003-12-13Tnoon"_s,
                              u"99999999999"_s,
                              u"-"_s,
                              u"--"_s,
                              u":"_s,
                              u"1:"_s,
                              u"+"_s,
                              u"0000-01-01"_s,
                              u"7 Sep 99999"_s,
                              QString(1000, u'1')})
    EXPECT_EQ(read(text), "") << text.toStdString();
}
