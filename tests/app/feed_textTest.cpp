// Titles and addresses of feeds, made fit to be shown.
#include "app/services/feed_text.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
std::string html(const QString& text) {
  return titleText(text, FeedTextKind::Html).toStdString();
}

std::string plain(const QString& text) {
  return titleText(text, FeedTextKind::Plain).toStdString();
}

std::string address(const QString& text) {
  return webAddress(QUrl(u"https://base.example/feeds/news?x=1"_s), text)
      .toString(QUrl::FullyEncoded)
      .toStdString();
}
} // namespace

TEST(FeedTitle, LosesItsMarkup) {
  EXPECT_EQ(html(u"<b>Bold</b> and <a href='x>y'>linked</a>"_s), "Bold and linked");
  EXPECT_EQ(html(u"One<br>two<p>three</p>four"_s), "One two three four");
  EXPECT_EQ(html(u"un<i>brok</i>en"_s), "unbroken");
  EXPECT_EQ(html(u"a<!-- b > c -->d"_s), "ad");
  EXPECT_EQ(html(u"a<script>if (1 < 2) b();</script>c<STYLE>x{}</STYLE>d"_s), "a c d");
  EXPECT_EQ(html(u"<img alt=\"unclosed>Text"_s), "Text");
  EXPECT_EQ(html(u"a<script>never closed"_s), "a");
}

TEST(FeedTitle, KeepsWhatIsNoMarkup) {
  EXPECT_EQ(html(u"1 < 2 > 0, vector<int>, I <3 you, <"_s), "1 < 2 > 0, vector<int>, I <3 you, <");
  EXPECT_EQ(html(u"<b"_s), "<b");
  EXPECT_EQ(plain(u"<b>&amp;</b>"_s), "<b>&amp;</b>");
}

TEST(FeedTitle, HasItsEntitiesDecodedOnceOrTwice) {
  EXPECT_EQ(html(u"R&amp;D &eacute;&#8217;&#x2014;"_s), "R&D é’—");
  EXPECT_EQ(html(u"Tom &amp;amp; Jerry&amp;#39;s"_s), "Tom & Jerry's");
  EXPECT_EQ(html(u"&lt;em&gt;hidden&lt;/em&gt;"_s), "hidden");
  EXPECT_EQ(html(u"The &lt;b&gt; element"_s), "The <b> element");
  EXPECT_EQ(html(u"AT&T &; & &nothing; &#xZZ; &amp"_s), "AT&T &; & &nothing; &#xZZ; &amp");
  EXPECT_EQ(html(u"&#150;&#x80;"_s), "–€");
  EXPECT_EQ(html(u"a&#0;b&#10;c&#x202E;d&#xD800;"_s), "ab cd\uFFFD");
}

TEST(FeedTitle, StandsOnOneLine) {
  EXPECT_EQ(plain(u"  a\r\n\t b\u2028c\u0085d\u00A0\u3000e  "_s), "a b c d e");
  EXPECT_EQ(plain(u" \n "_s), "");
}

TEST(FeedTitle, LosesWhatTurnsOrHidesText) {
  EXPECT_EQ(plain(u"a\u202Eb\u202Cc\u2066d\u2069e\uFEFFf\u00ADg\u007Fh\u009Bi"_s), "abcdefghi");
  // Joiners make one picture of several.
  EXPECT_EQ(plain(u"👩\u200D🚀"_s), "👩\u200D🚀");
  const QChar alone[] = {u'a', QChar(0xD83D), u'b', QChar(0xDE80)};
  EXPECT_EQ(plain(QString(alone, 4)), "a\uFFFDb\uFFFD");
}

TEST(FeedTitle, IsCutBetweenCharacters) {
  EXPECT_EQ(titleText(u"abcdef"_s, FeedTextKind::Plain, 6), "abcdef");
  EXPECT_EQ(titleText(u"abcdefg"_s, FeedTextKind::Plain, 6), "abcde…");
  EXPECT_EQ(titleText(u"abcd efg"_s, FeedTextKind::Plain, 6), "abcd…");
  EXPECT_EQ(titleText(u"abcde\u0301fg"_s, FeedTextKind::Plain, 6), "abcd…");
  EXPECT_EQ(titleText(u"abcd🚀fg"_s, FeedTextKind::Plain, 6), "abcd…");
  const QString marks = u'a' + QString(1000, QChar(0x301));
  EXPECT_EQ(titleText(marks, FeedTextKind::Plain, 6).size(), 6);
  EXPECT_EQ(titleText(QString(100000, u'x'), FeedTextKind::Plain).size(), LongestTitle);
}

TEST(FirstWords, EndWithAWord) {
  const QString text = u"<p>word "_s + QString(u"longer words "_s).repeated(20);
  const QString words = firstWords(text, FeedTextKind::Html);
  EXPECT_LE(words.size(), LongestFirstWords);
  EXPECT_TRUE(words.startsWith(u"word longer words"_s));
  EXPECT_TRUE(words.endsWith(u"words…"_s) || words.endsWith(u"longer…"_s)) << words.toStdString();
  EXPECT_EQ(firstWords(QString(300, u'x'), FeedTextKind::Plain).size(), LongestFirstWords);
  EXPECT_EQ(firstWords(u"short"_s, FeedTextKind::Plain), "short");
}

TEST(WebAddress, IsResolved) {
  EXPECT_EQ(address(u" https://a.example/b "_s), "https://a.example/b");
  EXPECT_EQ(address(u"1.html"_s), "https://base.example/feeds/1.html");
  EXPECT_EQ(address(u"/1"_s), "https://base.example/1");
  EXPECT_EQ(address(u"//other.example/1"_s), "https://other.example/1");
  EXPECT_EQ(address(u"?y=2"_s), "https://base.example/feeds/news?y=2");
  EXPECT_EQ(address(u"HTTP://A.example/a b?ü"_s), "http://a.example/a%20b?%C3%BC");
}

TEST(WebAddress, IsNothingElse) {
  for (const QString& text :
       {u""_s, u"  "_s, u"javascript:alert(1)"_s, u"ftp://a.example/"_s, u"file:///etc/passwd"_s,
        u"data:text/html,x"_s, u"mailto:a@b.example"_s, u"http://"_s, u"https:///path"_s,
        u"http://a.example:port/"_s, QString(u"https://a.example/"_s + QString(5000, u'x'))})
    EXPECT_EQ(address(text), "") << text.left(40).toStdString();
  EXPECT_TRUE(webAddress(QUrl(u"file:///feeds/a.xml"_s), u"1.html"_s).isEmpty());
  EXPECT_TRUE(webAddress({}, u"1.html"_s).isEmpty());
}
