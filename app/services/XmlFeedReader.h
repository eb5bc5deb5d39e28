// Feeds that are XML: RSS 0.9x, 1.0 and 2.0, Atom.
#pragma once

#include "app/services/FeedBuilder.h"
#include "app/services/feed_elements.h"

#include <QtCore/QXmlStreamReader>

#include <vector>

namespace zq::app {

// Reads XML in UTF-8 that has been mended (XmlMender), in pieces, into a builder.
//
// Namespaces are resolved here rather than by the reader, to which a prefix without a declaration
// is an error. Elements are known by their namespace; those of no namespace belong to the format,
// prefixes without a declaration mean what they mean by custom.
class XmlFeedReader {
 public:
  XmlFeedReader(const QUrl& base, FeedBuilder& builder, int deepest);

  // Reads on, as far as whole tokens go; without effect once it is done or has failed.
  void add(const QByteArray& text);

  // Whether the rest of the document does not matter: its root is closed, or there are enough
  // items.
  bool isDone() const { return isDone_; }
  // Empty, or what is wrong in one line.
  const QString& errorText() const { return error_; }
  // The line that has been read up to, from 1.
  qint64 line() const { return reader_.lineNumber(); }

 private:
  enum class Scope {
    Rss,
    Rdf,
    Channel,
    ChannelImage,
    Item,
    ItemPart, // media:group and media:content
    ItemImage,
    Text,   // of a field
    Markup, // inside such text
    Skipped,
  };
  enum class Field {
    ChannelTitle,
    ChannelLink,
    ChannelImage,
    ChannelIcon,
    ChannelLogo,
    TimeToLive,
    UpdatePeriod,
    UpdateFrequency,
    Title,
    Link,
    Identity,
    OtherIdentity,
    PermanentIdentity,
    Description,
    PublishedDate,
    ChangedDate,
    CreatedDate,
    Image,
  };
  // An open element, and what it added to what is in scope.
  struct Level {
    Scope scope = Scope::Skipped;
    quint16 bindings = 0;
    bool hasBase = false;
  };
  struct Binding {
    QString prefix;
    FeedVocabulary vocabulary;
  };

  void start();
  void end();
  void declare(Level& level);
  FeedVocabulary vocabulary(QStringView prefix) const;
  bool isOfFormat(FeedVocabulary vocabulary) const;

  Scope startRoot(FeedElement element, FeedVocabulary vocabulary);
  Scope startInChannel(FeedElement element, FeedVocabulary vocabulary);
  Scope startInItem(FeedElement element, FeedVocabulary vocabulary);
  Scope startBesideItems(Scope parent, FeedElement element);
  Scope startMedia(FeedElement element);
  Scope startItem();
  Scope startText(Field field, FeedTextKind kind = FeedTextKind::Html);
  Scope startConstruct(Field field);
  Scope startDescription(FeedElement element);
  bool hasAddress(FeedVocabulary vocabulary) const;
  void readLink(QUrl& link);

  void endText();
  void endChannelText(const QString& text);
  void updateTimeToLive();

  QStringView attribute(QStringView name) const;
  QUrl address(QStringView text) const { return webAddress(bases_.back(), text); }
  void failAsReader();
  void fail(const QString& error);

  QXmlStreamReader reader_;
  FeedBuilder& builder_;
  std::size_t deepest_;
  bool isDone_ = false;
  QString error_;

  std::vector<Level> levels_;
  std::vector<Binding> bindings_;
  std::vector<QUrl> bases_;
  QXmlStreamAttributes attributes_; // of the element that starts
  bool isAtom_ = false;

  Field field_ = Field::Title;
  FeedText text_;
  bool isCollecting_ = false;
  ItemDraft draft_;
  qint64 statedMinutes_ = 0;
  std::chrono::seconds updatePeriod_{0};
  int updateFrequency_ = 1;
};

} // namespace zq::app
