#include "app/display/StripMenu.h"

#include <QtGui/QAction>

namespace zq::app {

StripMenu::StripMenu(QWidget* parent)
    : QMenu(parent), back_(addAction(tr("Back"))), pause_(addAction(tr("Pause"))),
      forward_(addAction(tr("Forward"))) {
  pause_->setCheckable(true);
  addSeparator();
  queue_ = addAction(tr("Queue…"));
  queue_->setVisible(false);
  settings_ = addAction(tr("Settings…"));
  settings_->setVisible(false);
  quit_ = addAction(tr("Quit"));
}

StripMenu::~StripMenu() = default;

} // namespace zq::app
