#include "zqticker/platform/system/LoadingThread_p.h"

#include "zqticker/platform/system/CurlDriver_p.h"
#include "zqticker/platform/system/URLLoading_p.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QEventLoop>
#include <QtCore/QThread>

#include <utility>

namespace zq::platform {

namespace {
// Larger buffers are not kept between uses. Of the pieces that a transfer notes none is larger.
constexpr qsizetype MostSpareBytes = qsizetype(1) << 20;

// A plain pointer, so that it can be read after the thread's other objects have gone.
thread_local LoadingThread* ofThisThread = nullptr;

void endThisThread() {
  delete std::exchange(ofThisThread, nullptr);
}

// For threads that end without Qt's knowledge.
struct EndWithThread {
  ~EndWithThread() { endThisThread(); }
};
} // namespace

LoadingThread& LoadingThread::current() {
  if (!ofThisThread) {
    thread_local const EndWithThread endWithThread;
    static_cast<void>(endWithThread);
    ofThisThread = new LoadingThread;
  }
  return *ofThisThread;
}

bool LoadingThread::isOfThisThread(const LoadingThread* thread) {
  return thread && ofThisThread == thread;
}

LoadingThread::LoadingThread() {
  // Makes the thread's event dispatcher, without which there are no notifiers and timers.
  const QEventLoop loop;
  // An event loop turns while something waits to be delivered: a delegate runs it.
  const auto goOn = [this] {
    if (!ready_.empty())
      postDelivery();
  };
  const QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
  connect(dispatcher, &QAbstractEventDispatcher::awake, this, goOn, Qt::DirectConnection);
  connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, goOn, Qt::DirectConnection);
  // Both come while the dispatcher is still there.
  connect(QThread::currentThread(), &QThread::finished, this, endThisThread, Qt::DirectConnection);
  if (QCoreApplication::instance() && thread() == QCoreApplication::instance()->thread())
    qAddPostRoutine(endThisThread);
}

LoadingThread::~LoadingThread() {
  ready_.clear();
  const auto loadings = std::exchange(loadings_, {});
  for (const std::shared_ptr<URLLoading>& loading : loadings)
    loading->cancel();
}

CurlDriver& LoadingThread::curl() {
  if (!curl_)
    curl_ = std::make_unique<CurlDriver>(*this);
  return *curl_;
}

void LoadingThread::add(const std::shared_ptr<URLLoading>& loading) {
  loadings_.insert(loading);
}

void LoadingThread::remove(const std::shared_ptr<URLLoading>& loading) {
  loadings_.erase(loading);
}

void LoadingThread::deliverLater(const std::shared_ptr<URLLoading>& loading) {
  ready_.push_back(loading);
  if (openRounds_ == 0 && deliveries_ == 0)
    postDelivery();
}

void LoadingThread::postDelivery() {
  if (std::exchange(isEventPosted_, true))
    return;
  QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

bool LoadingThread::event(QEvent* event) {
  if (event->type() != QEvent::User)
    return QObject::event(event);
  isEventPosted_ = false;
  deliver();
  return true;
}

void LoadingThread::deliver() {
  // Out of the common queue, from which an event loop that a delegate runs takes the rest. Such a
  // loop may also end this thread's loading.
  const LoadingThread* const self = this;
  ++deliveries_;
  while (isOfThisThread(self) && !ready_.empty()) {
    const std::shared_ptr<URLLoading> loading = ready_.front();
    if (!loading->deliverNext())
      ready_.pop_front();
  }
  if (isOfThisThread(self))
    --deliveries_;
}

LoadingThread::Round::~Round() {
  if (--thread_.openRounds_ == 0)
    thread_.deliver();
}

QByteArray LoadingThread::takeBuffer() {
  return std::exchange(spareBuffer_, QByteArray());
}

void LoadingThread::giveBackBuffer(QByteArray&& buffer) {
  if (buffer.capacity() > MostSpareBytes || buffer.capacity() <= spareBuffer_.capacity())
    return;
  spareBuffer_ = std::move(buffer);
  spareBuffer_.resize(0);
}

} // namespace zq::platform
