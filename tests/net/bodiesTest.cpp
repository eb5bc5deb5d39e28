// Bodies: pieces, lengths, encodings, and what is delivered when they are cut.
#include "tests/net/LoadProbe.h"
#include "tests/support/HttpServer.h"
#include "tests/support/compression.h"

#include <gtest/gtest.h>

namespace zq::testing {

using namespace Qt::StringLiterals;
using namespace zq::platform;

TEST(Bodies, ArriveInPiecesWithTheTotalSoFar) {
  HttpServer server;
  HttpLatch next;
  server.route("/", [next](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, 35);
    for (const int length : {10, 20, 5}) {
      reply.write(QByteArray(length, char('0' + length / 10)));
      reply.wait(next);
    }
  });
  LoadProbe probe;
  probe.onTotal = [&](ZQURLLoader&, qint64) { next.release(); };
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_EQ(probe.lengths, std::vector<qint64>{35});
  EXPECT_EQ(probe.totals, (std::vector<qint64>{10, 30, 35}));
  EXPECT_EQ(probe.data, QByteArray(10, '1') + QByteArray(20, '2') + QByteArray(5, '0'));
}

TEST(Bodies, OfNoBytesAreEmptyDataAndNotNothing) {
  HttpServer server;
  server.route("/", 200, "");
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  ASSERT_TRUE(probe.data);
  EXPECT_TRUE(probe.data->isEmpty());
  EXPECT_EQ(probe.lengths, std::vector<qint64>{0});
  EXPECT_TRUE(probe.totals.empty());
  EXPECT_FALSE(probe.error);
}

TEST(Bodies, AreEmptyWhereTheStatusAllowsNone) {
  HttpServer server;
  for (const int status : {204, 304}) {
    server.route("/", [status](const HttpRequest&, HttpReply& reply) { reply.begin(status); });
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url())) << status;
    EXPECT_EQ(probe.data, QByteArray("")) << status;
    EXPECT_EQ(probe.status(), status);
    EXPECT_FALSE(probe.error) << status;
  }
}

TEST(Bodies, OfErrorPagesAreData) {
  HttpServer server;
  for (const int status : {400, 401, 403, 404, 407, 410, 429, 500, 503}) {
    server.route("/", status, "a page about it");
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url())) << status;
    EXPECT_EQ(probe.data, "a page about it") << status;
    EXPECT_EQ(probe.status(), status);
    EXPECT_FALSE(probe.error) << status;
  }
}

TEST(Bodies, InChunksHaveNoKnownLength) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(200);
    reply.write("4;name=value\r\none \r\n");
    reply.chunk("two");
    reply.write("0\r\nX-Trailer: 1\r\n\r\n");
  });
  LoadProbe probe, next;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_EQ(probe.data, "one two");
  EXPECT_EQ(probe.lengths, std::vector<qint64>{-1});
  EXPECT_EQ(probe.response->expectedContentLength(), -1);
  ASSERT_TRUE(next.load(server.url()));
  EXPECT_EQ(next.data, "one two");
  EXPECT_EQ(server.connectionCount(), 1);
}

TEST(Bodies, MayEndWithTheConnection) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) {
    reply.beginUntilClose(200);
    reply.write("until the end");
    reply.close();
  });
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_EQ(probe.data, "until the end");
  EXPECT_EQ(probe.lengths, std::vector<qint64>{-1});
}

TEST(Bodies, MayFollowAHeadWithoutFields) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) {
    reply.write("HTTP/1.1 200\r\n\r\nbody");
    reply.close();
  });
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_EQ(probe.data, "body");
  EXPECT_EQ(probe.status(), 200);
  EXPECT_TRUE(probe.response->allHeaderFields().isEmpty());
  EXPECT_EQ(probe.response->MIMEType(), u""_s);
}

TEST(Bodies, KeepEveryByte) {
  QByteArray body;
  for (int length = 0; body.size() < 3'000'000; ++length)
    body += QByteArray(length % 251, char(length));
  HttpServer server;
  server.route("/", 200, body);
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_TRUE(probe.data == body);
  EXPECT_EQ(probe.totals.back(), body.size());
  EXPECT_TRUE(std::is_sorted(probe.totals.begin(), probe.totals.end()));
}

TEST(Bodies, ArriveDecodedAndWithoutAKnownLength) {
  const QByteArray text(100'000, 'z');
  HttpServer server;
  server.route("/gzip", 200, gzip(text), {{"Content-Encoding", "gzip"}});
  server.route("/deflate", 200, deflate(text), {{"Content-Encoding", "deflate"}});
  for (const char* path : {"/gzip", "/deflate"}) {
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url(path)));
    EXPECT_EQ(probe.data, text) << path;
    EXPECT_EQ(probe.lengths, std::vector<qint64>{-1}) << path;
    EXPECT_EQ(probe.response->expectedContentLength(), -1) << path;
    EXPECT_EQ(probe.totals.back(), text.size()) << path;
  }
  EXPECT_TRUE(server.requests().at(0).header("Accept-Encoding").contains("gzip"));
}

TEST(Bodies, ThatAreCompressedAndEmptyAreEmptyData) {
  HttpServer server;
  server.route("/", 200, "", {{"Content-Encoding", "gzip"}});
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_EQ(probe.data, QByteArray(""));
}

