#include "app/services/BusTickerLink.h"

#include "app/bus/TickerClient.h"
#include "app/bus/bus_names.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace zq::app;

namespace {
TickerReply replyOf(const QString& errorName) {
  BusReply reply;
  reply.errorName = errorName;
  reply.errorMessage = u"because"_s;
  return readBusReply(reply);
}
} // namespace

TEST(BusReplies, AreTakenRefusedOrWorthAnotherTry) {
  using Kind = TickerReply::Kind;
  BusReply done;
  done.ok = true;
  EXPECT_EQ(readBusReply(done).kind, Kind::Taken);
  EXPECT_EQ(replyOf(TooMuchErrorName).kind, Kind::TooMuch);
  EXPECT_EQ(replyOf(u"org.freedesktop.DBus.Error.LimitsExceeded"_s).kind, Kind::TooMuch);
  for (const QString& lost : {u"NoReply"_s, u"Timeout"_s, u"TimedOut"_s, u"Disconnected"_s,
                              u"ServiceUnknown"_s, u"NameHasNoOwner"_s})
    EXPECT_EQ(replyOf(u"org.freedesktop.DBus.Error."_s + lost).kind, Kind::Lost)
        << lost.toStdString();
  for (const QString& refused : {QString(InvalidSignErrorName), QString(FailedErrorName),
                                 u"org.freedesktop.DBus.Error.UnknownMethod"_s}) {
    EXPECT_EQ(replyOf(refused).kind, Kind::Refused) << refused.toStdString();
    EXPECT_EQ(replyOf(refused).message, u"because"_s);
  }
}
