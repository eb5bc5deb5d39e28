#include "app/interaction/sign_spots.h"

#include "app/display/SignItem.h"
#include "app/display/TickerDisplay.h"

namespace zq::app {

namespace {
// Points by which what stands at an edge may be beyond it.
constexpr double Touching = 0.5;

// Nothing where no part of it is in sight.
std::optional<SignSpot> spotOf(const TickerDisplay& display, const Strip::Run& run) {
  const QRectF seen = areaOf(display, run) & QRectF(QPointF(), display.size());
  if (seen.isEmpty())
    return std::nullopt;
  const Strip& strip = display.strip();
  const bool isLeaving = strip.travel() - run.start > strip.extent() + Touching;
  return SignSpot{run.entry, run.number, seen, isLeaving};
}
} // namespace

const SignItem& SignSpot::item() const {
  return static_cast<const SignItem&>(*entry->item);
}

QRectF areaOf(const TickerDisplay& display, const Strip::Run& run) {
  const double length = display.shownLengthOf(run);
  const double start = display.placeOf(run);
  return display.isHorizontal() ? QRectF(start, 0, length, display.size().height())
                                : QRectF(0, start, display.size().width(), length);
}

std::optional<SignSpot> signAt(const TickerDisplay& display, QPointF point) {
  for (const Strip::Run& run : display.strip().runs())
    if (auto spot = spotOf(display, run); spot && spot->area.contains(point))
      return spot;
  return std::nullopt;
}

std::optional<SignSpot> spotOfRun(const TickerDisplay& display, std::uint64_t number) {
  for (const Strip::Run& run : display.strip().runs())
    if (run.number == number)
      return spotOf(display, run);
  return std::nullopt;
}

std::vector<SignSpot> signsInSight(const TickerDisplay& display) {
  std::vector<SignSpot> spots;
  for (const Strip::Run& run : display.strip().runs())
    if (auto spot = spotOf(display, run))
      spots.push_back(*std::move(spot));
  return spots;
}

} // namespace zq::app
