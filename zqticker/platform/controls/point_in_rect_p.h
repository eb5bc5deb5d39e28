// Whether a point lies in a rectangle.
#pragma once

#include <QtCore/QPointF>
#include <QtCore/QRectF>

namespace zq::platform {

// The near edges, left and top, belong to a rectangle, the far ones do not: neighbours share no
// point.
inline bool isPointInRect(QPointF point, const QRectF& rect) {
  return point.x() >= rect.left() && point.x() < rect.right() && point.y() >= rect.top() &&
         point.y() < rect.bottom();
}

} // namespace zq::platform
