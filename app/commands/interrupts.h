// Ctrl+C and the polite request to end.
#pragma once

#include <QtCore/QObject>

class QSocketNotifier;

namespace zq::app {

// Catches SIGINT, SIGTERM and SIGHUP while it lives; a second one ends the program at once. One
// object at a time.
class Interrupts : public QObject {
  Q_OBJECT

 public:
  explicit Interrupts(QObject* parent = nullptr);
  ~Interrupts() override;

  // The signal that came, or 0. For loops without an event loop.
  static int received();

  // Readable once a signal has come, for whoever waits for other descriptors as well; not to be
  // read. -1 where the system gives none.
  int descriptor() const { return ends_[0]; }

  // From the event loop.
  Q_SIGNAL void interrupted();

 private:
  int ends_[2] = {-1, -1};
  QSocketNotifier* notifier_ = nullptr;
};

} // namespace zq::app
