// What the intake refuses, as the bus answers it.
#pragma once

#include "app/bus/BusFailure.h"
#include "app/intake/MessageIntake.h"
#include "app/intake/sign_archives.h"

#include <utility>

namespace zq::app {

// The result of `function`; a BusFailure where it raises an error of the intake.
template <typename Function>
auto withBusFailures(Function function) {
  try {
    return function();
  } catch (const MessageError& error) {
    throw BusFailure(BusFailure::Kind::InvalidMessage, error.message());
  } catch (const SignError& error) {
    throw BusFailure(BusFailure::Kind::InvalidSign, error.message());
  } catch (const LimitError& error) {
    throw BusFailure(BusFailure::Kind::TooMuch, error.message());
  }
}

// The same for the showing of `sign`.
inline ArrivingSign shownWithBusFailures(ArrivingSign sign) {
  sign.show = [show = std::move(sign.show)] { return withBusFailures(show); };
  return sign;
}

} // namespace zq::app
