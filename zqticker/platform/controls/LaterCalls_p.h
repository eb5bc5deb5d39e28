// What the toolkit's news lead to, once the toolkit is through with them.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QPointer>

#include <deque>
#include <functional>

namespace zq::platform {

// The toolkit goes on with a widget, and with its window, after it has told that the pointer comes
// or goes, that the window loses the focus or that something is hidden. Whoever hears of it may
// destroy them; so it is passed on in the next turn of the event loop, or before the mouse does
// anything else. Views of all kinds share one line, so that the order stays.
//
// Thread: main.
class LaterCalls : public QObject {
 public:
  static LaterCalls& shared();

  // Nothing is called once `receiver` has gone.
  void add(QObject* receiver, std::function<void()> call);
  // Calls all that waits.
  void perform();

 protected:
  bool event(QEvent* event) override;

 private:
  struct Call {
    QPointer<QObject> receiver;
    std::function<void()> call;
  };

  LaterCalls() = default;
  void wake();

  std::deque<Call> calls_;
  bool isAwake_ = false; // an event is on its way
};

} // namespace zq::platform
