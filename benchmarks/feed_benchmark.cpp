// Feeds of several megabytes, of the shape that blogs and news sites have: how fast they are read,
// beside the XML reader below reading the same tokens of the same bytes and doing nothing.
//
//   ParseRss          RSS 2.0 with escaped descriptions, pictures and dates, all items kept
//   ReadRssTokens     its tokens, by QXmlStreamReader
//   ParseAtom         Atom with escaped content
//   ReadAtomTokens    its tokens
//   ParseSkipped      the RSS feed beyond the limit of items, the rest passed over
//   ParseJson         the same items as JSON Feed
//   ReadJsonDocument  the same by QJsonDocument, which makes a tree of them
//
// All take the bytes in pieces of 16 KiB, as a network gives them, except QJsonDocument, which
// takes the whole.
#include "app/services/FeedParser.h"
#include "benchmarks/ratio_main.h"

#include <benchmark/benchmark.h>

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QXmlStreamReader>

#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {

constexpr int ItemCount = 4000;
constexpr qsizetype BytesPerPiece = 16 << 10;
constexpr qint64 Unlimited = qint64(1) << 40;

QByteArray paragraphs(int item) {
  QByteArray text;
  for (int i = 0; i < 3 + item % 5; ++i)
    text += "&lt;p&gt;The harbour office tells that the &lt;a "
            "href=\"https://harbour.example/ferries?line=7&amp;amp;dock=2\"&gt;ferry&lt;/a&gt; at "
            "noon is late, and caf\xC3\xA9s along the quay stay open until the last of its "
            "passengers has had a seat and something warm.&lt;/p&gt;\n";
  return text;
}

QByteArray rssFeed() {
  QByteArray feed = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rss version=\"2.0\" "
                    "xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
                    "xmlns:content=\"http://purl.org/rss/1.0/modules/content/\" "
                    "xmlns:media=\"http://search.yahoo.com/mrss/\" "
                    "xmlns:atom=\"http://www.w3.org/2005/Atom\">\n<channel>\n"
                    "  <title>Harbour Office</title>\n  <link>https://harbour.example/</link>\n";
  for (int i = 0; i < ItemCount; ++i) {
    const QByteArray number = QByteArray::number(i);
    feed += "  <item>\n    <title>Ferry " + number +
            " leaves late &amp; full, says the harbour&#8217;s office</title>\n"
            "    <link>https://harbour.example/news/" +
            number +
            "?from=feed&amp;kind=ferry</link>\n    <dc:creator><![CDATA[Night shift]]>"
            "</dc:creator>\n    <pubDate>Fri, 20 Nov 2026 18:30:00 +0000</pubDate>\n"
            "    <category><![CDATA[Ferries]]></category>\n    <category>"
            "<![CDATA[Weather]]></category>\n    <guid isPermaLink=\"false\">"
            "https://harbour.example/?p=" +
            number + "</guid>\n    <description>" + paragraphs(i).left(400) +
            "</description>\n    <content:encoded>" + paragraphs(i) +
            "</content:encoded>\n    <media:content url=\"https://harbour.example/pictures/" +
            number + ".jpg\" medium=\"image\" width=\"640\" height=\"480\"/>\n  </item>\n";
  }
  return feed + "</channel>\n</rss>\n";
}

QByteArray atomFeed() {
  QByteArray feed = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                    "<feed xmlns=\"http://www.w3.org/2005/Atom\">\n<title>Garden</title>\n"
                    "<link href=\"https://garden.example/\"/>\n";
  for (int i = 0; i < ItemCount; ++i) {
    const QByteArray number = QByteArray::number(i);
    feed += "<entry>\n  <title type=\"html\">Compost, part " + number +
            ": turn &amp;amp; wait</title>\n  <link rel=\"alternate\" type=\"text/html\" "
            "href=\"https://garden.example/" +
            number + "\"/>\n  <id>tag:garden.example,2026:" + number +
            "</id>\n  <published>2026-11-19T06:00:00Z</published>\n"
            "  <updated>2026-11-20T18:30:02Z</updated>\n  <author><name>Jo</name></author>\n"
            "  <content type=\"html\">" +
            paragraphs(i) + "</content>\n</entry>\n";
  }
  return feed + "</feed>\n";
}

