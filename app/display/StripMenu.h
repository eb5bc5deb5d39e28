// What a user may ask of a strip.
#pragma once

#include <QtWidgets/QMenu>

namespace zq::app {

// The commands of a strip as a menu. Whoever shows them elsewhere uses these actions, so that their
// state is the same everywhere.
//
// Thread: main.
class StripMenu : public QMenu {
  Q_OBJECT

 public:
  explicit StripMenu(QWidget* parent = nullptr);
  ~StripMenu() override;

  QAction& back() const { return *back_; }
  // Checked while the strip is paused.
  QAction& pause() const { return *pause_; }
  QAction& forward() const { return *forward_; }
  // Not to be seen at first, since not every strip has these windows.
  QAction& queue() const { return *queue_; }
  QAction& settings() const { return *settings_; }
  QAction& quit() const { return *quit_; }

 private:
  QAction* back_;
  QAction* pause_;
  QAction* forward_;
  QAction* queue_;
  QAction* settings_;
  QAction* quit_;
};

} // namespace zq::app
