#include "zqticker/platform/text/string_search.h"

#include <gtest/gtest.h>

#include <QtCore/QString>

using namespace Qt::StringLiterals;
using zq::platform::indexOfString;

TEST(StringSearch, FindsTheFirstFromAnIndexOn) {
  EXPECT_EQ(indexOfString(u"abcabc", u"bc"), 1);
  EXPECT_EQ(indexOfString(u"abcabc", u"bc", 1), 1);
  EXPECT_EQ(indexOfString(u"abcabc", u"bc", 2), 4);
  EXPECT_EQ(indexOfString(u"abcabc", u"c", 3), 5);
  EXPECT_EQ(indexOfString(u"abcabc", u"abcabc"), 0);
  EXPECT_EQ(indexOfString(u"abcabc", u"abcabc", 1), -1);
  EXPECT_EQ(indexOfString(u"abc", u"C"), -1);
  EXPECT_EQ(indexOfString(u"abc", u"abcd"), -1);
  EXPECT_EQ(indexOfString(u"abc", u"c", 3), -1);
}

TEST(StringSearch, TheEmptyStringStandsNowhere) {
  EXPECT_EQ(indexOfString(u"abc", u""), -1);
  EXPECT_EQ(indexOfString(u"", u""), -1);
}

TEST(StringSearch, FindsStringsOfEveryLengthThatRepeatThemselves) {
  for (qsizetype period = 1; period < 8; ++period)
    for (qsizetype length = 1; length < 100; ++length) {
      QString string;
      for (qsizetype i = 0; i < length; ++i)
        string += QChar(u'a' + char16_t(i % period));
      string += u'.';
      const QString text = string.chopped(1).repeated(3) + string.repeated(2);
      EXPECT_EQ(indexOfString(text, string), text.indexOf(string));
      EXPECT_EQ(indexOfString(text, string, text.size() / 2),
                text.indexOf(string, text.size() / 2));
    }
}

// By comparing at every index, this would be 10^12 comparisons.
TEST(StringSearch, TakesLinearTimeForStringsThatNearlyMatchEverywhere) {
  const QString text(5'000'000, u'a');
  const QString many(1'000'000, u'a');
  for (const QString& string : {QString(u"b"_s + many), QString(many + u"b"_s),
                                QString(u"b"_s + many.first(31)), QString(u"b"_s + many.first(40))})
    EXPECT_EQ(indexOfString(text, string), -1);
}
