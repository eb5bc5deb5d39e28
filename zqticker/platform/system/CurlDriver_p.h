// libcurl on the event loop of one thread.
#pragma once

#include <QtCore/QSocketNotifier>
#include <QtCore/QString>
#include <QtCore/QTimer>

#include <curl/curl.h>

#include <chrono>
#include <deque>
#include <optional>
#include <unordered_map>
#include <vector>

namespace zq::platform {

class CurlTransfer;
class LoadingThread;

// Runs all transfers of a thread in one multi handle. An epoll descriptor holds curl's sockets, so
// that the event loop watches one descriptor however many there are; two timers serve curl's own
// time and the idleness of all transfers.
class CurlDriver {
 public:
  using Clock = std::chrono::steady_clock;

  // Connections to one host at a time, and idle ones kept in all.
  static constexpr long MostConnectionsPerHost = 32;
  static constexpr long MostConnectionsKept = 64;

  explicit CurlDriver(LoadingThread& thread);
  ~CurlDriver();
  CurlDriver(const CurlDriver&) = delete;
  CurlDriver& operator=(const CurlDriver&) = delete;

  // Whether a handle has options beyond those that every transfer sets anew.
  enum class HandleState { HasCommonOptionsOnly, HasOptionsOfItsOwn };

  struct Handle {
    CURL* curl = nullptr;
    // The file of certificates that it trusts; empty for those of the system.
    QString certificateAuthorities{};
  };

  // A handle with the common options of transfers, which goes back when its transfer has ended.
  Handle takeHandle();
  void giveBackHandle(Handle handle, HandleState state);

  // Starts `transfer`, now or when its server has a connection left for it.
  void add(CurlTransfer& transfer);
  // Ends it, running or waiting.
  void remove(CurlTransfer& transfer);

  // Lets `transfer`, which has paused itself, go on once what it has noted is about to be
  // delivered.
  void resumeAfterRound(CurlTransfer& transfer) { paused_.push_back(&transfer); }

  // The time of the round that is going on; a little old outside of one.
  Clock::time_point now() const { return now_; }

 private:
  // Transfers of one scheme, host and port.
  struct Server {
    long running = 0;
    std::deque<CurlTransfer*> waiting;
  };

  bool start(CurlTransfer& transfer);
  void startWaiting(const QByteArray& name);
  static int socketChanged(CURL* handle, curl_socket_t socket, int what, void* self, void* known);
  static int timerChanged(CURLM* multi, long milliseconds, void* self);

  void socketsAreReady();
  void timerIsDue();
  void deadlineIsDue();
  // Lets curl work on what is ready; false when nothing is.
  bool workOnSockets();
  void workOnTimer();
  void takeFinished();
  void resumePaused();
  void armTimer();
  void armDeadline(Clock::time_point due);

  LoadingThread& thread_;
  CURLM* multi_;
  int epoll_;
  std::optional<QSocketNotifier> notifier_;
  QTimer timer_;
  QTimer deadlineTimer_;
  // When curl wants to work without a socket; when the timers go off.
  std::optional<Clock::time_point> timerDue_;
  std::optional<Clock::time_point> timerArmed_;
  std::optional<Clock::time_point> deadlineArmed_;
  Clock::time_point now_ = Clock::now();
  std::vector<CurlTransfer*> transfers_; // running
  std::unordered_map<QByteArray, Server> servers_;
  std::vector<CurlTransfer*> paused_;
  std::vector<Handle> handles_;
};

} // namespace zq::platform
