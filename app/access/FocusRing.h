// The line around a strip that has the keyboard.
#pragma once

#include <QtWidgets/QWidget>

namespace zq::app {

// A dark and a light line along the edge of its parent, one of which stands out from whatever is
// there; other marks and controls lie over it. Takes no events, and nothing at all while it is
// hidden, as at first.
//
// Thread: main.
class FocusRing : public QWidget {
  Q_OBJECT

 public:
  explicit FocusRing(QWidget* parent);
  ~FocusRing() override;

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
};

} // namespace zq::app
