// Feeds for tests.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <vector>

namespace zq::app::testing {

struct WrittenItem {
  QByteArray id;
  QByteArray title;
  QByteArray picture = {}; // an address, may be relative
};

// An RSS document with these items. `more` stands in the channel.
inline QByteArray rss(const std::vector<WrittenItem>& items, const QByteArray& more = {}) {
  QByteArray text = "<?xml version=\"1.0\"?>\n<rss version=\"2.0\"><channel><title>Feed</title>"
                    "<link>http://example.org/</link><description>A feed</description>" +
                    more;
  for (const WrittenItem& item : items) {
    text += "<item><guid isPermaLink=\"false\">" + item.id + "</guid><title>" + item.title +
            "</title><link>http://example.org/" + item.id + "</link>";
    if (!item.picture.isEmpty())
      text += "<enclosure url=\"" + item.picture + "\" type=\"image/png\" length=\"1\"/>";
    text += "</item>";
  }
  return text + "</channel></rss>\n";
}

} // namespace zq::app::testing
