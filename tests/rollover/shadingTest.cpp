#include "zqticker/rollover/shading.h"

#include "tests/platform/graphics/Canvas.h"
#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/platform/graphics/shading_drawing_p.h"
#include "zqticker/rollover/path_shapes.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zq::platform;
using zq::FunctionCallbacks;
using zq::testing::Canvas;
using zq::testing::inkBounds;
using zq::testing::maximumDifference;

namespace {

const Ref<Color> red = Color::deviceRGB(1, 0, 0);
const Ref<Color> blue = Color::deviceRGB(0, 0, 1);
const Ref<Color> white = Color::deviceWhite(1);
const Ref<Color> gray = Color::deviceWhite(0.5);

Ref<BezierPath> rectPath(const QRectF& rect) {
  const Ref<BezierPath> path = BezierPath::make();
  path->appendBezierPathWithRect(rect);
  return path;
}

void expectColor(const QColor& actual, double r, double g, double b, double tolerance,
                 const std::string& where) {
  EXPECT_NEAR(actual.red(), 255 * r, tolerance) << where;
  EXPECT_NEAR(actual.green(), 255 * g, tolerance) << where;
  EXPECT_NEAR(actual.blue(), 255 * b, tolerance) << where;
}

std::string place(double scale, bool flipped, int row) {
  return "scale " + std::to_string(scale) + (flipped ? " flipped" : "") + " row " +
         std::to_string(row);
}

// What the callbacks of the tests see.
struct Calls {
  std::vector<double> places;
  std::array<double, 12> table{};
  int releases = 0;
};
Calls calls;

void recordedRed(void* info, const double* in, double* out) {
  calls.places.push_back(*in);
  std::copy_n(static_cast<const double*>(info), 12, calls.table.begin());
  out[0] = out[3] = 1;
  out[1] = out[2] = 0;
}

void countRelease(void* info) {
  ++calls.releases;
  // The table is still there.
  EXPECT_EQ(static_cast<const double*>(info)[0], calls.table[0]);
}

// How often a row was evaluated while `draw` ran.
std::size_t evaluations(const std::function<void()>& draw) {
  calls = {};
  draw();
  return calls.places.size();
}

} // namespace

TEST(Shading, LinearRunsFromTheStartAtTheBottomOfTheBoundsToTheEndAtTheirTop) {
  for (const double scale : {1.0, 1.5, 2.0})
    for (const bool flipped : {false, true}) {
      Canvas canvas({12, 40}, scale, flipped);
      zq::linearGradientFillWithStartColor(rectPath({2, 10, 8, 20}), red, blue);
      canvas.finished();
      const int count = int(20 * scale);
      for (int i = 0; i < count; ++i) {
        // Rows from the smallest y; in a flipped context that is the uppermost one.
        const int row = flipped ? int(30 * scale) - 1 - i : int(10 * scale) + i;
        const double t = (i + 0.5) / count;
        expectColor(canvas.pixel(int(6 * scale), row), 1 - t, 0, t, 1, place(scale, flipped, i));
        EXPECT_EQ(canvas.pixel(int(3 * scale), row), canvas.pixel(int(9 * scale), row));
      }
      EXPECT_EQ(inkBounds(canvas.image),
                QRect(int(2 * scale), int(10 * scale), int(8 * scale), count));
    }
}

TEST(Shading, BilinearHasItsOuterColourAlongTheMiddleAndItsInnerOneAtTheEdges) {
  for (const double scale : {1.0, 1.5, 2.0})
    for (const bool flipped : {false, true}) {
      Canvas canvas({12, 40}, scale, flipped);
      zq::bilinearGradientFillWithOuterColor(rectPath({2, 10, 8, 20}), red, blue);
      canvas.finished();
      const int count = int(20 * scale);
      for (int i = 0; i < count; ++i) {
        const double t = (i + 0.5) / count;
        const double u = t <= 0.5 ? 2 * t : 2 - 2 * t;
        // Crossed: red was named the outer colour.
        expectColor(canvas.pixel(int(6 * scale), int(10 * scale) + i), u, 0, 1 - u, 1,
                    place(scale, flipped, i));
      }
    }
}

