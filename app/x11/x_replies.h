// What comes from the X server.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace zq::app {

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};

// A reply, which is freed with this; null for a request that failed.
template <class Reply>
using OwnedReply = std::unique_ptr<Reply, FreeReply>;

template <class Reply>
OwnedReply<Reply> owned(Reply* reply) {
  return OwnedReply<Reply>(reply);
}

// The number of the kind of event, whether the server or another client has sent it.
inline std::uint8_t typeOf(const xcb_generic_event_t& event) {
  constexpr std::uint8_t SentByAnother = 0x80;
  return event.response_type & static_cast<std::uint8_t>(~SentByAnother);
}

} // namespace zq::app
