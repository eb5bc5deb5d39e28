// Requests between the thread that reads the bus and the main thread.
#pragma once

#include "app/bus/BusRequest.h"

#include <QtCore/QHash>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

namespace zq::app {

// A request with what its reply needs.
struct PendingRequest {
  BusRequest request;
  QDBusMessage message;
  QDBusConnection connection;
};

// A bounded queue. One sender fills only a part of it, so that others come through a flood.
//
// Thread: any.
class BusInbox {
 public:
  // What may wait; the first request of a sender may be larger than its share.
  struct Share {
    std::size_t requests;
    qsizetype bytes;
  };
  static constexpr Share OfAll{1024, qsizetype(96) << 20};
  static constexpr Share OfSender{512, qsizetype(32) << 20};

  enum class Admission { First, Further, Refused };

  // Adds a request. Where it is the first, the main thread is to be told. One that is refused is
  // left as it is.
  Admission put(PendingRequest&& pending);
  // The oldest one; nothing where there is none.
  std::optional<PendingRequest> take();

 private:
  std::mutex mutex_;
  std::deque<PendingRequest> pending_;
  QHash<QString, Share> bySender_;
  qsizetype bytes_ = 0;
};

} // namespace zq::app
