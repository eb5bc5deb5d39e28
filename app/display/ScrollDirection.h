// The way in which signs cross a strip.
#pragma once

namespace zq::app {

// Signs enter at the opposite edge: those of Left at the right one. Only places follow the
// direction, no picture is mirrored or turned by it.
enum class ScrollDirection { Left, Right, Up, Down };

constexpr bool isHorizontal(ScrollDirection direction) {
  return direction == ScrollDirection::Left || direction == ScrollDirection::Right;
}

// Whether signs leave at the right or the lower edge.
constexpr bool isReversed(ScrollDirection direction) {
  return direction == ScrollDirection::Right || direction == ScrollDirection::Down;
}

} // namespace zq::app
