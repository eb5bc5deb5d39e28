// The folders to which a thread has subscribed, and what is to be told of them.
#pragma once

#include "zqticker/platform/system/DirectorySubscription.h"
#include "zqticker/platform/system/InodeTable_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QHash>

#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <unordered_map>
#include <vector>

struct inotify_event;

namespace zq::platform {

// One instance of inotify however many folders there are. Time comes from the caller.
//
// Thread: any; the instance is read by one.
class SubscribedFolders {
 public:
  using Clock = std::chrono::steady_clock;

  // How long nothing must have happened before changes are told, and how long they wait at most.
  static constexpr std::chrono::milliseconds QuietTime{30};
  static constexpr std::chrono::milliseconds LongestDelay{500};

  struct Call {
    DirectorySubscriptionCallback callback = nullptr;
    void* reference = nullptr;
    DirectorySubscription* handle = nullptr;
  };

  explicit SubscribedFolders(const InotifyCalls& calls) : calls_(calls) {}
  ~SubscribedFolders();
  SubscribedFolders(const SubscribedFolders&) = delete;
  SubscribedFolders& operator=(const SubscribedFolders&) = delete;

  // That of the instance, readable when something has happened; -1 before the first subscription.
  int descriptor() const;

  // Has `call` made for changes from now on. Returns 0 and the handle in it, or an errno value.
  std::int32_t subscribe(const QByteArray& path, Call& call, Clock::time_point now);
  // Nothing for a handle that is not of this table.
  void unsubscribe(DirectorySubscription* handle);

  // Notes what has happened by now.
  void readChanges(Clock::time_point now);
  // Whether changes wait to be told.
  bool hasChanges() const;
  // Makes the calls of those that have waited long enough due; whether any call is.
  bool takeDue(Clock::time_point now);
  // Takes the first call that is due, in the order of the first changes; false for none.
  bool takeCall(Call& due);

 private:
  struct Subscription {
    Call call{};
    int watch = -1; // -1 once the folder has gone
    bool isChanged = false;
    bool isDue = false;
    Clock::time_point firstChange{};
    Clock::time_point lastChange{};
  };
  // A folder with subscriptions, or one in which such a folder stands.
  struct Folder {
    std::vector<DirectorySubscription*> subscriptions{};
    QHash<QByteArray, int> subfolders{}; // the watches of those with subscriptions, by name
    int parent = -1;                     // -1 where it is not known
    QByteArray name{};
  };

  int addWatch(int file);
  void readEvents(Clock::time_point now);
  void setParent(int watch, int file);
  void forgetParent(int watch);
  void release(int watch);
  void end(int watch);
  void note(const inotify_event& event, Clock::time_point now);
  void noteLoss(Clock::time_point now);
  void noteFolder(const Folder& folder, Clock::time_point now);
  void noteSubscription(DirectorySubscription* handle, Clock::time_point now);

  mutable std::mutex mutex_;
  // Protected by the mutex, all of them.
  InotifyCalls calls_;
  int instance_ = -1;
  std::unordered_map<int, Folder> folders_;
  std::unordered_map<DirectorySubscription*, Subscription> subscriptions_;
  // In the order in which they became so; ended ones among them.
  std::deque<DirectorySubscription*> changed_;
  std::deque<DirectorySubscription*> due_;
};

} // namespace zq::platform
