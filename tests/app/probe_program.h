// For programs that stand for other programs in tests on a window system: they say on standard
// output what happens, one thing a line.
#pragma once

#include <QtCore/QEvent>
#include <QtCore/QString>
#include <QtWidgets/QWidget>

#include <cstdio>

namespace zq::app::testing {

inline void say(const QString& line) {
  std::puts(line.toUtf8().constData());
  std::fflush(stdout);
}

inline QString nameOf(Qt::DropAction action) {
  switch (action) {
  case Qt::CopyAction:
    return QStringLiteral("copy");
  case Qt::MoveAction:
    return QStringLiteral("move");
  case Qt::LinkAction:
    return QStringLiteral("link");
  default:
    return QStringLiteral("none");
  }
}

// Says "<name> shown x y", where its upper left corner is on the screen, once `window` is there.
class ShownWatch : public QObject {
 public:
  ShownWatch(QWidget& window, const QString& name) : QObject(&window), window_(window) {
    setObjectName(name);
    window.installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint && !isShown_) {
      isShown_ = true;
      const QPoint corner = window_.mapToGlobal(QPoint(0, 0));
      say(QStringLiteral("%1 shown %2 %3").arg(objectName()).arg(corner.x()).arg(corner.y()));
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  QWidget& window_;
  bool isShown_ = false;
};

} // namespace zq::app::testing
