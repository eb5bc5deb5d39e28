// The items of feeds as signs.
#pragma once

#include "app/display/StripItem.h"
#include "app/services/ShownItem.h"
#include "app/services/SignReceiver.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

#include <deque>

namespace zq::app {

// Keeps the signs of a receiver in step with the items: a text sign for each, or a combo sign where
// it has a picture; a click opens the link. A new item is shown soon, a changed one changes with
// its next showing, one that has gone is not shown again. Every round shows them in their order.
// Signs on the strip are never touched.
//
// Thread: main.
class FeedSigns {
 public:
  // Items that were shown as often as `rule` says and have gone since are known again when they
  // come back: this many of them.
  static constexpr std::size_t MostPastItems = 10'000;

  // `receiver` must outlive the object.
  FeedSigns(SignReceiver& receiver, LoopRule rule);
  ~FeedSigns();

  // Shows `items`, and no others, from now on.
  void show(const std::vector<ShownItem>& items);

 private:
  platform::Ref<ZQTickerSign> makeSign(const ShownItem& item) const;
  void removeMissing(const std::vector<ShownItem>& items);

  SignReceiver& receiver_;
  LoopRule rule_;
  QHash<QString, ShownItem> shown_;
  std::deque<QString> past_; // oldest first
  QSet<QString> isPast_;
};

} // namespace zq::app
