// Rectangles as text, for people and for settings.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QRectF>
#include <QtCore/QString>

#include <optional>

// "x y width height", each as by "%f" with six decimals, in the same form in every locale.
ZQTICKER_EXPORT QString ZQStringFromRect(const QRectF& rect);

// The rectangle whose x, y, width and height are the first four pieces of `string` between single
// spaces; further pieces are ignored. A piece counts as its longest numeric prefix, read in single
// precision, or as 0 where it has none. Nothing gives the zero rectangle; fewer than four pieces
// raise RangeException.
ZQTICKER_EXPORT QRectF ZQRectFromString(const std::optional<QString>& string);
