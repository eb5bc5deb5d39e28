// The cache as a server sees it: which requests come, with which conditions, and what a connection
// makes of the answers.
#include "zqticker/platform/system/URLCache.h"

#include "tests/support/HttpServer.h"
#include "tests/support/LogWatch.h"
#include "tests/support/compression.h"
#include "tests/support/waiting.h"
#include "zqticker/platform/system/URLConnection.h"
#include "zqticker/platform/system/url_errors.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <memory>
#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

const auto protocol = URLRequestCachePolicy::UseProtocolCachePolicy;
const auto reloading = URLRequestCachePolicy::ReloadIgnoringCacheData;
const auto elseLoad = URLRequestCachePolicy::ReturnCacheDataElseLoad;
const auto dontLoad = URLRequestCachePolicy::ReturnCacheDataDontLoad;

constexpr qint64 storeSize = 16 << 20;

const HttpHeaders fresh = {{"Cache-Control", "max-age=1000"}};
const HttpHeaders staleWithTag = {{"Cache-Control", "max-age=0"}, {"ETag", "\"one\""}};

// What one load brought.
struct Loaded : URLConnectionDelegate {
  std::vector<Ref<URLResponse>> responses;
  std::vector<QUrl> redirects;
  QByteArray body;
  int pieces = 0;
  int ends = 0;
  Ref<Error> error;
  std::function<void(URLConnection&)> onData = [](URLConnection&) {};
  bool followsRedirects = true;

  Ref<URLRequest> connectionWillSendRequest(URLConnection&, const Ref<URLRequest>& request,
                                            const Ref<URLResponse>&) override {
    redirects.push_back(request->URL());
    return followsRedirects ? request : nullptr;
  }
  void connectionDidReceiveResponse(URLConnection&, const Ref<URLResponse>& response) override {
    responses.push_back(response);
    body.clear();
  }
  void connectionDidReceiveData(URLConnection& connection, QByteArrayView data) override {
    body.append(data);
    ++pieces;
    onData(connection);
  }
  void connectionDidFailWithError(URLConnection&, const Ref<Error>& failure) override {
    error = failure;
    ++ends;
  }
  void connectionDidFinishLoading(URLConnection&) override { ++ends; }

  int status() const { return responses.empty() ? 0 : responses.back()->statusCode(); }
  int errorCode() const { return error ? error->code() : 0; }
};

void start(Loaded& loaded, const QUrl& url, URLRequestCachePolicy policy) {
  URLConnection::connectionWithRequest(URLRequest::requestWithURL(url, policy, 60),
                                       Weak<URLConnectionDelegate>(&loaded));
}

std::unique_ptr<Loaded> load(const QUrl& url, URLRequestCachePolicy policy = protocol) {
  auto loaded = std::make_unique<Loaded>();
  start(*loaded, url, policy);
  EXPECT_TRUE(waitFor([&] { return loaded->ends > 0; }));
  return loaded;
}

QByteArray bodyOf(qsizetype length) {
  QByteArray body(length, '\0');
  for (qsizetype i = 0; i < length; ++i)
    body[i] = char((i >> 10) ^ i);
  return body;
}

class URLCacheTest : public ::testing::Test {
 protected:
  URLCacheTest() { setStore(); }
  ~URLCacheTest() override { URLCache::sharedURLCache().setStore({}, 0); }

  QString path() const { return folder_.filePath(u"cache"_s); }
  // As a new process would, on the same folder.
  void setStore() { URLCache::sharedURLCache().setStore(path(), storeSize); }

  QStringList files() const {
    QStringList found;
    QDirIterator iterator(folder_.path(), QDir::Files, QDirIterator::Subdirectories);
    while (iterator.hasNext())
      found.append(iterator.next());
    return found;
  }

  QTemporaryDir folder_;
  HttpServer server_;
};

} // namespace

TEST_F(URLCacheTest, AFreshResponseReachesTheServerOnce) {
  server_.route("/a", 200, "body", fresh);
  EXPECT_EQ(load(server_.url("/a"))->body, "body");
  const auto again = load(server_.url("/a"));
  EXPECT_EQ(again->body, "body");
  EXPECT_EQ(again->status(), 200);
  EXPECT_EQ(again->responses.size(), 1U);
  EXPECT_EQ(server_.requestCount(), 1);
}

