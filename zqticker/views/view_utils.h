// Searches among a view and the views inside it: NSView(Utils).
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QPointF>
#include <QtWidgets/QWidget>

#include <cstdint>

class QAbstractButton;

namespace zq {

// A view's tag is that of its control's cell, else its property "tag", else -1. Points are in
// coordinates of the window, in points: the origin at its lower left, y upwards. Results are not
// owned, and null where nothing is found.
//
// Thread: main.

// The first view with the tag that is of the class or of one that derives from it: `view` itself,
// else in each of its subviews in their order, searched the same way.
// Operation: viewOfClass:withTag:
ZQTICKER_EXPORT QWidget* viewOfClass(QWidget& view, const QMetaObject& ofClass,
                                     std::int64_t withTag);
// The first view with the tag, whatever it is; `view` itself included.
// Operation: subviewWithTag:
ZQTICKER_EXPORT QWidget* subviewWithTag(QWidget& view, std::int64_t tag);
// The first button with the tag, one of the platform's or another of the toolkit's.
// Operation: buttonWithTag:
ZQTICKER_EXPORT QAbstractButton* buttonWithTag(QWidget& view, std::int64_t tag);

// What the first subview that lies under the point, in their order, shows there: the deepest view
// inside it, or it itself. Never `view`.
// Operation: hitView:
ZQTICKER_EXPORT QWidget* hitView(QWidget& view, QPointF point);
// The same for the first subview that shows a view of the class, or of one that derives from it,
// there; what lies behind the view that a subview shows is not looked at.
// Operation: hitViewOfClass:location:
ZQTICKER_EXPORT QWidget* hitViewOfClass(QWidget& view, const QMetaObject& ofClass,
                                        QPointF location);

// The searches for a class that has Q_OBJECT.
template <class View>
View* viewOfClass(QWidget& view, std::int64_t withTag) {
  return qobject_cast<View*>(viewOfClass(view, View::staticMetaObject, withTag));
}
template <class View>
View* hitViewOfClass(QWidget& view, QPointF location) {
  return qobject_cast<View*>(hitViewOfClass(view, View::staticMetaObject, location));
}

} // namespace zq
