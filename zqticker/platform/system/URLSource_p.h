// Where the answer to one request comes from: the network, a file or the address itself.
#pragma once

#include "zqticker/platform/objects/Error.h"
#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/system/URLRequest.h"
#include "zqticker/platform/system/URLResponse.h"

#include <QtCore/QByteArrayView>

#include <memory>

namespace zq::platform {

// Hears of one answer: a response, its body in pieces, then the end or a failure.
//
// A source may call from inside a transfer library, or before startSource has returned. A client
// takes notes and acts on them later, from the event loop; meanwhile it must not destroy the
// source.
class URLSourceClient {
 public:
  virtual void sourceReceivedResponse(const Ref<URLResponse>& response) = 0;
  // Decoded bytes. False when no more are wanted: the source stops, and need not say so.
  virtual bool sourceReceivedData(QByteArrayView data) = 0;
  virtual void sourceFinished() = 0;
  virtual void sourceFailed(const Ref<Error>& error) = 0;

 protected:
  ~URLSourceClient() = default;
};

// One answer that is under way. Destroying it ends it, without a further call to its client.
class URLSource {
 public:
  URLSource() = default;
  URLSource(const URLSource&) = delete;
  URLSource& operator=(const URLSource&) = delete;
  virtual ~URLSource();
};

// A request as it goes to its source.
struct SourceRequest {
  Ref<URLRequest> request;
  // Fields that are added to the header of an HTTP request.
  HTTPHeaderFields additionalHeaderFields;
};

// Decides where the answer comes from, and starts it; `client` outlives what is returned. Null
// where nothing is left to do: all was told to the client at once, a failure among it.
std::unique_ptr<URLSource> startSource(const SourceRequest& request, URLSourceClient& client);

// Tells `client` of a failure to load `url`.
void failSource(URLSourceClient& client, int code, const QString& text, const QUrl& url);

} // namespace zq::platform
