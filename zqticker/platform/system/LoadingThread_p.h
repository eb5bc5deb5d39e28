// What the connections of one thread share.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>

#include <deque>
#include <memory>
#include <unordered_set>

namespace zq::platform {

class CurlDriver;
class URLLoading;

// Delivers what the loads of this thread have noted, from the thread's event loop, and ends them
// with it: with the application on the main thread, with the thread elsewhere.
class LoadingThread : public QObject {
 public:
  // That of the calling thread; made, with an event dispatcher, when it is first asked for.
  static LoadingThread& current();
  // Whether `thread`, which may have gone, is that of the calling thread.
  static bool isOfThisThread(const LoadingThread* thread);
  ~LoadingThread() override;

  // Keeps `loading` until it is removed, or the thread ends.
  void add(const std::shared_ptr<URLLoading>& loading);
  void remove(const std::shared_ptr<URLLoading>& loading);

  // Delivers what `loading` has noted, at the end of the round that is going on, or else when
  // control is back in the event loop.
  void deliverLater(const std::shared_ptr<URLLoading>& loading);

  // A time in which sources note: nothing is delivered before it ends, all that was noted when it
  // does. Delegates may run event loops then, and rounds within those.
  class Round {
   public:
    explicit Round(LoadingThread& thread) : thread_(thread) { ++thread_.openRounds_; }
    ~Round();
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;

   private:
    LoadingThread& thread_;
  };

  // Made when it is first asked for.
  CurlDriver& curl();

  // An empty buffer, with room left from an earlier use where there is one.
  QByteArray takeBuffer();
  void giveBackBuffer(QByteArray&& buffer);

 protected:
  bool event(QEvent* event) override;

 private:
  LoadingThread();
  void postDelivery();
  void deliver();

  std::unique_ptr<CurlDriver> curl_;
  std::unordered_set<std::shared_ptr<URLLoading>> loadings_;
  std::deque<std::shared_ptr<URLLoading>> ready_;
  QByteArray spareBuffer_;
  int openRounds_ = 0;
  // Calls of deliver() that have not returned; more than one where delegates run event loops.
  int deliveries_ = 0;
  bool isEventPosted_ = false;
};

} // namespace zq::platform
