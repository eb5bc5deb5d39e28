#include "app/interaction/StripInteraction.h"

namespace zq::app {

StripInteraction::StripInteraction(StripWidget& strip, TickerDisplay& display)
    : pointer_(strip, display, opener_), commands_(strip, display, opener_) {}

StripInteraction::~StripInteraction() = default;

} // namespace zq::app
