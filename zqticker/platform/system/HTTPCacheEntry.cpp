#include "zqticker/platform/system/HTTPCacheEntry_p.h"

#include <QtCore/QDataStream>
#include <QtCore/QIODevice>
#include <QtCore/QUuid>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

// "ZQH1": the digit changes with the order of fields below, and older entries are misses.
constexpr quint32 headMark = 0x5A514831;
constexpr quint32 mostHeaderFields = 10'000;

QUrl partKey(const QByteArray& bodyName, qint64 index) {
  QUrl key;
  key.setScheme(u"zqticker-body"_s);
  key.setPath(u'/' + QString::fromLatin1(bodyName) + u'/' + QString::number(index));
  return key;
}

void removeParts(HTTPCacheStore& store, const QByteArray& bodyName, qint64 count) {
  for (qint64 i = 0; i < count; ++i)
    store.remove(partKey(bodyName, i));
}

std::optional<HTTPCacheEntry> readEntry(HTTPCacheStore& store, const QUrl& url) {
  const auto value = store.read(url);
  auto entry = value ? HTTPCacheEntry::decoded(*value) : std::nullopt;
  // Made under a larger limit: its parts are not worth looking for.
  if (entry && entry->bodyLength > store.maximumBytes())
    return std::nullopt;
  return entry;
}

void removeBody(HTTPCacheStore& store, const HTTPCacheEntry& entry) {
  if (!entry.bodyName.isEmpty())
    removeParts(store, entry.bodyName, entry.partCount());
}

} // namespace

QByteArray HTTPCacheEntry::encodedHead() const {
  QByteArray head;
  QDataStream stream(&head, QIODevice::WriteOnly);
  stream.setVersion(QDataStream::Qt_6_4);
  stream << headMark << qint32(response.statusCode) << response.requestTime << response.responseTime
         << bodyLength << bodyName << quint32(response.headerFields.size());
  for (const auto& [name, value] : response.headerFields)
    stream << name << value;
  return head;
}

std::optional<HTTPCacheEntry> HTTPCacheEntry::decoded(const QByteArray& value) {
  QDataStream stream(value);
  stream.setVersion(QDataStream::Qt_6_4);
  HTTPCacheEntry entry;
  quint32 mark = 0;
  qint32 statusCode = 0;
  quint32 fieldCount = 0;
  stream >> mark >> statusCode >> entry.response.requestTime >> entry.response.responseTime >>
      entry.bodyLength >> entry.bodyName >> fieldCount;
  if (stream.status() != QDataStream::Ok || mark != headMark || fieldCount > mostHeaderFields)
    return std::nullopt;
  entry.response.statusCode = statusCode;
  for (quint32 i = 0; i < fieldCount && stream.status() == QDataStream::Ok; ++i) {
    QString name;
    QString text;
    stream >> name >> text;
    entry.response.headerFields.append({name, text});
  }
  if (stream.status() != QDataStream::Ok || entry.bodyLength < 0)
    return std::nullopt;
  entry.body = value.sliced(stream.device()->pos());
  if (entry.body.size() != (entry.bodyName.isEmpty() ? entry.bodyLength : 0))
    return std::nullopt;
  return entry;
}

void HTTPCacheEntry::remove(HTTPCacheStore& store, const QUrl& url) {
  if (const auto entry = readEntry(store, url))
    removeBody(store, *entry);
  store.remove(url);
}

std::unique_ptr<HTTPCacheReader> HTTPCacheReader::open(std::shared_ptr<HTTPCacheStore> store,
                                                       const QUrl& url) {
  auto entry = readEntry(*store, url);
  if (!entry)
    return nullptr;
  return std::unique_ptr<HTTPCacheReader>(
      new HTTPCacheReader(std::move(store), url, std::move(*entry)));
}

HTTPCacheReader::HTTPCacheReader(std::shared_ptr<HTTPCacheStore> store, const QUrl& url,
                                 HTTPCacheEntry entry)
    : store_(std::move(store)), url_(url), entry_(std::move(entry)) {}

std::optional<QByteArray> HTTPCacheReader::part(qint64 index) {
  const qint64 length =
      std::min(entry_.bodyLength - index * HTTPCacheEntry::partLength, HTTPCacheEntry::partLength);
  auto value = store_->read(partKey(entry_.bodyName, index));
  return value && value->size() == length ? value : std::nullopt;
}

HTTPCacheReader::Check HTTPCacheReader::checkNextPart() {
  // A body in the head was read, and checked, together with it.
  if (entry_.bodyName.isEmpty() || checkedParts_ == entry_.partCount())
    return Check::Complete;
  if (!part(checkedParts_)) {
    HTTPCacheEntry::remove(*store_, url_);
    return Check::Damaged;
  }
  ++checkedParts_;
  return checkedParts_ == entry_.partCount() ? Check::Complete : Check::More;
}

std::optional<QByteArray> HTTPCacheReader::readNextPart() {
  if (isAtEnd())
    return QByteArray();
  const qint64 index = readParts_++;
  return entry_.bodyName.isEmpty() ? entry_.body : part(index);
}

void HTTPCacheReader::refresh(const HTTPStoredResponse& response) {
  entry_.response = response;
  store_->write(url_, {entry_.encodedHead(), entry_.body});
}

HTTPCacheWriter::HTTPCacheWriter(std::shared_ptr<HTTPCacheStore> store, const QUrl& url,
                                 HTTPStoredResponse response)
    : store_(std::move(store)), url_(url) {
  entry_.response = std::move(response);
}

HTTPCacheWriter::~HTTPCacheWriter() {
  discard();
}

bool HTTPCacheWriter::accepts(const HTTPCacheStore& store, qint64 length) {
  return length <= store.maximumBytes() / HTTPCacheEntry::shareOfStore;
}

bool HTTPCacheWriter::append(QByteArrayView data) {
  failed_ = failed_ || !accepts(*store_, entry_.bodyLength + data.size());
  while (!failed_ && !data.isEmpty()) {
    if (entry_.body.size() == HTTPCacheEntry::partLength && !writePart())
      break;
    const qsizetype taken =
        std::min<qsizetype>(HTTPCacheEntry::partLength - entry_.body.size(), data.size());
    entry_.body.append(data.first(taken));
    entry_.bodyLength += taken;
    data = data.sliced(taken);
  }
  if (failed_)
    discard();
  return !failed_;
}

bool HTTPCacheWriter::writePart() {
  if (entry_.bodyName.isEmpty())
    entry_.bodyName = QUuid::createUuid().toByteArray(QUuid::Id128);
  failed_ = !store_->write(partKey(entry_.bodyName, writtenParts_), {entry_.body});
  writtenParts_ += failed_ ? 0 : 1;
  entry_.body.resize(0); // keeps its memory for the next part
  return !failed_;
}

bool HTTPCacheWriter::finish() {
  // More than one part: the last one is stored like the others.
  if (failed_ || (writtenParts_ > 0 && !writePart()))
    return false;
  const auto before = readEntry(*store_, url_);
  if (!store_->write(url_, {entry_.encodedHead(), entry_.body}))
    return false;
  writtenParts_ = 0;
  if (before)
    removeBody(*store_, *before);
  return true;
}

void HTTPCacheWriter::discard() {
  removeParts(*store_, entry_.bodyName, writtenParts_);
  writtenParts_ = 0;
  entry_.body = QByteArray();
}

} // namespace zq::platform