TEST(Shading, ABilinearFillOfWhiteOutsideAndGrayInsideIsWhiteInTheMiddle) {
  Canvas canvas({10, 21});
  zq::bilinearGradientFillWithOuterColor(rectPath({0, 0, 10, 21}), white, gray);
  canvas.finished();
  EXPECT_EQ(canvas.pixel(5, 10), QColor(Qt::white));
  EXPECT_NEAR(canvas.pixel(5, 0).red(), 128, 7);
  EXPECT_NEAR(canvas.pixel(5, 20).red(), 128, 7);
}

TEST(Shading, TheLinearFunctionMixesAllFourChannels) {
  std::array<double, 12> table{0.1, 0.2, 0.3, 0.4, 0.9, 0.6, 0.3, 0.0, 0.8, 0.4, 0.0, -0.4};
  std::array<double, 4> out{};
  for (const double t : {0.0, 0.25, 1.0}) {
    zq::linearShadedColor(table.data(), &t, out.data());
    for (std::size_t i = 0; i < 4; ++i)
      EXPECT_DOUBLE_EQ(out[i], table[i] + t * table[8 + i]);
  }
}

TEST(Shading, TheBilinearFunctionTurnsAtTheMiddle) {
  std::array<double, 12> table{0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1};
  std::array<double, 4> out{};
  const auto at = [&](double t) {
    zq::bilinearShadedColor(table.data(), &t, out.data());
    return out[3];
  };
  EXPECT_EQ(at(0), 0);
  EXPECT_EQ(at(0.25), 0.5);
  EXPECT_EQ(at(0.5), 1);
  EXPECT_DOUBLE_EQ(at(0.6), 0.8);
  EXPECT_EQ(at(1), 0);
}

TEST(Shading, AlphaIsMixedLikeTheColours) {
  Canvas canvas({8, 10}, 1, false, Canvas::Ground::Clear);
  zq::linearGradientFillWithStartColor(rectPath({0, 0, 8, 10}), Color::deviceRGB(1, 0, 0, 0),
                                       Color::deviceRGB(1, 0, 0, 1));
  canvas.finished();
  for (int row = 0; row < 10; ++row) {
    EXPECT_NEAR(canvas.pixel(4, row).alpha(), 255 * (row + 0.5) / 10, 1) << row;
    EXPECT_NEAR(canvas.pixel(4, row).red(), 255, 12) << row;
  }
}

TEST(Shading, ATransparentColourLetsTheGroundThrough) {
  Canvas canvas({8, 10});
  zq::linearGradientFillWithStartColor(rectPath({0, 0, 8, 10}), Color::deviceRGB(0, 0, 0, 0.5),
                                       Color::deviceRGB(0, 0, 0, 0.5));
  canvas.finished();
  EXPECT_NEAR(canvas.pixel(4, 5).red(), 128, 1);
}

TEST(Shading, IsClippedToThePath) {
  Canvas plain({40, 20}, 2);
  Canvas shaded({40, 20}, 2);
  const Ref<BezierPath> path = zq::bezierPathWithPlateInRect({3.3, 2.7, 30, 12});
  zq::linearGradientFillWithStartColor(path, red, red);
  shaded.finished();
  plain.context->setFillColor(red);
  plain.context->fillPath(path->painterPath());
  EXPECT_LE(maximumDifference(shaded.image, plain.finished()), 1);
}

TEST(Shading, KeepsToTheClipInForce) {
  Canvas canvas({20, 20});
  canvas.context->clipToRect(QRectF(5, 8, 6, 4));
  zq::linearGradientFillWithStartColor(rectPath({0, 0, 20, 20}), red, blue);
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(5, 8, 6, 4));
  // The bounds of the path, not those of the clip, decide the colour.
  expectColor(canvas.pixel(6, 8), 1 - 8.5 / 20, 0, 8.5 / 20, 1, "clipped");
}

