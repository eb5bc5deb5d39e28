#include "app/services/DisplayReceiver.h"

#include "app/display/TickerDisplay.h"
#include "zqticker/signs/ZQTickerSign.h"

namespace zq::app {

using platform::Ref;

DisplayReceiver::DisplayReceiver(TickerDisplay& display, std::function<double()> time)
    : display_(display), time_(std::move(time)) {}

DisplayReceiver::~DisplayReceiver() = default;

Ref<ZQTickerSign> DisplayReceiver::makeTextSign(const QString& text) {
  return display_.makeTextSign(text);
}

void DisplayReceiver::add(Ref<ZQTickerSign> sign, const SignOrigin& origin, Order order) {
  const double now = time_();
  if (display_.replaceSign(sign, now, origin))
    return;
  if (order == Order::Arranged)
    display_.addArrangedSign(std::move(sign), now, origin);
  else
    display_.addSign(std::move(sign), now, origin);
}

void DisplayReceiver::replace(Ref<ZQTickerSign> sign, const SignOrigin& origin) {
  display_.replaceSign(std::move(sign), time_(), origin);
}

void DisplayReceiver::remove(const QString& identifier) {
  display_.removeSign(identifier, time_());
}

void DisplayReceiver::arrange(const QStringList& identifiers) {
  display_.arrangeSigns(identifiers, time_());
}

bool DisplayReceiver::hasWaiting(const QString& identifier) {
  return display_.hasWaitingSign(identifier, time_());
}

} // namespace zq::app
