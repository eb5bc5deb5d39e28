// The parser's limits, and what it promises whatever the document is. What is read from documents
// of each format stands in FeedSamplesTest.
#include "app/services/FeedParser.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
constexpr FeedLimits Usual;

struct Result {
  Feed feed;
  std::string error;
  bool isComplete = false;
  bool hasFurtherItems = false;
  QStringList warnings;
};

Result parse(const QByteArray& document, FeedLimits limits = {}, const QString& type = {}) {
  FeedParser parser(QUrl(u"https://base.example/feed"_s), type, limits);
  const bool isFine = parser.addData(document);
  EXPECT_EQ(isFine, parser.errorText().isEmpty());
  const bool hasFinished = parser.finish();
  EXPECT_EQ(hasFinished, parser.errorText().isEmpty());
  return {parser.feed(), parser.errorText().toStdString(), parser.isComplete(),
          parser.hasFurtherItems(), parser.warnings()};
}

QByteArray rss(const QByteArray& contents) {
  return "<rss version=\"2.0\"><channel>" + contents + "</channel></rss>";
}

QByteArray item(int number) {
  const QByteArray text = QByteArray::number(number);
  return "<item><title>Item " + text + "</title><guid isPermaLink=\"false\">" + text +
         "</guid><description>Some words about it</description></item>\n";
}
} // namespace

TEST(FeedParser, KeepsTheFirstItemsOfMany) {
  // In pieces, as they would come; the bytes are not counted once there are enough items.
  constexpr int Count = 200000;
  FeedParser parser(QUrl(u"https://base.example/feed"_s));
  EXPECT_TRUE(parser.addData("<rss version=\"2.0\"><channel><title>Many</title>"));
  for (int i = 0; i < Count; ++i)
    ASSERT_TRUE(parser.addData(item(i)));
  EXPECT_TRUE(parser.addData("</channel></rss>"));
  EXPECT_TRUE(parser.finish());
  EXPECT_TRUE(parser.isComplete());
  EXPECT_TRUE(parser.hasFurtherItems());
  ASSERT_EQ(parser.feed().items.size(), Usual.items);
  EXPECT_EQ(parser.feed().items.front().identity, "0");
  EXPECT_EQ(parser.feed().items.back().identity, "999");
}

TEST(FeedParser, LooksForFurtherItemsOnly) {
  const Result exact = parse(rss(item(1) + item(2)), {1000, 200, 2});
  EXPECT_EQ(exact.feed.items.size(), 2u);
  EXPECT_FALSE(exact.hasFurtherItems);
  EXPECT_TRUE(exact.isComplete);
  const Result fewer = parse(rss(item(1) + item(2)) + "<broken", {1000, 200, 1});
  EXPECT_EQ(fewer.feed.items.size(), 1u);
  EXPECT_TRUE(fewer.hasFurtherItems);
  EXPECT_TRUE(fewer.isComplete);
}

TEST(FeedParser, KeepsTheFirstItemsOfAJsonFeed) {
  const Result result = parse(R"({"version":"https://jsonfeed.org/version/1.1","items":[
      {"id":1},{"id":2,"title":"b"},{"id":3},{"id":4}]})",
                              {1000, 200, 2});
  ASSERT_EQ(result.feed.items.size(), 2u);
  EXPECT_EQ(result.feed.items[0].identity, "1");
  EXPECT_EQ(result.feed.items[0].title, "");
  EXPECT_TRUE(result.hasFurtherItems);
  EXPECT_TRUE(result.isComplete);
}

TEST(FeedParser, EndsALargerDocumentAtTheLimit) {
  const QByteArray document = rss(item(1) + item(2));
  const qint64 size = document.size();
  EXPECT_EQ(parse(document, {size, 200, 10}).error, "");
  const Result result = parse(document, {size - 1, 200, 10});
  EXPECT_EQ(result.error, "larger than the limit of " + std::to_string(size - 1) + " bytes");
  EXPECT_EQ(result.feed.items.size(), 2u);
  EXPECT_FALSE(result.isComplete);
  EXPECT_EQ(parse(rss("<title>" + QByteArray(Usual.bytes, 'x') + "</title>")).error,
            "larger than the limit of 16777216 bytes");
}

