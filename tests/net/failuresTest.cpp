// What cannot be loaded: one completion, no data, an error that says why.
#include "tests/net/LoadProbe.h"
#include "tests/support/HttpServer.h"
#include "tests/support/waiting.h"

#include <gtest/gtest.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

namespace zq::testing {

using namespace Qt::StringLiterals;
using namespace zq::platform;

TEST(Failures, TellOfARefusedConnection) {
  HttpServer server;
  server.stop();
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), CannotConnectToHost);
  EXPECT_EQ(probe.error->domain(), u"NSURLErrorDomain"_s);
  EXPECT_EQ(probe.error->failingURL(), server.url());
  EXPECT_FALSE(probe.error->localizedDescription().isEmpty());
  EXPECT_FALSE(probe.response);
  EXPECT_EQ(probe.contextKeys, (QStringList{u"ZQURLLoader"_s, u"error"_s}));
}

TEST(Failures, EndOnceTheServerIsThere) {
  HttpServer server;
  server.route("/", 200, "back");
  server.stop();
  LoadProbe refused, served;
  ASSERT_TRUE(refused.load(server.url()));
  EXPECT_EQ(refused.errorCode(), CannotConnectToHost);
  server.start();
  ASSERT_TRUE(served.load(server.url()));
  EXPECT_EQ(served.data, "back");
}

TEST(Failures, TellOfAHostThatDoesNotResolve) {
  LoadProbe probe;
  ASSERT_TRUE(probe.load(QUrl(u"http://no-such-host.invalid/"_s)));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), CannotFindHost);
}

TEST(Failures, TellOfUnknownSchemes) {
  for (const QString& address : {u"gopher://127.0.0.1/"_s, u"ftp://127.0.0.1/"_s,
                                 u"mailto:someone@example.com"_s, u"x-unknown:y"_s}) {
    LoadProbe probe;
    ASSERT_TRUE(probe.load(QUrl(address))) << address.toStdString();
    EXPECT_FALSE(probe.data);
    EXPECT_EQ(probe.errorCode(), UnsupportedURL) << address.toStdString();
  }
}

TEST(Failures, TellOfAnAnswerThatIsNotHttp) {
  HttpServer server;
  for (const QByteArray& garbage : {QByteArray("garbage\r\n\r\nmore of it"), QByteArray(5000, '\0'),
                                    QByteArray("SSH-2.0-server\r\n")}) {
    server.route("/", [garbage](const HttpRequest&, HttpReply& reply) {
      reply.write(garbage);
      reply.close();
    });
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url()));
    EXPECT_FALSE(probe.data);
    EXPECT_EQ(probe.errorCode(), BadServerResponse) << garbage.left(10).toStdString();
  }
}

TEST(Failures, TellOfAConnectionClosedWithoutAnAnswer) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) { reply.close(); });
  server.route("/reset", [](const HttpRequest&, HttpReply& reply) { reply.reset(); });
  for (const char* path : {"/", "/reset"}) {
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url(path)));
    EXPECT_FALSE(probe.data);
    EXPECT_EQ(probe.errorCode(), NetworkConnectionLost) << path;
  }
}

TEST(Failures, TellOfAHeadCutInTwo) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) {
    reply.write("HTTP/1.1 200 OK\r\nContent-Le");
    reply.close();
  });
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_TRUE(probe.error);
}

TEST(Failures, TellOfAHeaderOfAMegabyte) {
  HttpServer server;
  server.route("/line", 200, "x", {{"X-Long", QByteArray(1 << 20, 'h')}});
  HttpHeaders many;
  for (int field = 0; field < 16 * 1024; ++field)
    many.emplace_back("X-Field-" + QByteArray::number(field), QByteArray(48, 'h'));
  server.route("/fields", 200, "x", many);
  for (const char* path : {"/line", "/fields"}) {
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url(path))) << path;
    EXPECT_FALSE(probe.data) << path;
    EXPECT_EQ(probe.errorCode(), BadServerResponse) << path;
  }
}

