#include "zqticker/signs/combo_layout_p.h"

#include "tests/signs/SignTestSupport.h"

#include <limits>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

ComboLayoutInput horizontalStrip(qreal height, std::optional<QSizeF> image, QSizeF text) {
  ComboLayoutInput input;
  input.displaySize = QSizeF(400, height);
  input.horizontal = true;
  input.imageSize = image;
  input.fontPointSize = 12;
  input.textSize = text;
  return input;
}

ComboLayoutInput verticalStrip(qreal width, std::optional<QSizeF> image, QSizeF text) {
  ComboLayoutInput input = horizontalStrip(300, image, text);
  input.displaySize = QSizeF(width, 300);
  input.horizontal = false;
  return input;
}

} // namespace

TEST(ComboLayout, HorizontallyATallPictureIsScaledDownToTheDisplaysHeight) {
  const ComboLayout layout = layoutCombo(horizontalStrip(20, QSizeF(40, 40), QSizeF(100, 15)));
  EXPECT_EQ(layout.imageTargetRect, QRectF(0, 0, 20, 20));
  EXPECT_EQ(layout.textOffset, QPointF(25, 0));
  EXPECT_EQ(layout.size, QSizeF(135, 20));
}

TEST(ComboLayout, HorizontallyTheAspectOfATallPictureIsKept) {
  const ComboLayout layout = layoutCombo(horizontalStrip(20, QSizeF(30, 40), QSizeF(100, 15)));
  EXPECT_EQ(layout.imageTargetRect, QRectF(0, 0, 15, 20));
  EXPECT_EQ(layout.size, QSizeF(15 + 5 + 100 + 10, 20));
}

TEST(ComboLayout, HorizontallyALowPictureIsCentredAndNeverScaledUp) {
  const ComboLayout layout = layoutCombo(horizontalStrip(20, QSizeF(16, 10), QSizeF(100, 15)));
  EXPECT_EQ(layout.imageTargetRect, QRectF(0, 5, 16, 10));
  EXPECT_EQ(layout.textOffset.x(), 21);
}

TEST(ComboLayout, HorizontallyAPictureAsHighAsTheDisplayKeepsItsSize) {
  const ComboLayout layout = layoutCombo(horizontalStrip(20, QSizeF(70, 20), QSizeF(1, 1)));
  EXPECT_EQ(layout.imageTargetRect, QRectF(0, 0, 70, 20));
}

TEST(ComboLayout, HorizontallyWithoutAPictureTheTextStartsAtTheEdge) {
  const ComboLayout layout = layoutCombo(horizontalStrip(20, std::nullopt, QSizeF(100, 15)));
  EXPECT_TRUE(layout.imageTargetRect.isNull());
  EXPECT_EQ(layout.textOffset.x(), 0);
  EXPECT_EQ(layout.size, QSizeF(110, 20));
}

TEST(ComboLayout, HorizontallyTheTextStandsAtTheDisplaysOffsetWhateverThePicturesHeight) {
  for (const double height : {4.0, 20.0, 300.0}) {
    ComboLayoutInput input = horizontalStrip(20, QSizeF(10, height), QSizeF(50, 15));
    input.displayTextOffset = 3;
    EXPECT_EQ(layoutCombo(input).textOffset.y(), 3);
  }
}

TEST(ComboLayout, VerticallyAWidePictureIsScaledDownToTheDisplaysWidth) {
  ComboLayoutInput input = verticalStrip(100, QSizeF(200, 50), QSizeF(80, 15));
  input.displayTextOffset = 2;
  const ComboLayout layout = layoutCombo(input);
  EXPECT_EQ(layout.imageTargetRect, QRectF(0, 0, 100, 25));
  EXPECT_EQ(layout.textOffset, QPointF(0, 2 + 25 + 3));
  EXPECT_EQ(layout.size, QSizeF(100, 46));
}

TEST(ComboLayout, VerticallyANarrowPictureIsCentredAndNeverScaledUp) {
  const ComboLayout layout = layoutCombo(verticalStrip(100, QSizeF(60, 30), QSizeF(80, 15)));
  EXPECT_EQ(layout.imageTargetRect, QRectF(20, 0, 60, 30));
}

TEST(ComboLayout, VerticallyTheTextStartsAtTheLeftEdge) {
  const ComboLayout layout = layoutCombo(verticalStrip(100, QSizeF(60, 30), QSizeF(80, 15)));
  EXPECT_EQ(layout.textOffset.x(), 0);
}

