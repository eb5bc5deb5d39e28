// Menus that pop up.
#pragma once

#include "zqticker/platform/controls/Event.h"
#include "zqticker/platform/objects/Object.h"

#include <memory>

class QMenu;

namespace zq::platform {

class ControlView;

// A reference object over a QMenu. Items and their actions are the QMenu's.
//
// Thread: main.
class ZQTICKER_EXPORT Menu : public Object {
  Q_GADGET
  ZQ_OBJECT
  Q_CLASSINFO("ArchiveName", "NSMenu")

 public:
  // Over a menu that someone else owns; it may be destroyed at any time. Null gives null.
  static Ref<Menu> make(QMenu* menu);
  // Over a menu of its own.
  static Ref<Menu> make(std::unique_ptr<QMenu> menu);
  ~Menu() override;

  // Null once it has been destroyed.
  QMenu* menu() const;
  bool isOpen() const;

  // Shows `menu` with its upper left corner at the event's location in the window of `forView`, and
  // returns at once whether it shows. The view is told by menuDidOpen, and by menuDidClose when the
  // menu has been closed or destroyed; both before the return where the menu opens and closes at
  // once. Does nothing without a menu, and while it is open.
  //
  // When `withEvent` is a press or a drag of the left button, the release that follows fires no
  // item, wherever the pointer is; items fire from the next press on.
  static bool popUpContextMenu(const Ref<Menu>& menu, const Event& withEvent, ControlView* forView);

 private:
  Menu();
  struct Private;
  std::unique_ptr<Private> private_;
};

} // namespace zq::platform
