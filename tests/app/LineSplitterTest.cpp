#include "app/intake/LineSplitter.h"

#include <gtest/gtest.h>

#include <QtCore/QStringList>

using namespace Qt::StringLiterals;
using zq::app::LineSplitter;
using zq::app::LongestLine;
using zq::app::showableLine;

namespace {
QStringList split(const QList<QByteArray>& parts, qsizetype longest = LongestLine) {
  QStringList lines;
  LineSplitter splitter([&](const QString& line) { lines.append(line); }, longest);
  for (const QByteArray& part : parts)
    splitter.append(part);
  splitter.finish();
  return lines;
}
} // namespace

TEST(LineSplitter, CutsAtLineFeeds) {
  EXPECT_EQ(split({"one\ntwo\nthree\n"}), (QStringList{u"one"_s, u"two"_s, u"three"_s}));
}

TEST(LineSplitter, GivesOutALineAsSoonAsItIsComplete) {
  QStringList lines;
  LineSplitter splitter([&](const QString& line) { lines.append(line); });
  splitter.append("on");
  EXPECT_EQ(lines, QStringList());
  splitter.append("e\ntw");
  EXPECT_EQ(lines, QStringList{u"one"_s});
}

TEST(LineSplitter, TakesWhatIsLeftAtTheEndAsALine) {
  EXPECT_EQ(split({"one\nlast"}), (QStringList{u"one"_s, u"last"_s}));
}

TEST(LineSplitter, DoesNotCareWhereTheBytesAreCut) {
  const QByteArray text = "Grüße\r\nनमस्ते\n😀\n";
  QList<QByteArray> bytes;
  for (const char byte : text)
    bytes.append(QByteArray(1, byte));
  EXPECT_EQ(split(bytes), (QStringList{u"Grüße"_s, u"नमस्ते"_s, u"😀"_s}));
}

TEST(LineSplitter, TakesCarriageReturnAndLineFeedAsOneEnd) {
  EXPECT_EQ(split({"one\r\ntwo\r\n"}), (QStringList{u"one"_s, u"two"_s}));
}

TEST(LineSplitter, LeavesLinesWithoutContentOut) {
  EXPECT_EQ(split({"\n\n  \t\n\r\n\x1b[0m\none\n\n"}), QStringList{u"one"_s});
}

TEST(LineSplitter, ReplacesBytesThatAreNoText) {
  EXPECT_EQ(split({"a\xff"
                   "b\xc3\n"}),
            QStringList{u"a\ufffdb\ufffd"_s});
}

TEST(LineSplitter, CutsALongLineAndSkipsItsRest) {
  EXPECT_EQ(split({"123456789\nnext\n"}, 5), (QStringList{u"1234…"_s, u"next"_s}));
  EXPECT_EQ(split({"12345\nnext\n"}, 5), (QStringList{u"12345"_s, u"next"_s}));
}

TEST(LineSplitter, DoesNotCutInsideACharacter) {
  EXPECT_EQ(split({"123😀56\n"}, 5), QStringList{u"123…"_s});
}

TEST(LineSplitter, GivesOutALineOfAMillionCharactersWhole) {
  const QByteArray longest(LongestLine, 'x');
  const QStringList lines = split({longest + '\n'});
  ASSERT_EQ(lines.size(), 1);
  EXPECT_EQ(lines.first().size(), LongestLine);
  EXPECT_EQ(lines.first().back(), u'x');
}

TEST(LineSplitter, CutsALineThatNeverEnds) {
  QStringList lines;
  LineSplitter splitter([&](const QString& line) { lines.append(line); });
  const QByteArray part(100'000, 'x');
  for (int i = 0; i < 200; ++i)
    splitter.append(part);
  ASSERT_EQ(lines.size(), 1) << "given out without a line feed";
  EXPECT_EQ(lines.first().size(), LongestLine);
  EXPECT_EQ(lines.first().back(), u'…');
  splitter.append("\nnext\n");
  EXPECT_EQ(lines.size(), 2);
  EXPECT_EQ(lines.last(), u"next"_s);
}

TEST(ShowableLine, LeavesTerminalSequencesOut) {
  EXPECT_EQ(showableLine(u"\x1b[1;31mred\x1b[0m"_s), u"red"_s);
  EXPECT_EQ(showableLine(u"\x1b]0;title\x07text"_s), u"text"_s);
  EXPECT_EQ(showableLine(u"\x1b]8;;http://a\x1b\\link\x1b]8;;\x1b\\"_s), u"link"_s);
  EXPECT_EQ(showableLine(u"a\x1b(Bb\x1b=c\x1b"_s), u"abc"_s);
}

TEST(ShowableLine, LeavesControlCharactersOut) {
  EXPECT_EQ(showableLine(u"a\u0000b\u0008c\u007fd\u0090e"_s), u"abcde"_s);
}

TEST(ShowableLine, TurnsBreaksAndTabsIntoSpaces) {
  EXPECT_EQ(showableLine(u"a\tb\nc\rd\u2028e\u2029f\u0085g"_s), u"a b c d e f g"_s);
}

TEST(ShowableLine, LosesWhiteSpaceAtTheEndOnly) {
  EXPECT_EQ(showableLine(u"  a  b \t "_s), u"  a  b"_s);
}

TEST(ShowableLine, LosesAByteOrderMarkAtTheBeginning) {
  EXPECT_EQ(showableLine(u"\ufeffa"_s), u"a"_s);
}
