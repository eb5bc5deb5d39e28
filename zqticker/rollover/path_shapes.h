// Shapes as paths: additions to BezierPath, which take the path first.
//
// Rectangles are in user space, y upwards, and are narrowed to single precision, in which every
// coordinate is computed. Arcs run counter-clockwise. Each shape is one closed subpath of its own;
// functions that append do nothing to a null path.
//
// Thread: any, each path on one at a time.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QRectF>

#include <memory>

namespace zq::platform {
class BezierPath;
}

// Where the apex of a triangle lies. Every value but the first three means right.
enum ZQTriangleOrientation : int {
  // In the middle of the edge with the largest y.
  ZQTriangleOrientationUp = 0,
  // In the middle of the edge with the smallest y.
  ZQTriangleOrientationDown = 1,
  // In the middle of the edge with the smallest x.
  ZQTriangleOrientationLeft = 2,
  // In the middle of the edge with the largest x.
  ZQTriangleOrientationRight = 3,
};

namespace zq {

// ---- BezierPath (ZQAdditons) ----

// A path that holds one plate: a rectangle whose left and right ends are half circles, their
// diameter its height. Empty where the height is not positive. A plate narrower than it is high has
// ends that overlap.
// Operation: + bezierPathWithPlateInRect:
ZQTICKER_EXPORT std::shared_ptr<platform::BezierPath> bezierPathWithPlateInRect(const QRectF& rect);
// Operation: appendBezierPathWithPlateInRect:
ZQTICKER_EXPORT void
appendBezierPathWithPlateInRect(const std::shared_ptr<platform::BezierPath>& path,
                                const QRectF& rect);

// A path that holds one rectangle with corners that are quarter circles. Empty where the height is
// not positive. The radius is not limited to half the sides.
// Operation: + bezierPathWithRoundedRect:cornerRadius:
ZQTICKER_EXPORT std::shared_ptr<platform::BezierPath> bezierPathWithRoundedRect(const QRectF& rect,
                                                                                float cornerRadius);
// Operation: appendBezierPathWithRoundedRect:cornerRadius:
ZQTICKER_EXPORT void
appendBezierPathWithRoundedRect(const std::shared_ptr<platform::BezierPath>& path,
                                const QRectF& rect, float cornerRadius);

// A path that holds one triangle, whose base is an edge of `rect` and whose apex lies in the middle
// of the edge opposite; `orientation` is a ZQTriangleOrientation. An empty rectangle gives a
// triangle without area.
// Operation: + bezierPathWithTriangleInRect:orientation:
ZQTICKER_EXPORT std::shared_ptr<platform::BezierPath>
bezierPathWithTriangleInRect(const QRectF& rect, int orientation);
// Operation: appendBezierPathWithTriangleInRect:orientation:
ZQTICKER_EXPORT void
appendBezierPathWithTriangleInRect(const std::shared_ptr<platform::BezierPath>& path,
                                   const QRectF& rect, int orientation);

// ---- BezierPath (ZQRollOverButton) ----

// The outline of a rollover button: a rounded rectangle with a corner radius of 4.3.
// Operation: + bezierPathForButtonWithRoundedRect:
ZQTICKER_EXPORT std::shared_ptr<platform::BezierPath>
bezierPathForButtonWithRoundedRect(const QRectF& rect);

} // namespace zq
