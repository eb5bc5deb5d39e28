// The canvas on which the look of a rollover button's cell is tested.
#pragma once

#include "tests/platform/graphics/Canvas.h"
#include "tests/rollover/RollOverView.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/graphics/Font.h"

#include <gtest/gtest.h>

#include <QtWidgets/QMenu>

#include <functional>
#include <memory>

namespace zq::testing {

using namespace Qt::StringLiterals;
using namespace zq::platform;

const QColor white(Qt::white);

// One colour for each part of each look.
const QColor body(255, 0, 0);
const QColor overBody(0, 255, 0);
const QColor pressedBody(0, 0, 255);
const QColor frame(10, 20, 30);
const QColor overFrame(40, 50, 60);
const QColor pressedFrame(70, 80, 90);
const QColor text(0, 100, 100);
const QColor overText(100, 0, 100);
const QColor pressedText(100, 100, 0);
const QColor arrow(0, 150, 200);
const QColor overArrow(200, 0, 150);
const QColor pressedArrow(150, 200, 0);

// Of `color` at half its alpha over white.
inline QColor faded(const QColor& color) {
  const auto half = [](int channel) { return (channel + 255) / 2; };
  return {half(color.red()), half(color.green()), half(color.blue())};
}

inline Ref<Shadow> sharpShadow(double x, double y, const QColor& color = Qt::black) {
  return std::make_shared<Shadow>(QSizeF(x, y), 0, Color::fromQColor(color));
}

inline bool isNear(const QColor& a, const QColor& b, int tolerance = 2) {
  return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
         std::abs(a.blue() - b.blue()) <= tolerance;
}

#define EXPECT_COLOR(actual, expected)                                                             \
  EXPECT_TRUE(isNear(actual, expected))                                                            \
      << (actual).name().toStdString() << " is not " << (expected).name().toStdString()

// Draws a cell of 100 × 22 points, in both coordinate systems.
class RollOverButtonCellDrawing : public ::testing::TestWithParam<bool> {
 protected:
  RollOverButtonCellDrawing()
      : view(GetParam()), appearance(std::make_shared<ZQRollOverButtonAppearance>()),
        cell(QString()) {
    const auto color = [](const QColor& c) { return Color::fromQColor(c); };
    appearance->setBezelStyle(6);
    appearance->setControlColor(color(body));
    appearance->setMouseoverControlColor(color(overBody));
    appearance->setHighlightedControlColor(color(pressedBody));
    appearance->setFrameColor(color(frame));
    appearance->setMouseoverFrameColor(color(overFrame));
    appearance->setHighlightedFrameColor(color(pressedFrame));
    appearance->setTextColor(color(text));
    appearance->setMouseoverTextColor(color(overText));
    appearance->setHighlightedTextColor(color(pressedText));
    appearance->setArrowColor(color(arrow));
    appearance->setMouseoverArrowColor(color(overArrow));
    appearance->setHighlightedArrowColor(color(pressedArrow));
    cell.setAppearance(appearance);
    cell.setControlView(&view);
    cell.setFont(Font::fontWithName(u"DejaVu Sans"_s, 12));
  }

  // Draws anew.
  void draw() {
    canvas = std::make_unique<Canvas>(QSizeF(100, 22), 1, GetParam());
    cell.drawWithFrame(view.bounds(), &view);
    canvas->finished();
  }
  // The pixel in column `x` and row `y`, counted from the upper left as it is seen.
  QColor seen(int x, int y) const { return canvas->image.pixelColor(x, y); }
  // One in the body, off title, arrow and frame.
  QColor bodyColor() const { return seen(10, 11); }
  // One on the left edge of the outline.
  QColor frameColor(int y = 11) const { return seen(1, y); }
  // One in the arrow; it lies from 85.95 to 93.75 and from 8.225 to 14.725 as it is seen.
  QColor arrowColor() const { return seen(89, 10); }
  // Whether any pixel has this colour.
  bool has(const QColor& color) const {
    for (int y = 0; y < 22; ++y)
      for (int x = 0; x < 100; ++x)
        if (isNear(seen(x, y), color))
          return true;
    return false;
  }
  // The first row, as it is seen, of the outline: 19.5 points up in an unflipped view, 1.5 down in
  // a flipped one.
  int top() const { return GetParam() ? 1 : 2; }
  int bottom() const { return top() + 18; }
  // A title that is one solid block.
  void setSolidTitle() { cell.setTitle(QString(4, QChar(0x2588))); }
  void clearBodies() {
    const Ref<Color> clear = Color::deviceWhite(1, 0);
    appearance->setControlColor(clear);
    appearance->setMouseoverControlColor(clear);
    appearance->setHighlightedControlColor(clear);
  }
  void setMenu() { cell.setMenu(Menu::make(&items)); }

  QMenu items;
  RollOverView view;
  Ref<ZQRollOverButtonAppearance> appearance;
  ZQRollOverButtonCell cell;
  std::unique_ptr<Canvas> canvas;
};

} // namespace zq::testing
