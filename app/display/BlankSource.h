// Where the screen's vertical blanks are told.
#pragma once

#include <QtCore/QObject>

namespace zq::app {

// Tells vertical blanks of a screen, each when it is asked for, and nothing else.
//
// Thread: the one that made it.
class BlankSource : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  // Asks for one report, of the blank with the number `count`, or of the next one where that is
  // past; 0 is always past. Takes the place of a request before it.
  virtual void request(quint64 count) = 0;
  // Nothing is reported any more; nothing comes from the system either.
  virtual void cancel() = 0;

  // The blank `count`, and when it was by the system's word: seconds on the monotonic clock, off by
  // some milliseconds either way where the system measures badly.
  Q_SIGNAL void blank(quint64 count, double time);
};

} // namespace zq::app
