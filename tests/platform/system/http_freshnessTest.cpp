#include "zqticker/platform/system/http_freshness_p.h"

#include <gtest/gtest.h>

#include <QtCore/QDateTime>
#include <QtCore/QLocale>

#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

constexpr qint64 arrival = 1'790'000'000;

// The HTTP date that lies `seconds` after the arrival.
QString date(qint64 seconds) {
  return QLocale::c().toString(QDateTime::fromSecsSinceEpoch(arrival + seconds, Qt::UTC),
                               u"ddd, dd MMM yyyy hh:mm:ss 'GMT'"_s);
}

// A response that was asked for and came at the same time.
HTTPStoredResponse response(const HTTPHeaderFields& fields, int statusCode = 200) {
  return {statusCode, fields, arrival, arrival};
}

struct Case {
  const char* what;
  HTTPHeaderFields fields;
  qint64 expected;
};

} // namespace

TEST(HTTPFreshness, LifetimeIsStatedOrGuessed) {
  const std::vector<Case> cases = {
      {"nothing stated: stale at once", {}, 0},
      {"max-age", {{u"Cache-Control"_s, u"max-age=60"_s}}, 60},
      {"max-age comes before Expires",
       {{u"Cache-Control"_s, u"max-age=60"_s}, {u"Expires"_s, date(5)}, {u"Date"_s, date(0)}},
       60},
      {"max-age=0 comes before Last-Modified",
       {{u"Cache-Control"_s, u"max-age=0"_s}, {u"Last-Modified"_s, date(-1000)}},
       0},
      {"s-maxage is for shared caches", {{u"Cache-Control"_s, u"s-maxage=60"_s}}, 0},
      {"Expires counts from Date", {{u"Expires"_s, date(100)}, {u"Date"_s, date(-20)}}, 120},
      {"Expires without Date counts from the arrival", {{u"Expires"_s, date(100)}}, 100},
      {"Expires with an unreadable Date too",
       {{u"Expires"_s, date(100)}, {u"Date"_s, u"today"_s}},
       100},
      {"Expires in the past", {{u"Expires"_s, date(-100)}}, 0},
      {"Expires that cannot be read is past, whatever Last-Modified says",
       {{u"Expires"_s, u"0"_s}, {u"Last-Modified"_s, date(-1000)}},
       0},
      {"two Expires are unreadable", {{u"Expires"_s, date(9)}, {u"Expires"_s, date(99)}}, 0},
      {"a tenth of the time since Last-Modified",
       {{u"Last-Modified"_s, date(-500)}, {u"Date"_s, date(0)}},
       50},
      {"a tenth of the time since Last-Modified, at most a minute",
       {{u"Last-Modified"_s, date(-86'400 * 300)}},
       60},
      {"Last-Modified after Date", {{u"Last-Modified"_s, date(1000)}}, 0},
  };
  for (const Case& c : cases)
    EXPECT_EQ(freshnessLifetime(response(c.fields)), c.expected) << c.what;
}

TEST(HTTPFreshness, AgeIsTheLargestThatIsKnown) {
  const std::vector<Case> cases = {
      {"without Date and Age: the time in the cache", {}, 10},
      {"Date tells how long it was under way", {{u"Date"_s, date(-30)}}, 40},
      {"a server's clock that is ahead makes nothing younger", {{u"Date"_s, date(30)}}, 10},
      {"Age of a cache on the way", {{u"Age"_s, u"50"_s}, {u"Date"_s, date(-30)}}, 60},
      {"Age smaller than Date tells", {{u"Age"_s, u"5"_s}, {u"Date"_s, date(-30)}}, 40},
      {"Age that cannot be read is none", {{u"Age"_s, u"-5"_s}}, 10},
      {"the first of several Ages", {{u"Age"_s, u"50"_s}, {u"Age"_s, u"70"_s}}, 60},
  };
  for (const Case& c : cases)
    EXPECT_EQ(currentAge(response(c.fields), arrival + 10), c.expected) << c.what;
}

TEST(HTTPFreshness, TheTimeOfTheRequestAddsToTheStatedAge) {
  HTTPStoredResponse slow = response({{u"Age"_s, u"50"_s}});
  slow.requestTime = arrival - 7;
  EXPECT_EQ(currentAge(slow, arrival + 10), 67);
}

TEST(HTTPFreshness, AClockThatWasSetBackLeavesTheAgeUnknown) {
  const HTTPStoredResponse lasting = response({{u"Cache-Control"_s, u"max-age=9999"_s}});
  EXPECT_EQ(currentAge(lasting, arrival - 1), std::nullopt);
  EXPECT_FALSE(isFresh(lasting, arrival - 1));
}

TEST(HTTPFreshness, EndsWhenTheAgeReachesTheLifetime) {
  const HTTPStoredResponse minute = response({{u"Cache-Control"_s, u"max-age=60"_s}});
  EXPECT_TRUE(isFresh(minute, arrival));
  EXPECT_TRUE(isFresh(minute, arrival + 59));
  EXPECT_FALSE(isFresh(minute, arrival + 60));
  const HTTPStoredResponse aged =
      response({{u"Cache-Control"_s, u"max-age=60"_s}, {u"Age"_s, u"60"_s}});
  EXPECT_FALSE(isFresh(aged, arrival));
}

TEST(HTTPFreshness, NoCacheIsNeverFreshMustRevalidateIsUntilItIsStale) {
  EXPECT_FALSE(isFresh(response({{u"Cache-Control"_s, u"max-age=60, no-cache"_s}}), arrival));
  EXPECT_TRUE(isFresh(response({{u"Cache-Control"_s, u"max-age=60, must-revalidate"_s}}), arrival));
  EXPECT_FALSE(isFresh(response({{u"Pragma"_s, u"no-cache"_s}, {u"Expires"_s, date(9)}}), arrival));
}

TEST(HTTPFreshness, AStaleResponseServesOnErrorOnlyWhereItSaysSo) {
  const auto serves = [](const QString& control, qint64 age) {
    return mayServeOnError(response({{u"Cache-Control"_s, control}}), arrival + age);
  };
  EXPECT_TRUE(serves(u"max-age=10, stale-if-error=20"_s, 29));
  EXPECT_FALSE(serves(u"max-age=10, stale-if-error=20"_s, 30));
  EXPECT_FALSE(serves(u"max-age=10"_s, 11));
  EXPECT_FALSE(serves(u"max-age=10, stale-if-error=20, must-revalidate"_s, 11));
  EXPECT_FALSE(serves(u"max-age=10, stale-if-error=20, no-cache"_s, 11));
}

TEST(HTTPFreshness, StatusesAreKeptByTheirKind) {
  for (const int status : {200, 203, 204, 300, 301, 308})
    EXPECT_TRUE(isStorable(response({}, status))) << status;
  for (const int status : {302, 303, 307, 404, 405, 410, 414, 501}) {
    EXPECT_FALSE(isStorable(response({}, status))) << status;
    EXPECT_TRUE(isStorable(response({{u"Cache-Control"_s, u"max-age=9"_s}}, status))) << status;
  }
  for (const int status : {100, 201, 206, 304, 400, 401, 403, 407, 416, 429, 500, 502, 503, 504})
    EXPECT_FALSE(isStorable(response({{u"Cache-Control"_s, u"max-age=9"_s}}, status))) << status;
}

TEST(HTTPFreshness, AnErrorThatIsStaleAtOnceIsNotKept) {
  EXPECT_FALSE(isStorable(response({{u"Cache-Control"_s, u"max-age=0"_s}}, 404)));
  EXPECT_TRUE(isStorable(response({{u"Cache-Control"_s, u"max-age=0"_s}}, 302)));
}

TEST(HTTPFreshness, NoStoreAndVaryByAnythingAreNeverKept) {
  EXPECT_FALSE(isStorable(response({{u"Cache-Control"_s, u"max-age=9, no-store"_s}})));
  EXPECT_FALSE(isStorable(response({{u"Vary"_s, u"*"_s}})));
  EXPECT_FALSE(isStorable(response({{u"Vary"_s, u"Accept"_s}, {u"Vary"_s, u"*"_s}})));
  EXPECT_TRUE(isStorable(response({{u"Vary"_s, u"Accept-Encoding, User-Agent"_s}})));
  EXPECT_TRUE(isStorable(response({{u"Cache-Control"_s, u"private, no-cache"_s}})));
}

TEST(HTTPFreshness, ARequestIsConditionalOnWhatTheResponseOffers) {
  EXPECT_TRUE(conditionalFields(response({{u"Date"_s, date(0)}, {u"ETag"_s, u" "_s}})).isEmpty());
  EXPECT_EQ(conditionalFields(response({{u"etag"_s, u"W/\"a, b\""_s}})),
            (HTTPHeaderFields{{u"If-None-Match"_s, u"W/\"a, b\""_s}}));
  EXPECT_EQ(
      conditionalFields(response({{u"ETag"_s, u"\"a\""_s}, {u"Last-Modified"_s, date(-9)}})),
      (HTTPHeaderFields{{u"If-None-Match"_s, u"\"a\""_s}, {u"If-Modified-Since"_s, date(-9)}}));
}

TEST(HTTPFreshness, FieldsOfTheTransferAreNotKept) {
  EXPECT_EQ(fieldsToStore({{u"Connection"_s, u"close, X-Hop"_s},
                           {u"Keep-Alive"_s, u"timeout=5"_s},
                           {u"x-hop"_s, u"1"_s},
                           {u"Transfer-Encoding"_s, u"chunked"_s},
                           {u"Set-Cookie"_s, u"a=b"_s},
                           {u"Content-Length"_s, u"5"_s},
                           {u"ETag"_s, u"\"a\""_s}}),
            (HTTPHeaderFields{{u"Content-Length"_s, u"5"_s}, {u"ETag"_s, u"\"a\""_s}}));
}

TEST(HTTPFreshness, FieldsOfACompressedBodyAreNotKeptWithItsDecodedBytes) {
  EXPECT_EQ(fieldsToStore({{u"Content-Length"_s, u"5"_s},
                           {u"Content-Encoding"_s, u"gzip"_s},
                           {u"Content-Type"_s, u"text/plain"_s}}),
            (HTTPHeaderFields{{u"Content-Type"_s, u"text/plain"_s}}));
}

TEST(HTTPFreshness, A304SpeaksOfTheStoredResponseUnlessItsTagDiffers) {
  const HTTPStoredResponse tagged = response({{u"ETag"_s, u"\"a\""_s}});
  EXPECT_TRUE(confirms(tagged, {}));
  EXPECT_TRUE(confirms(tagged, {{u"etag"_s, u"\"a\""_s}}));
  EXPECT_TRUE(confirms(tagged, {{u"ETag"_s, u"W/\"a\""_s}}));
  EXPECT_FALSE(confirms(tagged, {{u"ETag"_s, u"\"b\""_s}}));
}

TEST(HTTPFreshness, A304ReplacesFieldsByNameAndKeepsThoseOfTheBody) {
  const HTTPStoredResponse stored = response({{u"Content-Type"_s, u"text/plain"_s},
                                              {u"Content-Length"_s, u"5"_s},
                                              {u"Age"_s, u"70"_s},
                                              {u"X-Many"_s, u"1"_s},
                                              {u"X-Many"_s, u"2"_s},
                                              {u"X-Stays"_s, u"s"_s}});
  HTTPStoredResponse news = response({{u"content-type"_s, u"text/html"_s},
                                      {u"content-length"_s, u"0"_s},
                                      {u"Content-Encoding"_s, u"gzip"_s},
                                      {u"x-many"_s, u"3"_s},
                                      {u"X-Many"_s, u"4"_s},
                                      {u"Connection"_s, u"close"_s},
                                      {u"Cache-Control"_s, u"max-age=5"_s}},
                                     304);
  news.requestTime = arrival + 100;
  news.responseTime = arrival + 101;
  const HTTPStoredResponse merged = refreshed(stored, news);
  EXPECT_EQ(merged.statusCode, 200);
  EXPECT_EQ(merged.requestTime, arrival + 100);
  EXPECT_EQ(merged.responseTime, arrival + 101);
  EXPECT_EQ(merged.headerFields, (HTTPHeaderFields{{u"Content-Type"_s, u"text/plain"_s},
                                                   {u"Content-Length"_s, u"5"_s},
                                                   {u"X-Stays"_s, u"s"_s},
                                                   {u"x-many"_s, u"3"_s},
                                                   {u"X-Many"_s, u"4"_s},
                                                   {u"Cache-Control"_s, u"max-age=5"_s}}));
  EXPECT_TRUE(isFresh(merged, arrival + 103));
}

TEST(HTTPFreshness, A304WithoutDateMakesTheResponseFreshFromItsArrival) {
  // The stored Date is hours old and would make it stale again at once.
  const HTTPStoredResponse stored = response(
      {{u"Date"_s, date(-9999)}, {u"Cache-Control"_s, u"max-age=60"_s}, {u"ETag"_s, u"\"a\""_s}});
  HTTPStoredResponse news = response({}, 304);
  news.requestTime = news.responseTime = arrival + 100;
  EXPECT_TRUE(isFresh(refreshed(stored, news), arrival + 101));
}