TEST(Bodies, ThatDoNotDecodeAreNothing) {
  const QByteArray packed = gzip(QByteArray(1000, 'q') + "end");
  QByteArray broken = packed;
  broken[broken.size() / 2] = char(~broken[broken.size() / 2]);
  HttpServer server;
  server.route("/", 200, broken, {{"Content-Encoding", "gzip"}});
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), CannotDecodeContentData);
}

TEST(Bodies, ShorterThanAnnouncedAreNothing) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, 100);
    reply.write("only this");
    reply.close();
  });
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), NetworkConnectionLost);
  EXPECT_EQ(probe.totals, std::vector<qint64>{9});
  EXPECT_EQ(probe.status(), 200) << "the response that came before the failure stays";
}

TEST(Bodies, WithoutTheirLastChunkAreNothing) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(200);
    reply.chunk("only this");
    reply.close();
  });
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), NetworkConnectionLost);
}

TEST(Bodies, WhoseConnectionIsResetAreNothing) {
  HttpServer server;
  HttpLatch arrived;
  server.route("/", [arrived](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(200);
    reply.chunk("only this");
    reply.wait(arrived);
    reply.reset();
  });
  LoadProbe probe;
  probe.onTotal = [&](ZQURLLoader&, qint64) { arrived.release(); };
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), NetworkConnectionLost);
}

TEST(Bodies, LongerThanAnnouncedEndWhereTheyWereToEnd) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, 4);
    reply.write("body and more");
  });
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_EQ(probe.data, "body");
  EXPECT_EQ(probe.totals, std::vector<qint64>{4});
}

TEST(Bodies, WithALengthThatIsNoneAreNotRead) {
  HttpServer server;
  for (const char* length : {"-5", "many"}) {
    server.route("/", [length](const HttpRequest&, HttpReply& reply) {
      reply.begin(200, {{"Content-Length", length}});
      reply.write("body");
      reply.close();
    });
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url())) << length;
    EXPECT_FALSE(probe.data) << length;
    EXPECT_EQ(probe.errorCode(), BadServerResponse) << length;
  }
}

TEST(Bodies, WithABrokenChunkAreNothing) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(200);
    reply.chunk("fine");
    reply.write("no size\r\n");
    reply.close();
  });
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_TRUE(probe.error);
}

TEST(Bodies, AreThoseOfTheFinalAnswerNotOfOnesInBetween) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) {
    reply.begin(103, {{"X-Hint", "early"}});
    reply.send(200, "final");
  });
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_EQ(probe.data, "final");
  EXPECT_EQ(probe.lengths, std::vector<qint64>{5});
  EXPECT_EQ(probe.status(), 200);
  EXPECT_FALSE(probe.response->valueForHTTPHeaderField(u"X-Hint"));
}

TEST(Responses, TellTheHeaderAsItWasSent) {
  HttpServer server;
  server.route("/", 200, "<p>",
               {{"Content-Type", "Text/HTML; Charset=\"UTF-8\""},
                {"X-Twice", "a"},
                {"x-twice", "b"},
                {"X-Empty", ""}});
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_EQ(probe.response->MIMEType(), u"text/html"_s);
  EXPECT_EQ(probe.response->textEncodingName(), u"UTF-8"_s);
  EXPECT_EQ(probe.response->valueForHTTPHeaderField(u"X-TWICE"), u"a, b"_s);
  EXPECT_EQ(probe.response->valueForHTTPHeaderField(u"X-Empty"), u""_s);
  EXPECT_FALSE(probe.response->valueForHTTPHeaderField(u"X-Missing"));
  const auto& fields = probe.response->allHeaderFields();
  ASSERT_GE(fields.size(), 3);
  EXPECT_EQ(fields.at(1).first, u"X-Twice"_s);
  EXPECT_EQ(fields.at(2).first, u"x-twice"_s);
}

TEST(Requests, AskPlainlyForThePathAndItsQuery) {
  HttpServer server;
  server.route("*", 200, "x");
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url("/a%20b/%C3%A4?q=%26&r=1#part")));
  const HttpRequest request = server.requests().at(0);
  EXPECT_EQ(request.method, "GET");
  EXPECT_EQ(request.target, "/a%20b/%C3%A4?q=%26&r=1");
  EXPECT_EQ(request.header("Host"), "127.0.0.1:" + QByteArray::number(server.port()));
  EXPECT_FALSE(request.hasHeader("Authorization"));
  EXPECT_FALSE(request.hasHeader("Cookie"));
}

TEST(Requests, CarryTheCredentialsOfTheAddress) {
  HttpServer server;
  server.route("/", 200, "x");
  QUrl url = server.url();
  url.setPassword(u"p@ss"_s, QUrl::DecodedMode);
  url.setUserName(u"user"_s);
  LoadProbe probe;
  ASSERT_TRUE(probe.load(url));
  EXPECT_EQ(server.requests().at(0).header("Authorization"),
            "Basic " + QByteArray("user:p@ss").toBase64());
  EXPECT_EQ(server.requests().at(0).target, "/");
}

} // namespace zq::testing
