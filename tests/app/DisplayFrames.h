// Displays of tests: signs of one colour, and what a strip shows at a time.
#pragma once

#include "app/display/TickerDisplay.h"
#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/signs/ZQImageTickerSign.h"

#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <algorithm>
#include <utility>

namespace zq::app::testing {
// Points a second.
constexpr double Speed = 60;

inline platform::Ref<platform::Image> solid(int width, int height, QColor color) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(color);
  return platform::Image::fromQImage(image);
}

inline platform::Ref<ZQImageTickerSign> picture(int width, int height, QColor color) {
  const auto sign = ZQImageTickerSign::make(solid(width, height, color));
  sign->setLoopCount(1);
  return sign;
}

inline void setUp(TickerDisplay& display, QSizeF size, ScrollDirection direction,
                  double scale = 1) {
  display.setScale(scale);
  display.setDirection(direction, 0);
  display.setSize(size, 0);
  display.setDefaultFont(platform::Font::fontWithName(QStringLiteral("DejaVu Sans"), 12));
  display.setDefaultTextColor(platform::Color::deviceRGB(0, 0, 0));
  display.setSpeed(Speed, 0);
}

inline QImage shown(TickerDisplay& display, double time) {
  display.advanceTo(time);
  QImage image(display.frame().size, QImage::Format_RGB32);
  QPainter painter(&image);
  paintFrame(painter, display.frame(), Qt::white);
  return image;
}

// Left, or Up.
inline void setUp(TickerDisplay& display, QSizeF size, bool horizontal = true, double scale = 1) {
  setUp(display, size, horizontal ? ScrollDirection::Left : ScrollDirection::Up, scale);
}

// The columns (or rows) of `image` that are not white, as first and one past the last.
inline std::pair<int, int> inkAlong(const QImage& image, bool horizontal) {
  const int extent = horizontal ? image.width() : image.height();
  const int breadth = horizontal ? image.height() : image.width();
  std::pair<int, int> ink(extent, 0);
  for (int i = 0; i < extent; ++i)
    for (int j = 0; j < breadth; ++j)
      if (image.pixel(horizontal ? i : j, horizontal ? j : i) != qRgb(255, 255, 255)) {
        ink.first = std::min(ink.first, i);
        ink.second = std::max(ink.second, i + 1);
      }
  return ink;
}
} // namespace zq::app::testing
