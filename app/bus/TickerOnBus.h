// The running ticker as the bus sees it.
#pragma once

#include "app/bus/RefusalLog.h"
#include "app/bus/TickerReceiver.h"
#include "app/intake/MessageIntake.h"

#include <functional>

namespace zq::app {

class Ticker;

// Does with a ticker what programs ask for over the bus: messages and signs within the limits of
// the intake, and everything else as a user of this program would.
//
// Thread: main.
class TickerOnBus : public TickerReceiver {
 public:
  // `ticker` must outlive the object; `quit` ends the program.
  TickerOnBus(Ticker& ticker, std::function<void()> quit);
  ~TickerOnBus() override;

  ArrivingSign displayMessage(const QVariantMap& message, const BusSender& sender) override;
  ArrivingSign displayNotification(const QVariantMap& message, const BusSender& sender) override;
  ArrivingSign displaySign(const QByteArray& archive, const QVariantMap& origin,
                           const BusSender& sender) override;
  bool removeSign(const QString& identifier, const BusSender& sender) override;
  void arrangeSigns(const QStringList& identifiers, const BusSender& sender) override;
  void run(const QStringList& arguments, const QString& folder,
           const QDBusUnixFileDescriptor& standardInput) override;
  void showQueue() override;
  void showSettings() override;
  void pause() override;
  void resume() override;
  void hide() override;
  void show() override;
  void focus() override;
  void quit() override;

 private:
  template <class Function>
  auto noted(const QString& sender, Function function) -> decltype(function());

  Ticker& ticker_;
  std::function<void()> quit_;
  MessageIntake intake_;
  RefusalLog refusals_;
};

} // namespace zq::app