QByteArray jsonFeed() {
  QByteArray feed = "{\"version\": \"https://jsonfeed.org/version/1.1\", \"title\": \"Harbour\", "
                    "\"items\": [";
  for (int i = 0; i < ItemCount; ++i) {
    const QByteArray number = QByteArray::number(i);
    feed += QByteArray(i > 0 ? "," : "") + "\n{\"id\": \"" + number + "\", \"title\": \"Ferry " +
            number + " leaves late\", \"url\": \"https://harbour.example/" + number +
            "\", \"date_published\": \"2026-11-20T10:00:00Z\", \"content_html\": \"" +
            paragraphs(i).replace("\"", "\\\"").replace("\n", "\\n") + "\"}";
  }
  return feed + "]}\n";
}

// Whether `parser` takes the whole document with the number of items that there should be.
void parse(benchmark::State& state, const QByteArray& document, std::size_t items) {
  for (auto _ : state) {
    FeedParser parser(QUrl(u"https://harbour.example/feed"_s), u"text/xml; charset=utf-8"_s,
                      {Unlimited, 200, items});
    for (qsizetype i = 0; i < document.size(); i += BytesPerPiece)
      parser.addData(
          QByteArrayView(document).sliced(i, std::min(BytesPerPiece, document.size() - i)));
    if (!parser.finish() || parser.feed().items.size() != std::min<std::size_t>(items, ItemCount))
      std::abort();
    benchmark::DoNotOptimize(parser.feed());
  }
  state.SetBytesProcessed(state.iterations() * document.size());
}

void readTokens(benchmark::State& state, const QByteArray& document) {
  for (auto _ : state) {
    QXmlStreamReader reader;
    for (qsizetype i = 0; i < document.size(); i += BytesPerPiece) {
      reader.addData(document.mid(i, BytesPerPiece));
      while (!reader.atEnd())
        reader.readNext();
    }
    if (reader.hasError())
      std::abort();
  }
  state.SetBytesProcessed(state.iterations() * document.size());
}

const QByteArray& rss() {
  static const QByteArray feed = rssFeed();
  return feed;
}

const QByteArray& atom() {
  static const QByteArray feed = atomFeed();
  return feed;
}

const QByteArray& json() {
  static const QByteArray feed = jsonFeed();
  return feed;
}

void ParseRss(benchmark::State& state) {
  parse(state, rss(), ItemCount);
}
void ReadRssTokens(benchmark::State& state) {
  readTokens(state, rss());
}
void ParseAtom(benchmark::State& state) {
  parse(state, atom(), ItemCount);
}
void ReadAtomTokens(benchmark::State& state) {
  readTokens(state, atom());
}
void ParseSkipped(benchmark::State& state) {
  parse(state, rss(), 100);
}
void ParseJson(benchmark::State& state) {
  parse(state, json(), ItemCount);
}
void ReadJsonDocument(benchmark::State& state) {
  for (auto _ : state) {
    const QJsonDocument document = QJsonDocument::fromJson(json());
    if (!document.isObject())
      std::abort();
    benchmark::DoNotOptimize(document);
  }
  state.SetBytesProcessed(state.iterations() * json().size());
}

BENCHMARK(ParseRss)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadRssTokens)->Unit(benchmark::kMillisecond);
BENCHMARK(ParseAtom)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadAtomTokens)->Unit(benchmark::kMillisecond);
BENCHMARK(ParseSkipped)->Unit(benchmark::kMillisecond);
BENCHMARK(ParseJson)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadJsonDocument)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
  return runBenchmarks(argc, argv,
                       {{"ParseRss", "ReadRssTokens"},
                        {"ParseAtom", "ReadAtomTokens"},
                        {"ParseJson", "ReadJsonDocument"}});
}