TEST(ComboLayout, VerticallyWithoutAPictureTheTextStandsAtTheDisplaysOffset) {
  ComboLayoutInput input = verticalStrip(100, std::nullopt, QSizeF(80, 15));
  input.displayTextOffset = 2;
  const ComboLayout layout = layoutCombo(input);
  EXPECT_EQ(layout.textOffset, QPointF(0, 2));
  EXPECT_EQ(layout.size, QSizeF(100, 15 + 3));
}

TEST(ComboLayout, VerticallyTheGapIsAQuarterOfTheFontsSize) {
  ComboLayoutInput input = verticalStrip(100, QSizeF(100, 25), QSizeF(80, 15));
  input.fontPointSize = 20;
  EXPECT_EQ(layoutCombo(input).size.height(), 25 + 5 + 15 + 5);
  input.fontPointSize = 0;
  EXPECT_EQ(layoutCombo(input).size.height(), 25 + 15);
}

TEST(ComboLayout, APictureWithoutExtentDividesByNothing) {
  for (const bool horizontal : {true, false}) {
    ComboLayoutInput input = horizontal ? horizontalStrip(20, QSizeF(0, 0), QSizeF(10, 10))
                                        : verticalStrip(100, QSizeF(0, 0), QSizeF(10, 10));
    const ComboLayout layout = layoutCombo(input);
    EXPECT_EQ(layout.imageTargetRect.size(), QSizeF(0, 0));
    input.displaySize = QSizeF(0, 0);
    EXPECT_EQ(layoutCombo(input).imageTargetRect, QRectF(0, 0, 0, 0));
  }
}

namespace {
Ref<AttributedString> twoRuns(double first, double second) {
  const auto text = AttributedString::make(u"bigsmall"_s)->mutableCopy();
  text->addAttribute(FontAttributeName, any(Font::fontWithName("DejaVu Sans", first)), {0, 3});
  text->addAttribute(FontAttributeName, any(Font::fontWithName("DejaVu Sans", second)), {3, 5});
  text->addAttribute(u"mark"_s, 1, {3, 5});
  return text;
}
} // namespace

TEST(FitToHeight, TheFactorIsTheSmallestRatioOverAllRuns) {
  FixedFitFontManager fonts(16);
  EXPECT_EQ(scaleFactorToFitHeight(*twoRuns(24, 12), 18), 16.0 / 24);
  EXPECT_EQ(scaleFactorToFitHeight(*twoRuns(12, 24), 18), 16.0 / 24);
  EXPECT_EQ(fonts.askedHeights, (QList<double>{18, 18, 18, 18}));
}

TEST(FitToHeight, ATextThatIsTooSmallIsScaledUp) {
  FixedFitFontManager fonts(16);
  EXPECT_EQ(scaleFactorToFitHeight(*twoRuns(8, 4), 18), 2);
}

TEST(FitToHeight, ARunWithoutAFontDoesNotCount) {
  FixedFitFontManager fonts(16);
  const auto text = AttributedString::make(u"bare and styled"_s)->mutableCopy();
  text->addAttribute(FontAttributeName, any(Font::fontWithName("DejaVu Sans", 32)), {9, 6});
  EXPECT_EQ(scaleFactorToFitHeight(*text, 18), 0.5);
}

TEST(FitToHeight, WithoutAnyFontTheFactorIsTheLargestFiniteDouble) {
  EXPECT_EQ(scaleFactorToFitHeight(*AttributedString::make(u"bare"_s), 18),
            std::numeric_limits<double>::max());
}

TEST(FitToHeight, ScalingReplacesTheFontsAndKeepsEverythingElse) {
  const auto source = twoRuns(24, 12);
  const auto scaled = textWithScaledFonts(*source, 2.0 / 3);
  EXPECT_EQ(scaled->string(), u"bigsmall"_s);
  const auto sizeAt = [&](qsizetype index) {
    return objectOf<Font>(scaled->attributesAtIndex(index, nullptr).value(FontAttributeName))
        ->pointSize();
  };
  EXPECT_EQ(sizeAt(0), 24 * (2.0 / 3));
  EXPECT_EQ(sizeAt(3), 12 * (2.0 / 3));
  EXPECT_FALSE(scaled->attributesAtIndex(0, nullptr).contains(u"mark"_s));
  EXPECT_EQ(scaled->attributesAtIndex(3, nullptr).value(u"mark"_s).toInt(), 1);
}

TEST(FitToHeight, ScalingATextWithoutFontsChangesNothing) {
  const auto source = AttributedString::make(u"bare"_s);
  EXPECT_TRUE(textWithScaledFonts(*source, 3)->isEqual(*source));
}