TEST(FeedParser, EndsADocumentOfTooManyLevels) {
  const auto nested = [](int levels) {
    return rss(item(1) + QByteArray("<x>").repeated(levels) + QByteArray("</x>").repeated(levels));
  };
  EXPECT_EQ(parse(nested(198)).error, "");
  const Result result = parse(nested(199));
  EXPECT_EQ(result.error, "too deeply nested: more than 200 levels");
  EXPECT_EQ(result.feed.items.size(), 1u);
  // Also inside text.
  EXPECT_EQ(parse(rss("<title>" + QByteArray("<b>").repeated(300))).error,
            "too deeply nested: more than 200 levels");
  EXPECT_EQ(parse(R"({"x":)" + QByteArray("[").repeated(1000000)).error,
            "too deeply nested: more than 200 levels");
}

TEST(FeedParser, LimitsWhatItKeepsOfTexts) {
  const QByteArray large(1 << 20, 'x');
  const Result result = parse(rss("<item><title>" + large + "</title><guid>" + large +
                                  "</guid><link>https://a.example/" + large + "</link></item>"));
  ASSERT_EQ(result.feed.items.size(), 1u);
  EXPECT_EQ(result.feed.items[0].title.size(), 500);
  EXPECT_LT(result.feed.items[0].identity.size(), 100);
  EXPECT_TRUE(result.feed.items[0].link.isEmpty());
}

TEST(FeedParser, TellsLongIdentitiesApart) {
  const QByteArray large(5000, 'x');
  const Result result = parse(rss("<item><guid>" + large + "1</guid></item><item><guid>" + large +
                                  "2</guid></item><item><guid>" + large + "1</guid></item>"));
  ASSERT_EQ(result.feed.items.size(), 3u);
  EXPECT_NE(result.feed.items[0].identity, result.feed.items[1].identity);
  EXPECT_EQ(result.feed.items[0].identity, result.feed.items[2].identity);
}

TEST(FeedParser, LimitsTagsAttributesAndNamespaces) {
  EXPECT_EQ(parse("<rss" + QByteArray(20000, ' ')).error,
            "XML error in line 1: a tag of more than 16384 bytes");
  EXPECT_TRUE(parse("<" + QByteArray(40000, 'a') + ":b>").error.starts_with("XML error in line 1"));
  QByteArray attributes;
  for (int i = 0; i < 200; ++i)
    attributes += " a" + QByteArray::number(i) + "='='";
  EXPECT_EQ(parse("<rss" + attributes + ">").error,
            "XML error in line 1: a tag of more than 128 attributes");
  QByteArray namespaces;
  for (int i = 0; i < 70; ++i)
    namespaces += " xmlns:a" + QByteArray::number(i) + "='u'";
  EXPECT_EQ(parse("<rss" + namespaces + "><channel" + namespaces + ">").error,
            "more than 128 namespaces");
  // Those of siblings are not in scope together.
  const QByteArray sibling = "<item" + namespaces + "><title>x</title></item>";
  EXPECT_EQ(parse(rss(sibling + sibling + sibling)).feed.items.size(), 3u);
}

TEST(FeedParser, LimitsWhatEntitiesStandFor) {
  const QByteArray type = "<!DOCTYPE rss [<!ENTITY x \"" + QByteArray(30000, 'x') + "\">]>";
  EXPECT_EQ(parse(type + rss("<title>" + QByteArray("&x;").repeated(8) + "</title>")).error, "");
  EXPECT_EQ(parse(type + rss("<title>" + QByteArray("&x;").repeated(9) + "</title>")).error,
            "XML error in line 1: entities that stand for more than 262144 bytes");
  EXPECT_EQ(parse("<!DOCTYPE rss [" + QByteArray(70000, ' ') + "]>").error,
            "XML error in line 1: a document type of more than 65536 bytes");
}

TEST(FeedParser, IsNotHeldUpByManyOpenQuotesAndBrackets) {
  // Each of them would be looked for to the end of the text.
  for (const QByteArray part :
       {"&lt;a \"&gt;", "&lt;a", "&lt;!--", "&lt;script&gt;", "&amp;", "&"}) {
    const QByteArray title =
        "<item><title>" + part.repeated(4000) + "</title><guid>1</guid></item>";
    EXPECT_EQ(parse(rss(title.repeated(100))).error, "") << part.constData();
  }
}

TEST(FeedParser, TellsWhatFailedAndStaysFailed) {
  FeedParser parser(QUrl(u"https://base.example/feed"_s));
  EXPECT_FALSE(parser.addData("<rss version='2.0'>\n<channel></rss>"));
  EXPECT_EQ(parser.errorText(), "XML error in line 2: Opening and ending tag mismatch");
  EXPECT_FALSE(parser.addData(item(1)));
  EXPECT_FALSE(parser.finish());
  EXPECT_TRUE(parser.feed().items.empty());
  EXPECT_EQ(parser.errorText(), "XML error in line 2: Opening and ending tag mismatch");
}

