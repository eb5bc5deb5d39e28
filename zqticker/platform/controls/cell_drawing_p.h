// How the platform's own cells look.
#pragma once

#include "zqticker/platform/text/text_attributes.h"

#include <QtCore/QRectF>
#include <QtCore/QString>

namespace zq::platform {

class Cell;
class ControlView;

// The cell's font, where it has one.
Attributes attributesOfTitle(const Cell& cell);

// A thin line around `frame`.
void drawPlainBorder(const QRectF& frame, const Cell& cell, ControlView* view);
// The body of a button, by its states.
void drawButtonBody(const QRectF& frame, bool isPressedIn, const Cell& cell, ControlView* view);

// `title` on one line, aligned as the cell says and in the middle of the height of `rect`, outside
// of which nothing shows.
void drawTitle(const QString& title, const QRectF& rect, const Cell& cell, ControlView* view);

} // namespace zq::platform
