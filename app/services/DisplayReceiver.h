// The display of this program as a receiver of signs.
#pragma once

#include "app/services/SignReceiver.h"

#include <functional>

namespace zq::app {

class TickerDisplay;

// Hands signs on to a display as they come.
//
// Thread: main.
class DisplayReceiver : public SignReceiver {
 public:
  // `time` gives the present time of the display. `display` must outlive the object.
  DisplayReceiver(TickerDisplay& display, std::function<double()> time);
  ~DisplayReceiver() override;

  platform::Ref<ZQTickerSign> makeTextSign(const QString& text) override;
  void add(platform::Ref<ZQTickerSign> sign, const SignOrigin& origin, Order order) override;
  void replace(platform::Ref<ZQTickerSign> sign, const SignOrigin& origin) override;
  void remove(const QString& identifier) override;
  void arrange(const QStringList& identifiers) override;
  bool hasWaiting(const QString& identifier) override;

 private:
  TickerDisplay& display_;
  std::function<double()> time_;
};

} // namespace zq::app
