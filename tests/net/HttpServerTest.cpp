// The tests' own server, looked at with plain sockets and with a client that knows nothing of it.
#include "tests/support/HttpServer.h"

#include "tests/support/TestCertificate.h"
#include "tests/support/compression.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <curl/curl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <future>

namespace zq::testing {

namespace {

// A blocking client.
class Socket {
 public:
  explicit Socket(const HttpServer& server) : descriptor_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(server.port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    error_ = ::connect(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0
                 ? 0
                 : errno;
  }
  ~Socket() { ::close(descriptor_); }

  int error() const { return error_; }
  void get(const QByteArray& target) {
    const QByteArray request =
        "GET " + target + " HTTP/1.1\r\nHost: here\r\nX-A: 1\r\nx-a: 2\r\n\r\n";
    ASSERT_EQ(::send(descriptor_, request.constData(), request.size(), 0), request.size());
  }
  // Exactly that many bytes, fewer at the end or after an error.
  QByteArray read(qsizetype size) {
    QByteArray bytes;
    while (bytes.size() < size) {
      char some[4096];
      const ssize_t count =
          ::recv(descriptor_, some, std::min<std::size_t>(sizeof some, size - bytes.size()), 0);
      if (count < 0)
        error_ = errno;
      if (count <= 0)
        break;
      bytes.append(some, count);
    }
    return bytes;
  }
  QByteArray readAll() { return read(1 << 30); }

 private:
  int descriptor_;
  int error_ = 0;
};

struct Transfer {
  CURLcode code = CURLE_OK;
  long status = 0;
  QByteArray body;
};

std::size_t append(char* bytes, std::size_t size, std::size_t count, void* body) {
  static_cast<QByteArray*>(body)->append(bytes, qsizetype(size * count));
  return size * count;
}

Transfer transfer(const QUrl& url, const QString& authorityFile = {}) {
  Transfer result;
  CURL* curl = curl_easy_init();
  curl_easy_setopt(curl, CURLOPT_URL, url.toEncoded().constData());
  curl_easy_setopt(curl, CURLOPT_ACCEPT_ENCODING, "");
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, append);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, &result.body);
  curl_easy_setopt(curl, CURLOPT_NOPROXY, "*");
  if (!authorityFile.isEmpty())
    curl_easy_setopt(curl, CURLOPT_CAINFO, authorityFile.toLocal8Bit().constData());
  result.code = curl_easy_perform(curl);
  curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &result.status);
  curl_easy_cleanup(curl);
  return result;
}

} // namespace

TEST(HttpServer, AnswersSeveralRequestsOfOneConnection) {
  HttpServer server;
  server.route("/a", 200, "first");
  Socket socket(server);
  const QByteArray first = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nfirst";
  socket.get("/a?query");
  EXPECT_EQ(socket.read(first.size()), first);
  socket.get("/b");
  EXPECT_TRUE(socket.read(22).startsWith("HTTP/1.1 404 Not Found"));
  const std::vector<HttpRequest> requests = server.requests();
  ASSERT_EQ(requests.size(), 2u);
  EXPECT_EQ(requests[0].method, "GET");
  EXPECT_EQ(requests[0].target, "/a?query");
  EXPECT_EQ(requests[0].header("X-a"), "1, 2");
  EXPECT_FALSE(requests[0].hasHeader("X-B"));
  EXPECT_EQ(requests[1].connection, 1);
  EXPECT_EQ(server.requestCount("/a"), 1);
  EXPECT_EQ(server.connectionCount(), 1);
}

TEST(HttpServer, SendsEachPieceWhenTheTestSaysSo) {
  HttpServer server;
  HttpLatch latch;
  std::atomic<int> written = 0;
  server.route("/", [&, latch](const HttpRequest&, HttpReply& reply) {
    for (const int length : {10, 20, 5}) {
      reply.wait(latch);
      ++written;
      reply.write(QByteArray(length, 'x'));
    }
    reply.close();
  });
  Socket socket(server);
  socket.get("/");
  int count = 0;
  for (const int length : {10, 20, 5}) {
    EXPECT_EQ(written, count++);
    latch.release();
    EXPECT_EQ(socket.read(length).size(), length);
  }
  EXPECT_EQ(socket.readAll(), "");
  EXPECT_EQ(socket.error(), 0);
}

TEST(HttpServer, ResetsConnections) {
  HttpServer server;
  HttpLatch latch;
  server.route("/", [latch](const HttpRequest&, HttpReply& reply) {
    reply.write("some");
    reply.wait(latch);
    reply.reset();
  });
  Socket socket(server);
  socket.get("/");
  EXPECT_EQ(socket.read(4), "some");
  latch.release();
  EXPECT_EQ(socket.readAll(), "");
  EXPECT_EQ(socket.error(), ECONNRESET);
}

