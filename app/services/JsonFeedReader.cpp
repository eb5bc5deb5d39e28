#include "app/services/JsonFeedReader.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
constexpr qsizetype BytesPerUnit = 3;

// Ranks of pictures of the feed.
enum FeedPicture { Favicon = 1, Icon };
// Ranks of what stands for a missing title.
enum Description { HtmlContent = 1, Summary, TextContent };
} // namespace

JsonFeedReader::JsonFeedReader(const QUrl& base, FeedBuilder& builder, int deepest)
    : base_(base), builder_(builder), tokenizer_(*this, deepest, LongestField * BytesPerUnit) {}

void JsonFeedReader::add(QByteArrayView text) {
  if (error_.isEmpty())
    tokenizer_.add(text);
}

void JsonFeedReader::beginObject() {
  const Scope parent = scopes_.empty() ? Scope::Root : scopes_.back();
  Scope scope = Scope::Skipped;
  if (scopes_.empty()) {
    scope = Scope::Root;
  } else if (parent == Scope::Items) {
    scope = Scope::Item;
    isDone_ = !builder_.wantsItem();
    draft_ = {};
    descriptionRank_ = 0;
  } else if (parent == Scope::Attachments) {
    scope = Scope::Attachment;
    attachment_.clear();
    attachmentIsPicture_ = false;
  }
  scopes_.push_back(scope);
}

void JsonFeedReader::endObject() {
  const Scope scope = scopes_.back();
  scopes_.pop_back();
  if (scope == Scope::Item)
    builder_.addItem(draft_);
  else if (scope == Scope::Attachment && attachmentIsPicture_)
    draft_.offerPicture(attachment_, PictureSource::Enclosure);
  if (!scopes_.empty())
    return;
  isDone_ = true;
  if (builder_.feed().format.isEmpty()) {
    error_ = u"not a feed: JSON without the version of JSON Feed"_s;
    builder_.feed() = {};
  }
}

void JsonFeedReader::beginList() {
  const Scope parent = scopes_.empty() ? Scope::Skipped : scopes_.back();
  Scope scope = Scope::Skipped;
  if (parent == Scope::Root && name_ == "items"_L1)
    scope = Scope::Items;
  else if (parent == Scope::Item && name_ == "attachments"_L1)
    scope = Scope::Attachments;
  scopes_.push_back(scope);
}

void JsonFeedReader::text(const QString& text) {
  const Scope scope = scopes_.empty() ? Scope::Skipped : scopes_.back();
  if (scope == Scope::Root)
    readFeedText(text);
  else if (scope == Scope::Item)
    readItemText(text);
  else if (scope == Scope::Attachment && name_ == "url"_L1)
    attachment_ = address(text);
  else if (scope == Scope::Attachment && name_ == "mime_type"_L1)
    attachmentIsPicture_ = text.startsWith("image/"_L1, Qt::CaseInsensitive);
}

void JsonFeedReader::readFeedText(const QString& text) {
  if (name_ == "version"_L1)
    readVersion(text);
  else if (name_ == "title"_L1)
    builder_.setTitle({text, FeedTextKind::Plain});
  else if (name_ == "home_page_url"_L1)
    builder_.feed().link = address(text);
  else if (name_ == "icon"_L1)
    builder_.offerPicture(address(text), Icon);
  else if (name_ == "favicon"_L1)
    builder_.offerPicture(address(text), Favicon);
}

void JsonFeedReader::readVersion(const QString& text) {
  constexpr QLatin1StringView Start("jsonfeed.org/version/");
  const qsizetype place = text.indexOf(Start, 0, Qt::CaseInsensitive);
  if (place < 0)
    return;
  const QString number = text.mid(place + Start.size());
  builder_.feed().format =
      u"JSON Feed "_s + (number == "1.1"_L1 || number == "1.1/"_L1 ? u"1.1"_s : u"1.0"_s);
}

void JsonFeedReader::readItemText(const QString& text) {
  const auto describe = [&](int rank, FeedTextKind kind) {
    if (rank <= descriptionRank_ || text.trimmed().isEmpty())
      return;
    draft_.description = {text, kind};
    descriptionRank_ = rank;
  };
  if (name_ == "id"_L1)
    draft_.identity = text;
  else if (name_ == "url"_L1)
    draft_.link = address(text);
  else if (name_ == "external_url"_L1)
    draft_.permanentLink = address(text);
  else if (name_ == "title"_L1)
    draft_.title = {text, FeedTextKind::Plain};
  else if (name_ == "content_text"_L1)
    describe(TextContent, FeedTextKind::Plain);
  else if (name_ == "summary"_L1)
    describe(Summary, FeedTextKind::Plain);
  else if (name_ == "content_html"_L1)
    describe(HtmlContent, FeedTextKind::Html);
  else if (name_ == "image"_L1)
    draft_.offerPicture(address(text), PictureSource::Thumbnail);
  else if (name_ == "banner_image"_L1)
    draft_.offerPicture(address(text), PictureSource::Media);
  else if (name_ == "date_published"_L1)
    draft_.offerDate(text, DateSource::Published);
  else if (name_ == "date_modified"_L1)
    draft_.offerDate(text, DateSource::Changed);
}

} // namespace zq::app
