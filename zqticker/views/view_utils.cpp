#include "zqticker/views/view_utils.h"

#include "zqticker/platform/controls/view_tree.h"

#include <QtWidgets/QAbstractButton>

using namespace zq::platform;

namespace zq {

static bool isOfClass(const QWidget& view, const QMetaObject& ofClass) {
  return view.metaObject()->inherits(&ofClass);
}

QWidget* viewOfClass(QWidget& view, const QMetaObject& ofClass, std::int64_t withTag) {
  if (tagOf(view) == withTag && isOfClass(view, ofClass))
    return &view;
  for (QWidget* subview : subviewsOf(view))
    if (QWidget* found = viewOfClass(*subview, ofClass, withTag))
      return found;
  return nullptr;
}

QWidget* subviewWithTag(QWidget& view, std::int64_t tag) {
  return viewOfClass(view, QWidget::staticMetaObject, tag);
}

QAbstractButton* buttonWithTag(QWidget& view, std::int64_t tag) {
  return viewOfClass<QAbstractButton>(view, tag);
}

QWidget* hitView(QWidget& view, QPointF point) {
  return hitViewOfClass(view, QWidget::staticMetaObject, point);
}

// Deliberately in the order of the subviews: where two of them overlap, the one behind answers.
QWidget* hitViewOfClass(QWidget& view, const QMetaObject& ofClass, QPointF location) {
  const QPointF point = convertPointFromWindow(view, location);
  for (QWidget* subview : subviewsOf(view))
    if (QWidget* hit = hitTest(*subview, point); hit && isOfClass(*hit, ofClass))
      return hit;
  return nullptr;
}

} // namespace zq
