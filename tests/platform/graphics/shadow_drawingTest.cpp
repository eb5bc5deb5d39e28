#include "zqticker/platform/graphics/shadow_drawing_p.h"

#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/platform/graphics/ShadowCache_p.h"
#include "zqticker/platform/graphics/VerticalShading.h"
#include "zqticker/platform/text/string_drawing.h"

#include <gtest/gtest.h>

#include <QtGui/QPainterPath>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <thread>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::testing::Canvas;
using zq::testing::inkBounds;
using zq::testing::maximumDifference;

namespace {

const Ref<Color> black = Color::deviceRGB(0, 0, 0);
const Ref<Color> red = Color::deviceRGB(1, 0, 0);

// How much of the way from `from` to `to` a Gaussian of `sigma` around `at` sees; of a sharp one,
// how much of the pixel around `at` lies there.
double seen(double at, double from, double to, double sigma) {
  if (sigma == 0)
    return std::max(0.0, std::min(at + 0.5, to) - std::max(at - 0.5, from));
  const auto below = [&](double x) { return 0.5 * (1 + std::erf((x - at) / sigma / M_SQRT2)); };
  return below(to) - below(from);
}

// The largest difference between the alpha of the shadow of `rect`, which lies in device pixels, y
// downwards, and that of the Gaussian formula.
double differenceFromFormula(const QImage& image, const QRectF& rect, double sigma, double alpha) {
  double largest = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) {
      const double expected = 255 * alpha * seen(x + 0.5, rect.left(), rect.right(), sigma) *
                              seen(y + 0.5, rect.top(), rect.bottom(), sigma);
      largest = std::max(largest, std::abs(expected - qAlpha(image.pixel(x, y))));
    }
  return largest;
}

// `image` blurred by spreading each pixel by a sampled Gaussian, in black of opacity `alpha`, moved
// by `offset` pixels, y downwards.
QImage blurred(const QImage& image, double sigma, QPoint offset, double alpha) {
  const int reach = int(4 * sigma) + 1;
  const auto bell = [&](int dx, int dy) {
    return std::exp(-(dx * dx + dy * dy) / (2 * sigma * sigma));
  };
  double total = 0;
  for (int dy = -reach; dy <= reach; ++dy)
    for (int dx = -reach; dx <= reach; ++dx)
      total += bell(dx, dy);
  std::vector<double> sums(std::size_t(image.width()) * std::size_t(image.height()));
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      for (int dy = -reach; dy <= reach && qAlpha(image.pixel(x, y)) > 0; ++dy)
        for (int dx = -reach; dx <= reach; ++dx) {
          const QPoint to = QPoint(x + dx, y + dy) + offset;
          if (image.rect().contains(to))
            sums[std::size_t(to.y() * image.width() + to.x())] +=
                qAlpha(image.pixel(x, y)) * bell(dx, dy) / total;
        }
  QImage result(image.size(), QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      result.setPixel(
          x, y, qRgba(0, 0, 0, int(std::lround(alpha * sums[std::size_t(y * image.width() + x)]))));
  return result;
}

// What `draw` makes on a clear canvas.
QImage drawn(QSizeF size, double scale, bool flipped,
             const std::function<void(GraphicsContext&)>& draw) {
  Canvas canvas(size, scale, flipped, Canvas::Ground::Clear);
  draw(*canvas.context);
  return canvas.finished();
}

// So far to the left of what is seen something is drawn whose shadow alone should show.
constexpr double aside = 200;

quint64 insertions() {
  return ShadowCache::shared().insertions();
}

QPainterPath rectPath(const QRectF& rect) {
  QPainterPath path;
  path.addRect(rect);
  return path;
}

Attributes textAttributes(const Ref<Color>& color = black) {
  return {{FontAttributeName, any(Font::fontWithName(u"DejaVu Sans"_s, 16))},
          {ForegroundColorAttributeName, any(color)}};
}

} // namespace