TEST(HttpServer, StopsWithClientsInEveryState) {
  HttpServer server;
  HttpLatch never;
  server.route("/wait", [never](const HttpRequest&, HttpReply& reply) { reply.wait(never); });
  server.route("/hang", [](const HttpRequest&, HttpReply& reply) { reply.awaitClientClose(); });
  server.route("/flood", [](const HttpRequest&, HttpReply& reply) {
    for (;;)
      reply.write(QByteArray(1 << 20, 'x'));
  });
  Socket waiting(server), hanging(server), flooded(server), silent(server);
  waiting.get("/wait");
  hanging.get("/hang");
  flooded.get("/flood");
  EXPECT_EQ(flooded.read(1 << 20).size(), 1 << 20);
  server.stop();
  EXPECT_EQ(waiting.readAll(), "");
  EXPECT_EQ(hanging.readAll(), "");
  EXPECT_EQ(silent.readAll(), "");
  EXPECT_EQ(server.openConnectionCount(), 0);
}

TEST(HttpServer, StartsAgainOnTheSamePort) {
  HttpServer server;
  server.route("/", 200, "here");
  const quint16 port = server.port();
  {
    Socket socket(server);
    socket.get("/");
    EXPECT_TRUE(socket.read(15).endsWith("200 OK"));
  }
  server.stop();
  EXPECT_EQ(Socket(server).error(), ECONNREFUSED);
  server.start();
  EXPECT_EQ(server.port(), port);
  EXPECT_EQ(transfer(server.url()).body, "here");
}

TEST(HttpServer, SpeaksToAClientThatKnowsNothingOfIt) {
  HttpServer server;
  server.route("/chunks", [](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(203);
    reply.chunk("one ");
    reply.chunk("two");
    reply.endChunks();
  });
  server.route("/short", [](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, 100);
    reply.write("less");
    reply.close();
  });
  server.route("/gzip", 200, gzip("packed"), {{"Content-Encoding", "gzip"}});
  server.route("/deflate", 200, deflate("pressed"), {{"Content-Encoding", "deflate"}});
  const Transfer chunks = transfer(server.url("/chunks"));
  EXPECT_EQ(chunks.status, 203);
  EXPECT_EQ(chunks.body, "one two");
  EXPECT_EQ(transfer(server.url("/short")).code, CURLE_PARTIAL_FILE);
  EXPECT_EQ(transfer(server.url("/gzip")).body, "packed");
  EXPECT_EQ(transfer(server.url("/deflate")).body, "pressed");
}

TEST(HttpServer, SpeaksTlsToThoseWhoTrustIt) {
  const auto certificate = std::make_shared<const TestCertificate>();
  HttpServer server(certificate);
  server.route("/", 200, "sealed");
  const Transfer trusting = transfer(server.url(), certificate->authorityFile());
  EXPECT_EQ(trusting.code, CURLE_OK);
  EXPECT_EQ(trusting.body, "sealed");
  EXPECT_EQ(transfer(server.url("/", "localhost"), certificate->authorityFile()).body, "sealed");
  EXPECT_EQ(transfer(server.url()).code, CURLE_PEER_FAILED_VERIFICATION);
  const TestCertificate other;
  EXPECT_EQ(transfer(server.url(), other.authorityFile()).code, CURLE_PEER_FAILED_VERIFICATION);
}

TEST(HttpServer, RefusesToStandForAnotherHost) {
  const auto certificate =
      std::make_shared<const TestCertificate>(std::vector<QByteArray>{"DNS:elsewhere.example"});
  HttpServer server(certificate);
  EXPECT_EQ(transfer(server.url(), certificate->authorityFile()).code,
            CURLE_PEER_FAILED_VERIFICATION);
}

TEST(HttpServer, JoinsAClientWithAnotherServerAsAProxyDoes) {
  HttpServer behind;
  behind.route("/", 200, "behind");
  HttpServer server;
  server.route("*", [&](const HttpRequest&, HttpReply& reply) {
    reply.begin(200);
    reply.tunnel(behind.port());
  });
  Socket socket(server);
  const QByteArray joined = "HTTP/1.1 200 OK\r\n\r\n";
  socket.get("any");
  EXPECT_EQ(socket.read(joined.size()), joined);
  const QByteArray answer = "HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nbehind";
  socket.get("/");
  EXPECT_EQ(socket.read(answer.size()), answer);
}

TEST(HttpServer, ServesManyClientsAtOnce) {
  HttpServer server;
  server.route("/", 200, "x");
  std::vector<std::future<QByteArray>> bodies;
  for (int client = 0; client < 8; ++client)
    bodies.push_back(std::async(std::launch::async, [&] {
      QByteArray all;
      for (int load = 0; load < 20; ++load)
        all += transfer(server.url()).body;
      return all;
    }));
  for (auto& body : bodies)
    EXPECT_EQ(body.get(), QByteArray(20, 'x'));
  EXPECT_EQ(server.requestCount(), 160);
}

} // namespace zq::testing
