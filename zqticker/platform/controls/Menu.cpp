#include "zqticker/platform/controls/Menu.h"

#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/controls/MenuPopUp_p.h"
#include "zqticker/platform/controls/mouse_events_p.h"

#include <QtCore/QPointer>
#include <QtWidgets/QMenu>

#include <utility>

namespace zq::platform {

struct Menu::Private {
  std::unique_ptr<QMenu> owned;
  QPointer<QMenu> menu;
};

Menu::Menu() : private_(std::make_unique<Private>()) {}

Menu::~Menu() = default;

Ref<Menu> Menu::make(QMenu* menu) {
  if (!menu)
    return nullptr;
  const Ref<Menu> made(new Menu);
  made->private_->menu = menu;
  return made;
}

Ref<Menu> Menu::make(std::unique_ptr<QMenu> menu) {
  const Ref<Menu> made = make(menu.get());
  if (made)
    made->private_->owned = std::move(menu);
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
