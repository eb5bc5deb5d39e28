// Vertical gradients inside paths: additions to BezierPath, which take the path first.
//
// BezierPath (ZQShading)
//
// The colour depends on the height alone: t is 0 at the smallest y of the path's bounds and 1 at
// the largest, so that in a flipped context 0 is at the top of what is seen. Each device row inside
// the path is of one colour, evaluated at the row's middle; nothing is drawn outside of the path,
// and no shadow. Clip and state of the current context stay as they are. Without a current context,
// for a null path and for one with empty bounds nothing happens.
//
// Thread: that of the current context.
#pragma once

#include "zqticker/zqticker_export.h"

#include <memory>

namespace zq::platform {
class BezierPath;
class Color;
} // namespace zq::platform

namespace zq {

// A function from one number to four.
struct FunctionCallbacks {
  // 0.
  unsigned version = 0;
  // Sets `out[0]` to `out[3]`, red, green, blue and alpha, to the colour at `in[0]`, which lies
  // between 0 and 1. What is set is limited to 0 to 1. `info` is a table of twelve doubles: red,
  // green, blue and alpha of the first colour, the same of the second, and the second's minus the
  // first's. Null draws nothing.
  void (*evaluate)(void* info, const double* in, double* out) = nullptr;
  // Called with `info` once it is no longer needed: after the fill, or when the recording that
  // keeps the fill has gone. May be null.
  void (*releaseInfo)(void* info) = nullptr;
};

// Fills `path` with the colours that `callbacks` evaluate from both colours, each time anew. A
// colour that has no device RGB components, as null and patterns have none, counts as transparent
// black.
// Operation: customVerticalFillWithCallbacks:firstColor:secondColor:
ZQTICKER_EXPORT void
customVerticalFillWithCallbacks(const std::shared_ptr<platform::BezierPath>& path,
                                FunctionCallbacks callbacks,
                                const std::shared_ptr<platform::Color>& firstColor,
                                const std::shared_ptr<platform::Color>& secondColor);

// Fills `path` from `startColor` at the smallest y to `endColor` at the largest.
// Operation: linearGradientFillWithStartColor:endColor:
ZQTICKER_EXPORT void
linearGradientFillWithStartColor(const std::shared_ptr<platform::BezierPath>& path,
                                 const std::shared_ptr<platform::Color>& startColor,
                                 const std::shared_ptr<platform::Color>& endColor);

// Fills `path` with `outerColor` along the middle and `innerColor` at the smallest and the largest
// y: the names are crossed, and callers choose their colours accordingly.
// Operation: bilinearGradientFillWithOuterColor:innerColor:
ZQTICKER_EXPORT void
bilinearGradientFillWithOuterColor(const std::shared_ptr<platform::BezierPath>& path,
                                   const std::shared_ptr<platform::Color>& outerColor,
                                   const std::shared_ptr<platform::Color>& innerColor);

// Evaluate functions for FunctionCallbacks: the first colour at 0 and the second at 1; the first
// colour at both ends and the second at 0.5.
ZQTICKER_EXPORT void linearShadedColor(void* info, const double* in, double* out);
ZQTICKER_EXPORT void bilinearShadedColor(void* info, const double* in, double* out);

} // namespace zq
