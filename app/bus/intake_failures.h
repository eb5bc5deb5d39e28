// What the intake refuses, as the bus answers it.
#pragma once

#include "app/bus/BusFailure.h"
#include "app/intake/MessageIntake.h"
#include "app/intake/sign_archives.h"

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

} // namespace zq::app
