// Numbers as text, whatever the locale: the shortest text that reads back to the same double.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QSizeF>
#include <QtCore/QString>

#include <optional>
#include <vector>

namespace zq::platform {

// Up to 17 significant digits; whole numbers without a point, an exponent only below 1e-5 and from
// 1e17 on; "inf", "-inf" and "nan" for what is no number.
ZQTICKER_EXPORT QString textOfNumber(double value);

// The number that the whole of `text` states, white space around it and a leading + allowed, or
// nothing. Reads exponents, "nan", "inf" and "infinity" in any case. A number too large reads as
// infinite, one too small as zero.
ZQTICKER_EXPORT std::optional<double> numberOfText(QStringView text);

// Up to `limit` numbers of `text` in their order; whatever is no part of a number is skipped.
ZQTICKER_EXPORT std::vector<double> numbersInText(QStringView text, std::size_t limit);

// "{x, y}", "{w, h}" and "{{x, y}, {w, h}}".
ZQTICKER_EXPORT QString textOfPoint(QPointF point);
ZQTICKER_EXPORT QString textOfSize(QSizeF size);
ZQTICKER_EXPORT QString textOfRect(const QRectF& rect);
// The reverse. Numbers that are missing are 0; spaces, commas and braces may be missing too.
ZQTICKER_EXPORT QPointF pointOfText(QStringView text);
ZQTICKER_EXPORT QSizeF sizeOfText(QStringView text);
ZQTICKER_EXPORT QRectF rectOfText(QStringView text);

} // namespace zq::platform
