// What a parser made of a document, as text to be compared.
#pragma once

#include "app/services/FeedParser.h"

#include <QtCore/QString>

namespace zq::app::testing {

inline QString describe(const FeedParser& parser) {
  using namespace Qt::StringLiterals;
  const Feed& feed = parser.feed();
  QString text;
  const auto add = [&text](const QString& name, const QString& value) {
    if (!value.isEmpty())
      text += name + u": "_s + value + u'\n';
  };
  add(u"format"_s, feed.format);
  add(u"title"_s, feed.title);
  add(u"link"_s, feed.link.toString(QUrl::FullyEncoded));
  add(u"picture"_s, feed.picture.toString(QUrl::FullyEncoded));
  if (feed.timeToLive)
    add(u"time to live"_s, QString::number(feed.timeToLive->count()) + u" s"_s);
  for (const FeedItem& item : feed.items) {
    text += u"item\n"_s;
    add(u"  identity"_s, QString(item.identity).replace(u'\n', u" | "_s));
    add(u"  title"_s, item.title);
    add(u"  link"_s, item.link.toString(QUrl::FullyEncoded));
    add(u"  picture"_s, item.picture.toString(QUrl::FullyEncoded));
    if (item.published)
      add(u"  published"_s, item.published->toString(Qt::ISODateWithMs));
  }
  add(u"error"_s, parser.errorText());
  for (const QString& warning : parser.warnings())
    add(u"warning"_s, warning);
  add(u"complete"_s, parser.isComplete() ? u"yes"_s : u"no"_s);
  return text;
}

} // namespace zq::app::testing
