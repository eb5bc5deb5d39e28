#include "zqticker/platform/system/URLSource_p.h"

#include "zqticker/platform/system/CachedSource_p.h"
#include "zqticker/platform/system/CurlTransfer_p.h"
#include "zqticker/platform/system/FileSource_p.h"
#include "zqticker/platform/system/LoadingThread_p.h"
#include "zqticker/platform/system/data_source_p.h"
#include "zqticker/platform/system/url_errors.h"

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
std::unique_ptr<URLSource> startTransfer(const SourceRequest& request, URLSourceClient& client) {
  return std::make_unique<CurlTransfer>(LoadingThread::current().curl(), request, client);
}
} // namespace

URLSource::~URLSource() = default;

std::unique_ptr<URLSource> startSource(const SourceRequest& request, URLSourceClient& client) {
  const QUrl& url = request.request->URL();
  const QString scheme = url.scheme();
  if (scheme == "data"_L1) {
    tellDataAddress(url, client);
    return nullptr;
  }
  if (scheme == "file"_L1)
    return std::make_unique<FileSource>(url, client);
  if (scheme == "http"_L1 || scheme == "https"_L1) {
    if (!url.host().isEmpty())
      return startCachedSource(request, startTransfer, client);
    failSource(client, BadURL, u"an address without a host"_s, url);
    return nullptr;
  }
  failSource(client, UnsupportedURL, "unsupported URL scheme: "_L1 + scheme, url);
  return nullptr;
}

void failSource(URLSourceClient& client, int code, const QString& text, const QUrl& url) {
  client.sourceFailed(Error::make(URLErrorDomain, code, text, url));
}

} // namespace zq::platform
