#include "app/services/FeedParser.h"

#include <QtCore/QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
QUrl webAddress(const QUrl& base, const QString& text) {
  const QUrl url = base.resolved(QUrl(text.trimmed()));
  return url.isValid() && (url.scheme() == "http"_L1 || url.scheme() == "https"_L1) ? url : QUrl();
}
} // namespace

class FeedParser::Document {
 public:
  Document(QUrl base, FeedLimits limits) : base_(std::move(base)), limits_(limits) {}

  void read();
  void start();
  void end();
  void fail(const QString& text) { error = text; }

  Feed feed;
  QString error;
  QXmlStreamReader reader;
  qint64 bytes = 0;
  bool complete = false;
  bool further = false;
  const FeedLimits& limits() const { return limits_; }

 private:
  QUrl base_;
  FeedLimits limits_;
  QStringList path_;
  QString text_;
  FeedItem item_;
};

void FeedParser::Document::read() {
  while (error.isEmpty() && !complete && !reader.atEnd()) {
    switch (reader.readNext()) {
    case QXmlStreamReader::StartElement:
      start();
      break;
    case QXmlStreamReader::Characters:
      text_ += reader.text();
      break;
    case QXmlStreamReader::EndElement:
      end();
      break;
    case QXmlStreamReader::EndDocument:
      complete = true;
      break;
    default:
      break;
    }
  }
  if (reader.hasError() && reader.error() != QXmlStreamReader::PrematureEndOfDocumentError)
    fail(u"XML error in line %1: %2"_s.arg(reader.lineNumber()).arg(reader.errorString()));
}

void FeedParser::Document::start() {
  path_.append(reader.name().toString());
  text_.clear();
  if (path_.size() > limits_.depth)
    return fail(u"too deeply nested"_s);
  if (path_.size() == 1) {
    if (path_[0] != "rss"_L1)
      return fail(path_[0].compare("html"_L1, Qt::CaseInsensitive) == 0
                      ? u"not a feed: an HTML page"_s
                      : u"not a feed: XML of the kind <%1>"_s.arg(path_[0]));
    feed.format = u"RSS "_s + reader.attributes().value("version"_L1);
  }
  if (path_.last() == "item"_L1)
    item_ = {};
  if (path_.last() == "enclosure"_L1 &&
      reader.attributes().value("type"_L1).startsWith("image/"_L1))
    item_.picture = webAddress(base_, reader.attributes().value("url"_L1).toString());
}

void FeedParser::Document::end() {
  const QString name = path_.takeLast();
  const QString parent = path_.isEmpty() ? QString() : path_.last();
  const QString text = text_.simplified();
  text_.clear();
  if (parent == "item"_L1) {
    if (name == "title"_L1)
      item_.title = text;
    else if (name == "link"_L1)
      item_.link = webAddress(base_, text);
    else if (name == "guid"_L1)
      item_.identity = text;
    else if (name == "pubDate"_L1)
      if (const QDateTime date = QDateTime::fromString(text, Qt::RFC2822Date); date.isValid())
        item_.published = date.toUTC();
  } else if (parent == "channel"_L1) {
    if (name == "title"_L1)
      feed.title = text;
    else if (name == "link"_L1)
      feed.link = webAddress(base_, text);
    else if (name == "ttl"_L1 && text.toInt() > 0)
      feed.timeToLive = std::chrono::minutes(text.toInt());
  } else if (parent == "image"_L1 && name == "url"_L1) {
    feed.picture = webAddress(base_, text);
  }
  if (name != "item"_L1)
    return;
  if (item_.identity.isEmpty())
    item_.identity = item_.link.toString() + u'\n' + item_.title;
  if (feed.items.size() < limits_.items)
    feed.items.push_back(item_);
  else
    further = complete = true;
}

FeedParser::FeedParser(QUrl base, QString, FeedLimits limits)
    : document_(std::make_unique<Document>(std::move(base), limits)) {}

FeedParser::~FeedParser() = default;

bool FeedParser::addData(QByteArrayView data) {
  Document& document = *document_;
  if (!document.error.isEmpty() || document.complete)
    return document.error.isEmpty();
  document.bytes += data.size();
  if (document.bytes > document.limits().bytes)
    document.fail(u"larger than the limit of %1 bytes"_s.arg(document.limits().bytes));
  else
    document.reader.addData(data.toByteArray());
  document.read();
  return document.error.isEmpty();
}

bool FeedParser::finish() {
  Document& document = *document_;
  if (document.error.isEmpty() && !document.complete)
    document.fail(document.bytes == 0 ? u"an empty document"_s
                                      : u"XML error in line %1: the document ends early"_s.arg(
                                            document.reader.lineNumber()));
  return document.error.isEmpty();
}

const Feed& FeedParser::feed() const {
  return document_->feed;
}

const QString& FeedParser::errorText() const {
  return document_->error;
}

bool FeedParser::isComplete() const {
  return document_->complete;
}

bool FeedParser::hasFurtherItems() const {
  return document_->further;
}

QStringList FeedParser::warnings() const {
  return {};
}

} // namespace zq::app
