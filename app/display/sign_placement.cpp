#include "app/display/sign_placement.h"

#include "zqticker/signs/ZQImageTickerSign.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <algorithm>
#include <cmath>

namespace zq::app {

namespace {
// The trailing gaps of a combo sign.
constexpr double HeightGapFraction = 0.5;
constexpr double FontGapFraction = 0.25;

bool isText(const ZQTickerSign& sign) {
  return dynamic_cast<const ZQTextTickerSign*>(&sign) != nullptr;
}

bool isPicture(const ZQTickerSign& sign) {
  return dynamic_cast<const ZQImageTickerSign*>(&sign) != nullptr && !isText(sign);
}

double fitOf(const ZQTickerSign& sign, QSizeF size, const StripShape& strip) {
  const double room = strip.isHorizontal ? strip.size.height() : strip.size.width();
  const double needed = strip.isHorizontal ? size.height() : size.width();
  if (!(needed > 0) || !(room > 0))
    return 1;
  if (isPicture(sign))
    return std::min(room / needed, 1.0);
  return isText(sign) && strip.scalesText && strip.isHorizontal ? room / needed : 1.0;
}
} // namespace

SignPlacement placeSign(const ZQTickerSign& sign, const StripShape& strip) {
  const QSizeF size = sign.size();
  SignPlacement placement;
  placement.fit = fitOf(sign, size, strip);
  const QSizeF shown = size * placement.fit;
  if (strip.isHorizontal) {
    placement.length = shown.width();
    placement.breadth = shown.height();
    placement.across = (strip.size.height() - shown.height()) / 2;
    if (isPicture(sign))
      placement.gap = strip.size.height() * HeightGapFraction;
  } else {
    placement.length = shown.height();
    placement.breadth = shown.width();
    placement.across = isText(sign) ? 0 : (strip.size.width() - shown.width()) / 2;
    if (isPicture(sign))
      placement.gap = strip.fontSize * FontGapFraction;
  }
  // Nothing to see, nothing to wait for.
  if (!(placement.length > 0) || !(placement.breadth > 0) || !std::isfinite(placement.breadth))
    placement.length = placement.gap = 0;
  return placement;
}

} // namespace zq::app
