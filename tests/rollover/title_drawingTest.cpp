#include "zqticker/rollover/title_drawing_p.h"

#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/AttributedString.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

Attributes attributes() {
  return {{FontAttributeName, any(Font::fontWithName(u"DejaVu Sans"_s, 12))}};
}

double widthOf(const QString& text) {
  return AttributedString::make(text, attributes())->size().width();
}

QString truncated(const QString& text, double width) {
  const auto line = zq::truncatedAtTail(text, attributes(), width);
  return line ? line->string() : u"nothing"_s;
}

} // namespace

TEST(TitleDrawing, KeepsWhatFits) {
  EXPECT_EQ(truncated(u"Play"_s, widthOf(u"Play"_s)), u"Play"_s);
  EXPECT_EQ(truncated(u"Play"_s, widthOf(u"Play"_s) - 1e-9), u"Play"_s);
  EXPECT_EQ(truncated(QString(), 0), QString());
}

TEST(TitleDrawing, CutsAtTheTailByAsMuchAsIsNeeded) {
  const QString title = u"A rather long title of a button"_s;
  for (qsizetype length = 0; length < title.size() - 2; ++length) {
    QString expected = title.left(length);
    expected.append(QChar(0x2026));
    EXPECT_EQ(truncated(title, widthOf(expected)), expected);
  }
}

TEST(TitleDrawing, CutsVeryLongText) {
  const QString cut = truncated(QString(100000, u'n'), widthOf(QString(60, u'n')));
  EXPECT_GE(cut.size(), 58);
  EXPECT_LE(cut.size(), 61);
  EXPECT_TRUE(cut.endsWith(QChar(0x2026)));
}

TEST(TitleDrawing, KeepsLettersWhole) {
  // Letters of two characters each: an e and an acute accent.
  QString title;
  for (int i = 0; i < 40; ++i)
    title.append(u"e\u0301"_s);
  for (double width = 20; width < 100; width += 1.7) {
    const QString cut = truncated(title, width);
    EXPECT_EQ(cut.size() % 2, 1) << width;
    EXPECT_LE(widthOf(cut), width + 0.01);
  }
}

TEST(TitleDrawing, IsNothingWhereNotEvenTheEllipsisFits) {
  const double ellipsis = widthOf(QString(QChar(0x2026)));
  EXPECT_EQ(truncated(u"Play"_s, ellipsis), QString(QChar(0x2026)));
  EXPECT_EQ(truncated(u"Play"_s, ellipsis - 0.1), u"nothing"_s);
  EXPECT_EQ(truncated(u"Play"_s, -5), u"nothing"_s);
}

TEST(TitleDrawing, AlignsTheLineInTheRectangle) {
  const auto inkOf = [](const QString& text, TextAlignment alignment) {
    Canvas canvas({200, 40});
    zq::drawLineInRect(AttributedString::make(text, attributes()), {20, 10, 160, 20}, alignment,
                       false);
    return inkBounds(canvas.finished(), Qt::white, 40);
  };
  const QString latin = u"HHH"_s;
  EXPECT_NEAR(inkOf(latin, TextAlignment::Left).left(), 21, 1);
  EXPECT_NEAR(inkOf(latin, TextAlignment::Natural).left(), 21, 1);
  EXPECT_NEAR(inkOf(latin, TextAlignment::Justified).left(), 21, 1);
  EXPECT_NEAR(inkOf(latin, TextAlignment::Center).center().x(), 100, 1);
  EXPECT_NEAR(inkOf(latin, TextAlignment::Right).right(), 178, 1);
  const QString hebrew = u"\u05d0\u05d1\u05d2"_s;
  EXPECT_NEAR(inkOf(hebrew, TextAlignment::Natural).right(), 179, 2);
  EXPECT_NEAR(inkOf(hebrew, TextAlignment::Left).left(), 21, 2);
}

TEST(TitleDrawing, StandsAtTheTopAsItIsSeen) {
  const auto line = AttributedString::make(u"HHH"_s, attributes());
  const auto topOf = [&](bool isFlipped, const QRectF& rect) {
    Canvas canvas({60, 60}, 1, isFlipped);
    zq::drawLineInRect(line, rect, TextAlignment::Left, isFlipped);
    return 59 - inkBounds(canvas.finished(), Qt::white, 40).bottom();
  };
  // The same place as it is seen: from the upper edge 10 points down, 40 high.
  EXPECT_EQ(topOf(true, {0, 10, 60, 40}), topOf(false, {0, 10, 60, 40}));
  EXPECT_EQ(topOf(true, {0, 10, 60, 20}), topOf(false, {0, 30, 60, 20}));
}

TEST(TitleDrawing, NothingDrawsNothing) {
  Canvas canvas({20, 20});
  zq::drawLineInRect(nullptr, {0, 0, 20, 20}, TextAlignment::Left, false);
  EXPECT_TRUE(inkBounds(canvas.finished()).isEmpty());
}
