// Work that is asked for often and done once.
#pragma once

#include <QtCore/QObject>

#include <functional>

namespace zq::app {

// Does something once a turn of the event loop, however often it is asked for. What has not been
// done when this object goes is left undone.
//
// Thread: that on which it was made.
class OncePerTurn {
 public:
  explicit OncePerTurn(std::function<void()> work);
  ~OncePerTurn();
  OncePerTurn(const OncePerTurn&) = delete;
  OncePerTurn& operator=(const OncePerTurn&) = delete;

  // Has it done in a later turn. From within the work itself: once more.
  void request();

  // Does it now where it is asked for, and not later.
  void catchUp();

 private:
  std::function<void()> work_;
  bool isDue_ = false;
  QObject later_; // the calls of later turns go with it
};

} // namespace zq::app
