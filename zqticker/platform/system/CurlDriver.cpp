#include "zqticker/platform/system/CurlDriver_p.h"

#include "zqticker/platform/system/CurlTransfer_p.h"
#include "zqticker/platform/system/LoadingThread_p.h"

#include <sys/epoll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <mutex>
#include <system_error>
#include <utility>

namespace zq::platform {

namespace {
using namespace std::chrono_literals;

// How long a burst of arriving bytes may hold up the event loop before others have their turn.
constexpr auto LongestBurst = 2ms;
constexpr std::size_t MostHandlesKept = 128;
constexpr auto LongestTimer = std::chrono::hours(24);

void initializeCurl() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

// The whole milliseconds from `now` until `due`, not less than none.
std::chrono::milliseconds timeUntil(CurlDriver::Clock::time_point due,
                                    CurlDriver::Clock::time_point now) {
  const auto wait = std::clamp<CurlDriver::Clock::duration>(due - now, 0ms, LongestTimer);
  return std::chrono::ceil<std::chrono::milliseconds>(wait);
}
} // namespace

CurlDriver::CurlDriver(LoadingThread& thread) : thread_(thread) {
  initializeCurl();
  epoll_ = epoll_create1(EPOLL_CLOEXEC);
  if (epoll_ < 0)
    throw std::system_error(errno, std::generic_category(), "epoll_create1");
  multi_ = curl_multi_init();
  curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, &CurlDriver::socketChanged);
  curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
  curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, &CurlDriver::timerChanged);
  curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
  curl_multi_setopt(multi_, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
  curl_multi_setopt(multi_, CURLMOPT_MAX_HOST_CONNECTIONS, MostConnectionsPerHost);
  curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, MostConnectionsKept);
  notifier_.emplace(epoll_, QSocketNotifier::Read);
  QObject::connect(&*notifier_, &QSocketNotifier::activated, &*notifier_,
                   [this] { socketsAreReady(); });
  for (QTimer* timer : {&timer_, &deadlineTimer_}) {
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
  }
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { timerIsDue(); });
  QObject::connect(&deadlineTimer_, &QTimer::timeout, &deadlineTimer_, [this] { deadlineIsDue(); });
}

CurlDriver::~CurlDriver() {
  notifier_.reset();
  for (const Handle& handle : handles_)
    curl_easy_cleanup(handle.curl);
  curl_multi_cleanup(multi_);
  close(epoll_);
}

CurlDriver::Handle CurlDriver::takeHandle() {
  if (handles_.empty()) {
    CURL* const handle = curl_easy_init();
    CurlTransfer::setCommonOptions(handle);
    return {handle};
  }
  Handle handle = std::move(handles_.back());
  handles_.pop_back();
  return handle;
}

void CurlDriver::giveBackHandle(Handle handle, HandleState state) {
  if (handles_.size() >= MostHandlesKept)
    return curl_easy_cleanup(handle.curl);
  if (state == HandleState::HasOptionsOfItsOwn) {
    curl_easy_reset(handle.curl);
    CurlTransfer::setCommonOptions(handle.curl);
    handle.certificateAuthorities.clear();
  }
  handles_.push_back(std::move(handle));
}

void CurlDriver::add(CurlTransfer& transfer) {
  // Not left to curl's own queue, which prepares a transfer from the beginning each time it looks
  // for a connection.
  const QByteArray name = transfer.server();
  servers_[name].waiting.push_back(&transfer);
  startWaiting(name);
}

void CurlDriver::startWaiting(const QByteArray& name) {
  const auto found = servers_.find(name);
  Server& server = found->second;
  while (!server.waiting.empty() && server.running < MostConnectionsPerHost) {
    CurlTransfer* const next = server.waiting.front();
    server.waiting.pop_front();
    if (start(*next))
      ++server.running;
  }
  if (server.running == 0 && server.waiting.empty())
    servers_.erase(found);
}

bool CurlDriver::start(CurlTransfer& transfer) {
  now_ = Clock::now();
  const CURLMcode result = curl_multi_add_handle(multi_, transfer.handle());
  if (result != CURLM_OK) {
    transfer.failToStart(result);
    return false;
  }
  transfer.index = transfers_.size();
  transfers_.push_back(&transfer);
  transfer.noteProgress();
  if (const auto deadline = transfer.deadline())
    armDeadline(*deadline);
  armTimer();
  return true;
}

void CurlDriver::remove(CurlTransfer& transfer) {
  const QByteArray name = transfer.server();
  const auto server = servers_.find(name);
  if (!transfer.index) {
    if (server != servers_.end())
      std::erase(server->second.waiting, &transfer);
    return;
  }
  std::erase(paused_, &transfer);
  curl_multi_remove_handle(multi_, transfer.handle());
  transfers_[*transfer.index] = transfers_.back();
  transfers_.back()->index = transfer.index;
  transfers_.pop_back();
  transfer.index.reset();
  --server->second.running;
  startWaiting(name);
}