struct ShadowRow {
  const char* name;
  QSizeF offset;
  double blur;
  // In steps of 255.
  double tolerance;
};

class ShadowDrawing : public ::testing::TestWithParam<ShadowRow> {};

TEST_P(ShadowDrawing, FollowsTheGaussianFormula) {
  const ShadowRow& row = GetParam();
  for (const double scale : {1.0, 1.5, 2.0})
    for (const bool flipped : {false, true}) {
      const double alpha = 0.8;
      const QRectF rect(20, 20, 16, 12);
      const QImage image = drawn({60, 60}, scale, flipped, [&](GraphicsContext& context) {
        Shadow({row.offset.width() + aside, row.offset.height()}, row.blur,
               Color::deviceWhite(0, alpha))
            .set();
        context.setFillColor(red);
        context.fillRect(rect.translated(-aside, 0));
      });
      // The formula's rectangle, y downwards.
      const double top = flipped ? rect.top() : 60 - rect.bottom();
      const QRectF onDevice((rect.x() + row.offset.width()) * scale,
                            (top - row.offset.height()) * scale, rect.width() * scale,
                            rect.height() * scale);
      EXPECT_LE(differenceFromFormula(image, onDevice, row.blur / 2 * scale, alpha), row.tolerance)
          << "scale " << scale << (flipped ? " flipped" : "");
    }
}

INSTANTIATE_TEST_SUITE_P(All, ShadowDrawing,
                         ::testing::Values(ShadowRow{"SharpOnWholePixels", {4, -6}, 0, 1},
                                           ShadowRow{"SharpBetweenPixels", {1.3, 2.6}, 0, 1.5},
                                           ShadowRow{"BlurOfOne", {0, -1}, 1, 1.5},
                                           ShadowRow{"BlurBetweenPixels", {0.4, -0.7}, 1.5, 1.5},
                                           ShadowRow{"BlurOfThree", {-2, 3}, 3, 1.5},
                                           ShadowRow{"WideBlur", {1, 1}, 7, 1.5},
                                           ShadowRow{"BlurOnACoarseMask", {0, 0}, 18, 2.5}),
                         [](const auto& row) { return row.param.name; });

TEST(ShadowDrawing, LiesUnderWhatCastsIt) {
  Canvas canvas({20, 20});
  Shadow({2, -2}, 0, black).set();
  canvas.context->setFillColor(red);
  canvas.context->fillRect(QRectF(5, 8, 6, 6));
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(5, 6, 8, 8));
  EXPECT_EQ(canvas.pixel(5, 8), QColor(Qt::red));
  EXPECT_EQ(canvas.pixel(10, 13), QColor(Qt::red));
  EXPECT_EQ(canvas.pixel(10, 7), QColor(Qt::black));
  EXPECT_EQ(canvas.pixel(12, 7), QColor(Qt::black));
  EXPECT_EQ(canvas.pixel(5, 7), QColor(Qt::white));
}

TEST(ShadowDrawing, TheUserSpaceMovesWhatIsDrawnButNotItsOffset) {
  const auto image = [](const QTransform& transform, const QRectF& rect, bool flipped) {
    return drawn({40, 40}, 2, flipped, [&](GraphicsContext& context) {
      Shadow({3, -5}, 4, black).set();
      context.concat(transform);
      context.fillRect(rect);
    });
  };
  // Always the square from (12, 16) to (20, 24), counted from the lower left.
  const QImage plain = image(QTransform(), {12, 16, 8, 8}, false);
  EXPECT_EQ(image(QTransform::fromTranslate(10, 10), {2, 6, 8, 8}, false), plain);
  EXPECT_LE(maximumDifference(image(QTransform::fromScale(4, 8), {3, 2, 2, 1}, false), plain), 1);
  EXPECT_LE(maximumDifference(image(QTransform(1, 0, 0, -1, 0, 40), {12, 16, 8, 8}, false), plain),
            1);
  EXPECT_LE(maximumDifference(image(QTransform(-1, 0, 0, 1, 40, 0), {20, 16, 8, 8}, false), plain),
            1);
  EXPECT_LE(maximumDifference(image(QTransform(0, 1, -1, 0, 36, 0), {16, 16, 8, 8}, false), plain),
            1);
  EXPECT_EQ(image(QTransform(), {12, 16, 8, 8}, true), plain);
}

