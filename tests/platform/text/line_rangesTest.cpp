#include "zqticker/platform/text/line_ranges.h"

#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <QtCore/QString>

#include <ostream>

using namespace Qt::StringLiterals;
using zq::platform::LineRange;
using zq::platform::lineRangeAt;
using zq::platform::RangeException;

namespace zq::platform {
static void PrintTo(const LineRange& line, std::ostream* out) {
  *out << line.start << "…" << line.contentsEnd << "…" << line.end;
}
} // namespace zq::platform

TEST(LineRanges, EveryTerminatorEndsALine) {
  for (const auto& terminator : {u"\n"_s, u"\r"_s, u"\r\n"_s, u"\u2028"_s, u"\u2029"_s}) {
    const QString text = u"ab"_s + terminator + u"c"_s;
    const qsizetype next = 2 + terminator.size();
    for (qsizetype position = 0; position < next; ++position)
      EXPECT_EQ(lineRangeAt(text, position), (LineRange{0, next, 2}));
    for (qsizetype position = next; position <= text.size(); ++position)
      EXPECT_EQ(lineRangeAt(text, position), (LineRange{next, next + 1, next + 1}));
  }
}

TEST(LineRanges, NothingElseEndsALine) {
  const QString text = u"a\u000b\u000c\u0085\u001e\t\u0000b"_s;
  EXPECT_EQ(lineRangeAt(text, 3), (LineRange{0, text.size(), text.size()}));
}

TEST(LineRanges, TerminatorsInARowEndALineEach) {
  const QString text = u"\r\r\n\n\u2029\u2028"_s;
  EXPECT_EQ(lineRangeAt(text, 0), (LineRange{0, 1, 0}));
  EXPECT_EQ(lineRangeAt(text, 1), (LineRange{1, 3, 1}));
  EXPECT_EQ(lineRangeAt(text, 2), (LineRange{1, 3, 1}));
  EXPECT_EQ(lineRangeAt(text, 3), (LineRange{3, 4, 3}));
  EXPECT_EQ(lineRangeAt(text, 4), (LineRange{4, 5, 4}));
  EXPECT_EQ(lineRangeAt(text, 5), (LineRange{5, 6, 5}));
}

TEST(LineRanges, TheEndIsOnTheLastLineWhichMayBeEmpty) {
  EXPECT_EQ(lineRangeAt(QString(), 0), (LineRange{0, 0, 0}));
  EXPECT_EQ(lineRangeAt(u"a", 1), (LineRange{0, 1, 1}));
  EXPECT_EQ(lineRangeAt(u"a\r\n", 3), (LineRange{3, 3, 3}));
}

TEST(LineRanges, APositionOutsideIsRefused) {
  EXPECT_THROW(lineRangeAt(u"a", 2), RangeException);
  EXPECT_THROW(lineRangeAt(u"a", -1), RangeException);
}

TEST(LineRanges, AreFoundInLongLinesWhateverTheirLength) {
  for (qsizetype length = 0; length < 200; ++length) {
    const QString text = QString(length, u'x') + u"\u2029"_s + QString(length, u'\u2027');
    EXPECT_EQ(lineRangeAt(text, 0), (LineRange{0, length + 1, length}));
    EXPECT_EQ(lineRangeAt(text, text.size()), (LineRange{length + 1, text.size(), text.size()}));
  }
}
