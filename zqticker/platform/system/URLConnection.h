// Loading one URL asynchronously.
#pragma once

#include "zqticker/platform/objects/Error.h"
#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Weak.h"
#include "zqticker/platform/system/URLRequest.h"
#include "zqticker/platform/system/URLResponse.h"

#include <QtCore/QByteArrayView>

#include <memory>

namespace zq::platform {

class URLConnection;
class URLLoading;

// Hears of a connection. Everything arrives on the thread that started the connection, from its
// event loop: a response, then the body in pieces, then either the end or a failure. A delegate may
// run an event loop of its own meanwhile, cancel, or start other connections.
//
// An exception that leaves one of these is logged (category zqticker.net), and the load goes on.
class ZQTICKER_EXPORT URLConnectionDelegate : public WeakReferenced {
 public:
  ~URLConnectionDelegate() override;

  // The body starts anew with each response; of a redirect that is followed there is none.
  // Operation: connection:didReceiveResponse:
  virtual void connectionDidReceiveResponse(URLConnection& connection,
                                            const Ref<URLResponse>& response);

  // A redirect: `request` is what follows it, by default returned unchanged. Another request goes
  // in its place; null follows nothing, so that `redirectResponse` becomes the response and its
  // body is delivered.
  // Operation: connection:willSendRequest:redirectResponse:
  virtual Ref<URLRequest> connectionWillSendRequest(URLConnection& connection,
                                                    const Ref<URLRequest>& request,
                                                    const Ref<URLResponse>& redirectResponse);

  // The next bytes of the body, decoded; never empty. The view ends with the call.
  // Operation: connection:didReceiveData:
  virtual void connectionDidReceiveData(URLConnection& connection, QByteArrayView data);

  // The last call: no body, or an incomplete one. The domain is URLErrorDomain.
  // Operation: connection:didFailWithError:
  virtual void connectionDidFailWithError(URLConnection& connection, const Ref<Error>& error);

  // The last call: the body is complete.
  virtual void connectionDidFinishLoading(URLConnection& connection);
};

// A load of http (1.1, and 2 over TLS), https, file and data addresses.
//
// - Redirects (301, 302, 303, 307, 308) are followed up to 20 in a row, to http and https only; a
//   loop fails. User name and password of the address go to its own scheme, host and port only.
// - Bodies arrive decoded. Cookies are neither sent nor kept, no password file is read. Proxies are
//   those that the environment names (http_proxy, https_proxy, all_proxy, no_proxy). Certificates
//   are always verified, TLS is 1.2 or later.
// - The header of a response may have 256 KiB in all. At most 32 connections go to one server at a
//   time; requests beyond them wait, which is no idleness.
// - Files are regular files.
//
// Thread: a connection lives on the thread that started it, which needs a running event loop. When
// the thread, or the application, ends, its connections end without a further call.
class ZQTICKER_EXPORT URLConnection : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSURLConnection")

 public:
  ~URLConnection() override;
  URLConnection(const URLConnection&) = delete;
  URLConnection& operator=(const URLConnection&) = delete;

  // Begins at once; `delegate` is first called when control is back in the event loop, also for
  // what fails at once. The connection keeps itself alive until its last call. It ends, silently,
  // when its delegate has gone. Null for a null request.
  static Ref<URLConnection> connectionWithRequest(const Ref<URLRequest>& request,
                                                  Weak<URLConnectionDelegate> delegate);

  // Ends the load: the delegate is not called again. Nothing happens after the end.
  void cancel();

  // The most bytes that a body may have, decoded; a load beyond them fails with
  // DataLengthExceedsMaximum, at once when more are announced. Holds for the process, from the next
  // response on. Initially 2 GiB. Thread: any.
  static void setMaximumBodyLength(qint64 bytes);
  static qint64 maximumBodyLength();

  // A file with the certificates (PEM) to trust in place of the system's; empty for the system's.
  // Holds for the process, for connections that start later. Initially what SSL_CERT_FILE names.
  // Thread: any.
  static void setCertificateAuthorityFile(const QString& path);
  static QString certificateAuthorityFile();

 private:
  URLConnection();

  std::shared_ptr<URLLoading> loading_;
};

} // namespace zq::platform
