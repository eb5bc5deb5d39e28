#include "zqticker/rollover/path_shapes.h"

#include "zqticker/platform/graphics/BezierPath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

using zq::platform::BezierPath;
using zq::platform::Ref;

namespace {

using Type = BezierPath::ElementType;

// The subpath of `path` that starts at element `index`, as close points; curves in 32 steps.
std::vector<QPointF> outlineFrom(const BezierPath& path, int index = 0) {
  std::vector<QPointF> points{path.elementAtIndex(index).endPoint()};
  for (int i = index + 1; i < path.elementCount(); ++i) {
    const BezierPath::Element& element = path.elementAtIndex(i);
    if (element.type == Type::MoveTo)
      break;
    const QPointF from = path.elementAtIndex(i - 1).endPoint();
    if (element.type == Type::CurveTo)
      for (int step = 1; step < 32; ++step) {
        const double t = step / 32.0;
        const double s = 1 - t;
        points.push_back(s * s * s * from + 3 * s * s * t * element.points[0] +
                         3 * s * t * t * element.points[1] + t * t * t * element.points[2]);
      }
    points.push_back(element.endPoint());
  }
  return points;
}

// The area inside the outline, positive where it runs counter-clockwise.
double signedArea(const std::vector<QPointF>& points) {
  double area = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const QPointF& a = points[i];
    const QPointF& b = points[(i + 1) % points.size()];
    area += a.x() * b.y() - a.y() * b.x();
  }
  return area / 2;
}

int subpathCount(const BezierPath& path) {
  int count = 0;
  for (int i = 0; i < path.elementCount(); ++i)
    count += path.elementAtIndex(i).type == Type::MoveTo;
  return count;
}

// The end points of all elements.
std::vector<QPointF> endPoints(const BezierPath& path) {
  std::vector<QPointF> points;
  for (int i = 0; i < path.elementCount(); ++i)
    points.push_back(path.elementAtIndex(i).endPoint());
  return points;
}

// How far `p` lies outside the rectangle, negative inside, after rounding its corners by `radius`.
double distanceFromRounded(QPointF p, const QRectF& rect, double radius) {
  const double dx = std::abs(p.x() - rect.center().x()) - rect.width() / 2 + radius;
  const double dy = std::abs(p.y() - rect.center().y()) - rect.height() / 2 + radius;
  return std::hypot(std::max(dx, 0.0), std::max(dy, 0.0)) + std::min(std::max(dx, dy), 0.0) -
         radius;
}

void expectExactly(const std::vector<QPointF>& actual, const std::vector<QPointF>& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    EXPECT_EQ(actual[i].x(), expected[i].x()) << i;
    EXPECT_EQ(actual[i].y(), expected[i].y()) << i;
  }
}

const QRectF rect(10, 20, 100, 24);

} // namespace

TEST(PathShapes, APlateEndsInHalfCircles) {
  const Ref<BezierPath> path = zq::bezierPathWithPlateInRect(rect);
  for (const QPointF p : outlineFrom(*path))
    EXPECT_NEAR(distanceFromRounded(p, rect, 12), 0, 0.004);
  EXPECT_NEAR(path->bounds().left(), 10, 1e-9);
  EXPECT_NEAR(path->bounds().top(), 20, 1e-9);
  EXPECT_NEAR(path->bounds().width(), 100, 1e-9);
  EXPECT_NEAR(path->bounds().height(), 24, 1e-9);
}

TEST(PathShapes, APlateStartsAtItsUpperLeftAndRunsCounterClockwise) {
  const Ref<BezierPath> path = zq::bezierPathWithPlateInRect(rect);
  // Left half circle, bottom edge, right half circle, top edge.
  expectExactly(endPoints(*path),
                {{22, 44}, {10, 32}, {22, 20}, {98, 20}, {110, 32}, {98, 44}, {22, 44}});
  EXPECT_EQ(path->elementAtIndex(3).type, Type::LineTo);
  EXPECT_EQ(path->elementAtIndex(6).type, Type::ClosePath);
  EXPECT_NEAR(signedArea(outlineFrom(*path)), 76 * 24 + M_PI * 144, 1);
}

TEST(PathShapes, APlateNarrowerThanHighHasEndsThatOverlap) {
  const Ref<BezierPath> path = zq::bezierPathWithPlateInRect({0, 0, 10, 20});
  // The left half circle stands around (10, 10), the right one around (0, 10).
  expectExactly(endPoints(*path),
                {{10, 20}, {0, 10}, {10, 0}, {0, 0}, {10, 10}, {0, 20}, {10, 20}});
  EXPECT_EQ(subpathCount(*path), 1);
}

TEST(PathShapes, ARoundedRectangleHasQuarterCirclesAtItsCorners) {
  for (const float radius : {2.0f, 4.3f, 12.0f}) {
    const Ref<BezierPath> path = zq::bezierPathWithRoundedRect(rect, radius);
    for (const QPointF p : outlineFrom(*path))
      EXPECT_NEAR(distanceFromRounded(p, rect, double(radius)), 0, 0.0003 * double(radius));
    EXPECT_NEAR(path->bounds().right(), 110, 1e-5);
    EXPECT_NEAR(path->bounds().bottom(), 44, 1e-5);
  }
}