TEST(ShadowDrawing, TakesOnTheOpacityOfColourShadowAndFraction) {
  const QImage image = drawn({20, 20}, 1, false, [](GraphicsContext& context) {
    Shadow({aside, 0}, 0, Color::deviceRGB(0, 0, 1, 0.5)).set();
    context.setFillColor(Color::deviceRGB(1, 0, 0, 0.8));
    context.setFraction(0.5);
    context.fillRect(QRectF(5 - aside, 5, 10, 10));
  });
  // 0.5 × 0.8 × 0.5
  EXPECT_NEAR(image.pixelColor(10, 10).alpha(), 51, 1);
  EXPECT_NEAR(image.pixelColor(10, 10).blue(), 255, 5);
  EXPECT_EQ(image.pixelColor(10, 10).red(), 0);
}

TEST(ShadowDrawing, WithoutAColourThereIsNone) {
  const QImage image = drawn({20, 20}, 1, false, [](GraphicsContext& context) {
    Shadow({3, 3}, 1, black).set();
    Shadow({3, 3}, 1, nullptr).set();
    EXPECT_EQ(context.shadow(), nullptr);
    context.fillRect(QRectF(5, 5, 5, 5));
  });
  EXPECT_EQ(inkBounds(image, Qt::transparent), QRect(5, 5, 5, 5));
}

TEST(ShadowDrawing, ATransparentCasterHasNone) {
  const QImage image = drawn({20, 20}, 1, false, [](GraphicsContext& context) {
    Shadow({3, 3}, 1, black).set();
    context.setFillColor(nullptr);
    context.fillRect(QRectF(5, 5, 5, 5));
    context.setFillColor(Color::deviceRGB(1, 0, 0, 0));
    context.fillRect(QRectF(5, 5, 5, 5));
  });
  EXPECT_TRUE(inkBounds(image, Qt::transparent).isNull());
}

TEST(ShadowDrawing, BelongsToTheSavedState) {
  Canvas canvas({30, 20}, 1, false, Canvas::Ground::Clear);
  {
    const SavedGraphicsState saved(canvas.context.get());
    Shadow({0, 8}, 0, black).set();
    {
      const SavedGraphicsState inner(canvas.context.get());
      canvas.context->setShadow(nullptr);
      canvas.context->fillRect(QRectF(2, 2, 4, 4));
    }
    canvas.context->fillRect(QRectF(10, 2, 4, 4));
  }
  canvas.context->fillRect(QRectF(20, 2, 4, 4));
  canvas.finished();
  EXPECT_EQ(canvas.pixel(3, 11).alpha(), 0);
  EXPECT_EQ(canvas.pixel(11, 11).alpha(), 255);
  EXPECT_EQ(canvas.pixel(21, 11).alpha(), 0);
}

TEST(ShadowDrawing, IsAsItWasWhenItWasSet) {
  const QImage image = drawn({20, 20}, 1, false, [](GraphicsContext& context) {
    Shadow shadow({0, 8}, 0, black);
    shadow.set();
    shadow.setShadowOffset({0, 0});
    context.fillRect(QRectF(2, 2, 4, 4));
  });
  EXPECT_EQ(inkBounds(image, Qt::transparent), QRect(2, 2, 4, 12));
}

TEST(ShadowDrawing, IsClipped) {
  Canvas canvas({20, 20}, 1, false, Canvas::Ground::Clear);
  Shadow({6, 0}, 4, black).set();
  canvas.context->clipToRect(QRectF(0, 0, 13, 20));
  canvas.context->fillRect(QRectF(5, 5, 4, 4));
  EXPECT_EQ(inkBounds(canvas.finished(), Qt::transparent).right(), 12);
  EXPECT_GT(canvas.pixel(12, 7).alpha(), 100);
}

