#include "zqticker/platform/graphics/BezierPath.h"

#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/objects/AssertionHandler.h"
#include "zqticker/platform/objects/Exception.h"

#include <gtest/gtest.h>

#include <QtGui/QTransform>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::Canvas;
using zq::testing::inkBounds;

namespace {

using Type = BezierPath::ElementType;

const QRectF zeroRect(0, 0, 0, 0);

void expectNear(QPointF actual, QPointF expected, double tolerance = 1e-12) {
  EXPECT_NEAR(actual.x(), expected.x(), tolerance);
  EXPECT_NEAR(actual.y(), expected.y(), tolerance);
}

// The point at `t` of the curve from `from`.
QPointF onCurve(QPointF from, const BezierPath::Element& curve, double t) {
  const double s = 1 - t;
  return s * s * s * from + 3 * s * s * t * curve.points[0] + 3 * s * t * t * curve.points[1] +
         t * t * t * curve.points[2];
}

// Checks that `path` is one arc around `center`, counter-clockwise over `sweep` degrees.
void expectArc(const BezierPath& path, QPointF center, double radius, double start, double sweep) {
  ASSERT_EQ(path.elementAtIndex(0).type, Type::MoveTo);
  QPointF from = path.elementAtIndex(0).endPoint();
  expectNear(from,
             center + radius * QPointF(std::cos(start * M_PI / 180), std::sin(start * M_PI / 180)));
  double turned = 0;
  for (int i = 1; i < path.elementCount(); ++i) {
    const BezierPath::Element& curve = path.elementAtIndex(i);
    ASSERT_EQ(curve.type, Type::CurveTo);
    QPointF last = from - center;
    for (int step = 1; step <= 16; ++step) {
      const QPointF now = onCurve(from, curve, step / 16.0) - center;
      EXPECT_NEAR(std::hypot(now.x(), now.y()), radius, 0.0003 * radius);
      const double cross = last.x() * now.y() - last.y() * now.x();
      EXPECT_GT(cross, 0) << "counter-clockwise";
      turned += std::atan2(cross, last.x() * now.x() + last.y() * now.y()) * 180 / M_PI;
      last = now;
    }
    from = curve.endPoint();
  }
  EXPECT_NEAR(turned, sweep, 1e-6);
}

// Lets failed assertions pass while it lives, and counts them.
class Lenient : public AssertionHandler {
 public:
  Lenient() { AssertionHandler::setCurrentHandler(this); }
  ~Lenient() override { AssertionHandler::setCurrentHandler(nullptr); }
  void handleFailure(const QString&, const QString&, int) override { ++failures; }
  int failures = 0;
};

} // namespace

TEST(BezierPath, ANewOneIsEmptyWithTheDefaultWidthAndFlatness) {
  const Ref<BezierPath> path = BezierPath::make();
  EXPECT_TRUE(path->isEmpty());
  EXPECT_EQ(path->elementCount(), 0);
  EXPECT_EQ(path->bounds(), zeroRect);
  EXPECT_EQ(path->lineWidth(), 1.0);
  EXPECT_EQ(path->flatness(), 0.6);
}

TEST(BezierPath, KeepsItsElements) {
  BezierPath path;
  path.moveToPoint({1, 2});
  path.lineToPoint({5, 2});
  path.lineToPoint({5, 6});
  path.closePath();
  ASSERT_EQ(path.elementCount(), 4);
  EXPECT_EQ(path.elementAtIndex(0).type, Type::MoveTo);
  EXPECT_EQ(path.elementAtIndex(1).type, Type::LineTo);
  EXPECT_EQ(path.elementAtIndex(1).endPoint(), QPointF(5, 2));
  EXPECT_EQ(path.elementAtIndex(3).type, Type::ClosePath);
  EXPECT_EQ(path.elementAtIndex(3).endPoint(), QPointF(1, 2));
  EXPECT_EQ(path.bounds(), QRectF(1, 2, 4, 4));
  EXPECT_FALSE(path.isEmpty());
}

