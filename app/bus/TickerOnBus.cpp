#include "app/bus/TickerOnBus.h"

#include "app/bus/intake_failures.h"
#include "app/commands/failures.h"
#include "app/display/FrameClock.h"
#include "app/ticker/Ticker.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
MessageIntake::Host hostOf(Ticker& ticker) {
  return {[&] { return MessageStyle::of(ticker.display()); },
          [&](const platform::Ref<ZQTickerSign>& sign, const SignOrigin& origin,
              MessageIntake::Order order) {
            return ticker.show(sign, origin, order == MessageIntake::Order::Arranged);
          },
          // Limits go on while this program is kept from running.
          &FrameClock::now};
}
} // namespace

TickerOnBus::TickerOnBus(Ticker& ticker, std::function<void()> quit)
    : ticker_(ticker), quit_(std::move(quit)), intake_(hostOf(ticker)) {}

TickerOnBus::~TickerOnBus() = default;

ArrivingSign TickerOnBus::displayMessage(const QVariantMap& message, const BusSender& sender) {
  return withBusFailures(
      [&] { return shownWithBusFailures(intake_.takeMessage(message, sender.name)); });
}

// What `function` gives, and nothing where it raises something, which is logged.
template <class Function>
auto TickerOnBus::noted(const QString& sender, Function function) -> decltype(function()) {
  try {
    return function();
  } catch (const LimitError&) {
    // The intake has logged it.
  } catch (const std::exception& error) {
    refusals_.note(sender, QString::fromUtf8(error.what()));
  }
  return {};
}

ArrivingSign TickerOnBus::displayNotification(const QVariantMap& message, const BusSender& sender) {
  ArrivingSign sign = noted(sender.name, [&] { return intake_.takeMessage(message, sender.name); });
  if (sign.show)
    sign.show = [this, name = sender.name, show = std::move(sign.show)] {
      return noted(name, show);
    };
  return sign;
}

ArrivingSign TickerOnBus::displaySign(const QByteArray& archive, const QVariantMap& origin,
                                      const BusSender& sender) {
  return withBusFailures(
      [&] { return shownWithBusFailures(intake_.takeSign(archive, origin, sender.name)); });
}

bool TickerOnBus::removeSign(const QString& identifier, const BusSender& sender) {
  return withBusFailures([&] {
    intake_.admitCall(sender.bytes, sender.name);
    return ticker_.remove(identifier);
  });
}

void TickerOnBus::arrangeSigns(const QStringList& identifiers, const BusSender& sender) {
  withBusFailures([&] {
    intake_.admitCall(sender.bytes, sender.name);
    ticker_.arrange(identifiers);
  });
}

void TickerOnBus::run(const QStringList& arguments, const QString& folder,
                      const QDBusUnixFileDescriptor& standardInput) {
  try {
    ticker_.run(arguments, folder, standardInput);
  } catch (const CommandFailure& failure) {
    throw BusFailure(BusFailure::Kind::Failed, failure.message());
  }
}

void TickerOnBus::showQueue() {
  ticker_.showQueue();
}

void TickerOnBus::showSettings() {
  ticker_.showSettings();
}

void TickerOnBus::pause() {
  ticker_.setPaused(true);
}

void TickerOnBus::resume() {
  ticker_.setPaused(false);
}

void TickerOnBus::hide() {
  ticker_.hideStrip();
}

void TickerOnBus::show() {
  ticker_.showStrip();
}

void TickerOnBus::focus() {
  if (!ticker_.focusStrip())
    throw BusFailure(BusFailure::Kind::Failed, u"there is nothing on the strip"_s);
}

void TickerOnBus::quit() {
  quit_();
}

} // namespace zq::app
