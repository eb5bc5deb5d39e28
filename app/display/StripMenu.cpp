#include "app/display/StripMenu.h"

#include <QtGui/QAction>
#include <QtGui/QActionGroup>

namespace zq::app {

namespace {
struct ArrowKeys {
  Qt::Key back;
  Qt::Key forward;
};

ArrowKeys arrowKeysOf(ScrollDirection direction) {
  switch (direction) {
  case ScrollDirection::Right:
    return {Qt::Key_Right, Qt::Key_Left};
  case ScrollDirection::Up:
    return {Qt::Key_Up, Qt::Key_Down};
  case ScrollDirection::Down:
    return {Qt::Key_Down, Qt::Key_Up};
  case ScrollDirection::Left:
    break;
  }
  return {Qt::Key_Left, Qt::Key_Right};
}

void setOnce(std::initializer_list<QAction*> actions) {
  for (QAction* action : actions)
    action->setAutoRepeat(false);
}
} // namespace

StripMenu::StripMenu(QWidget* parent) : QMenu(parent) {
  back_ = add(*this, tr("Back"));
  pause_ = add(*this, tr("Pause"), Qt::Key_Space);
  pause_->setCheckable(true);
  forward_ = add(*this, tr("Forward"));
  addSpeeds();
  addDirections();
  addSeparator();
  openSign_ = add(*this, tr("Open"), Qt::Key_Return);
  copyText_ = add(*this, tr("Copy Text"), QKeySequence(Qt::CTRL | Qt::Key_C));
  removeSign_ = add(*this, tr("Remove"), Qt::Key_Delete);
  addSeparator();
  hideStrip_ = add(*this, tr("Hide"), Qt::Key_H);
  hideStrip_->setVisible(false);
  queue_ = add(*this, tr("Queue…"));
  queue_->setVisible(false);
  settings_ = add(*this, tr("Settings…"));
  settings_->setVisible(false);
  quit_ = add(*this, tr("Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q));
  setOnce({pause_, openSign_, copyText_, removeSign_, hideStrip_, quit_});
  setDirection(ScrollDirection::Left);
}

StripMenu::~StripMenu() = default;

QAction* StripMenu::add(QMenu& menu, const QString& text, const QKeySequence& key) {
  QAction* action = menu.addAction(text);
  action->setShortcut(key);
  action->setShortcutVisibleInContextMenu(true);
  return action;
}

void StripMenu::addSpeeds() {
  QMenu& speeds = *addMenu(tr("Speed"));
  slower_ = add(speeds, tr("Slower"), Qt::Key_Minus);
  faster_ = add(speeds, tr("Faster"), Qt::Key_Plus);
  usualSpeed_ = add(speeds, tr("Usual"), Qt::Key_0);
}

void StripMenu::addDirections() {
  QMenu& directions = *addMenu(tr("Direction"));
  directionGroup_ = new QActionGroup(this);
  const auto addDirection = [&](ScrollDirection direction, const QString& text) {
    QAction* action = add(directions, text);
    action->setCheckable(true);
    directionGroup_->addAction(action);
    directions_[static_cast<std::size_t>(direction)] = action;
    connect(action, &QAction::triggered, this,
            [this, direction] { Q_EMIT directionChosen(direction); });
  };
  addDirection(ScrollDirection::Left, tr("Left"));
  addDirection(ScrollDirection::Right, tr("Right"));
  addDirection(ScrollDirection::Up, tr("Up"));
  addDirection(ScrollDirection::Down, tr("Down"));
}

void StripMenu::setDirection(ScrollDirection direction) {
  directionAction(direction).setChecked(true);
  const ArrowKeys keys = arrowKeysOf(direction);
  back_->setShortcut(keys.back);
  forward_->setShortcut(keys.forward);
}

QAction& StripMenu::directionAction(ScrollDirection direction) const {
  return *directions_[static_cast<std::size_t>(direction)];
}

QList<QAction*> StripMenu::commands() const {
  QList<QAction*> all{back_,       pause_,    forward_,  slower_,     faster_,
                      usualSpeed_, openSign_, copyText_, removeSign_, hideStrip_,
                      queue_,      settings_, quit_};
  all.append(directionGroup_->actions());
  return all;
}

} // namespace zq::app
