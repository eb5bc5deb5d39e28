#include "zqticker/platform/system/redirects_p.h"

using namespace Qt::StringLiterals;

namespace zq::platform {

namespace {
constexpr qsizetype MostShownCharacters = 200;

bool isRedirectStatus(int status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

int portOf(const QUrl& url) {
  return url.port(url.scheme() == "https"_L1 ? 443 : 80);
}

bool isSameOrigin(const QUrl& a, const QUrl& b) {
  return a.scheme() == b.scheme() && a.host() == b.host() && portOf(a) == portOf(b);
}
} // namespace

std::optional<QUrl> addressAfterRedirect(const URLResponse& response, const QUrl& base) {
  if (!isRedirectStatus(response.statusCode()))
    return std::nullopt;
  std::optional<QString> location;
  // Of several the first: joined they would be no address.
  for (const auto& [name, value] : response.allHeaderFields()) {
    if (!location && name.compare("Location"_L1, Qt::CaseInsensitive) == 0)
      location = value.trimmed();
  }
  if (!location || location->isEmpty())
    return std::nullopt;
  QUrl url = base.resolved(QUrl(*location));
  if (!url.isValid())
    return url;
  url.setUserInfo(isSameOrigin(url, base) ? base.userInfo(QUrl::FullyEncoded) : QString());
  if (!url.hasFragment() && base.hasFragment())
    url.setFragment(base.fragment(QUrl::FullyEncoded));
  return url;
}

QString shownAddress(const QUrl& url) {
  const QString text = QString::fromLatin1(url.toEncoded(QUrl::RemoveUserInfo));
  return text.size() <= MostShownCharacters ? text : text.left(MostShownCharacters) + u'…';
}

} // namespace zq::platform
