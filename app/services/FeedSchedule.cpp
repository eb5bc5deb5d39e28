#include "app/services/FeedSchedule.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QUrl>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::app {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

namespace {
using Duration = FeedSchedule::Duration;

constexpr Duration UsualInterval = minutes(30);
constexpr Duration ShortestRemoteInterval = minutes(5);
constexpr Duration FirstBackOff = seconds(30);
constexpr Duration LongestBackOff = hours(6);
constexpr Duration LongestWait = hours(24);
constexpr double OrdinaryJitter = 0.1;
constexpr double BackOffJitter = 0.5;

Duration fraction(Duration whole, double part) {
  return Duration(std::llround(static_cast<double>(whole.count()) * part));
}

bool isLocal(const QUrl& feed) {
  static const QRegularExpression loopback(uR"(\A(|(.+\.)?localhost|127\.\d+\.\d+\.\d+|::1)\z)"_s);
  return loopback.match(feed.host()).hasMatch();
}
} // namespace

FeedSchedule::FeedSchedule(Duration interval, Random random)
    : interval_(interval), random_(std::move(random)) {}

std::optional<Duration> FeedSchedule::waitAfter(const PollOutcome& outcome) {
  const auto atLeast = [](Duration wait, const std::optional<seconds>& asked) {
    return std::max(wait, std::min<Duration>(asked.value_or(seconds(0)), LongestWait));
  };
  if (outcome.kind == PollOutcome::Kind::Gone)
    return std::nullopt;
  const double random = random_();
  const Duration asked = atLeast(Duration(0), outcome.retryAfter);
  const Duration patient = asked + fraction(asked, OrdinaryJitter * random);
  if (outcome.kind == PollOutcome::Kind::Succeeded) {
    failures_ = 0;
    const Duration wait = atLeast(atLeast(interval_, outcome.timeToLive), outcome.freshFor);
    return std::max(patient, wait + fraction(wait, OrdinaryJitter * random));
  }
  Duration wait = std::min(FirstBackOff, interval_);
  for (int i = 0; i < failures_ && wait < LongestBackOff; ++i)
    wait *= 2;
  ++failures_;
  wait = std::min(wait, LongestBackOff);
  return std::max(patient, wait - fraction(wait, BackOffJitter * random));
}

Duration pollInterval(const QUrl& feed, std::optional<double> statedMinutes) {
  if (!statedMinutes)
    return UsualInterval;
  const Duration stated = fraction(minutes(1), *statedMinutes);
  return isLocal(feed) ? stated : std::max(stated, ShortestRemoteInterval);
}

} // namespace zq::app
