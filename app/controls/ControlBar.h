// The buttons that appear on the strip.
#pragma once

#include "app/controls/RestingPointer.h"
#include "app/display/ScrollDirection.h"

#include <QtGui/QColor>
#include <QtWidgets/QWidget>

#include <memory>
#include <vector>

namespace zq::app {

class ControlBarButton;
class StripMenu;

// Back, pause, forward and a menu, as buttons at the end of the strip at which signs enter, where
// the least has been read: at the right where they scroll left, at the lower end where they scroll
// up. Their order is the same everywhere. The bar shows while the pointer rests on the strip, see
// RestingPointer, and while its menu is open or a button is pressed.
//
// It covers what runs below it, is as broad as the strip and as long as its buttons need; on a
// strip too small for it, it does not show. It takes no focus, and no time while it does not show.
//
// Thread: main.
class ControlBar : public QWidget {
  Q_OBJECT

 public:
  // A bar on `strip` for the commands of `menu`; both must outlive it. Needs the look of its
  // buttons, see ControlBarButton::hasLook.
  ControlBar(QWidget* strip, ScrollDirection direction, StripMenu& menu);
  ~ControlBar() override;

  void setDirection(ScrollDirection direction);

  ControlBarButton& backButton() const { return *back_; }
  ControlBarButton& pauseButton() const { return *pause_; }
  ControlBarButton& forwardButton() const { return *forward_; }
  // A press on its arrow, a held press and a click pop the menu up, below the bar or above it.
  ControlBarButton& menuButton() const { return *menuButton_; }

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  // Rows of buttons, and their sizes.
  struct Grid {
    int columns = 0;
    int rows = 0;
    QSize button;
    int menuWidth = 0;
  };

  void connectButtons();
  void showPaused(bool paused);
  void hold(int change);
  Grid gridOnStrip() const;
  void place();
  void uncoverBar();
  void showWhereItFits(bool shows);

  QWidget* strip_;
  ScrollDirection direction_;
  StripMenu& menu_;
  RestingPointer pointer_;
  ControlBarButton* back_;
  ControlBarButton* pause_;
  ControlBarButton* forward_;
  ControlBarButton* menuButton_;
  QColor ground_;
  QColor edge_;
  int holds_ = 0; // open menus and pressed buttons
  bool isMenuOfButton_ = false;
};

} // namespace zq::app
