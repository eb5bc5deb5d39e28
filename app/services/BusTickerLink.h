// The ticker on the session bus, for a sender of signs.
#pragma once

#include "app/services/TickerLink.h"

namespace zq::app {

class TickerClient;
struct BusReply;

// Never starts the ticker.
//
// Thread: main.
class BusTickerLink : public TickerLink {
  Q_OBJECT

 public:
  // Tells of the ticker from now on. `client` must outlive the object.
  explicit BusTickerLink(TickerClient& client);
  ~BusTickerLink() override;

  bool isThere() const override { return isThere_; }
  void show(const QByteArray& archive, const QVariantMap& origin, Done done) override;
  void remove(const QString& identifier, Done done) override;
  void arrange(const QStringList& identifiers, Done done) override;

 private:
  TickerClient& client_;
  bool isThere_ = false;
};

// What a reply on the bus means for the sender.
TickerReply readBusReply(const BusReply& reply);

} // namespace zq::app
