// A rollover button that writes down what it is told, in a window of its own.
#pragma once

#include "tests/platform/controls/ButtonProbe.h"
#include "tests/rollover/RollOverView.h"
#include "zqticker/platform/graphics/Font.h"
#include "zqticker/rollover/ZQRollOverButton.h"

#include <QtGui/QPaintEvent>

namespace zq::testing {

class RollOverProbe : public ZQRollOverButton {
  Q_OBJECT

 public:
  explicit RollOverProbe(QWidget* parent = nullptr)
      : RollOverButtonClass(this),
        ZQRollOverButton({20, 68, 100, 22}, QStringLiteral("Play"), parent) {
    setClassAppearance(std::make_shared<ZQRollOverButtonAppearance>());
  }

  static void setClassAppearance(const platform::Ref<ZQRollOverButtonAppearance>& appearance) {
    setAppearance<RollOverProbe>(appearance);
  }

  ZQRollOverButtonCell& rollOverCell() const {
    return dynamic_cast<ZQRollOverButtonCell&>(*cell());
  }

  void sendAction(const platform::Selector& action, const platform::Target& target) override {
    log.append(QStringLiteral("action"));
    if (const auto perform = whenSending)
      perform();
    ZQRollOverButton::sendAction(action, target);
  }
  void setNeedsDisplay() override {
    ++redisplays;
    ZQRollOverButton::setNeedsDisplay();
  }
  int takeRedisplays() { return std::exchange(redisplays, 0); }

  QStringList log;
  int redisplays = 0;
  std::function<void()> whenSending;

  using ZQRollOverButton::mouseEntered;
  using ZQRollOverButton::mouseExited;
  using ZQRollOverButton::trackingRect;

 protected:
  void frameDidChange(const platform::Ref<platform::Notification>& notification) override {
    log.append(QStringLiteral("frame"));
    ZQRollOverButton::frameDidChange(notification);
  }
};

// A window with a RollOverProbe, and a pointer that comes and goes.
class RollOverButtonWindow : public WindowWith<RollOverProbe> {
 public:
  ZQRollOverButtonCell& cell() const { return button->rollOverCell(); }
};

} // namespace zq::testing
