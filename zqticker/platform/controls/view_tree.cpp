#include "zqticker/platform/controls/view_tree.h"

#include "zqticker/platform/controls/Button.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/TextField.h"
#include "zqticker/platform/controls/TextFieldCell.h"
#include "zqticker/platform/controls/point_in_rect_p.h"

#include <QtCore/QVariant>
#include <QtWidgets/QWidget>

namespace zq::platform {

static constexpr char TagProperty[] = "tag";

// The cell that has the tag of a control; null for other views.
static Ref<ActionCell> cellOf(const QWidget& view) {
  if (const auto* button = qobject_cast<const Button*>(&view))
    return button->cell();
  if (const auto* field = qobject_cast<const TextField*>(&view))
    return field->cell();
  return nullptr;
}

std::int64_t tagOf(const QWidget& view) {
  if (const Ref<ActionCell> cell = cellOf(view))
    return cell->tag();
  bool isInteger = false;
  const std::int64_t tag = view.property(TagProperty).toLongLong(&isInteger);
  return isInteger ? tag : -1;
}

void setTag(QWidget& view, std::int64_t tag) {
  if (const Ref<ActionCell> cell = cellOf(view))
    cell->setTag(tag);
  else
    view.setProperty(TagProperty, QVariant::fromValue(qint64(tag)));
}

QWidget* superviewOf(const QWidget& view) {
  return view.isWindow() ? nullptr : view.parentWidget();
}

QList<QWidget*> subviewsOf(const QWidget& view) {
  QList<QWidget*> subviews;
  for (QObject* child : view.children())
    if (auto* widget = qobject_cast<QWidget*>(child); widget && !widget->isWindow())
      subviews.append(widget);
  return subviews;
}

bool isFlipped(const QWidget& view) {
  const auto* control = dynamic_cast<const ControlView*>(&view);
  return control && control->isFlipped();
}

// Between a view's own coordinates and the toolkit's, y downwards from the upper edge; its own
// inverse.
static QPointF turned(const QWidget& view, QPointF point) {
  return isFlipped(view) ? point : QPointF(point.x(), view.height() - point.y());
}

QPointF convertPointToWindow(const QWidget& view, QPointF point) {
  const QWidget* window = view.window();
  const QPointF below = view.mapTo(window, turned(view, point));
  return {below.x(), window->height() - below.y()};
}

QPointF convertPointFromWindow(const QWidget& view, QPointF point) {
  const QWidget* window = view.window();
  return turned(view, view.mapFrom(window, QPointF(point.x(), window->height() - point.y())));
}

// The same as hitTest for a point in the toolkit's coordinates of `view`.
static QWidget* viewAt(QWidget& view, QPointF point) {
  if (!isPointInRect(point, view.rect()))
    return nullptr;
  const QList<QWidget*> subviews = subviewsOf(view);
  for (auto subview = subviews.rbegin(); subview != subviews.rend(); ++subview) {
    QWidget& inside = **subview;
    if (inside.isHidden() || inside.testAttribute(Qt::WA_TransparentForMouseEvents))
      continue;
    if (QWidget* found = viewAt(inside, point - QPointF(inside.pos())))
      return found;
  }
  return &view;
}

QWidget* hitTest(QWidget& view, QPointF point) {
  const QWidget* superview = superviewOf(view);
  if (!superview)
    return viewAt(view, turned(view, point));
  if (view.isHidden() || view.testAttribute(Qt::WA_TransparentForMouseEvents))
    return nullptr;
  return viewAt(view, turned(*superview, point) - QPointF(view.pos()));
}

} // namespace zq::platform
