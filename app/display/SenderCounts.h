// How many signs each sender has queued.
#pragma once

#include <QtCore/QHash>
#include <QtCore/QString>

#include <cstddef>

namespace zq::app {

// Counts by sender; takes memory only for senders that have something queued.
class SenderCounts {
 public:
  void add(const QString& sender) { ++counts_[sender]; }
  void remove(const QString& sender) {
    const auto count = counts_.find(sender);
    if (count != counts_.end() && --*count == 0)
      counts_.erase(count);
  }
  std::size_t of(const QString& sender) const { return counts_.value(sender, 0); }

 private:
  QHash<QString, std::size_t> counts_;
};

} // namespace zq::app
