#include "zqticker/platform/system/HTTPCacheStore_p.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QIODevice>
#include <QtCore/QLoggingCategory>
#include <QtNetwork/QNetworkDiskCache>

#include <new>

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {

Q_LOGGING_CATEGORY(log, "zqticker.net")

constexpr qsizetype digestLength = 20;

QUrl comparable(const QUrl& key) {
  return key.adjusted(QUrl::RemoveFragment | QUrl::RemovePassword);
}

QByteArray digestOf(const QUrl& key, std::initializer_list<QByteArrayView> parts) {
  QCryptographicHash hash(QCryptographicHash::Sha1);
  const QByteArray name = key.toEncoded();
  hash.addData(name);
  hash.addData(QByteArrayView("\0", 1));
  for (const QByteArrayView part : parts)
    hash.addData(part);
  return hash.result();
}

} // namespace

// A folder below the given one: the disk cache deletes by file name when it makes room, and must
// not meet the files of others.
HTTPCacheStore::HTTPCacheStore(const QString& directory, qint64 maximumBytes)
    : directory_(QDir(directory).absoluteFilePath(u"http-1"_s)), maximumBytes_(maximumBytes) {
  open();
}

HTTPCacheStore::~HTTPCacheStore() = default;

void HTTPCacheStore::open() {
  files_.reset();
  if (!QDir().mkpath(directory_)) {
    reportUnwritable();
    return;
  }
  files_ = std::make_unique<QNetworkDiskCache>();
  files_->setCacheDirectory(directory_);
  files_->setMaximumCacheSize(maximumBytes_); // may make room at once, so the folder comes first
}

std::optional<QByteArray> HTTPCacheStore::read(const QUrl& key) {
  const QUrl name = comparable(key);
  QByteArray value;
  const std::lock_guard lock(mutex_);
  if (!files_)
    return std::nullopt;
  try {
    const std::unique_ptr<QIODevice> device(files_->data(name));
    if (!device)
      return std::nullopt;
    value = device->readAll();
  } catch (const std::bad_alloc&) {
    // A damaged count in the file asks for more memory than there is.
    files_->remove(name);
    return std::nullopt;
  }
  const QByteArrayView rest = QByteArrayView(value).sliced(std::min(digestLength, value.size()));
  if (value.size() < digestLength || !value.startsWith(digestOf(name, {rest}))) {
    files_->remove(name);
    return std::nullopt;
  }
  value.remove(0, digestLength);
  return value;
}

bool HTTPCacheStore::prepareToWrite() {
  if (unwritable_)
    return false;
  // The folder may have been cleared away meanwhile, as people do with caches.
  if (!files_ || !QFileInfo::exists(directory_))
    open();
  if (files_ && QFileInfo(directory_).isWritable())
    return true;
  reportUnwritable();
  return false;
}

void HTTPCacheStore::reportUnwritable() {
  if (!unwritable_)
    qCWarning(log).noquote() << "The cache folder" << directory_ << "cannot be written";
  unwritable_ = true;
}

bool HTTPCacheStore::write(const QUrl& key, std::initializer_list<QByteArrayView> parts) {
  const QUrl name = comparable(key);
  const QByteArray digest = digestOf(name, parts);
  // The disk cache takes no entry without a header.
  QNetworkCacheMetaData metaData;
  metaData.setUrl(name);
  metaData.setSaveToDisk(true);
  metaData.setRawHeaders({{"Format", "1"}});
  const std::lock_guard lock(mutex_);
  if (!prepareToWrite())
    return false;
  QIODevice* device = files_->prepare(metaData);
  if (!device) {
    reportUnwritable();
    return false;
  }
  bool complete = device->write(digest) == digest.size();
  for (const QByteArrayView part : parts)
    complete = complete && device->write(part.data(), part.size()) == part.size();
  if (!complete) {
    files_->remove(name); // gives the device up as well
    return false;
  }
  files_->insert(device);
  return true;
}

void HTTPCacheStore::remove(const QUrl& key) {
  const std::lock_guard lock(mutex_);
  if (files_)
    files_->remove(comparable(key));
}

void HTTPCacheStore::removeAll() {
  const std::lock_guard lock(mutex_);
  if (files_)
    files_->clear();
}

} // namespace zq::platform
