#include "app/services/XmlFeedReader.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// Every element is looked for in them.
constexpr std::size_t MostNamespaces = 128;

// Ranks of pictures of the feed.
enum ChannelPicture { Itunes = 1, Logo, Icon };

std::chrono::seconds periodOf(const QString& word) {
  using std::chrono::hours;
  if (word == "hourly"_L1)
    return hours(1);
  if (word == "weekly"_L1)
    return hours(24 * 7);
  if (word == "monthly"_L1)
    return hours(24 * 30);
  if (word == "yearly"_L1)
    return hours(24 * 365);
  return word == "daily"_L1 ? hours(24) : hours(0);
}

bool isPictureType(QStringView type) {
  return type.startsWith("image/"_L1, Qt::CaseInsensitive);
}

// Whether an address ends as those of pictures do; for attachments without a type.
bool namesPicture(QStringView address) {
  const qsizetype query = address.indexOf(u'?');
  const QStringView path = query < 0 ? address : address.left(query);
  for (const auto& suffix : {".jpg"_L1, ".jpeg"_L1, ".png"_L1, ".gif"_L1, ".webp"_L1, ".avif"_L1})
    if (path.endsWith(suffix, Qt::CaseInsensitive))
      return true;
  return false;
}

// "2.0" of a version; nothing where it is no number.
QString versionNumber(QStringView version) {
  constexpr qsizetype Longest = 8;
  version = version.trimmed();
  for (const QChar c : version)
    if (!((c >= u'0' && c <= u'9') || c == u'.'))
      return {};
  return version.left(Longest).toString();
}
} // namespace

XmlFeedReader::XmlFeedReader(const QUrl& base, FeedBuilder& builder, int deepest)
    : builder_(builder), deepest_(static_cast<std::size_t>(deepest)), bases_{base} {
  // Text, even if empty, settles the encoding: what follows is UTF-8 whatever it says of itself.
  reader_.addData(QString());
  reader_.setNamespaceProcessing(false);
}

void XmlFeedReader::add(const QByteArray& text) {
  if (text.isEmpty() || isDone_ || !error_.isEmpty())
    return;
  reader_.addData(text);
  while (!isDone_ && error_.isEmpty()) {
    switch (reader_.readNext()) {
    case QXmlStreamReader::StartElement:
      start();
      break;
    case QXmlStreamReader::EndElement:
      end();
      break;
    case QXmlStreamReader::Characters:
      if (isCollecting_)
        text_.text += reader_.text().left(LongestField - text_.text.size());
      break;
    case QXmlStreamReader::Invalid:
      if (reader_.error() != QXmlStreamReader::PrematureEndOfDocumentError)
        failAsReader();
      return;
    default:
      break;
    }
  }
}

void XmlFeedReader::start() {
  if (levels_.size() == deepest_)
    return fail(u"too deeply nested: more than %1 levels"_s.arg(deepest_));
  Level level;
  const Scope parent = levels_.empty() ? Scope::Rss : levels_.back().scope;
  if (parent == Scope::Text || parent == Scope::Markup) {
    level.scope = Scope::Markup;
    if (partsWords(reader_.name()))
      text_.text += u' ';
  }
  if (parent == Scope::Text || parent == Scope::Markup || parent == Scope::Skipped) {
    levels_.push_back(level);
    return;
  }
  attributes_ = reader_.attributes();
  declare(level);
  const FeedVocabulary origin = vocabulary(reader_.prefix());
  const FeedElement element = feedElement(reader_.name());
  if (levels_.empty()) {
    level.scope = startRoot(element, origin);
  } else if (parent == Scope::Channel) {
    level.scope = startInChannel(element, origin);
  } else if (parent == Scope::Item) {
    level.scope = startInItem(element, origin);
  } else if (parent == Scope::ItemPart) {
    if (origin == FeedVocabulary::Media)
      level.scope = startMedia(element);
  } else if (isOfFormat(origin)) {
    level.scope = startBesideItems(parent, element);
  }
  levels_.push_back(level);
  // The reader copies what is shared with it before it reads the next ones.
  attributes_ = {};
}

// In RSS's and RDF's roots, and in images.
XmlFeedReader::Scope XmlFeedReader::startBesideItems(Scope parent, FeedElement element) {
  const bool isRoot = parent == Scope::Rss || parent == Scope::Rdf;
  if (isRoot && element == FeedElement::Item)
    return startItem();
  if (isRoot && element == FeedElement::Channel)
    return Scope::Channel;
  if (isRoot && element == FeedElement::Image)
    return Scope::ChannelImage;
  if (!isRoot && element == FeedElement::Url)
    return startText(parent == Scope::ItemImage ? Field::Image : Field::ChannelImage);
  return Scope::Skipped;
}

