// A real HTTP/1.1 server on 127.0.0.1 whose replies a test scripts, down to the bytes and to the
// moment at which each leaves. It needs no event loop: every connection has a thread of its own,
// on which its handlers run one after the other.
//
//   HttpServer server;
//   HttpLatch more;
//   server.route("/pieces", [more](const HttpRequest&, HttpReply& reply) {
//     reply.beginWithLength(200, 30);
//     reply.write(QByteArray(10, 'a'));
//     reply.wait(more);
//     reply.write(QByteArray(20, 'b'));
//   });
//   … server.url("/pieces") … more.release();
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QUrl>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace zq::testing {

class TestCertificate;

using HttpHeaders = std::vector<std::pair<QByteArray, QByteArray>>;

struct HttpRequest {
  QByteArray method;
  QByteArray target; // as sent: a path, a whole address for a proxy, "host:port" after CONNECT
  HttpHeaders headers;
  QByteArray body;
  int connection = 0; // counted from 1 in the order of their acceptance

  bool hasHeader(const QByteArray& name) const;
  // The value of the header without regard to case, repeated ones joined by ", "; else empty.
  QByteArray header(const QByteArray& name) const;
  // The target's path without its query.
  QByteArray path() const;
};

// What a handler waits for and the test lets go. Copies are the same latch. Thread: any.
class HttpLatch {
 public:
  HttpLatch();

  // Lets `count` waits pass, now or later.
  void release(int count = 1) const;
  // Lets every wait pass from now on.
  void open() const;

  int descriptor() const;

 private:
  struct Descriptor;
  std::shared_ptr<Descriptor> descriptor_;
};

// The reply to one request, written by the handler on the connection's thread. Where the client
// has gone or the server stops, a function here ends the handler by an exception of its own.
// A handler that returns leaves the connection open for the next request, unless it has closed it
// or stated "Connection: close".
class HttpReply {
 public:
  // A whole reply with its Content-Length.
  void send(int status, const QByteArray& body = {}, const HttpHeaders& headers = {});
  void redirect(const QByteArray& location, int status = 302);

  // The status line and headers; nothing is added, except what the name says.
  void begin(int status, const HttpHeaders& headers = {});
  void beginWithLength(int status, qint64 length, const HttpHeaders& headers = {});
  void beginChunked(int status, const HttpHeaders& headers = {});
  // The body ends with the connection.
  void beginUntilClose(int status, const HttpHeaders& headers = {});

  // Bytes as they are.
  void write(const QByteArray& bytes);
  void chunk(const QByteArray& bytes);
  void endChunks();

  // Waits for one release of the latch.
  void wait(const HttpLatch& latch);
  // Waits until the client has closed its side.
  void awaitClientClose();

  // Joins the client with that port of 127.0.0.1, as a proxy does after CONNECT, until one of both
  // closes.
  void tunnel(quint16 port);

  // Closes in order: what was written arrives, then the end.
  void close();
  // Breaks the connection off: the client reads an error.
  void reset();

 private:
  friend class HttpServerConnection;
  explicit HttpReply(class HttpServerConnection& connection) : connection_(connection) {}
  HttpServerConnection& connection_;
};

using HttpHandler = std::function<void(const HttpRequest& request, HttpReply& reply)>;

// Thread: any, except that starting, stopping and destroying are the owner's.
class HttpServer {
 public:
  // Listens on a free port.
  HttpServer();
  // Speaks TLS with that certificate.
  explicit HttpServer(std::shared_ptr<const TestCertificate> certificate);
  // Stops.
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  quint16 port() const;
  // http://127.0.0.1:port/path, or https. `path` is taken as it is.
  QUrl url(const QByteArray& path = "/", const QByteArray& host = "127.0.0.1") const;

  // Answers every request for the path, whatever its query, or for "host:port" after CONNECT. A
  // later route for the same path takes its place. Without a route the reply is a 404; "*"
  // catches what has no route.
  void route(const QByteArray& path, HttpHandler handler);
  // Answers with a whole reply.
  void route(const QByteArray& path, int status, const QByteArray& body,
             const HttpHeaders& headers = {});
  void redirect(const QByteArray& path, const QByteArray& location, int status = 302);

  // Every request so far, in the order in which their heads were complete.
  std::vector<HttpRequest> requests() const;
  int requestCount() const;
  int requestCount(const QByteArray& path) const;
  int connectionCount() const; // accepted so far
  int openConnectionCount() const;

  // Ends all connections, in the middle of a reply or of a wait too, and joins all threads. A
  // client that connects now is refused.
  void stop();
  // Listens on the same port again. Routes and records stay.
  void start();

 private:
  friend class HttpServerConnection;
  struct State;
  std::unique_ptr<State> state_;
};

} // namespace zq::testing
