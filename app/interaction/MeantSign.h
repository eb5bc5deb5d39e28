// The sign that commands are about.
#pragma once

#include "app/interaction/SignMark.h"
#include "app/interaction/sign_spots.h"

#include <QtCore/QObject>

#include <optional>

namespace zq::app {

class StripWidget;
class TickerDisplay;

// Knows which sign a command means that does not say so itself. While the strip has the keyboard,
// that is the one that was chosen, as long as it is in sight; else the first in sight whose leading
// edge has not left the strip, or the first one where all have. While a menu is open, it is the one
// at which that was opened, or none. The sign has an outline meanwhile.
//
// Thread: main.
class MeantSign : public QObject {
  Q_OBJECT

 public:
  // Both must outlive it.
  MeantSign(StripWidget& strip, TickerDisplay& display);
  ~MeantSign() override;

  // Nothing where no sign is meant. That of a menu may have left the strip by now.
  std::optional<SignSpot> sign() const;

  // Chooses the sign that is `count` behind the meant one, in the order of entering, among those in
  // sight; from the last one it goes on to the first.
  void choose(int count);
  // Lets the sign that follows the meant one, else the one before it, be chosen instead.
  void chooseNeighbour();

  // Lets `sign`, or none, be the one that is meant, whatever else happens.
  void pin(const std::optional<SignSpot>& sign);
  void unpin();

 private:
  std::optional<SignSpot> signOfKeys() const;
  void mark();

  StripWidget& strip_;
  TickerDisplay& display_;
  SignMark* outline_;
  std::uint64_t chosen_ = 0; // its run; 0 for none
  bool isPinned_ = false;
  std::optional<SignSpot> pinned_;
};

} // namespace zq::app