// Takes namespaces and the base from the attributes.
void XmlFeedReader::declare(Level& level) {
  for (const QXmlStreamAttribute& given : std::as_const(attributes_)) {
    const QStringView name = given.qualifiedName();
    if (name == "xml:base"_L1) {
      const QUrl base = bases_.back().resolved(QUrl(given.value().toString()));
      bases_.push_back(base.isValid() ? base : bases_.back());
      level.hasBase = true;
    } else if (name == "xmlns"_L1 || given.prefix() == "xmlns"_L1) {
      const QString prefix = name == "xmlns"_L1 ? QString() : given.name().toString();
      bindings_.push_back({prefix, feedVocabulary(given.value())});
      ++level.bindings;
    }
  }
  if (bindings_.size() > MostNamespaces)
    fail(u"more than %1 namespaces"_s.arg(MostNamespaces));
}

FeedVocabulary XmlFeedReader::vocabulary(QStringView prefix) const {
  for (auto binding = bindings_.rbegin(); binding != bindings_.rend(); ++binding)
    if (binding->prefix == prefix)
      return binding->vocabulary;
  return prefix.isEmpty() ? FeedVocabulary::None : vocabularyOfPrefix(prefix);
}

bool XmlFeedReader::isOfFormat(FeedVocabulary origin) const {
  return origin == FeedVocabulary::None ||
         origin == (isAtom_ ? FeedVocabulary::Atom : FeedVocabulary::Rss);
}

XmlFeedReader::Scope XmlFeedReader::startRoot(FeedElement element, FeedVocabulary origin) {
  QString& format = builder_.feed().format;
  // The children of a root in a foreign namespace are in it too; it is taken for the format's.
  const auto adopt = [this](FeedVocabulary vocabulary) {
    for (Binding& binding : bindings_)
      if (binding.prefix == reader_.prefix())
        binding.vocabulary = vocabulary;
  };
  switch (element) {
  case FeedElement::Feed: {
    isAtom_ = true;
    const QStringView version = attribute(u"version");
    format = !version.isEmpty() ? QString(u"Atom "_s + versionNumber(version)) : u"Atom 1.0"_s;
    adopt(FeedVocabulary::Atom);
    return Scope::Channel;
  }
  case FeedElement::Rss:
    format = QString(u"RSS "_s + versionNumber(attribute(u"version"))).trimmed();
    adopt(FeedVocabulary::Rss);
    return Scope::Rss;
  case FeedElement::Rdf:
    if (origin != FeedVocabulary::Rdf && origin != FeedVocabulary::None)
      break;
    format = u"RSS 1.0"_s;
    for (const QXmlStreamAttribute& given : std::as_const(attributes_))
      if (given.value().contains("/rdf/simple/0.9"_L1))
        format = u"RSS 0.90"_s;
    return Scope::Rdf;
  case FeedElement::Channel:
    format = u"RSS"_s;
    adopt(FeedVocabulary::Rss);
    return Scope::Channel;
  case FeedElement::Html:
    fail(u"not a feed: an HTML page"_s);
    return Scope::Skipped;
  default:
    break;
  }
  // Pages do not always begin with their root.
  for (const auto& name : {"head"_L1, "body"_L1, "meta"_L1, "script"_L1, "div"_L1, "p"_L1})
    if (reader_.name().compare(name, Qt::CaseInsensitive) == 0)
      fail(u"not a feed: an HTML page"_s);
  constexpr qsizetype LongestName = 40;
  fail(u"not a feed: XML of the kind <%1>"_s.arg(
      titleText(reader_.qualifiedName(), FeedTextKind::Plain, LongestName)));
  return Scope::Skipped;
}

XmlFeedReader::Scope XmlFeedReader::startInChannel(FeedElement element, FeedVocabulary origin) {
  if (origin == FeedVocabulary::Itunes && element == FeedElement::Image)
    builder_.offerPicture(address(attribute(u"href")), Itunes);
  if (origin == FeedVocabulary::Syndication && element == FeedElement::UpdatePeriod)
    return startText(Field::UpdatePeriod);
  if (origin == FeedVocabulary::Syndication && element == FeedElement::UpdateFrequency)
    return startText(Field::UpdateFrequency);
  if (!isOfFormat(origin) && origin != FeedVocabulary::Atom)
    return Scope::Skipped;
  switch (element) {
  case FeedElement::Item:
  case FeedElement::Entry:
    return startItem();
  case FeedElement::Title:
    return startConstruct(Field::ChannelTitle);
  case FeedElement::Link:
    if (!hasAddress(origin))
      return startText(Field::ChannelLink);
    readLink(builder_.feed().link);
    return Scope::Skipped;
  case FeedElement::Image:
    return Scope::ChannelImage;
  case FeedElement::Icon:
    return startText(Field::ChannelIcon);
  case FeedElement::Logo:
    return startText(Field::ChannelLogo);
  case FeedElement::Ttl:
    return startText(Field::TimeToLive);
  default:
    return Scope::Skipped;
  }
}

