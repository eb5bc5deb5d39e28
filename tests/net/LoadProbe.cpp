#include "tests/net/LoadProbe.h"

#include "tests/support/waiting.h"

#include <QtCore/QUrl>

namespace zq::testing {

using namespace zq::platform;

std::shared_ptr<ZQURLLoader> LoadProbe::prepare(const QUrl& url, const Any& userInfo) {
  const auto made = ZQURLLoader::loaderWithURL(url, this, &LoadProbe::loaded, userInfo);
  made->setDelegate(this);
  loader = made;
  return made;
}

void LoadProbe::start(const QUrl& url) {
  prepare(url)->load();
}

bool LoadProbe::load(const QUrl& url) {
  return load(url, URLRequest::DefaultTimeoutInterval);
}

bool LoadProbe::load(const QUrl& url, double timeout) {
  prepare(url)->loadWithCachePolicy(URLRequestCachePolicy::UseProtocolCachePolicy, timeout);
  const bool completed = waitFor([this] { return completions > 0; });
  runPostedEvents();
  return completed && completions == 1;
}

void LoadProbe::loaded(const std::optional<QByteArray>& body, const QVariantMap& arguments) {
  ++completions;
  data = body;
  response = objectOf<URLResponse>(arguments.value(QStringLiteral("response")));
  error = objectOf<Error>(arguments.value(QStringLiteral("error")));
  contextKeys = arguments.keys();
  if (onCompletion)
    onCompletion(arguments);
}

bool LoadProbe::loaderWillReceiveDataOfLength(ZQURLLoader& sender, qint64 length) {
  lengths.push_back(length);
  if (onLength)
    onLength(sender);
  return true;
}

void LoadProbe::loaderDidReceiveDataOfLength(ZQURLLoader& sender, qint64 total) {
  totals.push_back(total);
  if (onTotal)
    onTotal(sender, total);
}

BodyLimit::BodyLimit(qint64 bytes) {
  URLConnection::setMaximumBodyLength(bytes);
}

BodyLimit::~BodyLimit() {
  URLConnection::setMaximumBodyLength(previous_);
}

TrustedAuthority::TrustedAuthority(const QString& file) {
  URLConnection::setCertificateAuthorityFile(file);
}

TrustedAuthority::~TrustedAuthority() {
  URLConnection::setCertificateAuthorityFile(previous_);
}

} // namespace zq::testing
