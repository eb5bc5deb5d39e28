// A feed that is asked again and again.
#pragma once

#include "app/services/Feed.h"
#include "app/services/FeedSchedule.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <memory>

namespace zq::app {

class FeedLoad;
struct FeedAnswer;

// Keeps the last good items of a feed. A failure leaves them as they are: one log line (category
// zqticker.feeds) tells when the feed turns bad, and one when it is back. A feed that the server
// calls gone for good is not asked any more.
//
// Thread: main.
class FeedSubscription : public QObject {
  Q_OBJECT

 public:
  FeedSubscription(const QUrl& url, std::size_t mostItems, FeedSchedule schedule,
                   QObject* parent = nullptr);
  ~FeedSubscription() override;

  // Asks now, and from then on as the schedule says. Does nothing while it is asking.
  void poll();

  const QUrl& url() const { return url_; }
  // Of the last success, in the feed's order.
  const std::vector<FeedItem>& items() const { return items_; }
  // The feed's title at the last success, else its address; for people.
  QString name() const;
  // Whether a poll has ended, well or not.
  bool hasPolled() const { return hasPolled_; }
  // Why the last poll failed; empty where it did not.
  const QString& errorText() const { return errorText_; }
  // The wait that is under way, as it was when it began; nothing while the feed is asked, before
  // the first poll, and for good once it has gone.
  std::optional<FeedSchedule::Duration> wait() const;

  // A poll has ended; the items may be others.
  Q_SIGNAL void polled();

 private:
  void take(const FeedAnswer& answer);
  void report(const FeedAnswer& answer) const;

  QUrl url_;
  std::size_t mostItems_;
  FeedSchedule schedule_;
  std::unique_ptr<FeedLoad> load_;
  std::unique_ptr<FeedLoad> finished_;
  QTimer timer_;
  std::vector<FeedItem> items_;
  QString title_;
  QString errorText_;
  bool hasPolled_ = false;
};

// `url` as it stands in messages: on one line, not too long, and without user name and password.
QString feedName(const QUrl& url);

} // namespace zq::app
