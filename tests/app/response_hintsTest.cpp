#include "app/services/response_hints.h"

#include <gtest/gtest.h>

#include <map>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using zq::app::headerDate;
using zq::app::ResponseHints;
using zq::app::responseHints;

namespace {
const QDateTime Now(QDate(2024, 2, 29), QTime(12, 0, 0), Qt::UTC);
constexpr std::chrono::seconds TenYears = std::chrono::days(3650);

using Header = std::map<QString, QString>;

ResponseHints hints(const Header& header, const QDateTime& now = Now) {
  return responseHints(
      [&](QStringView name) -> std::optional<QString> {
        const auto found = header.find(name.toString());
        return found == header.end() ? std::nullopt : std::optional(found->second);
      },
      now);
}
} // namespace

TEST(ResponseHints, ReadsTheThreeFormsOfDates) {
  const QDateTime expected(QDate(1994, 11, 6), QTime(8, 49, 37), Qt::UTC);
  for (const QString& text :
       {u"Sun, 06 Nov 1994 08:49:37 GMT"_s, u"Sunday, 06-Nov-94 08:49:37 GMT"_s,
        u"Sun Nov  6 08:49:37 1994"_s, u"  Sun, 06 Nov 1994 08:49:37 GMT "_s})
    EXPECT_EQ(headerDate(text, Now), expected) << text.toStdString();
  EXPECT_EQ(headerDate(u"Thursday, 29-Feb-24 12:00:00 GMT"_s, Now), Now) << "not 1924";
  EXPECT_EQ(headerDate(u"Sun, 06 Nov 1994 08:49:37 GMT"_s, Now).timeSpec(), Qt::UTC);
  for (const QString& text :
       {u""_s, u"0"_s, u"-1"_s, u"tomorrow"_s, u"2024-02-29T12:00:00Z"_s,
        u"Sun, 06 Nov 1994 08:49:37 CET"_s, u"Sun, 31 Feb 2024 08:49:37 GMT"_s})
    EXPECT_FALSE(headerDate(text, Now).isValid()) << text.toStdString();
}

TEST(ResponseHints, ReadsHowLongAnAnswerIsFresh) {
  const QString cacheControl = u"Cache-Control"_s;
  const QString expires = u"Expires"_s;
  const QString date = u"Date"_s;
  const QString age = u"Age"_s;
  const QString now = u"Thu, 29 Feb 2024 12:00:00 GMT"_s;
  const QString tenMinutesAgo = u"Thu, 29 Feb 2024 11:50:00 GMT"_s;
  const QString inAnHour = u"Thu, 29 Feb 2024 13:00:00 GMT"_s;
  const struct {
    const char* what;
    Header header;
    std::optional<std::chrono::seconds> freshFor;
  } cases[] = {
      {"nothing said", {}, std::nullopt},
      {"max-age", {{cacheControl, u"public, max-age=600"_s}}, 600s},
      {"max-age in capitals and quotes", {{cacheControl, u"Max-Age=\"600\""_s}}, 600s},
      {"the first of two", {{cacheControl, u"max-age=600, max-age=5"_s}}, 600s},
      {"s-maxage is for proxies", {{cacheControl, u"s-maxage=600"_s}}, std::nullopt},
      {"max-age of nothing", {{cacheControl, u"max-age=0"_s}}, std::nullopt},
      {"max-age below nothing", {{cacheControl, u"max-age=-5"_s}}, std::nullopt},
      {"max-age without a number", {{cacheControl, u"max-age=soon"_s}}, std::nullopt},
      {"max-age too large for any number",
       {{cacheControl, u"max-age=99999999999999999999999"_s}},
       TenYears},
      {"not to be kept", {{cacheControl, u"max-age=600, no-store"_s}}, std::nullopt},
      {"to be asked for always", {{cacheControl, u"no-cache, max-age=600"_s}}, std::nullopt},
      {"an age", {{cacheControl, u"max-age=600"_s}, {age, u"200"_s}}, 400s},
      {"older than it may be", {{cacheControl, u"max-age=600"_s}, {age, u"700"_s}}, std::nullopt},
      {"made ten minutes ago", {{cacheControl, u"max-age=900"_s}, {date, tenMinutesAgo}}, 300s},
      {"the larger of two ages",
       {{cacheControl, u"max-age=900"_s}, {date, tenMinutesAgo}, {age, u"700"_s}},
       200s},
      {"a server whose clock is ahead", {{cacheControl, u"max-age=600"_s}, {date, inAnHour}}, 600s},
      {"Expires", {{expires, inAnHour}}, 3600s},
      {"Expires by the server's own clock", {{expires, inAnHour}, {date, tenMinutesAgo}}, 3600s},
      {"max-age goes before Expires", {{cacheControl, u"max-age=60"_s}, {expires, inAnHour}}, 60s},
      {"expired", {{expires, tenMinutesAgo}}, std::nullopt},
      {"Expires that is no date", {{expires, u"0"_s}}, std::nullopt},
      {"expires now", {{expires, now}}, std::nullopt},
  };
  for (const auto& example : cases) {
    EXPECT_EQ(hints(example.header).freshFor, example.freshFor) << example.what;
    EXPECT_EQ(hints(example.header).retryAfter, std::nullopt) << example.what;
  }
}

TEST(ResponseHints, ReadsHowLongTheServerAsksToBeLeftAlone) {
  const struct {
    QString text;
    std::optional<std::chrono::seconds> retryAfter;
  } cases[] = {
      {u"120"_s, 120s},
      {u" 120 "_s, 120s},
      {u"0"_s, 0s},
      {u"Thu, 29 Feb 2024 12:02:00 GMT"_s, 120s},
      {u"Thu, 29 Feb 2024 11:00:00 GMT"_s, 0s},
      {u"99999999999999999999999"_s, TenYears},
      {u"-5"_s, std::nullopt},
      {u"1.5"_s, std::nullopt},
      {u"soon"_s, std::nullopt},
      {u""_s, std::nullopt},
  };
  for (const auto& example : cases)
    EXPECT_EQ(hints({{u"Retry-After"_s, example.text}}).retryAfter, example.retryAfter)
        << example.text.toStdString();
}

TEST(ResponseHints, TakesAClockOfAnotherTimeZone) {
  const QDateTime elsewhere = Now.toOffsetFromUtc(5 * 3600);
  EXPECT_EQ(hints({{u"Retry-After"_s, u"Thu, 29 Feb 2024 12:02:00 GMT"_s}}, elsewhere).retryAfter,
            120s);
}