int CurlDriver::socketChanged(CURL*, curl_socket_t socket, int what, void* self, void* known) {
  const auto& driver = *static_cast<CurlDriver*>(self);
  const int epoll = driver.epoll_;
  if (what == CURL_POLL_REMOVE) {
    // Fails for a socket that is closed already, which left the set by that.
    epoll_ctl(epoll, EPOLL_CTL_DEL, socket, nullptr);
    return 0;
  }
  epoll_event event{};
  event.events = ((what & CURL_POLL_IN) ? unsigned(EPOLLIN) : 0u) |
                 ((what & CURL_POLL_OUT) ? unsigned(EPOLLOUT) : 0u);
  event.data.fd = socket;
  // Named for the first time, unless it is an old one that curl did not take back.
  if (!known && epoll_ctl(epoll, EPOLL_CTL_ADD, socket, &event) == 0) {
    curl_multi_assign(driver.multi_, socket, self);
    return 0;
  }
  // One that was closed meanwhile has left the set, and its number may be another's.
  if (epoll_ctl(epoll, EPOLL_CTL_MOD, socket, &event) < 0 && errno == ENOENT)
    epoll_ctl(epoll, EPOLL_CTL_ADD, socket, &event);
  return 0;
}

int CurlDriver::timerChanged(CURLM*, long milliseconds, void* self) {
  auto& driver = *static_cast<CurlDriver*>(self);
  driver.timerDue_.reset();
  if (milliseconds >= 0)
    driver.timerDue_ = Clock::now() + std::chrono::milliseconds(milliseconds);
  return 0;
}

void CurlDriver::socketsAreReady() {
  // More than one round for each turn of the event loop, which costs more than a round does.
  const LoadingThread* const thread = &thread_;
  const auto end = Clock::now() + LongestBurst;
  bool isBusy = true;
  while (isBusy && LoadingThread::isOfThisThread(thread)) {
    const LoadingThread::Round round(thread_);
    isBusy = workOnSockets() && now_ < end;
    workOnTimer();
    takeFinished();
    resumePaused();
    armTimer();
  }
}

bool CurlDriver::workOnSockets() {
  std::array<epoll_event, 64> events;
  const int count = epoll_wait(epoll_, events.data(), int(events.size()), 0);
  now_ = Clock::now();
  for (int i = 0; i < count; ++i) {
    const auto [flags, data] = events[std::size_t(i)];
    const int ready = ((flags & EPOLLIN) ? CURL_CSELECT_IN : 0) |
                      ((flags & EPOLLOUT) ? CURL_CSELECT_OUT : 0) |
                      ((flags & (EPOLLERR | EPOLLHUP)) ? CURL_CSELECT_ERR : 0);
    int running = 0;
    curl_multi_socket_action(multi_, data.fd, ready, &running);
  }
  return count > 0;
}

void CurlDriver::workOnTimer() {
  if (!timerDue_ || *timerDue_ > now_)
    return;
  timerDue_.reset();
  int running = 0;
  curl_multi_socket_action(multi_, CURL_SOCKET_TIMEOUT, 0, &running);
  // curl names a time only when it has changed.
  long milliseconds = -1;
  if (!timerDue_ && curl_multi_timeout(multi_, &milliseconds) == CURLM_OK && milliseconds >= 0)
    timerDue_ = now_ + std::chrono::milliseconds(milliseconds);
}

void CurlDriver::timerIsDue() {
  const LoadingThread::Round round(thread_);
  timerArmed_.reset();
  now_ = Clock::now();
  workOnTimer();
  takeFinished();
  resumePaused();
  armTimer();
}

void CurlDriver::takeFinished() {
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
    if (message->msg != CURLMSG_DONE)
      continue;
    const CURLcode result = message->data.result;
    void* transfer = nullptr;
    curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
    static_cast<CurlTransfer*>(transfer)->finish(result);
  }
}

void CurlDriver::resumePaused() {
  // What curl has kept back may be enough for another pause.
  for (CurlTransfer* transfer : std::exchange(paused_, {}))
    transfer->resume();
}

void CurlDriver::armTimer() {
  // One that goes off too early does no harm: it sees that nothing is due.
  if (!timerDue_ || (timerArmed_ && *timerArmed_ <= *timerDue_))
    return;
  timerArmed_ = timerDue_;
  timer_.start(timeUntil(*timerDue_, now_));
}

void CurlDriver::armDeadline(Clock::time_point due) {
  if (deadlineArmed_ && *deadlineArmed_ <= due)
    return;
  deadlineArmed_ = due;
  deadlineTimer_.start(timeUntil(due, now_));
}

void CurlDriver::deadlineIsDue() {
  const LoadingThread::Round round(thread_);
  deadlineArmed_.reset();
  now_ = Clock::now();
  // What arrived while the event loop was busy elsewhere counts as progress.
  const auto end = now_ + LongestBurst;
  while (workOnSockets() && now_ < end)
    resumePaused();
  takeFinished();
  resumePaused();
  std::vector<CurlTransfer*> expired;
  std::optional<Clock::time_point> next;
  for (CurlTransfer* transfer : transfers_) {
    const auto deadline = transfer->deadline();
    if (!deadline)
      continue;
    if (*deadline <= now_)
      expired.push_back(transfer);
    else if (!next || *deadline < *next)
      next = deadline;
  }
  for (CurlTransfer* transfer : expired)
    transfer->timeOut();
  if (next)
    armDeadline(*next);
  armTimer();
}

} // namespace zq::platform
