#include "app/services/feed_items.h"

#include <QtCore/QSet>

namespace zq::app {

std::vector<FeedItem> itemsToShow(const Feed& feed, std::size_t limit) {
  std::vector<FeedItem> items;
  QSet<QString> seen;
  for (const FeedItem& item : feed.items) {
    if (items.size() == limit)
      break;
    if (item.title.trimmed().isEmpty() || seen.contains(item.identity))
      continue;
    seen.insert(item.identity);
    items.push_back(item);
    if (item.picture.isEmpty())
      items.back().picture = feed.picture;
  }
  return items;
}

} // namespace zq::app
