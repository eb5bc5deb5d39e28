#include "zqticker/platform/system/URLConnection.h"

#include "zqticker/platform/objects/AtomicProperty.h"
#include "zqticker/platform/system/URLLoading_p.h"

#include <QtCore/QFile>

#include <atomic>

namespace zq::platform {

namespace {
std::atomic<qint64> maximumBody = qint64(2) << 30;

AtomicProperty<QString>& certificateAuthorities() {
  static AtomicProperty<QString> path(QFile::decodeName(qgetenv("SSL_CERT_FILE")));
  return path;
}
} // namespace

URLConnectionDelegate::~URLConnectionDelegate() = default;

void URLConnectionDelegate::connectionDidReceiveResponse(URLConnection&, const Ref<URLResponse>&) {}

Ref<URLRequest> URLConnectionDelegate::connectionWillSendRequest(URLConnection&,
                                                                 const Ref<URLRequest>& request,
                                                                 const Ref<URLResponse>&) {
  return request;
}

void URLConnectionDelegate::connectionDidReceiveData(URLConnection&, QByteArrayView) {}

void URLConnectionDelegate::connectionDidFailWithError(URLConnection&, const Ref<Error>&) {}

void URLConnectionDelegate::connectionDidFinishLoading(URLConnection&) {}

URLConnection::URLConnection() = default;

URLConnection::~URLConnection() = default;

Ref<URLConnection> URLConnection::connectionWithRequest(const Ref<URLRequest>& request,
                                                        Weak<URLConnectionDelegate> delegate) {
  if (!request)
    return nullptr;
  const Ref<URLConnection> connection(new URLConnection);
  connection->loading_ = std::make_shared<URLLoading>(connection, delegate);
  connection->loading_->start(request);
  return connection;
}

void URLConnection::cancel() {
  // The load may hold the last reference to this connection.
  const std::shared_ptr<URLLoading> loading = loading_;
  loading->cancel();
}

void URLConnection::setMaximumBodyLength(qint64 bytes) {
  maximumBody = bytes;
}

qint64 URLConnection::maximumBodyLength() {
  return maximumBody;
}

void URLConnection::setCertificateAuthorityFile(const QString& path) {
  certificateAuthorities().store(path);
}

QString URLConnection::certificateAuthorityFile() {
  return certificateAuthorities().load();
}

} // namespace zq::platform
