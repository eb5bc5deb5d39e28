// The command `feed check` as a user meets it, on files and against a server on loopback.
#include "tests/app/Program.h"
#include "tests/support/HttpServer.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app::testing;
using namespace zq::testing;

namespace {
const QByteArray Feed =
    "<?xml version='1.0'?><rss version='2.0'><channel><title>News &amp; more</title>"
    "<link>https://news.example/</link><ttl>5</ttl>"
    "<item><title>First</title><link>/1</link><guid>1</guid>"
    "<pubDate>Fri, 20 Nov 2026 18:30:00 GMT</pubDate>"
    "<enclosure url='p.png' type='image/png'/></item>"
    "<item><title>Zweite \xC3\x9C"
    "berschrift</title></item></channel></rss>";

class FeedCheck : public ::testing::Test {
 protected:
  QString address(const QByteArray& path) const { return server_.url(path).toString(); }
  QString write(const QString& name, const QByteArray& bytes) const {
    QFile file(folder_.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return file.fileName();
  }
  Outcome check(const QStringList& arguments) const {
    return runZqticker(QStringList{u"feed"_s, u"check"_s} + arguments);
  }
  QJsonObject checkJson(const QString& source, int status) const {
    const Outcome outcome = check({u"--json"_s, source});
    EXPECT_EQ(outcome.status, status) << outcome.errors.constData();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(outcome.output, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << outcome.output.constData();
    return document.object();
  }
  void expectFailure(const Outcome& outcome, int status, const QByteArray& line) const {
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.errors, "zqticker: " + line + "\n");
    EXPECT_EQ(outcome.output, "");
  }

  HttpServer server_;
  QTemporaryDir folder_;
};
} // namespace

TEST_F(FeedCheck, PrintsWhatStandsInAFile) {
  const Outcome outcome = check({write(u"feed.xml"_s, Feed)});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(outcome.output, "Format: RSS 2.0\n"
                            "Title: News & more\n"
                            "Link: https://news.example/\n"
                            "Time to live: 300 s\n"
                            "Items: 2\n"
                            "\n1. First\n"
                            "   Date: 2026-11-20 18:30:00 UTC\n"
                            "\n2. Zweite \xC3\x9C"
                            "berschrift\n"
                            "\nWarning: 1 item has no identity of its own; its link and title "
                            "stand for it\n");
}

TEST_F(FeedCheck, ResolvesAddressesAgainstThatOfTheServer) {
  server_.route("/feeds/news", 200, Feed);
  const QJsonObject feed = checkJson(address("/feeds/news"), 0);
  EXPECT_EQ(feed[u"outcome"], u"finished"_s);
  EXPECT_EQ(feed[u"url"], address("/feeds/news"));
  EXPECT_EQ(feed[u"format"], u"RSS 2.0"_s);
  EXPECT_EQ(feed[u"timeToLive"], 300);
  EXPECT_EQ(feed[u"furtherItems"], false);
  EXPECT_TRUE(feed[u"error"].isNull());
  ASSERT_EQ(feed[u"items"].toArray().size(), 2);
  const QJsonObject first = feed[u"items"][0].toObject();
  EXPECT_EQ(first[u"identity"], u"1"_s);
  EXPECT_EQ(first[u"link"], address("/1"));
  EXPECT_EQ(first[u"picture"], address("/feeds/p.png"));
  EXPECT_EQ(first[u"published"], u"2026-11-20T18:30:00Z"_s);
  EXPECT_TRUE(feed[u"items"][1].toObject()[u"published"].isNull());
}

TEST_F(FeedCheck, TellsOfServersThatSayNo) {
  server_.route("/gone", 404, Feed);
  expectFailure(check({address("/gone")}), 1,
                address("/gone").toUtf8() + ": the server answers with status 404");
}

TEST_F(FeedCheck, TellsWhatIsNoFeedInOneLine) {
  const QString page = write(u"page.html"_s, "<!DOCTYPE html><p>A page");
  expectFailure(check({page}), 1, page.toUtf8() + ": not a feed: an HTML page");
  server_.route("/page", 200, "<!DOCTYPE html><p>A page");
  expectFailure(check({address("/page")}), 1,
                address("/page").toUtf8() + ": not a feed: an HTML page");
  const QString missing = folder_.filePath(u"missing.xml"_s);
  expectFailure(check({missing}), 1, missing.toUtf8() + ": cannot read: No such file or directory");
  expectFailure(check({folder_.path()}), 1, folder_.path().toUtf8() + ": a folder");
  // Without an end.
  expectFailure(check({u"/dev/zero"_s}), 1, "/dev/zero: not a feed: binary data");
}

TEST_F(FeedCheck, GivesWhatItReadOfABrokenFeedAsJson) {
  const QString path = write(u"cut.xml"_s, Feed.left(Feed.indexOf("<item><title>Zweite") + 10));
  const QJsonObject feed = checkJson(path, 1);
  EXPECT_EQ(feed[u"outcome"], u"failed"_s);
  EXPECT_EQ(feed[u"error"], u"XML error in line 1: the document ends early"_s);
  EXPECT_EQ(feed[u"items"].toArray().size(), 1);
}

TEST_F(FeedCheck, RefusesAWrongCommandLine) {
  expectFailure(check({}), 2, "URL: missing (see zqticker feed check --help)");
  expectFailure(runZqticker({u"feed"_s}), 2, "feed: needs \"check\" (see zqticker feed --help)");
  expectFailure(runZqticker({u"feed"_s, u"chek"_s}), 2,
                "feed: needs \"check\" (see zqticker feed --help)");
  EXPECT_EQ(check({u"--timeout"_s, u"soon"_s, u"x"_s}).status, 2);
  EXPECT_EQ(check({u"a"_s, u"b"_s}).status, 2);
}

TEST_F(FeedCheck, HelpsInEveryWay) {
  const Outcome outcome = check({u"--help"_s});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.output.startsWith("Usage: zqticker feed check [OPTION]... URL\n"))
      << outcome.output.constData();
  EXPECT_EQ(runZqticker({u"feed"_s, u"--help"_s}).output, outcome.output);
  EXPECT_EQ(runZqticker({u"help"_s, u"feed"_s}).output, outcome.output);
  EXPECT_EQ(runZqticker({u"help"_s, u"feed"_s, u"check"_s}).output, outcome.output);
  EXPECT_TRUE(runZqticker({u"--help"_s}).output.contains("\n  feed "));
}
