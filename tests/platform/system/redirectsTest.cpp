// Where a redirect leads, apart from its transfer.
#include "zqticker/platform/system/redirects_p.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
std::optional<QUrl> after(const QString& base, const QString& location, int status = 302) {
  const QUrl url(base);
  return addressAfterRedirect(*URLResponse::make(url, status, {{u"location"_s, location}}), url);
}
} // namespace

TEST(Redirects, AreTheFiveStatusesWithALocation) {
  for (const int status : {301, 302, 303, 307, 308})
    EXPECT_TRUE(after(u"http://a/"_s, u"/b"_s, status)) << status;
  for (const int status : {200, 300, 304, 305, 306, 400})
    EXPECT_FALSE(after(u"http://a/"_s, u"/b"_s, status)) << status;
}

TEST(Redirects, NeedALocation) {
  const QUrl url(u"http://a/"_s);
  EXPECT_FALSE(addressAfterRedirect(*URLResponse::make(url, 302, {}), url));
  EXPECT_FALSE(after(u"http://a/"_s, u" "_s));
}

TEST(Redirects, TakeTheFirstOfSeveralLocations) {
  const QUrl url(u"http://a/"_s);
  EXPECT_EQ(addressAfterRedirect(
                *URLResponse::make(url, 302,
                                   {{u"Location"_s, u"/first"_s}, {u"Location"_s, u"/second"_s}}),
                url),
            QUrl(u"http://a/first"_s));
}

TEST(Redirects, ResolveRelativeLocations) {
  EXPECT_EQ(after(u"http://a/x/y?q"_s, u"z"_s), QUrl(u"http://a/x/z"_s));
  EXPECT_EQ(after(u"http://a/x/y"_s, u"../z?r"_s), QUrl(u"http://a/z?r"_s));
  EXPECT_EQ(after(u"https://a/x"_s, u"//b/c"_s), QUrl(u"https://b/c"_s));
}

TEST(Redirects, KeepEscapesAndMendSpaces) {
  EXPECT_EQ(after(u"http://a/"_s, u"/b%2Fc d"_s)->toEncoded(), "http://a/b%2Fc%20d");
}

TEST(Redirects, HandTheFragmentOnWhereThereIsNoNewOne) {
  EXPECT_EQ(after(u"http://a/#here"_s, u"/b"_s), QUrl(u"http://a/b#here"_s));
  EXPECT_EQ(after(u"http://a/#here"_s, u"/b#there"_s), QUrl(u"http://a/b#there"_s));
}

TEST(Redirects, KeepUserAndPasswordAtTheSameSchemeHostAndPort) {
  EXPECT_EQ(after(u"http://u:p@a/"_s, u"/b"_s), QUrl(u"http://u:p@a/b"_s));
  EXPECT_EQ(after(u"http://u:p@a/"_s, u"http://a:80/b"_s), QUrl(u"http://u:p@a:80/b"_s));
  EXPECT_EQ(after(u"http://u%40x:p%3A@a/"_s, u"/b"_s)->toEncoded(), "http://u%40x:p%3A@a/b");
}

TEST(Redirects, SendUserAndPasswordNowhereElse) {
  EXPECT_EQ(after(u"http://u:p@a/"_s, u"http://b/"_s), QUrl(u"http://b/"_s));
  EXPECT_EQ(after(u"http://u:p@a/"_s, u"http://a:81/"_s), QUrl(u"http://a:81/"_s));
  EXPECT_EQ(after(u"http://u:p@a/"_s, u"https://a/"_s), QUrl(u"https://a/"_s));
  EXPECT_EQ(after(u"http://u:p@a/"_s, u"//b/"_s), QUrl(u"http://b/"_s));
}

TEST(Redirects, BringNoUserOfTheirOwn) {
  EXPECT_EQ(after(u"http://a/"_s, u"http://x:y@b/"_s), QUrl(u"http://b/"_s));
  EXPECT_EQ(after(u"http://u:p@a/"_s, u"http://x:y@a/"_s), QUrl(u"http://u:p@a/"_s));
}

TEST(Redirects, MayLeadToAnInvalidAddress) {
  const auto url = after(u"http://a/"_s, u"http://[broken/"_s);
  ASSERT_TRUE(url);
  EXPECT_FALSE(url->isValid());
}

TEST(Redirects, AreShownWithoutThePasswordAndNotTooLong) {
  EXPECT_EQ(shownAddress(QUrl(u"http://u:p@a/b"_s)), u"http://a/b"_s);
  EXPECT_EQ(shownAddress(QUrl(u"http://a/"_s + QString(1000, u'x'))).size(), 201);
}
