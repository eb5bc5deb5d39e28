#include "app/access/FocusRing.h"

#include <QtCore/QEvent>
#include <QtGui/QPainter>

namespace zq::app {

FocusRing::FocusRing(QWidget* parent) : QWidget(parent) {
  hide();
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setFocusPolicy(Qt::NoFocus);
  parent->installEventFilter(this);
}

FocusRing::~FocusRing() = default;

bool FocusRing::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::Resize && isVisible())
    setGeometry(parentWidget()->rect());
  return false;
}

void FocusRing::showEvent(QShowEvent*) {
  setGeometry(parentWidget()->rect());
  lower();
}

void FocusRing::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(Qt::black);
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
  painter.setPen(Qt::white);
  painter.drawRect(rect().adjusted(1, 1, -2, -2));
}

} // namespace zq::app