TEST(FeedParser, SaysWhenADocumentEndsEarly) {
  for (const char* end : {"<", "&", "&amp", "<!", "<!-", "<!-- x", "<![CDATA[x", "<?x", "<a b='",
                          "<item>", "</channel>", "\xC3"}) {
    const Result result = parse("<rss version='2.0'><channel>" + item(1) + end);
    EXPECT_EQ(result.error, "XML error in line 2: the document ends early") << end;
    EXPECT_EQ(result.feed.items.size(), 1u);
    EXPECT_FALSE(result.isComplete);
  }
  EXPECT_EQ(parse("{\"version\":\n\"").error, "JSON error in line 2: the document ends early");
  EXPECT_EQ(parse("<?xml version='1.0'").error, "not a feed: XML without an element");
}

TEST(FeedParser, RefusesWhatIsNoFeed) {
  EXPECT_EQ(parse("").error, "an empty document");
  EXPECT_EQ(parse("\xEF\xBB\xBF \n").error, "an empty document");
  EXPECT_EQ(parse("<!doctype HTML><p>").error, "not a feed: an HTML page");
  EXPECT_EQ(parse("<body>x").error, "not a feed: an HTML page");
  EXPECT_EQ(parse("<opml version='2.0'><body/></opml>").error,
            "not a feed: XML of the kind <opml>");
  EXPECT_EQ(parse("<" + QByteArray(100, 'a') + "/>").error,
            "not a feed: XML of the kind <" + std::string(39, 'a') + "…>");
  EXPECT_EQ(parse("[{}]").error, "not a feed: a JSON list");
  EXPECT_EQ(parse("{}").error, "not a feed: JSON without the version of JSON Feed");
  EXPECT_EQ(parse("Not found").error, "not a feed: plain text");
  EXPECT_EQ(parse(QByteArray("\0\0\0\x01", 4)).error, "not a feed: binary data");
}

TEST(FeedParser, PrefersTheStatedTimeToLive) {
  const QByteArray update = "<sy:updatePeriod>daily</sy:updatePeriod>"
                            "<sy:updateFrequency>4</sy:updateFrequency>";
  EXPECT_EQ(parse(rss(update)).feed.timeToLive, std::chrono::hours(6));
  EXPECT_EQ(parse(rss("<ttl>10</ttl>" + update)).feed.timeToLive, std::chrono::minutes(10));
  EXPECT_EQ(parse(rss(update + "<ttl>10</ttl>")).feed.timeToLive, std::chrono::minutes(10));
  EXPECT_EQ(parse(rss("<ttl>-5</ttl>")).feed.timeToLive, std::nullopt);
  EXPECT_EQ(parse(rss("<ttl>soon</ttl>")).feed.timeToLive, std::nullopt);
  EXPECT_EQ(parse(rss("<ttl>2000000000</ttl>")).feed.timeToLive, std::chrono::hours(24 * 365));
}

TEST(FeedParser, WarnsOfWhatIsOdd) {
  const Result result =
      parse(rss("<item><title>x</title></item><item><guid>1</guid></item><item/>"
                "<item><title>y\xFF</title><guid>1</guid><pubDate>now</pubDate></item>"),
            {}, u"text/html; charset=x-unknown"_s);
  EXPECT_EQ(result.warnings,
            (QStringList{u"the content type is text/html, not one of feeds"_s,
                         u"the encoding \"x-unknown\" is unknown; UTF-8 is taken"_s,
                         u"1 item says nothing and is left out"_s,
                         u"1 item has no identity of its own; its link and title stand for it"_s,
                         u"1 item has no title"_s,
                         u"1 title has characters that are damaged or in another encoding"_s,
                         u"1 item has a date that cannot be read"_s,
                         u"1 item has the identity of another"_s}));
  for (const QString& type :
       {u"text/xml"_s, u"application/rss+xml; charset=utf-8"_s, u"Application/Feed+JSON"_s, u""_s})
    EXPECT_EQ(parse(rss("<item><guid>1</guid><title>x</title></item>"), {}, type).warnings,
              QStringList());
  EXPECT_EQ(parse(rss("")).warnings, QStringList{u"there are no items"_s});
}
