// The largest body: announced, counted, decompressed.
#include "tests/net/LoadProbe.h"
#include "tests/support/HttpServer.h"
#include "tests/support/compression.h"

#include <gtest/gtest.h>

#include <QtCore/QTemporaryFile>

namespace zq::testing {

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
constexpr qint64 Limit = 1 << 20;
}

TEST(BodyLimits, AreTwoGibibytesAtFirst) {
  EXPECT_EQ(URLConnection::maximumBodyLength(), qint64(2) << 30);
}

// The body never comes: only the head can have ended the load.
TEST(BodyLimits, EndALoadOnTheWordOfItsHead) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, Limit + 1);
    reply.awaitClientClose();
  });
  const BodyLimit limit(Limit);
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), DataLengthExceedsMaximum);
  EXPECT_TRUE(probe.totals.empty());
}

TEST(BodyLimits, EndALoadThatAnnouncesMoreThanANumberHolds) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) {
    reply.begin(200, {{"Content-Length", "99999999999999999999999999"}});
    reply.write("body");
    reply.awaitClientClose();
  });
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), DataLengthExceedsMaximum);
}

TEST(BodyLimits, LetABodyOfExactlyThatLengthPass) {
  HttpServer server;
  server.route("/length", 200, QByteArray(Limit, 'x'));
  server.route("/chunks", [](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(200);
    reply.chunk(QByteArray(Limit, 'x'));
    reply.endChunks();
  });
  server.route("/gzip", 200, gzip(QByteArray(Limit, 'x')), {{"Content-Encoding", "gzip"}});
  const BodyLimit limit(Limit);
  for (const char* path : {"/length", "/chunks", "/gzip"}) {
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url(path)));
    ASSERT_TRUE(probe.data) << path;
    EXPECT_EQ(probe.data->size(), Limit) << path;
  }
}

// The server goes on for ever.
TEST(BodyLimits, EndALoadWhileItRuns) {
  HttpServer server;
  server.route("/chunks", [](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(200);
    for (;;)
      reply.chunk(QByteArray(16 * 1024, 'x'));
  });
  server.route("/until-close", [](const HttpRequest&, HttpReply& reply) {
    reply.beginUntilClose(200);
    for (;;)
      reply.write(QByteArray(16 * 1024, 'x'));
  });
  const BodyLimit limit(Limit);
  for (const char* path : {"/chunks", "/until-close"}) {
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url(path)));
    EXPECT_FALSE(probe.data) << path;
    EXPECT_EQ(probe.errorCode(), DataLengthExceedsMaximum) << path;
    ASSERT_FALSE(probe.totals.empty()) << path;
    EXPECT_LE(probe.totals.back(), Limit) << path;
  }
}

TEST(BodyLimits, CountDecodedBytes) {
  const QByteArray bomb = gzip(QByteArray(64 * Limit, '\0'));
  ASSERT_LT(bomb.size(), Limit);
  HttpServer server;
  server.route("/", 200, bomb, {{"Content-Encoding", "gzip"}});
  const BodyLimit limit(Limit);
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), DataLengthExceedsMaximum);
  ASSERT_FALSE(probe.totals.empty());
  EXPECT_LE(probe.totals.back(), Limit);
}

TEST(BodyLimits, HoldForFilesAndDataAddressesToo) {
  QTemporaryFile file;
  ASSERT_TRUE(file.open());
  ASSERT_TRUE(file.resize(Limit + 1));
  const BodyLimit limit(Limit);
  LoadProbe fromFile, fromData;
  ASSERT_TRUE(fromFile.load(QUrl::fromLocalFile(file.fileName())));
  EXPECT_EQ(fromFile.errorCode(), DataLengthExceedsMaximum);
  ASSERT_TRUE(fromData.load(QUrl(u"data:,"_s + QString(Limit + 1, u'x'))));
  EXPECT_EQ(fromData.errorCode(), DataLengthExceedsMaximum);
}

} // namespace zq::testing
