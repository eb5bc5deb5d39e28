#include "zqticker/rollover/path_shapes.h"

#include "zqticker/platform/graphics/BezierPath.h"

using zq::platform::BezierPath;
using zq::platform::Ref;

namespace zq {

namespace {

constexpr float buttonCornerRadius = 4.3f;

// A rectangle in the precision of all shapes.
struct NarrowRect {
  explicit NarrowRect(const QRectF& rect)
      : x(float(rect.x())), y(float(rect.y())), w(float(rect.width())), h(float(rect.height())) {}

  float x;
  float y;
  float w;
  float h;
};

QPointF point(float x, float y) {
  return {double(x), double(y)};
}

} // namespace

Ref<BezierPath> bezierPathWithPlateInRect(const QRectF& rect) {
  const Ref<BezierPath> path = BezierPath::make();
  appendBezierPathWithPlateInRect(path, rect);
  return path;
}

void appendBezierPathWithPlateInRect(const Ref<BezierPath>& path, const QRectF& rect) {
  const auto [x, y, w, h] = NarrowRect(rect);
  if (!path || !(h > 0))
    return;
  const float r = h / 2;
  path->moveToPoint(point(x + r, y + h));
  path->appendBezierPathWithArcWithCenter(point(x + r, y + r), double(r), 90, 270);
  path->appendBezierPathWithArcWithCenter(point(x + w - r, y + r), double(r), 270, 90);
  path->closePath();
}

Ref<BezierPath> bezierPathWithRoundedRect(const QRectF& rect, float cornerRadius) {
  const Ref<BezierPath> path = BezierPath::make();
  appendBezierPathWithRoundedRect(path, rect, cornerRadius);
  return path;
}

void appendBezierPathWithRoundedRect(const Ref<BezierPath>& path, const QRectF& rect,
                                     float cornerRadius) {
  const auto [x, y, w, h] = NarrowRect(rect);
  const float r = cornerRadius;
  if (!path || !(h > 0))
    return;
  path->moveToPoint(point(x, y + r));
  path->appendBezierPathWithArcWithCenter(point(x + r, y + r), double(r), 180, 270);
  path->appendBezierPathWithArcWithCenter(point(x + w - r, y + r), double(r), 270, 360);
  path->appendBezierPathWithArcWithCenter(point(x + w - r, y + h - r), double(r), 360, 90);
  path->appendBezierPathWithArcWithCenter(point(x + r, y + h - r), double(r), 90, 180);
  path->closePath();
}

Ref<BezierPath> bezierPathWithTriangleInRect(const QRectF& rect, int orientation) {
  const Ref<BezierPath> path = BezierPath::make();
  appendBezierPathWithTriangleInRect(path, rect, orientation);
  return path;
}

void appendBezierPathWithTriangleInRect(const Ref<BezierPath>& path, const QRectF& rect,
                                        int orientation) {
  if (!path)
    return;
  const auto [x, y, w, h] = NarrowRect(rect);
  const float right = x + w;
  const float top = y + h;
  const float midX = (x + right) / 2;
  const float midY = (y + top) / 2;
  const auto append = [&](QPointF p1, QPointF p2, QPointF p3) {
    path->moveToPoint(p1);
    path->lineToPoint(p2);
    path->lineToPoint(p3);
    path->closePath();
  };
  switch (orientation) {
  case ZQTriangleOrientationUp:
    return append(point(x, y), point(midX, top), point(right, y));
  case ZQTriangleOrientationDown:
    return append(point(x, top), point(midX, y), point(right, top));
  case ZQTriangleOrientationLeft:
    return append(point(right, top), point(right, y), point(x, midY));
  default:
    return append(point(x, y), point(x, top), point(right, midY));
  }
}

Ref<BezierPath> bezierPathForButtonWithRoundedRect(const QRectF& rect) {
  return bezierPathWithRoundedRect(rect, buttonCornerRadius);
}

} // namespace zq
