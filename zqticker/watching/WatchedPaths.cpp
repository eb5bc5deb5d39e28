#include "zqticker/watching/WatchedPaths_p.h"

#include <utility>

namespace {
quint32 hashOf(const QString& path) {
  return quint32(qHash(path));
}
} // namespace

void WatchedPaths::append(const QString& path, int descriptor) {
  const int place = int(entries_.size());
  entries_.push_back({path, descriptor});
  const quint32 hash = hashOf(path);
  const auto chain = chains_.find(hash);
  if (chain == chains_.end())
    chains_.insert(hash, {place, place});
  else
    entry(std::exchange(chain->last, place)).next = place;
}

std::optional<int> WatchedPaths::takeFirst(const QString& path) {
  const auto chain = chains_.find(hashOf(path));
  if (chain == chains_.end())
    return std::nullopt;
  int previous = None;
  int place = chain->first;
  while (place != None && entry(place).path != path)
    place = entry(previous = place).next;
  if (place == None)
    return std::nullopt;

  Entry& found = entry(place);
  if (chain->first == chain->last) {
    chains_.erase(chain);
  } else {
    (previous == None ? chain->first : entry(previous).next) = found.next;
    if (chain->last == place)
      chain->last = previous;
  }
  found.path = QString();
  const int descriptor = std::exchange(found.descriptor, None);
  if (++removed_ * 2 > entries_.size())
    sweep();
  return descriptor;
}

std::vector<int> WatchedPaths::takeAll() {
  std::vector<int> descriptors;
  for (const Entry& each : entries_)
    if (each.descriptor != None)
      descriptors.push_back(each.descriptor);
  *this = WatchedPaths();
  return descriptors;
}

QStringList WatchedPaths::paths() const {
  QStringList found;
  for (const Entry& each : entries_)
    if (each.descriptor != None)
      found.append(each.path);
  return found;
}

void WatchedPaths::sweep() {
  const WatchedPaths old = std::exchange(*this, WatchedPaths());
  for (const Entry& each : old.entries_)
    if (each.descriptor != None)
      append(each.path, each.descriptor);
}
