#include "zqticker/platform/controls/TableView.h"

#include "zqticker/platform/controls/callback_border_p.h"
#include "zqticker/platform/graphics/GraphicsContext.h"

#include <QtGui/QPaintEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QScrollArea>

namespace zq::platform {

TableView::TableView(QWidget* parent) : QTableView(parent) {}
TableView::~TableView() = default;

QWidget* TableView::clipView() const {
  const QWidget* parent = isWindow() ? nullptr : parentWidget();
  const auto* area = parent ? qobject_cast<QScrollArea*>(parent->parentWidget()) : nullptr;
  return area && area->viewport() == parent ? area->viewport() : viewport();
}

QRectF TableView::visibleRect() const {
  const QWidget* rows = viewport();
  const QWidget* clip = clipView();
  if (clip == rows)
    return rows->rect();
  const QRect outside(rows->mapFrom(clip, QPoint(0, 0)), clip->size());
  return rows->rect() & outside;
}

void TableView::setNeedsDisplay() {
  viewport()->update();
}

void TableView::drawRect(const QRectF&) {}

void TableView::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  QPainter painter(viewport());
  const GraphicsContext context(&painter, viewport()->size(), true);
  logRaised([&] { drawRect(event->rect()); });
}

} // namespace zq::platform