TEST(BezierPath, RefusesElementsThatItDoesNotHave) {
  BezierPath path;
  path.moveToPoint({1, 2});
  EXPECT_THROW(path.elementAtIndex(1), RangeException);
  EXPECT_THROW(path.elementAtIndex(-1), RangeException);
}

TEST(BezierPath, ALineNeedsACurrentPoint) {
  BezierPath path;
  EXPECT_THROW(path.lineToPoint({1, 1}), InternalInconsistencyException);
  EXPECT_TRUE(path.isEmpty());
  Lenient handler;
  path.lineToPoint({1, 1});
  EXPECT_EQ(handler.failures, 1);
  EXPECT_EQ(path.elementAtIndex(0).type, Type::MoveTo);
}

TEST(BezierPath, ClosingWithoutACurrentPointDoesNothing) {
  BezierPath path;
  path.closePath();
  EXPECT_TRUE(path.isEmpty());
}

TEST(BezierPath, GoesOnFromTheStartOfAClosedSubpath) {
  BezierPath path;
  path.appendBezierPathWithRect({2, 3, 4, 5});
  path.lineToPoint({0, 0});
  EXPECT_EQ(path.bounds(), QRectF(0, 0, 6, 8));
  // The line starts at (2, 3), so that it passes (1, 1.5).
  Canvas canvas({8, 10});
  canvas.context->setStrokeColor(Color::deviceRGB(1, 0, 0));
  path.stroke();
  canvas.finished();
  EXPECT_LT(canvas.pixel(1, 1).green(), 160);
}

TEST(BezierPath, ARectangleRunsCounterClockwiseFromItsOrigin) {
  BezierPath path;
  path.appendBezierPathWithRect({1, 2, 3, 4});
  ASSERT_EQ(path.elementCount(), 5);
  EXPECT_EQ(path.elementAtIndex(0).endPoint(), QPointF(1, 2));
  EXPECT_EQ(path.elementAtIndex(1).endPoint(), QPointF(4, 2));
  EXPECT_EQ(path.elementAtIndex(2).endPoint(), QPointF(4, 6));
  EXPECT_EQ(path.elementAtIndex(3).endPoint(), QPointF(1, 6));
  EXPECT_EQ(path.elementAtIndex(4).type, Type::ClosePath);
}

struct Arc {
  const char* name;
  double start;
  double end;
  double sweep;
};

class BezierPathArc : public ::testing::TestWithParam<Arc> {};

TEST_P(BezierPathArc, RunsCounterClockwise) {
  const Arc& arc = GetParam();
  BezierPath path;
  path.appendBezierPathWithArcWithCenter({3, -4}, 10, arc.start, arc.end);
  expectArc(path, {3, -4}, 10, arc.start, arc.sweep);
}

INSTANTIATE_TEST_SUITE_P(
    All, BezierPathArc,
    ::testing::Values(Arc{"Quarter", 0, 90, 90}, Arc{"Half", 90, 270, 180},
                      Arc{"HalfThroughZero", 270, 90, 180}, Arc{"FromAWholeTurn", 360, 90, 90},
                      Arc{"ToAWholeTurn", 270, 360, 90}, Arc{"WholeTurn", 0, 360, 360},
                      Arc{"OneTurnAtMost", 10, 1000, 360}, Arc{"NegativeAngles", -30, -10, 20},
                      Arc{"EndRaisedByTurns", 20, -700, 0}, Arc{"Odd", 12.5, 301.25, 288.75},
                      Arc{"Nothing", 45, 45, 0}),
    [](const auto& row) { return row.param.name; });

TEST(BezierPath, ArcsEndExactlyAtWholeQuarters) {
  BezierPath path;
  path.appendBezierPathWithArcWithCenter({1, 1}, 0.3, -90, 180);
  EXPECT_EQ(path.elementAtIndex(0).endPoint().x(), 1);
  EXPECT_EQ(path.elementAtIndex(0).endPoint().y(), 1 - 0.3);
  EXPECT_EQ(path.elementAtIndex(3).endPoint().x(), 1 - 0.3);
  EXPECT_EQ(path.elementAtIndex(3).endPoint().y(), 1);
}

