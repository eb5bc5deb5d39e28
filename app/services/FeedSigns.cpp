#include "app/services/FeedSigns.h"

#include "app/display/SignAction.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/signs/ZQComboTickerSign.h"

namespace zq::app {

using namespace platform;

namespace {
SignOrigin originOf(const ShownItem& item) {
  SignOrigin origin;
  origin.senderName = item.source;
  return origin;
}
} // namespace

FeedSigns::FeedSigns(SignReceiver& receiver, LoopRule rule) : receiver_(receiver), rule_(rule) {}

FeedSigns::~FeedSigns() = default;

Ref<ZQTickerSign> FeedSigns::makeSign(const ShownItem& item) const {
  Ref<ZQTickerSign> sign;
  if (item.picture)
    sign = ZQComboTickerSign::make(item.title, item.picture);
  else
    sign = receiver_.makeTextSign(item.title);
  sign->setIdentifier(item.identifier);
  setLoopRule(*sign, rule_);
  if (!item.link.isEmpty()) {
    sign->setActionType(OpenLocation);
    sign->setActionString(item.link.toString(QUrl::FullyEncoded));
  }
  return sign;
}

void FeedSigns::removeMissing(const std::vector<ShownItem>& items) {
  QSet<QString> present;
  for (const ShownItem& item : items)
    present.insert(item.identifier);
  for (auto shown = shown_.begin(); shown != shown_.end();) {
    if (present.contains(shown.key())) {
      ++shown;
      continue;
    }
    receiver_.remove(shown.key());
    if (rule_.count >= 0) {
      past_.push_back(shown.key());
      isPast_.insert(shown.key());
    }
    shown = shown_.erase(shown);
  }
  for (; past_.size() > MostPastItems; past_.pop_front())
    isPast_.remove(past_.front());
}

void FeedSigns::show(const std::vector<ShownItem>& items) {
  removeMissing(items);
  QStringList order;
  for (const ShownItem& item : items) {
    order.append(item.identifier);
    const auto shown = shown_.find(item.identifier);
    if (shown == shown_.end()) {
      if (isPast_.contains(item.identifier))
        continue;
      receiver_.add(makeSign(item), originOf(item), SignReceiver::Order::Arranged);
      shown_.insert(item.identifier, item);
    } else if (!(*shown == item)) {
      receiver_.replace(makeSign(item), originOf(item));
      *shown = item;
    }
  }
  receiver_.arrange(order);
}

} // namespace zq::app
