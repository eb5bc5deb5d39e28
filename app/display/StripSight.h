// Whether anybody can see the strip.
#pragma once

#include <QtCore/QObject>

class QWidget;

namespace zq::app {

// Watches whether a window can be seen: it is shown and not minimised.
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

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void update();

  QWidget& window_;
  bool isInSight_ = false;
};

} // namespace zq::app
