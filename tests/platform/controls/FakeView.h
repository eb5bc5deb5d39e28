// A view for tests of cells: no widget, what it is told is written down.
#pragma once

#include "zqticker/platform/controls/Cell.h"
#include "zqticker/platform/controls/ControlView.h"
#include "zqticker/platform/controls/Event.h"

#include <QtCore/QStringList>

#include <functional>

namespace zq::testing {

// 100 × 22 points with its lower left corner at (10, 20) of its window.
class FakeView : public platform::ControlView {
 public:
  explicit FakeView(bool flipped = true) : flipped_(flipped) {}

  bool isFlipped() const override { return flipped_; }
  QRectF bounds() const override { return {0, 0, 100, 22}; }
  QPointF convertPointToWindow(QPointF point) const override {
    return {point.x() + 10, (flipped_ ? 22 - point.y() : point.y()) + 20};
  }
  QPointF convertPointFromWindow(QPointF point) const override {
    const double y = point.y() - 20;
    return {point.x() - 10, flipped_ ? 22 - y : y};
  }
  void setNeedsDisplay() override { log.append(QStringLiteral("display")); }
  void sendAction(const platform::Selector& action, const platform::Target& target) override {
    log.append(QStringLiteral("action"));
    ControlView::sendAction(action, target);
    // What it does may destroy the view.
    if (const auto perform = whenSending)
      perform();
  }
  void cellDidChangeState(platform::Cell& cell) override {
    log.append(QStringLiteral("state %1").arg(int(cell.state())));
  }
  QWidget* widget() override { return shown; }

  QStringList log;
  std::function<void()> whenSending;
  QWidget* shown = nullptr;

 private:
  bool flipped_;
};

// An event of the left button at a point of a FakeView's bounds, y downwards.
inline platform::Event eventAt(platform::EventType type, double x, double y) {
  platform::Event event;
  event.type = type;
  event.locationInWindow = FakeView().convertPointToWindow({x, y});
  event.clickCount = 1;
  return event;
}
inline platform::Event pressAt(double x, double y) {
  return eventAt(platform::EventType::LeftMouseDown, x, y);
}
inline platform::Event dragAt(double x, double y) {
  return eventAt(platform::EventType::LeftMouseDragged, x, y);
}
inline platform::Event releaseAt(double x, double y) {
  return eventAt(platform::EventType::LeftMouseUp, x, y);
}

} // namespace zq::testing
