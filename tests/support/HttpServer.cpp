#include "tests/support/HttpServer.h"

#include "tests/support/TestCertificate.h"

#include <openssl/pem.h>
#include <openssl/ssl.h>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <list>
#include <map>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace zq::testing {

namespace {

constexpr qsizetype LongestRequest = 4 << 20;

// Ends the handler of a connection that is over.
struct ConnectionEnded {};

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

struct FreeContext {
  void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
};

std::unique_ptr<SSL_CTX, FreeContext> makeContext(const TestCertificate& certificate) {
  std::unique_ptr<SSL_CTX, FreeContext> context(SSL_CTX_new(TLS_server_method()));
  BIO* text = BIO_new_mem_buf(certificate.certificate().constData(), -1);
  X509* x509 = PEM_read_bio_X509(text, nullptr, nullptr, nullptr);
  BIO_free(text);
  text = BIO_new_mem_buf(certificate.key().constData(), -1);
  EVP_PKEY* key = PEM_read_bio_PrivateKey(text, nullptr, nullptr, nullptr);
  BIO_free(text);
  const bool done = SSL_CTX_use_certificate(context.get(), x509) == 1 &&
                    SSL_CTX_use_PrivateKey(context.get(), key) == 1;
  X509_free(x509);
  EVP_PKEY_free(key);
  if (!done)
    throw std::runtime_error("the server cannot use its certificate");
  // A client that goes away without a word is no error of the next one.
  SSL_CTX_set_options(context.get(), SSL_OP_IGNORE_UNEXPECTED_EOF);
  return context;
}

sockaddr_in loopback(quint16 port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

// Reads what is there, 0 at the end or after an error.
ssize_t receive(int descriptor, char* bytes, std::size_t size) {
  ssize_t count = 0;
  do
    count = ::recv(descriptor, bytes, size, 0);
  while (count < 0 && errno == EINTR);
  return std::max<ssize_t>(count, 0);
}

bool sendAll(int descriptor, const char* bytes, qsizetype size) {
  while (size > 0) {
    const ssize_t count = ::send(descriptor, bytes, size, MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR)
      continue;
    if (count <= 0)
      return false;
    bytes += count;
    size -= count;
  }
  return true;
}

const char* reason(int status) {
  switch (status) {
  case 200:
    return "OK";
  case 204:
    return "No Content";
  case 304:
    return "Not Modified";
  case 404:
    return "Not Found";
  default:
    return status >= 300 && status < 400 ? "Redirect" : "Status";
  }
}

QByteArray headText(int status, const HttpHeaders& headers) {
  QByteArray text = "HTTP/1.1 " + QByteArray::number(status) + ' ' + reason(status) + "\r\n";
  for (const auto& [name, value] : headers)
    text += name + ": " + value + "\r\n";
  return text + "\r\n";
}

HttpHeaders with(HttpHeaders headers, const QByteArray& name, const QByteArray& value) {
  headers.emplace_back(name, value);
  return headers;
}

// The request in `head`, which ends before the empty line.
HttpRequest parseHead(const QByteArray& head) {
  HttpRequest request;
  const QList<QByteArray> lines = head.split('\n');
  const QList<QByteArray> words = lines.first().trimmed().split(' ');
  request.method = words.value(0);
  request.target = words.value(1);
  for (const QByteArray& line : lines.mid(1)) {
    const qsizetype colon = line.indexOf(':');
    if (colon > 0)
      request.headers.emplace_back(line.left(colon).trimmed(), line.mid(colon + 1).trimmed());
  }
  return request;
}

} // namespace

bool HttpRequest::hasHeader(const QByteArray& name) const {
  return std::any_of(headers.begin(), headers.end(), [&](const auto& header) {
    return header.first.compare(name, Qt::CaseInsensitive) == 0;
  });
}

QByteArray HttpRequest::header(const QByteArray& name) const {
  QByteArray values;
  for (const auto& [key, value] : headers)
    if (key.compare(name, Qt::CaseInsensitive) == 0)
      values += (values.isEmpty() ? "" : ", ") + value;
  return values;
}

QByteArray HttpRequest::path() const {
  QByteArray path = target;
  if (const qsizetype scheme = path.indexOf("://"); scheme >= 0) {
    const qsizetype slash = path.indexOf('/', scheme + 3);
    path = slash < 0 ? QByteArray("/") : path.mid(slash);
  }
  const qsizetype query = path.indexOf('?');
  return query < 0 ? path : path.left(query);
}

// A counting event descriptor, so that one poll waits for it and for the server's end.
struct HttpLatch::Descriptor {
  Descriptor() : number(::eventfd(0, EFD_SEMAPHORE | EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (number < 0)
      fail("eventfd");
  }
  ~Descriptor() { ::close(number); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number;
};

HttpLatch::HttpLatch() : descriptor_(std::make_shared<Descriptor>()) {}

void HttpLatch::release(int count) const {
  ::eventfd_write(descriptor_->number, count);
}

void HttpLatch::open() const {
  release(1 << 30);
}

int HttpLatch::descriptor() const {
  return descriptor_->number;
}

struct HttpServer::State {
  // Constant after construction.
  std::unique_ptr<SSL_CTX, FreeContext> context;
  bool speaksTls = false;
  quint16 port = 0;
  // The owner's.
  int listener = -1;
  std::thread acceptor;
  HttpLatch ended; // not counted down: stays readable
  // Protected by the mutex.
  mutable std::mutex mutex;
  std::map<QByteArray, HttpHandler> routes;
  std::vector<HttpRequest> requests;
  std::list<std::unique_ptr<HttpServerConnection>> connections;
  int accepted = 0;
  bool ending = false;

  void accept();
  void reapFinished();
  HttpHandler handlerFor(const HttpRequest& request);
};

// One accepted connection and its thread.
class HttpServerConnection {
 public:
  HttpServerConnection(HttpServer::State& server, int descriptor, int number)
      : server_(server), descriptor_(descriptor), number_(number) {}
  ~HttpServerConnection() {
    if (thread_.joinable())
      thread_.join();
  }

  void start() {
    thread_ = std::thread([this] { run(); });
  }
  bool isFinished() const { return finished_; }
  // Lets every read and write of the thread end. Under the server's mutex.
  void breakOff() {
    if (descriptor_ >= 0)
      ::shutdown(descriptor_, SHUT_RDWR);
  }

  void write(const QByteArray& bytes);
  void wait(const HttpLatch& latch);
  void awaitClientClose();
  void tunnel(quint16 port);
  void close();
  void reset();

 private:
  void run();
  void serve();
  bool readMore();
  bool awaitHandshake();
  void closeDescriptor();

  HttpServer::State& server_;
  int descriptor_; // written under the server's mutex by the connection's thread
  const int number_;
  SSL* ssl_ = nullptr;
  QByteArray received_;
  bool open_ = true;
  std::atomic<bool> finished_ = false;
  std::thread thread_;
};

void HttpServerConnection::run() {
  ::pthread_setname_np(::pthread_self(), "http-server");
  sigset_t broken;
  sigemptyset(&broken);
  sigaddset(&broken, SIGPIPE);
  ::pthread_sigmask(SIG_BLOCK, &broken, nullptr);
  const int on = 1;
  ::setsockopt(descriptor_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  try {
    if (awaitHandshake())
      serve();
  } catch (const ConnectionEnded&) {
  }
  if (open_)
    close();
  SSL_free(ssl_);
  finished_ = true;
}

bool HttpServerConnection::awaitHandshake() {
  if (!server_.speaksTls)
    return true;
  ssl_ = SSL_new(server_.context.get());
  SSL_set_fd(ssl_, descriptor_);
  return SSL_accept(ssl_) == 1;
}

void HttpServerConnection::serve() {
  while (open_) {
    qsizetype end = 0;
    while ((end = received_.indexOf("\r\n\r\n")) < 0)
      if (received_.size() > LongestRequest || !readMore())
        return;
    HttpRequest request = parseHead(received_.left(end));
    request.connection = number_;
    received_.remove(0, end + 4);
    const qint64 length = request.header("Content-Length").toLongLong();
    while (received_.size() < length)
      if (received_.size() > LongestRequest || !readMore())
        return;
    request.body = received_.left(length);
    received_.remove(0, length);
    const HttpHandler handler = server_.handlerFor(request);
    HttpReply reply(*this);
    handler(request, reply);
  }
}

bool HttpServerConnection::readMore() {
  char bytes[16384];
  const ssize_t count =
      ssl_ ? SSL_read(ssl_, bytes, sizeof bytes) : receive(descriptor_, bytes, sizeof bytes);
  if (count <= 0)
    return false;
  received_.append(bytes, count);
  return true;
}

void HttpServerConnection::write(const QByteArray& bytes) {
  if (bytes.isEmpty())
    return;
  const bool done = open_ && (ssl_ ? SSL_write(ssl_, bytes.constData(), bytes.size()) > 0
                                   : sendAll(descriptor_, bytes.constData(), bytes.size()));
  if (!done)
    throw ConnectionEnded();
}

void HttpServerConnection::wait(const HttpLatch& latch) {
  pollfd descriptors[] = {{latch.descriptor(), POLLIN, 0}, {server_.ended.descriptor(), POLLIN, 0}};
  for (;;) {
    if (::poll(descriptors, 2, -1) < 0 && errno != EINTR)
      fail("poll");
    if (descriptors[1].revents)
      throw ConnectionEnded();
    eventfd_t one = 0;
    if (::eventfd_read(latch.descriptor(), &one) == 0)
      return;
  }
}

void HttpServerConnection::awaitClientClose() {
  pollfd descriptors[] = {{descriptor_, POLLRDHUP, 0}, {server_.ended.descriptor(), POLLIN, 0}};
  while (::poll(descriptors, 2, -1) < 0)
    if (errno != EINTR)
      fail("poll");
  if (descriptors[1].revents)
    throw ConnectionEnded();
}

void HttpServerConnection::tunnel(quint16 port) {
  const int far = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = loopback(port);
  bool open = ::connect(far, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  while (open) {
    pollfd descriptors[] = {
        {descriptor_, POLLIN, 0}, {far, POLLIN, 0}, {server_.ended.descriptor(), POLLIN, 0}};
    if (::poll(descriptors, 3, -1) < 0 && errno != EINTR)
      break;
    open = !descriptors[2].revents;
    for (int from = 0; from < 2 && open; ++from) {
      if (!descriptors[from].revents)
        continue;
      char bytes[65536];
      const ssize_t count = receive(descriptors[from].fd, bytes, sizeof bytes);
      open = count > 0 && sendAll(descriptors[1 - from].fd, bytes, count);
    }
  }
  ::close(far);
  close();
}

void HttpServerConnection::close() {
  if (ssl_ && SSL_is_init_finished(ssl_))
    SSL_shutdown(ssl_);
  ::shutdown(descriptor_, SHUT_WR);
  closeDescriptor();
}

void HttpServerConnection::reset() {
  const linger now{1, 0};
  ::setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &now, sizeof now);
  closeDescriptor();
}

void HttpServerConnection::closeDescriptor() {
  const std::lock_guard lock(server_.mutex);
  ::close(descriptor_);
  descriptor_ = -1;
  open_ = false;
}

void HttpReply::send(int status, const QByteArray& body, const HttpHeaders& headers) {
  const QByteArray head =
      headText(status, with(headers, "Content-Length", QByteArray::number(body.size())));
  connection_.write(head + body);
  for (const auto& [name, value] : headers)
    if (name.compare("Connection", Qt::CaseInsensitive) == 0 && value == "close")
      close();
}

void HttpReply::redirect(const QByteArray& location, int status) {
  send(status, "moved", {{"Location", location}});
}

void HttpReply::begin(int status, const HttpHeaders& headers) {
  write(headText(status, headers));
}

void HttpReply::beginWithLength(int status, qint64 length, const HttpHeaders& headers) {
  begin(status, with(headers, "Content-Length", QByteArray::number(length)));
}

void HttpReply::beginChunked(int status, const HttpHeaders& headers) {
  begin(status, with(headers, "Transfer-Encoding", "chunked"));
}

void HttpReply::beginUntilClose(int status, const HttpHeaders& headers) {
  begin(status, with(headers, "Connection", "close"));
}

void HttpReply::write(const QByteArray& bytes) {
  connection_.write(bytes);
}

void HttpReply::chunk(const QByteArray& bytes) {
  write(QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n");
}

void HttpReply::endChunks() {
  write("0\r\n\r\n");
}

void HttpReply::wait(const HttpLatch& latch) {
  connection_.wait(latch);
}

void HttpReply::awaitClientClose() {
  connection_.awaitClientClose();
}

void HttpReply::tunnel(quint16 port) {
  connection_.tunnel(port);
}

void HttpReply::close() {
  connection_.close();
}

void HttpReply::reset() {
  connection_.reset();
}

HttpServer::HttpServer() : HttpServer(nullptr) {}

HttpServer::HttpServer(std::shared_ptr<const TestCertificate> certificate)
    : state_(std::make_unique<State>()) {
  if (certificate) {
    state_->context = makeContext(*certificate);
    state_->speaksTls = true;
  }
  start();
}

HttpServer::~HttpServer() {
  stop();
}

quint16 HttpServer::port() const {
  return state_->port;
}

QUrl HttpServer::url(const QByteArray& path, const QByteArray& host) const {
  const QByteArray scheme = state_->speaksTls ? "https://" : "http://";
  return QUrl::fromEncoded(scheme + host + ':' + QByteArray::number(state_->port) + path);
}

void HttpServer::route(const QByteArray& path, HttpHandler handler) {
  const std::lock_guard lock(state_->mutex);
  state_->routes[path] = std::move(handler);
}

void HttpServer::route(const QByteArray& path, int status, const QByteArray& body,
                       const HttpHeaders& headers) {
  route(path, [status, body, headers](const HttpRequest&, HttpReply& reply) {
    reply.send(status, body, headers);
  });
}

void HttpServer::redirect(const QByteArray& path, const QByteArray& location, int status) {
  route(path, [location, status](const HttpRequest&, HttpReply& reply) {
    reply.redirect(location, status);
  });
}

std::vector<HttpRequest> HttpServer::requests() const {
  const std::lock_guard lock(state_->mutex);
  return state_->requests;
}

int HttpServer::requestCount() const {
  const std::lock_guard lock(state_->mutex);
  return int(state_->requests.size());
}

int HttpServer::requestCount(const QByteArray& path) const {
  const std::lock_guard lock(state_->mutex);
  return int(std::count_if(state_->requests.begin(), state_->requests.end(),
                           [&](const HttpRequest& request) { return request.path() == path; }));
}

int HttpServer::connectionCount() const {
  const std::lock_guard lock(state_->mutex);
  return state_->accepted;
}

int HttpServer::openConnectionCount() const {
  const std::lock_guard lock(state_->mutex);
  return int(std::count_if(state_->connections.begin(), state_->connections.end(),
                           [](const auto& connection) { return !connection->isFinished(); }));
}

void HttpServer::stop() {
  State& state = *state_;
  if (state.listener < 0)
    return;
  std::list<std::unique_ptr<HttpServerConnection>> connections;
  state.ended.open();
  state.acceptor.join();
  {
    const std::lock_guard lock(state.mutex);
    for (const auto& connection : state.connections)
      connection->breakOff();
    connections.swap(state.connections);
  }
  connections.clear();
  ::close(state.listener);
  state.listener = -1;
}

void HttpServer::start() {
  State& state = *state_;
  if (state.listener >= 0)
    return;
  state.ended = HttpLatch();
  state.listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  ::setsockopt(state.listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address = loopback(state.port);
  socklen_t size = sizeof address;
  if (::bind(state.listener, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
      ::listen(state.listener, 1024) != 0)
    fail("listen");
  ::getsockname(state.listener, reinterpret_cast<sockaddr*>(&address), &size);
  state.port = ntohs(address.sin_port);
  state.acceptor = std::thread([&state] { state.accept(); });
}

void HttpServer::State::accept() {
  ::pthread_setname_np(::pthread_self(), "http-accept");
  pollfd descriptors[] = {{listener, POLLIN, 0}, {ended.descriptor(), POLLIN, 0}};
  for (;;) {
    if (::poll(descriptors, 2, -1) < 0 && errno != EINTR)
      return;
    if (descriptors[1].revents)
      return;
    const int descriptor = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (descriptor < 0)
      continue;
    reapFinished();
    const std::lock_guard lock(mutex);
    connections.push_back(std::make_unique<HttpServerConnection>(*this, descriptor, ++accepted));
    connections.back()->start();
  }
}

void HttpServer::State::reapFinished() {
  std::list<std::unique_ptr<HttpServerConnection>> finished;
  const std::lock_guard lock(mutex);
  for (auto next = connections.begin(); next != connections.end();) {
    const auto connection = next++;
    if ((*connection)->isFinished())
      finished.splice(finished.end(), connections, connection);
  }
}

HttpHandler HttpServer::State::handlerFor(const HttpRequest& request) {
  const std::lock_guard lock(mutex);
  requests.push_back(request);
  auto found = routes.find(request.path());
  if (found == routes.end())
    found = routes.find("*");
  if (found != routes.end())
    return found->second;
  return [](const HttpRequest&, HttpReply& reply) { reply.send(404, "no such page"); };
}

} // namespace zq::testing