TEST(Shading, LeavesClipAndStateAsTheyWere) {
  Canvas canvas({20, 20});
  canvas.context->setFillColor(blue);
  const QRectF clip = canvas.context->clipBounds();
  const QTransform transform = canvas.context->deviceTransform();
  zq::bilinearGradientFillWithOuterColor(rectPath({5, 5, 4, 4}), red, red);
  EXPECT_EQ(canvas.context->clipBounds(), clip);
  EXPECT_EQ(canvas.context->deviceTransform(), transform);
  EXPECT_FALSE(canvas.painter->hasClipping());
  canvas.context->fillRect(QRectF(0, 0, 2, 20));
  canvas.finished();
  EXPECT_EQ(canvas.pixel(1, 19), QColor(Qt::blue));
}

TEST(Shading, FollowsTheUserSpace) {
  // A mirrored vertical: the start lies above now.
  Canvas mirrored({10, 20});
  mirrored.context->concat(QTransform(1, 0, 0, -2, 0, 20));
  zq::linearGradientFillWithStartColor(rectPath({0, 0, 10, 10}), red, blue);
  mirrored.finished();
  for (int row = 0; row < 20; ++row)
    expectColor(mirrored.pixel(5, 19 - row), 1 - (row + 0.5) / 20, 0, (row + 0.5) / 20, 1,
                "mirrored");
  // A quarter turn: the vertical of user space runs to the left.
  Canvas turned({20, 10});
  turned.context->concat(QTransform(0, 1, -1, 0, 20, 0));
  zq::linearGradientFillWithStartColor(rectPath({0, 0, 10, 20}), red, blue);
  turned.finished();
  for (int column = 0; column < 20; ++column)
    expectColor(turned.pixel(19 - column, 5), 1 - (column + 0.5) / 20, 0, (column + 0.5) / 20, 2,
                "turned");
}

TEST(Shading, EdgesBetweenPixelsKeepTheColoursOfTheEnds) {
  Canvas canvas({10, 10}, 1, false, Canvas::Ground::Clear);
  zq::linearGradientFillWithStartColor(rectPath({0, 2.7, 10, 4.6}), red, blue);
  canvas.finished();
  // The rows 2 and 7 are covered by three tenths.
  EXPECT_NEAR(canvas.pixel(5, 2).alpha(), 255 * 0.3, 4);
  EXPECT_GT(canvas.pixel(5, 2).red(), 250);
  EXPECT_NEAR(canvas.pixel(5, 7).alpha(), 255 * 0.3, 4);
  EXPECT_GT(canvas.pixel(5, 7).blue(), 250);
  expectColor(canvas.pixel(5, 4), 1 - 1.8 / 4.6, 0, 1.8 / 4.6, 1, "row 4");
}

TEST(Shading, EmptyBoundsDrawNothing) {
  for (const QRectF& rect : {QRectF(2, 2, 0, 5), QRectF(2, 2, 5, 0), QRectF(2, 2, 0, 0)}) {
    Canvas canvas({10, 10});
    zq::linearGradientFillWithStartColor(rectPath(rect), red, blue);
    zq::bilinearGradientFillWithOuterColor(BezierPath::make(), red, blue);
    EXPECT_TRUE(inkBounds(canvas.finished()).isNull());
  }
}

TEST(Shading, WithoutPathContextOrFunctionNothingHappens) {
  calls = {};
  const FunctionCallbacks callbacks{0, recordedRed, nullptr};
  zq::customVerticalFillWithCallbacks(rectPath({0, 0, 5, 5}), callbacks, red, blue);
  EXPECT_TRUE(calls.places.empty());
  Canvas canvas({10, 10});
  zq::customVerticalFillWithCallbacks(nullptr, callbacks, red, blue);
  zq::customVerticalFillWithCallbacks(rectPath({0, 0, 5, 5}), {}, red, blue);
  EXPECT_TRUE(inkBounds(canvas.finished()).isNull());
  EXPECT_TRUE(calls.places.empty());
}

