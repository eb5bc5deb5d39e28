// Feeds of every format, and what is no feed.
#include "app/services/FeedParser.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

TEST(FeedParser, ReadsAnRssFeed) {
  FeedParser parser(QUrl(u"https://example.org/feed/"_s));
  EXPECT_TRUE(parser.addData(R"(<?xml version="1.0"?><rss version="2.0"><channel>
    <title>News</title><link>https://example.org/</link><ttl>15</ttl>
    <item><title>First &amp; last</title><link>/1</link><guid>a1</guid>
      <pubDate>Sat, 21 Nov 2026 10:00:00 +0100</pubDate>
      <enclosure url="p.png" type="image/png" length="1"/></item>
    <item><title>Second</title><link>2</link></item></channel></rss>)"));
  ASSERT_TRUE(parser.finish()) << parser.errorText().toStdString();
  EXPECT_TRUE(parser.isComplete());
  const Feed& feed = parser.feed();
  EXPECT_EQ(feed.format, "RSS 2.0");
  EXPECT_EQ(feed.title, "News");
  EXPECT_EQ(feed.link, QUrl(u"https://example.org/"_s));
  EXPECT_EQ(feed.timeToLive, std::chrono::minutes(15));
  ASSERT_EQ(feed.items.size(), 2u);
  EXPECT_EQ(feed.items[0].identity, "a1");
  EXPECT_EQ(feed.items[0].title, "First & last");
  EXPECT_EQ(feed.items[0].link, QUrl(u"https://example.org/1"_s));
  EXPECT_EQ(feed.items[0].picture, QUrl(u"https://example.org/feed/p.png"_s));
  EXPECT_EQ(feed.items[0].published, QDateTime(QDate(2026, 11, 21), QTime(9, 0), Qt::UTC));
  EXPECT_EQ(feed.items[1].identity, "https://example.org/feed/2\nSecond");
  EXPECT_EQ(feed.items[1].published, std::nullopt);
}

TEST(FeedParser, RefusesAnEmptyDocument) {
  FeedParser parser(QUrl(u"https://example.org/"_s));
  EXPECT_FALSE(parser.finish());
  EXPECT_EQ(parser.errorText(), "an empty document");
  EXPECT_FALSE(parser.isComplete());
}
