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
  // What the program around the ticker does. A window that is missing here fails as "not
  // available".
  struct Program {
    std::function<void()> showQueue;
    std::function<void()> showSettings;
    std::function<void()> quit;
  };

  // `ticker` must outlive the object.
  TickerOnBus(Ticker& ticker, Program program);
  ~TickerOnBus() override;

  QString displayMessage(const QVariantMap& message, const BusSender& sender) override;
  void displayNotification(const QVariantMap& message, const BusSender& sender) override;
  QString displaySign(const QByteArray& archive, const QVariantMap& origin,
                      const BusSender& sender) override;
  bool removeSign(const QString& identifier, const BusSender& sender) override;
  void arrangeSigns(const QStringList& identifiers, const BusSender& sender) override;
  void run(const QStringList& arguments, const QString& folder,
           const QDBusUnixFileDescriptor& standardInput) override;
  void showQueue() override;
  void showSettings() override;
  void quit() override;

 private:
  Ticker& ticker_;
  Program program_;
  MessageIntake intake_;
  RefusalLog refusals_;
};

} // namespace zq::app
