// Redirects: what is followed, what ends, and what goes along.
#include "tests/net/LoadProbe.h"
#include "tests/support/HttpServer.h"
#include "tests/support/TestCertificate.h"

#include <gtest/gtest.h>

namespace zq::testing {

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

// A path "/N" leads to "/N-1", and "/0" to a page.
void routeChain(HttpServer& server) {
  server.route("*", [](const HttpRequest& request, HttpReply& reply) {
    const int left = request.path().mid(1).toInt();
    if (left > 0)
      reply.redirect('/' + QByteArray::number(left - 1));
    else
      reply.send(200, "the end");
  });
}

QByteArray basic(const QByteArray& credentials) {
  return "Basic " + credentials.toBase64();
}

QUrl withCredentials(QUrl url) {
  url.setUserInfo(u"user:secret"_s);
  return url;
}

} // namespace

TEST(Redirects, LeadToTheFinalBodyAndResponse) {
  HttpServer server;
  server.redirect("/old", server.url("/new").toEncoded());
  server.route("/new", 200, "final", {{"X-Page", "new"}});
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url("/old")));
  EXPECT_EQ(probe.data, "final");
  EXPECT_EQ(probe.status(), 200);
  EXPECT_EQ(probe.response->URL(), server.url("/new"));
  EXPECT_EQ(probe.response->valueForHTTPHeaderField(u"x-page"), u"new"_s);
  EXPECT_FALSE(probe.response->valueForHTTPHeaderField(u"Location"));
  EXPECT_EQ(probe.lengths.back(), 5);
  EXPECT_EQ(probe.totals.back(), 5);
  EXPECT_EQ(server.requestCount(), 2);
}

TEST(Redirects, AreFollowedWhateverTheirStatus) {
  HttpServer server;
  server.route("/new", 200, "final");
  for (const int status : {301, 302, 303, 307, 308}) {
    server.redirect("/old", "/new", status);
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url("/old"))) << status;
    EXPECT_EQ(probe.data, "final") << status;
  }
}

TEST(Redirects, MayBeRelative) {
  HttpServer server;
  server.redirect("/a/b/old", "../c/new?x=1#part");
  server.route("/a/c/new", 200, "final");
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url("/a/b/old")));
  EXPECT_EQ(probe.data, "final");
  EXPECT_EQ(server.requests().at(1).target, "/a/c/new?x=1");
}

TEST(Redirects, MayLeaveOutTheScheme) {
  HttpServer server;
  server.redirect("/old", "//127.0.0.1:" + QByteArray::number(server.port()) + "/new");
  server.route("/new", 200, "final");
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url("/old")));
  EXPECT_EQ(probe.data, "final");
}

TEST(Redirects, LeadFromPlainToSecureAndBack) {
  const auto certificate = std::make_shared<const TestCertificate>();
  const TrustedAuthority trusted(certificate->authorityFile());
  HttpServer plain;
  HttpServer secure(certificate);
  plain.redirect("/up", secure.url("/page").toEncoded());
  secure.redirect("/down", plain.url("/page").toEncoded());
  plain.route("/page", 200, "plain");
  secure.route("/page", 200, "secure");
  LoadProbe up, down;
  ASSERT_TRUE(up.load(plain.url("/up")));
  EXPECT_EQ(up.data, "secure");
  EXPECT_EQ(up.response->URL(), secure.url("/page"));
  ASSERT_TRUE(down.load(secure.url("/down")));
  EXPECT_EQ(down.data, "plain");
}

TEST(Redirects, AreFollowedTwentyTimes) {
  HttpServer server;
  routeChain(server);
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url("/20")));
  EXPECT_EQ(probe.data, "the end");
  EXPECT_EQ(server.requestCount(), 21);
}

TEST(Redirects, FailTheTwentyFirstTime) {
  HttpServer server;
  routeChain(server);
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url("/21")));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), HTTPTooManyRedirects);
  EXPECT_EQ(server.requestCount(), 21);
}

TEST(Redirects, FailInALoop) {
  HttpServer server;
  server.redirect("/a", "/b");
  server.redirect("/b", "/a");
  server.redirect("/self", "/self");
  for (const char* start : {"/a", "/self"}) {
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url(start)));
    EXPECT_FALSE(probe.data);
    EXPECT_EQ(probe.errorCode(), HTTPTooManyRedirects);
  }
}

