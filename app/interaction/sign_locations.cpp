#include "app/interaction/sign_locations.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// Characters of a shortened address before and behind the ellipsis.
constexpr qsizetype ShownStart = 70;
constexpr qsizetype ShownEnd = 25;

bool isControl(QChar character) {
  return character.category() == QChar::Other_Control;
}

SignLocation refused(const QString& reason) {
  return {QUrl(), reason};
}

SignLocation fileLocation(QUrl url) {
  if (url.host() == "localhost"_L1)
    url.setHost(QString());
  if (!url.host().isEmpty())
    return refused(u"a file of another machine"_s);
  // Where bytes are no text, nobody could tell what is opened.
  const QString path = url.path(QUrl::FullyDecoded);
  if (!path.startsWith(u'/') || url.hasQuery() ||
      std::any_of(path.begin(), path.end(), isControl) ||
      path.contains(QChar::ReplacementCharacter))
    return refused(u"not a path of a file"_s);
  if (path.endsWith(".desktop"_L1, Qt::CaseInsensitive))
    return refused(u"a program to be started"_s);
  return {url, {}};
}
} // namespace

SignLocation locationOf(const QString& text) {
  const QString address = text.size() > LongestLocation ? text : text.trimmed();
  if (address.isEmpty())
    return refused(u"no address"_s);
  if (address.size() > LongestLocation)
    return refused(u"too long"_s);
  if (std::any_of(address.begin(), address.end(), isControl))
    return refused(u"control characters in it"_s);
  const QUrl url(address, QUrl::TolerantMode);
  if (!url.isValid())
    return refused(u"not an address"_s);
  if (url.toEncoded().size() > LongestLocation)
    return refused(u"too long"_s);
  if (url.scheme() == "file"_L1)
    return fileLocation(url);
  if (url.scheme() != "http"_L1 && url.scheme() != "https"_L1)
    return refused(u"only http, https and file are opened"_s);
  if (url.host().isEmpty())
    return refused(u"no host in it"_s);
  return {url, {}};
}

QString shortenedLocation(const QUrl& url) {
  const QString whole = url.toDisplayString(QUrl::RemoveUserInfo);
  return whole.size() <= ShownStart + ShownEnd
             ? whole
             : QString(whole.left(ShownStart) + u'…' + whole.right(ShownEnd));
}

} // namespace zq::app
