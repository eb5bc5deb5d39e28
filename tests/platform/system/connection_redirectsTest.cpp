// What a delegate may answer when it is asked about a redirect.
#include "tests/platform/system/ConnectionRecorder.h"
#include "tests/support/HttpServer.h"
#include "tests/support/LogWatch.h"
#include "zqticker/platform/objects/Exception.h"
#include "zqticker/platform/system/url_errors.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {
class ConnectionRedirects : public ::testing::Test {
 protected:
  ConnectionRedirects() {
    server.route("/old", 302, "moved", {{"Location", "/new"}});
    server.route("/new", 200, "new");
    server.route("/other", 200, "other");
  }

  HttpServer server;
  ConnectionRecorder recorder;
};
} // namespace

TEST_F(ConnectionRedirects, AreProposedWithTheResponseThatAsksForThem) {
  ASSERT_TRUE(recorder.load(server.url("/old")));
  ASSERT_EQ(recorder.proposals.size(), 1u);
  EXPECT_EQ(recorder.proposals[0]->URL(), server.url("/new"));
  EXPECT_EQ(recorder.redirects[0]->statusCode(), 302);
  EXPECT_EQ(recorder.redirects[0]->URL(), server.url("/old"));
  ASSERT_EQ(recorder.responses.size(), 1u);
  EXPECT_EQ(recorder.responses[0]->URL(), server.url("/new"));
  EXPECT_EQ(recorder.body(), "new");
}

TEST_F(ConnectionRedirects, KeepPolicyAndTimeout) {
  URLConnection::connectionWithRequest(
      URLRequest::requestWithURL(server.url("/old"), URLRequestCachePolicy::ReloadIgnoringCacheData,
                                 7.5),
      &recorder);
  ASSERT_TRUE(waitFor([&] { return recorder.ends > 0; }));
  ASSERT_EQ(recorder.proposals.size(), 1u);
  EXPECT_EQ(recorder.proposals[0]->cachePolicy(), URLRequestCachePolicy::ReloadIgnoringCacheData);
  EXPECT_EQ(recorder.proposals[0]->timeoutInterval(), 7.5);
}

TEST_F(ConnectionRedirects, AreResponsesWithABodyWhenTheDelegateDoesNotFollow) {
  recorder.onRedirect = [](const Ref<URLRequest>&) { return nullptr; };
  ASSERT_TRUE(recorder.load(server.url("/old")));
  EXPECT_TRUE(recorder.isFinished);
  ASSERT_EQ(recorder.responses.size(), 1u);
  EXPECT_EQ(recorder.responses[0]->statusCode(), 302);
  EXPECT_EQ(recorder.body(), "moved");
  EXPECT_EQ(server.requestCount("/new"), 0);
}

TEST_F(ConnectionRedirects, LeadWhereTheDelegateSays) {
  recorder.onRedirect = [&](const Ref<URLRequest>&) {
    return URLRequest::requestWithURL(server.url("/other"));
  };
  ASSERT_TRUE(recorder.load(server.url("/old")));
  EXPECT_EQ(recorder.body(), "other");
  EXPECT_EQ(server.requestCount("/new"), 0);
}

TEST_F(ConnectionRedirects, LeadToNoOtherSchemeWhateverTheDelegateSays) {
  recorder.onRedirect = [](const Ref<URLRequest>&) {
    return URLRequest::requestWithURL(QUrl(u"file:///etc/passwd"_s));
  };
  ASSERT_TRUE(recorder.load(server.url("/old")));
  EXPECT_EQ(recorder.errorCode(), UnsupportedURL);
  EXPECT_TRUE(recorder.responses.empty());
}

TEST_F(ConnectionRedirects, AreNotProposedWhereTheyAreRefused) {
  server.redirect("/file", "file:///etc/passwd");
  ASSERT_TRUE(recorder.load(server.url("/file")));
  EXPECT_EQ(recorder.errorCode(), UnsupportedURL);
  EXPECT_EQ(recorder.errorText(), u"redirect to an unsupported URL scheme: file"_s);
  EXPECT_TRUE(recorder.proposals.empty());
}

TEST_F(ConnectionRedirects, WaitForAnAnswerThatTakesAnEventLoop) {
  ConnectionRecorder other;
  recorder.onRedirect = [&](const Ref<URLRequest>& request) {
    EXPECT_TRUE(other.load(server.url("/other")));
    EXPECT_TRUE(recorder.responses.empty());
    EXPECT_TRUE(recorder.pieces.empty());
    return request;
  };
  ASSERT_TRUE(recorder.load(server.url("/old")));
  EXPECT_EQ(other.body(), "other");
  EXPECT_EQ(recorder.body(), "new");
  EXPECT_EQ(recorder.ends, 1);
}

TEST_F(ConnectionRedirects, MayBeDeclinedFromAnEventLoop) {
  recorder.onRedirect = [&](const Ref<URLRequest>&) {
    ConnectionRecorder other;
    EXPECT_TRUE(other.load(server.url("/other")));
    return nullptr;
  };
  ASSERT_TRUE(recorder.load(server.url("/old")));
  EXPECT_EQ(recorder.body(), "moved");
  EXPECT_TRUE(recorder.isFinished);
}

TEST_F(ConnectionRedirects, EndWithAConnectionThatIsCancelledWhenAsked) {
  const auto connection = recorder.start(server.url("/old"));
  recorder.onRedirect = [&](const Ref<URLRequest>& request) {
    connection->cancel();
    return request;
  };
  ASSERT_TRUE(waitFor([&] { return !recorder.proposals.empty(); }));
  runPostedEvents();
  EXPECT_EQ(recorder.ends, 0);
  EXPECT_EQ(server.requestCount("/new"), 0);
}

TEST_F(ConnectionRedirects, AreFollowedWhenTheDelegateRaises) {
  recorder.onRedirect = [](const Ref<URLRequest>&) -> Ref<URLRequest> {
    throw InvalidArgumentException(u"undecided"_s);
  };
  expectLog(u"zqticker.net: undecided"_s);
  ASSERT_TRUE(recorder.load(server.url("/old")));
  EXPECT_EQ(recorder.body(), "new");
}

TEST_F(ConnectionRedirects, DoNotWaitForABodyThatDoesNotEnd) {
  server.route("/endless", [](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(302, 1000, {{"Location", "/new"}});
    reply.write("moved");
    reply.awaitClientClose();
  });
  ASSERT_TRUE(recorder.load(server.url("/endless")));
  EXPECT_EQ(recorder.body(), "new");
}

TEST_F(ConnectionRedirects, UseTheConnectionAgain) {
  ASSERT_TRUE(recorder.load(server.url("/old")));
  EXPECT_EQ(server.connectionCount(), 1);
}
