// Where the parts of a rollover button's cell lie; numbers worked out by hand.
#include "tests/rollover/RollOverView.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/text/string_drawing.h"
#include "zqticker/platform/text/text_attributes.h"
#include "zqticker/rollover/path_shapes.h"

#include <gtest/gtest.h>

#include <QtWidgets/QMenu>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using namespace zq::testing;

namespace {

const QString family = u"DejaVu Sans"_s;

// Metrics are linear in the size.
Ref<Font> fontOfAscender(double ascender) {
  return Font::fontWithName(family, 100 * ascender / Font::fontWithName(family, 100)->ascender());
}

Ref<Font> fontInWhichIsWide(const QString& title, double width) {
  const auto widthAt = [&](double size) {
    return sizeWithAttributes(title, {{FontAttributeName, any(Font::fontWithName(family, size))}})
        .width();
  };
  return Font::fontWithName(family, 100 * width / widthAt(100));
}

void expectNear(const QRectF& actual, const QRectF& expected, double tolerance = 1e-5) {
  EXPECT_NEAR(actual.x(), expected.x(), tolerance);
  EXPECT_NEAR(actual.y(), expected.y(), tolerance);
  EXPECT_NEAR(actual.width(), expected.width(), tolerance);
  EXPECT_NEAR(actual.height(), expected.height(), tolerance);
}

void expectPoints(const BezierPath& path, const std::vector<QPointF>& points) {
  using Type = BezierPath::ElementType;
  ASSERT_EQ(path.elementCount(), int(points.size()) + 1);
  for (std::size_t i = 0; i < points.size(); ++i) {
    const BezierPath::Element& element = path.elementAtIndex(int(i));
    EXPECT_EQ(element.type, i == 0 ? Type::MoveTo : Type::LineTo);
    EXPECT_NEAR(element.endPoint().x(), points[i].x(), 1e-5) << i;
    EXPECT_NEAR(element.endPoint().y(), points[i].y(), 1e-5) << i;
  }
  EXPECT_EQ(path.elementAtIndex(int(points.size())).type, Type::ClosePath);
}

class RollOverButtonCellLayout : public ::testing::Test {
 protected:
  RollOverButtonCellLayout() : cell(u"Play"_s) {
    cell.setAppearance(std::make_shared<ZQRollOverButtonAppearance>());
    cell.setFont(Font::fontWithName(family, 12));
  }
  void layOut(const QRectF& frame, bool isFlipped) {
    RollOverView view(isFlipped);
    cell.calculateLayoutForFrame(frame, &view);
  }

  QMenu items;
  ZQRollOverButtonCell cell;
};

} // namespace

TEST_F(RollOverButtonCellLayout, ARoundedRectangleOf100By22) {
  cell.setZqBezelStyle(6);
  for (const bool isFlipped : {false, true}) {
    layOut({0, 0, 100, 22}, isFlipped);
    EXPECT_EQ(cell.lastFrameSize(), QSizeF(100, 22));
    // 100 − 2 × 1.5 wide, 22 − 2 × 1.5 − 1 high.
    EXPECT_EQ(cell.backgroundPath()->painterPath(),
              zq::bezierPathForButtonWithRoundedRect({0, 0, 97, 18})->painterPath());
    EXPECT_EQ(
        cell.highlightedBackgroundPath()->painterPath(),
        zq::bezierPathForButtonWithRoundedRect({0, isFlipped ? 1.0 : 0.0, 97, 17})->painterPath());
    // An inset of ⌈4.3⌉ = 5: 1.5 + 5 + 1.5 to the left, and as much to the right.
    EXPECT_EQ(cell.textRect().x(), 8);
    EXPECT_EQ(cell.textRect().width(), 84);
    EXPECT_EQ(cell.arrowPath(), nullptr);
  }
}

TEST_F(RollOverButtonCellLayout, EveryOtherBezelStyleIsAPlate) {
  for (const std::uint64_t style :
       {std::uint64_t(0), std::uint64_t(5), std::uint64_t(7), ~std::uint64_t(0)}) {
    cell.setZqBezelStyle(style);
    for (const bool isFlipped : {false, true}) {
      layOut({0, 0, 100, 22}, isFlipped);
      EXPECT_EQ(cell.backgroundPath()->painterPath(),
                zq::bezierPathWithPlateInRect({0, 0, 97, 18})->painterPath());
      EXPECT_EQ(cell.highlightedBackgroundPath()->painterPath(),
                zq::bezierPathWithPlateInRect({0, isFlipped ? 1.0 : 0.0, 97, 17})->painterPath());
    }
  }
}

