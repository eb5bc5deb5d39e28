// The calls of the kernel that can be refused, and its clock.
#pragma once

#include <chrono>
#include <cstdint>

namespace zq::platform {

// A test gives its own.
struct InotifyCalls {
  int (*makeInstance)(int flags) = nullptr;
  int (*openPath)(const char* path) = nullptr; // for the path only
  int (*addWatch)(int instance, const char* path, std::uint32_t mask) = nullptr;
  int (*makeWakeUp)(unsigned int count, int flags) = nullptr;
  std::chrono::steady_clock::time_point (*now)() = nullptr;

  InotifyCalls(); // the kernel's
};

} // namespace zq::platform
