// The subscriptions of one thread, in its event loop.
#pragma once

#include "zqticker/platform/system/SubscribedFolders_p.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>

#include <memory>

QT_FORWARD_DECLARE_CLASS(QAbstractEventDispatcher)
QT_FORWARD_DECLARE_CLASS(QSocketNotifier)
QT_FORWARD_DECLARE_CLASS(QTimer)

namespace zq::platform {

// Calls the subscribers back. While changes are waiting to be told it looks for more every few
// milliseconds, instead of being woken by each.
//
// Thread: the one that made it.
class SubscriptionLoop final : public QObject {
 public:
  // That of this thread, which ends with it.
  static SubscriptionLoop& ofThisThread();

  explicit SubscriptionLoop(const InotifyCalls& calls = InotifyCalls());
  ~SubscriptionLoop() override;

  // Returns 0 and the handle, or an errno value. Logs the first limit of the kernel.
  std::int32_t subscribe(const QByteArray& path, DirectorySubscriptionCallback callback,
                         void* reference, DirectorySubscription*& handle);

  const std::shared_ptr<SubscribedFolders>& folders() const { return folders_; }

 protected:
  bool event(QEvent* event) override;

 private:
  void attach();
  void look();
  void postCall();
  void callNext();

  std::shared_ptr<SubscribedFolders> folders_;
  // That of the thread with which the notifier and the timer are registered.
  QPointer<QAbstractEventDispatcher> dispatcher_;
  std::unique_ptr<QSocketNotifier> notifier_;
  std::unique_ptr<QTimer> timer_;
  bool isCallPosted_ = false;
  bool isLimitLogged_ = false;
};

} // namespace zq::platform
