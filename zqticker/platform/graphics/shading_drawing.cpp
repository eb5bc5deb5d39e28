#include "zqticker/platform/graphics/shading_drawing_p.h"

#include "zqticker/platform/graphics/GraphicsContext.h"

#include <QtGui/QTransform>

#include <algorithm>
#include <cmath>

namespace zq::platform {

namespace {

// Rows are so many pixels wide, since filling runs from one copy of a texture to the next.
constexpr int stripWidth = 64;
// More rows are not kept.
constexpr int maximumKeptRows = 2048;

// The place of rows, one device pixel high: row i lies at `first` + i, and t is 0 at `start` and 1
// at `end`, which is smaller where t grows upwards.
struct Rows {
  double start;
  double end;
  int first;
  int count;

  double middle(int row) const {
    return std::clamp((first + row + 0.5 - start) / (end - start), 0.0, 1.0);
  }
};

QRgb pixelOf(const std::array<double, 4>& color) {
  const auto limited = [](double component) {
    return component > 0 ? std::min(component, 1.0) : 0;
  };
  const double alpha = limited(color[3]);
  const auto part = [&](double component) { return int(255 * limited(component) * alpha + 0.5); };
  return qRgba(part(color[0]), part(color[1]), part(color[2]), int(255 * alpha + 0.5));
}

QImage evaluated(const VerticalShading& shading, const Rows& rows) {
  QImage strip(stripWidth, rows.count, QImage::Format_ARGB32_Premultiplied);
  bool isOpaque = true;
  for (int i = 0; i < strip.height(); ++i) {
    const QRgb pixel = pixelOf(shading.colorAt(rows.middle(i)));
    isOpaque = isOpaque && qAlpha(pixel) == 255;
    auto* row = reinterpret_cast<QRgb*>(strip.scanLine(i));
    std::fill(row, row + stripWidth, pixel);
  }
  // Opaque pixels are copied rather than blended.
  if (isOpaque)
    strip.reinterpretAsFormat(QImage::Format_RGB32);
  return strip;
}

QImage stripOf(const VerticalShading& shading, const Rows& rows) {
  if (shading.identifier.isEmpty() || rows.count > maximumKeptRows)
    return evaluated(shading, rows);
  thread_local QByteArray key;
  key.resize(0);
  // To 1/256 of a pixel, from the first row: whole pixels do not matter.
  for (const double place : {rows.start, rows.end}) {
    const qint64 step = std::llround((place - rows.first) * 256);
    key.append(reinterpret_cast<const char*>(&step), sizeof step);
  }
  key.append(shading.identifier);
  QImage strip = ShadingCache::shared().find(key);
  if (strip.isNull()) {
    const QByteArray own(key.constData(), key.size());
    strip = evaluated(shading, rows);
    ShadingCache::shared().insert(own, strip);
  }
  return strip;
}

} // namespace

ShadingCache& ShadingCache::shared() {
  // Never freed: drawing may go on until the end of the process.
  static auto& cache = *new ShadingCache;
  return cache;
}

QImage ShadingCache::find(const QByteArray& key) {
  const QMutexLocker lock(&mutex_);
  const QImage* found = strips_.object(key);
  return found ? *found : QImage();
}

void ShadingCache::insert(const QByteArray& key, const QImage& strip) {
  const QMutexLocker lock(&mutex_);
  if (strips_.contains(key))
    return;
  strips_.insert(key, new QImage(strip), key.size() + strip.sizeInBytes());
}

qsizetype ShadingCache::bytes() const {
  const QMutexLocker lock(&mutex_);
  return strips_.totalCost();
}

QBrush brushOfShading(const VerticalShading& shading, const GraphicsContext& context,
                      const QRectF& bounds) {
  const QTransform toDevice = context.deviceTransform();
  const QRectF visible = context.clipBounds() & bounds;
  if (!(bounds.height() > 0 && visible.width() > 0 && visible.height() > 0))
    return {};
  const double scale = std::hypot(toDevice.m21(), toDevice.m22());
  const double length = bounds.height() * scale;
  if (!(length > 0 && std::isfinite(toDevice.dx() + toDevice.dy())))
    return {};

  // Rows of the device where it has them along the vertical of user space, else rows of a device
  // in that direction whose first one begins at the bounds.
  const bool isUpright = toDevice.type() <= QTransform::TxScale;
  Rows rows{};
  QTransform fromRows;
  if (isUpright) {
    rows.start = toDevice.map(QPointF(0, bounds.top())).y();
    rows.end = toDevice.map(QPointF(0, bounds.bottom())).y();
    fromRows = toDevice.inverted();
  } else {
    rows.start = 0;
    rows.end = length;
    fromRows =
        QTransform::fromScale(1 / scale, 1 / scale) * QTransform::fromTranslate(0, bounds.top());
  }
  const auto [low, high] = std::minmax(rows.start, rows.end);
  // Only what can show, with one row more on each side for what lies between rows.
  const QRectF shown = fromRows.inverted().mapRect(visible);
  rows.first = int(std::floor(std::max(low, shown.top()))) - 1;
  rows.count = int(std::ceil(std::min(high, shown.bottom()))) + 1 - rows.first;
  const bool isWhole = high - low <= maximumKeptRows;
  if (isWhole) {
    rows.first = int(std::floor(low)) - 1;
    rows.count = int(std::ceil(high)) + 1 - rows.first;
  }
  QBrush brush(stripOf(shading, rows));
  brush.setTransform(QTransform::fromTranslate(0, rows.first) * fromRows);
  return brush;
}

} // namespace zq::platform
