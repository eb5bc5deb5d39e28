#include "app/bus/ticker_request.h"

#include "app/commands/failures.h"

using namespace Qt::StringLiterals;

namespace zq::app {

void askRunningTicker(const QString& command, BusReply (TickerClient::*request)()) {
  TickerClient client;
  if (!client.hasBus())
    throw RunTimeError(command + u": no session bus, so no running ticker can be asked"_s);
  client.setStartsTicker(false);
  const BusReply reply = (client.*request)();
  if (reply.isUnreachable())
    throw RunTimeError(command + u": no ticker is running"_s);
  if (!reply.ok)
    throw RunTimeError(command + u": "_s + reply.errorMessage);
}

} // namespace zq::app
