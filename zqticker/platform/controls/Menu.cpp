#include "zqticker/platform/controls/Menu.h"

#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/controls/MenuPopUp_p.h"
#include "zqticker/platform/controls/mouse_events_p.h"

#include <QtCore/QPointer>
#include <QtWidgets/QMenu>

namespace zq::platform {

struct Menu::Private {
  // Whoever owns it, others may destroy it.
  QPointer<QMenu> menu;
  bool isOwned = false;
};

Menu::Menu() : private_(std::make_unique<Private>()) {}

Menu::~Menu() {
  if (private_->isOwned)
    delete private_->menu.data();
}

Ref<Menu> Menu::make(QMenu* menu) {
  if (!menu)
    return nullptr;
  const Ref<Menu> made(new Menu);
  made->private_->menu = menu;
  return made;
}

Ref<Menu> Menu::make(std::unique_ptr<QMenu> menu) {
  const Ref<Menu> made = make(menu.release());
  if (made)
    made->private_->isOwned = true;
  return made;
}

QMenu* Menu::menu() const {
  return private_->menu;
}

bool Menu::isOpen() const {
  return private_->menu && private_->menu->isVisible();
}

bool Menu::popUpContextMenu(const Ref<Menu>& menu, const Event& withEvent, ControlView* forView) {
  QWidget* widget = forView ? forView->widget() : nullptr;
  if (!menu || !menu->menu() || menu->isOpen() || !widget)
    return false;
  const bool isDown =
      withEvent.type == EventType::LeftMouseDown || withEvent.type == EventType::LeftMouseDragged;
  auto* popUp = new MenuPopUp(menu, menu->menu(), forView, isDown);
  return popUp->show(globalPointFromWindow(withEvent.locationInWindow, *widget));
}

} // namespace zq::platform
