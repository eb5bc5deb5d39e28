// One stored response: its head, its body in parts, and how both are written and read.
//
// The store holds the head under the address, and a body of more than one part under names that no
// other body ever has. So a body is written and read in steps of bounded size, a refreshed head
// costs no copy of its body, and parts of two versions never mix.
#pragma once

#include "zqticker/platform/system/HTTPCacheStore_p.h"
#include "zqticker/platform/system/http_freshness_p.h"

#include <memory>

namespace zq::platform {

struct HTTPCacheEntry {
  // Bytes in each part of a body but the last.
  static constexpr qint64 partLength = 256 * 1024;
  // A body may take up to this part of the store.
  static constexpr qint64 shareOfStore = 8;

  HTTPStoredResponse response;
  qint64 bodyLength = 0;
  QByteArray body;     // the whole body where it is one part
  QByteArray bodyName; // of the parts elsewhere; empty where `body` is the whole

  qint64 partCount() const { return (bodyLength + partLength - 1) / partLength; }

  // The head as it is stored, without `body`, and the way back; nothing for anything else.
  QByteArray encodedHead() const;
  static std::optional<HTTPCacheEntry> decoded(const QByteArray& value);

  // Removes what the store has for `url`.
  static void remove(HTTPCacheStore& store, const QUrl& url);
};

// Reads the entry of one address. Thread: one at a time.
class HTTPCacheReader {
 public:
  // Null when there is no readable entry.
  static std::unique_ptr<HTTPCacheReader> open(std::shared_ptr<HTTPCacheStore> store,
                                               const QUrl& url);

  const HTTPStoredResponse& response() const { return entry_.response; }
  qint64 bodyLength() const { return entry_.bodyLength; }

  // Checks that the next part of the body is there and whole; to be called until it says Complete.
  // A damaged entry is removed.
  enum class Check { More, Complete, Damaged };
  Check checkNextPart();

  // The next part of the body, from its beginning; empty at the end. Nothing when it has gone or
  // has been damaged since it was checked.
  std::optional<QByteArray> readNextPart();

  // Whether readNextPart has read, or missed, the last part.
  bool isAtEnd() const { return readParts_ == entry_.partCount(); }

  // Puts `response` in the place of the stored one, with the same body.
  void refresh(const HTTPStoredResponse& response);

 private:
  HTTPCacheReader(std::shared_ptr<HTTPCacheStore> store, const QUrl& url, HTTPCacheEntry entry);
  std::optional<QByteArray> part(qint64 index);

  std::shared_ptr<HTTPCacheStore> store_;
  QUrl url_;
  HTTPCacheEntry entry_;
  qint64 checkedParts_ = 0;
  qint64 readParts_ = 0;
};

// Writes the entry of one address; what is not finished is not kept. Thread: one at a time.
class HTTPCacheWriter {
 public:
  HTTPCacheWriter(std::shared_ptr<HTTPCacheStore> store, const QUrl& url,
                  HTTPStoredResponse response);
  ~HTTPCacheWriter();
  HTTPCacheWriter(const HTTPCacheWriter&) = delete;
  HTTPCacheWriter& operator=(const HTTPCacheWriter&) = delete;

  // Whether a body of `length` bytes, -1 for an unknown number, may be stored.
  static bool accepts(const HTTPCacheStore& store, qint64 length);

  // Adds the next bytes of the body. Returns false, and has given up, when the body has become
  // too large or the store takes nothing.
  bool append(QByteArrayView data);

  // The body is complete: the entry takes the place of the one before. Returns whether it did.
  bool finish();

 private:
  bool writePart();
  void discard();

  std::shared_ptr<HTTPCacheStore> store_;
  QUrl url_;
  HTTPCacheEntry entry_;
  qint64 writtenParts_ = 0;
  bool failed_ = false;
};

} // namespace zq::platform