TEST(BezierPath, AnArcIsJoinedToTheCurrentPointByALine) {
  BezierPath path;
  path.moveToPoint({0, 0});
  path.appendBezierPathWithArcWithCenter({10, 0}, 2, 0, 90);
  ASSERT_EQ(path.elementCount(), 3);
  EXPECT_EQ(path.elementAtIndex(1).type, Type::LineTo);
  EXPECT_EQ(path.elementAtIndex(1).endPoint(), QPointF(12, 0));
  EXPECT_EQ(path.elementAtIndex(2).endPoint(), QPointF(10, 2));
}

TEST(BezierPath, AnArcFromTheCurrentPointNeedsNoLine) {
  BezierPath path;
  path.moveToPoint({12, 0});
  path.appendBezierPathWithArcWithCenter({10, 0}, 2, 0, 90);
  ASSERT_EQ(path.elementCount(), 2);
  EXPECT_EQ(path.elementAtIndex(1).type, Type::CurveTo);
}

TEST(BezierPath, AnglesThatAreNoNumbersAddNothing) {
  BezierPath path;
  path.appendBezierPathWithArcWithCenter({10, 0}, 2, qQNaN(), 90);
  path.appendBezierPathWithArcWithCenter({10, 0}, 2, 0, qInf());
  EXPECT_TRUE(path.isEmpty());
}

TEST(BezierPath, BoundsTakeCurvesExactly) {
  BezierPath path;
  path.appendBezierPathWithArcWithCenter({0, 0}, 10, 45, 135);
  const QRectF bounds = path.bounds();
  EXPECT_NEAR(bounds.bottom(), 10, 0.003);
  EXPECT_NEAR(bounds.top(), 10 * std::sqrt(0.5), 1e-9);
  EXPECT_NEAR(bounds.left(), -10 * std::sqrt(0.5), 1e-9);
}

TEST(BezierPath, ACoordinateThatIsNoNumberDrawsNothing) {
  BezierPath path;
  path.appendBezierPathWithRect({0, 0, 5, 5});
  path.lineToPoint({qQNaN(), 2});
  path.lineToPoint({3, 3});
  EXPECT_EQ(path.bounds(), zeroRect);
  Canvas canvas({8, 8});
  path.fill();
  path.stroke();
  EXPECT_TRUE(inkBounds(canvas.finished()).isNull());
}

TEST(BezierPath, MapsEveryPoint) {
  BezierPath path;
  path.moveToPoint({1, 1});
  path.appendBezierPathWithArcWithCenter({3, 1}, 1, 0, 90);
  path.closePath();
  path.transformUsingAffineTransform(QTransform(2, 0, 0, -1, 10, 5));
  EXPECT_EQ(path.elementAtIndex(0).endPoint(), QPointF(12, 4));
  EXPECT_EQ(path.elementAtIndex(1).endPoint(), QPointF(18, 4));
  EXPECT_EQ(path.elementAtIndex(2).endPoint(), QPointF(16, 3));
  EXPECT_EQ(path.elementAtIndex(3).endPoint(), QPointF(12, 4));
  EXPECT_EQ(path.bounds(), QRectF(12, 3, 6, 1));
  path.closePath();
  EXPECT_EQ(path.elementAtIndex(4).endPoint(), QPointF(12, 4));
}

TEST(BezierPath, ACopyChangesByItself) {
  const Ref<BezierPath> path = BezierPath::make();
  path->appendBezierPathWithRect({1, 2, 3, 4});
  path->setLineWidth(2.5);
  path->setFlatness(0.2);
  const Ref<BezierPath> copy = copyOf(path);
  EXPECT_EQ(copy->lineWidth(), 2.5);
  EXPECT_EQ(copy->flatness(), 0.2);
  copy->transformUsingAffineTransform(QTransform::fromTranslate(10, 0));
  EXPECT_EQ(copy->bounds(), QRectF(11, 2, 3, 4));
  EXPECT_EQ(path->bounds(), QRectF(1, 2, 3, 4));
}

