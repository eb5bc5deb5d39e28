#include "app/services/FeedService.h"

#include "app/services/FeedSubscription.h"
#include "app/services/feed_items.h"
#include "zqticker/platform/graphics/Image.h"

#include <QtCore/QRandomGenerator>

#include <algorithm>

namespace zq::app {

FeedService::FeedService(const FeedOptions& options, QSize pictureRoom, ItemReceiver receiver,
                         std::chrono::milliseconds patience)
    : receiver_(std::move(receiver)), pictures_(pictureRoom) {
  const auto random = [] { return QRandomGenerator::global()->generateDouble(); };
  for (const QUrl& url : options.feeds) {
    const FeedSchedule schedule(pollInterval(url, options.intervalMinutes), random);
    subscriptions_.push_back(
        std::make_unique<FeedSubscription>(url, options.itemsPerFeed, schedule));
    connect(subscriptions_.back().get(), &FeedSubscription::polled, this, &FeedService::collect);
  }
  connect(&pictures_, &FeedPictures::changed, this, &FeedService::update);
  patience_.setSingleShot(true);
  patience_.setInterval(patience);
  connect(&patience_, &QTimer::timeout, this, &FeedService::giveOut);
}

FeedService::~FeedService() = default;

void FeedService::start() {
  for (const auto& subscription : subscriptions_)
    subscription->poll();
}

bool FeedService::hasSettled() const {
  return !pictures_.isAwaitingAny() &&
         std::all_of(subscriptions_.begin(), subscriptions_.end(),
                     [](const auto& subscription) { return subscription->hasPolled(); });
}

void FeedService::collect() {
  std::vector<std::vector<Item>> lists;
  for (const auto& subscription : subscriptions_) {
    lists.emplace_back();
    const QString feed = subscription->url().toString(QUrl::FullyEncoded) + u' ';
    for (const FeedItem& item : subscription->items())
      lists.back().push_back({feed + item.identity, item, subscription->name()});
  }
  items_ = interleaved(lists);
  std::vector<QUrl> pictures;
  for (const Item& item : items_)
    pictures.push_back(item.item.picture);
  pictures_.want(pictures);
  update();
}

void FeedService::update() {
  if (isWorthWaiting()) {
    if (!patience_.isActive())
      patience_.start();
    return;
  }
  giveOut();
  if (hasSettled())
    Q_EMIT settled();
}

bool FeedService::isWorthWaiting() const {
  return std::any_of(items_.begin(), items_.end(), [this](const Item& item) {
    return !givenIdentifiers_.contains(item.identifier) && pictures_.isAwaited(item.item.picture);
  });
}

void FeedService::giveOut() {
  patience_.stop();
  std::vector<ShownItem> shown;
  for (const Item& item : items_)
    shown.push_back({item.identifier, item.item.title, item.item.link,
                     pictures_.picture(item.item.picture), item.source});
  if (shown == given_)
    return;
  given_ = std::move(shown);
  givenIdentifiers_.clear();
  for (const ShownItem& item : given_)
    givenIdentifiers_.insert(item.identifier);
  receiver_(given_);
}

} // namespace zq::app
