// Addresses that carry their body.
#include "tests/platform/system/ConnectionRecorder.h"
#include "zqticker/platform/system/url_errors.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {
class DataAddress : public ::testing::Test {
 protected:
  // Loads `text`, and returns the only response.
  const URLResponse& load(const QByteArray& text) {
    EXPECT_TRUE(recorder.load(QUrl::fromEncoded(text)));
    EXPECT_TRUE(recorder.isFinished) << recorder.errorText().toStdString();
    return *recorder.responses.at(0);
  }
  int errorOf(const QByteArray& text) {
    EXPECT_TRUE(recorder.load(QUrl::fromEncoded(text)));
    return recorder.errorCode();
  }

  ConnectionRecorder recorder;
};
} // namespace

TEST_F(DataAddress, IsAsciiTextByDefault) {
  const URLResponse& response = load("data:,A%20brief%20note");
  EXPECT_EQ(recorder.body(), "A brief note");
  EXPECT_EQ(response.MIMEType(), u"text/plain"_s);
  EXPECT_EQ(response.textEncodingName(), std::optional<QString>(u"US-ASCII"_s));
  EXPECT_EQ(response.expectedContentLength(), 12);
  EXPECT_EQ(response.statusCode(), 0);
}

TEST_F(DataAddress, StatesItsType) {
  const URLResponse& response = load("data:text/html;charset=utf-8,%3Cp%3E%C3%A9");
  EXPECT_EQ(recorder.body(), "<p>\xc3\xa9");
  EXPECT_EQ(response.MIMEType(), u"text/html"_s);
  EXPECT_EQ(response.textEncodingName(), std::optional<QString>(u"utf-8"_s));
}

TEST_F(DataAddress, IsPlainTextWithAnEncodingAlone) {
  const URLResponse& response = load("data:;charset=utf-8,a");
  EXPECT_EQ(response.MIMEType(), u"text/plain"_s);
  EXPECT_EQ(response.textEncodingName(), std::optional<QString>(u"utf-8"_s));
}

TEST_F(DataAddress, DecodesBase64) {
  load("data:application/octet-stream;base64,AAH//g==");
  EXPECT_EQ(recorder.body(), QByteArray("\0\1\xff\xfe", 4));
}

TEST_F(DataAddress, DecodesBase64WithEscapesSpacesAndWithoutPadding) {
  load("data:;BASE64,AAH%2F%2Fg%20");
  EXPECT_EQ(recorder.body(), QByteArray("\0\1\xff\xfe", 4));
}

TEST_F(DataAddress, KeepsPlusSignsQuestionMarksAndFurtherCommas) {
  load("data:,a+b?c=1,2");
  EXPECT_EQ(recorder.body(), "a+b?c=1,2");
}

TEST_F(DataAddress, LeavesItsFragmentOut) {
  load("data:,body#part");
  EXPECT_EQ(recorder.body(), "body");
}

TEST_F(DataAddress, MayBeEmpty) {
  load("data:,");
  EXPECT_TRUE(recorder.pieces.empty());
  EXPECT_EQ(recorder.responses[0]->expectedContentLength(), 0);
}

TEST_F(DataAddress, KeepsZeroBytes) {
  load("data:,a%00b");
  EXPECT_EQ(recorder.body(), QByteArray("a\0b", 3));
}

TEST_F(DataAddress, FailsWithoutAComma) {
  EXPECT_EQ(errorOf("data:text/plain"), BadURL);
  EXPECT_TRUE(recorder.responses.empty());
}

TEST_F(DataAddress, FailsWithBrokenBase64) {
  EXPECT_EQ(errorOf("data:;base64,A*B="), CannotDecodeContentData);
  EXPECT_TRUE(recorder.responses.empty());
}
