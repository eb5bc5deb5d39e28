// Which feeds to read, and how.
#pragma once

#include <QtCore/QUrl>

#include <cstddef>
#include <optional>
#include <vector>

namespace zq::app {

struct FeedOptions {
  std::vector<QUrl> feeds; // each once
  std::optional<double> intervalMinutes;
  std::size_t itemsPerFeed = 10;

  bool operator==(const FeedOptions&) const = default;
};

} // namespace zq::app
