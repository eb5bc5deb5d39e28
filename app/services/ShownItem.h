// An item of a feed as it is to be shown.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QString>
#include <QtCore/QUrl>

#include <functional>
#include <vector>

namespace zq::platform {
class Image;
} // namespace zq::platform

namespace zq::app {

struct ShownItem {
  QString identifier; // the item's among those of all feeds; the same from poll to poll
  QString title;
  QUrl link;                              // empty for none
  platform::Ref<platform::Image> picture; // null for none; the very same while it is unchanged
  QString source{};                       // the feed's name for people

  friend bool operator==(const ShownItem&, const ShownItem&) = default;
};

// Takes all items that are to be shown now, in their order.
using ItemReceiver = std::function<void(const std::vector<ShownItem>& items)>;

} // namespace zq::app