TEST_F(URLCacheTest, NothingIsCalledBeforeControlIsBackInTheEventLoop) {
  server_.route("/a", 200, "body", fresh);
  load(server_.url("/a"));
  Loaded loaded;
  start(loaded, server_.url("/a"), protocol);
  EXPECT_TRUE(loaded.responses.empty());
  EXPECT_EQ(loaded.ends, 0);
  EXPECT_TRUE(waitFor([&] { return loaded.ends > 0; }));
}

TEST_F(URLCacheTest, OutlivesTheProcess) {
  server_.route("/a", 200, bodyOf(1'000'000), fresh);
  load(server_.url("/a"));
  URLCache::sharedURLCache().setStore({}, 0);
  setStore();
  EXPECT_TRUE(load(server_.url("/a"))->body == bodyOf(1'000'000));
  EXPECT_EQ(server_.requestCount(), 1);
}

TEST_F(URLCacheTest, TheServerSeesTheConditionsOfAStaleResponse) {
  server_.route("/a", 200, "body",
                {{"Cache-Control", "no-cache"},
                 {"ETag", "W/\"tag, with comma\""},
                 {"Last-Modified", "Sun, 06 Nov 1994 08:49:37 GMT"}});
  load(server_.url("/a"));
  server_.route("/a", 304, {}, {{"X-New", "yes"}});
  const auto confirmed = load(server_.url("/a"));
  ASSERT_EQ(server_.requestCount(), 2);
  const auto requests = server_.requests();
  EXPECT_FALSE(requests[0].hasHeader("If-None-Match"));
  EXPECT_FALSE(requests[0].hasHeader("If-Modified-Since"));
  EXPECT_EQ(requests[1].header("If-None-Match"), "W/\"tag, with comma\"");
  EXPECT_EQ(requests[1].header("If-Modified-Since"), "Sun, 06 Nov 1994 08:49:37 GMT");
  EXPECT_EQ(confirmed->responses.size(), 1U);
  EXPECT_EQ(confirmed->status(), 200);
  EXPECT_EQ(confirmed->body, "body");
  EXPECT_EQ(confirmed->responses[0]->valueForHTTPHeaderField(u"X-New"), u"yes"_s);
}

TEST_F(URLCacheTest, TheConnectionGoesOnAfterA304) {
  server_.route("/a", 200, "body", staleWithTag);
  load(server_.url("/a"));
  server_.route("/a", 304, {});
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(load(server_.url("/a"))->body, "body");
  EXPECT_EQ(server_.requestCount(), 4);
  EXPECT_EQ(server_.connectionCount(), 1);
}

TEST_F(URLCacheTest, AStaleResponseIsReplacedByANewOne) {
  server_.route("/a", 200, "one", staleWithTag);
  load(server_.url("/a"));
  server_.route("/a", 200, "two", fresh);
  EXPECT_EQ(load(server_.url("/a"))->body, "two");
  EXPECT_EQ(load(server_.url("/a"))->body, "two");
  EXPECT_EQ(server_.requestCount(), 2);
}

TEST_F(URLCacheTest, A304ForAnotherVersionIsFollowedByAWholeRequest) {
  server_.route("/a", 200, "one", staleWithTag);
  load(server_.url("/a"));
  server_.route("/a", [](const HttpRequest& request, HttpReply& reply) {
    if (request.hasHeader("If-None-Match"))
      reply.send(304, {}, {{"ETag", "\"two\""}});
    else
      reply.send(200, "two", {{"ETag", "\"two\""}});
  });
  const auto loaded = load(server_.url("/a"));
  EXPECT_EQ(loaded->responses.size(), 1U);
  EXPECT_EQ(loaded->body, "two");
  EXPECT_EQ(server_.requestCount(), 3);
}

TEST_F(URLCacheTest, PoliciesDecideWhatReachesTheServer) {
  server_.route("/a", 200, "one", staleWithTag);
  EXPECT_EQ(load(server_.url("/a"), dontLoad)->errorCode(), CannotLoadFromNetwork);
  EXPECT_EQ(server_.requestCount(), 0);
  EXPECT_EQ(load(server_.url("/a"), elseLoad)->body, "one");
  EXPECT_EQ(server_.requestCount(), 1);
  server_.route("/a", 200, "two", staleWithTag);
  EXPECT_EQ(load(server_.url("/a"), elseLoad)->body, "one");
  EXPECT_EQ(load(server_.url("/a"), dontLoad)->body, "one");
  EXPECT_EQ(server_.requestCount(), 1);
  EXPECT_EQ(load(server_.url("/a"), reloading)->body, "two");
  EXPECT_FALSE(server_.requests().back().hasHeader("If-None-Match"));
  EXPECT_EQ(load(server_.url("/a"), dontLoad)->body, "two");
  EXPECT_EQ(server_.requestCount(), 2);
}

