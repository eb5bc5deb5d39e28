#include "app/bus/BusInbox.h"

#include <utility>

namespace zq::app {

BusInbox::Admission BusInbox::put(PendingRequest&& pending) {
  const std::lock_guard lock(mutex_);
  const BusRequest& request = pending.request;
  const bool isFirst = pending_.empty();
  if (pending_.size() >= OfAll.requests || bytes_ + request.bytes > OfAll.bytes)
    return Admission::Refused;
  const auto known = bySender_.constFind(request.sender);
  if (known != bySender_.cend() &&
      (known->requests >= OfSender.requests || known->bytes + request.bytes > OfSender.bytes))
    return Admission::Refused;
  Share& share = bySender_[request.sender];
  ++share.requests;
  share.bytes += request.bytes;
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
  const auto share = bySender_.find(oldest.request.sender);
  share->bytes -= oldest.request.bytes;
  if (--share->requests == 0)
    bySender_.erase(share);
  return oldest;
}

} // namespace zq::app
