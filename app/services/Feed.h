// A feed and its items, as they are shown: cleaned, resolved and bounded, whatever its format was.
#pragma once

#include <QtCore/QDateTime>
#include <QtCore/QString>
#include <QtCore/QUrl>

#include <chrono>
#include <optional>
#include <vector>

namespace zq::app {

struct FeedItem {
  // Tells items of one feed apart, also between two readings of it: the item's id or guid, else its
  // link and its title together. Never empty.
  QString identity;
  // Plain text on one line, without markup, control characters and characters that turn the
  // direction of text; cut at a length that fits a ticker. Where the feed has no title the first
  // words of the description, else the link; empty where the item has none of these.
  QString title;
  // Absolute http or https addresses; empty where there is none.
  QUrl link;
  QUrl picture;
  // In UTC: when the item was published, else when it was changed last.
  std::optional<QDateTime> published;
};

struct Feed {
  // "RSS 2.0", "Atom 1.0", "JSON Feed 1.1" and so on; empty before the format is known.
  QString format;
  QString title;
  // The page that the feed belongs to, and its picture; as with items.
  QUrl link;
  QUrl picture;
  // How long the feed asks to be left alone.
  std::optional<std::chrono::seconds> timeToLive;
  // In the feed's order.
  std::vector<FeedItem> items;
};

} // namespace zq::app
