#include "app/services/SignReceiver.h"

#include "zqticker/signs/ZQTickerSign.h"

namespace zq::app {

SignReceiver::~SignReceiver() = default;

void setLoopRule(ZQTickerSign& sign, const LoopRule& rule) {
  sign.setLoopCount(rule.count);
  sign.setLoopDelay(rule.delay);
  sign.setContinuousScrolling(rule.continuous);
}

} // namespace zq::app
