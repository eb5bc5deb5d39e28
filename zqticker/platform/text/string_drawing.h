// Measuring and drawing plain strings on one line.
#pragma once

#include "zqticker/platform/text/text_attributes.h"
#include "zqticker/zqticker_export.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QPointF>
#include <QtCore/QSizeF>
#include <QtCore/QString>

namespace zq::platform {

// The size in points of `string` on one line, as AttributedString::size gives it. The last few
// dozen strings are remembered with their layout, so that repeated measuring and drawing costs
// next to nothing.
//
// Thread: main. Raises InternalInconsistencyException without a GUI application.
ZQTICKER_EXPORT QSizeF sizeWithAttributes(const QString& string, const Attributes& attributes);

// Does a part of what that takes, as AttributedString::measureUntil does; whether the size is
// known.
ZQTICKER_EXPORT bool measureUntil(const QString& string, const Attributes& attributes,
                                  const QDeadlineTimer& deadline);

// Draws `string` on one line into the current context, as AttributedString::drawAtPoint does.
ZQTICKER_EXPORT void drawAtPoint(const QString& string, QPointF point,
                                 const Attributes& attributes);

} // namespace zq::platform
