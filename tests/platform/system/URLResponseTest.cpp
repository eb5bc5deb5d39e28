#include "zqticker/platform/system/URLResponse.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {
const QUrl Address(u"http://example.org/feed"_s);

Ref<URLResponse> responseWith(const HTTPHeaderFields& fields) {
  return URLResponse::make(Address, 200, fields);
}

Ref<URLResponse> responseOfType(const QString& contentType) {
  return responseWith({{u"Content-Type"_s, contentType}});
}
} // namespace

TEST(URLResponse, KeepsAddressStatusAndFieldsInOrder) {
  const HTTPHeaderFields fields = {{u"X-Second"_s, u"b"_s}, {u"x-first"_s, u"a"_s}};
  const Ref<URLResponse> response = URLResponse::make(Address, 404, fields);
  EXPECT_EQ(response->URL(), Address);
  EXPECT_EQ(response->statusCode(), 404);
  EXPECT_EQ(response->allHeaderFields(), fields);
}

TEST(URLResponse, FindsAFieldWhateverItsCase) {
  EXPECT_EQ(responseWith({{u"ETag"_s, u"\"1\""_s}})->valueForHTTPHeaderField(u"etag"),
            std::optional<QString>(u"\"1\""_s));
}

TEST(URLResponse, JoinsRepeatedFields) {
  EXPECT_EQ(responseWith({{u"Vary"_s, u"Accept"_s}, {u"A"_s, u"x"_s}, {u"vary"_s, u"Origin"_s}})
                ->valueForHTTPHeaderField(u"Vary"),
            std::optional<QString>(u"Accept, Origin"_s));
}

TEST(URLResponse, HasNothingForAMissingField) {
  EXPECT_FALSE(responseWith({})->valueForHTTPHeaderField(u"ETag"));
}

TEST(URLResponse, TellsAnEmptyFieldFromAMissingOne) {
  EXPECT_EQ(responseWith({{u"ETag"_s, QString()}})->valueForHTTPHeaderField(u"ETag"),
            std::optional<QString>(QString()));
}

TEST(URLResponse, ReadsTypeAndEncoding) {
  const Ref<URLResponse> response = responseOfType(u"Text/HTML; Charset=UTF-8"_s);
  EXPECT_EQ(response->MIMEType(), u"text/html"_s);
  EXPECT_EQ(response->textEncodingName(), std::optional<QString>(u"UTF-8"_s));
}

TEST(URLResponse, ReadsAnEncodingInQuotes) {
  EXPECT_EQ(responseOfType(u"text/xml;charset=\"iso-8859-1\""_s)->textEncodingName(),
            std::optional<QString>(u"iso-8859-1"_s));
}

TEST(URLResponse, ReadsAnEncodingBehindOtherParameters) {
  EXPECT_EQ(responseOfType(u"text/xml; a=\"x;charset=wrong\" ; flag; charset = utf-16 ; b=1"_s)
                ->textEncodingName(),
            std::optional<QString>(u"utf-16"_s));
}

TEST(URLResponse, TakesBackslashesOutOfAQuotedEncoding) {
  EXPECT_EQ(responseOfType(u"text/xml;charset=\"ut\\f-8\""_s)->textEncodingName(),
            std::optional<QString>(u"utf-8"_s));
}

TEST(URLResponse, HasNoEncodingWhereNoneIsStated) {
  EXPECT_FALSE(responseOfType(u"image/png"_s)->textEncodingName());
  EXPECT_FALSE(responseOfType(u"text/xml; charset="_s)->textEncodingName());
  EXPECT_FALSE(responseOfType(u"text/xml; charset"_s)->textEncodingName());
  EXPECT_FALSE(responseOfType(u"text/xml; charset=\""_s)->textEncodingName());
}

TEST(URLResponse, HasNoTypeWhereNoneIsStated) {
  EXPECT_EQ(responseWith({})->MIMEType(), QString());
  EXPECT_FALSE(responseWith({})->textEncodingName());
}

TEST(URLResponse, ExpectsTheAnnouncedLength) {
  EXPECT_EQ(responseWith({{u"content-length"_s, u"35"_s}})->expectedContentLength(), 35);
}

TEST(URLResponse, ExpectsAnUnknownLengthWithoutAnAnnouncement) {
  EXPECT_EQ(responseWith({})->expectedContentLength(), -1);
}

TEST(URLResponse, ExpectsAnUnknownLengthOfACompressedBody) {
  EXPECT_EQ(responseWith({{u"Content-Length"_s, u"35"_s}, {u"Content-Encoding"_s, u"gzip"_s}})
                ->expectedContentLength(),
            -1);
}

TEST(URLResponse, ExpectsTheAnnouncedLengthOfAnUnchangedBody) {
  EXPECT_EQ(responseWith({{u"Content-Length"_s, u"35"_s}, {u"Content-Encoding"_s, u"identity"_s}})
                ->expectedContentLength(),
            35);
}

TEST(URLResponse, ExpectsAnUnknownLengthOfABodyInChunks) {
  EXPECT_EQ(responseWith({{u"Content-Length"_s, u"35"_s}, {u"Transfer-Encoding"_s, u"chunked"_s}})
                ->expectedContentLength(),
            -1);
}

TEST(URLResponse, ExpectsAnUnknownLengthWhereAnnouncementsDiffer) {
  EXPECT_EQ(responseWith({{u"Content-Length"_s, u"35"_s}, {u"Content-Length"_s, u"36"_s}})
                ->expectedContentLength(),
            -1);
  EXPECT_EQ(responseWith({{u"Content-Length"_s, u"35, 35"_s}})->expectedContentLength(), 35);
}

TEST(URLResponse, ExpectsAnUnknownLengthWhereTheAnnouncementIsNoNumber) {
  for (const QString& text : {u"-5"_s, u"+5"_s, u"0x10"_s, u"5 bytes"_s, QString()})
    EXPECT_EQ(responseWith({{u"Content-Length"_s, text}})->expectedContentLength(), -1)
        << text.toStdString();
}

TEST(URLResponse, ExpectsTheLargestNumberWhereTheAnnouncementIsBeyondIt) {
  EXPECT_EQ(
      responseWith({{u"Content-Length"_s, u"99999999999999999999"_s}})->expectedContentLength(),
      std::numeric_limits<qint64>::max());
}

TEST(URLResponse, HasNoStatusWithoutHTTP) {
  const Ref<URLResponse> response =
      URLResponse::make(QUrl(u"data:,abc"_s), u"text/plain;charset=US-ASCII"_s, 3);
  EXPECT_EQ(response->statusCode(), 0);
  EXPECT_EQ(response->MIMEType(), u"text/plain"_s);
  EXPECT_EQ(response->textEncodingName(), std::optional<QString>(u"US-ASCII"_s));
  EXPECT_EQ(response->expectedContentLength(), 3);
  EXPECT_TRUE(response->allHeaderFields().isEmpty());
}