XmlFeedReader::Scope XmlFeedReader::startItem() {
  if (!builder_.wantsItem()) {
    isDone_ = true;
    return Scope::Skipped;
  }
  draft_ = {};
  // RSS 1.0 names its items so.
  for (const QXmlStreamAttribute& given : std::as_const(attributes_))
    if (given.name() == "about"_L1 && !given.prefix().isEmpty())
      draft_.identity = given.value().left(LongestField).toString();
  return Scope::Item;
}

XmlFeedReader::Scope XmlFeedReader::startInItem(FeedElement element, FeedVocabulary origin) {
  if (origin == FeedVocabulary::Media)
    return startMedia(element);
  if (origin == FeedVocabulary::Itunes && element == FeedElement::Image)
    draft_.offerPicture(address(attribute(u"href")), PictureSource::Image);
  if (origin == FeedVocabulary::Content && element == FeedElement::Encoded)
    return startDescription(element);
  const bool isDublinCore = origin == FeedVocabulary::DublinCore;
  if (!isDublinCore && origin != FeedVocabulary::Atom && !isOfFormat(origin))
    return Scope::Skipped;
  switch (element) {
  case FeedElement::Title:
    return isDublinCore ? startText(Field::Title) : startConstruct(Field::Title);
  case FeedElement::Link:
    if (!hasAddress(origin))
      return startText(Field::Link);
    readLink(draft_.link);
    return Scope::Skipped;
  case FeedElement::Guid:
    return startText(attribute(u"isPermaLink").compare("false"_L1, Qt::CaseInsensitive) == 0
                         ? Field::Identity
                         : Field::PermanentIdentity);
  case FeedElement::Id:
    return startText(isAtom_ ? Field::Identity : Field::OtherIdentity);
  case FeedElement::Identifier:
    return startText(Field::OtherIdentity);
  case FeedElement::Description:
  case FeedElement::Summary:
  case FeedElement::Content:
    return startDescription(element);
  case FeedElement::PubDate:
  case FeedElement::Published:
  case FeedElement::Issued:
  case FeedElement::Date:
    return startText(Field::PublishedDate);
  case FeedElement::Updated:
  case FeedElement::Modified:
    return startText(Field::ChangedDate);
  case FeedElement::Created:
    return startText(Field::CreatedDate);
  case FeedElement::Enclosure: {
    const QStringView type = attribute(u"type");
    if (isPictureType(type) || (type.isEmpty() && namesPicture(attribute(u"url"))))
      draft_.offerPicture(address(attribute(u"url")), PictureSource::Enclosure);
    return Scope::Skipped;
  }
  case FeedElement::Image:
    return Scope::ItemImage;
  default:
    return Scope::Skipped;
  }
}

XmlFeedReader::Scope XmlFeedReader::startMedia(FeedElement element) {
  const QStringView url = attribute(u"url");
  switch (element) {
  case FeedElement::Thumbnail:
    draft_.offerPicture(address(url), PictureSource::Thumbnail);
    return Scope::Skipped;
  case FeedElement::Content: {
    const QStringView medium = attribute(u"medium");
    const QStringView type = attribute(u"type");
    const bool says = !medium.isEmpty() || !type.isEmpty();
    if (says ? medium == "image"_L1 || isPictureType(type) : namesPicture(url))
      draft_.offerPicture(address(url), PictureSource::Media);
    return Scope::ItemPart;
  }
  case FeedElement::Group:
    return Scope::ItemPart;
  default:
    return Scope::Skipped;
  }
}

// Whether a link has its address in an attribute, as Atom's have, also by mistake elsewhere.
bool XmlFeedReader::hasAddress(FeedVocabulary origin) const {
  return isAtom_ || origin == FeedVocabulary::Atom || !attribute(u"href").isEmpty();
}

// Atom's link element. The first alternate that is a page counts.
void XmlFeedReader::readLink(QUrl& link) {
  const QStringView relation = attribute(u"rel");
  const QStringView type = attribute(u"type");
  const bool isAlternate = relation.isEmpty() || relation == "alternate"_L1;
  const bool isPage = type.isEmpty() || type.contains("html"_L1);
  if (isAlternate && isPage && link.isEmpty())
    link = address(attribute(u"href"));
  else if (isAlternate && levels_.back().scope == Scope::Item && draft_.permanentLink.isEmpty())
    draft_.permanentLink = address(attribute(u"href"));
  else if (relation == "enclosure"_L1 && isPictureType(type))
    draft_.offerPicture(address(attribute(u"href")), PictureSource::Enclosure);
}

