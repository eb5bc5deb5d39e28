// What a watcher watches.
#pragma once

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <deque>
#include <optional>
#include <vector>

// Paths in the order in which they were added, each with the descriptor that was opened for it. A
// path may be there several times. Every change takes the same time however many there are.
class WatchedPaths {
 public:
  void append(const QString& path, int descriptor);

  // Removes the first entry of an equal path, and returns its descriptor; nothing where there is
  // none.
  std::optional<int> takeFirst(const QString& path);
  // Removes all, and returns their descriptors in order.
  std::vector<int> takeAll();

  QStringList paths() const;

 private:
  static constexpr int None = -1;

  struct Entry {
    QString path;
    int descriptor;  // None once it has been removed
    int next = None; // the next entry whose path has the same hash
  };
  // The places of the entries whose paths have the same hash.
  struct Chain {
    int first;
    int last;
  };

  Entry& entry(int place) { return entries_[std::size_t(place)]; }
  void sweep();

  // Removed entries stay until they are half of all, so that the others keep their places.
  std::deque<Entry> entries_;
  std::size_t removed_ = 0;
  // By the hash: the paths themselves would take twice the room.
  QHash<quint32, Chain> chains_;
};