TEST_F(URLCacheTest, CacheOnlySaysWhatIsMissing) {
  const auto loaded = load(server_.url("/a"), dontLoad);
  ASSERT_TRUE(loaded->error);
  EXPECT_EQ(loaded->error->domain(), URLErrorDomain);
  EXPECT_EQ(loaded->error->localizedDescription(), u"not in the cache"_s);
  EXPECT_EQ(loaded->error->failingURL(), server_.url("/a"));
  EXPECT_TRUE(loaded->responses.empty());
}

TEST_F(URLCacheTest, FilesAndDataAddressesLoadWithEveryPolicy) {
  QFile file(folder_.filePath(u"text"_s));
  ASSERT_TRUE(file.open(QFile::WriteOnly));
  file.write("from a file");
  file.close();
  for (const auto policy : {protocol, reloading, elseLoad, dontLoad}) {
    EXPECT_EQ(load(QUrl::fromLocalFile(file.fileName()), policy)->body, "from a file");
    EXPECT_EQ(load(QUrl(u"data:,text"_s), policy)->body, "text");
  }
  EXPECT_EQ(files().size(), 1);
}

TEST_F(URLCacheTest, ACompressedBodyIsStoredDecoded) {
  const QByteArray body = bodyOf(700'000);
  server_.route("/a", 200, gzip(body),
                {{"Cache-Control", "max-age=1000"}, {"Content-Encoding", "gzip"}});
  EXPECT_TRUE(load(server_.url("/a"))->body == body);
  const auto stored = load(server_.url("/a"));
  EXPECT_EQ(server_.requestCount(), 1);
  EXPECT_TRUE(stored->body == body);
  EXPECT_EQ(stored->responses[0]->expectedContentLength(), body.size());
  EXPECT_EQ(stored->responses[0]->valueForHTTPHeaderField(u"Content-Encoding"), std::nullopt);
}

TEST_F(URLCacheTest, NoStoreIsLoadedEachTime) {
  server_.route("/a", 200, "body", {{"Cache-Control", "no-store, max-age=1000"}});
  load(server_.url("/a"));
  EXPECT_TRUE(files().isEmpty());
  load(server_.url("/a"));
  EXPECT_EQ(server_.requestCount(), 2);
}

TEST_F(URLCacheTest, ATruncatedBodyIsNotStored) {
  server_.route("/length", [](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, 1000, fresh);
    reply.write("short");
    reply.close();
  });
  server_.route("/chunks", [](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(200, fresh);
    reply.chunk("short");
    reply.close();
  });
  for (const QByteArray& place : {QByteArray("/length"), QByteArray("/chunks")}) {
    EXPECT_EQ(load(server_.url(place))->errorCode(), NetworkConnectionLost);
    EXPECT_EQ(load(server_.url(place), dontLoad)->errorCode(), CannotLoadFromNetwork);
  }
  EXPECT_TRUE(files().isEmpty());
}

TEST_F(URLCacheTest, ABodyBeyondAnEighthOfTheStoreIsDeliveredAndNotStored) {
  const QByteArray body = bodyOf(storeSize / 8 + 1);
  server_.route("/announced", 200, body, fresh);
  server_.route("/chunked", [&](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(200, fresh);
    reply.chunk(body);
    reply.endChunks();
  });
  for (const QByteArray& place : {QByteArray("/announced"), QByteArray("/chunked")})
    EXPECT_TRUE(load(server_.url(place))->body == body);
  EXPECT_TRUE(files().isEmpty());
}

TEST_F(URLCacheTest, TheStoreStaysWithinItsSize) {
  const QByteArray body = bodyOf(1'000'000);
  server_.route("*", 200, body, fresh);
  for (int i = 0; i < 24; ++i) {
    load(server_.url("/" + QByteArray::number(i)));
    qint64 size = 0;
    for (const QString& file : files())
      size += QFileInfo(file).size();
    EXPECT_LE(size, storeSize);
  }
  EXPECT_TRUE(load(server_.url("/23"), dontLoad)->body == body);
  EXPECT_EQ(load(server_.url("/0"), dontLoad)->errorCode(), CannotLoadFromNetwork);
}

