// Whether anybody can see the strip.
#pragma once

#include "app/x11/WindowVisibility.h"

#include <QtCore/QObject>

class QWidget;

namespace zq::app {

// Watches whether a window can be seen: it is shown, not minimised, not covered by other windows
// where the window system tells, and the screen itself is in sight.
//
// Thread: main.
class StripSight : public QObject {
  Q_OBJECT

 public:
  // `window` must outlive this object.
  explicit StripSight(QWidget& window);
  ~StripSight() override;

  bool isInSight() const { return isInSight_; }
  Q_SIGNAL void changed(bool isInSight);

  // Whether the screen can be seen: it is neither locked nor asleep. True at first.
  void setScreenInSight(bool isInSight);

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void watchWindow();
  void update();

  QWidget& window_;
  WindowVisibility visibility_;
  bool isScreenInSight_ = true;
  bool isInSight_ = false;
};

} // namespace zq::app