TEST(Failures, DoNotComeFromAHeaderOfModerateSize) {
  HttpServer server;
  HttpHeaders many;
  for (int field = 0; field < 1000; ++field)
    many.emplace_back("X-Field-" + QByteArray::number(field), QByteArray(48, 'h'));
  server.route("/", 200, "x", many);
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_EQ(probe.data, "x");
  EXPECT_EQ(probe.response->valueForHTTPHeaderField(u"x-field-999"), QString(48, u'h'));
}

TEST(Failures, DoNotComeFromAServerThatClosedAnIdleConnection) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, 4);
    reply.write("body");
    reply.close();
  });
  for (int load = 0; load < 3; ++load) {
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url()));
    EXPECT_EQ(probe.data, "body");
  }
}

TEST(IdleTimeOut, EndsALoadThatIsNeverAnswered) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) { reply.awaitClientClose(); });
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url(), 0.1));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), TimedOut);
  EXPECT_TRUE(waitFor([&] { return server.openConnectionCount() == 0; }))
      << "the connection of a load that has failed stays open";
}

TEST(IdleTimeOut, EndsALoadThatStopsInTheMiddle) {
  HttpServer server;
  server.route("/", [](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, 100);
    reply.write("some");
    reply.awaitClientClose();
  });
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url(), 0.2));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), TimedOut);
  EXPECT_EQ(probe.totals, std::vector<qint64>{4});
  EXPECT_EQ(probe.status(), 200);
}

TEST(IdleTimeOut, EndsALoadWithoutATlsHandshake) {
  HttpServer plain;
  HttpLatch never;
  plain.route("*", [never](const HttpRequest&, HttpReply& reply) { reply.wait(never); });
  QUrl url = plain.url();
  url.setScheme(u"https"_s);
  LoadProbe probe;
  ASSERT_TRUE(probe.load(url, 0.2));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), TimedOut);
}

// The whole takes longer than the time-out, no pause does: each piece is let go a fifth of it after
// the one before has arrived.
TEST(IdleTimeOut, StartsAnewWithEveryPiece) {
  constexpr qint64 Milliseconds = 2000;
  HttpServer server;
  HttpLatch next;
  server.route("/", [next](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(200);
    for (int piece = 0; piece < 7; ++piece) {
      reply.wait(next);
      reply.chunk("piece");
    }
    reply.endChunks();
  });
  LoadProbe probe;
  probe.prepare(server.url())
      ->loadWithCachePolicy(URLRequestCachePolicy::UseProtocolCachePolicy, Milliseconds / 1000.0);
  for (std::size_t piece = 0; piece < 7; ++piece) {
    QElapsedTimer pause;
    pause.start();
    ASSERT_TRUE(waitFor([&] { return pause.hasExpired(Milliseconds / 5); }));
    next.release();
    ASSERT_TRUE(waitFor([&] { return probe.totals.size() > piece || probe.completions > 0; }));
  }
  ASSERT_TRUE(waitFor([&] { return probe.completions > 0; }));
  EXPECT_EQ(probe.data, QByteArray("piece").repeated(7));
}

TEST(IdleTimeOut, DoesNotCountTheWaitForAConnection) {
  constexpr qint64 Milliseconds = 200;
  constexpr int MostConnections = 32;
  HttpServer server;
  HttpLatch go;
  server.route("/held", [go](const HttpRequest&, HttpReply& reply) {
    reply.wait(go);
    reply.send(200, "held");
  });
  server.route("/waiting", 200, "waited");
  std::vector<std::unique_ptr<LoadProbe>> held;
  for (int count = 0; count < MostConnections; ++count) {
    held.push_back(std::make_unique<LoadProbe>());
    held.back()->start(server.url("/held"));
  }
  ASSERT_TRUE(waitFor([&] { return server.requestCount() == MostConnections; }))
      << "one that is not answered holds up the others";
  LoadProbe waiting;
  waiting.prepare(server.url("/waiting"))
      ->loadWithCachePolicy(URLRequestCachePolicy::UseProtocolCachePolicy, Milliseconds / 1000.0);
  QElapsedTimer pause;
  pause.start();
  ASSERT_TRUE(waitFor([&] { return pause.hasExpired(3 * Milliseconds); }));
  EXPECT_EQ(waiting.completions, 0);
  go.open();
  ASSERT_TRUE(waitFor([&] { return waiting.completions > 0; }));
  EXPECT_EQ(waiting.data, "waited");
  EXPECT_EQ(server.connectionCount(), MostConnections);
  ASSERT_TRUE(waitFor([&] {
    return std::all_of(held.begin(), held.end(),
                       [](const auto& probe) { return probe->loader.expired(); });
  }));
}

