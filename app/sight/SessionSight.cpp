#include "app/sight/SessionSight.h"

#include <utility>

namespace zq::app {

SessionSight::SessionSight(std::optional<QString> sessionBus, std::optional<QString> systemBus)
    : sessionBus_(std::move(sessionBus)), systemBus_(std::move(systemBus)), savers_(sessionBus_),
      login_(systemBus_) {
  connect(&savers_, &ScreenSavers::changed, this, &SessionSight::update);
  connect(&login_, &LoginSession::changed, this, &SessionSight::update);
  connect(&server_, &ServerScreenSaver::changed, this, &SessionSight::update);
  update();
  sessionBus_.open();
  systemBus_.open();
}

SessionSight::~SessionSight() = default;

void SessionSight::update() {
  const bool isInSight =
      !savers_.isActive() && !login_.isLocked() && !login_.isAsleep() && !server_.isActive();
  if (isInSight == isInSight_)
    return;
  isInSight_ = isInSight;
  Q_EMIT changed(isInSight);
}

} // namespace zq::app
