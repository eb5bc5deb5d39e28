// When a feed is asked next.
#pragma once

#include <chrono>
#include <functional>
#include <optional>

class QUrl;

namespace zq::app {

// What a poll brought, as far as the next one depends on it.
struct PollOutcome {
  enum class Kind {
    Succeeded,
    Failed,
    Gone, // for good
  };
  Kind kind = Kind::Succeeded;
  std::optional<std::chrono::seconds> timeToLive; // of the feed itself
  std::optional<std::chrono::seconds> freshFor;   // of the answer
  std::optional<std::chrono::seconds> retryAfter; // asked for by the server
};

// Counts failures and gives the waits between polls; knows no clock.
//
// After a success the wait is the longest of the interval, what the feed asks for and how long the
// answer is fresh, but no more than a day, and up to a tenth more, so that several feeds do not go
// out together. After failures it begins at half a minute, or the interval where that is shorter,
// and doubles up to six hours; a random part of it, up to a half, is left out. Whenever the server
// asks to be left alone, it is left alone that long, up to a day, and up to a tenth longer.
class FeedSchedule {
 public:
  using Duration = std::chrono::milliseconds;
  // Gives numbers from 0 on, below 1.
  using Random = std::function<double()>;

  FeedSchedule(Duration interval, Random random);

  // The wait after a poll that has just ended; nothing for a feed that is not to be asked again.
  std::optional<Duration> waitAfter(const PollOutcome& outcome);
  // Failures since the last success.
  int failures() const { return failures_; }

 private:
  Duration interval_;
  Random random_;
  int failures_ = 0;
};

// The interval for a feed where the user has stated one, in minutes, or none. Servers are asked
// every five minutes at most, those of this machine, and files, as often as stated.
FeedSchedule::Duration pollInterval(const QUrl& feed, std::optional<double> statedMinutes);

} // namespace zq::app