TEST(PathShapes, ARoundedRectangleStartsAtItsLowerLeftAndRunsCounterClockwise) {
  const Ref<BezierPath> path = zq::bezierPathWithRoundedRect(rect, 4);
  expectExactly(endPoints(*path), {{10, 24},
                                   {14, 20},
                                   {106, 20},
                                   {110, 24},
                                   {110, 40},
                                   {106, 44},
                                   {14, 44},
                                   {10, 40},
                                   {10, 24}});
  EXPECT_EQ(path->elementAtIndex(8).type, Type::ClosePath);
  EXPECT_NEAR(signedArea(outlineFrom(*path)), 2400 - (4 - M_PI) * 16, 0.1);
}

TEST(PathShapes, TheCornerRadiusIsNotLimited) {
  // Half the height is 5: the corners' centres pass each other.
  const Ref<BezierPath> path = zq::bezierPathWithRoundedRect({0, 0, 40, 10}, 8);
  expectExactly(endPoints(*path),
                {{0, 8}, {8, 0}, {32, 0}, {40, 8}, {40, 2}, {32, 10}, {8, 10}, {0, 2}, {0, 8}});
}

TEST(PathShapes, CoordinatesAreComputedInSinglePrecision) {
  const float x = 0.1f, y = 0.3f, w = 33.3f, h = 5.9f, r = 4.3f;
  const Ref<BezierPath> rounded = zq::bezierPathWithRoundedRect({0.1, 0.3, 33.3, 5.9}, r);
  EXPECT_EQ(rounded->elementAtIndex(0).endPoint().x(), double(x));
  EXPECT_EQ(rounded->elementAtIndex(0).endPoint().y(), double(y + r));
  EXPECT_NE(rounded->elementAtIndex(0).endPoint().y(), 0.3 + 4.3);
  // The arc does not start exactly there, since its centre is rounded, so that a line comes first.
  EXPECT_EQ(rounded->elementAtIndex(2).endPoint().x(), double(x + r));
  EXPECT_EQ(rounded->elementAtIndex(3).endPoint().x(), double(x + w - r));
  EXPECT_EQ(rounded->elementAtIndex(3).endPoint().y(), double(y + r) - double(r));
  EXPECT_EQ(rounded->elementAtIndex(6).endPoint().x(), double(x + w - r));
  EXPECT_EQ(rounded->elementAtIndex(6).endPoint().y(), double(y + h - r) + double(r));

  const Ref<BezierPath> plate = zq::bezierPathWithPlateInRect({0.1, 0.3, 33.3, 5.9});
  EXPECT_EQ(plate->elementAtIndex(0).endPoint().x(), double(x + h / 2));
  EXPECT_EQ(plate->elementAtIndex(0).endPoint().y(), double(y + h));

  const Ref<BezierPath> triangle = zq::bezierPathWithTriangleInRect({0.1, 0.3, 33.3, 5.9}, 0);
  EXPECT_EQ(triangle->elementAtIndex(1).endPoint().x(), double((x + (x + w)) / 2));
  EXPECT_EQ(triangle->elementAtIndex(1).endPoint().y(), double(y + h));
}

TEST(PathShapes, AHeightThatIsNotPositiveAppendsNothing) {
  // The last one is not positive in single precision only.
  for (const double height : {0.0, -1.0, 1e-60, qQNaN()}) {
    const QRectF flat(1, 2, 10, height);
    EXPECT_TRUE(zq::bezierPathWithPlateInRect(flat)->isEmpty()) << height;
    EXPECT_TRUE(zq::bezierPathWithRoundedRect(flat, 3)->isEmpty()) << height;
    EXPECT_TRUE(zq::bezierPathForButtonWithRoundedRect(flat)->isEmpty()) << height;
    EXPECT_EQ(zq::bezierPathWithPlateInRect(flat)->bounds(), QRectF(0, 0, 0, 0));
  }
}

TEST(PathShapes, AWidthOfZeroStillAppendsTheArcs) {
  const Ref<BezierPath> plate = zq::bezierPathWithPlateInRect({5, 0, 0, 10});
  EXPECT_EQ(plate->elementCount(), 7);
  EXPECT_NEAR(plate->bounds().left(), 0, 1e-9);
  EXPECT_NEAR(plate->bounds().right(), 10, 1e-9);
  const Ref<BezierPath> rounded = zq::bezierPathWithRoundedRect({5, 0, 0, 10}, 2);
  EXPECT_EQ(rounded->elementCount(), 9);
  EXPECT_NEAR(rounded->bounds().left(), 3, 1e-2);
  EXPECT_NEAR(rounded->bounds().right(), 7, 1e-2);
}

struct Triangle {
  int orientation;
  QPointF p1;
  QPointF p2;
  QPointF p3;
};

