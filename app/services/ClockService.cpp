#include "app/services/ClockService.h"

namespace zq::app {

using platform::Date;

ClockService::ClockService(const ClockText& text, Receiver receiver, Now now)
    : text_(text), receiver_(std::move(receiver)), now_(std::move(now)),
      timer_([this] { look(); }) {}

void ClockService::start() {
  const Date now = now_();
  last_ = text_.textAt(now);
  timer_.startAt(text_.nextChangeAfter(now));
}

void ClockService::look() {
  const Date now = now_();
  const QString text = text_.textAt(now);
  if (text != last_) {
    last_ = text;
    if (!receiver_(text))
      return;
  }
  timer_.startAt(text_.nextChangeAfter(now));
}

} // namespace zq::app
