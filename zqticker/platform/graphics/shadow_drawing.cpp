#include "zqticker/platform/graphics/shadow_drawing_p.h"

#include "zqticker/platform/graphics/Color.h"
#include "zqticker/platform/graphics/GraphicsContext.h"
#include "zqticker/platform/graphics/Shadow.h"
#include "zqticker/platform/graphics/ShadowCache_p.h"
#include "zqticker/platform/graphics/gaussian_p.h"

#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include <algorithm>
#include <cmath>
#include <optional>

namespace zq::platform {

namespace {

// A wider blur is taken as one of this standard deviation, in device pixels.
constexpr double maximumSigma = 65536;
// A standard deviation of so many mask pixels is fine enough: beyond, a pixel of the mask stands
// for several of the device, so that neither size nor cost grows with the blur.
constexpr double enoughSigma = 6;
// The same where horizontal and vertical scale differ much.
constexpr double greatestSigma = 64;

// A shadow in device pixels.
struct DeviceShadow {
  // The whole pixels of the offset, y downwards, and what remains, 0 to 1.
  QPoint offset;
  QPointF shift;
  double sigmaX;
  double sigmaY;
  // Device pixels along the side of a mask pixel.
  int step;
  // Mask pixels by which the shadow is larger than its caster on each side.
  int reach;
  QColor color;

