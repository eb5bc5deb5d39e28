#include "app/interaction/StripCommands.h"

#include "app/display/SignItem.h"
#include "app/display/StripWidget.h"
#include "app/interaction/SignOpener.h"

#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

#include <algorithm>

namespace zq::app {

namespace {
constexpr double SpeedStep = 1.25;
} // namespace

double StripCommands::slowerThan(double speed) {
  return speed > LeastSpeed ? std::max(speed / SpeedStep, LeastSpeed) : speed;
}

double StripCommands::fasterThan(double speed) {
  return speed < MostSpeed ? std::clamp(speed * SpeedStep, LeastSpeed, MostSpeed) : speed;
}

StripCommands::StripCommands(StripWidget& strip, TickerDisplay& display, const SignOpener& opener)
    : strip_(strip), display_(display), opener_(opener), meant_(strip, display) {
  strip.menu().setDirection(display.direction());
  strip.installEventFilter(this);
  connectActions();
  addKeys();
}

StripCommands::~StripCommands() = default;

void StripCommands::connectActions() {
  StripMenu& menu = strip_.menu();
  connect(&menu, &QMenu::aboutToShow, this, &StripCommands::aboutToShow);
  // What was chosen in the menu happens after this signal.
  connect(&menu, &QMenu::aboutToHide, this, &StripCommands::afterMenu, Qt::QueuedConnection);
  connect(&menu.slower(), &QAction::triggered, this,
          [this] { Q_EMIT speedChosen(slowerThan(display_.speed())); });
  connect(&menu.faster(), &QAction::triggered, this,
          [this] { Q_EMIT speedChosen(fasterThan(display_.speed())); });
  connect(&menu.usualSpeed(), &QAction::triggered, this,
          [this] { Q_EMIT speedChosen(usualSpeed_); });
  connect(&menu.openSign(), &QAction::triggered, this, &StripCommands::open);
  connect(&menu.copyText(), &QAction::triggered, this, &StripCommands::copyText);
  connect(&menu.removeSign(), &QAction::triggered, this, &StripCommands::removeSign);
}

void StripCommands::addKeys() {
  strip_.addActions(strip_.menu().commands());
  const auto addKey = [this](const QList<QKeySequence>& keys, auto act) {
    auto* action = new QAction(this);
    action->setShortcuts(keys);
    connect(action, &QAction::triggered, this, act);
    strip_.addAction(action);
  };
  addKey({Qt::Key_Tab}, [this] { meant_.choose(1); });
  addKey({QKeySequence(Qt::SHIFT | Qt::Key_Tab)}, [this] { meant_.choose(-1); });
  addKey({QKeySequence(Qt::SHIFT | Qt::Key_F10), Qt::Key_Menu}, [this] { openMenu(); });
}

bool StripCommands::eventFilter(QObject*, QEvent* event) {
  if (event->type() != QEvent::ContextMenu)
    return false;
  const auto& request = *static_cast<QContextMenuEvent*>(event);
  if (request.reason() == QContextMenuEvent::Keyboard) {
    openMenu();
    return true;
  }
  isMenuPlaced_ = true;
  const bool isOnControl = strip_.childAt(request.pos()) != nullptr;
  meant_.pin(isOnControl ? std::nullopt : signAt(display_, QPointF(request.pos())));
  return false;
}

// At the meant sign, beside the strip where there is room.
void StripCommands::openMenu() {
  StripMenu& menu = strip_.menu();
  if (menu.isVisible())
    return;
  const std::optional<SignSpot> meant = meant_.sign();
  isMenuPlaced_ = true;
  meant_.pin(meant);
  QRect area = meant ? meant->area.toAlignedRect() : strip_.rect();
  area.moveTopLeft(strip_.mapToGlobal(area.topLeft()));
  const QSize size = menu.sizeHint();
  const bool fitsBelow =
      area.bottom() + size.height() <= strip_.screen()->availableGeometry().bottom();
  menu.popup({area.left(), fitsBelow ? area.bottom() + 1 : area.top() - size.height()});
  menu.setActiveAction(&menu.back());
}

void StripCommands::aboutToShow() {
  // A control has opened it.
  if (!isMenuPlaced_)
    meant_.pin(std::nullopt);
  StripMenu& menu = strip_.menu();
  menu.setDirection(display_.direction());
  menu.slower().setEnabled(slowerThan(display_.speed()) < display_.speed());
  menu.faster().setEnabled(fasterThan(display_.speed()) > display_.speed());
  const std::optional<SignSpot> meant = meant_.sign();
  menu.openSign().setEnabled(meant && SignOpener::opensSomething(actionOf(meant->item())));
  menu.copyText().setEnabled(meant && !meant->item().text().isEmpty());
  menu.removeSign().setEnabled(meant.has_value());
}

// A key of an action that is switched off would do nothing.
void StripCommands::afterMenu() {
  isMenuPlaced_ = false;
  meant_.unpin();
  StripMenu& menu = strip_.menu();
  for (QAction* action :
       {&menu.slower(), &menu.faster(), &menu.openSign(), &menu.copyText(), &menu.removeSign()})
    action->setEnabled(true);
}

void StripCommands::open() {
  if (const std::optional<SignSpot> meant = meant_.sign())
    opener_.perform(actionOf(meant->item()));
}

void StripCommands::copyText() {
  const std::optional<SignSpot> meant = meant_.sign();
  const QString text = meant ? meant->item().text() : QString();
  if (!text.isEmpty())
    QGuiApplication::clipboard()->setText(text);
}

void StripCommands::removeSign() {
  const std::optional<SignSpot> meant = meant_.sign();
  if (!meant)
    return;
  meant_.chooseNeighbour();
  display_.eraseEntry(meant->entry, strip_.time());
  strip_.displayChanged();
  Q_EMIT signRemoved();
}

} // namespace zq::app
