// One load of a URL, under a limit of size.
#pragma once

#include "zqticker/net/ZQURLLoader.h"

#include <QtCore/QObject>

namespace zq::app {

// Loads through a ZQURLLoader, which gets the body as it is. A load that brings more bytes than it
// may ends in the middle; so does one whose object is destroyed. An HTTP error is a failure here.
//
// Thread: main.
class BoundedLoad : public QObject, public ZQURLLoaderDelegate {
  Q_OBJECT

 public:
  BoundedLoad(const QUrl& url, qint64 mostBytes, QObject* parent = nullptr);
  ~BoundedLoad() override;

  // Lets a load begin that announces more bytes than it may bring: what comes first may be enough.
  void setBeginsInAnyCase(bool begins) { beginsInAnyCase_ = begins; }

  // Begins, once; the signals come from the event loop.
  void start(platform::URLRequestCachePolicy policy =
                 platform::URLRequestCachePolicy::UseProtocolCachePolicy);
  // Ends the load; no signal comes any more.
  void stop();

  // Of the last response; null before there is one.
  platform::Ref<platform::URLResponse> response() const;
  // The body so far, and all of it at the end; after a failure nothing, except of a body that was
  // too large the part that came.
  const QByteArray& data() const;
  bool isTooLarge() const { return isTooLarge_; }
  // Whether the last response says that the request has failed.
  bool isRefused() const;

  // A response has arrived, the body begins anew; then more of the body.
  Q_SIGNAL void responded();
  Q_SIGNAL void grown();
  // The end. `errorText` is empty for a whole body. The load may be destroyed by then.
  Q_SIGNAL void ended(const QString& errorText);

 private:
  bool loaderWillReceiveDataOfLength(ZQURLLoader& loader, qint64 length) override;
  void loaderDidReceiveDataOfLength(ZQURLLoader& loader, qint64 total) override;
  void loaded(const std::optional<QByteArray>& data, const QVariantMap& context);
  void end(const QString& errorText);
  void endTooLarge();
  void cancel();

  QUrl url_;
  qint64 mostBytes_;
  platform::Ref<ZQURLLoader> loader_; // while it loads
  platform::Ref<platform::URLResponse> response_;
  QByteArray body_;
  bool beginsInAnyCase_ = false;
  bool isTooLarge_ = false;
  bool hasEnded_ = false;
};

} // namespace zq::app