TEST(FileAddresses, GiveTheFile) {
  QTemporaryDir folder;
  QFile file(folder.filePath(u"a b#%.txt"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  const QByteArray body = QByteArray("contents").repeated(100'000);
  file.write(body);
  file.close();
  LoadProbe probe;
  ASSERT_TRUE(probe.load(QUrl::fromLocalFile(file.fileName())));
  EXPECT_TRUE(probe.data == body);
  EXPECT_EQ(probe.lengths, std::vector<qint64>{body.size()});
  EXPECT_EQ(probe.totals.back(), body.size());
  EXPECT_EQ(probe.status(), 0);
}

TEST(FileAddresses, OfAnEmptyFileGiveEmptyData) {
  QTemporaryDir folder;
  QFile file(folder.filePath(u"empty"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  LoadProbe probe;
  ASSERT_TRUE(probe.load(QUrl::fromLocalFile(file.fileName())));
  EXPECT_EQ(probe.data, QByteArray(""));
}

TEST(FileAddresses, FailForWhatIsNoFile) {
  QTemporaryDir folder;
  LoadProbe missing, directory, device;
  ASSERT_TRUE(missing.load(QUrl::fromLocalFile(folder.filePath(u"missing"_s))));
  EXPECT_EQ(missing.errorCode(), FileDoesNotExist);
  ASSERT_TRUE(directory.load(QUrl::fromLocalFile(folder.path())));
  EXPECT_EQ(directory.errorCode(), FileIsDirectory);
  ASSERT_TRUE(device.load(QUrl(u"file:///dev/zero"_s)));
  EXPECT_TRUE(device.error);
  EXPECT_FALSE(missing.data || directory.data || device.data);
}

TEST(FileAddresses, OfAnotherHostFail) {
  LoadProbe probe;
  ASSERT_TRUE(probe.load(QUrl(u"file://elsewhere.invalid/etc/hostname"_s)));
  EXPECT_FALSE(probe.data);
  EXPECT_TRUE(probe.error);
}

TEST(DataAddresses, GiveTheirBytes) {
  const std::vector<std::pair<QString, QByteArray>> cases = {
      {u"data:,A%20brief%20note"_s, "A brief note"},
      {u"data:text/plain;charset=utf-8;base64,aGVsbG8="_s, "hello"},
      {u"data:,"_s, ""}};
  for (const auto& [address, body] : cases) {
    LoadProbe probe;
    ASSERT_TRUE(probe.load(QUrl(address))) << address.toStdString();
    EXPECT_EQ(probe.data, body) << address.toStdString();
    EXPECT_EQ(probe.lengths, std::vector<qint64>{body.size()}) << address.toStdString();
  }
}

TEST(DataAddresses, TellTheirTypeAndEncoding) {
  LoadProbe stated, plain;
  ASSERT_TRUE(stated.load(QUrl(u"data:image/svg+xml;charset=utf-8,<svg/>"_s)));
  EXPECT_EQ(stated.response->MIMEType(), u"image/svg+xml"_s);
  EXPECT_EQ(stated.response->textEncodingName(), u"utf-8"_s);
  ASSERT_TRUE(plain.load(QUrl(u"data:,x"_s)));
  EXPECT_EQ(plain.response->MIMEType(), u"text/plain"_s);
}

TEST(DataAddresses, WithoutACommaFail) {
  LoadProbe probe;
  ASSERT_TRUE(probe.load(QUrl(u"data:text/plain;base64"_s)));
  EXPECT_FALSE(probe.data);
  EXPECT_TRUE(probe.error);
}

} // namespace zq::testing
