// The cache's part in loading one address once.
#pragma once

#include "zqticker/platform/system/HTTPCacheEntry_p.h"
#include "zqticker/platform/system/URLRequest.h"

#include <QtCore/QByteArrayView>

#include <memory>

namespace zq::platform {

// Decides by policy, age and answer whether a load is served from the store, and stores what comes
// from the network. Made for each address, anew after a redirect:
//
//   begin → prepare, until it no longer says Checking
//     UseStored → stored(), readNextPart() …
//     Load      → requestFields() go with the request, then receivedResponse
//                   Deliver   → received(bytes) …, finished()
//                   UseStored → as above; what else the answer brings is dropped
//                   LoadAgain → the request once more, without conditions
//     Missing   → the load fails
//
// What does not get to finished() is not stored. Thread: that of the load.
class HTTPCacheLoad {
 public:
  enum class Plan { Checking, UseStored, Load, Missing };
  enum class Answer { Deliver, UseStored, LoadAgain };

  // Null when the cache has no part in the load: it keeps nothing, or `url` is neither http nor
  // https or holds a user name or a password. With ReturnCacheDataDontLoad, null means Missing.
  static std::unique_ptr<HTTPCacheLoad> begin(const QUrl& url, URLRequestCachePolicy policy);

  // Looks up and checks what is stored, a bounded piece in each call. Checking: not done yet.
  Plan prepare();

  // The conditions of the request that goes out now; empty when the whole answer is wanted.
  HTTPHeaderFields requestFields();

  // The head of the answer to the request of the last requestFields(). `announcedLength` is that of
  // the decoded body, -1 when unknown.
  Answer receivedResponse(int statusCode, const HTTPHeaderFields& headerFields,
                          qint64 announcedLength);

  // The next decoded bytes of the body that is delivered, and its complete end.
  void received(QByteArrayView data);
  void finished();

  // Whether the stored response stands in when the server cannot be reached: it is stale, and
  // allows it (stale-if-error).
  bool standsInOnError() const;

  // The stored response, once UseStored was answered or standsInOnError is true.
  const HTTPStoredResponse& stored() const { return reader_->response(); }
  qint64 storedLength() const { return reader_->bodyLength(); }

  // The next part of the stored body; empty where it has no bytes. Nothing when it has gone
  // meanwhile: another load or process has replaced it, or made room. The load begins again then,
  // from the network, or fails where the policy forbids that.
  std::optional<QByteArray> readNextPart();
  // Whether that was the last part.
  bool isStoredAtEnd() const { return reader_->isAtEnd(); }

 private:
  HTTPCacheLoad(std::shared_ptr<HTTPCacheStore> store, const QUrl& url,
                URLRequestCachePolicy policy);
  Plan plan() const;
  void storeRedirect(HTTPStoredResponse answer);

  std::shared_ptr<HTTPCacheStore> store_;
  QUrl url_;
  URLRequestCachePolicy policy_;
  qint64 requestTime_ = 0;
  bool lookedUp_ = false;
  bool conditional_ = false;                // the request under way bears conditions
  bool servedForLastTime_ = false;          // the stored response may not be kept any longer
  std::unique_ptr<HTTPCacheReader> reader_; // of an entry that can be of use
  std::unique_ptr<HTTPCacheWriter> writer_; // of the answer under way
};

} // namespace zq::platform
