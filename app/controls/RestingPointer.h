// Whether the user attends to a widget.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QPoint>
#include <QtCore/QTimer>

class QMouseEvent;
class QWidget;

namespace zq::app {

// Watches the pointer over a widget and the widgets in it. It begins to rest when it has stayed at
// one place for a while, or at once with a press of the left button, and rests until it has been
// away for a moment. A finger that taps counts for some seconds.
//
// Nothing wakes the program while the pointer is elsewhere.
//
// Thread: main.
class RestingPointer : public QObject {
  Q_OBJECT

 public:
  // Long enough that a pointer on its way across does not count, short enough that nobody waits.
  static constexpr int RestMilliseconds = 300;
  // A pointer that slips off finds everything as it was when it comes back.
  static constexpr int LeaveMilliseconds = 500;
  // A finger does not hover: time to read, and to tap again.
  static constexpr int TapMilliseconds = 4000;

  // Watches `widget`, which must outlive this object; switches its mouse tracking on.
  explicit RestingPointer(QWidget* widget);
  ~RestingPointer() override;

  // Counts presses of `part`, a widget in the watched one that keeps them to itself.
  void watchPresses(QWidget* part);

  bool isResting() const { return isResting_; }
  // The pointer counts as away until it comes again.
  void forget() { reset(); }
  // While it is held, rest neither begins nor ends.
  void setHeld(bool held);

  Q_SIGNAL void restingChanged(bool isResting);

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void enter(QPointF place);
  void move(const QMouseEvent& event);
  void press(const QMouseEvent& event);
  void leave();
  void reset();
  void awaitEnd();
  bool isInside() const;
  void setResting(bool resting);

  QWidget* widget_;
  QTimer rest_;
  QTimer end_;
  QPointF place_; // where the pointer may come to rest, on the screen
  bool isInside_ = false;
  bool isByTouch_ = false;
  bool isHeld_ = false;
  bool isResting_ = false;
};

} // namespace zq::app
