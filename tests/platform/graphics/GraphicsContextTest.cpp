#include "zqticker/platform/graphics/GraphicsContext.h"

#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Image.h"

#include <gtest/gtest.h>

#include <QtGui/QPainterPath>

#include <thread>

using namespace zq::platform;
using zq::testing::Canvas;
using zq::testing::inkBounds;

namespace {
const Ref<Color> red = Color::deviceRGB(1, 0, 0);
const Ref<Color> blue = Color::deviceRGB(0, 0, 1);
} // namespace

TEST(GraphicsContext, HasItsOriginAtTheLowerLeft) {
  for (const double scale : {1.0, 1.5, 2.0}) {
    Canvas canvas({20, 10}, scale);
    canvas.context->fillRect(QRectF(2, 4, 6, 2));
    EXPECT_EQ(inkBounds(canvas.finished(), Qt::white, 200),
              QRect(int(2 * scale), int(4 * scale), int(6 * scale), int(2 * scale)))
        << scale;
  }
}

TEST(GraphicsContext, HasItsOriginAtTheUpperLeftWhenFlipped) {
  Canvas canvas({20, 10}, 1, true);
  EXPECT_TRUE(canvas.context->isFlipped());
  canvas.context->fillRect(QRectF(2, 1, 6, 2));
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(2, 7, 6, 2));
}

TEST(GraphicsContext, IsCurrentWhileItLivesAndOnlyOnItsThread) {
  EXPECT_EQ(GraphicsContext::currentContext(), nullptr);
  {
    Canvas outer({4, 4});
    EXPECT_EQ(GraphicsContext::currentContext(), outer.context.get());
    {
      Canvas inner({4, 4});
      EXPECT_EQ(GraphicsContext::currentContext(), inner.context.get());
      std::thread([] { EXPECT_EQ(GraphicsContext::currentContext(), nullptr); }).join();
    }
    EXPECT_EQ(GraphicsContext::currentContext(), outer.context.get());
  }
  EXPECT_EQ(GraphicsContext::currentContext(), nullptr);
}

TEST(GraphicsContext, StaysCurrentWhenAnOuterOneEndsFirst) {
  auto outer = std::make_unique<Canvas>(QSizeF(4, 4));
  const Canvas inner({4, 4});
  outer.reset();
  EXPECT_EQ(GraphicsContext::currentContext(), inner.context.get());
}

TEST(GraphicsContext, KnowsItsScale) {
  for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
    const Canvas canvas({8, 8}, scale);
    EXPECT_DOUBLE_EQ(canvas.context->scale(), scale);
    canvas.context->concat(QTransform::fromScale(3, 2));
    EXPECT_DOUBLE_EQ(canvas.context->scale(), 3 * scale);
  }
}

TEST(GraphicsContext, RestoresTransformClipColoursAndOperation) {
  Canvas canvas({20, 10});
  {
    const SavedGraphicsState saved(canvas.context.get());
    canvas.context->translate(5, 5);
    canvas.context->clipToRect(QRectF(0, 0, 1, 1));
    canvas.context->setFillColor(blue);
    canvas.context->setFraction(0.5);
    canvas.context->setCompositingOperation(CompositingOperation::Clear);
  }
  EXPECT_EQ(canvas.context->compositingOperation(), CompositingOperation::SourceOver);
  EXPECT_EQ(canvas.context->clipBounds(), QRectF(0, 0, 20, 10));
  canvas.context->fillRect(QRectF(0, 0, 3, 2));
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(0, 0, 3, 2));
  EXPECT_EQ(canvas.pixel(0, 0), QColor(Qt::black));
}

TEST(GraphicsContext, ARestoreWithoutASaveDoesNothing) {
  Canvas canvas({20, 10});
  canvas.context->translate(2, 0);
  canvas.context->setFillColor(red);
  canvas.context->restoreGraphicsState();
  canvas.context->restoreGraphicsState();
  canvas.context->fillRect(QRectF(0, 0, 3, 2));
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(2, 0, 3, 2));
  EXPECT_EQ(canvas.pixel(2, 0), QColor(Qt::red));
}

TEST(GraphicsContext, LeavesThePainterAsItWasEvenWithSavesThatWereNotRestored) {
  QImage image(10, 10, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.translate(3, 0);
  const QTransform before = painter.worldTransform();
  {
    GraphicsContext context(&painter, QSizeF(10, 10));
    context.saveGraphicsState();
    context.translate(5, 5);
    context.saveGraphicsState();
    context.setFraction(0.25);
  }
  EXPECT_EQ(painter.worldTransform(), before);
  EXPECT_EQ(painter.opacity(), 1);
  EXPECT_FALSE(painter.renderHints().testFlag(QPainter::SmoothPixmapTransform));
}

TEST(GraphicsContext, ClipsAddUp) {
  Canvas canvas({20, 10});
  canvas.context->clipToRect(QRectF(2, 2, 10, 6));
  canvas.context->clipToRect(QRectF(8, 0, 10, 10));
  EXPECT_EQ(canvas.context->clipBounds(), QRectF(8, 2, 4, 6));
  canvas.context->fillRect(QRectF(0, 0, 20, 10));
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(8, 2, 4, 6));
}

