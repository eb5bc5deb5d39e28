#include "zqticker/watching/WatchedPaths_p.h"

#include <utility>

void WatchedPaths::append(const QString& path, int descriptor) {
  const int place = int(entries_.size());
  entries_.push_back({path, descriptor});
  const auto chain = chains_.find(path);
  if (chain == chains_.end())
    chains_.insert(path, {place, place});
  else
    entries_[std::size_t(std::exchange(chain->last, place))].next = place;
}

std::optional<int> WatchedPaths::takeFirst(const QString& path) {
  const auto chain = chains_.find(path);
  if (chain == chains_.end())
    return std::nullopt;
  Entry& entry = entries_[std::size_t(chain->first)];
  const int descriptor = std::exchange(entry.descriptor, None);
  entry.path = QString();
  if (entry.next == None)
    chains_.erase(chain);
  else
    chain->first = entry.next;
  if (++removed_ * 2 > entries_.size())
    sweep();
  return descriptor;
}

std::vector<int> WatchedPaths::takeAll() {
  std::vector<int> descriptors;
  for (const Entry& entry : entries_)
    if (entry.descriptor != None)
      descriptors.push_back(entry.descriptor);
  *this = WatchedPaths();
  return descriptors;
}

QStringList WatchedPaths::paths() const {
  QStringList paths;
  for (const Entry& entry : entries_)
    if (entry.descriptor != None)
      paths.append(entry.path);
  return paths;
}

void WatchedPaths::sweep() {
  const WatchedPaths old = std::exchange(*this, WatchedPaths());
  for (const Entry& entry : old.entries_)
    if (entry.descriptor != None)
      append(entry.path, entry.descriptor);
}
