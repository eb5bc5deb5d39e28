#include "app/services/FeedBuilder.h"

#include "app/services/feed_dates.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// Identities are kept for long and compared; a longer one is replaced by its digest.
constexpr qsizetype LongestIdentity = 1024;

QString boundedIdentity(const QString& identity) {
  if (identity.size() <= LongestIdentity)
    return identity;
  const QByteArray digest =
      QCryptographicHash::hash(identity.toUtf8(), QCryptographicHash::Sha256).toHex();
  return u"sha256:"_s + QString::fromLatin1(digest);
}

QString counted(int count, const QString& one, const QString& several) {
  return count == 1 ? one : several.arg(count);
}
} // namespace

void ItemDraft::offerPicture(const QUrl& url, PictureSource source) {
  if (url.isEmpty() || source <= pictureSource)
    return;
  picture = url;
  pictureSource = source;
}

void ItemDraft::offerDate(const QString& text, DateSource source) {
  if (source <= dateSource || text.trimmed().isEmpty())
    return;
  date = text;
  dateSource = source;
}

void FeedBuilder::setTitle(const FeedText& title) {
  if (feed_.title.isEmpty())
    feed_.title = titleText(title.text, title.kind);
}

void FeedBuilder::offerPicture(const QUrl& url, int rank) {
  if (url.isEmpty() || rank <= pictureRank_)
    return;
  feed_.picture = url;
  pictureRank_ = rank;
}

void FeedBuilder::setTimeToLive(std::chrono::seconds time) {
  constexpr std::chrono::seconds Longest = std::chrono::hours(24 * 365);
  if (time.count() > 0)
    feed_.timeToLive = std::min(time, Longest);
}

bool FeedBuilder::wantsItem() {
  hasFurtherItems_ = hasFurtherItems_ || feed_.items.size() >= mostItems_;
  return !hasFurtherItems_;
}

void FeedBuilder::addItem(const ItemDraft& draft) {
  FeedItem item;
  item.link = draft.link.isEmpty() ? draft.permanentLink : draft.link;
  item.picture = draft.picture;
  item.title = titleText(draft.title.text, draft.title.kind);
  const bool hasTitle = !item.title.isEmpty();
  if (!hasTitle)
    item.title = firstWords(draft.description.text, draft.description.kind);
  if (item.title.isEmpty())
    item.title = titleText(item.link.toDisplayString(), FeedTextKind::Plain);
  item.identity = boundedIdentity(draft.identity.trimmed());
  const bool hasIdentity = !item.identity.isEmpty();
  if (!hasIdentity && !item.title.isEmpty())
    item.identity = boundedIdentity(item.link.toString(QUrl::FullyEncoded) + u'\n' + item.title);
  if (item.identity.isEmpty()) {
    ++emptyItems_;
    return;
  }
  item.published = feedDate(draft.date);
  itemsWithoutIdentity_ += hasIdentity ? 0 : 1;
  itemsWithoutTitle_ += hasTitle ? 0 : 1;
  damagedTitles_ += item.title.contains(QChar::ReplacementCharacter) ? 1 : 0;
  unreadableDates_ += draft.date.isEmpty() || item.published ? 0 : 1;
  feed_.items.push_back(std::move(item));
}

QStringList FeedBuilder::warnings() const {
  QStringList lines;
  if (feed_.items.empty() && !feed_.format.isEmpty())
    lines.append(u"there are no items"_s);
  if (emptyItems_ > 0)
    lines.append(counted(emptyItems_, u"1 item says nothing and is left out"_s,
                         u"%1 items say nothing and are left out"_s));
  if (itemsWithoutIdentity_ > 0)
    lines.append(counted(itemsWithoutIdentity_,
                         u"1 item has no identity of its own; its link and title stand for it"_s,
                         u"%1 items have no identity of their own; their links and titles stand "
                         u"for it"_s));
  if (itemsWithoutTitle_ > 0)
    lines.append(
        counted(itemsWithoutTitle_, u"1 item has no title"_s, u"%1 items have no title"_s));
  if (damagedTitles_ > 0)
    lines.append(counted(damagedTitles_,
                         u"1 title has characters that are damaged or in another encoding"_s,
                         u"%1 titles have characters that are damaged or in another encoding"_s));
  if (unreadableDates_ > 0)
    lines.append(counted(unreadableDates_, u"1 item has a date that cannot be read"_s,
                         u"%1 items have dates that cannot be read"_s));
  QSet<QString> identities;
  for (const FeedItem& item : feed_.items)
    identities.insert(item.identity);
  const int repeated = int(feed_.items.size()) - int(identities.size());
  if (repeated > 0)
    lines.append(counted(repeated, u"1 item has the identity of another"_s,
                         u"%1 items have the identities of others"_s));
  return lines;
}

} // namespace zq::app
