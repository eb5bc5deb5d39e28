// Parts of buttons that are kept as pixels.
#include "zqticker/rollover/RollOverPictures_p.h"

#include "tests/rollover/RollOverButtonCellDrawing.h"
#include "tests/rollover/RollOverButtonProbe.h"
#include "zqticker/platform/graphics/BezierPath.h"
#include "zqticker/platform/graphics/ShadowCache_p.h"
#include "zqticker/platform/graphics/shading_drawing_p.h"
#include "zqticker/rollover/shading.h"

using namespace zq;
using namespace zq::testing;

namespace {

class RollOverPicturesDrawing : public RollOverButtonCellDrawing {
 protected:
  RollOverPicturesDrawing() {
    const auto soft = [](double y, double blur) {
      return std::make_shared<Shadow>(QSizeF(1, y), blur, Color::deviceRGB(0, 0, 0.2, 0.6));
    };
    appearance->setBordered(true);
    appearance->setShadingMode(ZQShadingModeLinear);
    appearance->setShadingColor(Color::deviceRGB(0.2, 0.4, 0.6));
    appearance->setMouseoverShadingColor(Color::deviceRGB(0.2, 0.4, 0.6, 0.5));
    appearance->setHighlightedShadingColor(Color::deviceRGB(0.9, 0.4, 0.6));
    appearance->setControlShadow(soft(-1, 2));
    appearance->setHighlightedControlShadow(soft(2, 3));
    appearance->setTextShadow(soft(-1, 1));
    cell.setTitle(u"Play"_s);
    cell.setShowsStateBy(12);
    cell.setHighlightsBy(12);
  }

  void forEachLook(const std::function<void(int)>& perform) {
    for (int look = 0; look < 16; ++look) {
      cell.setEnabled(look & 1);
      cell.setMouseOver(look & 2);
      cell.setHighlighted(look & 4);
      cell.setState(look & 8 ? CellState::On : CellState::Off);
      perform(look);
    }
  }

  // Draws at a scale; `isPlain` where pictures may be used. A shadow that cannot be seen forbids
  // it.
  QImage drawn(double scale, bool isPlain, const QRectF& place = {0, 0, 100, 22}) {
    Canvas target({120, 30}, scale, GetParam());
    const Shadow unseen({0, 0}, 0, Color::deviceWhite(0, 0));
    target.context->setShadow(isPlain ? nullptr : &unseen);
    cell.drawWithFrame(place, &view);
    return target.finished();
  }
  std::uint64_t made() const { return RollOverPictures::shared().made(); }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Views, RollOverPicturesDrawing, ::testing::Bool(),
                         [](const auto& view) { return view.param ? "Flipped" : "Unflipped"; });

TEST_P(RollOverPicturesDrawing, LooksLikeThePartsThemselves) {
  for (const double scale : {1.0, 1.5, 2.0})
    for (const QRectF& place :
         {QRectF(0, 0, 100, 22), QRectF(7, 3, 90, 20), QRectF(4.5, 2.25, 90, 20)})
      forEachLook([&](int look) {
        const std::uint64_t before = made();
        const QImage direct = drawn(scale, false, place);
        EXPECT_EQ(made(), before);
        // The first time, and from what was kept. Pixels over pixels are rounded once more.
        EXPECT_LE(maximumDifference(drawn(scale, true, place), direct), 2)
            << look << " at " << scale;
        EXPECT_LE(maximumDifference(drawn(scale, true, place), direct), 2)
            << look << " at " << scale;
      });
}

TEST_P(RollOverPicturesDrawing, EdgesLieBetweenPixelsAtEveryScale) {
  appearance->setShadingMode(ZQShadingModeFlat);
  appearance->setControlShadow(nullptr);
  cell.setEnabled(true);
  cell.setTitle(u""_s);
  for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0, 2.5})
    for (const QRectF& place : {QRectF(0, 0, 100, 22), QRectF(4, 3, 97, 19)})
      for (const bool isPlain : {true, false}) {
        const QImage image = drawn(scale, isPlain, place);
        const int line = int(scale + 0.5);
        // Outlines are computed in single precision, which leaves a trace in the next pixel.
        const auto expectEdges = [&](int count, const std::function<QColor(int)>& at) {
          int pixel = 0;
          const auto skip = [&](const QColor& color) {
            const int start = pixel;
            while (pixel < count && isNear(at(pixel), color, 6))
              ++pixel;
            return pixel - start;
          };
          EXPECT_GE(skip(white), 1) << scale;
          EXPECT_EQ(skip(frame), line) << scale;
          EXPECT_GT(skip(body), 12 * scale) << scale;
          EXPECT_EQ(skip(frame), line) << scale;
          EXPECT_GE(skip(white), 1) << scale;
          EXPECT_EQ(pixel, count) << scale;
        };
        const QPoint middle = (scale * QPointF(40, GetParam() ? 12 : 18)).toPoint();
        expectEdges(image.width(), [&](int x) { return image.pixelColor(x, middle.y()); });
        expectEdges(image.height(), [&](int y) { return image.pixelColor(middle.x(), y); });
      }
}

