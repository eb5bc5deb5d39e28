#include "app/services/FeedParser.h"

#include "app/services/FeedDecoder.h"
#include "app/services/JsonFeedReader.h"
#include "app/services/XmlFeedReader.h"
#include "app/services/XmlMender.h"

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// The most that is decoded and mended at a time, so that a document that comes at once takes no
// more memory than one that comes in pieces.
constexpr qsizetype BytesPerPiece = 64 << 10;

// The media type without its parameters, in lower case.
QString mediaType(const QString& contentType) {
  return contentType.section(u';', 0, 0).trimmed().toLower();
}

QString charsetOf(const QString& contentType) {
  const QStringList parameters = contentType.split(u';').mid(1);
  for (const QString& parameter : parameters) {
    const QString name = parameter.section(u'=', 0, 0).trimmed();
    if (name.compare("charset"_L1, Qt::CaseInsensitive) == 0)
      return parameter.section(u'=', 1).remove(u'"').remove(u'\'').trimmed();
  }
  return {};
}

bool isFeedType(const QString& type) {
  static const QStringList types{u"text/xml"_s, u"application/xml"_s, u"application/json"_s};
  return types.contains(type) || type.endsWith("+xml"_L1) || type.endsWith("+json"_L1);
}

bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
} // namespace

class FeedParser::Document {
 public:
  Document(QUrl base, const QString& contentType, FeedLimits limits)
      : base_(std::move(base)), type_(mediaType(contentType)), limits_(limits),
        decoder_(charsetOf(contentType)), builder_(limits.items) {}

  void add(QByteArrayView data);
  void finish();

  const Feed& feed() const { return builder_.feed(); }
  const QString& error() const { return error_; }
  bool isDone() const { return isDone_; }
  bool hasFurtherItems() const { return builder_.hasFurtherItems(); }
  QStringList warnings() const;

 private:
  void read(const QByteArray& text);
  void begin(QByteArrayView text);
  void readXml(QByteArrayView text);
  void readJson(QByteArrayView text);
  QString endText() const;
  qint64 line() const { return xml_ ? xml_->line() : json_->line(); }

  QUrl base_;
  QString type_;
  FeedLimits limits_;
  qint64 bytes_ = 0;
  FeedDecoder decoder_;
  FeedBuilder builder_;
  XmlMender mender_;
  std::optional<XmlFeedReader> xml_;
  std::optional<JsonFeedReader> json_;
  // Before the first character; they count.
  QByteArray emptyLines_;
  bool isDone_ = false;
  QString error_;
};

void FeedParser::Document::add(QByteArrayView data) {
  const qint64 room = limits_.bytes - bytes_;
  const bool isTooLarge = data.size() > room;
  if (isTooLarge)
    data = data.first(room);
  bytes_ += data.size();
  while (!data.isEmpty() && error_.isEmpty() && !isDone_) {
    const QByteArrayView piece = data.first(std::min(data.size(), BytesPerPiece));
    read(decoder_.add(piece));
    data = data.sliced(piece.size());
  }
  if (isTooLarge && error_.isEmpty() && !isDone_)
    error_ = u"larger than the limit of %1 bytes"_s.arg(limits_.bytes);
}

void FeedParser::Document::finish() {
  if (!error_.isEmpty() || isDone_)
    return;
  read(decoder_.finish());
  if (error_.isEmpty() && !isDone_)
    error_ = endText();
}

// What is wrong with a document that ends here.
QString FeedParser::Document::endText() const {
  if (!xml_ && !json_)
    return u"an empty document"_s;
  if (builder_.feed().format.isEmpty() && xml_)
    return u"not a feed: XML without an element"_s;
  return u"%1 error in line %2: the document ends early"_s.arg(xml_ ? u"XML"_s : u"JSON"_s)
      .arg(line());
}

void FeedParser::Document::read(const QByteArray& text) {
  QByteArrayView rest(text);
  if (!xml_ && !json_) {
    constexpr QByteArrayView Mark("\xEF\xBB\xBF");
    while (!rest.isEmpty() && (isSpace(rest[0]) || rest.startsWith(Mark))) {
      if (rest[0] == '\n')
        emptyLines_ += '\n';
      rest = rest.sliced(isSpace(rest[0]) ? 1 : Mark.size());
    }
    if (rest.isEmpty())
      return;
    begin(rest);
  }
  if (xml_)
    readXml(rest);
  else if (json_)
    readJson(rest);
}

// Tells by its first character what the document is.
void FeedParser::Document::begin(QByteArrayView text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first == '<')
    xml_.emplace(base_, builder_, limits_.depth);
  else if (first == '{')
    json_.emplace(base_, builder_, limits_.depth);
  else if (first == '[')
    error_ = u"not a feed: a JSON list"_s;
  else if (first < 0x20 || text.startsWith("\xEF\xBF\xBD"))
    error_ = u"not a feed: binary data"_s;
  else
    error_ = u"not a feed: plain text"_s;
  if (xml_)
    xml_->add(emptyLines_);
  if (json_)
    json_->add(emptyLines_);
}

void FeedParser::Document::readXml(QByteArrayView text) {
  xml_->add(mender_.add(text));
  isDone_ = xml_->isDone();
  error_ = xml_->errorText();
  if (isDone_ || !error_.isEmpty())
    return;
  if (mender_.isPage())
    error_ = u"not a feed: an HTML page"_s;
  else if (!mender_.errorText().isEmpty())
    error_ = u"XML error in line %1: %2"_s.arg(line()).arg(mender_.errorText());
}

void FeedParser::Document::readJson(QByteArrayView text) {
  json_->add(text);
  isDone_ = json_->isDone();
  error_ = json_->errorText();
}

QStringList FeedParser::Document::warnings() const {
  QStringList lines;
  if (!type_.isEmpty() && !isFeedType(type_))
    lines.append(
        u"the content type is %1, not one of feeds"_s.arg(titleText(type_, FeedTextKind::Plain)));
  for (const QString& name : decoder_.unknownEncodings())
    lines.append(u"the encoding \"%1\" is unknown; %2 is taken"_s.arg(
        titleText(name, FeedTextKind::Plain), decoder_.encoding()));
  return lines + builder_.warnings();
}

FeedParser::FeedParser(QUrl base, QString contentType, FeedLimits limits)
    : document_(std::make_unique<Document>(std::move(base), contentType, limits)) {}

FeedParser::~FeedParser() = default;

bool FeedParser::addData(QByteArrayView data) {
  if (document_->error().isEmpty() && !document_->isDone())
    document_->add(data);
  return document_->error().isEmpty();
}

bool FeedParser::finish() {
  document_->finish();
  return document_->error().isEmpty();
}

const Feed& FeedParser::feed() const {
  return document_->feed();
}

const QString& FeedParser::errorText() const {
  return document_->error();
}

bool FeedParser::isComplete() const {
  return document_->isDone() && document_->error().isEmpty();
}

bool FeedParser::hasFurtherItems() const {
  return document_->hasFurtherItems();
}

QStringList FeedParser::warnings() const {
  return document_->warnings();
}

} // namespace zq::app
