// What the intake refuses, as a ticker on the bus answers it.
#pragma once

#include "app/bus/BusFailure.h"
#include "app/intake/MessageIntake.h"
#include "app/intake/sign_archives.h"

namespace zq::app::testing {

// Does what `act` does, and turns the intake's errors into those that a sender on the bus gets.
template <class Act>
auto answeringBus(Act act) {
  try {
    return act();
  } catch (const MessageError& error) {
    throw BusFailure(BusFailure::Kind::InvalidMessage, error.message());
  } catch (const SignError& error) {
    throw BusFailure(BusFailure::Kind::InvalidSign, error.message());
  } catch (const LimitError& error) {
    throw BusFailure(BusFailure::Kind::TooMuch, error.message());
  }
}

} // namespace zq::app::testing