TEST_F(RollOverButtonCellLayout, OutlinesStayAtTheOriginWhereTheTextGoesWithTheFrame) {
  cell.setZqBezelStyle(6);
  layOut({0, 0, 100, 22}, true);
  const QRectF atOrigin = cell.textRect();
  layOut({10, 20, 100, 22}, true);
  EXPECT_EQ(cell.textRect(), atOrigin.translated(10, 20));
  EXPECT_EQ(cell.backgroundPath()->bounds().topLeft(), QPointF(0, 0));
}

// DejaVu Sans at 8 points: ascender 1901, descender −483 and capitals 1493 of 2048 units, that is
// 7.42578125, −1.88671875 and 5.83203125; a line is 9.3125 high. The outline is 18 high.
TEST_F(RollOverButtonCellLayout, CentresTheCapitalsInBothCoordinateSystems) {
  cell.setFont(Font::fontWithName(family, 8));
  cell.setZqBezelStyle(6);
  // ⌈(18 − 9.3125) / 2 + (7.42578125 − 5.83203125) − (9.3125 − 5.83203125) / 2⌉
  //   = ⌈4.34375 + 1.59375 − 1.740234375⌉ = ⌈4.197265625⌉ = 5, below 1.5.
  layOut({0, 0, 100, 22}, true);
  expectNear(cell.textRect(), {8, 6.5, 84, 9.3125}, 1e-3);
  // Only the first term rounded up: ⌈4.34375⌉ − 1.88671875 + 1.740234375 = 4.853515625, above 0.5.
  layOut({0, 0, 100, 22}, false);
  expectNear(cell.textRect(), {8, 5.353515625, 84, 9.3125}, 1e-3);
}

// At 16 points: 14.8515625, −3.7734375, 11.6640625 and 18.625.
TEST_F(RollOverButtonCellLayout, ALineHigherThanTheOutlineIsCentredAsWell) {
  cell.setFont(Font::fontWithName(family, 16));
  cell.setZqBezelStyle(6);
  // ⌈−0.3125 + 3.1875 − 3.48046875⌉ = ⌈−0.60546875⌉ = 0.
  layOut({0, 0, 100, 22}, true);
  expectNear(cell.textRect(), {8, 1.5, 84, 18.625}, 1e-3);
  // ⌈−0.3125⌉ − 3.7734375 + 3.48046875 = −0.29296875.
  layOut({0, 0, 100, 22}, false);
  expectNear(cell.textRect(), {8, 0.20703125, 84, 18.625}, 1e-3);
}

TEST_F(RollOverButtonCellLayout, NoViewCountsAsNotFlipped) {
  layOut({0, 0, 100, 22}, false);
  const QRectF unflipped = cell.textRect();
  layOut({0, 0, 100, 22}, true);
  cell.calculateLayoutForFrame({0, 0, 100, 22}, nullptr);
  EXPECT_EQ(cell.textRect(), unflipped);
}

TEST_F(RollOverButtonCellLayout, ThePlateKeepsTheTextOffItsRoundEnds) {
  // d = ⌊9.5² − 6²⌋ = ⌊54.25⌋ = 54, ⌈9.5 − 7.348…⌉ = 3.
  cell.setFont(fontOfAscender(12));
  EXPECT_EQ(cell.textInsetForHeight(22), 3);
  layOut({0, 0, 100, 22}, true);
  // 1.5 + 3 + 1.5, and 97 − 2 × 4.5.
  EXPECT_EQ(cell.textRect().x(), 6);
  EXPECT_EQ(cell.textRect().width(), 88);
}

TEST_F(RollOverButtonCellLayout, TheInsetOfAPlateCutsTheSquareToAWholeNumber) {
  // 9.5² − 5.8² = 56.61. Of 56 the root is 7.483, of 56.61 it would be 7.523: ⌈2.017⌉ = 3, not 2.
  cell.setFont(fontOfAscender(11.6));
  EXPECT_EQ(cell.textInsetForHeight(22), 3);
}

TEST_F(RollOverButtonCellLayout, TheInsetOfAPlateTakesAHighFontByTheAbsoluteValue) {
  // 9.5² − 12² = −53.75, hence 53: ⌈9.5 − 7.280…⌉ = 3.
  cell.setFont(fontOfAscender(24));
  EXPECT_EQ(cell.textInsetForHeight(22), 3);
  // 9.5² − 20² = −309.75, hence 309: ⌈9.5 − 17.578…⌉ = −8.
  cell.setFont(fontOfAscender(40));
  EXPECT_EQ(cell.textInsetForHeight(22), -8);
}

TEST_F(RollOverButtonCellLayout, TheInsetOfARoundedRectangleIsFiveWhateverTheHeight) {
  cell.setZqBezelStyle(6);
  for (const double height : {0.0, 16.0, 22.0, 1e6})
    EXPECT_EQ(cell.textInsetForHeight(height), 5);
}

