#include "app/queue/TickerQueue.h"

#include "app/ticker/Ticker.h"
#include "zqticker/signs/ZQTickerSign.h"

#include <QtCore/QUuid>

namespace zq::app {

using namespace platform;

TickerQueue::TickerQueue(Ticker& ticker) : ticker_(ticker) {}
TickerQueue::~TickerQueue() = default;

bool TickerQueue::changed(bool isChanged) {
  if (isChanged)
    ticker_.displayChanged();
  return isChanged;
}

std::uint64_t TickerQueue::revision() const {
  return ticker_.display().queueRevision();
}

std::vector<QueuedSign> TickerQueue::rows() {
  return ticker_.display().queuedSigns(ticker_.time());
}

Strip::Entry TickerQueue::add(Ref<ZQTickerSign> sign, const SignOrigin& origin,
                              const Strip::Entry& before) {
  TickerDisplay& display = ticker_.display();
  const double now = ticker_.time();
  if (display.waitingCount() >= MostWaiting)
    return nullptr;
  if (!sign->identifier())
    sign->setIdentifier(QUuid::createUuid().toString(QUuid::WithoutBraces));
  changed(true);
  if (const Strip::Entry replaced = display.replaceSign(sign, now, origin))
    return replaced;
  const Strip::Entry entry = display.addSign(sign, now, origin);
  if (before)
    display.moveEntry(entry, before, now);
  return entry;
}

bool TickerQueue::remove(const Strip::Entry& entry) {
  return changed(entry && ticker_.display().removeEntry(entry, ticker_.time()));
}

bool TickerQueue::move(const Strip::Entry& entry, const Strip::Entry& before) {
  return changed(entry && entry != before &&
                 ticker_.display().moveEntry(entry, before, ticker_.time()));
}

Strip::Entry TickerQueue::replace(const Strip::Entry& entry, Ref<ZQTickerSign> sign,
                                  std::optional<std::int64_t> loopsLeft) {
  if (!entry || !sign)
    return nullptr;
  // The showings that have begun stay counted.
  if (loopsLeft)
    sign->setLoopCount(*loopsLeft < 0 ? ZQEndlessLoopCount : entry->showings + *loopsLeft);
  const Strip::Entry replaced = ticker_.display().replaceEntry(entry, sign, ticker_.time());
  changed(replaced != nullptr);
  return replaced;
}

Ref<ZQTickerSign> TickerQueue::makeTextSign(const QString& text) {
  return ticker_.display().makeTextSign(text);
}

QSizeF TickerQueue::pictureRoom() const {
  const QSizeF size = ticker_.display().size();
  return ticker_.display().isHorizontal() ? QSizeF(0, size.height()) : QSizeF(size.width(), 0);
}

} // namespace zq::app
