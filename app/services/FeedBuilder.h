// A feed while it is read: takes what a document says and keeps what is fit to be shown.
#pragma once

#include "app/services/Feed.h"
#include "app/services/feed_text.h"

#include <QtCore/QStringList>

namespace zq::app {

// The longest text of one field, in UTF-16 code units; what follows is not kept.
constexpr qsizetype LongestField = 16 << 10;

struct FeedText {
  QString text;
  FeedTextKind kind = FeedTextKind::Html;

  bool isEmpty() const { return text.isEmpty(); }
};

// Where a picture was found; later ones are better.
enum class PictureSource {
  None,
  Image,     // an image element, or one of itunes
  Enclosure, // an attachment that is a picture
  Media,     // media:content
  Thumbnail, // media:thumbnail, and a picture that the format itself provides for
};

// Which date an item's element tells; later ones are better.
enum class DateSource { None, Created, Changed, Published };

// An item as far as it has been read.
struct ItemDraft {
  QString identity;
  FeedText title;
  // Whatever text the item has, for one without a title.
  FeedText description;
  QUrl link;
  // An address that stands for the link where there is none.
  QUrl permanentLink;
  QUrl picture;
  PictureSource pictureSource = PictureSource::None;
  QString date;
  DateSource dateSource = DateSource::None;

  // Keeps the first of the best.
  void offerPicture(const QUrl& url, PictureSource source);
  void offerDate(const QString& text, DateSource source);
};

class FeedBuilder {
 public:
  explicit FeedBuilder(std::size_t mostItems) : mostItems_(mostItems) {}

  Feed& feed() { return feed_; }
  const Feed& feed() const { return feed_; }

  void setTitle(const FeedText& title);
  // Keeps the first of the best.
  void offerPicture(const QUrl& url, int rank);
  // Non-positive times are passed over; longer ones than a year are a year.
  void setTimeToLive(std::chrono::seconds time);

  // Whether another item is wanted. Asked where one begins; from the first no on there are further
  // items.
  bool wantsItem();
  bool hasFurtherItems() const { return hasFurtherItems_; }
  // Ends an item. One that has nothing to be told by is left out.
  void addItem(const ItemDraft& draft);

  // What was odd about the items, a line each.
  QStringList warnings() const;

 private:
  std::size_t mostItems_;
  Feed feed_;
  int pictureRank_ = 0;
  bool hasFurtherItems_ = false;
  int emptyItems_ = 0;
  int itemsWithoutIdentity_ = 0;
  int itemsWithoutTitle_ = 0;
  int damagedTitles_ = 0;
  int unreadableDates_ = 0;
};

} // namespace zq::app