TEST_F(RollOverButtonCellLayout, AnInsetIsFiniteForEveryHeight) {
  // (10⁵ / 2 − 1.5)² does not fit an int of 32 bits.
  cell.setFont(fontOfAscender(12));
  EXPECT_EQ(cell.textInsetForHeight(1e5), 0);
}

TEST_F(RollOverButtonCellLayout, ACellWithoutAFontIsLaidOutInTheDefaultOne) {
  cell.setFont(std::make_shared<Font>());
  layOut({0, 0, 100, 22}, true);
  const QRectF expected = cell.textRect();
  cell.setFont(nullptr);
  layOut({0, 0, 100, 22}, true);
  EXPECT_EQ(cell.textRect(), expected);
}

// Sides of 13 × 0.6 = 7.8 and 13 × 0.5 = 6.5; an end radius of 9.5.
TEST_F(RollOverButtonCellLayout, TheArrowOfAMenuPointsDownAsItIsSeen) {
  cell.setZqBezelStyle(6);
  cell.setMenu(Menu::make(&items));
  // x = 100 − 1.5 − 4.75 − 7.8 = 85.95; y = 11 − 3.25 + 0.475 = 8.225, up to 14.725.
  layOut({0, 0, 100, 22}, true);
  expectPoints(*cell.arrowPath(),
               {{85.95, 8.225}, {89.85, 14.725}, {93.75, 8.225}, {85.95, 8.225}});
  // 84 − (4.75 + 3.9)
  EXPECT_NEAR(cell.textRect().width(), 75.35, 1e-5);
  // y = 11 − 3.25 − 0.475 = 7.275, up to 13.775.
  layOut({0, 0, 100, 22}, false);
  expectPoints(*cell.arrowPath(),
               {{85.95, 13.775}, {89.85, 7.275}, {93.75, 13.775}, {85.95, 13.775}});
}

TEST_F(RollOverButtonCellLayout, TheArrowGoesByTheFramesSizeAlone) {
  cell.setMenu(Menu::make(&items));
  layOut({0, 0, 100, 22}, true);
  const QPainterPath atOrigin = cell.arrowPath()->painterPath();
  layOut({10, 20, 100, 22}, true);
  EXPECT_EQ(cell.arrowPath()->painterPath(), atOrigin);
}

TEST_F(RollOverButtonCellLayout, TheArrowIsAsLargeAsTheControlSizeAsks) {
  cell.setMenu(Menu::make(&items));
  const struct {
    ControlSize size;
    QSizeF arrow;
  } rows[] = {{ControlSize::Regular, {7.8, 6.5}},
              {ControlSize::Small, {6.6, 5.5}},
              {ControlSize::Mini, {5.4, 4.5}},
              {ControlSize(3), {7.8, 6.5}}};
  for (const auto& row : rows) {
    cell.setControlSize(row.size);
    layOut({0, 0, 100, 22}, true);
    EXPECT_NEAR(cell.arrowPath()->bounds().width(), row.arrow.width(), 1e-5);
    EXPECT_NEAR(cell.arrowPath()->bounds().height(), row.arrow.height(), 1e-5);
  }
}

TEST_F(RollOverButtonCellLayout, LeavesTheArrowOfAFormerMenu) {
  cell.setMenu(Menu::make(&items));
  layOut({0, 0, 100, 22}, true);
  const Ref<BezierPath> arrow = cell.arrowPath();
  cell.setMenu(nullptr);
  layOut({0, 0, 50, 22}, true);
  EXPECT_EQ(cell.arrowPath(), arrow);
}

TEST_F(RollOverButtonCellLayout, IsInvalidatedByMenuFontBezelStyleAndByHand) {
  const auto expectInvalidated = [&](const auto& change) {
    cell.setLastFrameSize({100, 22});
    change();
    EXPECT_EQ(cell.lastFrameSize(), QSizeF(0, 22));
  };
  expectInvalidated([&] { cell.setMenu(Menu::make(&items)); });
  expectInvalidated([&] { cell.setFont(Font::fontWithName(family, 9)); });
  expectInvalidated([&] { cell.setZqBezelStyle(6); });
  expectInvalidated([&] { cell.setBezelStyle(6); });
  expectInvalidated([&] { cell.invalidateLayout(); });
  EXPECT_EQ(cell.menu()->menu(), &items);
  EXPECT_EQ(cell.font()->pointSize(), 9);
}

TEST_F(RollOverButtonCellLayout, IsNotInvalidatedByTitleAppearanceAndOtherAttributes) {
  cell.setLastFrameSize({100, 22});
  cell.setTitle(u"Something else"_s);
  cell.setAppearance(distinctAppearance());
  cell.setControlColor(nullptr);
  cell.setTextShadow(nullptr);
  cell.setShadingMode(1);
  cell.setBordered(true);
  cell.setPopUpMenuDelay(1);
  cell.setAlwaysShowMenuIndicator(true);
  EXPECT_EQ(cell.lastFrameSize(), QSizeF(100, 22));
}

