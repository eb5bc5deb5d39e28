// The toolkit's mouse events as cells see them.
#pragma once

#include "zqticker/platform/controls/Event.h"

class QMouseEvent;
class QWidget;

namespace zq::platform {

// `event`, of a left or right button or of none, as seen from the window of `widget`.
Event eventOf(const QMouseEvent& event, const QWidget& widget);

// The pointer at `globalPosition`, for events that no button makes.
Event eventAt(EventType type, QPointF globalPosition, const QWidget& widget);

// Between coordinates of the toolkit, y downwards, and window coordinates.
QPointF windowPointFromGlobal(QPointF globalPosition, const QWidget& widget);
QPointF globalPointFromWindow(QPointF windowPoint, const QWidget& widget);

} // namespace zq::platform
