#include "zqticker/platform/controls/ButtonAccessible_p.h"

#include "zqticker/platform/controls/Button.h"
#include "zqticker/platform/controls/ButtonCell.h"
#include "zqticker/platform/controls/Menu.h"
#include "zqticker/platform/controls/callback_border_p.h"

namespace zq::platform {

static QAccessibleInterface* accessibleOf(const QString& className, QObject* object) {
  if (className != QLatin1StringView(Button::staticMetaObject.className()))
    return nullptr;
  auto* button = qobject_cast<Button*>(object);
  return button ? new ButtonAccessible(button) : nullptr;
}

void ButtonAccessible::install() {
  static const bool isInstalled = [] {
    QAccessible::installFactory(accessibleOf);
    return true;
  }();
  Q_UNUSED(isInstalled);
}

ButtonAccessible::ButtonAccessible(Button* button)
    : QAccessibleWidget(button, QAccessible::Button) {}

Button& ButtonAccessible::button() const {
  return *static_cast<Button*>(widget());
}

// The program may have given it a better name, as for any widget.
QString ButtonAccessible::text(QAccessible::Text text) const {
  const QString given = QAccessibleWidget::text(text);
  return given.isEmpty() && text == QAccessible::Name ? button().title() : given;
}

QAccessible::State ButtonAccessible::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  const Ref<ButtonCell> cell = button().cell();
  state.checkable = cell->clickChangesState(&button());
  state.checked = cell->state() == CellState::On;
  state.checkStateMixed = cell->state() == CellState::Mixed;
  state.pressed = cell->isHighlighted();
  state.hasPopup = cell->menu() != nullptr;
  return state;
}

QStringList ButtonAccessible::actionNames() const {
  QStringList names;
  if (!button().isEnabled())
    return names;
  names.append(pressAction());
  if (button().cell()->menu())
    names.append(showMenuAction());
  return names;
}

void ButtonAccessible::doAction(const QString& actionName) {
  if (!button().isEnabled())
    return;
  Button& pressed = button();
  if (actionName == pressAction())
    logRaised([&] { pressed.click(); });
  else if (actionName == showMenuAction())
    logRaised([&] { pressed.showMenu(); });
}

} // namespace zq::platform
