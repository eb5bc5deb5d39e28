#include "app/bus/hand_over.h"

#include "app/bus/TickerClient.h"
#include "app/bus/TickerService.h"
#include "app/commands/failures.h"

#include <QtCore/QDir>

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
// The owner may end between the claim and the call.
constexpr int MostAttempts = 10;
} // namespace

RunClaim claimTicker(TickerService& service, const QStringList& arguments, int standardInput) {
  for (int attempt = 0; attempt < MostAttempts; ++attempt) {
    switch (service.start()) {
    case TickerService::Start::IsOwner:
      return RunClaim::IsTicker;
    case TickerService::Start::NoBus:
      return RunClaim::IsAlone;
    case TickerService::Start::IsTaken:
      break;
    }
    TickerClient client(service.address());
    client.setStartsTicker(false);
    const BusReply reply = client.run(arguments, QDir::currentPath(), standardInput);
    if (reply.ok)
      return RunClaim::IsHandedOver;
    if (client.hasTicker())
      throw RunTimeError(reply.errorMessage);
  }
  throw RunTimeError(u"the ticker that is running cannot be reached"_s);
}

} // namespace zq::app
