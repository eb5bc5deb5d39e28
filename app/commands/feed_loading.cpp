#include "app/commands/feed_loading.h"

#include "app/commands/failures.h"
#include "app/commands/interrupts.h"
#include "app/services/DisplayReceiver.h"
#include "app/services/FeedService.h"
#include "app/services/FeedSigns.h"
#include "app/services/FeedSubscription.h"
#include "app/services/loading_setup.h"

#include <QtCore/QEventLoop>
#include <QtCore/QLoggingCategory>
#include <QtCore/QTimer>

#include <cmath>

using namespace Qt::StringLiterals;

namespace zq::app {

void loadFeeds(TickerDisplay& display, const StripOptions& options, const StripLook& look,
               double scale, double patienceSeconds, FeedFailure failure, Interrupts& interrupts) {
  if (options.feeds.feeds.empty())
    return;
  prepareLoading();
  if (failure == FeedFailure::Ends)
    QLoggingCategory::setFilterRules(u"zqticker.feeds.warning=false"_s);
  DisplayReceiver receiver(display, [] { return 0.0; });
  FeedSigns signs(receiver, feedRuleOf(options));
  FeedService service(options.feeds, pictureRoomOf(options, look, scale),
                      [&](const std::vector<ShownItem>& items) { signs.show(items); });
  QEventLoop loop;
  QObject::connect(&service, &FeedService::settled, &loop, &QEventLoop::quit);
  QObject::connect(&interrupts, &Interrupts::interrupted, &loop, &QEventLoop::quit);
  QTimer::singleShot(static_cast<int>(std::lround(patienceSeconds * 1000)), &loop,
                     &QEventLoop::quit);
  service.start();
  if (Interrupts::received() == 0)
    loop.exec();
  if (Interrupts::received() != 0)
    throw RunTimeError(u"--feed: interrupted"_s);
  for (const auto& subscription : service.subscriptions()) {
    const QString error = subscription->hasPolled()
                              ? subscription->errorText()
                              : u"no answer within %1 seconds"_s.arg(patienceSeconds);
    if (failure == FeedFailure::Ends && !error.isEmpty())
      throw RunTimeError(u"--feed "_s + feedName(subscription->url()) + u": "_s + error);
    if (!subscription->hasPolled())
      printError(u"feed "_s + feedName(subscription->url()) + u": "_s + error);
  }
}

} // namespace zq::app