TEST_F(RollOverButtonCellLayout, TheTextKeepsItsPlaceWhenOnlyTheTitleChanges) {
  RollOverView view;
  cell.drawWithFrame(view.bounds(), &view);
  const QRectF before = cell.textRect();
  const Ref<BezierPath> outline = cell.backgroundPath();
  // Emoji stand higher than letters.
  cell.setTitle(QString::fromUtf8("Pl\xf0\x9f\x98\x80y"));
  cell.drawWithFrame(view.bounds(), &view);
  EXPECT_EQ(cell.textRect(), before);
  EXPECT_EQ(cell.backgroundPath(), outline);
  cell.invalidateLayout();
  cell.drawWithFrame(view.bounds(), &view);
  EXPECT_NE(cell.backgroundPath(), outline);
}

TEST_F(RollOverButtonCellLayout, IsComputedAnewForAnotherWidthAndForAnotherHeight) {
  RollOverView view;
  cell.drawWithFrame({0, 0, 100, 22}, &view);
  const Ref<BezierPath> first = cell.backgroundPath();
  cell.drawWithFrame({5, 5, 100, 22}, &view);
  EXPECT_EQ(cell.backgroundPath(), first);
  cell.drawWithFrame({0, 0, 101, 22}, &view);
  const Ref<BezierPath> wider = cell.backgroundPath();
  EXPECT_NE(wider, first);
  cell.drawWithFrame({0, 0, 101, 23}, &view);
  EXPECT_NE(cell.backgroundPath(), wider);
}

TEST_F(RollOverButtonCellLayout, IntrinsicSizeHasRoomForTitleAndArrow) {
  cell.setFont(fontInWhichIsWide(cell.title(), 50));
  cell.setZqBezelStyle(6);
  // 50 + 2 × (5 + 3)
  EXPECT_NEAR(cell.intrinsicContentSize().width(), 66, 1e-3);
  EXPECT_EQ(cell.intrinsicContentSize().height(), 22);
  EXPECT_EQ(cell.cellSize(), cell.intrinsicContentSize());
  EXPECT_EQ(cell.cellSizeForBounds({0, 0, 1, 1}), cell.intrinsicContentSize());
  EXPECT_EQ(cell.drawingRectForBounds({1, 2, 3, 4}), QRectF(1, 2, 3, 4));
  // 13 × 0.6 + 9.5 / 2 = 12.55 more.
  cell.setMenu(Menu::make(&items));
  EXPECT_NEAR(cell.intrinsicContentSize().width(), 78.55, 1e-3);
}

TEST_F(RollOverButtonCellLayout, IntrinsicSizeGoesByTheControlSize) {
  cell.setFont(fontInWhichIsWide(cell.title(), 50));
  cell.setZqBezelStyle(6);
  cell.setMenu(Menu::make(&items));
  const struct {
    ControlSize size;
    double width;
    double height;
  } rows[] = {
      {ControlSize::Small, 66 + 6.6 + 4, 19},      // (9.5 − 1.5) / 2
      {ControlSize::Mini, 66 + 5.4 + 3.25, 16},    // (8 − 1.5) / 2
      {ControlSize::Regular, 66 + 7.8 + 4.75, 22}, // (11 − 1.5) / 2
      {ControlSize(3), 66 + 7.8 + 4.75, 22},
  };
  for (const auto& row : rows) {
    cell.setControlSize(row.size);
    EXPECT_NEAR(cell.intrinsicContentSize().width(), row.width, 1e-3);
    EXPECT_EQ(cell.intrinsicContentSize().height(), row.height);
  }
}

TEST_F(RollOverButtonCellLayout, IntrinsicSizeOfAPlateHasItsInset) {
  cell.setTitle(QString());
  cell.setFont(fontOfAscender(12));
  // 2 × (3 + 3)
  EXPECT_EQ(cell.intrinsicContentSize(), QSizeF(12, 22));
}

TEST_F(RollOverButtonCellLayout, TheMenuStandsBelowTheFramesOrigin) {
  // The view's origin is at (10, 42) of its window in a flipped view, else at (10, 20).
  RollOverView flipped(true);
  EXPECT_EQ(cell.menuPositionForFrame({0, 0, 100, 22}, &flipped), QPointF(11, 36.5));
  EXPECT_EQ(cell.menuPositionForFrame({3, 4, 100, 22}, &flipped), QPointF(14, 32.5));
  RollOverView unflipped(false);
  EXPECT_EQ(cell.menuPositionForFrame({3, 4, 100, 22}, &unflipped), QPointF(14, 18.5));
}
