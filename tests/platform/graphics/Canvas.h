// A bitmap to draw into, and looks at its pixels in user space.
#pragma once

#include "zqticker/platform/graphics/GraphicsContext.h"

#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <cmath>
#include <memory>

namespace zq::testing {

// White at first, unless transparent is asked for. Its context is current while it lives.
class Canvas {
 public:
  enum class Ground { White, Clear };

  explicit Canvas(QSizeF points, double scale = 1, bool flipped = false,
                  Ground ground = Ground::White)
      : image(int(std::ceil(points.width() * scale)), int(std::ceil(points.height() * scale)),
              QImage::Format_ARGB32_Premultiplied) {
    image.fill(ground == Ground::White ? Qt::white : Qt::transparent);
    image.setDevicePixelRatio(scale);
    painter = std::make_unique<QPainter>(&image);
    context = std::make_unique<platform::GraphicsContext>(
        painter.get(), QSizeF(image.width() / scale, image.height() / scale), flipped);
  }

  // The picture so far.
  const QImage& finished() {
    context.reset();
    painter.reset();
    return image;
  }

  // The pixel in column `x` and row `y`, both counted from the lower left.
  QColor pixel(int x, int y) const { return image.pixelColor(x, image.height() - 1 - y); }

  QImage image;
  std::unique_ptr<QPainter> painter;
  std::unique_ptr<platform::GraphicsContext> context;
};

// The smallest rectangle, counted from the lower left, around all pixels that differ from
// `ground` by more than `tolerance` steps in a channel.
inline QRect inkBounds(const QImage& image, const QColor& ground = Qt::white, int tolerance = 0) {
  QRect bounds;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) {
      const QColor c = image.pixelColor(x, y);
      if (std::abs(c.red() - ground.red()) > tolerance ||
          std::abs(c.green() - ground.green()) > tolerance ||
          std::abs(c.blue() - ground.blue()) > tolerance ||
          std::abs(c.alpha() - ground.alpha()) > tolerance)
        bounds |= QRect(x, image.height() - 1 - y, 1, 1);
    }
  return bounds;
}

// The largest difference of any channel of any pixel; 255 for images of different sizes.
inline int maximumDifference(const QImage& a, const QImage& b) {
  if (a.size() != b.size())
    return 255;
  int difference = 0;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x) {
      const QColor p = a.pixelColor(x, y);
      const QColor q = b.pixelColor(x, y);
      difference =
          std::max({difference, std::abs(p.red() - q.red()), std::abs(p.green() - q.green()),
                    std::abs(p.blue() - q.blue()), std::abs(p.alpha() - q.alpha())});
    }
  return difference;
}

} // namespace zq::testing
