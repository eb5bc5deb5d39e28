// The elements of XML feeds, and the vocabularies that they come from.
#pragma once

#include <QtCore/QStringView>

namespace zq::app {

// What an element's namespace is a name of, whatever its prefix.
enum class FeedVocabulary {
  Unknown,
  None, // no namespace: RSS 0.9x and 2.0
  Rss,  // RSS 0.90 and 1.0, and namespaces that RSS 2.0 is given by mistake
  Atom,
  Rdf,
  DublinCore,
  Syndication,
  Content,
  Media,
  Itunes,
};

// Takes addresses as feeds have them: another scheme, another case, an end that is missing.
FeedVocabulary feedVocabulary(QStringView namespaceUri);
// What a prefix means by custom, for documents that do not declare it.
FeedVocabulary vocabularyOfPrefix(QStringView prefix);

enum class FeedElement {
  Unknown,
  About,
  Channel,
  Content,
  Created,
  Date,
  Description,
  Enclosure,
  Encoded,
  Entry,
  Feed,
  Group,
  Guid,
  Html,
  Icon,
  Id,
  Identifier,
  Image,
  Issued,
  Item,
  Link,
  Logo,
  Modified,
  PubDate,
  Published,
  Rdf,
  Rss,
  Subtitle,
  Summary,
  Thumbnail,
  Title,
  Ttl,
  UpdateFrequency,
  UpdatePeriod,
  Updated,
  Url,
};

// By the local name, in any case.
FeedElement feedElement(QStringView localName);

} // namespace zq::app
