// Which items of feeds are shown, and in what order.
#pragma once

#include "app/services/Feed.h"

#include <cstddef>
#include <vector>

namespace zq::app {

// The first `limit` items of a feed that can be shown, in its order: each identity once, nothing
// without a title. An item without a picture gets the feed's.
std::vector<FeedItem> itemsToShow(const Feed& feed, std::size_t limit);

// The entries of all lists by turns, first the first of each: A1 B1 A2 B2 A3. A list that has ended
// is passed over, so that none holds another up.
template <class T>
std::vector<T> interleaved(const std::vector<std::vector<T>>& lists) {
  std::vector<T> result;
  for (std::size_t turn = 0, before = 1; before != 0; ++turn) {
    before = 0;
    for (const std::vector<T>& list : lists)
      if (turn < list.size()) {
        result.push_back(list[turn]);
        ++before;
      }
  }
  return result;
}

} // namespace zq::app
