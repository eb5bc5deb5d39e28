// Pictures of feeds, from a server that does what servers do.
#include "app/services/FeedPictures.h"

#include "tests/app/PublishedFeeds.h"
#include "tests/support/HttpServer.h"
#include "tests/support/waiting.h"
#include "zqticker/platform/graphics/Image.h"

#include <gtest/gtest.h>

#include <atomic>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace zq::app;
using namespace zq::app::testing;
using zq::testing::HttpLatch;
using zq::testing::HttpReply;
using zq::testing::HttpRequest;
using zq::testing::waitFor;

TEST_F(Feeds, ComeWithTheirPictures) {
  server.route("/red.png", 200, png(Qt::red, QSize(600, 400)));
  publish({{"1", "one", server.url("/red.png").toEncoded()}, {"2", "two"}});
  start();
  ASSERT_TRUE(awaitSettled());
  ASSERT_EQ(received.size(), 1u) << "with the picture at once";
  const auto picture = received[0][0].picture;
  ASSERT_NE(picture, nullptr);
  EXPECT_EQ(picture->size(), QSizeF(72, 48)) << "no larger than its room";
  EXPECT_EQ(received[0][1].picture, nullptr);
  publish({{"3", "three", server.url("/red.png").toEncoded()},
           {"1", "one", server.url("/red.png").toEncoded()}});
  poll();
  EXPECT_EQ(received.back()[1].picture, picture);
  EXPECT_EQ(received.back()[0].picture, picture);
  EXPECT_EQ(server.requestCount("/red.png"), 1);
}

TEST_F(Feeds, GiveTheirOwnPictureToItemsWithoutOne) {
  server.route("/feed.png", 200, png(Qt::blue));
  publish(rss({{"1", "one"}, {"2", "two"}},
              "<image><url>" + server.url("/feed.png").toEncoded() +
                  "</url><title>Feed</title><link>http://example.org/</link></image>"));
  start();
  ASSERT_TRUE(awaitSettled());
  EXPECT_NE(received.back()[0].picture, nullptr);
  EXPECT_EQ(received.back()[0].picture, received.back()[1].picture);
}

TEST_F(Feeds, DoWithoutPicturesThatCannotBeHad) {
  server.route("/page.png", 200, "<html></html>");
  server.route("/error.png", 500, png(Qt::red));
  server.route("/tiny.png", 200, png(Qt::red, QSize(1, 1)));
  server.route("/cut.png", 200, png(Qt::red).left(60));
  publish({{"1", "one", "page.png"},
           {"2", "two", "error.png"},
           {"3", "three", "tiny.png"},
           {"4", "four", "cut.png"},
           {"5", "five", "missing.png"}});
  start();
  ASSERT_TRUE(awaitSettled());
  EXPECT_EQ(titles(), "one two three four five ");
  for (const ShownItem& item : received.back())
    EXPECT_EQ(item.picture, nullptr) << item.title.toStdString();
  poll();
  EXPECT_EQ(server.requestCount("/error.png"), 1) << "and do not ask again";
}

TEST_F(Feeds, BreakOffPicturesThatAreTooLarge) {
  std::atomic<bool> isBrokenOff = false;
  server.route("/announced.png", [](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, FeedPictures::MostBytes + 1);
    reply.awaitClientClose();
  });
  server.route("/endless.png", [&](const HttpRequest&, HttpReply& reply) {
    reply.beginChunked(200);
    try {
      for (;;)
        reply.chunk(QByteArray(1 << 16, 'x'));
    } catch (...) {
      isBrokenOff = true;
      throw;
    }
  });
  publish({{"1", "one", "announced.png"}, {"2", "two", "endless.png"}});
  start();
  ASSERT_TRUE(awaitSettled());
  EXPECT_EQ(titles(), "one two ");
  EXPECT_EQ(received.back()[0].picture, nullptr);
  EXPECT_EQ(received.back()[1].picture, nullptr);
  EXPECT_TRUE(waitFor([&] { return isBrokenOff.load(); }));
}

TEST_F(Feeds, WaitForPicturesOfNewItems) {
  HttpLatch release;
  const QByteArray red = png(Qt::red);
  server.route("/slow.png", [release, red](const HttpRequest&, HttpReply& reply) {
    reply.wait(release);
    reply.send(200, red);
  });
  publish({{"1", "one", "slow.png"}});
  start();
  ASSERT_TRUE(waitFor([&] { return server.requestCount("/slow.png") == 1; }));
  EXPECT_TRUE(received.empty());
  release.open();
  ASSERT_TRUE(awaitSettled());
  ASSERT_EQ(received.size(), 1u);
  EXPECT_NE(received[0][0].picture, nullptr);
}

TEST_F(Feeds, ComeWithoutAPictureThatIsLateAndWithItAfterwards) {
  HttpLatch release;
  const QByteArray red = png(Qt::red);
  server.route("/slow.png", [release, red](const HttpRequest&, HttpReply& reply) {
    reply.wait(release);
    reply.send(200, red);
  });
  publish({{"1", "one", "slow.png"}});
  start({"/feed"}, 10, std::nullopt, 1ms);
  ASSERT_TRUE(waitFor([&] { return received.size() == 1; }));
  EXPECT_EQ(received[0][0].picture, nullptr);
  release.open();
  ASSERT_TRUE(awaitSettled());
  ASSERT_EQ(received.size(), 2u);
  EXPECT_NE(received[1][0].picture, nullptr);
  EXPECT_EQ(received[1][0].identifier, received[0][0].identifier);
}

TEST_F(Feeds, LoadAFewPicturesAtATime) {
  std::atomic<int> now = 0;
  std::atomic<int> most = 0;
  HttpLatch release;
  const QByteArray red = png(Qt::red);
  std::vector<WrittenItem> items;
  for (int i = 0; i < 12; ++i) {
    const QByteArray name = "/" + QByteArray::number(i) + ".png";
    server.route(name, [&, release, red](const HttpRequest&, HttpReply& reply) {
      most = std::max(most.load(), ++now);
      reply.wait(release);
      --now;
      reply.send(200, red);
    });
    items.push_back({QByteArray::number(i), "title", name});
  }
  publish(items);
  start({"/feed"}, 12);
  ASSERT_TRUE(waitFor([&] { return now == int(FeedPictures::MostLoads); }));
  release.open();
  ASSERT_TRUE(awaitSettled());
  EXPECT_LE(most, int(FeedPictures::MostLoads));
  for (const ShownItem& item : received.back())
    EXPECT_NE(item.picture, nullptr);
}

TEST_F(Feeds, GiveUpPicturesThatAreNotWantedAnyMore) {
  std::atomic<int> broken = 0;
  server.route("/slow.png", [&](const HttpRequest&, HttpReply& reply) {
    reply.beginWithLength(200, 1000);
    reply.awaitClientClose();
    ++broken;
  });
  publish({{"1", "one", "slow.png"}});
  start();
  ASSERT_TRUE(waitFor([&] { return server.requestCount("/slow.png") == 1; }));
  publish({{"2", "two"}});
  poll();
  EXPECT_EQ(titles(), "two ");
  EXPECT_TRUE(waitFor([&] { return broken == 1; }));
}
