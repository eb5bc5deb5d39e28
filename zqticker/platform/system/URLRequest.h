// What is asked for: an address, how to use the cache, and how long to wait.
#pragma once

#include "zqticker/platform/objects/Object.h"

#include <QtCore/QUrl>

namespace zq::platform {

enum class URLRequestCachePolicy {
  // A stored answer while it is fresh; one that is stale is revalidated.
  UseProtocolCachePolicy = 0,
  // Never a stored answer.
  ReloadIgnoringCacheData = 1,
  // A stored answer whatever its age; the source where there is none.
  ReturnCacheDataElseLoad = 2,
  // A stored answer whatever its age; an error where there is none.
  ReturnCacheDataDontLoad = 3,
  // A stored answer once its server has confirmed it, however fresh it is.
  ReloadRevalidatingCacheData = 5,
};

// One request for a URL. Never changes once made.
//
// Thread: any.
class ZQTICKER_EXPORT URLRequest : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSURLRequest")

 public:
  // Seconds.
  static constexpr double DefaultTimeoutInterval = 60;

  // A request with the default policy and time-out. Null for an empty or an invalid URL; whether
  // its scheme can be loaded shows only when it is.
  static Ref<URLRequest> requestWithURL(const QUrl& url);

  // `timeoutInterval` is in seconds of idleness: the load fails when nothing was heard for as long,
  // counted anew from each progress, looking up the host and connecting included. Fractions count.
  // What is not positive, or no number, stands for the default; infinity for no limit.
  static Ref<URLRequest> requestWithURL(const QUrl& url, URLRequestCachePolicy cachePolicy,
                                        double timeoutInterval);

  const QUrl& URL() const { return url_; }
  URLRequestCachePolicy cachePolicy() const { return cachePolicy_; }
  // Seconds, always positive.
  double timeoutInterval() const { return timeoutInterval_; }

  // "<URLRequest: 0xaddress> http://host/path", without user name and password.
  QString description() const override;

  // Equal are requests with the same address, policy and time-out.
  bool isEqual(const Object& other) const override;

 private:
  URLRequest(const QUrl& url, URLRequestCachePolicy cachePolicy, double timeoutInterval);

  QUrl url_;
  URLRequestCachePolicy cachePolicy_;
  double timeoutInterval_;
};

} // namespace zq::platform
