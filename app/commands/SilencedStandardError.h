// Quiet while foreign files are decoded.
#pragma once

namespace zq::app {

// Keeps everything from standard error while it lives: the libraries that decode pictures write
// about broken ones there, whoever asks. What went wrong is told by the caller, once.
class SilencedStandardError {
 public:
  SilencedStandardError();
  ~SilencedStandardError();
  SilencedStandardError(const SilencedStandardError&) = delete;
  SilencedStandardError& operator=(const SilencedStandardError&) = delete;

 private:
  int kept_ = -1;
};

} // namespace zq::app
