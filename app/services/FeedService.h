// The feeds of the program: what they bring is shown.
#pragma once

#include "app/services/Feed.h"
#include "app/services/FeedOptions.h"
#include "app/services/FeedPictures.h"
#include "app/services/ShownItem.h"

#include <QtCore/QObject>
#include <QtCore/QSet>
#include <QtCore/QTimer>

#include <chrono>
#include <memory>
#include <vector>

namespace zq::app {

class FeedSubscription;

// Asks all feeds and gives out their items by turns, A1 B1 A2 B2, whenever they change. What is new
// waits for its pictures, but not longer than a few seconds: then it comes without, and again with
// a picture that is late. Before the first success of a feed it has no items; a feed that fails
// keeps those it had.
//
// Thread: main.
class FeedService : public QObject {
  Q_OBJECT

 public:
  // How long new items wait for their pictures.
  static constexpr std::chrono::milliseconds Patience = std::chrono::seconds(3);

  // `receiver` is called from the event loop; `pictureRoom` is the most that pictures take, in
  // pixels.
  FeedService(const FeedOptions& options, QSize pictureRoom, ItemReceiver receiver,
              std::chrono::milliseconds patience = Patience);
  ~FeedService() override;

  // Asks every feed, and goes on asking.
  void start();

  // In the order of the options.
  const std::vector<std::unique_ptr<FeedSubscription>>& subscriptions() const {
    return subscriptions_;
  }
  // Whether every feed has been asked and every picture has come or failed.
  bool hasSettled() const;
  Q_SIGNAL void settled();

 private:
  struct Item {
    QString identifier;
    FeedItem item;
    QString source;
  };

  void collect();
  void update();
  bool isWorthWaiting() const;
  void giveOut();

  ItemReceiver receiver_;
  std::vector<std::unique_ptr<FeedSubscription>> subscriptions_;
  std::vector<Item> items_; // of all feeds, by turns
  FeedPictures pictures_;
  QTimer patience_; // while new items wait
  std::vector<ShownItem> given_;
  QSet<QString> givenIdentifiers_;
};

} // namespace zq::app
