// The strip on the screen.
#pragma once

#include "app/access/StripFocus.h"
#include "app/display/StripMenu.h"
#include "app/display/StripPlayer.h"
#include "app/display/StripSight.h"
#include "app/display/StripSurface.h"
#include "app/display/TickerDisplay.h"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

class QScreen;

namespace zq::app {

// Shows a display in a window of its own and moves it. Paints only frames that differ from the one
// before.
//
// Thread: main.
class StripWidget : public QWidget {
  Q_OBJECT

 public:
  // `display` must outlive the widget and takes the widget's size and scale.
  StripWidget(TickerDisplay& display, const QColor& background);
  ~StripWidget() override;

  // A dock stays at an edge of the screen, as the window is made; a floating one is small, stands
  // over the others, and can be moved.
  enum class Kind { Dock, Floating };

  // Gives the window its place on the screen, in points.
  void place(const QRect& geometry, Kind kind);

  // The colour behind the signs; one that is not opaque lets what stands below the window through,
  // where the window system can.
  void setBackground(const QColor& background);
  const QColor& background() const { return background_; }

  // Seconds on the strip's own clock, see StripPlayer.
  double time() const { return player_.time(); }

  // Tells that something was added to the display or that it was changed.
  void displayChanged() { player_.displayChanged(); }
  StripPlayer& player() { return player_; }
  StripSight& sight() { return sight_; }

  StripSurface& surface() { return surface_; }

  // The strip's commands, ready for use; it pops up under the right mouse button.
  StripMenu& menu() { return menu_; }

  // The keyboard focus, which the strip has only while it was asked to take it.
  StripFocus& keyboard() { return keyboard_; }

  // Whether the display has shown everything.
  bool isFinished() const { return display_.isFinished(); }
  Q_SIGNAL void finished();

  // Frames that were shown because they differed from the one before.
  std::uint64_t frameCount() const { return frameCount_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void fitDisplay();
  void followScreen(QScreen* shownOn);
  void fitScale();

  TickerDisplay& display_;
  QColor background_;
  StripPlayer player_;
  StripSight sight_;
  StripSurface surface_;
  StripMenu menu_;
  StripFocus keyboard_;
  QPointer<QScreen> screen_; // on which it is shown, as far as it was told
  QMetaObject::Connection rateChange_;
  QRect place_;
  int requestsLeft_ = 0; // how often it asks once more for its place
  std::uint64_t frameCount_ = 0;
};

} // namespace zq::app
