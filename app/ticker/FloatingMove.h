// Moving a window that has no title bar.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QPoint>

#include <optional>

class QMouseEvent;
class QWidget;

namespace zq::app {

// Moves a window with the left button of the mouse while Alt or Meta is held. These presses do not
// reach the window.
//
// Thread: main.
class FloatingMove : public QObject {
  Q_OBJECT

 public:
  // `window` must outlive this object. Switched off at first.
  explicit FloatingMove(QWidget& window);
  ~FloatingMove() override;

  void setEnabled(bool enabled);

  // Whether the window is being moved here.
  bool isHeld() const { return held_.has_value(); }

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  bool press(const QMouseEvent& event);

  QWidget& window_;
  bool isEnabled_ = false;
  std::optional<QPoint> held_; // the point of the window under the pointer while it is moved here
};

} // namespace zq::app