TEST(GraphicsContext, ClipBoundsAreInThePresentUserSpace) {
  const Canvas canvas({20, 10}, 2);
  canvas.context->translate(5, 1);
  canvas.context->concat(QTransform::fromScale(2, 2));
  EXPECT_EQ(canvas.context->clipBounds(), QRectF(-2.5, -0.5, 10, 5));
}

TEST(GraphicsContext, StrokesAreCentredOnTheirPath) {
  Canvas canvas({20, 10});
  canvas.context->setStrokeColor(red);
  QPainterPath path(QPointF(2, 5));
  path.lineTo(12, 5);
  canvas.context->strokePath(path, 2);
  EXPECT_EQ(inkBounds(canvas.finished(), Qt::white, 200).top(), 4);
  EXPECT_EQ(inkBounds(canvas.finished(), Qt::white, 200).bottom(), 5);
}

TEST(GraphicsContext, ANullColourIsClear) {
  Canvas canvas({4, 4});
  canvas.context->setFillColor(nullptr);
  canvas.context->fillRect(QRectF(0, 0, 4, 4));
  EXPECT_TRUE(inkBounds(canvas.finished()).isNull());
}

TEST(GraphicsContext, PatternColoursRepeatFromTheOrigin) {
  QImage tile(2, 2, QImage::Format_RGB32);
  tile.fill(Qt::white);
  tile.setPixelColor(0, 0, Qt::red); // upper left
  for (const bool flipped : {false, true}) {
    Canvas canvas({6, 6}, 1, flipped);
    canvas.context->setFillColor(Color::pattern(Image::fromQImage(tile)));
    canvas.context->fillRect(QRectF(0, 0, 6, 6));
    canvas.finished();
    for (int y = 0; y < 6; ++y)
      for (int x = 0; x < 6; ++x)
        EXPECT_EQ(canvas.pixel(x, y), QColor(x % 2 == 0 && y % 2 == 1 ? Qt::red : Qt::white));
  }
}

struct Compositing {
  CompositingOperation operation;
  // What half transparent red over opaque green gives, and over nothing.
  QColor overGreen;
  QColor overClear;
};

class GraphicsContextCompositing : public ::testing::TestWithParam<Compositing> {};

TEST_P(GraphicsContextCompositing, FollowsItsFormula) {
  const auto& [operation, overGreen, overClear] = GetParam();
  Canvas canvas({4, 2}, 1, false, Canvas::Ground::Clear);
  canvas.context->setFillColor(Color::deviceRGB(0, 1, 0));
  canvas.context->fillRect(QRectF(0, 0, 2, 2));
  canvas.context->setCompositingOperation(operation);
  canvas.context->setFillColor(Color::deviceRGB(1, 0, 0, 0.5));
  canvas.context->fillRect(QRectF(0, 0, 4, 2));
  canvas.finished();
  const auto near = [](const QColor& a, const QColor& b) {
    return std::abs(a.red() * a.alpha() - b.red() * b.alpha()) <= 510 &&
           std::abs(a.green() * a.alpha() - b.green() * b.alpha()) <= 510 &&
           std::abs(a.alpha() - b.alpha()) <= 2;
  };
  EXPECT_TRUE(near(canvas.pixel(0, 0), overGreen))
      << canvas.pixel(0, 0).name(QColor::HexArgb).toStdString();
  EXPECT_TRUE(near(canvas.pixel(3, 0), overClear))
      << canvas.pixel(3, 0).name(QColor::HexArgb).toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    All, GraphicsContextCompositing,
    ::testing::Values(
        Compositing{CompositingOperation::Clear, QColor(0, 0, 0, 0), QColor(0, 0, 0, 0)},
        Compositing{CompositingOperation::Copy, QColor(255, 0, 0, 128), QColor(255, 0, 0, 128)},
        Compositing{CompositingOperation::SourceOver, QColor(128, 127, 0), QColor(255, 0, 0, 128)},
        Compositing{CompositingOperation::SourceIn, QColor(255, 0, 0, 128), QColor(0, 0, 0, 0)},
        Compositing{CompositingOperation::SourceOut, QColor(0, 0, 0, 0), QColor(255, 0, 0, 128)},
        Compositing{CompositingOperation::SourceAtop, QColor(128, 127, 0), QColor(0, 0, 0, 0)},
        Compositing{CompositingOperation::DestinationOver, QColor(0, 255, 0),
                    QColor(255, 0, 0, 128)},
        Compositing{CompositingOperation::DestinationIn, QColor(0, 255, 0, 128),
                    QColor(0, 0, 0, 0)},
        Compositing{CompositingOperation::DestinationOut, QColor(0, 255, 0, 127),
                    QColor(0, 0, 0, 0)},
        Compositing{CompositingOperation::DestinationAtop, QColor(0, 255, 0, 128),
                    QColor(255, 0, 0, 128)},
        Compositing{CompositingOperation::XOR, QColor(0, 255, 0, 127), QColor(255, 0, 0, 128)},
        Compositing{CompositingOperation::PlusLighter, QColor(128, 255, 0),
                    QColor(255, 0, 0, 128)}));
