#include "app/services/FeedSigns.h"

#include "app/display/SignAction.h"
#include "app/display/TickerDisplay.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/signs/ZQComboTickerSign.h"

namespace zq::app {

using namespace platform;

FeedSigns::FeedSigns(TickerDisplay& display, LoopRule rule) : display_(display), rule_(rule) {}

FeedSigns::~FeedSigns() = default;

Ref<ZQTickerSign> FeedSigns::makeSign(const ShownItem& item) const {
  Ref<ZQTickerSign> sign;
  if (item.picture)
    sign = ZQComboTickerSign::make(item.title, item.picture);
  else
    sign = display_.makeTextSign(item.title);
  sign->setIdentifier(item.identifier);
  sign->setLoopCount(rule_.count);
  sign->setLoopDelay(rule_.delay);
  sign->setContinuousScrolling(rule_.continuous);
  if (!item.link.isEmpty()) {
    sign->setActionType(OpenLocation);
    sign->setActionString(item.link.toString(QUrl::FullyEncoded));
  }
  return sign;
}

void FeedSigns::removeMissing(const std::vector<ShownItem>& items, double time) {
  QSet<QString> present;
  for (const ShownItem& item : items)
    present.insert(item.identifier);
  for (auto shown = shown_.begin(); shown != shown_.end();) {
    if (present.contains(shown.key())) {
      ++shown;
      continue;
    }
    display_.removeSign(shown.key(), time);
    if (rule_.count >= 0) {
      past_.push_back(shown.key());
      isPast_.insert(shown.key());
    }
    shown = shown_.erase(shown);
  }
  for (; past_.size() > MostPastItems; past_.pop_front())
    isPast_.remove(past_.front());
}

void FeedSigns::show(const std::vector<ShownItem>& items, double time) {
  removeMissing(items, time);
  QStringList order;
  for (const ShownItem& item : items) {
    order.append(item.identifier);
    const auto shown = shown_.find(item.identifier);
    if (shown == shown_.end()) {
      if (isPast_.contains(item.identifier))
        continue;
      display_.addArrangedSign(makeSign(item), time);
      shown_.insert(item.identifier, item);
    } else if (!(*shown == item)) {
      display_.replaceSign(makeSign(item), time);
      *shown = item;
    }
  }
  display_.arrangeSigns(order, time);
}

} // namespace zq::app
