// Quiet while foreign files are decoded.
#pragma once

#include <mutex>

namespace zq::app {

// Keeps everything from standard error while it lives: the libraries that decode pictures write
// about broken ones there, whoever asks. What went wrong is told by the caller, once.
//
// Other threads that have something to say wait for it with `mutex`.
//
// Thread: any; several take turns.
class SilencedStandardError {
 public:
  SilencedStandardError();
  ~SilencedStandardError();
  SilencedStandardError(const SilencedStandardError&) = delete;
  SilencedStandardError& operator=(const SilencedStandardError&) = delete;

  // Held while standard error is silenced.
  static std::recursive_mutex& mutex();

 private:
  std::lock_guard<std::recursive_mutex> lock_;
  int kept_ = -1;
};

} // namespace zq::app
