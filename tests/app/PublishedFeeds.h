// Feeds on a server, and the service that reads them.
#pragma once

#include "app/services/FeedService.h"
#include "app/services/FeedSubscription.h"
#include "tests/app/FeedDocument.h"
#include "tests/support/HttpServer.h"
#include "tests/support/waiting.h"

#include <QtCore/QBuffer>
#include <QtGui/QImage>

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace zq::app::testing {

inline constexpr QSize PictureRoom(400, 48);
inline constexpr std::chrono::milliseconds AnyTime = std::chrono::hours(24);
// Sixty milliseconds: polls follow one another.
inline constexpr double ShortInterval = 0.001;

inline QByteArray png(QColor color, QSize size = QSize(60, 40)) {
  QImage image(size, QImage::Format_RGB32);
  image.fill(color);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  EXPECT_TRUE(image.save(&buffer, "png"));
  return bytes;
}

class Feeds : public ::testing::Test {
 protected:
  void publish(const QByteArray& document, const QByteArray& path = "/feed") {
    server.route(path, 200, document, {{"Content-Type", "application/rss+xml"}});
  }
  void publish(const std::vector<WrittenItem>& items, const QByteArray& path = "/feed") {
    publish(rss(items), path);
  }

  void start(const std::vector<QByteArray>& paths = {"/feed"}, std::size_t mostItems = 10,
             std::optional<double> interval = std::nullopt,
             std::chrono::milliseconds patience = AnyTime) {
    FeedOptions options;
    for (const QByteArray& path : paths)
      options.feeds.push_back(server.url(path));
    options.itemsPerFeed = mostItems;
    options.intervalMinutes = interval;
    service.emplace(
        options, PictureRoom,
        [this](const std::vector<ShownItem>& items) { received.push_back(items); }, patience);
    service->start();
  }

  FeedSubscription& feed(std::size_t index = 0) { return *service->subscriptions()[index]; }
  // Asks the feed now, and returns when the poll has ended.
  void poll(std::size_t index = 0) {
    int ended = 0;
    const auto counted =
        QObject::connect(&feed(index), &FeedSubscription::polled, [&ended] { ++ended; });
    feed(index).poll();
    EXPECT_TRUE(zq::testing::waitFor([&] { return ended > 0; }));
    QObject::disconnect(counted);
  }
  bool awaitSettled() {
    return zq::testing::waitFor([this] { return service->hasSettled(); });
  }
  std::string titles() const {
    if (received.empty())
      return "nothing";
    QString text;
    for (const ShownItem& item : received.back())
      text += item.title + u' ';
    return text.toStdString();
  }
  // What a line of the log says of the feed.
  QString line(const QString& text, const QByteArray& path = "/feed") const {
    return QStringLiteral("zqticker.feeds: feed ") + server.url(path).toString() +
           QStringLiteral(": ") + text;
  }

  zq::testing::HttpServer server;
  std::vector<std::vector<ShownItem>> received;
  std::optional<FeedService> service;
};

} // namespace zq::app::testing
