// The rectangles of a view that the pointer enters and leaves.
#pragma once

#include <QtCore/QPointF>
#include <QtCore/QRectF>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace zq::platform {

// Which rectangles the pointer is in, and whom to tell.
class TrackingRectangles {
 public:
  using Tag = std::intptr_t;
  // Told true for an entry, false for a leave; returns whether the rectangles still exist.
  using Tell = std::function<bool(bool isEntry)>;

  // Never 0.
  Tag add(const QRectF& rect, bool assumeInside);
  void remove(Tag tag);
  bool isEmpty() const { return rectangles_.empty(); }

  // The pointer is at `point`, or outside of them all, and each change is told. A rectangle that
  // went while the pointer was in it leaves a leave to be told, as soon as another one is there
  // and the pointer in none.
  void pointerIsAt(std::optional<QPointF> point, const Tell& tell);

 private:
  struct Rectangle {
    Tag tag;
    QRectF rect;
    bool isInside;
  };
  std::vector<Rectangle> rectangles_;
  Tag lastTag_ = 0;
  bool isLeaveOwed_ = false;
};

} // namespace zq::platform