TEST(Redirects, LeadToNoOtherScheme) {
  HttpServer server;
  const QByteArray here = QUrl::fromLocalFile(QStringLiteral(__FILE__)).toEncoded();
  for (const QByteArray& location :
       {here, QByteArray("data:,text"), QByteArray("gopher://127.0.0.1/"),
        QByteArray("ftp://127.0.0.1/"), QByteArray("javascript:alert(1)")}) {
    server.redirect("/old", location);
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url("/old"))) << location.toStdString();
    EXPECT_FALSE(probe.data) << location.toStdString();
    EXPECT_EQ(probe.errorCode(), UnsupportedURL) << location.toStdString();
  }
}

TEST(Redirects, ToAnAddressWithoutAHostFail) {
  HttpServer server;
  server.redirect("/old", "http://");
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url("/old")));
  EXPECT_FALSE(probe.data);
  EXPECT_TRUE(probe.error);
}

TEST(Redirects, WithoutALocationArePages) {
  HttpServer server;
  server.route("/lost", 302, "nowhere");
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url("/lost")));
  EXPECT_EQ(probe.data, "nowhere");
  EXPECT_EQ(probe.status(), 302);
}

TEST(Redirects, KeepCredentialsOnTheSameServer) {
  HttpServer server;
  server.redirect("/old", "/new");
  server.route("/new", 200, "final");
  LoadProbe probe;
  ASSERT_TRUE(probe.load(withCredentials(server.url("/old"))));
  EXPECT_EQ(server.requests().at(0).header("Authorization"), basic("user:secret"));
  EXPECT_EQ(server.requests().at(1).header("Authorization"), basic("user:secret"));
}

TEST(Redirects, SendNoCredentialsToAnotherHost) {
  HttpServer server;
  server.redirect("/old", server.url("/new", "localhost").toEncoded());
  server.route("/new", 200, "final");
  LoadProbe probe;
  ASSERT_TRUE(probe.load(withCredentials(server.url("/old"))));
  EXPECT_EQ(probe.data, "final");
  EXPECT_TRUE(server.requests().at(0).hasHeader("Authorization"));
  EXPECT_FALSE(server.requests().at(1).hasHeader("Authorization"));
}

TEST(Redirects, SendNoCredentialsToAnotherPort) {
  HttpServer server, other;
  server.redirect("/old", other.url("/new").toEncoded());
  other.route("/new", 200, "final");
  LoadProbe probe;
  ASSERT_TRUE(probe.load(withCredentials(server.url("/old"))));
  EXPECT_EQ(probe.data, "final");
  EXPECT_FALSE(other.requests().at(0).hasHeader("Authorization"));
  EXPECT_FALSE(other.requests().at(0).hasHeader("Referer"));
}

TEST(Redirects, SendNoCredentialsBackFromSecureToPlain) {
  const auto certificate = std::make_shared<const TestCertificate>();
  const TrustedAuthority trusted(certificate->authorityFile());
  HttpServer secure(certificate), plain;
  secure.redirect("/old", plain.url("/new").toEncoded());
  plain.route("/new", 200, "final");
  LoadProbe probe;
  ASSERT_TRUE(probe.load(withCredentials(secure.url("/old"))));
  EXPECT_EQ(probe.data, "final");
  EXPECT_TRUE(secure.requests().at(0).hasHeader("Authorization"));
  EXPECT_FALSE(plain.requests().at(0).hasHeader("Authorization"));
}

TEST(Redirects, CarryNoCookieAlong) {
  HttpServer server;
  server.route("/old", 302, "moved", {{"Location", "/new"}, {"Set-Cookie", "a=1; Path=/"}});
  server.route("/new", 200, "final", {{"Set-Cookie", "b=2"}});
  LoadProbe first, second;
  ASSERT_TRUE(first.load(server.url("/old")));
  ASSERT_TRUE(second.load(server.url("/new")));
  EXPECT_EQ(first.response->valueForHTTPHeaderField(u"Set-Cookie"), u"b=2"_s);
  for (const HttpRequest& request : server.requests())
    EXPECT_FALSE(request.hasHeader("Cookie"));
}

TEST(Redirects, CountOnlyTheLastBody) {
  HttpServer server;
  server.route("/old", 302, QByteArray(100'000, 'x'), {{"Location", "/new"}});
  server.route("/new", 200, "final");
  LoadProbe probe;
  const BodyLimit limit(5);
  ASSERT_TRUE(probe.load(server.url("/old")));
  EXPECT_EQ(probe.data, "final");
  EXPECT_EQ(probe.totals, std::vector<qint64>{5});
}

} // namespace zq::testing