XmlFeedReader::Scope XmlFeedReader::startText(Field field, FeedTextKind kind) {
  field_ = field;
  text_ = {{}, kind};
  isCollecting_ = true;
  return Scope::Text;
}

// Atom's text construct. In RSS there is no type, and markup is taken for such.
XmlFeedReader::Scope XmlFeedReader::startConstruct(Field field) {
  if (!isAtom_)
    return startText(field);
  const QStringView type = attribute(u"type").trimmed();
  const bool isHtml =
      type == "html"_L1 || type == "text/html"_L1 || attribute(u"mode") == "escaped"_L1;
  // Of xhtml the markup is elements, which are left out as they are read.
  return startText(field, isHtml ? FeedTextKind::Html : FeedTextKind::Plain);
}

XmlFeedReader::Scope XmlFeedReader::startDescription(FeedElement element) {
  // Most of a feed's bytes stand here, and are only wanted for items without a title.
  if (!draft_.title.isEmpty() || !draft_.description.isEmpty())
    return Scope::Skipped;
  const QStringView type = attribute(u"type");
  if (element == FeedElement::Content && type.contains(u'/') && !type.startsWith("text/"_L1))
    return Scope::Skipped;
  return startConstruct(Field::Description);
}

void XmlFeedReader::end() {
  const Level level = levels_.back();
  levels_.pop_back();
  if (level.scope == Scope::Text)
    endText();
  else if (level.scope == Scope::Markup && partsWords(reader_.name()))
    text_.text += u' ';
  else if (level.scope == Scope::Item)
    builder_.addItem(draft_);
  bindings_.resize(bindings_.size() - level.bindings);
  if (level.hasBase)
    bases_.pop_back();
  // What follows the root, if anything, is not the feed's.
  isDone_ = isDone_ || levels_.empty();
}

void XmlFeedReader::endText() {
  isCollecting_ = false;
  const QString text = text_.text.trimmed();
  switch (field_) {
  case Field::Title:
    if (draft_.title.isEmpty() && !text.isEmpty())
      draft_.title = text_;
    break;
  case Field::Link:
    if (draft_.link.isEmpty())
      draft_.link = address(text);
    break;
  case Field::PermanentIdentity:
    draft_.permanentLink = webAddress({}, text);
    draft_.identity = text;
    break;
  case Field::Identity:
    draft_.identity = text;
    break;
  case Field::OtherIdentity:
    if (draft_.identity.isEmpty())
      draft_.identity = text;
    break;
  case Field::Description:
    if (!text.isEmpty())
      draft_.description = text_;
    break;
  case Field::PublishedDate:
    draft_.offerDate(text, DateSource::Published);
    break;
  case Field::ChangedDate:
    draft_.offerDate(text, DateSource::Changed);
    break;
  case Field::CreatedDate:
    draft_.offerDate(text, DateSource::Created);
    break;
  case Field::Image:
    draft_.offerPicture(address(text), PictureSource::Image);
    break;
  default:
    endChannelText(text);
  }
}

void XmlFeedReader::endChannelText(const QString& text) {
  switch (field_) {
  case Field::ChannelTitle:
    builder_.setTitle(text_);
    break;
  case Field::ChannelLink:
    if (builder_.feed().link.isEmpty())
      builder_.feed().link = address(text);
    break;
  case Field::ChannelImage:
  case Field::ChannelLogo:
    builder_.offerPicture(address(text), Logo);
    break;
  case Field::ChannelIcon:
    builder_.offerPicture(address(text), Icon);
    break;
  case Field::TimeToLive:
    statedMinutes_ = text.toInt();
    break;
  case Field::UpdatePeriod:
    updatePeriod_ = periodOf(text.toLower());
    break;
  case Field::UpdateFrequency:
    updateFrequency_ = std::max(1, text.toInt());
    break;
  default:
    break;
  }
  updateTimeToLive();
}

// A time to live goes before a period of updates.
void XmlFeedReader::updateTimeToLive() {
  builder_.setTimeToLive(statedMinutes_ > 0 ? std::chrono::minutes(statedMinutes_)
                                            : updatePeriod_ / updateFrequency_);
}

QStringView XmlFeedReader::attribute(QStringView name) const {
  for (const QXmlStreamAttribute& given : attributes_)
    if (given.qualifiedName().compare(name, Qt::CaseInsensitive) == 0)
      return given.value();
  return {};
}

// The reader's own words, which may quote the document.
void XmlFeedReader::failAsReader() {
  QString words = titleText(reader_.errorString(), FeedTextKind::Plain);
  if (words.endsWith(u'.'))
    words.chop(1);
  fail(u"XML error in line %1: %2"_s.arg(line()).arg(words));
}

void XmlFeedReader::fail(const QString& error) {
  if (error_.isEmpty())
    error_ = error;
}

} // namespace zq::app
