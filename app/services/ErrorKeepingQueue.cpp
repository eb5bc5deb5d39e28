#include "app/services/ErrorKeepingQueue.h"

#include <cerrno>

namespace zq::app {

using namespace platform;

Ref<ErrorKeepingQueue> ErrorKeepingQueue::make() {
  Ref<KernelEventQueue> queue = KernelEventQueue::make();
  return queue ? std::make_shared<ErrorKeepingQueue>(std::move(queue)) : nullptr;
}

ErrorKeepingQueue::ErrorKeepingQueue(Ref<KernelEventQueue> queue) : queue_(std::move(queue)) {}

void ErrorKeepingQueue::clearOpenError() {
  openError_ = ENOENT;
}

int ErrorKeepingQueue::descriptor() const {
  return queue_->descriptor();
}

int ErrorKeepingQueue::openForEvents(const QByteArray& path) {
  const int descriptor = queue_->openForEvents(path);
  openError_ = descriptor < 0 ? errno : 0;
  return descriptor;
}

int ErrorKeepingQueue::add(int descriptor, std::uint32_t mask, const QString& userData) {
  return queue_->add(descriptor, mask, userData);
}

int ErrorKeepingQueue::closeDescriptor(int descriptor) {
  return queue_->closeDescriptor(descriptor);
}

std::variant<KernelEvent, KernelEventQueue::TimedOut, KernelEventQueue::Stopped>
ErrorKeepingQueue::wait(std::chrono::nanoseconds timeout) {
  return queue_->wait(timeout);
}

void ErrorKeepingQueue::stop() {
  queue_->stop();
}

int ErrorKeepingQueue::close() {
  return queue_->close();
}

} // namespace zq::app