TEST_F(URLCacheTest, ADamagedEntryIsLoadedAnew) {
  const QByteArray body = bodyOf(600'000);
  server_.route("/a", 200, body, fresh);
  const auto damage = [&](const QString& name, bool cutOff) {
    QFile file(name);
    ASSERT_TRUE(file.open(QFile::ReadWrite));
    if (cutOff) {
      file.resize(file.size() / 2);
    } else {
      file.seek(file.size() * 3 / 4);
      file.write("scribble");
    }
  };
  // The head, two full parts and the rest.
  for (qsizetype i = 0; i < 4; ++i) {
    for (const bool cutOff : {false, true}) {
      URLCache::sharedURLCache().removeAllCachedResponses();
      load(server_.url("/a"));
      ASSERT_EQ(files().size(), 4);
      damage(files()[i], cutOff);
      const int before = server_.requestCount();
      const auto loaded = load(server_.url("/a"));
      EXPECT_TRUE(loaded->body == body);
      EXPECT_EQ(loaded->responses.size(), 1U);
      EXPECT_EQ(server_.requestCount(), before + 1);
    }
  }
}

TEST_F(URLCacheTest, EachHopOfARedirectIsStoredByItsOwnRules) {
  server_.route("/end", 200, "end", fresh);
  server_.route("/temporary", 302, "moved", {{"Location", "/end"}});
  server_.route("/permanent", 301, "moved",
                {{"Location", "/temporary"}, {"Cache-Control", "max-age=1000"}});
  for (int i = 0; i < 2; ++i) {
    const auto loaded = load(server_.url("/permanent#here"));
    EXPECT_EQ(loaded->body, "end");
    EXPECT_EQ(loaded->redirects,
              (std::vector<QUrl>{server_.url("/temporary#here"), server_.url("/end#here")}));
  }
  EXPECT_EQ(server_.requestCount("/permanent"), 1);
  EXPECT_EQ(server_.requestCount("/temporary"), 2);
  EXPECT_EQ(server_.requestCount("/end"), 1);
}

TEST_F(URLCacheTest, AStoredRedirectInACircleFails) {
  server_.route("/a", 301, {}, {{"Location", "/b"}, {"Cache-Control", "max-age=1000"}});
  server_.route("/b", 301, {}, {{"Location", "/a"}, {"Cache-Control", "max-age=1000"}});
  EXPECT_EQ(load(server_.url("/a"))->errorCode(), HTTPTooManyRedirects);
  EXPECT_EQ(load(server_.url("/a"), dontLoad)->errorCode(), HTTPTooManyRedirects);
  EXPECT_EQ(server_.requestCount(), 2);
}

TEST_F(URLCacheTest, AnErrorPageIsStoredOnlyWhereItSaysSo) {
  server_.route("/gone", 404, "page", fresh);
  server_.route("/lost", 404, "page");
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(load(server_.url("/gone"))->status(), 404);
    EXPECT_EQ(load(server_.url("/lost"))->body, "page");
  }
  EXPECT_EQ(server_.requestCount("/gone"), 1);
  EXPECT_EQ(server_.requestCount("/lost"), 2);
}

TEST_F(URLCacheTest, AServerThatIsGoneLeavesFreshResponsesOnly) {
  server_.route("/fresh", 200, "fresh", fresh);
  server_.route("/stale", 200, "stale", staleWithTag);
  server_.route("/lasting", 200, "lasting", {{"Cache-Control", "max-age=0, stale-if-error=1000"}});
  for (const QByteArray& place :
       {QByteArray("/fresh"), QByteArray("/stale"), QByteArray("/lasting")})
    load(server_.url(place));
  server_.stop();
  EXPECT_EQ(load(server_.url("/fresh"))->body, "fresh");
  EXPECT_EQ(load(server_.url("/stale"))->errorCode(), CannotConnectToHost);
  EXPECT_EQ(load(server_.url("/stale"), elseLoad)->body, "stale");
  EXPECT_EQ(load(server_.url("/lasting"))->body, "lasting");
}

