#include "zqticker/platform/system/http_cache_control_p.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

HTTPCacheControl controlOf(const QString& value) {
  return httpCacheControl({{u"Cache-Control"_s, value}});
}

} // namespace

TEST(HTTPCacheControl, ReadsDirectivesWhateverTheirCaseAndSpacing) {
  const HTTPCacheControl control =
      controlOf(u"NO-STORE ,no-Cache,, must-revalidate , MAX-AGE=60"_s);
  EXPECT_TRUE(control.noStore);
  EXPECT_TRUE(control.noCache);
  EXPECT_TRUE(control.mustRevalidate);
  EXPECT_EQ(control.maxAge, 60);
}

TEST(HTTPCacheControl, JoinsSeveralFields) {
  const HTTPCacheControl control =
      httpCacheControl({{u"cache-control"_s, u"no-store"_s}, {u"CACHE-CONTROL"_s, u"max-age=5"_s}});
  EXPECT_TRUE(control.noStore);
  EXPECT_EQ(control.maxAge, 5);
}

TEST(HTTPCacheControl, LeavesWhatSpeaksToSharedCachesAside) {
  const HTTPCacheControl control =
      controlOf(u"private, public, s-maxage=10, proxy-revalidate, private=\"set-cookie\""_s);
  EXPECT_FALSE(control.noStore);
  EXPECT_FALSE(control.noCache);
  EXPECT_FALSE(control.mustRevalidate);
  EXPECT_EQ(control.maxAge, std::nullopt);
}

TEST(HTTPCacheControl, ADirectiveWithinQuotesIsNoDirective) {
  const HTTPCacheControl control = controlOf(uR"(ext="a, no-store, \", max-age=9", max-age=3)"_s);
  EXPECT_FALSE(control.noStore);
  EXPECT_EQ(control.maxAge, 3);
}

TEST(HTTPCacheControl, NoCacheForSomeFieldsCountsForAll) {
  EXPECT_TRUE(controlOf(u"no-cache=\"set-cookie, x-y\""_s).noCache);
}

TEST(HTTPCacheControl, SecondsThatCannotBeReadAreNone) {
  for (const auto& text : {u"max-age"_s, u"max-age="_s, u"max-age=-1"_s, u"max-age=1.5"_s,
                           u"max-age=soon"_s, u"max-age=\"\""_s, u"max-age=5, max-age=6"_s})
    EXPECT_EQ(controlOf(text).maxAge, 0) << text.toStdString();
}

TEST(HTTPCacheControl, SecondsMayStandInQuotesAndTwice) {
  EXPECT_EQ(controlOf(u"max-age=\"7\""_s).maxAge, 7);
  EXPECT_EQ(controlOf(u"max-age=7, max-age=7"_s).maxAge, 7);
}

TEST(HTTPCacheControl, SecondsEndAtTwoToThe31st) {
  EXPECT_EQ(controlOf(u"max-age=2147483647"_s).maxAge, 2'147'483'647);
  EXPECT_EQ(controlOf(u"max-age=99999999999999999999999999"_s).maxAge, 2'147'483'648);
}

TEST(HTTPCacheControl, PragmaCountsOnlyWithoutCacheControl) {
  EXPECT_TRUE(httpCacheControl({{u"Pragma"_s, u"x, No-Cache"_s}}).noCache);
  EXPECT_FALSE(httpCacheControl({{u"Pragma"_s, u"x"_s}}).noCache);
  EXPECT_FALSE(
      httpCacheControl({{u"Pragma"_s, u"no-cache"_s}, {u"Cache-Control"_s, u"max-age=5"_s}})
          .noCache);
}

TEST(HTTPHeaderFields, AListIsPartedAtCommasOutsideQuotes) {
  const QString text = uR"( a ,, "b, \" c" , d)"_s;
  EXPECT_EQ(httpListElements(text), (QList<QStringView>{u"a", uR"("b, \" c")", u"d"}));
  EXPECT_TRUE(httpListElements(u"").isEmpty());
  EXPECT_EQ(httpListElements(u"\"open, \\"), (QList<QStringView>{u"\"open, \\"}));
}
