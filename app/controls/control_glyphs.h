// The signs on the buttons of the control bar.
#pragma once

#include <QtCore/QPointF>
#include <QtGui/QPainterPath>

namespace zq::app {

enum class ControlGlyph { Back, Pause, Play, Forward, Menu };

// The outline of a glyph around `middle` in device pixels, y downwards, about `height` pixels high,
// 4 at least. Upright and level edges lie between pixels, so that it is sharp.
QPainterPath controlGlyph(ControlGlyph glyph, QPointF middle, double height);

} // namespace zq::app
