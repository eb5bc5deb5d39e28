#include "app/services/feed_elements.h"

#include <QtCore/QString>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
template <class Value>
using Named = std::pair<std::u16string_view, Value>;

// Without their schemes and what closes them, in lower case.
constexpr std::array Vocabularies = std::to_array<Named<FeedVocabulary>>({
    {u"purl.org/rss/1.0", FeedVocabulary::Rss},
    {u"my.netscape.com/rdf/simple/0.9", FeedVocabulary::Rss},
    {u"channel.netscape.com/rdf/simple/0.9", FeedVocabulary::Rss},
    {u"backend.userland.com/rss", FeedVocabulary::Rss},
    {u"backend.userland.com/rss2", FeedVocabulary::Rss},
    {u"backend.userland.com/rss091", FeedVocabulary::Rss},
    {u"blogs.law.harvard.edu/tech/rss", FeedVocabulary::Rss},
    {u"cyber.law.harvard.edu/rss", FeedVocabulary::Rss},
    {u"www.w3.org/2005/atom", FeedVocabulary::Atom},
    {u"purl.org/atom/ns", FeedVocabulary::Atom},
    {u"www.w3.org/1999/02/22-rdf-syntax-ns", FeedVocabulary::Rdf},
    {u"purl.org/dc/elements/1.1", FeedVocabulary::DublinCore},
    {u"purl.org/dc/elements/1.0", FeedVocabulary::DublinCore},
    {u"purl.org/dc/terms", FeedVocabulary::DublinCore},
    {u"purl.org/rss/1.0/modules/dc", FeedVocabulary::DublinCore},
    {u"purl.org/rss/1.0/modules/dcterms", FeedVocabulary::DublinCore},
    {u"purl.org/rss/1.0/modules/syndication", FeedVocabulary::Syndication},
    {u"purl.org/rss/1.0/modules/content", FeedVocabulary::Content},
    {u"search.yahoo.com/mrss", FeedVocabulary::Media},
    {u"video.search.yahoo.com/mrss", FeedVocabulary::Media},
    {u"tools.search.yahoo.com/mrss", FeedVocabulary::Media},
    {u"www.rssboard.org/media-rss", FeedVocabulary::Media},
    {u"www.itunes.com/dtds/podcast-1.0.dtd", FeedVocabulary::Itunes},
    {u"www.itunes.com/dtds/podcast-1.0", FeedVocabulary::Itunes},
});

constexpr std::array Prefixes = std::to_array<Named<FeedVocabulary>>({
    {u"atom", FeedVocabulary::Atom},
    {u"content", FeedVocabulary::Content},
    {u"dc", FeedVocabulary::DublinCore},
    {u"dcterms", FeedVocabulary::DublinCore},
    {u"itunes", FeedVocabulary::Itunes},
    {u"media", FeedVocabulary::Media},
    {u"rdf", FeedVocabulary::Rdf},
    {u"rss", FeedVocabulary::Rss},
    {u"sy", FeedVocabulary::Syndication},
});

// In the order of their letters.
constexpr std::array Elements = std::to_array<Named<FeedElement>>({
    {u"about", FeedElement::About},
    {u"channel", FeedElement::Channel},
    {u"content", FeedElement::Content},
    {u"created", FeedElement::Created},
    {u"date", FeedElement::Date},
    {u"description", FeedElement::Description},
    {u"enclosure", FeedElement::Enclosure},
    {u"encoded", FeedElement::Encoded},
    {u"entry", FeedElement::Entry},
    {u"feed", FeedElement::Feed},
    {u"group", FeedElement::Group},
    {u"guid", FeedElement::Guid},
    {u"html", FeedElement::Html},
    {u"icon", FeedElement::Icon},
    {u"id", FeedElement::Id},
    {u"identifier", FeedElement::Identifier},
    {u"image", FeedElement::Image},
    {u"issued", FeedElement::Issued},
    {u"item", FeedElement::Item},
    {u"link", FeedElement::Link},
    {u"logo", FeedElement::Logo},
    {u"modified", FeedElement::Modified},
    {u"pubdate", FeedElement::PubDate},
    {u"published", FeedElement::Published},
    {u"rdf", FeedElement::Rdf},
    {u"rss", FeedElement::Rss},
    {u"subtitle", FeedElement::Subtitle},
    {u"summary", FeedElement::Summary},
    {u"tagline", FeedElement::Subtitle},
    {u"thumbnail", FeedElement::Thumbnail},
    {u"title", FeedElement::Title},
    {u"ttl", FeedElement::Ttl},
    {u"updated", FeedElement::Updated},
    {u"updatefrequency", FeedElement::UpdateFrequency},
    {u"updateperiod", FeedElement::UpdatePeriod},
    {u"url", FeedElement::Url},
});

constexpr qsizetype LongestName = 15;

std::u16string_view viewOf(QStringView text) {
  return {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<std::size_t>(text.size())};
}

template <std::size_t Size>
FeedVocabulary find(const std::array<Named<FeedVocabulary>, Size>& table, QStringView name) {
  const auto found = std::find_if(table.begin(), table.end(),
                                  [name](const auto& row) { return row.first == viewOf(name); });
  return found == table.end() ? FeedVocabulary::Unknown : found->second;
}
} // namespace

FeedVocabulary feedVocabulary(QStringView namespaceUri) {
  constexpr qsizetype LongestUri = 256;
  namespaceUri = namespaceUri.trimmed();
  if (namespaceUri.isEmpty())
    return FeedVocabulary::None;
  if (namespaceUri.size() > LongestUri)
    return FeedVocabulary::Unknown;
  QString key = namespaceUri.toString().toLower();
  for (const auto& scheme : {"http://"_L1, "https://"_L1})
    if (key.startsWith(scheme))
      key.remove(0, scheme.size());
  while (key.endsWith(u'/') || key.endsWith(u'#'))
    key.chop(1);
  return find(Vocabularies, key);
}

FeedVocabulary vocabularyOfPrefix(QStringView prefix) {
  return find(Prefixes, prefix);
}

FeedElement feedElement(QStringView localName) {
  if (localName.size() > LongestName)
    return FeedElement::Unknown;
  std::array<char16_t, LongestName> lower;
  std::transform(localName.begin(), localName.end(), lower.begin(), [](QChar c) {
    return static_cast<char16_t>(c >= u'A' && c <= u'Z' ? c.unicode() | 0x20 : c.unicode());
  });
  const std::u16string_view key(lower.data(), static_cast<std::size_t>(localName.size()));
  const auto found = std::lower_bound(
      Elements.begin(), Elements.end(), key,
      [](const Named<FeedElement>& row, std::u16string_view name) { return row.first < name; });
  return found == Elements.end() || found->first != key ? FeedElement::Unknown : found->second;
}

} // namespace zq::app