TEST(Shading, ColoursWithoutDeviceRGBCountAsTransparentBlack) {
  QImage tile(2, 2, QImage::Format_RGB32);
  tile.fill(Qt::white);
  const Ref<Color> pattern = Color::pattern(Image::fromQImage(tile));
  for (const Ref<Color>& color : {Ref<Color>(), pattern, Color::catalog(u"A"_s, u"b"_s, pattern)}) {
    calls = {};
    Canvas canvas({10, 10}, 1, false, Canvas::Ground::Clear);
    zq::customVerticalFillWithCallbacks(rectPath({0, 0, 5, 5}), {0, recordedRed, nullptr}, color,
                                        white);
    EXPECT_EQ(calls.table, (std::array<double, 12>{0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1}));
    canvas.context->clipToRect(QRectF(0, 0, 10, 10));
    zq::linearGradientFillWithStartColor(rectPath({5, 0, 5, 10}), color, color);
    canvas.finished();
    EXPECT_EQ(canvas.pixel(7, 5).alpha(), 0);
  }
}

TEST(Shading, TheTableHoldsBothColoursAndTheirDifferences) {
  calls = {};
  const Canvas canvas({10, 10});
  zq::customVerticalFillWithCallbacks(rectPath({0, 0, 5, 5}), {0, recordedRed, nullptr},
                                      Color::deviceRGB(0.25, 0.5, 1, 0.75),
                                      Color::calibratedWhite(0.5, 0.5));
  EXPECT_EQ(calls.table,
            (std::array<double, 12>{0.25, 0.5, 1, 0.75, 0.5, 0.5, 0.5, 0.5, 0.25, 0, -0.5, -0.25}));
}

TEST(Shading, AFunctionIsEvaluatedAtTheMiddleOfEachDeviceRow) {
  calls = {};
  Canvas canvas({10, 20}, 2);
  zq::customVerticalFillWithCallbacks(rectPath({0, 5, 5, 4}), {0, recordedRed, nullptr}, red, blue);
  // From above; the row beyond each end has the colour of that end.
  const std::vector<double> expected{1,        15 / 16.0, 13 / 16.0, 11 / 16.0, 9 / 16.0,
                                     7 / 16.0, 5 / 16.0,  3 / 16.0,  1 / 16.0,  0};
  ASSERT_EQ(calls.places.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_DOUBLE_EQ(calls.places[i], expected[i]) << i;
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(0, 10, 10, 8));
  EXPECT_EQ(canvas.pixel(4, 12), QColor(Qt::red));
}

TEST(Shading, WhatAFunctionSetsIsLimited) {
  const auto wild = [](void*, const double* in, double* out) {
    out[0] = 7;
    out[1] = -3;
    out[2] = qQNaN();
    out[3] = *in < 0.5 ? 2 : qQNaN();
  };
  Canvas canvas({10, 10});
  zq::customVerticalFillWithCallbacks(rectPath({0, 0, 10, 10}), {0, wild, nullptr}, red, blue);
  canvas.finished();
  EXPECT_EQ(canvas.pixel(5, 2), QColor(Qt::red));
  EXPECT_EQ(canvas.pixel(5, 8), QColor(Qt::white));
}

TEST(Shading, InfoIsReleasedOnceAfterTheFill) {
  calls = {};
  const Canvas canvas({10, 10});
  zq::customVerticalFillWithCallbacks(rectPath({0, 0, 5, 5}), {0, recordedRed, countRelease}, gray,
                                      blue);
  EXPECT_EQ(calls.releases, 1);
}

TEST(Shading, ARecordingEvaluatesAtEachShowingAndReleasesWithItself) {
  calls = {};
  Ref<Image> image = Image::make({10, 10});
  {
    const ImageFocus focus(*image);
    zq::customVerticalFillWithCallbacks(rectPath({2, 0, 5, 5}), {0, recordedRed, countRelease},
                                        gray, blue);
  }
  EXPECT_TRUE(calls.places.empty());
  for (const int scale : {1, 2}) {
    calls.places.clear();
    EXPECT_EQ(inkBounds(image->rasterised(scale), Qt::transparent),
              QRect(2 * scale, 0, 5 * scale, 5 * scale));
    EXPECT_GE(calls.places.size(), std::size_t(5 * scale));
  }
  EXPECT_EQ(calls.releases, 0);
  image.reset();
  EXPECT_EQ(calls.releases, 1);
}

