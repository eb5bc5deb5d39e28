// Feeds. What is read must not depend on how the document is cut, and must keep what is promised:
// limits, titles on one line without control characters, addresses of the web only.
#include "app/services/FeedParser.h"
#include "tests/app/FeedDescription.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
constexpr std::size_t LargestInput = 1 << 16;

void check(bool holds) {
  if (!holds)
    std::abort();
}

void checkTitle(const QString& title) {
  constexpr qsizetype Longest = 500;
  check(title.size() <= Longest && title == title.trimmed());
  check(std::none_of(title.begin(), title.end(), [](QChar c) {
    return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator || (c >= u'\u202A' && c <= u'\u202E') ||
           (c >= u'\u2066' && c <= u'\u2069');
  }));
}

void checkAddress(const QUrl& url) {
  check(url.isEmpty() || ((url.scheme() == "http"_L1 || url.scheme() == "https"_L1) &&
                          url.isValid() && !url.host().isEmpty()));
}

void checkFeed(const Feed& feed, const FeedLimits& limits) {
  check(feed.items.size() <= limits.items);
  checkTitle(feed.title);
  checkAddress(feed.link);
  checkAddress(feed.picture);
  for (const FeedItem& item : feed.items) {
    check(!item.identity.isEmpty());
    checkTitle(item.title);
    checkAddress(item.link);
    checkAddress(item.picture);
    check(!item.published || item.published->isValid());
  }
}

QString parse(QByteArrayView document, const QString& type, const FeedLimits& limits,
              qsizetype size) {
  FeedParser parser(QUrl(u"https://base.example/feeds/feed"_s), type, limits);
  for (qsizetype i = 0; i < document.size(); i += size)
    parser.addData(document.sliced(i, std::min(size, document.size() - i)));
  check(parser.finish() == parser.errorText().isEmpty());
  check(parser.isComplete() == parser.errorText().isEmpty());
  check(!parser.errorText().contains(u'\n'));
  checkFeed(parser.feed(), limits);
  return zq::app::testing::describe(parser);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > LargestInput)
    return 0;
  const QByteArrayView document(data, qsizetype(size));
  // Derived from the length, so that the seeds are documents as they are.
  static const QStringList types{u""_s, u"text/xml; charset=utf-16"_s, u"text/xml"_s,
                                 u"application/xml; charset=\"windows-1251\""_s,
                                 u"application/json; charset=shift_jis"_s};
  const QString& type = types[qsizetype(size) % types.size()];
  const FeedLimits limits{size % 7 == 0 ? 1000 : qint64(LargestInput), 50, 1 + size % 20};
  const QString whole = parse(document, type, limits, document.size() + 1);
  for (const qsizetype piece : {1, 7, 64})
    check(parse(document, type, limits, piece) == whole);
  return 0;
}
