// Byte strings under keys in a folder of limited size, shared by threads and by processes.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QUrl>

#include <initializer_list>
#include <memory>
#include <mutex>
#include <optional>

class QNetworkDiskCache;

namespace zq::platform {

// Keeps each value in a file of its own under `directory`/http-1. Writing replaces a file whole,
// and each file begins with a digest of its key and value: what another process, a full disk or a
// foreign hand leaves behind is read whole or not at all, never wrong. When the files of this store
// exceed the limit, the oldest go until nine tenths remain; other processes on the same folder
// count for themselves, so that the folder may exceed it by what they add.
//
// A folder that cannot be written is logged once; values are read from it where there are any.
//
// Thread: any.
class HTTPCacheStore {
 public:
  // `maximumBytes` limits the files' total size.
  HTTPCacheStore(const QString& directory, qint64 maximumBytes);
  ~HTTPCacheStore();

  qint64 maximumBytes() const { return maximumBytes_; }

  // The value under `key`, or nothing, also where its file is damaged; that one is removed. Keys
  // that differ in the fragment or the password only are the same. Meant for values that may be in
  // memory as a whole.
  std::optional<QByteArray> read(const QUrl& key);

  // Puts the joined `parts` under `key`; returns whether they could be written.
  bool write(const QUrl& key, std::initializer_list<QByteArrayView> parts);

  void remove(const QUrl& key);
  void removeAll();

 private:
  void open();
  bool prepareToWrite();
  void reportUnwritable();

  const QString directory_;
  const qint64 maximumBytes_;
  std::mutex mutex_;
  std::unique_ptr<QNetworkDiskCache> files_; // protected by mutex_
  bool unwritable_ = false;                  // protected by mutex_
};

// The store of the process's cache; null when it keeps nothing, which costs one atomic read.
std::shared_ptr<HTTPCacheStore> sharedHTTPCacheStore();

} // namespace zq::platform
