#include "app/display/SignItem.h"

#include "app/display/TickerDisplay.h"
#include "zqticker/signs/ZQTextTickerSign.h"

#include <QtCore/QLoggingCategory>

#include <algorithm>
#include <exception>

namespace zq::app {

using platform::Ref;

namespace {
Q_LOGGING_CATEGORY(signLog, "zqticker.display")
} // namespace

SignItem::SignItem(TickerDisplay& display, Ref<ZQTickerSign> sign)
    : display_(display), sign_(std::move(sign)) {}

SignItem::SignItem(TickerDisplay& display, QString line, LoopRule rule)
    : display_(display), line_(std::move(line)), lineRule_(rule), isLine_(true) {}

SignItem::~SignItem() = default;

LoopRule SignItem::loopRule() const {
  if (isLine_)
    return lineRule_;
  // A count that means nothing is shown once.
  const std::int64_t count = sign_->loopCount();
  const bool isEndless = count == ZQEndlessLoopCount;
  return {isEndless ? count : std::max<std::int64_t>(count, 1), sign_->loopDelay(),
          sign_->continuousScrolling()};
}

double SignItem::enter() {
  // Called while the clock ticks: what a sign raises ends here, and the sign is left out.
  try {
    if (!sign_)
      sign_ = display_.makeTextSign(line_);
    return place();
  } catch (const std::exception& exception) {
    qCWarning(signLog, "a sign cannot be shown: %s", exception.what());
    placement_ = {};
    return 0;
  }
}

double SignItem::place() {
  placement_ = placeSign(*sign_, display_.shape());
  return placement_.lengthWithGap();
}

bool SignItem::changeText(const QString& text) {
  const auto textSign = std::dynamic_pointer_cast<ZQTextTickerSign>(sign_);
  if (!textSign || isLine_)
    return false;
  textSign->setText(display_.styledText(text));
  place();
  return true;
}

void SignItem::leave() {
  if (isLine_)
    sign_.reset();
}

} // namespace zq::app