TEST_P(RollOverPicturesDrawing, ARedrawMakesNothingAnew) {
  for (const std::uint64_t mode : {ZQShadingModeFlat, ZQShadingModeLinear, ZQShadingModeBilinear}) {
    appearance->setShadingMode(mode);
    forEachLook([&](int) { drawn(1, true); });
    const std::uint64_t before = made();
    const quint64 shadows = ShadowCache::shared().insertions();
    const qsizetype rows = ShadingCache::shared().bytes();
    forEachLook([&](int) { drawn(1, true); });
    EXPECT_EQ(made(), before);
    EXPECT_EQ(ShadowCache::shared().insertions(), shadows);
    EXPECT_EQ(ShadingCache::shared().bytes(), rows);
  }
}

TEST_P(RollOverPicturesDrawing, CellsOfOneLookShareTheirPicturesAndTitles) {
  forEachLook([&](int) { drawn(1, true); });
  ZQRollOverButtonCell other(u"Play"_s);
  other.setAppearance(appearance);
  other.setControlView(&view);
  // Another object, the same font.
  other.setFont(Font::fontWithName(u"DejaVu Sans"_s, 12));
  const std::uint64_t before = made();
  const quint64 shadows = ShadowCache::shared().insertions();
  for (const bool isEnabled : {true, false}) {
    other.setEnabled(isEnabled);
    Canvas target({120, 30}, 1, GetParam());
    other.drawWithFrame({0, 0, 100, 22}, &view);
  }
  EXPECT_EQ(made(), before);
  EXPECT_EQ(ShadowCache::shared().insertions(), shadows);
}

TEST_P(RollOverPicturesDrawing, WhateverChangesIsSeen) {
  cell.setEnabled(true);
  QImage last = drawn(1, true);
  const auto expectChange = [&](const char* what) {
    const QImage now = drawn(1, true);
    EXPECT_GT(maximumDifference(now, last), 8) << what;
    EXPECT_LE(maximumDifference(now, drawn(1, false)), 2) << what;
    last = now;
  };
  appearance->setControlColor(Color::deviceRGB(1, 1, 0));
  expectChange("control colour");
  appearance->setShadingColor(Color::deviceRGB(0, 1, 1));
  expectChange("shading colour");
  appearance->setShadingMode(ZQShadingModeBilinear);
  expectChange("shading mode");
  appearance->setFrameColor(Color::deviceRGB(1, 0, 1));
  expectChange("frame colour");
  appearance->controlShadow()->setShadowBlurRadius(6);
  expectChange("blur of a shadow");
  appearance->controlShadow()->setShadowColor(Color::deviceRGB(1, 0, 0));
  expectChange("colour of a shadow");
  cell.setZqBezelStyle(1);
  expectChange("bezel");
  cell.backgroundPath()->transformUsingAffineTransform(QTransform::fromScale(0.5, 1));
  expectChange("outline");
}

TEST_P(RollOverPicturesDrawing, PatternsAndColoursOfTheContextAreNotKept) {
  const std::uint64_t before = made();
  appearance->setShadingColor(nullptr);
  appearance->setControlColor(nullptr);
  appearance->setFrameColor(nullptr);
  cell.setEnabled(true);
  Canvas target({100, 22}, 1, GetParam());
  Color::deviceRGB(1, 0, 1)->set();
  cell.drawWithFrame(view.bounds(), &view);
  EXPECT_EQ(made(), before);
  EXPECT_EQ(target.finished().pixelColor(10, 11), QColor(255, 0, 255));
}

TEST_P(RollOverPicturesDrawing, WhatIsTurnedOrHalfTransparentIsNotKept) {
  cell.setEnabled(true);
  const std::uint64_t before = made();
  {
    Canvas target({100, 100}, 1, GetParam());
    target.context->concat(QTransform().rotate(30));
    cell.drawWithFrame(view.bounds(), &view);
  }
  {
    Canvas target({100, 22}, 1, GetParam());
    target.context->setFraction(0.5);
    cell.drawWithFrame(view.bounds(), &view);
  }
  EXPECT_EQ(made(), before);
}

TEST(RollOverPictures, TheRedrawOfAButtonMakesNothingAnew) {
  const RollOverButtonWindow shown;
  ZQRollOverButton& button = *shown.button;
  button.setControlColor(Color::deviceRGB(1, 0, 0));
  button.setFrameColor(Color::deviceRGB(0, 0, 1));
  button.setBordered(true);
  const auto redraw = [&] {
    QImage image(button.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    button.render(&image);
    return image;
  };
  const QImage first = redraw();
  EXPECT_EQ(first.pixelColor(10, 6), QColor(255, 0, 0));
  const std::uint64_t before = RollOverPictures::shared().made();
  EXPECT_GE(before, 2U);
  EXPECT_EQ(redraw(), first);
  EXPECT_EQ(RollOverPictures::shared().made(), before);
}