TEST_F(URLCacheTest, TheLimitOfTheBodyHoldsForStoredOnesToo) {
  server_.route("/a", 200, bodyOf(1'000'000), fresh);
  load(server_.url("/a"));
  const qint64 before = URLConnection::maximumBodyLength();
  URLConnection::setMaximumBodyLength(999'999);
  const auto loaded = load(server_.url("/a"));
  URLConnection::setMaximumBodyLength(before);
  EXPECT_EQ(loaded->errorCode(), DataLengthExceedsMaximum);
  EXPECT_EQ(server_.requestCount(), 1);
}

TEST_F(URLCacheTest, AStoredBodyIsCancelledInTheMiddle) {
  server_.route("/a", 200, bodyOf(1'000'000), fresh);
  load(server_.url("/a"));
  Loaded loaded;
  loaded.onData = [](URLConnection& connection) { connection.cancel(); };
  start(loaded, server_.url("/a"), protocol);
  ASSERT_TRUE(waitFor([&] { return loaded.pieces > 0; }));
  EXPECT_TRUE(load(server_.url("/a"))->body == bodyOf(1'000'000));
  EXPECT_EQ(loaded.pieces, 1);
  EXPECT_EQ(loaded.ends, 0);
}

TEST_F(URLCacheTest, ADelegateThatGoesEndsAStoredLoad) {
  server_.route("/a", 200, bodyOf(1'000'000), fresh);
  load(server_.url("/a"));
  {
    Loaded loaded;
    start(loaded, server_.url("/a"), protocol);
    ASSERT_TRUE(waitFor([&] { return loaded.pieces > 0; }));
  }
  EXPECT_EQ(load(server_.url("/a"))->errorCode(), 0);
}

TEST_F(URLCacheTest, ABodyThatGoesWhileItIsServedComesAnewFromTheServer) {
  server_.route("/a", 200, bodyOf(1'000'000), fresh);
  load(server_.url("/a"));
  Loaded loaded;
  loaded.onData = [&](URLConnection&) {
    if (loaded.pieces == 1)
      URLCache::sharedURLCache().removeAllCachedResponses();
  };
  start(loaded, server_.url("/a"), protocol);
  ASSERT_TRUE(waitFor([&] { return loaded.ends > 0; }));
  EXPECT_EQ(loaded.responses.size(), 2U);
  EXPECT_TRUE(loaded.body == bodyOf(1'000'000));
  EXPECT_EQ(server_.requestCount(), 2);
}

TEST_F(URLCacheTest, CredentialsNeitherReadNorGetOntoTheDisk) {
  server_.route("/a", 200, "body", fresh);
  QUrl secret = server_.url("/a");
  secret.setUserName(u"name"_s);
  secret.setPassword(u"word"_s);
  load(secret);
  EXPECT_TRUE(files().isEmpty());
  load(server_.url("/a"));
  load(secret);
  EXPECT_EQ(server_.requestCount(), 3);
}

TEST_F(URLCacheTest, CookiesDoNotGetOntoTheDisk) {
  server_.route("/a", 200, "body",
                {{"Cache-Control", "max-age=1000"}, {"Set-Cookie", "session=secret"}});
  EXPECT_EQ(load(server_.url("/a"))->responses[0]->valueForHTTPHeaderField(u"Set-Cookie"),
            u"session=secret"_s);
  EXPECT_EQ(load(server_.url("/a"))->responses[0]->valueForHTTPHeaderField(u"Set-Cookie"),
            std::nullopt);
  EXPECT_EQ(server_.requestCount(), 1);
}

TEST_F(URLCacheTest, WithoutAFolderNothingIsKept) {
  URLCache::sharedURLCache().setStore({}, storeSize);
  const QString before = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(folder_.path()));
  server_.route("/a", 200, "body", fresh);
  load(server_.url("/a"));
  load(server_.url("/a"));
  QDir::setCurrent(before);
  EXPECT_EQ(server_.requestCount(), 2);
  EXPECT_TRUE(files().isEmpty());
}

TEST_F(URLCacheTest, AFolderThatCannotBeWrittenIsLoggedOnceAndLoadingGoesOn) {
  QFile file(folder_.filePath(u"file"_s));
  ASSERT_TRUE(file.open(QFile::WriteOnly));
  expectLog(u"zqticker.net: The cache folder"_s);
  URLCache::sharedURLCache().setStore(folder_.filePath(u"file/below"_s), storeSize);
  server_.route("/a", 200, "body", fresh);
  EXPECT_EQ(load(server_.url("/a"))->body, "body");
  EXPECT_EQ(load(server_.url("/a"))->body, "body");
  EXPECT_EQ(server_.requestCount(), 2);
}

TEST_F(URLCacheTest, ServesLoadsOnSeveralThreads) {
  const QByteArray body = bodyOf(600'000);
  server_.route("*", 200, body, fresh);
  const auto loadMany = [&](int first) {
    for (int i = 0; i < 12; ++i) {
      const auto policy = (i + first) % 4 == 0 ? reloading : protocol;
      EXPECT_TRUE(load(server_.url("/" + QByteArray::number(i % 3)), policy)->body == body);
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i)
    threads.emplace_back(loadMany, i);
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_TRUE(load(server_.url("/0"), dontLoad)->body == body);
}
