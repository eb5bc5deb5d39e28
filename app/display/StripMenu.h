// What a user may ask of a strip.
#pragma once

#include "app/display/ScrollDirection.h"

#include <QtWidgets/QMenu>

#include <array>

class QActionGroup;

namespace zq::app {

// The commands of a strip as a menu, with their keys. Whoever shows them elsewhere uses these
// actions, so that their state is the same everywhere. The keys work where the actions have been
// added to a window that has the keyboard.
//
// Thread: main.
class StripMenu : public QMenu {
  Q_OBJECT

 public:
  explicit StripMenu(QWidget* parent = nullptr);
  ~StripMenu() override;

  // Back and forward by one sign. Their keys are the arrows along the strip: the one that points to
  // where signs come from is forward.
  QAction& back() const { return *back_; }
  // Checked while the strip is paused.
  QAction& pause() const { return *pause_; }
  QAction& forward() const { return *forward_; }

  QAction& slower() const { return *slower_; }
  QAction& faster() const { return *faster_; }
  QAction& usualSpeed() const { return *usualSpeed_; }

  // The direction that is checked, and that back and forward have their keys by; Left at first.
  void setDirection(ScrollDirection direction);
  QAction& directionAction(ScrollDirection direction) const;
  // The user wishes for it; also where it is the one that is checked.
  Q_SIGNAL void directionChosen(zq::app::ScrollDirection direction);

  // What is done to one sign.
  QAction& openSign() const { return *openSign_; }
  QAction& copyText() const { return *copyText_; }
  QAction& removeSign() const { return *removeSign_; }

  // These are not to be seen at first: not every strip can be brought back, or has these windows.
  QAction& hideStrip() const { return *hideStrip_; }
  QAction& queue() const { return *queue_; }
  QAction& settings() const { return *settings_; }
  QAction& quit() const { return *quit_; }

  // All of them, those of the menus within this one too.
  QList<QAction*> commands() const;

 private:
  QAction* add(QMenu& menu, const QString& text, const QKeySequence& key = {});
  void addSpeeds();
  void addDirections();

  QAction* back_;
  QAction* pause_;
  QAction* forward_;
  QAction* slower_;
  QAction* faster_;
  QAction* usualSpeed_;
  QActionGroup* directionGroup_;
  std::array<QAction*, 4> directions_{}; // by ScrollDirection
  QAction* openSign_;
  QAction* copyText_;
  QAction* removeSign_;
  QAction* hideStrip_;
  QAction* queue_;
  QAction* settings_;
  QAction* quit_;
};

} // namespace zq::app
