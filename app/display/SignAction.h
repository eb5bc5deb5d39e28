// What a click on a sign does.
#pragma once

#include <cstdint>

namespace zq::app {

// The display's own numbers for a sign's action type.
enum SignAction : std::int32_t {
  NoAction = 0,
  OpenLocation = 1, // the address that is the action's string
};

} // namespace zq::app
