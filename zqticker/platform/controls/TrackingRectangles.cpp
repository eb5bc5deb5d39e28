#include "zqticker/platform/controls/TrackingRectangles_p.h"

#include "zqticker/platform/controls/point_in_rect_p.h"

#include <algorithm>
#include <utility>

namespace zq::platform {

static bool contains(const QRectF& rect, const std::optional<QPointF>& point) {
  return point && isPointInRect(*point, rect);
}

TrackingRectangles::Tag TrackingRectangles::add(const QRectF& rect, bool assumeInside) {
  rectangles_.push_back({++lastTag_, rect, assumeInside});
  return lastTag_;
}

void TrackingRectangles::remove(Tag tag) {
  const auto found = std::find_if(rectangles_.begin(), rectangles_.end(),
                                  [tag](const Rectangle& each) { return each.tag == tag; });
  if (found == rectangles_.end())
    return;
  isLeaveOwed_ |= found->isInside;
  rectangles_.erase(found);
}

void TrackingRectangles::pointerIsAt(std::optional<QPointF> point, const Tell& tell) {
  if (rectangles_.empty())
    return;
  const bool isInAny =
      std::any_of(rectangles_.begin(), rectangles_.end(),
                  [&](const Rectangle& each) { return contains(each.rect, point); });
  if (std::exchange(isLeaveOwed_, false) && !isInAny && !tell(false))
    return;

  // Leaves first. What is told may change the rectangles, and even the pointer's place.
  for (const bool isEntry : {false, true}) {
    std::vector<Tag> changed;
    for (Rectangle& each : rectangles_)
      if (each.isInside != isEntry && contains(each.rect, point) == isEntry)
        changed.push_back(each.tag);
    for (const Tag tag : changed) {
      const auto found = std::find_if(rectangles_.begin(), rectangles_.end(),
                                      [tag](const Rectangle& each) { return each.tag == tag; });
      if (found == rectangles_.end() || std::exchange(found->isInside, isEntry) == isEntry)
        continue;
      if (!tell(isEntry))
        return;
    }
  }
}

} // namespace zq::platform
