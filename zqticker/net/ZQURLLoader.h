// Loads the contents of a URL and hands them to a target.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Selector.h"
#include "zqticker/platform/objects/Target.h"
#include "zqticker/platform/objects/Weak.h"
#include "zqticker/platform/system/URLConnection.h"
#include "zqticker/platform/system/URLRequest.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QByteArray>
#include <QtCore/QUrl>
#include <QtCore/QVariantMap>

class ZQURLLoader;

// Hears how far a load has come. Everything arrives on the thread that called `load`.
class ZQTICKER_EXPORT ZQURLLoaderDelegate : public zq::platform::WeakReferenced {
 public:
  ~ZQURLLoaderDelegate() override;

  // A response has arrived; `length` is what it says of the body in bytes, -1 when unknown. Comes
  // again with each response. Optional: false, the default, says "not answered".
  // Operation: loader:willReceiveDataOfLength:
  virtual bool loaderWillReceiveDataOfLength(ZQURLLoader& loader, qint64 length);

  // Bytes have arrived; `total` counts all of the body so far, not only the last piece. Required,
  // unlike the operation before: it is sent without asking whether it is answered.
  // Operation: loader:didReceiveDataOfLength:
  virtual void loaderDidReceiveDataOfLength(ZQURLLoader& loader, qint64 total) = 0;
};

// Downloads one URL and calls its target once, with the whole body or without, and with a context:
//
//     ZQURLLoader::loaderWithURL(url, this, &Reader::loaded)->load();
//     …
//     void Reader::loaded(const std::optional<QByteArray>& data, const QVariantMap& context);
//
// The first argument is the body as a QByteArray (an empty body is an empty one), or the invalid
// QVariant after a failure, also when a part of the body had arrived. The page of an HTTP error is
// a body like any other; the response in the context tells. Keys of the context:
//
//   "ZQURLLoader"  the loader
//   "userInfo"     what the caller gave, when it gave something
//   "response"     a Ref<URLResponse>, once one has arrived; the last one
//   "error"        a Ref<Error>, after a failure
//
// The caller need not keep the loader: it keeps itself alive from its initialisation until its
// completion call, and then until control is back in the event loop that is running; its `context`
// is emptied at that moment. A context that the target has kept holds the loader as long as it
// stands. A loader that never completes, because it was never loaded, made no request or was
// cancelled by its connection, is never destroyed.
//
// Target and delegate are not owned; one that has gone is not called.
//
// Thread: one loader belongs to the thread that calls `load`, which needs a running event loop.
class ZQTICKER_EXPORT ZQURLLoader : public zq::platform::Object,
                                    public zq::platform::URLConnectionDelegate {
  Q_GADGET
  ZQ_OBJECT

 public:
  // A loader without address, target or context, which only its owner keeps; for subclasses, before
  // initWithURL.
  ZQURLLoader();
  ~ZQURLLoader() override;
  ZQURLLoader& operator=(const ZQURLLoader&) = delete;

  // A new loader; nothing is loaded yet. `selector` names what `target` is sent in the end. An
  // invalid `userInfo` is none.
  static zq::platform::Ref<ZQURLLoader> loaderWithURL(const QUrl& URL,
                                                      const zq::platform::Target& target,
                                                      const zq::platform::Selector& selector,
                                                      const zq::platform::Any& userInfo = {});

  // Initialises a new loader that a Ref holds, and lets it keep itself alive from now on. Once
  // only.
  void initWithURL(const QUrl& URL, const zq::platform::Target& target,
                   const zq::platform::Selector& selector, const zq::platform::Any& userInfo = {});

  // Starts to load with the protocol's caching and a time-out of 60 seconds. An address of which no
  // request can be made (empty or invalid) starts nothing, and the target is never called.
  //
  // Load once. A second load replaces `request` and `connection` but does not end the first: both
  // fill the same buffer and context, and the target is called for whichever ends first.
  void load();

  // The same with another cache policy and a time-out in seconds of idleness.
  void loadWithCachePolicy(zq::platform::URLRequestCachePolicy cachePolicy, double timeoutInterval);

  // The body so far.
  const QByteArray& receivedData() const { return receivedData_; }
  void setReceivedData(const QByteArray& receivedData);

  // Of the last load; null before.
  const zq::platform::Ref<zq::platform::URLRequest>& request() const { return request_; }
  void setRequest(const zq::platform::Ref<zq::platform::URLRequest>& request);
  const zq::platform::Ref<zq::platform::URLConnection>& connection() const { return connection_; }
  void setConnection(const zq::platform::Ref<zq::platform::URLConnection>& connection);

  // What the target will get.
  const QVariantMap& context() const { return context_; }
  void setContext(QVariantMap context);

  // The address; a change counts for later loads.
  const QUrl& URL() const { return url_; }
  void setURL(const QUrl& URL);

  const zq::platform::Target& target() const { return target_; }
  void setTarget(const zq::platform::Target& target) { target_ = target; }
  const zq::platform::Selector& selector() const { return selector_; }
  void setSelector(const zq::platform::Selector& selector) { selector_ = selector; }
  // Null once it has gone.
  ZQURLLoaderDelegate* delegate() const { return delegate_.get(); }
  void setDelegate(zq::platform::Weak<ZQURLLoaderDelegate> delegate) { delegate_ = delegate; }

  // What the connection says. Called directly, the completion (the last two) passes on what the
  // target raises, and UnrecognizedSelectorException where the target does not know the selector;
  // the loader is let go of all the same. A second completion does nothing.
  //
  // Stores the response in the context, and empties the buffer, so that only the body of the last
  // response is delivered.
  // Operation: connection:didReceiveResponse:
  void connectionDidReceiveResponse(
      zq::platform::URLConnection& connection,
      const zq::platform::Ref<zq::platform::URLResponse>& response) override;
  // Every redirect is followed: returns `request` itself.
  // Operation: connection:willSendRequest:redirectResponse:
  zq::platform::Ref<zq::platform::URLRequest> connectionWillSendRequest(
      zq::platform::URLConnection& connection,
      const zq::platform::Ref<zq::platform::URLRequest>& request,
      const zq::platform::Ref<zq::platform::URLResponse>& redirectResponse) override;
  // Operation: connection:didReceiveData:
  void connectionDidReceiveData(zq::platform::URLConnection& connection,
                                QByteArrayView data) override;
  // Operation: connection:didFailWithError:
  void connectionDidFailWithError(zq::platform::URLConnection& connection,
                                  const zq::platform::Ref<zq::platform::Error>& error) override;
  void connectionDidFinishLoading(zq::platform::URLConnection& connection) override;

 private:
  void loadRequest(const zq::platform::Ref<zq::platform::URLRequest>& request);
  void complete(const zq::platform::Any& data);

  QByteArray receivedData_;
  zq::platform::Ref<zq::platform::URLRequest> request_;
  zq::platform::Ref<zq::platform::URLConnection> connection_;
  QVariantMap context_;
  QUrl url_;
  zq::platform::Target target_;
  zq::platform::Selector selector_;
  zq::platform::Weak<ZQURLLoaderDelegate> delegate_;
  bool isCompleted_ = false;
};
