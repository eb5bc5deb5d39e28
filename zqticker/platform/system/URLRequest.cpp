#include "zqticker/platform/system/URLRequest.h"

using namespace Qt::StringLiterals;

namespace zq::platform {

URLRequest::URLRequest(const QUrl& url, URLRequestCachePolicy cachePolicy, double timeoutInterval)
    : url_(url), cachePolicy_(cachePolicy),
      timeoutInterval_(timeoutInterval > 0 ? timeoutInterval : DefaultTimeoutInterval) {}

Ref<URLRequest> URLRequest::requestWithURL(const QUrl& url) {
  return requestWithURL(url, URLRequestCachePolicy::UseProtocolCachePolicy, DefaultTimeoutInterval);
}

Ref<URLRequest> URLRequest::requestWithURL(const QUrl& url, URLRequestCachePolicy cachePolicy,
                                           double timeoutInterval) {
  if (url.isEmpty() || !url.isValid())
    return nullptr;
  return Ref<URLRequest>(new URLRequest(url, cachePolicy, timeoutInterval));
}

QString URLRequest::description() const {
  return defaultDescription() + u' ' + url_.toDisplayString(QUrl::RemoveUserInfo);
}

bool URLRequest::isEqual(const Object& other) const {
  const auto* request = dynamic_cast<const URLRequest*>(&other);
  return request && url_ == request->url_ && cachePolicy_ == request->cachePolicy_ &&
         timeoutInterval_ == request->timeoutInterval_;
}

} // namespace zq::platform
