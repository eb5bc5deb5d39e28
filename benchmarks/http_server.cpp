// A quick web server on loopback for the benchmarks: one thread, one poll, keep-alive. Its bodies
// lie in a memory file and go out without being copied here.
//
// Prints its port on a line, serves /<length> and everything below with a body of that many bytes,
// and ends with its standard input.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <unordered_map>

namespace {

constexpr std::size_t FileLength = 16 << 20; // a longer body repeats it

struct Client {
  std::string received;
  std::string head;     // of the reply, as far as it is not sent
  std::size_t body = 0; // bytes of the body that are still to be sent
};

[[noreturn]] void fail(const char* what) {
  std::perror(what);
  std::exit(1);
}

int makeBodies() {
  const int file = ::memfd_create("bodies", MFD_CLOEXEC);
  if (file < 0 || ::ftruncate(file, FileLength) != 0)
    fail("memfd_create");
  const std::string bytes(1 << 20, 'z');
  for (std::size_t at = 0; at < FileLength; at += bytes.size())
    if (::pwrite(file, bytes.data(), bytes.size(), off_t(at)) != ssize_t(bytes.size()))
      fail("pwrite");
  return file;
}

int listenOnLoopback() {
  const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (::bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
      ::listen(listener, 4096) != 0 ||
      ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
    fail("listen");
  std::printf("%d\n", int(ntohs(address.sin_port)));
  std::fflush(stdout);
  return listener;
}

// Takes the next request out of what was received, and prepares its reply.
bool takeRequest(Client& client) {
  const std::size_t end = client.received.find("\r\n\r\n");
  if (end == std::string::npos)
    return false;
  const std::size_t path = client.received.find('/');
  client.body = std::strtoull(client.received.c_str() + path + 1, nullptr, 10);
  client.received.erase(0, end + 4);
  client.head = "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: " +
                std::to_string(client.body) + "\r\n\r\n";
  return true;
}

// Sends until the socket is full or nothing is left; false when the client has gone.
bool sendReplies(int socket, Client& client, int bodies) {
  for (;;) {
    ssize_t sent = 0;
    if (!client.head.empty()) {
      sent = ::send(socket, client.head.data(), client.head.size(),
                    MSG_NOSIGNAL | (client.body > 0 ? MSG_MORE : 0));
      if (sent > 0)
        client.head.erase(0, std::size_t(sent));
    } else if (client.body > 0) {
      off_t from = 0;
      sent = ::sendfile(socket, bodies, &from, std::min(client.body, FileLength));
      if (sent > 0)
        client.body -= std::size_t(sent);
    } else if (!takeRequest(client)) {
      return true;
    }
    if (sent < 0)
      return errno == EAGAIN;
  }
}

bool receive(int socket, Client& client) {
  char bytes[16384];
  for (;;) {
    const ssize_t count = ::recv(socket, bytes, sizeof bytes, 0);
    if (count <= 0)
      return count < 0 && errno == EAGAIN;
    client.received.append(bytes, std::size_t(count));
  }
}

} // namespace

int main() {
  const int bodies = makeBodies();
  const int listener = listenOnLoopback();
  const int poll = ::epoll_create1(EPOLL_CLOEXEC);
  epoll_event event{EPOLLIN, {.fd = listener}};
  ::epoll_ctl(poll, EPOLL_CTL_ADD, listener, &event);
  event.data.fd = STDIN_FILENO;
  ::epoll_ctl(poll, EPOLL_CTL_ADD, STDIN_FILENO, &event);
  std::unordered_map<int, Client> clients;
  epoll_event events[256];
  for (;;) {
    const int count = ::epoll_wait(poll, events, 256, -1);
    for (int at = 0; at < count; ++at) {
      const int socket = events[at].data.fd;
      if (socket == STDIN_FILENO)
        return 0;
      if (socket == listener) {
        const int accepted = ::accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (accepted < 0)
          continue;
        const int on = 1;
        ::setsockopt(accepted, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        epoll_event both{EPOLLIN | EPOLLOUT | EPOLLRDHUP | EPOLLET, {.fd = accepted}};
        ::epoll_ctl(poll, EPOLL_CTL_ADD, accepted, &both);
        clients[accepted];
        continue;
      }
      Client& client = clients[socket];
      if (!receive(socket, client) || !sendReplies(socket, client, bodies)) {
        clients.erase(socket);
        ::close(socket);
      }
    }
  }
}
