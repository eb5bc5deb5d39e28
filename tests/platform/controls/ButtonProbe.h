// A button that writes down what it is told, in a window of its own.
#pragma once

#include "tests/support/LogWatch.h"
#include "zqticker/platform/controls/Button.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/Event.h"
#include "zqticker/platform/controls/LaterCalls_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>
#include <QtGui/QCursor>
#include <QtGui/QEnterEvent>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <functional>
#include <memory>
#include <utility>

namespace zq::testing {

class ProbeButton : public platform::Button {
 public:
  explicit ProbeButton(QWidget* parent = nullptr) : Button(parent) {}

  void sendAction(const platform::Selector& action, const platform::Target& target) override {
    log.append(QStringLiteral("action"));
    if (const auto perform = whenSending)
      perform();
    Button::sendAction(action, target);
  }
  QStringList log;
  std::function<void()> whenSending;
  std::function<void()> whenEntered;
  std::function<void()> whenExited;

 protected:
  void mouseEntered(const platform::Event&) override {
    log.append(QStringLiteral("entered"));
    if (const auto perform = whenEntered)
      perform();
  }
  void mouseExited(const platform::Event&) override {
    log.append(QStringLiteral("exited"));
    if (const auto perform = whenExited)
      perform();
  }
  void viewDidMoveToWindow() override {
    log.append(isInWindow() ? QStringLiteral("window") : QStringLiteral("no window"));
  }
};

// 200 × 100 points, with the button at the top left corner of a 100 × 22 place at (20, 10).
template <class Probe>
class WindowWith {
 public:
  WindowWith() : window(std::make_unique<QWidget>()), button(new Probe(window.get())) {
    // Of menus and windows without a window system.
    allowLog(QStringLiteral("This plugin does not support"));
    window->setGeometry(40, 40, 200, 100);
    button->setGeometry(20, 10, 100, 22);
    // Far from everything.
    QCursor::setPos(700, 500);
    window->show();
    QCoreApplication::processEvents();
    button->log.clear();
  }

  // What the left button does at a point of the button.
  void press(double x = 5, double y = 5) {
    send(QEvent::MouseButtonPress, x, y, Qt::LeftButton, Qt::LeftButton);
  }
  void drag(double x, double y) { send(QEvent::MouseMove, x, y, Qt::NoButton, Qt::LeftButton); }
  void release(double x = 5, double y = 5) {
    send(QEvent::MouseButtonRelease, x, y, Qt::LeftButton, Qt::NoButton);
  }
  void move(double x, double y) { send(QEvent::MouseMove, x, y, Qt::NoButton, Qt::NoButton); }
  void enter(double x = 5, double y = 5) const {
    const QPointF local(x, y);
    QEnterEvent event(local, button->mapTo(button->window(), local), button->mapToGlobal(local));
    QApplication::sendEvent(button, &event);
    settle();
  }
  void leave() { tell(button, QEvent::Leave); }
  void tell(QWidget* receiver, QEvent::Type type) const {
    QEvent event(type);
    QApplication::sendEvent(receiver, &event);
    settle();
  }
  // What the toolkit told is acted on.
  void settle() const { platform::LaterCalls::shared().perform(); }
  QStringList takeLog() { return std::exchange(button->log, {}); }

  void send(QEvent::Type type, double x, double y, Qt::MouseButton cause,
            Qt::MouseButtons held) const {
    const QPointF local(x, y);
    QMouseEvent event(type, local, button->mapToGlobal(local), cause, held, Qt::NoModifier);
    QApplication::sendEvent(button, &event);
  }

  std::unique_ptr<QWidget> window;
  // Owned by the window; looked at only while it lives.
  Probe* button;
};

using ButtonWindow = WindowWith<ProbeButton>;

} // namespace zq::testing