class PathShapesTriangle : public ::testing::TestWithParam<Triangle> {};

TEST_P(PathShapesTriangle, HasItsApexInTheMiddleOfAnEdge) {
  const Triangle& triangle = GetParam();
  const Ref<BezierPath> path = zq::bezierPathWithTriangleInRect(rect, triangle.orientation);
  expectExactly(endPoints(*path), {triangle.p1, triangle.p2, triangle.p3, triangle.p1});
  EXPECT_EQ(path->elementAtIndex(0).type, Type::MoveTo);
  EXPECT_EQ(path->elementAtIndex(1).type, Type::LineTo);
  EXPECT_EQ(path->elementAtIndex(2).type, Type::LineTo);
  EXPECT_EQ(path->elementAtIndex(3).type, Type::ClosePath);
  EXPECT_EQ(path->bounds(), rect);
}

INSTANTIATE_TEST_SUITE_P(
    All, PathShapesTriangle,
    ::testing::Values(Triangle{ZQTriangleOrientationUp, {10, 20}, {60, 44}, {110, 20}},
                      Triangle{ZQTriangleOrientationDown, {10, 44}, {60, 20}, {110, 44}},
                      Triangle{ZQTriangleOrientationLeft, {110, 44}, {110, 20}, {10, 32}},
                      Triangle{ZQTriangleOrientationRight, {10, 20}, {10, 44}, {110, 32}},
                      Triangle{7, {10, 20}, {10, 44}, {110, 32}},
                      Triangle{-1, {10, 20}, {10, 44}, {110, 32}}));

TEST(PathShapes, OrientationsHaveTheirNumbers) {
  EXPECT_EQ(int(ZQTriangleOrientationUp), 0);
  EXPECT_EQ(int(ZQTriangleOrientationDown), 1);
  EXPECT_EQ(int(ZQTriangleOrientationLeft), 2);
  EXPECT_EQ(int(ZQTriangleOrientationRight), 3);
}

TEST(PathShapes, ATriangleInAnEmptyRectangleIsAClosedSubpathOfThreePoints) {
  const Ref<BezierPath> path = zq::bezierPathWithTriangleInRect({3, 4, 0, 0}, 0);
  expectExactly(endPoints(*path), {{3, 4}, {3, 4}, {3, 4}, {3, 4}});
  EXPECT_EQ(path->elementAtIndex(3).type, Type::ClosePath);
  EXPECT_TRUE(path->bounds().isEmpty());
}

TEST(PathShapes, TheButtonsOutlineHasARadiusOfFourPointThree) {
  const Ref<BezierPath> button = zq::bezierPathForButtonWithRoundedRect(rect);
  const Ref<BezierPath> rounded = zq::bezierPathWithRoundedRect(rect, 4.3f);
  expectExactly(endPoints(*button), endPoints(*rounded));
  EXPECT_EQ(button->elementAtIndex(0).endPoint().y(), double(20 + 4.3f));
}

TEST(PathShapes, AppendingTwiceGivesTwoClosedSubpaths) {
  const QRectF other(200, 20, 50, 10);
  const auto append = [](const std::function<void(const Ref<BezierPath>&)>& first,
                         const std::function<void(const Ref<BezierPath>&)>& second) {
    const Ref<BezierPath> path = BezierPath::make();
    first(path);
    const int count = path->elementCount();
    second(path);
    EXPECT_EQ(path->elementCount(), 2 * count);
    EXPECT_EQ(subpathCount(*path), 2);
    EXPECT_EQ(path->elementAtIndex(count - 1).type, Type::ClosePath);
    EXPECT_EQ(path->elementAtIndex(count).type, Type::MoveTo);
    EXPECT_EQ(path->elementAtIndex(2 * count - 1).type, Type::ClosePath);
    EXPECT_NEAR(path->bounds().right(), 250, 1e-9);
    EXPECT_NEAR(path->bounds().left(), 10, 1e-9);
  };
  append([](auto& path) { zq::appendBezierPathWithPlateInRect(path, rect); },
         [&](auto& path) { zq::appendBezierPathWithPlateInRect(path, other); });
  append([](auto& path) { zq::appendBezierPathWithRoundedRect(path, rect, 3); },
         [&](auto& path) { zq::appendBezierPathWithRoundedRect(path, other, 3); });
  append([](auto& path) { zq::appendBezierPathWithTriangleInRect(path, rect, 0); },
         [&](auto& path) { zq::appendBezierPathWithTriangleInRect(path, other, 2); });
}

TEST(PathShapes, ANullPathIsLeftAlone) {
  zq::appendBezierPathWithPlateInRect(nullptr, rect);
  zq::appendBezierPathWithRoundedRect(nullptr, rect, 3);
  zq::appendBezierPathWithTriangleInRect(nullptr, rect, 0);
  // The constructors do not share their paths.
  EXPECT_NE(zq::bezierPathWithPlateInRect(rect), zq::bezierPathWithPlateInRect(rect));
}
