#include "app/display/SignItem.h"

#include "app/display/TickerDisplay.h"
#include "zqticker/signs/ZQTickerSign.h"

namespace zq::app {

using platform::Ref;

SignItem::SignItem(TickerDisplay& display, Ref<ZQTickerSign> sign)
    : display_(display), sign_(std::move(sign)) {}

SignItem::SignItem(TickerDisplay& display, QString line, LoopRule rule)
    : display_(display), line_(std::move(line)), lineRule_(rule), isLine_(true) {}

SignItem::~SignItem() = default;

LoopRule SignItem::loopRule() const {
  if (isLine_)
    return lineRule_;
  return {sign_->loopCount(), sign_->loopDelay(), sign_->continuousScrolling()};
}

double SignItem::enter() {
  if (!sign_)
    sign_ = display_.makeTextSign(line_);
  return place();
}

double SignItem::place() {
  placement_ = placeSign(*sign_, display_.shape());
  return placement_.lengthWithGap();
}

void SignItem::leave() {
  if (isLine_)
    sign_.reset();
}

} // namespace zq::app
