#include "app/bus/BusInbox.h"

#include <utility>

namespace zq::app {

BusInbox::Admission BusInbox::put(PendingRequest&& pending) {
  const std::lock_guard lock(mutex_);
  const BusRequest& request = pending.request;
  const bool isFirst = pending_.empty();
  if (!isFirst && (pending_.size() >= MostRequests || bytes_ + request.bytes > MostBytes ||
                   bySender_.value(request.sender) >= MostRequestsOfSender))
    return Admission::Refused;
  ++bySender_[request.sender];
  bytes_ += request.bytes;
  pending_.push_back(std::move(pending));
  return isFirst ? Admission::First : Admission::Further;
}

std::optional<PendingRequest> BusInbox::take() {
  const std::lock_guard lock(mutex_);
  if (pending_.empty())
    return std::nullopt;
  PendingRequest oldest = std::move(pending_.front());
  pending_.pop_front();
  bytes_ -= oldest.request.bytes;
  const auto count = bySender_.find(oldest.request.sender);
  if (--*count == 0)
    bySender_.erase(count);
  return oldest;
}

} // namespace zq::app
