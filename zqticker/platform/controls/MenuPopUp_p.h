// One showing of a menu.
#pragma once

#include "zqticker/platform/objects/Object.h"
#include "zqticker/platform/objects/Weak.h"

#include <QtCore/QObject>
#include <QtCore/QPointF>

class QMenu;

namespace zq::platform {

class ControlView;
class Menu;

// Lives from the moment a menu pops up until it has closed, then deletes itself. Meanwhile it
// swallows the release that belongs to the opening press.
class MenuPopUp : public QObject {
  Q_OBJECT

 public:
  // `swallowsRelease` where the left button is down.
  MenuPopUp(const Ref<Menu>& menu, QMenu* widget, ControlView* view, bool swallowsRelease);
  ~MenuPopUp() override;

  // Returns whether the menu shows.
  bool show(QPointF globalPosition);

  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void close();

  Ref<Menu> menu_;
  QMenu* widget_;
  Weak<ControlView> view_;
  bool swallowsRelease_;
  bool isOpen_ = false;
};

} // namespace zq::platform
