// The strip's place on the screen.
#pragma once

#include "app/commands/StripOptions.h"
#include "app/commands/strip_setup.h"
#include "app/ticker/FloatingMove.h"
#include "app/x11/OtherReservations.h"
#include "app/x11/ScreenReservation.h"
#include "app/x11/TruePosition.h"
#include "app/x11/TrueScreens.h"

#include <QtCore/QObject>
#include <QtCore/QRect>
#include <QtCore/QTimer>

#include <chrono>
#include <optional>

class QScreen;

namespace zq::app {

class ChosenScreen;
class StripWidget;

// How long moves of a floating strip are waited for.
struct MovingTimes {
  // After the last step of a move, until the strip has been left there: a window that is dragged
  // tells of every step.
  std::chrono::milliseconds moving{400};
  // After the strip was placed or has appeared. Meanwhile moves without a button of the pointer are
  // the window manager's own, which are not remembered.
  std::chrono::milliseconds settling{1000};
};

// Gives the strip its place: along an edge of the chosen screen, beside what other programs keep
// for themselves there, and kept free of other windows; or floating where the user has moved it,
// which is remembered.
//
// Thread: main.
class StripPlace : public QObject {
  Q_OBJECT

 public:
  // Both must outlive this object. The place of a floating strip is kept in the file `stateFile`.
  StripPlace(StripWidget& widget, const ChosenScreen& screen,
             const QString& stateFile = defaultStateFile(), const MovingTimes& times = {});
  ~StripPlace() override;

  // windows.ini in the program's folder of the settings.
  static QString defaultStateFile();

  // The part of the chosen screen that is free for the strip, in points; null where there is no
  // screen.
  QRect room() const;

  // Brings the window to its place.
  void take(const RunOptions& options, const StripLook& look);

  // The room is another one, or the screen: the look and the place are to be found again.
  Q_SIGNAL void changed();

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  // Where a floating strip was left.
  struct Memory {
    QString screen; // its name
    QString chosen; // the screen that the options named then
    QPoint offset;  // points from the screen's upper left corner
  };

  QRect roomOn(const QScreen& screen) const;
  QRect nativeOf(const QRect& rect, const QScreen& screen) const;
  const QScreen* screenUnder(QPoint point) const;
  QRect floatingPlace(const QRect& usual) const;
  bool isUsersMove() const;
  void reserve(const std::optional<Qt::Edge>& edge, const QRect& place);
  void remember();

  StripWidget& widget_;
  const ChosenScreen& screen_;
  const QString stateFile_;
  TrueScreens screens_;
  OtherReservations others_;
  ScreenReservation reservation_;
  TruePosition position_;
  FloatingMove move_;
  std::optional<Memory> memory_;
  bool isFloating_ = false;
  QRect place_;
  QTimer moved_;    // after the last move that nobody here has asked for
  QTimer settling_; // while moves may be the window manager's own
};

} // namespace zq::app