  // Where the shadow of what covers `rect` may show.
  QRect spread(const QRect& rect) const {
    const int margin = reach * step;
    return rect.adjusted(-margin, -margin, margin, margin).translated(offset);
  }
};

// The shadow of `context` on its device, for a caster of opacity `alpha`; nothing where it cannot
// show.
std::optional<DeviceShadow> deviceShadow(const GraphicsContext& context, double alpha) {
  const Shadow& shadow = *context.shadow();
  DeviceShadow result;
  result.color = shadow.shadowColor()->qColor();
  result.color.setAlphaF(float(shadow.shadowColor()->alphaComponent() * alpha));
  // Offset and blur know the device's scale only, whatever was done to the user space since.
  const QTransform& base = context.unflippedBaseTransform();
  const QPointF offset(
      base.m11() * shadow.shadowOffset().width() + base.m21() * shadow.shadowOffset().height(),
      base.m12() * shadow.shadowOffset().width() + base.m22() * shadow.shadowOffset().height());
  constexpr double farthest = 1 << 24;
  if (result.color.alpha() == 0 ||
      !(std::abs(offset.x()) < farthest && std::abs(offset.y()) < farthest))
    return std::nullopt;
  const double sigma = shadow.shadowBlurRadius() / 2;
  result.sigmaX = std::min(sigma * std::hypot(base.m11(), base.m21()), maximumSigma);
  result.sigmaY = std::min(sigma * std::hypot(base.m12(), base.m22()), maximumSigma);
  result.offset = QPoint(int(std::floor(offset.x())), int(std::floor(offset.y())));
  result.shift = offset - result.offset;
  const auto [lesser, greater] = std::minmax(result.sigmaX, result.sigmaY);
  result.step = std::max(1, int(std::max(lesser / enoughSigma, greater / greatestSigma)));
  // One more for the shift, one for the pixels between which a coarse mask is interpolated.
  result.reach = int(std::ceil(3 * greater / result.step)) + 2;
  return result;
}

// The coverage of `caster` on the device pixels `area`.
CoveragePlane coverageOf(const GraphicsContext& context, const ShadowCaster& caster,
                         const QRect& area, int step) {
  QImage image((area.width() + step - 1) / step, (area.height() + step - 1) / step,
               QImage::Format_ARGB32_Premultiplied);
  if (image.isNull())
    return {};
  image.fill(Qt::transparent);
  {
    QPainter painter(&image);
    GraphicsContext mask(&painter, image.size(), context.isFlipped());
    painter.setWorldTransform(context.deviceTransform() *
                              QTransform::fromTranslate(-area.x(), -area.y()) *
                              QTransform::fromScale(1.0 / step, 1.0 / step));
    caster.draw(mask);
  }
  CoveragePlane plane{image.width(), image.height(), {}};
  plane.values.reserve(std::size_t(image.width()) * std::size_t(image.height()));
  for (int y = 0; y < image.height(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    for (int x = 0; x < image.width(); ++x)
      plane.values.push_back(float(qAlpha(row[x])) / 255);
  }
  return plane;
}

// `plane` in `color`, cut to what shows; its upper left corner is the origin.
ShadowPixels colored(const CoveragePlane& plane, const QColor& color, int step) {
  QImage image(plane.width, plane.height, QImage::Format_ARGB32_Premultiplied);
  int left = image.width();
  int right = -1;
  int top = image.height();
  int bottom = -1;
  const float red = color.redF();
  const float green = color.greenF();
  const float blue = color.blueF();
  const float opacity = color.alphaF();
  for (int y = 0; y < image.height(); ++y) {
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    const auto* coverage = plane.row(y);
    for (int x = 0; x < image.width(); ++x) {
      const float alpha = 255 * std::min(coverage[x], 1.0f) * opacity;
      const auto part = [&](float component) { return int(component * alpha + 0.5f); };
      row[x] = qRgba(part(red), part(green), part(blue), part(1));
      if (row[x] != 0) {
        left = std::min(left, x);
        right = std::max(right, x);
        top = std::min(top, y);
        bottom = y;
      }
    }
  }
  if (right < 0)
    return {};
  // A coarse mask fades out over its last pixel.
  const int edge = step > 1 ? 1 : 0;
  const QRect shown =
      QRect(QPoint(left, top), QPoint(right, bottom)).adjusted(-edge, -edge, edge, edge) &
      image.rect();
  return {image.copy(shown), shown.topLeft() * step};
}

ShadowPixels shadowOn(const QRect& area, const GraphicsContext& context, const ShadowCaster& caster,
                      const DeviceShadow& shadow) {
  const CoveragePlane coverage = coverageOf(context, caster, area, shadow.step);
  if (coverage.values.empty())
    return {};
  return colored(
      smoothed(coverage,
               gaussianWeights(shadow.sigmaX / shadow.step, shadow.shift.x() / shadow.step),
               gaussianWeights(shadow.sigmaY / shadow.step, shadow.shift.y() / shadow.step)),
      shadow.color, shadow.step);
}

// Draws `pixels`, whose key has its origin at `origin` on the device.
void drawPixels(QPainter& painter, const ShadowPixels& pixels, QPoint origin, int step) {
  if (pixels.image.isNull())
    return;
  const QTransform before = painter.worldTransform();
  painter.setWorldTransform(QTransform());
  const QPoint corner = origin + pixels.corner;
  painter.setWorldTransform(QTransform::fromScale(step, step) *
                            QTransform::fromTranslate(corner.x(), corner.y()) *
                            painter.deviceTransform().inverted());
  painter.drawImage(QPoint(), pixels.image);
  painter.setWorldTransform(before);
}

// Whether a transparent source leaves everything as it is: the others would change all around.
bool castsShadows(CompositingOperation operation) {
  return operation == CompositingOperation::SourceOver ||
         operation == CompositingOperation::SourceAtop ||
         operation == CompositingOperation::PlusLighter;
}

qint64 maskPixels(const QRect& area, int step) {
  return qint64(area.width() / step + 1) * (area.height() / step + 1);
}

} // namespace

void ShadowKey::add(Kind kind) {
  bytes_.append(char(kind));
}

void ShadowKey::add(quint64 number) {
  bytes_.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void ShadowKey::add(double number) {
  bytes_.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void ShadowKey::add(QPointF point) {
  const QPointF onMask = toMask_.map(point);
  for (const double coordinate : {onMask.x(), onMask.y()}) {
    const qint64 place = std::llround(std::clamp(coordinate, -1e9, 1e9) * 256);
    bytes_.append(reinterpret_cast<const char*>(&place), sizeof place);
  }
}

void ShadowKey::add(const QPainterPath& path) {
  bytes_.append(char(path.fillRule()));
  for (int i = 0; i < path.elementCount(); ++i) {
    const QPainterPath::Element element = path.elementAt(i);
    bytes_.append(char(element.type));
    add(QPointF(element));
  }
}

void castShadow(GraphicsContext& context, const ShadowCaster& caster) {
  if (!castsShadows(context.compositingOperation()))
    return;
  const std::optional<DeviceShadow> shadow = deviceShadow(context, caster.alpha());
  if (!shadow)
    return;
  QPainter& painter = *context.painter();
  const QTransform toDevice = context.deviceTransform();
  constexpr double farthest = 1 << 24;
  const QRectF device(-farthest, -farthest, 2 * farthest, 2 * farthest);
  const QRectF bounds = toDevice.mapRect(caster.bounds());
  // What is no number lies nowhere.
  if (!(bounds.width() >= 0 && bounds.height() >= 0 && std::isfinite(bounds.x() + bounds.y())))
    return;
  const QRect covered = (bounds & device).toAlignedRect().adjusted(-1, -1, 1, 1);
  const QRect visible = (toDevice.mapRect(context.clipBounds()) & device).toAlignedRect();
  if (!shadow->spread(covered).intersects(visible))
    return;

  // The pixels of the mask lie as the caster does; only in drawing they are moved by the offset.
  const int margin = shadow->reach * shadow->step;
  QRect area = covered.adjusted(-margin, -margin, margin, margin);
  if (maskPixels(area, shadow->step) > ShadowCache::MaximumPixels) {
    // What lies farther from the visible part than the blur reaches does not count.
    area &= visible.translated(-shadow->offset).adjusted(-margin, -margin, margin, margin);
    return drawPixels(painter, shadowOn(area, context, caster, *shadow),
                      area.topLeft() + shadow->offset, shadow->step);
  }

  const QTransform toMask = toDevice * QTransform::fromTranslate(-area.x(), -area.y());
  thread_local QByteArray bytes;
  // Keeps its memory, unlike clear().
  bytes.resize(0);
  ShadowKey key(bytes, toMask);
  for (const double number : {toDevice.m11(), toDevice.m12(), toDevice.m21(), toDevice.m22(),
                              shadow->sigmaX, shadow->sigmaY, shadow->shift.x(), shadow->shift.y(),
                              double(area.width()), double(area.height())})
    key.add(number);
  key.add(quint64(shadow->color.rgba64()));
  key.add(quint64(context.isFlipped()));
  const bool isTold = caster.describe(key);
  std::optional<ShadowPixels> pixels = isTold ? ShadowCache::shared().find(bytes) : std::nullopt;
  if (!pixels) {
    // Drawing the caster may cast shadows of its own, which use the bytes.
    const QByteArray own(bytes.constData(), bytes.size());
    pixels = shadowOn(area, context, caster, *shadow);
    if (isTold)
      ShadowCache::shared().insert(own, *pixels);
  }
  drawPixels(painter, *pixels, area.topLeft() + shadow->offset, shadow->step);
}

} // namespace zq::platform