TEST(ShadowDrawing, FallsIntoTheClipFromOutside) {
  Canvas canvas({20, 20}, 1, false, Canvas::Ground::Clear);
  Shadow({8, 0}, 0, black).set();
  canvas.context->clipToRect(QRectF(10, 0, 10, 20));
  canvas.context->fillRect(QRectF(3, 5, 4, 4));
  EXPECT_EQ(inkBounds(canvas.finished(), Qt::transparent), QRect(11, 5, 4, 4));
}

TEST(ShadowDrawing, StrokesTextAndImagesHaveOneToo) {
  QImage picture(7, 5, QImage::Format_ARGB32_Premultiplied);
  picture.fill(QColor(255, 0, 0, 160));
  picture.setPixelColor(0, 0, Qt::green);
  const Ref<Image> bitmap = Image::fromQImage(picture);
  QPainterPath path(QPointF(6, 8));
  path.lineTo(14, 20);
  path.cubicTo(20, 20, 25, 10, 30, 9);
  struct Row {
    const char* name;
    std::function<void(GraphicsContext&)> draw;
  };
  const std::vector<Row> rows{
      {"stroke",
       [&](GraphicsContext& context) {
         context.setStrokeColor(red);
         context.strokePath(path, 2.5);
       }},
      {"thinnest stroke", [&](GraphicsContext& context) { context.strokePath(path, 0); }},
      {"fill", [&](GraphicsContext& context) { context.fillPath(path); }},
      {"pattern",
       [&](GraphicsContext& context) {
         context.setFillColor(Color::pattern(bitmap));
         context.fillPath(path);
       }},
      {"text",
       [](GraphicsContext&) {
         drawAtPoint(u"Ägypten"_s, {8, 8}, textAttributes(red));
       }},
      {"half transparent text",
       [](GraphicsContext&) {
         drawAtPoint(u"Typ"_s, {8, 8}, textAttributes(Color::deviceRGB(0, 0, 1, 0.5)));
       }},
      {"image",
       [&](GraphicsContext&) {
         bitmap->dissolveToPoint({10, 9}, 0.75);
       }},
      {"part of an image", [&](GraphicsContext&) {
         bitmap->drawInRect({8, 8, 20, 10}, {1, 1, 5, 3});
       }}};
  for (const Row& row : rows)
    for (const bool flipped : {false, true})
      for (const double scale : {1.0, 1.5, 2.0}) {
        const QSizeF size(80, 40);
        QImage caster = drawn(size, scale, flipped, row.draw);
        caster.setDevicePixelRatio(1);
        // Whole device pixels at each of the scales.
        const QImage shadow = drawn(size, scale, flipped, [&](GraphicsContext& context) {
          Shadow({4, -2}, 4, Color::deviceWhite(0, 0.5)).set();
          row.draw(context);
        });
        QImage expected = blurred(caster, 2 * scale, QPoint(int(4 * scale), int(2 * scale)), 0.5);
        QPainter(&expected).drawImage(0, 0, caster);
        ASSERT_FALSE(inkBounds(caster, Qt::transparent).isNull()) << row.name;
        // Colours of nearly transparent pixels say little: premultiplied values are compared.
        int difference = 0;
        for (int y = 0; y < shadow.height(); ++y)
          for (int x = 0; x < shadow.width(); ++x) {
            const QRgb a = reinterpret_cast<const QRgb*>(shadow.constScanLine(y))[x];
            const QRgb b = reinterpret_cast<const QRgb*>(expected.constScanLine(y))[x];
            difference =
                std::max({difference, std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                          std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
          }
        EXPECT_LE(difference, 2) << row.name << " at " << scale << (flipped ? " flipped" : "");
      }
}

TEST(ShadowDrawing, ARecordingKeepsIt) {
  const auto draw = [](GraphicsContext& context) {
    const SavedGraphicsState saved(&context);
    Shadow({2, -3}, 2, Color::deviceWhite(0, 0.7)).set();
    context.setFillColor(red);
    context.fillRect(QRectF(6, 8, 8, 6));
    context.setShadow(nullptr);
    context.fillRect(QRectF(20, 8, 4, 6));
  };
  const Ref<Image> image = Image::make({30, 24});
  {
    const ImageFocus focus(*image);
    draw(*GraphicsContext::currentContext());
  }
  for (const double scale : {1.0, 1.5, 2.0}) {
    const QImage direct = drawn({30, 24}, scale, false, draw);
    const QImage shown = drawn({30, 24}, scale, false, [&](GraphicsContext&) {
      image->dissolveToPoint({0, 0}, 1);
    });
    EXPECT_LE(maximumDifference(shown, direct), 1) << scale;
  }
}

TEST(ShadowDrawing, AShadowedImageCastsItsOwnShadowUnderItsContents) {
  const Ref<Image> image = Image::make({10, 10});
  {
    const ImageFocus focus(*image);
    Shadow({0, -4}, 0, red).set();
    GraphicsContext::currentContext()->fillRect(QRectF(2, 6, 4, 4));
  }
  Canvas canvas({30, 12}, 1, false, Canvas::Ground::Clear);
  Shadow({12, 0}, 0, black).set();
  image->dissolveToPoint({1, 1}, 1);
  canvas.finished();
  EXPECT_EQ(canvas.pixel(4, 8), QColor(Qt::black));
  EXPECT_EQ(canvas.pixel(4, 4), QColor(Qt::red));
  EXPECT_EQ(canvas.pixel(16, 8), QColor(Qt::black));
  EXPECT_EQ(canvas.pixel(16, 4), QColor(Qt::black));
}

TEST(ShadowDrawing, OnlyOperationsThatKeepWhatLiesAroundCastShadows) {
  for (int number = 0; number <= 13; ++number) {
    const auto operation = CompositingOperation(number);
    if (number == 11 || number == 12)
      continue;
    Canvas canvas({20, 20});
    Shadow({0, 8}, 0, red).set();
    canvas.context->setCompositingOperation(operation);
    canvas.context->fillRect(QRectF(4, 4, 4, 4));
    canvas.finished();
    const bool casts = operation == CompositingOperation::SourceOver ||
                       operation == CompositingOperation::SourceAtop;
    EXPECT_EQ(canvas.pixel(5, 13), QColor(casts ? Qt::red : Qt::white)) << number;
  }
  Canvas canvas({20, 20}, 1, false, Canvas::Ground::Clear);
  Shadow({0, 8}, 0, red).set();
  canvas.context->setCompositingOperation(CompositingOperation::PlusLighter);
  canvas.context->fillRect(QRectF(4, 4, 4, 4));
  canvas.finished();
  EXPECT_EQ(canvas.pixel(5, 13), QColor(Qt::red));
}

TEST(ShadowDrawing, LargeShapesCastTheSameShadowWhereTheyAreSeen) {
  const auto image = [](const QRectF& rect) {
    return drawn({40, 40}, 2, false, [&](GraphicsContext& context) {
      Shadow({2, -3}, 5, black).set();
      context.fillRect(rect);
    });
  };
  const QImage corner = image({10, 12, 60, 60});
  EXPECT_LE(maximumDifference(image({10, 12, 1e5, 1e5}), corner), 1);
  EXPECT_LE(maximumDifference(image({10, 12, 1e12, 1e12}), corner), 1);
}

TEST(ShadowDrawing, TheThinnestLineIsOnePixelWideUnderAWideBlurToo) {
  const auto image = [](double width) {
    return drawn({80, 80}, 1, false, [&](GraphicsContext& context) {
      Shadow({aside, 0}, 40, black).set();
      context.strokePath(rectPath({20 - aside, 20, 40, 40}), width);
    });
  };
  EXPECT_LE(maximumDifference(image(0), image(1)), 1);
  EXPECT_GT(image(1).pixelColor(40, 40).alpha(), 5);
}

TEST(ShadowDrawing, ScalesThatDifferMuchAreBorne) {
  QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.scale(10000, 1);
  GraphicsContext context(&painter, QSizeF(0.004, 40));
  Shadow({0, 10}, 2000, black).set();
  context.fillRect(QRectF(-1e6, -1e6, 2e6, 2e6));
  EXPECT_EQ(image.pixelColor(20, 20).alpha(), 255);
}

TEST(ShadowDrawing, EveryNumberIsBorne) {
  const double endless = std::numeric_limits<double>::infinity();
  for (const double number : {1e300, -1e300, 1e9, endless, -endless, qQNaN()}) {
    Canvas canvas({20, 20});
    Shadow({number, 0}, 1, black).set();
    canvas.context->fillRect(QRectF(4, 4, 4, 4));
    Shadow({0, number}, 1, black).set();
    canvas.context->fillRect(QRectF(4, 4, 4, 4));
    canvas.context->fillRect(QRectF(number, 4, 4, number));
    EXPECT_EQ(canvas.pixel(15, 15), QColor(Qt::white)) << number;
    Shadow({0, 0}, number, black).set();
    canvas.context->fillRect(QRectF(4, 4, 4, 4));
    canvas.finished();
    EXPECT_EQ(canvas.pixel(5, 5), QColor(Qt::black)) << number;
  }
}

TEST(ShadowDrawing, NothingIsMadeAgainForARedraw) {
  const Ref<Image> picture = Image::fromQImage(QImage(5, 5, QImage::Format_RGB32));
  const Attributes attributes = textAttributes();
  const auto draw = [&](GraphicsContext& context) {
    Shadow({1, -1}, 2, black).set();
    context.fillRect(QRectF(2, 2, 8, 8));
    context.strokePath(rectPath({2, 2, 6, 6}), 1.5);
    drawAtPoint(u"Text"_s, {3, 3}, attributes);
    picture->dissolveToPoint({3, 3}, 1);
  };
  drawn({40, 40}, 1.5, false, draw);
  const quint64 before = insertions();
  drawn({40, 40}, 1.5, false, [&](GraphicsContext& context) {
    draw(context);
    // Two points are three pixels here: the same shadows elsewhere.
    context.translate(2, 4);
    draw(context);
  });
  EXPECT_EQ(insertions(), before);
}

TEST(ShadowDrawing, EachDifferenceMakesAnotherShadow) {
  const auto made = [](const std::function<void(GraphicsContext&)>& draw, double scale = 1) {
    const quint64 before = insertions();
    drawn({40, 40}, scale, false, draw);
    return insertions() - before;
  };
  const auto rect = [](const QSizeF& offset, double blur, const Ref<Color>& color, double width) {
    return [=](GraphicsContext& context) {
      Shadow(offset, blur, color).set();
      context.fillRect(QRectF(3, 3, width, 9));
    };
  };
  const Ref<Color> gray = Color::deviceWhite(0.31);
  EXPECT_EQ(made(rect({0, 1}, 3, gray, 9)), 1u);
  EXPECT_EQ(made(rect({0, 1}, 3, gray, 9)), 0u);
  EXPECT_EQ(made(rect({0, 1}, 3, gray, 9), 2), 1u);
  EXPECT_EQ(made(rect({0, 1}, 4, gray, 9)), 1u);
  // Reaches as far as the first.
  EXPECT_EQ(made(rect({0, 1}, 3.2, gray, 9)), 1u);
  EXPECT_EQ(made(rect({0, 1}, 3, Color::deviceWhite(0.32), 9)), 1u);
  EXPECT_EQ(made(rect({0, 1}, 3, gray, 9.5)), 1u);
  EXPECT_EQ(made(rect({0, 1.5}, 3, gray, 9)), 1u);
  // A whole pixel of the offset moves the same shadow.
  EXPECT_EQ(made(rect({0, 2}, 3, gray, 9)), 0u);
  const auto stroke = [&](double width) {
    return [=](GraphicsContext& context) {
      Shadow({0, 1}, 3, gray).set();
      context.strokePath(rectPath({3, 3, 9, 9}), width);
    };
  };
  EXPECT_EQ(made(stroke(1)), 1u);
  EXPECT_EQ(made(stroke(2)), 1u);
  EXPECT_EQ(made(stroke(1)), 0u);
}

TEST(ShadowDrawing, ShadowsAndShadingsLookTheSameWhileAnotherThreadDrawsThem) {
  const auto picture = [](int round) {
    return drawn({60, 60}, 2, false, [&](GraphicsContext& context) {
      Shadow({2, -2}, 3 + round / 50.0, black).set();
      context.setFillColor(red);
      context.fillRect(QRectF(10, 10, 20, 20));
      const auto colorAt = [](double t) { return std::array<double, 4>{t, 0, 1 - t, 1}; };
      context.fillPathWithShading(rectPath({35, 10, 10, 20.0 + round}), {colorAt, "red to blue"});
    });
  };
  constexpr int rounds = 20;
  std::array<std::vector<QImage>, 3> pictures;
  std::vector<std::thread> threads;
  for (auto& own : pictures)
    threads.emplace_back([&] {
      for (int round = 0; round < rounds; ++round)
        own.push_back(picture(round));
    });
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(pictures[0], pictures[1]);
  EXPECT_EQ(pictures[0], pictures[2]);
  EXPECT_EQ(pictures[0].back(), picture(rounds - 1));
}

TEST(ShadowCache, DropsWhatWasUsedLeastRecently) {
  ShadowCache cache;
  // A quarter of what fits.
  QImage image(1024, 1024, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::black);
  for (const char* key : {"a", "b", "c"})
    cache.insert(key, {image, QPoint(1, 2)});
  EXPECT_EQ(cache.find("a")->corner, QPoint(1, 2));
  cache.insert("d", {image, QPoint(3, 4)});
  EXPECT_LE(cache.bytes(), ShadowCache::MaximumBytes);
  EXPECT_TRUE(cache.find("a"));
  EXPECT_FALSE(cache.find("b"));
  EXPECT_TRUE(cache.find("d"));
  // A shadow of which nothing shows is kept as that.
  cache.insert("e", {});
  ASSERT_TRUE(cache.find("e"));
  EXPECT_TRUE(cache.find("e")->image.isNull());
}

TEST(ShadowCache, KeepsTheFirstOfTwoForOneKey) {
  ShadowCache cache;
  const QImage image(4, 4, QImage::Format_ARGB32_Premultiplied);
  cache.insert("a", {image, QPoint(1, 2)});
  cache.insert("a", {image, QPoint(3, 4)});
  EXPECT_EQ(cache.find("a")->corner, QPoint(1, 2));
  EXPECT_EQ(cache.insertions(), 1u);
}

TEST(ShadowDrawing, LargeShadowsAreNotKept) {
  const quint64 before = insertions();
  drawn({40, 40}, 1, false, [](GraphicsContext& context) {
    Shadow({3, 3}, 1, black).set();
    context.fillRect(QRectF(0, 0, 1000, 1000));
  });
  EXPECT_EQ(insertions(), before);
}

TEST(ShadowDrawing, WithoutAContextNothingHappens) {
  const Shadow shadow({3, 3}, 1, black);
  shadow.set();
  EXPECT_EQ(GraphicsContext::currentContext(), nullptr);
}

TEST(ColorDrawing, SettingAColourSetsFillsAndStrokes) {
  Canvas canvas({20, 20});
  red->set();
  canvas.context->fillRect(QRectF(2, 2, 4, 4));
  canvas.context->strokePath(rectPath({10, 10, 4, 4}), 2);
  canvas.finished();
  EXPECT_EQ(canvas.pixel(3, 3), QColor(Qt::red));
  EXPECT_EQ(canvas.pixel(10, 12), QColor(Qt::red));
  red->set();
}