TEST(BezierPath, ALineWidthBelowZeroCountsAsTheThinnest) {
  BezierPath path;
  path.setLineWidth(-1);
  EXPECT_EQ(path.lineWidth(), 0);
  path.setLineWidth(qQNaN());
  EXPECT_EQ(path.lineWidth(), 0);
}

TEST(BezierPath, DescribesItself) {
  const Ref<BezierPath> path = BezierPath::make();
  path->appendBezierPathWithRect({1, 2, 3, 4.5});
  EXPECT_EQ(describe(path), u"BezierPath {{1, 2}, {3, 4.5}}, 5 elements");
}

TEST(BezierPath, FillsInTheColourOfTheCurrentContext) {
  for (const bool flipped : {false, true}) {
    Canvas canvas({10, 10}, 1, flipped);
    canvas.context->setFillColor(Color::deviceRGB(1, 0, 0));
    BezierPath path;
    path.appendBezierPathWithRect({2, 1, 4, 3});
    path.fill();
    EXPECT_EQ(inkBounds(canvas.finished()), QRect(2, flipped ? 6 : 1, 4, 3));
    EXPECT_EQ(canvas.pixel(3, flipped ? 7 : 2), QColor(Qt::red));
  }
}

TEST(BezierPath, SubpathsThatOverlapFillAsOne) {
  Canvas canvas({10, 10});
  BezierPath path;
  path.appendBezierPathWithRect({1, 1, 6, 6});
  path.appendBezierPathWithRect({3, 3, 6, 6});
  path.fill();
  canvas.finished();
  EXPECT_EQ(canvas.pixel(5, 5), QColor(Qt::black));
}

TEST(BezierPath, StrokesHaveButtEndsAndMitredJoins) {
  Canvas canvas({20, 20});
  BezierPath path;
  path.moveToPoint({4, 16});
  path.lineToPoint({4, 4});
  path.lineToPoint({16, 4});
  path.setLineWidth(4);
  path.stroke();
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(2, 2, 14, 14));
  EXPECT_EQ(canvas.pixel(2, 2), QColor(Qt::black));
}

TEST(BezierPath, AWidthOfZeroIsTheThinnestLineAtEveryScale) {
  for (const double scale : {1.0, 2.0, 3.0}) {
    Canvas canvas({10, 10}, scale);
    BezierPath path;
    // In the middle of a row of pixels.
    path.moveToPoint({2, 4 + 0.5 / scale});
    path.lineToPoint({8, 4 + 0.5 / scale});
    path.setLineWidth(0);
    path.stroke();
    const QRect ink = inkBounds(canvas.finished(), Qt::white, 40);
    EXPECT_EQ(ink.height(), 1) << scale;
    EXPECT_EQ(ink.top(), int(4 * scale)) << scale;
  }
}

TEST(BezierPath, ClipsUntilTheStateIsRestored) {
  Canvas canvas({10, 10});
  BezierPath clip;
  clip.appendBezierPathWithRect({2, 3, 4, 5});
  BezierPath all;
  all.appendBezierPathWithRect({0, 0, 10, 10});
  {
    const SavedGraphicsState saved(canvas.context.get());
    clip.addClip();
    all.fill();
  }
  EXPECT_EQ(inkBounds(canvas.image), QRect(2, 3, 4, 5));
  all.fill();
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(0, 0, 10, 10));
}

TEST(BezierPath, WithoutAContextNothingIsDrawn) {
  BezierPath path;
  path.appendBezierPathWithRect({0, 0, 5, 5});
  path.fill();
  path.stroke();
  path.addClip();
  EXPECT_EQ(path.elementCount(), 5);
}