TEST(Shading, ACallersFunctionIsEvaluatedForEachDrawing) {
  const auto draw = [] {
    const Canvas canvas({10, 10});
    zq::customVerticalFillWithCallbacks(rectPath({0, 0, 5, 5}), {0, recordedRed, nullptr}, red,
                                        blue);
  };
  EXPECT_EQ(evaluations(draw), 7u);
  EXPECT_EQ(evaluations(draw), 7u);
}

TEST(Shading, RowsOfTheFixedFormsAreKept) {
  const auto grows = [](const std::function<void()>& draw) {
    const qsizetype before = ShadingCache::shared().bytes();
    draw();
    return ShadingCache::shared().bytes() != before;
  };
  const auto linear = [](const QRectF& rect, double scale, const Ref<Color>& end) {
    return [=] {
      const Canvas canvas({40, 40}, scale);
      zq::linearGradientFillWithStartColor(rectPath(rect), gray, end);
    };
  };
  EXPECT_TRUE(grows(linear({1, 1, 10, 13}, 1, blue)));
  EXPECT_FALSE(grows(linear({1, 1, 10, 13}, 1, blue)));
  // Neither the width nor whole pixels matter.
  EXPECT_FALSE(grows(linear({5, 7, 20, 13}, 1, blue)));
  EXPECT_FALSE(grows(linear({1, 1, 10, 13}, 1, Color::deviceRGB(0, 0, 1))));
  EXPECT_TRUE(grows(linear({1, 1, 10, 14}, 1, blue)));
  EXPECT_TRUE(grows(linear({1, 1.5, 10, 13}, 1, blue)));
  EXPECT_TRUE(grows(linear({1, 1, 10, 13}, 2, blue)));
  EXPECT_TRUE(grows(linear({1, 1, 10, 13}, 1, Color::deviceRGB(0, 0, 1, 0.5))));
  const auto bilinear = [] {
    const Canvas canvas({40, 40});
    zq::bilinearGradientFillWithOuterColor(rectPath({1, 1, 10, 13}), blue, gray);
  };
  // The same table as that of the first linear one.
  EXPECT_TRUE(grows(bilinear));
  EXPECT_FALSE(grows(bilinear));
}

TEST(Shading, KeptRowsAreBounded) {
  ShadingCache cache;
  // Three quarters of what fits.
  QImage strip(768, 512, QImage::Format_RGB32);
  strip.fill(Qt::red);
  cache.insert("a", strip);
  cache.insert("b", strip);
  EXPECT_TRUE(cache.find("a").isNull());
  EXPECT_FALSE(cache.find("b").isNull());
  EXPECT_LE(cache.bytes(), ShadingCache::MaximumBytes);
}

TEST(Shading, OfTwoRowsForOneKeyTheFirstAreKept) {
  ShadingCache cache;
  const QImage first(4, 4, QImage::Format_RGB32);
  cache.insert("a", first);
  cache.insert("a", QImage(8, 8, QImage::Format_RGB32));
  EXPECT_EQ(cache.find("a").cacheKey(), first.cacheKey());
}

TEST(Shading, AVeryHighPathIsEvaluatedOnlyWhereItIsSeen) {
  const auto draw = [] {
    Canvas canvas({10, 40});
    zq::customVerticalFillWithCallbacks(rectPath({0, -1e9, 10, 2e9}), {0, recordedRed, nullptr},
                                        red, blue);
    EXPECT_EQ(inkBounds(canvas.finished()), QRect(0, 0, 10, 40));
  };
  EXPECT_LE(evaluations(draw), 44u);
  EXPECT_NEAR(calls.places.front(), 0.5, 1e-6);
}

TEST(Shading, CastsNoShadow) {
  Canvas canvas({20, 20});
  Shadow({0, 8}, 0, blue).set();
  zq::linearGradientFillWithStartColor(rectPath({4, 4, 4, 4}), red, red);
  EXPECT_EQ(inkBounds(canvas.finished()), QRect(4, 4, 4, 4));
}
