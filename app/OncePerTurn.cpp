#include "app/OncePerTurn.h"

#include <utility>

namespace zq::app {

OncePerTurn::OncePerTurn(std::function<void()> work) : work_(std::move(work)) {}

OncePerTurn::~OncePerTurn() = default;

void OncePerTurn::request() {
  if (isDue_)
    return;
  isDue_ = true;
  QMetaObject::invokeMethod(
      &later_, [this] { catchUp(); }, Qt::QueuedConnection);
}

void OncePerTurn::catchUp() {
  if (!isDue_)
    return;
  isDue_ = false;
  // This object may go meanwhile.
  const std::function<void()> work = work_;
  work();
}

} // namespace zq::app
