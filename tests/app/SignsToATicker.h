// Signs that are sent to a ticker which does as the test says.
#pragma once

#include "app/services/SignSender.h"
#include "tests/app/FakeTickerLink.h"
#include "zqticker/signs/ZQComboTickerSign.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>

namespace zq::app::testing {

inline const QString Sender = QStringLiteral("org.zqticker.service.test:1");
using Kind = TickerReply::Kind;
using Order = SignReceiver::Order;

class SignsToATicker : public ::testing::Test {
 protected:
  SignsToATicker() { make({}); }

  void make(SendLimits limits) {
    limits.shortestPause = std::chrono::milliseconds(1);
    limits.longestPause = std::chrono::milliseconds(1);
    sender.emplace(link, Sender, limits);
    QObject::connect(&*sender, &SignSender::finished, &link, [this] { ++finishCount; });
  }

  platform::Ref<ZQTickerSign> sign(const QString& identifier, std::int64_t loopCount = 1,
                                   const QString& text = QStringLiteral("text")) {
    const platform::Ref<ZQTickerSign> made = sender->makeTextSign(text);
    made->setIdentifier(identifier);
    made->setLoopCount(loopCount);
    return made;
  }
  void add(const QString& identifier, std::int64_t loopCount = 1, Order order = Order::Arrival) {
    sender->add(sign(identifier, loopCount), {}, order);
  }
  void arrange(const QStringList& identifiers) {
    for (const QString& identifier : identifiers)
      add(identifier, -1, Order::Arranged);
    sender->arrange(identifiers);
  }
  static QString textOf(const FakeTickerLink::Call& call) {
    const auto combo = std::dynamic_pointer_cast<ZQComboTickerSign>(call.sign());
    return combo ? combo->text().toString() : QStringLiteral("no combo sign");
  }

  FakeTickerLink link{Sender};
  std::optional<SignSender> sender;
  int finishCount = 0;
};

} // namespace zq::app::testing
