// The commands of a strip, at work.
#pragma once

#include "app/interaction/MeantSign.h"

#include <QtCore/QObject>

namespace zq::app {

class SignOpener;
class StripWidget;
class TickerDisplay;

// Lets the actions of a strip's menu act on it; by their keys, too, while the strip has the
// keyboard. Then Tab and Shift+Tab choose a sign, see MeantSign, and Menu or Shift+F10 opens the
// menu there. By pointer the menu is about the sign under it.
//
// Speed, direction and hiding are only told of, by this object and the menu: they are up to the
// owner of the strip.
//
// Thread: main.
class StripCommands : public QObject {
  Q_OBJECT

 public:
  // Of the speeds that can be chosen one by one, points per second. A speed beyond them is not
  // driven farther.
  static constexpr double LeastSpeed = 5;
  static constexpr double MostSpeed = 2000;
  static double slowerThan(double speed);
  static double fasterThan(double speed);

  // All of them must outlive it.
  StripCommands(StripWidget& strip, TickerDisplay& display, const SignOpener& opener);
  ~StripCommands() override;

  MeantSign& meantSign() { return meant_; }

  // The speed that Usual chooses; 60 at first.
  void setUsualSpeed(double pointsPerSecond) { usualSpeed_ = pointsPerSecond; }
  // The user wishes for it.
  Q_SIGNAL void speedChosen(double pointsPerSecond);
  // A sign was taken out of the queue.
  Q_SIGNAL void signRemoved();

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void connectActions();
  void addKeys();
  void openMenu();
  void aboutToShow();
  void afterMenu();
  void open();
  void copyText();
  void removeSign();

  StripWidget& strip_;
  TickerDisplay& display_;
  const SignOpener& opener_;
  MeantSign meant_;
  double usualSpeed_ = 60;
  bool isMenuPlaced_ = false; // which sign it is about is known before it opens
};

} // namespace zq::app
