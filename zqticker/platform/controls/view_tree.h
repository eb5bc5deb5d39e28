// Widgets as views among views.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QList>
#include <QtCore/QPointF>

#include <cstdint>

class QWidget;

namespace zq::platform {

// Points are in a view's own coordinates: its origin at the lower left, y upwards, unless it is a
// ControlView that says it is flipped. Window coordinates are y-up, the origin at the window's
// lower left.
//
// Thread: main.

// The number by which a program knows the view: of a control its cell's, of another view its
// property "tag"; -1 where that is missing or no integer.
ZQTICKER_EXPORT std::int64_t tagOf(const QWidget& view);
ZQTICKER_EXPORT void setTag(QWidget& view, std::int64_t tag);

// The view around this one; null for a window and for a view outside of any.
ZQTICKER_EXPORT QWidget* superviewOf(const QWidget& view);
// The views inside this one, from the one that lies behind to the one in front. Windows that
// belong to the view are not inside.
ZQTICKER_EXPORT QList<QWidget*> subviewsOf(const QWidget& view);

ZQTICKER_EXPORT bool isFlipped(const QWidget& view);
ZQTICKER_EXPORT QPointF convertPointToWindow(const QWidget& view, QPointF point);
ZQTICKER_EXPORT QPointF convertPointFromWindow(const QWidget& view, QPointF point);

// The view that is seen at `point`, in coordinates of the superview, or of the view itself where
// there is none: the view or the deepest one inside it, the one in front where they overlap. Null
// where the point is outside of the view. Hidden views are not seen, nor those that let the mouse
// through. The upper and the left edge belong to a view, the others do not.
ZQTICKER_EXPORT QWidget* hitTest(QWidget& view, QPointF point);

} // namespace zq::platform
