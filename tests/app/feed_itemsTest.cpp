#include "app/services/feed_items.h"

#include <gtest/gtest.h>

#include <string>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
FeedItem item(const QString& identity, const QString& title, const QString& picture = {}) {
  return {identity, title, QUrl(), QUrl(picture), std::nullopt};
}

std::string titles(const std::vector<FeedItem>& items) {
  QString text;
  for (const FeedItem& shown : items)
    text += shown.title + u' ';
  return text.toStdString();
}

std::string joined(const std::vector<std::vector<std::string>>& lists) {
  std::string text;
  for (const std::string& entry : interleaved(lists))
    text += entry + " ";
  return text;
}
} // namespace

TEST(FeedItems, AreTheFirstOfTheFeedInItsOrder) {
  Feed feed;
  for (int i = 1; i <= 5; ++i)
    feed.items.push_back(item(QString::number(i), QString::number(i)));
  EXPECT_EQ(titles(itemsToShow(feed, 3)), "1 2 3 ");
  EXPECT_EQ(titles(itemsToShow(feed, 100)), "1 2 3 4 5 ");
}

TEST(FeedItems, AreShownOnceEach) {
  Feed feed;
  feed.items = {item(u"x"_s, u"first"_s), item(u"x"_s, u"again"_s), item(u"y"_s, u"other"_s)};
  EXPECT_EQ(titles(itemsToShow(feed, 2)), "first other ");
}

TEST(FeedItems, AreNotThoseThatShowNothing) {
  Feed feed;
  feed.items = {item(u"x"_s, u""_s), item(u"y"_s, u"  "_s), item(u"x"_s, u"text"_s)};
  EXPECT_EQ(titles(itemsToShow(feed, 1)), "text ");
}

TEST(FeedItems, HaveThePictureOfTheFeedWhereTheyHaveNone) {
  Feed feed;
  feed.picture = QUrl(u"http://a/feed.png"_s);
  feed.items = {item(u"x"_s, u"x"_s), item(u"y"_s, u"y"_s, u"http://a/y.png"_s)};
  const std::vector<FeedItem> items = itemsToShow(feed, 10);
  EXPECT_EQ(items[0].picture, QUrl(u"http://a/feed.png"_s));
  EXPECT_EQ(items[1].picture, QUrl(u"http://a/y.png"_s));
}

TEST(FeedItems, OfSeveralFeedsTakeTurns) {
  EXPECT_EQ(joined({{"A1", "A2"}, {"B1", "B2"}}), "A1 B1 A2 B2 ");
  EXPECT_EQ(joined({{"A1", "A2", "A3", "A4"}, {"B1"}, {"C1", "C2"}}), "A1 B1 C1 A2 C2 A3 A4 ");
  EXPECT_EQ(joined({{}, {"B1"}}), "B1 ");
  EXPECT_EQ(joined({{}, {}}), "");
  EXPECT_EQ(joined({}), "");
}
